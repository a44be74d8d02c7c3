"""Hidden-line drawings of triangle meshes."""

from __future__ import annotations

import os
import warnings
from typing import Any, Iterable, Mapping, NamedTuple, Sequence, Unpack

import numpy as np
from numpy.typing import NDArray

from . import _picture, _zbr
from ._files import place_of, written
from ._options import DrawOptions, SheetOptions
from ._regions import Region

#: What the numbers of `Drawing.kind` mean.
KINDS: tuple[str, ...] = _zbr.KINDS

View = str | Sequence[Any] | Mapping[str, Any]


class Survey(NamedTuple):
    """What keeps a mesh from bounding bodies: counts of shells, of closed ones, and of faults."""

    shells: int
    closed: int
    borders: int  # edges of one triangle
    junctions: int  # edges of three and more
    turned: int  # edges along which both triangles run the same way
    pinches: int  # points at which a surface touches itself
    inward: int  # shells seen from inside
    flat: int  # triangles without area
    repeated: int  # triangles that repeat others


class Picked(NamedTuple):
    """What is seen at points, an array each: shell and triangle of the mesh, -1 for nothing; height towards the viewer, in
    the axes of the view and from the origin of the model, NaN for nothing."""

    shell: NDArray[np.int32]
    triangle: NDArray[np.int32]
    height: NDArray[np.float64]


class TracedOutline(NamedTuple):
    """The outline of an object, and the edges of the mesh that it runs along.

    The edge from region.coords[i] to the next point of its ring runs along the pieces offsets[i] up to offsets[i + 1], one after
    the other or, where edges lie over each other, side by side: a piece is edge `edge` (from that corner to the next) of triangle
    `triangle`, from parameter along[:, 0] to along[:, 1], where 0 is the corner that the edge starts at.
    """

    region: Region
    offsets: NDArray[np.int32]
    shell: NDArray[np.int32]
    triangle: NDArray[np.int32]
    edge: NDArray[np.int32]
    along: NDArray[np.float64]

    def __repr__(self) -> str:
        return f"<zbr.TracedOutline: points {len(self.region.coords)}, pieces {len(self.edge)}, area {self.region.area:g}>"


@_zbr.use_class
class Mesh(_zbr.Mesh):
    """Triangles in space, to be drawn. Immutable; what serves all views is found once.

    Mesh(points, faces, *, y_up=False, name="mesh", shells=None)

    points: (v, 3) coordinates in any unit. faces: (f, 3) integers, places of points, counter-clockwise seen from outside where
    there is an outside. Points may be repeated, and nothing need be welded or oriented. shells: (f,) integers of 0 or more, which
    shell each face is of; points are then joined within shells only. Without them what hangs together by edges is a shell. Raises
    ValueError, naming the argument, for other shapes, places beyond the points, and coordinates that are not finite or beyond 1e75.

    >>> tetrahedron = Mesh([(0, 0, 0), (4, 0, 0), (0, 4, 0), (0, 0, 4)], [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)])
    >>> drawing = tetrahedron.draw("front")
    >>> len(drawing), drawing.hidden.tolist()
    (1, [False])
    >>> tetrahedron.outline("top").area
    8.0
    """

    __slots__ = ()

    @classmethod
    def of(cls, thing: Any) -> Mesh:
        """A mesh of anything that has triangles: trimesh (vertices, faces), meshio (points, cells), pyvista (points, faces with
        counts), CadQuery and build123d shapes, FreeCAD shapes and meshes (tessellate, Topology)."""
        if isinstance(thing, Mesh):
            return thing
        return cls(*_triangles_of(thing))

    def draw(self, view: View = "iso", **options: Unpack[DrawOptions]) -> Drawing:
        """Draws a view: front, back, left, right, top, bottom, iso, dimetric; a direction of looking (3,); that and what is up,
        (2, 3); or the perspective of an eye, {"eye": (x, y, z)}, with the keys at (what it looks at; by default the middle of the
        model), up, and fov (degrees at which the picture is cut off; by default all is drawn).

        Options: hidden=True (hidden lines too; "principal": in views along an axis), crease=30.0 (degrees between faces from which
        on an edge is drawn), weld=0.0 (points closer than this part of the diagonal are one), contact=None (bodies at most this
        far apart stand face to face, and the edges that they share are drawn; None: what coordinates in single precision are
        rounded to), tangents=False (smooth edges at which fillets end; sheets draw them thin or on a layer), intersections=True
        (lines where bodies pass through each other), silhouettes=None ("facets": along their edges; "smooth": of the surface that
        they stand for; None: smooth for scans), curves=True (circles, arcs and ellipses in files where chains of edges lie on
        circles), centre_lines=False (of holes and shafts; perspectives have none), outlines=False (what is seen of each object,
        which sheets fill), axes=None ("y" or "z" points up; None: as the mesh says), threads=1 (0: one for each processor),
        progress=None. ValueError names what is wrong.
        """
        return self._draw([view], **options)[0]

    def draw_views(self, views: Iterable[View], **options: Unpack[DrawOptions]) -> list[Drawing]:
        """Draws several views, which costs less than one by one; options as for draw()."""
        return self._draw(views, **options)

    def section(self, plane: str, **options: Unpack[DrawOptions]) -> Drawing:
        """Draws a section: what a plane lays open and what lies behind. The faces are the drawing's section_faces.

        plane: "X=10", "Y=10" or "Z=10", seen as right, front and top are; "X=10..25": what lies between the two; "1,0,1=20": at
        this distance from the origin in this direction. draw_views() takes planes, too. Options as for draw(), but hidden=False.
        """
        options.setdefault("hidden", False)
        drawing = self._draw([plane], **options)[0]
        if not np.any(drawing.kind == KINDS.index("cut")):
            warnings.warn(f"{drawing.name}: the plane cuts nothing", stacklevel=2)
        return drawing

    def traced_outlines(self, view: View = "iso", **options: Any) -> list[TracedOutline]:
        """What each object covers in a view, as outline() has it of the whole, and which edges of the mesh bound it. Options:
        weld=0.0, threads=1, progress=None."""
        return [TracedOutline(*outline) for outline in self._traced_outlines(view, **options)]

    def survey(self) -> Survey:
        """Looks for what keeps the mesh from bounding bodies."""
        return Survey(*self._survey())

    def pick(self, points: Any, view: View = "iso", **options: Any) -> Picked:
        """What is seen at points (n, 2) of a view, in its axes and from the origin of the model."""
        return Picked(*super().pick(points, view, **options))

    @property
    def bounds(self) -> NDArray[np.float64]:
        """The lowest and the highest coordinates, (2, 3)."""
        if len(self.points) == 0:
            return np.full((2, 3), np.nan)
        return np.array((self.points.min(axis=0), self.points.max(axis=0)))

    def __copy__(self) -> Mesh:
        return self  # nothing of it changes

    def __deepcopy__(self, memo: Any) -> Mesh:
        return self

    def __reduce__(self) -> tuple[Any, ...]:
        return _zbr.restore_mesh, (self.points, self.faces, self._pack())

    def __repr__(self) -> str:
        return f"<zbr.Mesh {self.name}: triangles {len(self)}, points {len(self.points)}>"

    def _repr_svg_(self) -> str:
        return self.draw(hidden=False)._repr_svg_()


@_zbr.use_class
class Drawing(_zbr.Drawing):
    """The lines of one view, visible ones first. Made by Mesh.draw().

    Coordinates are in the unit of the model, x to the right and y up, with the middle of the model's box as the origin: those of
    the lines, of outlines and section_faces. Adding `origin` gives those from the model's origin, which Mesh.outline() has.

    >>> box = Mesh([(0, 0, 0), (4, 0, 0), (0, 2, 0), (0, 0, 6)], [(0, 2, 1), (0, 1, 3), (1, 2, 3), (0, 3, 2)])
    >>> drawing = box.draw("front")
    >>> drawing.coords.max(axis=0).tolist(), (drawing.coords + drawing.origin).max(axis=0).tolist()
    ([2.0, 3.0], [4.0, 6.0])
    """

    __slots__ = ()

    @property
    def origin(self) -> NDArray[np.float64]:
        """(2,): where the origin of the drawing lies, seen from the model's."""
        return np.array(self.middle[:2])

    def polylines(self, hidden: bool | None = None, kind: str | None = None) -> list[NDArray[np.float64]]:
        """The lines as arrays (n, 2), views of coords: all, or those that are hidden or not, or of one of KINDS."""
        chosen = np.ones(len(self), bool)
        if hidden is not None:
            chosen &= self.hidden == bool(hidden)
        if kind is not None:
            if not isinstance(kind, str) or kind not in KINDS:
                raise ValueError(f"kind: one of {', '.join(KINDS)} is needed")
            chosen &= self.kind == KINDS.index(kind)
        coords, lines = self.coords, self.lines
        return [coords[lines[i] : lines[i + 1]] for i in np.flatnonzero(chosen)]

    def pick(self, points: Any, **options: Any) -> Picked:
        """What is seen at points (n, 2) of the drawing."""
        return Picked(*super().pick(points, **options))

    def sheet(self, **options: Unpack[SheetOptions]) -> Sheet:
        """The drawing alone on paper, without frame; options are those of sheet()."""
        options.setdefault("projection", None)
        return sheet([self], **options)

    def svg(self, **options: Unpack[SheetOptions]) -> str:
        return self.sheet(**options).svg()

    def dxf(self, version: str = "R2000", **options: Unpack[SheetOptions]) -> bytes:
        return self.sheet(**options).dxf(version)

    def pdf(self, **options: Unpack[SheetOptions]) -> bytes:
        return self.sheet(**options).pdf()

    def json(self, **options: Unpack[SheetOptions]) -> str:
        """Lines, where they come from, outlines: the file that the tool writes. Coordinates are from the model's origin."""
        return self.sheet(**options).json()

    def save(self, path: str | os.PathLike[str], **options: Unpack[SheetOptions]) -> None:
        """Writes a file: svg, dxf, pdf or json by its name."""
        self.sheet(**options).save(path)

    @property
    def __geo_interface__(self) -> dict[str, Any]:
        """The visible lines."""
        lines = tuple(tuple(map(tuple, line.tolist())) for line in self.polylines(hidden=False))
        return {"type": "MultiLineString", "coordinates": lines}

    def __copy__(self) -> Drawing:
        return self  # nothing of it changes

    def __deepcopy__(self, memo: Any) -> Drawing:
        return self

    def __reduce__(self) -> tuple[Any, ...]:
        return _zbr.restore_drawing, (self.mesh, self._pack())

    def __repr__(self) -> str:
        hidden = int(self.hidden.sum())
        return f"<zbr.Drawing {self.name}: visible lines {len(self) - hidden}, hidden lines {hidden}>"

    def _repr_svg_(self) -> str:
        return _picture.drawing_svg(self, 480)

    def plot(self, ax: Any = None, **style: Any) -> Any:
        """Draws the lines with matplotlib, on the axes given or the current ones; returns the collections, visible and hidden."""
        return _picture.plot_drawing(self, ax, style)


@_zbr.use_class
class Sheet(_zbr.Sheet):
    """Views on paper, as sheet() places them. `scale` and `paper`, its width and height in millimetres, tell what was chosen,
    `shortened` which fields of the title block ("Title", "Number", "Author", "Date") had no room for all of their text."""

    __slots__ = ()

    def svg(self) -> str:
        return self._write("svg").decode()

    def dxf(self, version: str = "R2000") -> bytes:
        return self._write("dxf", version)

    def pdf(self) -> bytes:
        return self._write("pdf")

    def json(self) -> str:
        return self._write("json").decode()

    def save(self, path: str | os.PathLike[str], version: str = "R2000") -> None:
        """Writes a file: svg, dxf, pdf or json by its name. A file that was there is replaced at once or not at all."""
        place = place_of(path)
        written(place, self._write(place.suffix[1:].lower(), version))

    def _repr_svg_(self) -> str:
        return self.svg()


def sheet(drawings: Iterable[Drawing], **options: Unpack[SheetOptions]) -> Sheet:
    """Places views of one mesh on paper, with frame and title block.

    Options: paper=None ("A3", "420x297" in millimetres; None: one that suits), scale=None ("1:2", 0.5, "fit"; None: the largest
    standard one that fits), projection="first" (or "third"; None: a single view without frame), title (the mesh's name), number,
    author, date (text of the title block), unit="mm" (of the model), hidden="dashed" ("none", "layer"), tangent="thin" ("layer").
    Warns of sections whose plane none of the views shows, which takes one that sees it as a line, and of text
    that the title block has no room for.
    """
    options.setdefault("projection", "first")
    placed = _zbr.sheet(drawings, **options)
    for name in placed._unmarked:
        warnings.warn(f"{name}: none of the views shows where its plane is", stacklevel=2)
    for field in placed.shortened:
        warnings.warn(f"title block: the field {field} has no room for all of its text", stacklevel=2)
    return placed


def _triangles_of(thing: Any) -> tuple[Any, Any]:
    if hasattr(thing, "val") and callable(thing.val):  # CadQuery's workplane
        thing = thing.val()
    if hasattr(thing, "vertices") and hasattr(thing, "faces") and not callable(thing.vertices):
        return thing.vertices, thing.faces
    if hasattr(thing, "cells_dict"):
        triangles = thing.cells_dict.get("triangle")
        if triangles is None:
            raise ValueError("mesh: it has no triangles")
        return thing.points, triangles
    if hasattr(thing, "Topology"):
        points, faces = thing.Topology
        return [tuple(p) for p in points], faces
    if hasattr(thing, "tessellate"):
        box = getattr(thing, "BoundingBox", None)
        size = box().DiagonalLength if callable(box) else getattr(getattr(thing, "BoundBox", None), "DiagonalLength", 100.0)
        points, faces = thing.tessellate(float(size) / 1000)
        return [tuple(p) if not hasattr(p, "toTuple") else p.toTuple() for p in points], faces
    if hasattr(thing, "points") and hasattr(thing, "faces"):  # pyvista: the count of corners before them
        return thing.points, np.asarray(thing.faces).reshape(-1, 4)[:, 1:]
    raise TypeError("mesh: what has vertices and faces is needed")
