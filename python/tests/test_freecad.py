"""The macro for FreeCAD, without its window: the lines are those that TechDraw's projection finds, and a page holds them."""

import json
import os
import shutil
import subprocess
import zipfile
from pathlib import Path
from xml.etree import ElementTree

import pytest
import zbr

MACRO = Path(__file__).resolve().parents[2] / "examples" / "freecad" / "draw_with_zbr.FCMacro"
FREECAD = shutil.which("freecadcmd") or shutil.which("FreeCADCmd")
pytestmark = pytest.mark.skipif(FREECAD is None, reason="FreeCAD is missing (Debian: freecad-python3)")

# Flat faces only, where facets are exact: a stepped plate with slanted prisms cut out.
SESSION = """
import json, runpy
import FreeCAD as App, Part, TechDraw
import numpy as np
macro = runpy.run_path(MACRO)
body = Part.makeBox(80, 50, 6).fuse(Part.makeBox(7, 50, 15)).removeSplitter()
for i in range(6):
    at = App.Vector(15 + 11 * i, 12 + 5 * i, -1)
    corners = [at + App.Rotation(App.Vector(0, 0, 1), 60 * k + 7).multVec(App.Vector(3, 0, 0)) for k in range(6)]
    body = body.cut(Part.Face(Part.makePolygon(corners + corners[:1])).extrude(App.Vector(1, 2, 20)))
document = App.newDocument("part")
part = document.addObject("Part::Feature", "Part")
part.Shape = body
Part.export([part], "part.v2.step")
lengths = []
for view in ("top", "iso", (3, 1, -2), (-1, 2, 1)):
    drawing = macro["mesh_of"]([part]).draw(view, hidden=False)
    seen = TechDraw.projectEx(body, App.Vector(*drawing.axes[2]))[0]
    ours = sum(float(np.hypot(*np.diff(line, axis=0).T).sum()) for line in drawing.polylines())
    lengths.append((ours, sum(edge.Length for edge in seen.Edges)))
json.dump(lengths, open("lengths.json", "w"))
"""


def run(folder, *files):
    environment = {**os.environ, "HOME": str(folder), "PYTHONPATH": str(Path(zbr.__file__).parents[1]), "QT_QPA_PLATFORM": "offscreen"}
    done = subprocess.run([FREECAD, *files], cwd=folder, env=environment, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=120)
    assert "Traceback" not in done.stdout + done.stderr, done.stdout + done.stderr


def test_the_macro_draws_what_techdraw_sees(tmp_path):
    (tmp_path / "session.py").write_text(f"MACRO = {str(MACRO)!r}\n{SESSION}")
    run(tmp_path, "session.py")
    for ours, theirs in json.loads((tmp_path / "lengths.json").read_text()):
        assert theirs > 400 and ours == pytest.approx(theirs, rel=1e-6)  # FreeCAD's facets have single precision
    run(tmp_path, "part.v2.step", MACRO)
    picture = (tmp_path / "part.v2.svg").read_text()
    assert all(f"<title>{name}</title>" in picture for name in ("part.v2", "front", "top", "left", "iso"))
    with zipfile.ZipFile(tmp_path / "part.v2-drawn.FCStd") as document:
        properties = ElementTree.fromstring(document.read("Document.xml"))
    (symbol,) = properties.findall(".//ObjectData/Object[@name='zbrDrawing']//Property[@name='Symbol']/String")
    assert symbol.get("value").split() == picture.split()
