"""Files of drawings and models."""

from __future__ import annotations

import os
import tempfile
from pathlib import Path
from typing import Any, Mapping

from . import _zbr
from ._regions import Region

DRAWINGS = {"dxf": "dxf", "geojson": "geojson", "json": "geojson", "wkt": "wkt", "txt": "text", "loops": "text"}
MESHES = ("stl", "obj", "ply", "off", "gltf", "glb")


def written(path: str | os.PathLike[str], data: bytes) -> None:
    """Writes a file that is whole, or the one that was there before."""
    path = Path(path)
    handle, name = tempfile.mkstemp(dir=path.parent, prefix=f".{path.name}.")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(data)
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(name, 0o666 & ~mask)
        os.replace(name, path)
    except BaseException:
        os.unlink(name)
        raise


def read(file: str | os.PathLike[str], *, data: bytes | None = None, format: str | None = None, **options: Any) -> Any:
    """Reads a file: a Mesh from stl, obj, ply, off, gltf and glb, a Region from dxf, geojson, json, wkt, loops and txt.

    data: the contents, of which `file` is the name for messages. format: what the name does not tell. Options for regions:
    deviation (largest distance between a curve and the chords that replace it; None: a small part of the extent), join (ends of
    lines at most this far apart belong together), fill (what is inside: evenodd, nonzero, positive, negative), layers (names);
    for both: progress. Raises Failure, which is a ValueError and tells file, line and cause.
    """
    kind = (format or Path(file).suffix[1:]).lower()
    if kind in MESHES:
        return _zbr.read_mesh(file, data, format=kind, **options)
    return _zbr.read_region(file, data=data, format=DRAWINGS.get(kind, format), **options)[0]


def write(path: str | os.PathLike[str], regions: Region | Mapping[str, Region], *, unit: str | None = None) -> None:
    """Writes regions to a file, dxf, geojson, wkt or txt by its name; each of a mapping becomes a layer.

    unit: mm, cm, m, in or another that the format can tell.
    """
    layers = {"region": regions} if isinstance(regions, Region) else dict(regions)
    kind = DRAWINGS.get(Path(path).suffix[1:].lower(), "unknown")
    code = 0 if unit is None else _zbr.unit_code(unit)
    written(path, _zbr.write_regions(kind, list(layers.values()), list(layers), code))
