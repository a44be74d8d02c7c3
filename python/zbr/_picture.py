"""Pictures of regions and drawings: SVG for notebooks, matplotlib for those who have it."""

from __future__ import annotations

import math
import numbers
from typing import TYPE_CHECKING, Any

import numpy as np

if TYPE_CHECKING:
    from ._drawings import Drawing
    from ._regions import Region

_MARGIN = 6.0  # pixels around a picture
_STEP = 0.25  # of a pixel: what is closer looks the same


def _scale(low: Any, high: Any, width: float) -> tuple[float, float, float]:
    """Pixels for one unit, and the picture's size."""
    if not isinstance(width, numbers.Real) or not 2 * _MARGIN < width < math.inf:
        raise ValueError(f"width: more than {2 * _MARGIN:g} pixels are needed")
    size = np.maximum(high - low, 0.0)
    largest = float(size.max())
    scale = (width - 2 * _MARGIN) / largest if largest > 0 else 1.0
    return scale, float(size[0]) * scale + 2 * _MARGIN, float(size[1]) * scale + 2 * _MARGIN


def _path_data(coords: Any, offsets: Any, low: Any, scale: float, height: float, closed: bool) -> str:
    """Polylines as the data of a path, without points that a picture cannot tell apart."""
    pixels = (coords - low) * (scale, -scale) + (_MARGIN, height - _MARGIN)
    pixels = np.round(pixels / _STEP) * _STEP
    parts = []
    for a, b in zip(offsets[:-1], offsets[1:]):
        line = pixels[a:b]
        if len(line) > 1:
            line = line[np.concatenate(([True], np.any(line[1:] != line[:-1], axis=1)))]
        if len(line) > 1:
            parts.append("M" + "L".join(f"{x:g} {y:g}" for x, y in line.tolist()) + ("Z" if closed else ""))
    return "".join(parts)


def _page(width: float, height: float, body: str) -> str:
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:g}" height="{height:g}" '
        f'viewBox="0 0 {width:g} {height:g}">{body}</svg>'
    )


def region_svg(region: Region, width: int, fill: str, stroke: str) -> str:
    if not region:
        return _page(2 * _MARGIN, 2 * _MARGIN, "")
    low, high = np.array(region.bounds[:2]), np.array(region.bounds[2:])
    scale, across, height = _scale(low, high, width)
    data = _path_data(region.coords, region.rings, low, scale, height, True)
    return _page(across, height, f'<path d="{data}" fill="{fill}" fill-rule="evenodd" stroke="{stroke}" stroke-linejoin="round"/>')


def plot_region(region: Region, ax: Any, style: dict[str, Any]) -> Any:
    import matplotlib.pyplot
    from matplotlib.patches import PathPatch
    from matplotlib.path import Path

    axes = matplotlib.pyplot.gca() if ax is None else ax
    rings = list(zip(region.rings[:-1], region.rings[1:]))
    points = [np.concatenate((region.coords[a:b], region.coords[a : a + 1])) for a, b in rings]
    codes = [[Path.MOVETO] + [Path.LINETO] * (b - a - 1) + [Path.CLOSEPOLY] for a, b in rings]
    path = Path(np.concatenate(points), np.concatenate(codes)) if rings else Path(np.empty((0, 2)))
    patch = PathPatch(path, **{"facecolor": "#7aa6c2", "edgecolor": "#1f3b4d", **style})
    axes.add_patch(patch)
    axes.autoscale_view()
    axes.set_aspect("equal")
    return patch


_HIDDEN = {"stroke": "#8a949e", "stroke-width": "0.6", "stroke-dasharray": "4 2"}
_VISIBLE = {"stroke": "#111", "stroke-width": "1.2"}


def drawing_svg(drawing: Drawing, width: int) -> str:
    if len(drawing) == 0:
        return _page(2 * _MARGIN, 2 * _MARGIN, "")
    low, high = drawing.coords.min(axis=0), drawing.coords.max(axis=0)
    scale, across, height = _scale(low, high, width)
    paths = []
    for hidden, look in ((True, _HIDDEN), (False, _VISIBLE)):
        lines = drawing.polylines(hidden)
        if lines:
            ends = np.cumsum([0] + [len(line) for line in lines])
            data = _path_data(np.concatenate(lines), ends, low, scale, height, False)
            style = " ".join(f'{name}="{value}"' for name, value in look.items())
            paths.append(f'<path d="{data}" fill="none" stroke-linecap="round" stroke-linejoin="round" {style}/>')
    return _page(across, height, "".join(paths))


def plot_drawing(drawing: Drawing, ax: Any, style: dict[str, Any]) -> Any:
    import matplotlib.pyplot
    from matplotlib.collections import LineCollection

    axes = matplotlib.pyplot.gca() if ax is None else ax
    visible = LineCollection(drawing.polylines(False), **{"colors": "#111", "linewidths": 1.0, **style})
    hidden = LineCollection(drawing.polylines(True), colors="#8a949e", linewidths=0.5, linestyles="dashed")
    for lines in (hidden, visible):
        axes.add_collection(lines)
    axes.autoscale_view()
    axes.set_aspect("equal")
    return visible, hidden
