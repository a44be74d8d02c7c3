"""The fleet: a killed worker, a poisoned file and a folder that cannot be written to lose nothing else."""

import contextlib
import os
import resource
import shutil
import signal
import subprocess
import sys
import threading
from pathlib import Path

import numpy as np
import pytest
import zbr

distributed = pytest.importorskip("distributed")
EXAMPLES = Path(__file__).resolve().parents[2] / "examples"
sys.path.insert(0, str(EXAMPLES / "fleet"))

import draw_fleet  # noqa: E402
import overlay_tiles  # noqa: E402


@pytest.fixture  # of its own for each test, as one kills a worker
def client():
    os.environ["PYTHONPATH"] = str(EXAMPLES / "fleet")  # for workers to find the functions
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        yield client


def test_what_fails_is_told_and_the_rest_is_drawn(client, tmp_path):
    models, sheets = tmp_path / "models", tmp_path / "sheets"
    (models / "closed").mkdir(parents=True)
    for k in range(12):
        shutil.copy(EXAMPLES / "house.obj", models / f"{k}.obj")
    shutil.copy(EXAMPLES / "house.obj", models / "closed" / "x.obj")
    (models / "poisoned.stl").write_bytes(b"solid\nfacet normal 0 0")
    (models / "wrong.obj").write_text("v 0 0 0\nv 1 nan 0\nf 1 2 9\n")
    sheets.mkdir()
    (sheets / "closed").write_text("no folder")
    victim = next(iter(client.run(os.getpid).values()))
    threading.Timer(0.3, os.kill, (victim, signal.SIGKILL)).start()
    failed = draw_fleet.run(client, draw_fleet.missing(models, sheets), ["iso"], 60)
    assert {model.name for model in failed} == {"poisoned.stl", "wrong.obj", "x.obj"} and all(failed.values())
    (sheets / "closed").unlink()
    failed = draw_fleet.run(client, draw_fleet.missing(models, sheets), ["iso"], 60)
    assert {model.name for model in failed} == {"poisoned.stl", "wrong.obj"}
    assert set(draw_fleet.missing(models, sheets).values()) == set(failed)
    assert len(list(sheets.rglob("*.svg"))) == 13 and len(list(sheets.rglob("*"))) == 14
    (sheets / "3.obj.svg").unlink()
    assert [path.name for path in draw_fleet.missing(models, sheets).values()] == ["3.obj", "poisoned.stl", "wrong.obj"]


def fill_disk(most):
    """Files can have this many bytes at most, which ends writing as a full disk does."""
    signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (most, resource.getrlimit(resource.RLIMIT_FSIZE)[1]))


def test_a_full_disk_leaves_no_half_sheets(client, tmp_path):
    models, sheets = tmp_path / "models", tmp_path / "sheets"
    models.mkdir()
    for k in range(3):
        shutil.copy(EXAMPLES / "house.obj", models / f"{k}.obj")
    client.run(fill_disk, 2000)
    failed = draw_fleet.run(client, draw_fleet.missing(models, sheets), ["iso"], 60)
    assert len(failed) == 3 and all("OSError" in reason for reason in failed.values()) and not list(sheets.iterdir())
    client.run(fill_disk, resource.RLIM_INFINITY)
    assert not draw_fleet.run(client, draw_fleet.missing(models, sheets), ["iso"], 60) and len(list(sheets.iterdir())) == 3


def test_names_that_are_no_utf8_are_listed(tmp_path, monkeypatch):
    (tmp_path / os.fsdecode(b"\xff.stl")).touch()
    monkeypatch.setattr(draw_fleet, "Client", contextlib.nullcontext)
    monkeypatch.setattr(draw_fleet, "run", lambda client, work, views, limit: dict.fromkeys(work.values(), "bad"))
    monkeypatch.setattr(sys, "argv", ["draw_fleet.py", str(tmp_path), str(tmp_path / "sheets"), "--scheduler", "none"])
    assert draw_fleet.main() == 1 and (tmp_path / "sheets" / "failed.tsv").read_bytes() == b"\xff.stl\tbad\n"


def test_tiles_make_up_the_whole(client):
    random = np.random.default_rng(5)
    a, b = (zbr.Region(random.random((80, 2)) * 10) for _ in range(2))
    for op, function in overlay_tiles.OPS.items():
        tiled, whole = overlay_tiles.overlay(client, a, b, op, 3), function(a, b)
        assert tiled.area == pytest.approx(whole.area, rel=1e-12)
        seams = np.concatenate([np.linspace(lo, hi, 4) for lo, hi in ((min(a.bounds[k], b.bounds[k]), max(a.bounds[k + 2], b.bounds[k + 2])) for k in (0, 1))])
        far = [tuple(p) for p in whole.coords if np.abs(p[0] - seams[:4]).min() > 1e-6 and np.abs(p[1] - seams[4:]).min() > 1e-6]
        distance = [np.abs(tiled.coords - p).max(axis=1).min() for p in far]
        assert len(far) > 100 and max(distance) < 1e-12


def test_a_fleet_is_measured():
    command = [sys.executable, "-P", EXAMPLES / "fleet" / "measure_fleet.py", "--large", "1", "--small", "2", "--workers", "1"]
    lines = subprocess.run(command, check=True, capture_output=True, text=True, env={**os.environ, "PYTHONPATH": str(EXAMPLES / "fleet")}).stdout.splitlines()
    assert len(lines) == 2 and "1.00 times as fast" in lines[1]
