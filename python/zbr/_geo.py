"""Between regions and what other programs take for polygons: GeoJSON-like mappings, WKT, WKB, lists of points."""

from __future__ import annotations

import json
import re
import struct
from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from ._regions import Region

Arrays = tuple[Any, Any, Any]  # coordinates, offsets of rings, offsets of polygons or None

_POLYGONS = re.compile(r"\s*(MULTI)?POLYGON\s*(?:Z|M|ZM)?\s*(\(.*\))\s*", re.IGNORECASE | re.DOTALL)
_LINES = re.compile(r"\s*((?:MULTI)?(?:POINT|LINESTRING|CURVE)|CIRCULARSTRING|COMPOUNDCURVE)\b", re.IGNORECASE)
_POINT = re.compile(r"([^\s(),]+)\s+([^\s(),]+)[^(),]*")


def arrays_of(thing: Any) -> Arrays:
    """The rings of anything that has polygons."""
    if isinstance(thing, (bytes, bytearray, memoryview)):
        polygons: list[Any] = []
        _read_wkb(bytes(thing), 0, polygons)
        return _joined(polygons)
    if isinstance(thing, dict):
        return _joined(_polygons_of(thing))
    wkb = getattr(thing, "wkb", None)  # shapely: several times as fast as its mapping
    if isinstance(wkb, bytes):
        return arrays_of(wkb)
    if hasattr(thing, "__geo_interface__"):
        return _joined(_polygons_of(thing.__geo_interface__))
    return _of_sequence(thing)


def arrays_of_wkt(text: str) -> Arrays | None:
    """The rings of a POLYGON or MULTIPOLYGON in their order; None for what the reader of files takes, or refuses."""
    if lines := _LINES.match(text):
        raise ValueError(f"WKT: polygons are needed, not {lines[1].upper()}")
    match = _POLYGONS.fullmatch(text)
    if match is None:
        return None
    lists = _POINT.sub(r"[\1,\2]", match[2]).replace("(", "[").replace(")", "]")
    try:
        return _joined(_polygons_of({"type": "MultiPolygon" if match[1] else "Polygon", "coordinates": json.loads(lists)}))
    except (ValueError, TypeError, RecursionError):
        return None


def _of_sequence(thing: Any) -> Arrays:
    if isinstance(thing, np.ndarray) or not isinstance(thing, (list, tuple)):
        return thing, None, None
    if not thing or np.ndim(thing[0]) < 2:  # points
        return thing, None, None
    rings = [_numbers(ring, f"ring {k}") for k, ring in enumerate(thing)]
    for k, ring in enumerate(rings):
        if ring.ndim != 2 or ring.shape[1] != 2:
            raise ValueError(f"ring {k}: an array of shape (n, 2) is needed, not of shape {ring.shape}")
    return np.concatenate(rings), _offsets(rings), None


def _offsets(items: list[Any]) -> Any:
    return np.concatenate((np.zeros(1, np.int64), np.cumsum([len(item) for item in items], dtype=np.int64)))


def _joined(polygons: list[list[Any]]) -> Arrays:
    rings = [ring for polygon in polygons for ring in polygon]
    coords = np.concatenate(rings) if rings else np.empty((0, 2))
    return coords, _offsets(rings), _offsets(polygons)


def _numbers(points: Any, name: str) -> Any:
    try:
        return np.asarray(points, dtype=float)
    except (ValueError, TypeError) as error:
        raise ValueError(f"{name}: not an array of numbers ({error})") from None


def _ring(points: Any) -> Any:
    ring = _numbers(points, "coordinates")
    if ring.size == 0:
        return np.empty((0, 2))
    if ring.ndim != 2 or ring.shape[1] < 2:
        raise ValueError(f"coordinates: a ring is a list of points, not of shape {ring.shape}")
    return ring[:, :2]


def _polygons_of(geometry: Any) -> list[list[Any]]:
    try:
        return _polygons_by_type(geometry)
    except (AttributeError, KeyError, TypeError) as error:
        raise ValueError(f"geometry: not as GeoJSON has it ({type(error).__name__}: {error})") from None


def _polygons_by_type(geometry: Any) -> list[list[Any]]:
    kind = geometry.get("type")
    if kind == "Polygon":
        return [[_ring(ring) for ring in geometry["coordinates"]]]
    if kind == "MultiPolygon":
        return [[_ring(ring) for ring in polygon] for polygon in geometry["coordinates"]]
    if kind == "Feature":
        return _polygons_of(geometry["geometry"] or {"type": "GeometryCollection", "geometries": []})
    if kind == "FeatureCollection":
        return [polygon for feature in geometry["features"] for polygon in _polygons_of(feature)]
    if kind == "GeometryCollection":
        return [polygon for part in geometry["geometries"] for polygon in _polygons_of(part)]
    raise ValueError(f"type: polygons are needed, not {kind}")


def _read_wkb(data: bytes, at: int, polygons: list[Any]) -> int:
    """Adds the polygons of the geometry that starts there, and returns where it ends."""
    try:
        order = {0: ">", 1: "<"}[data[at]]
        (kind,) = struct.unpack_from(order + "I", data, at + 1)
        at += 5
        if kind & 0x20000000:  # has a reference system
            at += 4
        height, measure = kind & 0x80000000, kind & 0x40000000
        thousands, kind = divmod(kind & 0x0FFFFFFF, 1000)
        size = 2 + bool(height or thousands in (1, 3)) + bool(measure or thousands in (2, 3))
        (count,) = struct.unpack_from(order + "I", data, at)
        at += 4
        if kind in (6, 7):
            for _ in range(count):
                at = _read_wkb(data, at, polygons)
            return at
        if kind != 3:
            raise ValueError(f"WKB: polygons are needed, not geometries of type {kind}")
        polygon = []
        for _ in range(count):
            (points,) = struct.unpack_from(order + "I", data, at)
            ring = np.frombuffer(data, order + "f8", points * size, at + 4).reshape(points, size)
            polygon.append(ring[:, :2].astype(float))
            at += 4 + 8 * points * size
        polygons.append(polygon)
        return at
    except (struct.error, IndexError, KeyError, RecursionError) as error:
        raise ValueError(f"WKB: malformed at byte {at}") from error


def _closed_rings(region: Region) -> list[list[Any]]:
    """The rings of each polygon, each with its first point repeated at its end."""
    coords, rings = region.coords, region.rings
    closed = [np.concatenate((coords[a:b], coords[a : a + 1])) for a, b in zip(rings[:-1], rings[1:])]
    return [closed[a:b] for a, b in zip(region.polygons[:-1], region.polygons[1:])]


def mapping(region: Region) -> dict[str, Any]:
    polygons = [tuple(tuple(map(tuple, ring.tolist())) for ring in polygon) for polygon in _closed_rings(region)]
    if len(polygons) == 1:
        return {"type": "Polygon", "coordinates": polygons[0]}
    return {"type": "MultiPolygon", "coordinates": tuple(polygons)}


def _number(value: float) -> str:
    text = repr(value)
    return text[:-2] if text.endswith(".0") else text


def wkt(region: Region) -> str:
    def ring_text(ring: Any) -> str:
        return "(" + ", ".join(f"{_number(x)} {_number(y)}" for x, y in ring.tolist()) + ")"

    polygons = ["(" + ", ".join(map(ring_text, polygon)) + ")" for polygon in _closed_rings(region)]
    if not polygons:
        return "POLYGON EMPTY"
    if len(polygons) == 1:
        return "POLYGON " + polygons[0]
    return "MULTIPOLYGON (" + ", ".join(polygons) + ")"


def wkb(region: Region) -> bytes:
    polygons = []
    for polygon in _closed_rings(region):
        parts = [struct.pack("<BII", 1, 3, len(polygon))]
        for ring in polygon:
            parts += [struct.pack("<I", len(ring)), ring.astype("<f8").tobytes()]
        polygons.append(b"".join(parts))
    if len(polygons) == 1:
        return polygons[0]
    return struct.pack("<BII", 1, 6, len(polygons)) + b"".join(polygons)
