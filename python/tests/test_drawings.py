"""Meshes, drawings, sheets and files: against the tool to the bit, and where a picture can be foretold."""

import copy
import io
import json
import os
import pickle
import struct
import subprocess
import zipfile
from pathlib import Path

import ezdxf
import numpy as np
import pytest
import zbr
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp
from interrupts import interrupted

EXAMPLES = Path(__file__).resolve().parents[2] / "examples"
TOOL = os.environ.get("ZBR_TOOL", "")
CORNERS = np.array([(x, y, z) for x in (0, 1) for y in (0, 1) for z in (0, 1)], float)
SIDES = [(0, 1, 3, 2), (4, 6, 7, 5), (0, 4, 5, 1), (2, 3, 7, 6), (0, 2, 6, 4), (1, 5, 7, 3)]
FACES = [face for a, b, c, d in SIDES for face in ((a, b, c), (a, c, d))]


def cube(size=1.0, at=(0.0, 0.0, 0.0)):
    return zbr.Mesh(CORNERS * size + at, FACES, name="cube")


def test_a_cube():
    drawing = cube(2.0).draw("iso")
    length = {hidden: sum(np.hypot(*np.diff(line, axis=0).T).sum() for line in drawing.polylines(hidden)) for hidden in (False, True)}
    edge = 2.0 * np.sqrt(2.0 / 3.0)
    assert length[False] == pytest.approx(9 * edge) and length[True] == pytest.approx(3 * edge)
    assert {zbr.KINDS[kind] for kind in drawing.kind} == {"crease"}
    assert len(drawing.polylines(kind="silhouette")) == 0
    assert len(cube(2.0).draw("iso", hidden=False).polylines(True)) == 0
    triangles, edges = drawing.edges.T  # each line is where the mesh has its edges
    faces, axes = np.array(FACES), drawing.axes
    for i in range(len(drawing)):
        span = slice(drawing.edge_offsets[i], drawing.edge_offsets[i + 1])
        ends = faces[triangles[span][:, None], (edges[span][:, None] + [0, 1]) % 3]
        seen = (2.0 * CORNERS[ends.ravel()]) @ axes[:2].T - drawing.middle[:2]
        for point in drawing.coords[drawing.lines[i] : drawing.lines[i + 1]]:
            assert np.abs(seen - point).max(axis=1).min() < 1e-9
    assert cube(2.0).survey() == zbr.Survey(1, 1, 0, 0, 0, 0, 0, 0, 0)
    picked = drawing.pick([(0.0, 0.0), (9.0, 9.0)])
    assert picked.shell.tolist() == [0, -1] and picked.height[0] == pytest.approx(4.0 / np.sqrt(3.0)) and np.isnan(picked.height[1])


def test_assemblies_and_outlines():
    two = zbr.Mesh.join([cube(1.0), cube(1.0, (5.0, 0.0, 0.0))])
    assert len(two) == 24 and two.outline("top").area == pytest.approx(2.0)
    front = two.draw("right", outlines=True)
    assert sorted(outline.area for outline in front.outlines) == pytest.approx([0.0, 1.0])  # one hides the other
    assert set(two.draw("iso").shell.tolist()) == {0, 1}
    for points in [line["points"] for line in json.loads(front.json())["views"][0]["polylines"]], [two.outline("right").coords]:
        assert np.concatenate(points).min(axis=0) == pytest.approx((front.coords + front.origin).min(axis=0))
    assert b"cube-2" in two.draw("top", outlines=True).dxf()


def test_shells_that_are_given():
    six = [k // 2 + 7 for k in range(12)]  # each face of the cube by itself
    apart = zbr.Mesh(CORNERS, FACES, shells=six)
    assert apart.shells.tolist() == six and cube().shells is None
    assert apart.survey() == zbr.Survey(6, 0, 24, 0, 0, 0, 0, 0, 0)
    assert {zbr.KINDS[kind] for kind in apart.draw("iso").kind} == {"border"}
    assert zbr.Mesh.join([apart, apart]).survey().shells == 12
    again = pickle.loads(pickle.dumps(apart))
    assert again.shells.tolist() == six and again.draw("iso").svg() == apart.draw("iso").svg()
    for wrong in (six[1:], [-1] * 12, [0.5] * 12, [six]):
        with pytest.raises((ValueError, TypeError), match="^shells: "):
            zbr.Mesh(CORNERS, FACES, shells=wrong)
    with pytest.raises(zbr.Failure, match="shells"):
        zbr.Mesh.join([apart, cube()])


@pytest.mark.parametrize("shells", [None, [7] * 12])
def test_outlines_know_their_edges(shells):
    two = zbr.Mesh.join([zbr.Mesh(CORNERS, FACES, shells=shells), zbr.Mesh(CORNERS + (0.5, 3.0, 0.25), FACES, shells=shells)])
    for view in ("right", "iso", ((1, 2, -3), (0, 0, 1))):
        axes = two.draw(view).axes[:2]
        for k, traced in enumerate(two.traced_outlines(view)):
            ring = traced.region.coords
            assert repr(traced).startswith(f"<zbr.TracedOutline: points {len(ring)}, pieces ")
            assert traced.region == two.traced_outlines(view)[k].region and len(traced.offsets) == len(ring) + 1
            assert set(traced.shell) == {k} and set(traced.triangle // 12) == {k}
            starts = two.points[two.faces[traced.triangle, traced.edge]] @ axes.T
            ends = two.points[two.faces[traced.triangle, (traced.edge + 1) % 3]] @ axes.T
            along = [starts + (ends - starts) * t[:, None] for t in traced.along.T]  # where pieces begin and end
            for i, p in enumerate(ring):
                span, q = slice(*traced.offsets[i : i + 2]), ring[(i + 1) % len(ring)]
                assert np.hypot(*(along[0][span] - p).T).min() < 1e-9 and np.hypot(*(along[1][span] - q).T).min() < 1e-9
    assert sum(outline.region.area for outline in two.traced_outlines("top")) == pytest.approx(2.0)


def test_sections():
    section = zbr.Mesh.join([cube(2.0), cube(1.0, (5.0, 0.0, 0.0))]).section("Y=0.5")
    assert sorted(face.area for face in section.section_faces) == pytest.approx([1.0, 4.0])
    assert section.polylines(kind="cut") and section.name == "A-A"
    cube_of_two = cube(2.0)
    views = cube_of_two.draw_views(["front", "X=1", "Z=0.5..1"])
    assert [view.name for view in views] == ["front", "A-A", "B-B"] and "A-A" in zbr.sheet(views).svg()
    with pytest.warns(UserWarning, match="^A-A: none of the views shows"):
        zbr.sheet(cube_of_two.draw_views(["iso", "X=1"]))
    with pytest.warns(UserWarning, match="^title block: the field Title has no room"):
        assert zbr.sheet([cube_of_two.draw()], title="W" * 400, number="7").shortened == ("Title",)
    for wrong in ({"weld": 0.2}, {"crease": 181}, {"weld": -1}):
        with pytest.raises(ValueError, match=f"^{next(iter(wrong))}: a number from 0 to "):
            cube().draw("top", **wrong)
    with pytest.raises(ValueError, match="^view: "):
        cube().section("X=")
    with pytest.raises(ValueError, match="^centre_lines: perspectives have none$"):
        cube().draw({"eye": (9, -8, 7)}, centre_lines=True)
    apart = zbr.sheet([views[0], cube_of_two.section("X=1"), cube_of_two.section("Z=0.5")]).svg()
    assert "A\u2013A" in apart and "B\u2013B" in apart
    assert all(f"{letter}\u2013{letter}" in zbr.sheet([*views, cube_of_two.section("X=1.5")]).svg() for letter in "ABC")


def test_what_has_no_lines_cannot_be_made():
    for kind in (zbr.Drawing, zbr.Sheet):
        with pytest.raises(TypeError, match=kind.__name__):
            kind()
    two = zbr.Mesh.join([cube(), cube(1.0, (3.0, 0.0, 0.0))])
    with pytest.raises(ValueError, match="^drawings: "):
        zbr.sheet([cube().draw("front", outlines=True), two.draw("top", outlines=True)])


def test_one_view_of_several_is_that_view():
    mesh = zbr.read(EXAMPLES / "housing.obj")
    for look, name in (((0, 0, -2), "top"), ((0, 0, 1), "bottom")):
        assert mesh.draw(look).coords.tobytes() == mesh.draw(name).coords.tobytes()
    together = mesh.draw_views(["front", "iso", ((1, 2, -1), (0, 0, 1))], threads=2)
    for view, drawing in zip(["front", "iso", (1, 2, -1)], together):
        alone = mesh.draw(view)
        assert alone.coords.tobytes() == drawing.coords.tobytes() and alone.lines.tolist() == drawing.lines.tolist()


@pytest.mark.skipif(not os.access(TOOL, os.X_OK), reason="ZBR_TOOL names no tool")
def test_results_are_those_of_the_tool(tmp_path):
    mesh = EXAMPLES / "housing.obj"
    subprocess.run([TOOL, "draw", mesh, "--view", "iso", "--hidden", "dashed", "-o", tmp_path / "a.json", "-o", tmp_path / "a.svg"], check=True)
    drawing = zbr.read(mesh).draw("iso")
    assert drawing.svg() == (tmp_path / "a.svg").read_text()
    assert drawing.sheet().json() == (tmp_path / "a.json").read_text()
    subprocess.run([TOOL, "draw", mesh, "--eye", "300,-250,200", "--fov", "25", "--hidden", "dashed", "-o", tmp_path / "e.svg"], check=True)
    eye = zbr.read(mesh).draw({"eye": (300, -250, 200), "fov": 25})
    assert eye.svg() == (tmp_path / "e.svg").read_text()
    for model, options, made in (
        ("assembly.stl", "--look 1,1,-0.9 --contact 0", lambda mesh: mesh.draw((1, 1, -0.9), hidden="principal", contact=0)),
        ("cover.obj", "--view dimetric --curves off --silhouettes smooth", lambda mesh: mesh.draw("dimetric", hidden="none", curves=False, silhouettes="smooth")),
        ("cover.obj", "--tangent layer --hidden layer", lambda mesh: mesh.draw(tangents=True).sheet(tangent="layer", hidden="layer")),
        ("housing.obj", "--view front,iso --axes y", lambda mesh: zbr.sheet(mesh.draw_views(["front", "iso"], hidden="principal", axes="y"))),
    ):
        subprocess.run([TOOL, "draw", EXAMPLES / model, *options.split(), "-o", tmp_path / "o.svg"], check=True)
        assert made(zbr.read(EXAMPLES / model)).svg() == (tmp_path / "o.svg").read_text(), options
    random = np.random.default_rng(3)
    a, b = (zbr.Region(random.random((60, 2))) for _ in range(2))
    zbr.write(tmp_path / "a.wkt", a)
    zbr.write(tmp_path / "b.wkt", b)
    subprocess.run([TOOL, "bool", "--op", "a-b", "a.wkt", "b.wkt", "-o", "c.wkt"], cwd=tmp_path, check=True)
    expected = zbr.Region.of((tmp_path / "c.wkt").read_text())
    assert sorted(map(tuple, (a - b).coords)) == sorted(map(tuple, expected.coords))


def test_sheets_and_files(tmp_path):
    mesh = zbr.read(EXAMPLES / "housing.obj")
    views = mesh.draw_views(["front", "top", "left", "iso"])
    sheet = zbr.sheet(views, title="Housing", paper="A3", scale="1:2")
    assert sheet.paper == (420.0, 297.0) and sheet.scale == 0.5
    for name in ("s.svg", "s.dxf", "s.pdf", "s.json"):
        sheet.save(tmp_path / name)
    assert len(json.loads((tmp_path / "s.json").read_text())["views"]) == 4
    assert (tmp_path / "s.pdf").read_bytes().startswith(b"%PDF-") and (tmp_path / "s.svg").read_text() == sheet.svg()
    document = ezdxf.readfile(tmp_path / "s.dxf")
    assert {"VISIBLE", "HIDDEN"} <= {layer.dxf.name for layer in document.layers} and not document.audit().errors
    assert sorted(p.name for p in tmp_path.iterdir()) == ["s.dxf", "s.json", "s.pdf", "s.svg"]
    with pytest.raises(ValueError, match="^format: "):
        sheet.save(tmp_path / "s.png")
    with pytest.raises(FileNotFoundError):
        sheet.save(tmp_path / "nowhere" / "s.svg")


@pytest.mark.parametrize("suffix", ["dxf", "geojson", "wkt", "txt"])
def test_regions_through_files(tmp_path, suffix):
    region = zbr.Region([(0.1, 0), (9, 0), (9, 1 / 3), (0, 9), (1, 1), (1, 2), (2, 1)], [0, 4, 7])
    zbr.write(tmp_path / f"r.{suffix}", region, **({} if suffix == "wkt" else {"unit": "mm"}))
    again = zbr.read(tmp_path / f"r.{suffix}")
    assert sorted(map(tuple, again.coords)) == sorted(map(tuple, region.coords))
    data = (tmp_path / f"r.{suffix}").read_bytes()
    assert zbr.read(data=data, format={"txt": "text"}.get(suffix, suffix)) == again


def test_drawings_of_others():
    document = ezdxf.new()
    document.modelspace().add_circle((0, 0), 2)
    document.modelspace().add_lwpolyline([(5, 0), (9, 0), (9, 4), (5, 4)], close=True, dxfattribs={"layer": "square"})
    text = io.StringIO()
    document.write(text)
    data = text.getvalue().encode()
    with pytest.warns(UserWarning, match="do not close"):
        assert not zbr.read("x.wkt", data=b"CURVEPOLYGON ((0 0, 1 0, 1 1))")
    assert zbr.read("x.dxf", data=data).area == pytest.approx(16 + 4 * np.pi, rel=1e-2)
    assert zbr.read("x.dxf", data=data, layers=["square"]).area == 16
    assert zbr.read("x.dxf", data=data, deviation=1e-6, layers=["0"]).area == pytest.approx(4 * np.pi, rel=1e-5)


def test_3mf_is_read(tmp_path):
    vertices = "".join('<vertex x="%g" y="%g" z="%g"/>' % tuple(p) for p in CORNERS)
    triangles = "".join('<triangle v1="%d" v2="%d" v3="%d"/>' % face for face in FACES)
    with zipfile.ZipFile(tmp_path / "Cube.3MF", "w", zipfile.ZIP_DEFLATED) as archive:
        archive.writestr("3D/3dmodel.model", f"""<model unit="inch" xmlns="http://schemas.microsoft.com/3dmanufacturing/core/2015/02"><resources>
            <object id="7"><mesh><vertices>{vertices}</vertices><triangles>{triangles}</triangles></mesh></object></resources>
            <build><item objectid="7" transform="2 0 0 0 2 0 0 0 2 1 2 3"/></build></model>""")
    expected, data = cube(2.0, (1.0, 2.0, 3.0)), (tmp_path / "Cube.3MF").read_bytes()
    for mesh in zbr.read(tmp_path / "Cube.3MF"), zbr.read("memory", data=data, format="3mf"):
        assert np.allclose(mesh.points, 25.4 * expected.points) and np.array_equal(mesh.faces, expected.faces)  # in millimetres
    with pytest.raises(zbr.Failure, match=r"^x\.3mf: "):
        zbr.read("x.3mf", data=data[:-30])


@pytest.mark.parametrize(("file", "data", "place"), [
    ("bad.obj", b"v 0 0 0\nv x 0 0\n", ("bad.obj", 2)),
    ("bad.stl", b"solid\nfacet", ("bad.stl", None)),
    ("bad.dxf", b"0\nSECTION\n2\n", ("bad.dxf", None)),
    ("bad.wkt", b"POLYGON ((0 0, 1 1", ("bad.wkt", 1)),
])
def test_failures_tell_the_place(file, data, place):
    with pytest.raises(zbr.Failure) as failure:
        zbr.read(file, data=data, format=file[4:])
    assert failure.value.file == place[0] and failure.value.cause and place[1] in (None, failure.value.line)
    with pytest.raises(zbr.Failure, match="No such file"):
        zbr.read("/nowhere/" + file)
    with pytest.raises(zbr.Failure, match="No such file") as failure:  # a name that is no UTF-8
        zbr.read(os.fsdecode(b"/nowhere/\xff" + file.encode()))
    assert os.fsencode(failure.value.file) == b"/nowhere/\xff" + file.encode()
    with pytest.raises(zbr.UnknownFormat, match="format=, one of stl,.* 3mf, dxf,") as failure:
        zbr.read("x.unknown", data=b"?")
    assert failure.value.file == "x.unknown"


@given(hnp.arrays(st.sampled_from(["f8", "f4", "i8"]), st.tuples(st.integers(0, 6), st.integers(2, 4))),
       hnp.arrays(st.sampled_from(["i8", "u4", "f8"]), st.tuples(st.integers(0, 6), st.integers(2, 4)), elements=st.integers(0, 7)),
       st.one_of(st.none(), st.text(), st.lists(st.floats(), max_size=4)))
@settings(deadline=None, max_examples=150)
def test_senseless_meshes_are_errors(points, faces, view):
    try:
        mesh = zbr.Mesh(points, faces)
        mesh.draw("iso")
        mesh.draw(view)
    except (ValueError, TypeError):
        pass


def test_pickles_are_equal_and_share_their_mesh():
    two = zbr.Mesh.join([zbr.read(EXAMPLES / "housing.obj"), cube(30.0, (200.0, 0.0, 0.0))])
    views = two.draw_views(["front", "X=10", "iso", {"eye": (500, -400, 300)}], crease=20, centre_lines=True, outlines=True)
    again = pickle.loads(pickle.dumps(views))
    assert all(view.mesh is again[0].mesh for view in again) and views[0].mesh is two
    for ours, theirs in zip(views, again):
        assert ours.sheet().json() == theirs.sheet().json() and ours.edges.tobytes() == theirs.edges.tobytes()
        assert ours.outlines == theirs.outlines and ours.section_faces == theirs.section_faces
    assert zbr.sheet(again).svg() == zbr.sheet(views).svg() == zbr.sheet([pickle.loads(pickle.dumps(view)) for view in views]).svg()
    assert again[0].pick([(0, 0), (200, 0)]).triangle.tolist() == views[0].pick([(0, 0), (200, 0)]).triangle.tolist()
    other = pickle.loads(pickle.dumps(two))
    assert other.draw("iso").sheet().dxf() == two.draw("iso").sheet().dxf() and other.name == two.name
    assert copy.copy(two) is copy.deepcopy(two) is two and copy.deepcopy(views)[0] is views[0]
    flat = zbr.Mesh([(0, 0, 0)] * 3, [(0, 1, 2)]).draw()  # has no extent
    assert len(pickle.loads(pickle.dumps(flat))) == len(flat) == 0
    restore, (mesh, data) = views[1].__reduce__()
    for bad in (b"", data[:-1], data[:40], data + b"x", b"x" + data[1:], "x"):
        with pytest.raises((ValueError, TypeError), match="^pickle: "):
            restore(mesh, bad)


def test_objects_of_a_pickle_are_in_order():
    restore, (points, faces, data) = zbr.Mesh.join([cube(), zbr.Mesh(CORNERS, [])]).__reduce__()
    assert struct.pack("<II", 8, 12) in data and len(restore(points, faces, data)) == 12
    for wrong in ((4000000, 13), (17, 12), (8, 13)):
        with pytest.raises(ValueError, match="^pickle: "):
            restore(points, faces, data.replace(struct.pack("<II", 8, 12), struct.pack("<II", *wrong))).draw("top")


def test_damaged_pickles_are_refused_or_harmless():
    """Eight bytes of a drawing are something else: what is still taken can be drawn."""
    random, taken = np.random.default_rng(11), 0
    views = zbr.read(EXAMPLES / "housing.obj").draw_views(["iso", "X=10", {"eye": (500, -400, 300)}], centre_lines=True, outlines=True)
    numbers = [struct.pack("<Q", n) for n in (0, 1, 2**31, 2**63, 2**64 - 1)] + [struct.pack("<d", x) for x in (np.nan, np.inf, -1e300, 1e60, 1e-60)]
    for k in range(600):
        restore, (mesh, data) = views[k % 3].__reduce__()
        at = int(random.integers(len(data) - 7))
        number = numbers[k % len(numbers)] if k % 2 else random.bytes(8)
        try:
            view = restore(mesh, data[:at] + number + data[at + 8 :])
            taken += 1
            sheet = view.sheet()
            assert sheet.svg() and sheet.pdf() and sheet.json() and sheet.dxf()
        except ValueError:
            pass
    assert 100 < taken < 600


def test_arrays_outlive_their_drawing_and_its_mesh():
    mesh = cube(3.0)
    drawing = mesh.draw()
    expected = mesh.points.tolist(), drawing.coords.tolist(), drawing.lines.tolist()
    arrays = mesh.points, drawing.coords, drawing.lines
    del mesh, drawing
    [cube(k).draw() for k in range(1, 20)]
    assert tuple(array.tolist() for array in arrays) == expected


def test_drawings_can_be_interrupted():
    side = np.arange(400)
    x, y = np.meshgrid(side, side)
    points = np.stack((x.ravel(), y.ravel(), np.random.default_rng(1).random(x.size) * 9), 1)
    corner = (x[:-1, :-1] + 400 * y[:-1, :-1]).ravel()
    faces = np.concatenate([np.stack((corner, corner + 1, corner + 401), 1), np.stack((corner, corner + 401, corner + 400), 1)])
    mesh = zbr.Mesh(points, faces)
    with interrupted(after=0.1):
        for _ in range(20):
            mesh.draw_views(["iso", "front"])
    with pytest.raises(zbr.Cancelled):
        mesh.draw("iso", progress=lambda share: share < 0.3)
    assert len(cube().draw(progress=lambda share: None)) > 0
