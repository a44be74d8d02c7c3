"""Planar Booleans of nested loops and hidden-line drawings of triangle meshes.

Regions hold NumPy arrays: coordinates and offsets of rings and polygons. Objects are immutable, and calls let other threads run.
"""

from ._regions import (
    SOURCE,
    Fault,
    Region,
    Regions,
    check,
    combine,
    coverage,
    difference,
    faces,
    intersection,
    union,
    unite,
    xor,
)
from ._zbr import Cancelled, Failure, __version__

__all__ = [
    "SOURCE",
    "Cancelled",
    "Failure",
    "Fault",
    "Region",
    "Regions",
    "__version__",
    "check",
    "combine",
    "coverage",
    "difference",
    "faces",
    "intersection",
    "union",
    "unite",
    "xor",
]
