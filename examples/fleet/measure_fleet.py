#!/usr/bin/env python3
"""Measures what a fleet of workers costs beyond its work, and what a second worker gains, on generated models.

usage: measure_fleet.py [--large N] [--small N] [--workers 1,2]

Large models are drawn in four views by each number of workers: the time that passes tells how the work scales. Small ones, which take
some milliseconds, tell what a task costs client, scheduler and worker beyond its drawing: the time of processors that all of them
took, less that of the same work in a plain loop. For an otherwise idle machine with a processor for each worker and one more.
"""

import argparse
import contextlib
import os
import sys
import tempfile
import time
from pathlib import Path
from typing import Iterator

import draw_fleet
import numpy as np
from distributed import Client, LocalCluster

LIMIT = 600.0  # seconds a model


def torus(around: int, across: int, waves: int) -> str:
    """A closed body of 2 * around * across triangles, as OBJ; waves along it make models that differ."""
    u, v = np.meshgrid(np.arange(around) * 2 * np.pi / around, np.arange(across) * 2 * np.pi / across, indexing="ij")
    radius = 10 + (3 + np.cos(waves * u)) * np.cos(v)
    points = np.stack((radius * np.cos(u), radius * np.sin(u), (3 + np.cos(waves * u)) * np.sin(v)), -1).reshape(-1, 3)
    i, j = np.meshgrid(np.arange(around), np.arange(across), indexing="ij")
    place = lambda a, b: (a % around * across + b % across + 1).ravel()  # noqa: E731
    faces = np.stack((place(i, j), place(i + 1, j), place(i + 1, j + 1), place(i, j + 1)), -1)
    return "".join(["v %.17g %.17g %.17g\n" % tuple(p) for p in points] + ["f %d %d %d %d\n" % tuple(f) for f in faces])


def make(folder: Path, count: int, around: int, across: int) -> Path:
    folder.mkdir()
    for k in range(count):
        (folder / f"{k}.obj").write_text(torus(around, across, 3 + k % 7))
    return folder


def processor_time() -> float:
    times = os.times()
    return times.user + times.system


@contextlib.contextmanager
def fleet(workers: int) -> Iterator[Client]:
    with LocalCluster(n_workers=workers, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster) as client:
        client.run(__import__, "draw_fleet")  # once, before anything is timed
        yield client


def in_a_loop(models: Path, sheets: Path, views: list[str]) -> tuple[float, float]:
    """Passed and processor's seconds an item, without any fleet."""
    work, begin, used = draw_fleet.missing(models, sheets), time.perf_counter(), processor_time()
    for sheet, model in work.items():
        if reason := draw_fleet.draw(str(model), str(sheet), views, LIMIT):
            sys.exit(f"{model}: {reason}")
    return (time.perf_counter() - begin) / len(work), (processor_time() - used) / len(work)


def by_workers(client: Client, models: Path, sheets: Path, views: list[str]) -> tuple[float, float, float]:
    """Passed seconds an item, and the processor's in client with scheduler and in workers."""
    work = draw_fleet.missing(models, sheets)
    theirs, begin, used = sum(client.run(processor_time).values()), time.perf_counter(), processor_time()
    if failed := draw_fleet.run(client, work, views, LIMIT):
        sys.exit(f"failed: {failed}")
    passed, own = time.perf_counter() - begin, processor_time() - used
    return passed / len(work), own / len(work), (sum(client.run(processor_time).values()) - theirs) / len(work)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--large", type=int, default=40)
    parser.add_argument("--small", type=int, default=1000)
    parser.add_argument("--workers", default="1,2")
    options = parser.parse_args()
    os.environ["PYTHONPATH"] = str(Path(__file__).resolve().parent)  # for workers to find the functions
    views, first = ["front", "top", "left", "iso"], None
    with tempfile.TemporaryDirectory() as scratch:
        folder = Path(scratch)
        large, small = make(folder / "large", options.large, 400, 60), make(folder / "small", options.small, 24, 12)
        passed, _ = in_a_loop(large, folder / "loop-large", views)
        _, drawing = in_a_loop(small, folder / "loop-small", ["iso"])
        print(f"a plain loop: {1000 * passed:.0f} ms a large model, {1000 * drawing:.1f} ms of the processor a small one")
        for workers in map(int, options.workers.split(",")):
            with fleet(workers) as client:
                passed, _, _ = by_workers(client, large, folder / f"large-{workers}", views)
                _, own, theirs = by_workers(client, small, folder / f"small-{workers}", ["iso"])
            first = first or passed
            print(f"{workers} workers: {1000 * passed:.0f} ms a large model, {first / passed:.2f} times as fast as the first; a task costs "
                  f"client and scheduler {1000 * own:.1f} ms, its worker {1000 * (theirs - drawing):.1f} ms beyond its drawing")


if __name__ == "__main__":
    main()
