"""Measures the package: calls on small regions, batches beside shapely, a mesh of a million triangles beside the tool.

usage: bench.py [TOOL]    Times are those of the processor, so that other programs disturb them little; the least of several runs.
"""

import subprocess
import sys
import tempfile
import time
from pathlib import Path
from resource import RUSAGE_CHILDREN, getrusage

import numpy as np
import shapely.geometry
import zbr

COUNT = 100_000
CORNERS = 12


def least(work, runs=5):
    """The least time of several runs, in seconds of the processor and of the clock."""
    times = []
    for _ in range(runs):
        start = time.process_time(), time.perf_counter()
        work()
        times.append((time.process_time() - start[0], time.perf_counter() - start[1]))
    return min(t[0] for t in times), min(t[1] for t in times)


def stars(seed):
    random = np.random.default_rng(seed)
    angles = np.linspace(0, 2 * np.pi, CORNERS + 1)[:-1]
    radii = random.uniform(0.5, 1.5, (COUNT, CORNERS, 1))
    return radii * np.stack((np.cos(angles), np.sin(angles)), 1) + random.uniform(-0.5, 0.5, (COUNT, 1, 2))


def calls():
    a = zbr.Region([(0, 0), (10, 0), (10, 10), (0, 10)])
    b = zbr.Region([(5, 3), (12, 3), (12, 5), (5, 5)])
    runs = range(50_000)
    cpu, _ = least(lambda: [zbr.union(a, b) for _ in runs])
    print(f"union of two rectangles: {cpu / len(runs) * 1e6:.2f} us a call")


def batches():
    arrays = stars(1), stars(2)
    offsets = np.arange(COUNT + 1)
    a, b = (zbr.Regions(x.reshape(-1, 2), offsets * CORNERS, offsets) for x in arrays)
    some = 5000
    shapes = [[shapely.geometry.Polygon(ring) for ring in x[:some]] for x in arrays]
    cpu, clock = least(lambda: zbr.intersection(a, b))
    _, two = least(lambda: zbr.intersection(a, b, threads=2))
    peer, _ = least(lambda: [p.intersection(q) for p, q in zip(*shapes)], 3)
    areas = [p.intersection(q).area for p, q in zip(*shapes)]
    assert np.allclose(zbr.intersection(a[:some], b[:some]).area, areas)
    print(f"{COUNT} pairs of {CORNERS}-gons: {cpu / COUNT * 1e6:.2f} us a pair, shapely {peer / some * 1e6:.2f},", end=" ")
    print(f"{peer / some * COUNT / cpu:.1f} times; two threads {clock / two:.2f} times as fast")


def torus(n=708):
    u, v = (x.ravel() for x in np.meshgrid(np.arange(n), np.arange(n)))
    a, b = u * 2 * np.pi / n, v * 2 * np.pi / n
    large, small = 10 + 0.7 * np.sin(9 * a), 3 + 0.6 * np.sin(7 * b + 3 * a)
    points = np.stack(((large + small * np.cos(b)) * np.cos(a), (large + small * np.cos(b)) * np.sin(a), small * np.sin(b)), -1)

    def place(i, j):
        return (u + i) % n + (v + j) % n * n

    corners = [place(0, 0), place(1, 0), place(1, 1), place(0, 1)]
    return points, np.concatenate([np.stack([corners[k] for k in c], 1) for c in ((0, 1, 2), (0, 2, 3))])


def meshes(tool):
    points, faces = torus()
    records = np.zeros(len(faces), dtype=[("normal", "<f4", 3), ("points", "<f4", (3, 3)), ("attribute", "<u2")])
    records["points"] = points[faces]
    with tempfile.TemporaryDirectory() as folder:
        file, picture = Path(folder) / "torus.stl", Path(folder) / "torus.svg"
        file.write_bytes(bytes(80) + np.uint32(len(faces)).tobytes() + records.tobytes())
        cpu, clock = least(lambda: zbr.read(file).draw("iso").save(picture), 3)
        print(f"{len(faces)} triangles, read, drawn and written: {cpu:.2f} s of the processor")
        if tool:
            drawn = picture.read_text()
            times = []
            for _ in range(3):
                before = getrusage(RUSAGE_CHILDREN)
                subprocess.run([tool, "draw", file, "--view", "iso", "--hidden", "dashed", "--jobs", "1", "-o", picture], check=True)
                after = getrusage(RUSAGE_CHILDREN)
                times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
            print(f"by the tool: {min(times):.2f} s;", "the same picture" if drawn == picture.read_text() else "another picture")


calls()
batches()
meshes(sys.argv[1] if len(sys.argv) > 1 else None)
