"""Files of drawings and models."""

from __future__ import annotations

import os
import secrets
import warnings
from pathlib import Path
from typing import Any, Mapping

from . import _zbr
from ._regions import Region
from ._zbr import UnknownFormat

DRAWINGS = {"dxf": "dxf", "geojson": "geojson", "json": "geojson", "wkt": "wkt", "svg": "svg", "txt": "text", "loops": "text"}
MESHES = ("stl", "obj", "ply", "off", "gltf", "glb", "3mf")


def place_of(path: Any) -> Path:
    """A path as text, bytes or an object of one."""
    try:
        return Path(os.fsdecode(path))
    except TypeError:
        raise TypeError("path: a string or a path is needed") from None


def written(path: Path, data: bytes) -> None:
    """Writes a file that is whole, or the one that was there before."""
    beside = path.with_name(f".{path.name}.{secrets.token_hex(8)}")
    with open(beside, "xb") as file:
        try:
            file.write(data)
            file.close()
            os.replace(beside, path)
        except BaseException:
            os.unlink(beside)
            raise


def read(
    file: str | os.PathLike[str] | None = None, *, data: bytes | None = None, format: str | None = None, **options: Any
) -> Any:
    """Reads a file: a Mesh from stl, obj, ply, off, gltf, glb and 3mf, a Region from dxf, geojson, json, wkt, svg, loops and txt.

    data: the contents, of which `file`, if given, is the name for messages. format: what the name does not tell. Options for
    regions: deviation (largest distance between a curve and the chords that replace it; None: a small part of the extent), join
    (ends of lines at most this far apart belong together), fill (what is inside: evenodd, nonzero, positive, negative), layers
    (names); for both: progress. Warns of contours that do not close, which are left out. Raises Failure, which is a ValueError and
    tells file, line and cause.
    """
    if format is not None and not isinstance(format, str):
        raise TypeError("format: a string is needed")
    if file is None:
        if data is None:
            raise TypeError("file: a name, or else data is needed")
        file = "data"
    kind = (format or place_of(file).suffix[1:]).lower()
    if kind in MESHES:
        return _zbr.read_mesh(file, data, format=kind, **options)
    if format is None and kind not in DRAWINGS:
        return _read_unknown(file, data)
    region, _, unclosed = _zbr.read_region(file, data=data, format=DRAWINGS.get(kind, format), **options)
    if unclosed > 0:
        warnings.warn(f"{os.fsdecode(file)}: contours that do not close are left out: {unclosed}", stacklevel=2)
    return region


def _read_unknown(file: str | os.PathLike[str], data: bytes | None) -> Any:
    """Fails with what the contents tell, or else with the formats that there are."""
    try:
        return _zbr.read_region(file, data=data)[0]
    except UnknownFormat as failure:
        cause = f"the name does not tell the format; give format=, one of {', '.join((*MESHES, *DRAWINGS))}"
        unknown = UnknownFormat(f"{failure.file}: {cause}")
        unknown.file, unknown.line, unknown.cause = failure.file, failure.line, cause
        raise unknown from None


def write(path: str | os.PathLike[str], regions: Any, *, unit: str | None = None) -> None:
    """Writes a region to a file, dxf, geojson, wkt or txt by its name, or a mapping of names to regions, each of which becomes a
    layer. Whatever has __geo_interface__ (shapely) is taken for a region.

    unit: mm, cm, m, in or another that the format can tell.
    """
    layers = dict(regions) if isinstance(regions, Mapping) else {"region": regions}
    for name, region in layers.items():
        if hasattr(region, "__geo_interface__"):
            layers[name] = Region.of(region)
        elif not isinstance(region, Region):
            raise TypeError("regions: a Region or a mapping of names to them is needed")
    place = place_of(path)
    kind = DRAWINGS.get(place.suffix[1:].lower(), "unknown")
    code = 0 if unit is None else _zbr.unit_code(unit)
    written(place, _zbr.write_regions(kind, list(layers.values()), list(layers), code))
