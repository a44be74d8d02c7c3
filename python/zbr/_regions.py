"""Regions of the plane, one by one and by the hundred thousand."""

from __future__ import annotations

from typing import Any, Callable, Iterable, Iterator, NamedTuple, Sequence, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _geo, _picture, _zbr

Progress = Callable[[float], object]

#: Items of `Region.sources`.
SOURCE = np.dtype(
    {
        "names": ["operand", "ring", "edge", "t0", "t1"],
        "formats": ["i4", "i4", "i4", "f8", "f8"],
        "offsets": [0, 4, 8, 16, 24],
        "itemsize": 32,
    }
)


@_zbr.use_class
class Region(_zbr.Region):
    """A valid region: polygons with holes, which touch each other in single points at most. Immutable.

    Region(coords, rings=None, polygons=None, *, fill="evenodd", valid=False, tolerance=0.0, progress=None)

    coords: (n, 2) coordinates in any unit. rings: offsets into them, one more than there are rings; None: all is one ring.
    Rings are not closed, but may be. They may cross themselves and each other; `fill` says what is inside (evenodd, nonzero,
    positive, negative). polygons: offsets into the rings; then the region is the union of the polygons. valid=True: the arrays
    are valid already, outer rings counter-clockwise and first; they are kept as they are and only their offsets and numbers are
    looked at. progress(share) is called now and then; False ends the call by Cancelled, as an interrupt does by
    KeyboardInterrupt.

    Raises ValueError, naming the argument, for other shapes, offsets that descend or lead beyond, and numbers that are not
    finite or beyond 1e150.

    >>> plate = Region([(0, 0), (10, 0), (10, 10), (0, 10)])
    >>> bar = Region([(5, 3), (12, 3), (12, 5), (5, 5)])
    >>> (plate | bar).area, (plate & bar).area, (plate - bar).area, (plate ^ bar).area
    (104.0, 10.0, 90.0, 94.0)
    """

    __slots__ = ()

    @classmethod
    def of(cls, thing: Any, *, fill: str = "evenodd", **options: Any) -> Region:
        """A region of anything that has polygons.

        That is: a Region, whatever has __geo_interface__ (shapely, geopandas, fiona), a GeoJSON geometry, feature or collection
        as a dict, WKT (str), WKB (bytes), a GeoArrow array of polygons (all of them united), an (n, 2) array, or a list of such
        arrays, the rings. A Region stays as it is, valid or not. Options for all else: tolerance, progress.

        >>> Region.of("POLYGON ((0 0, 4 0, 0 4, 0 0))").area
        8.0
        """
        if isinstance(thing, Region):
            if options:
                raise TypeError(f"{next(iter(options))}: is nothing for a Region, which stays as it is")
            return thing
        if hasattr(thing, "__arrow_c_array__"):
            return cls(*_zbr.arrays_of_arrow(*thing.__arrow_c_array__())[:3], fill=fill, **options)
        arrays = _geo.arrays_of_wkt(thing) if isinstance(thing, str) else _geo.arrays_of(thing)
        if arrays is None:
            region, _, unclosed = _zbr.read_region("WKT", data=thing.encode(), format="wkt", fill=fill)
            if unclosed > 0:
                raise ValueError(f"WKT: rings have to be closed, and {unclosed} are not")
            return cls(region.coords, region.rings, region.polygons, **options) if options else region
        coords, rings, polygons = arrays
        return cls(coords, rings, polygons, fill=fill, **options)

    def contains(self, points: ArrayLike, *, progress: Progress | None = None) -> NDArray[np.bool_]:
        """(n,) bool: whether the points (n, 2) lie in the interior. The first call builds an index."""
        return self.locate(points, progress=progress) > 0

    @property
    def sources(self) -> NDArray[Any]:
        """Where edges come from: records of operand (0 or 1), its ring and edge, and parameters t0 to t1 along that edge.

        Those of the edge that starts at coords[i] are sources[source_offsets[i]:source_offsets[i + 1]]. Only for results of
        calls with sources=True, else empty.
        """
        return self._source_bytes.view(SOURCE)

    @property
    def is_empty(self) -> bool:
        return not self

    def __iter__(self) -> Iterator[Region]:
        """The polygons, each a region."""
        for first, last in zip(self.polygons[:-1], self.polygons[1:]):
            begin, end = self.rings[first], self.rings[last]
            yield Region(self.coords[begin:end], self.rings[first : last + 1] - begin, valid=True)

    def __repr__(self) -> str:
        return f"<zbr.Region: polygons {len(self)}, rings {len(self.rings) - 1}, points {len(self.coords)}, area {self.area:g}>"

    def __reduce__(self) -> tuple[Any, ...]:
        return _restore_region, (self.coords, self.rings, self.polygons)

    def union(self, other: Region, **options: Any) -> Region:
        return union(self, other, **options)

    def intersection(self, other: Region, **options: Any) -> Region:
        return intersection(self, other, **options)

    def difference(self, other: Region, **options: Any) -> Region:
        return difference(self, other, **options)

    @property
    def __geo_interface__(self) -> dict[str, Any]:
        return _geo.mapping(self)

    def __arrow_c_array__(self, requested_schema: object = None) -> tuple[object, object]:
        """A GeoArrow array of one multipolygon."""
        return Regions._concatenate([self]).__arrow_c_array__()

    def to_wkt(self) -> str:
        """Well-known text, a POLYGON or MULTIPOLYGON; numbers read back as they were.

        >>> Region([(0, 0), (4, 0), (0, 4)]).to_wkt()
        'POLYGON ((0 0, 4 0, 0 4, 0 0))'
        """
        return _geo.wkt(self)

    def to_wkb(self) -> bytes:
        """Well-known binary, little-endian."""
        return _geo.wkb(self)

    def to_shapely(self) -> Any:
        """A shapely Polygon or MultiPolygon; needs shapely."""
        import shapely.wkb

        return shapely.wkb.loads(self.to_wkb())

    def svg(self, width: int = 480, fill: str = "#7aa6c2", stroke: str = "#1f3b4d") -> str:
        """A picture of at most width by width pixels, y up."""
        return _picture.region_svg(self, width, fill, stroke)

    def _repr_svg_(self) -> str:
        return self.svg()

    def plot(self, ax: Any = None, **style: Any) -> Any:
        """Draws the region with matplotlib, on the axes given or the current ones, and returns the patch."""
        return _picture.plot_region(self, ax, style)


@_zbr.use_class
class Regions(_zbr.Regions):
    """Many regions as one ragged array. Immutable; a sequence of Region.

    Regions(coords, rings, polygons, regions=None, *, fill="evenodd", valid=False, threads=1, progress=None)

    regions: offsets into the polygons, which are offsets into the rings, which are offsets into the coordinates; None: each
    polygon is a region. Rings are taken as those of Region. threads: how many to use; 0: one for each processor.

    >>> squares = Regions([(0, 0), (2, 0), (2, 2), (0, 2), (9, 0), (13, 0), (13, 4), (9, 4)], [0, 4, 8], [0, 1, 2])
    >>> len(squares), squares.area.tolist()
    (2, [4.0, 16.0])
    >>> intersection(squares, Region([(1, 1), (10, 1), (10, 10), (1, 10)])).area.tolist()
    [1.0, 3.0]
    """

    __slots__ = ()

    @classmethod
    def of(cls, things: Iterable[Any], *, fill: str = "evenodd") -> Regions:
        """Regions of anything that Region.of() takes, one of each; of a GeoArrow array of polygons or multipolygons, its items."""
        if isinstance(things, Regions):
            return things
        if hasattr(things, "__arrow_c_array__"):
            return cls(*_zbr.arrays_of_arrow(*things.__arrow_c_array__()), fill=fill)
        if isinstance(things, (str, bytes)) or not isinstance(things, Iterable):
            raise TypeError("regions: a list of what Region.of() takes is needed")
        return cls._concatenate(_entry(k, thing, fill) for k, thing in enumerate(things))

    def __arrow_c_schema__(self) -> object:
        return _zbr.arrow_schema()

    def __arrow_c_array__(self, requested_schema: object = None) -> tuple[object, object]:
        """A GeoArrow array of multipolygons, as pyarrow.array() and others take it; rings are closed there."""
        return _zbr.arrow_of(self)

    @overload
    def __getitem__(self, index: int) -> Region: ...
    @overload
    def __getitem__(self, index: slice | NDArray[Any] | list[Any]) -> Regions: ...
    def __getitem__(self, index: int | slice | NDArray[Any] | list[Any]) -> Region | Regions:
        if isinstance(index, list) or (isinstance(index, np.ndarray) and index.ndim > 0):
            return Regions._concatenate(self[i] for i in _places(index, len(self)))
        if not isinstance(index, slice):
            return super().__getitem__(index)  # type: ignore[no-any-return, index]
        first, last, step = index.indices(len(self))
        if step != 1:
            return Regions.of(self[i] for i in range(first, last, step))
        regions = self.regions[first : max(first, last) + 1]  # of all that is handed over a copy is made: only what is needed
        polygons = self.polygons[regions[0] : regions[-1] + 1]
        rings = self.rings[polygons[0] : polygons[-1] + 1]
        coords = self.coords[rings[0] : rings[-1]]
        return Regions(coords, rings - rings[0], polygons - polygons[0], regions - regions[0], valid=True)

    def contains(self, points: ArrayLike, *, progress: Progress | None = None) -> NDArray[np.bool_]:
        """(m,) bool: whether point i of points (m, 2) lies in the interior of region i, or one point (1, 2) in that of each."""
        return self.locate(points, progress=progress) > 0

    def simplify(self, tolerance: float) -> Regions:
        """Each region as Region.simplify() gives it."""
        return Regions._concatenate(region.simplify(tolerance) for region in self)

    def to_shapely(self) -> list[Any]:
        """shapely polygons and multipolygons; needs shapely."""
        return [region.to_shapely() for region in self]

    def __iter__(self) -> Iterator[Region]:
        return (self[i] for i in range(len(self)))

    def __repr__(self) -> str:
        return f"<zbr.Regions: {len(self)} regions, points {len(self.coords)}>"

    def __reduce__(self) -> tuple[Any, ...]:
        return _restore_regions, (self.coords, self.rings, self.polygons, self.regions)


def _entry(k: int, thing: Any, fill: str) -> Region:
    try:
        return Region.of(thing, fill=fill)
    except (TypeError, ValueError) as error:
        error.args = (f"regions[{k}]: {error}",)
        raise


def _places(index: Any, count: int) -> NDArray[Any]:
    """Places from a list or an array of them, or of what is true for those that are meant."""
    places = np.asarray(index)
    if places.dtype == bool and places.shape != (count,):
        raise IndexError(f"index: a mask for {count} regions is needed, not of shape {places.shape}")
    if places.ndim != 1:
        raise IndexError(f"index: places in a row are needed, not of shape {places.shape}")
    return np.flatnonzero(places) if places.dtype == bool else places


def _restore_region(*arrays: Any) -> Region:
    return Region(*arrays, valid=True)


def _restore_regions(*arrays: Any) -> Regions:
    return Regions(*arrays, valid=True)


union = _zbr.union
intersection = _zbr.intersection
difference = _zbr.difference
xor = _zbr.xor
combine = _zbr.combine
faces = _zbr.faces


def make_valid(coords: Any, rings: ArrayLike | None = None, **options: Any) -> Region:
    """The region that rings bound, whatever they do to themselves and each other: arrays as Region takes them, a Region made of
    such with valid=True, or what Region.of() takes. Options: fill="evenodd", tolerance=0.0, progress=None. Regions does the same
    to many at once.

    >>> make_valid([(0, 0), (4, 4), (4, 0), (0, 4)]).area
    8.0
    """
    if isinstance(coords, Region) and rings is None:
        return Region(coords.coords, coords.rings, coords.polygons, **options)
    return Region.of(coords, **options) if rings is None else Region(coords, rings, **options)


def unite(regions: Iterable[Any], **options: Any) -> Region:
    """The union of many regions: Regions, or a list of what Region.of() takes. Options are those of coverage().

    >>> unite([Region([(i, 0), (i + 2, 0), (i + 2, 2), (i, 2)]) for i in range(9)]).area
    20.0
    """
    return _zbr.coverage(Regions.of(regions), 1, **options)


def coverage(regions: Iterable[Any], times: int, **options: Any) -> Region:
    """What at least `times` of the regions cover. Options: tolerance, canonical, progress.

    >>> coverage([Region([(i, 0), (i + 2, 0), (i + 2, 2), (i, 2)]) for i in range(9)], 2).area
    16.0
    """
    return _zbr.coverage(Regions.of(regions), times, **options)


class Fault(NamedTuple):
    """What keeps rings from bounding a region as they are, and where.

    kind: crossing, overlap, fold, repeated_point, no_area. Edges have the numbers of the points they start at; -1: none.
    """

    kind: str
    place: tuple[float, float]
    ring_a: int
    edge_a: int
    ring_b: int
    edge_b: int


def check(coords: ArrayLike, rings: ArrayLike | None = None, *, most: int = 1_000_000) -> list[Fault]:
    """The faults of rings, arrays as Region takes them, or of what has __geo_interface__ (shapely). Touching is none. The search
    ends when `most` are found.

    >>> check([(0, 0), (4, 4), (4, 0), (0, 5)])
    [Fault(kind='crossing', place=(2.2222222222222223, 2.2222222222222223), ring_a=0, edge_a=0, ring_b=0, edge_b=2)]
    """
    if rings is None and hasattr(coords, "__geo_interface__"):
        coords, rings, _ = _geo.arrays_of(coords)
    return [Fault(f[0], (f[1], f[2]), *f[3:]) for f in _zbr.check(coords, rings, most=most)]
