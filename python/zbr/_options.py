"""What drawings and sheets are asked for by, for those who check types; Mesh.draw() and sheet() tell what it means."""

from __future__ import annotations

from typing import Callable, Literal, TypedDict


class DrawOptions(TypedDict, total=False):
    hidden: bool | Literal["none", "principal", "all"]
    crease: float
    weld: float
    contact: float | None
    tangents: bool
    intersections: bool
    silhouettes: Literal["facets", "smooth"] | None
    curves: bool
    centre_lines: bool
    outlines: bool
    axes: Literal["y", "z"] | None
    threads: int
    progress: Callable[[float], object] | None


class SheetOptions(TypedDict, total=False):
    paper: str | None
    scale: str | float | None
    projection: Literal["none", "first", "third"] | None
    title: str
    number: str
    author: str
    date: str
    unit: str
    hidden: Literal["none", "dashed", "layer"]
    tangent: Literal["thin", "layer"]
    progress: Callable[[float], object] | None
