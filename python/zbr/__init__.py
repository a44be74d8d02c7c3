"""Planar Booleans of nested loops and hidden-line drawings of triangle meshes.

Regions hold NumPy arrays: coordinates and offsets of rings and polygons. Objects are immutable, and calls let other threads run.
"""

from ._drawings import KINDS, Drawing, Mesh, Picked, Sheet, Survey, TracedOutline, sheet
from ._files import read, write
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
    make_valid,
    union,
    unite,
    xor,
)
from ._zbr import Cancelled, Failure, UnknownFormat, __version__

__all__ = [
    "Cancelled",
    "Drawing",
    "Failure",
    "Fault",
    "KINDS",
    "Mesh",
    "Picked",
    "Region",
    "Regions",
    "SOURCE",
    "Sheet",
    "Survey",
    "TracedOutline",
    "UnknownFormat",
    "__version__",
    "check",
    "combine",
    "coverage",
    "difference",
    "faces",
    "intersection",
    "make_valid",
    "read",
    "sheet",
    "union",
    "unite",
    "write",
    "xor",
]
