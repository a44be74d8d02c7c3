"""Wrong arguments of public calls: errors of the usual kinds, which begin with the argument's name."""

import re

import numpy as np
import pytest
import zbr
from zbr._options import DrawOptions, SheetOptions

RING = [(0, 0), (4, 0), (0, 4)]
REGION = zbr.Region(RING)
MESH = zbr.Mesh([(0, 0, 0), (4, 0, 0), (0, 4, 0)], [(0, 1, 2)])
DRAWING = MESH.draw("top")
WRONG = [None, "x", b"x", -1, 2**70, np.nan, 1j, [], ["a"], [[1, 2], [3]], np.array([None]), np.zeros((2, 2, 2)), [(1, np.nan)], {}, object()]


def read_triangle(**options):
    return zbr.read("x.wkt", data=b"POLYGON ((0 0, 1 0, 0 1))", **options)


OPTIONS = {
    zbr.Region: ((RING,), "rings polygons fill valid tolerance progress"),
    zbr.Regions: ((RING, [0, 3], [0, 1]), "regions fill valid threads progress"),
    zbr.Mesh: (([(0, 0, 0)], []), "y_up name"),
    zbr.union: ((REGION, REGION), "tolerance sources threads progress"),
    zbr.check: ((RING,), "rings most"),
    zbr.make_valid: ((RING,), "rings fill tolerance progress"),
    zbr.faces: ((RING,), "lines tolerance"),
    REGION.simplify: ((), "tolerance"),
    REGION.svg: ((), "width"),
    MESH.draw: ((), " ".join(["view", *DrawOptions.__annotations__])),
    MESH.outline: ((), "view weld threads"),
    DRAWING.polylines: ((), "kind"),
    zbr.sheet: (([DRAWING],), " ".join(SheetOptions.__annotations__)),
    zbr.Regions.of([REGION]).contains: ((), "points"),
    read_triangle: ((), "deviation join fill layers"),
}
FIRST = [zbr.Region, zbr.Region.of, zbr.Regions.of, zbr.unite, zbr.check, zbr.faces, REGION.contains, MESH.pick, zbr.Mesh.of, zbr.Mesh.join,
         MESH.draw_views, DRAWING.pick, zbr.sheet, DRAWING.save, lambda x: zbr.union(x, REGION), lambda x: zbr.combine(REGION, REGION, x),
         lambda x: zbr.coverage([REGION], x), lambda x: zbr.write(x, REGION), lambda x: zbr.write("nowhere/x.wkt", x), lambda x: zbr.read("x", data=x),
         lambda x: zbr.Region.of({"type": "Polygon", "coordinates": x}), lambda x: MESH.draw({"eye": x}), lambda x: zbr.Mesh(x, [(0, 1, 2)])]


def is_refused(call, names):
    try:
        call()
    except (ValueError, TypeError, OSError) as error:
        assert re.match(names, str(error)), repr(error)
        return True
    return False


@pytest.mark.filterwarnings("ignore:.*do not close")
@pytest.mark.parametrize(("function", "name"), [(f, name) for f, (_, names) in OPTIONS.items() for name in names.split()])
def test_wrong_arguments_are_named(function, name):
    args = OPTIONS[function][0]
    refused = [is_refused(lambda: function(*args, **{name: wrong}), rf"{name}\b.*: ") for wrong in WRONG]
    assert any(refused)


def test_wrong_first_arguments_are_named(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    for function in FIRST:
        refused = [is_refused(lambda: function(wrong), r"[\w\[\]\"]+( \d+)?:|\[Errno") for wrong in WRONG]
        assert sum(refused) > len(WRONG) / 3
    assert any(is_refused(lambda: zbr.read("x.wkt", data=b"", format=wrong), r"format: |x.wkt:") for wrong in WRONG)


def test_unknown_words_are_told_with_those_there_are():
    for option, known in {"hidden": "none, principal and all", "silhouettes": "facets and smooth", "axes": "z and y"}.items():
        with pytest.raises(ValueError, match=f"^{option}: one of {known} is needed$"):
            MESH.draw(**{option: "unknown"})
    with pytest.raises(ValueError, match="^contact: a finite number of 0 or more is needed$"):
        MESH.draw(contact=-1)
    with pytest.raises(TypeError, match="^file: "):
        zbr.read()


def test_arguments_are_looked_at_before_work():
    with pytest.raises(ValueError, match="^points: "):
        zbr.Mesh([(0, 0, 0)], []).pick("x")


@pytest.mark.parametrize("error", [KeyboardInterrupt, MemoryError])
def test_what_is_no_fault_of_an_argument_comes_through(error):
    def fail(self):
        raise error

    trap = type("Trap", (), dict.fromkeys(("__bool__", "__float__", "__index__", "__iter__", "__fspath__"), fail))()
    for call in (lambda: MESH.draw(hidden=trap), lambda: MESH.draw(crease=trap), lambda: MESH.draw(threads=trap), lambda: zbr.sheet(trap),
                 lambda: MESH.draw({"eye": (9, 9, 9), "fov": trap}), lambda: zbr.read(trap)):
        with pytest.raises(error):
            call()


def test_texts_and_widths():
    for call in (lambda: zbr.sheet([DRAWING], title="\udc80"), lambda: MESH.draw("\udc80")):
        with pytest.raises(ValueError, match="^(title|view): "):
            call()
    assert REGION.svg(width=np.int64(400)) == REGION.svg(width=400)
    with pytest.raises(ValueError, match="^width: "):
        REGION.svg(width=np.inf)


def test_shapely_and_places_where_regions_are_taken(tmp_path):
    """What has rings is taken as it is, closed or not; entries and masks that make no sense are named."""
    polygon = REGION.to_shapely()
    bow = type("Bow", (), {"__geo_interface__": {"type": "Polygon", "coordinates": [[(0, 0), (4, 4), (4, 0), (0, 5), (0, 0)]]}})()
    assert zbr.check(polygon) == [] and [fault.kind for fault in zbr.check(bow)] == ["crossing"]
    for regions in (polygon, {"a": polygon}):
        zbr.write(tmp_path / "x.wkt", regions)
        assert zbr.read(tmp_path / "x.wkt").area == REGION.area
    with pytest.raises(ValueError, match="^format: one of dxf, geojson, wkt and text is"):
        zbr.write("x.foo", REGION)
    with pytest.raises((TypeError, ValueError), match=r"^regions\[1\]: "):
        zbr.Regions.of([polygon, None])
    many = zbr.Regions.of([zbr.Region([(0, 0), (k, 0), (0, k)]) for k in range(1, 5)])
    mask = many.area > 2
    assert many[mask].area.tolist() == many[[2, -1]].area.tolist() == [4.5, 8.0] and len(many[[]]) == 0
    for wrong in (mask[:2], [[0]], [9]):
        with pytest.raises(IndexError):
            many[wrong]
    with pytest.warns(UserWarning, match="cuts nothing"):
        MESH.section("X=1000")
