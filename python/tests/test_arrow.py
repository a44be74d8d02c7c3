"""GeoArrow through the Arrow C data interface, seen with ctypes by a consumer and a producer that share nothing with the package."""

import ctypes
import gc

import numpy as np
import pytest
import zbr

Pointer = ctypes.c_void_p


class Schema(ctypes.Structure):
    pass


class Array(ctypes.Structure):
    pass


Schema._fields_ = [("format", ctypes.c_char_p), ("name", ctypes.c_char_p), ("metadata", Pointer), ("flags", ctypes.c_int64), ("n_children", ctypes.c_int64),
                   ("children", ctypes.POINTER(ctypes.POINTER(Schema))), ("dictionary", Pointer), ("release", Pointer), ("private", Pointer)]
Array._fields_ = [("length", ctypes.c_int64), ("null_count", ctypes.c_int64), ("offset", ctypes.c_int64), ("n_buffers", ctypes.c_int64), ("n_children", ctypes.c_int64),
                  ("buffers", ctypes.POINTER(Pointer)), ("children", ctypes.POINTER(ctypes.POINTER(Array))), ("dictionary", Pointer), ("release", Pointer),
                  ("private", Pointer)]
capsule_of = ctypes.pythonapi.PyCapsule_New
capsule_of.restype, capsule_of.argtypes = ctypes.py_object, (Pointer, ctypes.c_char_p, Pointer)
pointer_of = ctypes.pythonapi.PyCapsule_GetPointer
pointer_of.restype, pointer_of.argtypes = Pointer, (ctypes.py_object, ctypes.c_char_p)
NO_RELEASE = ctypes.CFUNCTYPE(None, Pointer)(lambda record: None)


def stars(count):
    random = np.random.default_rng(7)
    return zbr.Regions.of([zbr.Region(random.random((9, 2)) + (3 * k, 0)) for k in range(count)] + [zbr.Region()])


def test_a_consumer_sees_closed_rings():
    regions = stars(5)
    capsules = regions.__arrow_c_array__()
    schema = ctypes.cast(pointer_of(capsules[0], b"arrow_schema"), ctypes.POINTER(Schema)).contents
    array = ctypes.cast(pointer_of(capsules[1], b"arrow_array"), ctypes.POINTER(Array)).contents
    assert b"geoarrow.multipolygon" in ctypes.string_at(schema.metadata, 60)
    coords, rings = regions.coords.copy(), regions.rings.tolist()
    expected = [regions.regions.tolist(), regions.polygons.tolist()]
    del regions
    gc.collect()
    seen, formats = [], []
    while schema.n_children:
        formats.append(schema.format)
        if schema.format == b"+l":
            seen.append(np.ctypeslib.as_array(ctypes.cast(array.buffers[1], ctypes.POINTER(ctypes.c_int32)), (array.length + 1,)).tolist())
        schema, array = schema.children[0].contents, array.children[0].contents
    points = np.ctypeslib.as_array(ctypes.cast(array.buffers[1], ctypes.POINTER(ctypes.c_double)), (array.length,)).reshape(-1, 2)
    assert formats == [b"+l", b"+l", b"+l", b"+w:2"] and schema.format == b"g" and seen[:2] == expected
    for r, (a, b) in enumerate(zip(seen[2], seen[2][1:])):
        assert points[a:b].tolist() == coords[rings[r] : rings[r + 1]].tolist() + [coords[rings[r]].tolist()]


class Producer:
    """A slice of polygons with 64-bit offsets and columns of coordinates."""

    def __init__(self, polygons, rings, x, y, offset, length, valid=None, parts=None, null=None):
        self.kept = [np.array(polygons, np.int64), np.array(rings, np.int64), np.array(x, float), np.array(y, float), np.array(valid or [255], np.uint8), np.array(parts or [255], np.uint8)]
        bits = np.packbits(np.arange(len(x)) != (-1 if null is None else null), bitorder="little")
        numbers = [self.node(b"g", [], [of, column], len(x), 0, -1) for of, column in zip((None, bits), self.kept[2:4])]
        self.kept.append(bits)
        points = self.node(b"+s", numbers, [None], len(x))
        lists = self.node(b"+L", [points], [self.kept[5], self.kept[1]], len(rings) - 1, 0, -1)
        self.schema, self.array = self.node(b"+L", [lists], [self.kept[4], self.kept[0]], length, offset, -1)

    def node(self, format, children, buffers, length, offset=0, nulls=0):
        pointers = [(ctypes.POINTER(kind) * len(children))(*(ctypes.pointer(child[k]) for child in children)) for k, kind in enumerate((Schema, Array))]
        buffer = (Pointer * len(buffers))(*(None if b is None else b.ctypes.data for b in buffers))
        release = ctypes.cast(NO_RELEASE, Pointer)
        node = (Schema(format, b"", None, 0, len(children), pointers[0], None, release, None),
                Array(length, nulls, offset, len(buffers), len(children), buffer, pointers[1], None, release, None))
        self.kept += [pointers, buffer, node]
        return node

    def __arrow_c_array__(self, requested_schema=None):
        return capsule_of(ctypes.addressof(self.schema), b"arrow_schema", None), capsule_of(ctypes.addressof(self.array), b"arrow_array", None)


def test_what_others_produce_is_read():
    x, y = [0, 1, 0, 0, 4, 4, 0, 0, 1, 2, 1, 1, 9, 9, 8, 9], [0, 0, 1, 0, 0, 4, 4, 0, 1, 1, 2, 1, 0, 1, 0, 0]
    given = [0, 1, 3, 4], [0, 3, 8, 12, 16], x, y
    assert zbr.Regions.of(Producer(*given, 0, 3)).area.tolist() == [0.5, 15.5, 0.5]
    assert zbr.Regions.of(Producer(*given, 1, 2)).area.tolist() == [15.5, 0.5] and zbr.Region.of(Producer(*given, 1, 1)).area == 15.5
    assert zbr.Region.of(Producer(*given, 1, 1, [2], [6])).area == 15.5  # what is not asked for may be null
    assert zbr.Region.of(Producer(*given, 0, 1, null=3)).area == 0.5  # so may numbers
    assert len(zbr.Regions.of(Producer([0], [0], [], [], 0, 0))) == 0
    regions = stars(20)
    assert list(zbr.Regions.of(type("Column", (), {"__arrow_c_array__": regions.__arrow_c_array__}))) == list(regions)
    for bad in (Producer([0, 2, 1], *given[1:], 0, 2), Producer([0, 9], *given[1:], 0, 1), Producer(*given, 0, 3, [5]), Producer(*given, 1, 2, None, [7]), Producer([0, 1], [0, 99], x, y, 0, 1), Producer(*given, 0, 2, null=3), Producer(*given, 2, 1, null=15)):
        with pytest.raises(ValueError, match="^regions: "):
            zbr.Regions.of(bad)
    with pytest.raises(TypeError, match="^regions: "):
        zbr.Regions.of(type("Wrong", (), {"__arrow_c_array__": lambda: (1, 2)}))
