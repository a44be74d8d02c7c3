"""A mesh that another package made of triangles, drawn and laid out. Mesh.of() takes what trimesh, meshio, CadQuery and FreeCAD have.

Where trimesh is installed (Debian has no package of it) the mesh goes there and comes back; elsewhere SimpleNamespace stands for a
trimesh.Trimesh, of which vertices and faces are read.
"""

from types import SimpleNamespace

import numpy as np
import zbr

try:
    from trimesh import Trimesh
except ImportError:
    Trimesh = SimpleNamespace

t = np.linspace(0, 2 * np.pi, 65)[:-1]
ring = np.stack((np.cos(t), np.sin(t)), 1)
vertices = np.concatenate([np.column_stack((ring * r, np.full(64, z))) for r, z in ((30, 0), (30, 10), (12, 10), (12, 0))])
next_one = np.roll(np.arange(64), -1)
faces = []
for k in range(4):
    a, b = k * 64, (k + 1) % 4 * 64
    faces += [np.stack((a + np.arange(64), a + next_one, b + next_one), 1), np.stack((a + np.arange(64), b + next_one, b + np.arange(64)), 1)]
flange = zbr.Mesh.of(Trimesh(vertices=vertices, faces=np.concatenate(faces)))

print(flange.survey())
assert flange.survey().closed == 1
sheet = zbr.sheet(flange.draw_views(["front", "top", "iso"]), title="Flange", scale="1:1", paper="A3")
for name in ("flange.svg", "flange.dxf", "flange.pdf"):
    sheet.save(name)
assert abs(flange.outline("top").area - zbr.Region(ring * 30).area + zbr.Region(ring * 12).area) < 1e-6
