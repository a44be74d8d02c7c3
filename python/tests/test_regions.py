"""Regions: against shapely, against themselves in other orders, and with arguments that make no sense."""

import gc
import os
import pickle
import resource
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest
import shapely.geometry
import shapely.ops
import zbr
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp
from interrupts import interrupted

OPS = {"union": zbr.union, "intersection": zbr.intersection, "difference": zbr.difference, "xor": zbr.xor}

# On a coarse grid, points and edges coincide all the time.
points = st.tuples(st.integers(-6, 6), st.integers(-6, 6))
rings = st.lists(st.lists(points, min_size=3, max_size=9), min_size=1, max_size=3)


def are_inside(places, rings):
    """Whether rays from the places cross the rings an odd number of times."""
    x, y = places.T[:, :, np.newaxis]
    odd = np.zeros(len(places), bool)
    for ring in rings:
        (px, py), (qx, qy) = np.array(ring, float).T, np.roll(np.array(ring, float), -1, axis=0).T
        with np.errstate(divide="ignore", invalid="ignore"):
            crosses = ((py > y) != (qy > y)) & (x < px + (y - py) * (qx - px) / (qy - py))
        odd ^= crosses.sum(axis=1) % 2 == 1
    return odd


@given(rings, rings)
@settings(deadline=None, max_examples=200)
def test_operations_agree_with_shapely(first, second):
    a, b = zbr.Region.of(first), zbr.Region.of(second)
    places = np.random.default_rng(1).uniform(-6.5, 6.5, (64, 2))
    assert a.contains(places).tolist() == are_inside(places, first).tolist()
    results = zbr.combine(a, b, list(OPS))
    for (name, op), together in zip(OPS.items(), results):
        result, shape = op(a, b), together.to_shapely()
        assert result == together
        assert shape.is_valid
        expected = getattr(a.to_shapely(), {"xor": "symmetric_difference"}.get(name, name))(b.to_shapely())
        assert result.area == pytest.approx(expected.area, abs=1e-9)
        if result:
            assert result.centroid == pytest.approx((shape.centroid.x, shape.centroid.y))
            assert result.bounds == shape.bounds
            assert result.perimeter == pytest.approx(shape.length)


@given(rings)
@settings(deadline=None, max_examples=50)
def test_texts_and_mappings_keep_every_bit(given_rings):
    region = zbr.Region.of(given_rings) | zbr.Region([(1 / 3, 0), (7, 1e-3), (0.1, 2e5)])
    for copy in (region.to_shapely(), region.__geo_interface__, region.to_wkb(), region.to_wkt(), pickle.loads(pickle.dumps(region))):
        assert zbr.Region.of(copy).area == pytest.approx(region.area)
        assert sorted(map(tuple, zbr.Region.of(copy).coords)) == sorted(map(tuple, region.coords))
    for copy in (region.to_wkt(), region.to_wkb(), pickle.loads(pickle.dumps(region))):
        assert len(region) > 1 or zbr.Region.of(copy) == region  # the union of several may come in another order
    assert hash(pickle.loads(pickle.dumps(region))) == hash(region)


def stars(count, seed):
    """Many 12-gons about the origin, some crossing themselves."""
    random = np.random.default_rng(seed)
    angles = np.linspace(0, 2 * np.pi, 13)[:-1]
    radii = random.uniform(-0.1, 1.5, (count, 12, 1))
    coords = radii * np.stack((np.cos(angles), np.sin(angles)), 1) + random.uniform(-0.5, 0.5, (count, 1, 2))
    return zbr.Regions(coords.reshape(-1, 2), np.arange(count + 1) * 12, np.arange(count + 1))


@pytest.mark.parametrize("op", OPS)
def test_batches_are_calls_one_by_one(op):
    a, b = stars(700, 1), stars(700, 2)
    one_by_one = [OPS[op](x, y) for x, y in zip(a, b)]
    for threads in (1, 2, 5):
        batch = OPS[op](a, b, threads=threads)
        assert list(batch) == one_by_one
    assert batch.area == pytest.approx([r.area for r in one_by_one])
    assert list(OPS[op](a, b[0])) == [OPS[op](x, b[0]) for x in a]
    assert list(OPS[op](a[0], b[5:9])) == [OPS[op](a[0], x) for x in b[5:9]]
    with pytest.raises(ValueError, match="^b: "):
        OPS[op](a, b[:5])
    assert list(pickle.loads(pickle.dumps(batch))) == one_by_one
    assert list(batch[200:300][7:]) == one_by_one[207:300]
    for name in ("bounds", "centroid"):
        assert np.array_equal(getattr(batch, name), [getattr(r, name) for r in one_by_one], equal_nan=True)
    points = np.array([r.coords[0] + (0.1, 0.2) if r else (0, 0) for r in one_by_one])
    expected = [bool(r.contains([p])[0]) for r, p in zip(one_by_one, points)]
    assert batch.contains(points).tolist() == expected and 0 < sum(expected) < 700
    assert batch.locate(points[:1]).tolist() == [int(r.locate(points[:1])[0]) for r in one_by_one]
    assert list(batch.simplify(0.05)) == [r.simplify(0.05) for r in one_by_one]
    assert zbr.Regions.of(batch.to_shapely()).area == pytest.approx(batch.area)


@pytest.mark.parametrize("valid", [False, True])
def test_only_rings_of_polygons_count(valid):
    squares = [(x + dx, dy) for x in (0, 9, 18) for dx, dy in ((0, 0), (4, 0), (4, 4), (0, 4))]
    for polygons, area in (([0], 0), ([2], 0), ([0, 1], 16), ([1, 2], 16), ([1, 2, 3], 32), ([0, 3], 48), (None, 48)):
        region = zbr.Region(squares, [0, 4, 8, 12], polygons, valid=valid)
        assert region.area == area and (valid or len(region) == area / 16)
    assert zbr.Region(squares, [0, 4, 8, 12], [1, 2], valid=True).coords.tolist() == [list(p) for p in squares[4:8]]


def test_make_valid_takes_no_word_for_it_and_drops_no_option():
    bow = zbr.Region([(0, 0), (4, 4), (4, 0), (0, 4)], valid=True)
    pie = "CURVEPOLYGON (COMPOUNDCURVE ((0 0, 1 0), CIRCULARSTRING (1 0, 0.7 0.7, 0 1), (0 1, 0 0)))"
    assert bow.area == 0.0 and zbr.make_valid(bow).area == 8.0 and zbr.make_valid(bow, fill="positive").area == 4.0
    near = zbr.make_valid(zbr.Region([(0, 0), (4, 0), (4, 4), (4, 4.01)]), tolerance=0.1)
    assert len(near.coords) == 3 and len(zbr.make_valid(pie, tolerance=0.2).coords) < len(zbr.Region.of(pie).coords)
    for thing in (bow, pie, bow.coords):
        with pytest.raises(TypeError, match="unknown argument nonsense"):
            zbr.make_valid(thing, nonsense=1)
    with pytest.raises(TypeError, match="^tolerance: "):
        zbr.Region.of(bow, tolerance=1.0)


def test_unions_of_many_and_coverage():
    many = stars(60, 3)
    shapes = [r.to_shapely() for r in many]
    assert zbr.unite(many).area == pytest.approx(shapely.ops.unary_union(shapes).area)
    assert zbr.unite(shapes).area == pytest.approx(zbr.unite(many).area)
    assert zbr.coverage(many[:2], 2).area == pytest.approx((many[0] & many[1]).area)


def test_points_and_sources():
    plate = zbr.Region([(0, 0), (9, 0), (9, 9), (0, 9), (3, 3), (3, 6), (6, 6), (6, 3)], [0, 4, 8])
    assert plate.locate([(1, 1), (4, 4), (0, 5), (3, 4), (50, 5), (np.nan, 1)]).tolist() == [1, -1, 0, 0, -1, -1]
    assert plate.contains(np.array([(1, 1), (0, 5)])).tolist() == [True, False]
    bar = zbr.Region([(-1, 4), (10, 4), (10, 5), (-1, 5)])
    result = zbr.difference(plate, bar, sources=True)
    operands = (plate, bar)
    for i, start in enumerate(result.coords):  # each edge runs along the edges that it comes from
        for s in result.sources[result.source_offsets[i] : result.source_offsets[i + 1]]:
            of = operands[s["operand"]]
            first, last = of.rings[s["ring"]], of.rings[s["ring"] + 1]
            p, q = of.coords[first + s["edge"]], of.coords[first + (s["edge"] + 1) % (last - first)]
            assert p + s["t0"] * (q - p) == pytest.approx(start)


def test_simplification_faults_and_faces():
    line = zbr.Region([(0, 0), (5, 0.001), (10, 0), (10, 10)])
    assert len(line.simplify(0.01).coords) == 3
    (fault,) = [f for f in zbr.check([(0, 0), (4, 4), (4, 0), (0, 4)]) if f.kind == "crossing"]
    assert fault.place == (2.0, 2.0) and (fault.edge_a, fault.edge_b) == (0, 2)
    grid = [(x, y) for k in range(3) for x, y in ((k, 0), (k, 2), (0, k), (2, k))]
    assert zbr.faces(grid, np.arange(0, 13, 2)).area.tolist() == [1.0] * 4


numbers = st.one_of(hnp.arrays(st.sampled_from(["f8", "f4", "i4", "?", "U2"]), hnp.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=4)),
                    st.none(), st.text(), st.integers(), st.lists(st.one_of(st.floats(), st.lists(st.floats(), max_size=3)), max_size=4))
offsets = st.one_of(hnp.arrays(st.sampled_from(["i8", "u8", "i2", "f8"]), st.integers(0, 5), elements=st.integers(0, 12)),
                    st.lists(st.integers(-3, 2**70), max_size=3), numbers)


@given(st.one_of(numbers, hnp.arrays("f8", (12, 2))), offsets, offsets, offsets, st.booleans())
@settings(deadline=None, max_examples=300)
def test_senseless_arguments_are_errors(coords, ring_offsets, polygons, regions, valid):
    for make in (lambda: zbr.Region(coords, ring_offsets, polygons, valid=valid),
                 lambda: zbr.Regions(coords, ring_offsets, polygons, regions, valid=valid),
                 lambda: zbr.Region([(0, 0), (1, 0), (0, 1)]).locate(coords), lambda: zbr.check(coords, ring_offsets)):
        try:
            made = make()
        except (ValueError, TypeError):
            continue
        if isinstance(made, (zbr.Region, zbr.Regions)):
            zbr.union(made, made)
            repr(made)


@pytest.mark.parametrize(("call", "name"), [
    (lambda: zbr.Region([(0, 0), (1, np.nan), (1, 1)]), "coords: point 1"),
    (lambda: zbr.Region([(0, 0), (1, 2), (1, 1)], [0, 3, 2]), "rings: offset 2"),
    (lambda: zbr.Region([(0, 0), (1, 2), (1, 1)], [0, 3], [0, 2]), "polygons: the last"),
    (lambda: zbr.Region([(0, 0), (1, 2), (1, 1)], [1]), "rings: offsets are one more"),
    (lambda: zbr.Region([(0, 0)], fill="odd"), "fill: "),
    (lambda: zbr.union(zbr.Region(), zbr.Region(), tolerance=-1), "tolerance: "),
    (lambda: zbr.combine(zbr.Region(), zbr.Region(), ["or"]), "op: "),
    (lambda: zbr.Region.of(shapely.geometry.Point(0, 0)), "polygons"),
    (lambda: zbr.Region.of(b"\x01\x03\x00\x00\x00\xff\xff\xff\xff"), "WKB: "),
    (lambda: zbr.Region.of("POLYGON ((0 0"), "WKT:1: "),
    (lambda: zbr.Region.of("POLYGON ((0 0, 1 0, 1 x))"), "WKT:1: "),
    (lambda: zbr.Region.of("GEOMETRYCOLLECTION (POLYGON ((0 0, 1 0, 1 1)))"), "WKT: rings"),
    (lambda: zbr.Region.of("LINESTRING (0 0, 1 0, 1 1)"), "WKT: polygons are needed"),
])
def test_errors_name_the_argument(call, name):
    with pytest.raises(ValueError, match=name):
        call()


def test_arrays_are_views_that_outlive_their_region():
    region = zbr.Region([(0, 0), (4, 0), (0, 4)])
    coords, again = region.coords, region.coords
    assert np.shares_memory(coords, again) and not coords.flags.writeable
    given_array = np.array([(0.0, 0.0), (4.0, 0.0), (0.0, 4.0)])
    other = zbr.Region(given_array)
    given_array[:] = np.nan
    del region
    gc.collect()
    [zbr.Region(np.random.rand(50, 2)) for _ in range(50)]
    assert coords.tolist() == other.coords.tolist() == [[0, 0], [4, 0], [0, 4]]
    with pytest.raises(ValueError):
        coords[0] = 1


def test_nothing_is_kept_of_calls():
    a, b = stars(20, 4)[0], stars(20, 5)[0]

    def work():
        for _ in range(4000):
            result = a | b
            result.coords, result.rings, result.bounds, result.contains([(0, 0)])
            for bad in ("x", [1]):
                with pytest.raises(ValueError):
                    zbr.Region(bad)

    work()
    before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    work()
    assert resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before < 2000  # kilobytes; a leak of one record is 4000 of them


def test_threads_share_regions():
    a, b = stars(300, 6), stars(300, 7)
    expected = [x | y for x, y in zip(a, b)]
    with ThreadPoolExecutor(4) as pool:
        assert list(pool.map(lambda i: a[i] | b[i], range(300))) == expected
        assert len(set(pool.map(lambda _: a[0].locate(b.coords).tobytes(), range(8)))) == 1


def long_call(**options):
    """A ring that crosses itself a million times."""
    ring = np.random.default_rng(8).random((2500, 2))
    return zbr.Region(ring, **options)


def test_interrupts_and_progress_end_calls():
    with interrupted(after=0.15):
        for _ in range(100):
            long_call()
    shares = []
    with pytest.raises(zbr.Cancelled):
        long_call(progress=lambda share: shares.append(share) or False)
    with pytest.raises(ZeroDivisionError):
        long_call(progress=lambda share: 1 / 0)
    assert zbr.union(*stars(2, 9), progress=shares.append).area > 0
    assert shares[-1] == 1.0 and all(0 <= share <= 1 for share in shares)


def test_an_interpreter_may_end_while_work_goes_on():
    program = "import numpy, zbr; zbr.Region(numpy.random.rand(3000, 2), progress=lambda share: False)"
    done = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=60)
    assert done.returncode == 1 and done.stderr.strip().endswith("Cancelled: progress answered False")


def test_progress_is_told_while_the_share_stays():
    told = []
    long_call(progress=told.append)
    assert len(told) > len(set(told))
