"""Round bodies made of formulas, drawn twice: with the silhouettes of their facets, which zigzag and end in crumbs, and with those of the
surfaces that the facets stand for. Writes silhouettes_facets.svg and silhouettes_smooth.svg."""

import numpy as np
import zbr

LOOK = (0.12, 1.0, -0.55)


def grid(points, wraps):
    """Triangles over an (n, m, 3) grid that joins up along its second direction and, if it wraps, along the first."""
    n, m = points.shape[:2]
    i, j = np.meshgrid(np.arange(n if wraps else n - 1), np.arange(m), indexing="ij")
    a, b, c, d = i * m + j, (i + 1) % n * m + j, (i + 1) % n * m + (j + 1) % m, i * m + (j + 1) % m
    return zbr.Mesh(points.reshape(-1, 3), np.concatenate([np.stack((a, b, c), -1), np.stack((a, c, d), -1)]).reshape(-1, 3))


def revolved(profile, sides=48):
    """A body between the ends of a profile of radii and heights, on the axis z."""
    t = np.linspace(0, 2 * np.pi, sides, endpoint=False)
    r, z = np.asarray(profile, float).T[:, :, None]
    return grid(np.stack((r * np.sin(t), r * np.cos(t), z + 0 * t), -1), wraps=False)


def tube(path, radii, sides=24):
    """A pipe along a path (n, 2) in the plane of x and z, closed at its ends."""
    path, radii = np.asarray(path, float), np.asarray(radii, float)
    along = np.gradient(path, axis=0)
    along /= np.linalg.norm(along, axis=1)[:, None]
    t = np.linspace(0, 2 * np.pi, sides, endpoint=False)
    x, z, u, w, r = (column[:, None] for column in (*path.T, -along[:, 1], along[:, 0], radii))
    return grid(np.stack((x + r * u * np.cos(t), r * np.sin(t) + 0 * x, z + r * w * np.cos(t)), -1), wraps=False)


def curve(points, count):
    """A curve (count, 2) through points: their polynomial of the degree that there is."""
    at = np.linspace(0, 1, len(points))
    return np.stack([np.polyval(np.polyfit(at, column, len(points) - 1), np.linspace(0, 1, count)) for column in np.transpose(points)], -1)


def torus(n=90, m=36):
    t, s = np.meshgrid(np.linspace(0, 2 * np.pi, n, endpoint=False), np.linspace(0, 2 * np.pi, m, endpoint=False), indexing="ij")
    r = 1 + 0.4 * np.cos(s)
    return grid(np.stack((r * np.cos(t), r * np.sin(t), 0.4 * np.sin(s)), -1), wraps=True)


def sphere(steps=24):
    t = np.linspace(-np.pi / 2, np.pi / 2, steps + 1)
    return revolved(np.stack((np.where(abs(t) < 1.57, np.cos(t), 0), np.sin(t)), -1))


def pot():
    t = np.linspace(0, 1, 30)
    belly = np.stack((np.sin(np.pi * (0.08 + 0.87 * t)) ** 0.7, 1.4 * t - 0.7), -1)
    top = belly[-1, 1] + 0.1
    knob = np.stack((0.14 * np.sin(np.pi * np.linspace(0.2, 1, 12)), top - 0.14 * np.cos(np.pi * np.linspace(0.2, 1, 12))), -1)
    knob[-1, 0] = 0
    body = revolved(np.concatenate(([(0, belly[0, 1])], belly, knob)))
    ends = [0, *[1] * 28, 0]
    spout = tube(curve([(0.5, -0.4), (1.1, -0.1), (1.3, 0.4), (1.65, 0.75)], 30), (0.26 - 0.16 * t) * ends)
    handle = tube(curve([(-0.6, 0.45), (-1.35, 0.65), (-1.6, 0.1), (-1.3, -0.35), (-0.6, -0.45)], 30), 0.1 + 0 * t * ends)
    return zbr.Mesh.join([body, spout, handle])


def rabbit(n=120, m=160):
    """A ball with bumps: head, ears, cheeks, haunches, paws."""
    s, t = np.meshgrid(np.linspace(0, np.pi, n), np.linspace(0, 2 * np.pi, m, endpoint=False), indexing="ij")
    d = np.stack((np.sin(s) * np.sin(t), np.sin(s) * np.cos(t), np.cos(s)), -1)
    r = np.full(s.shape, 0.8)
    sides = [((x * a, b, c), *bump) for x in (-1, 1) for a, b, c, *bump in (
        (0.36, -0.05, 1, 1.3, 0.19), (0.75, -0.45, -0.5, 0.35, 0.35), (0.28, -0.8, -0.45, 0.45, 0.2), (0.2, -1, 0.75, 0.25, 0.15))]
    for toward, height, width in [((0, -0.4, 0.75), 0.6, 0.4), *sides]:
        toward = np.array(toward) / np.linalg.norm(toward)
        r = r + height * np.exp((d @ toward - 1) / width**2)
    return grid(d * r[..., None], wraps=False)


row = [zbr.Mesh(body.points + (x, 0, 0), body.faces) for x, body in zip((0, 2.9, 6, 9.6), (torus(), sphere(), pot(), rabbit()))]
bodies = zbr.Mesh.join(row)
pieces = {}
for kind in ("facets", "smooth"):
    drawing = bodies.draw(LOOK, hidden=False, silhouettes=kind, weld=1e-9)
    drawing.save(f"silhouettes_{kind}.svg", paper="700x280")
    pieces[kind] = len(drawing.polylines(kind="silhouette"))
    print(f"{kind}: {pieces[kind]} pieces of silhouettes, {len(drawing.coords)} points")
assert pieces["smooth"] < pieces["facets"]
