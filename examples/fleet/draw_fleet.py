#!/usr/bin/env python3
"""Draws a folder of models, however many, on however many machines: a sheet for each.

usage: draw_fleet.py MODELS SHEETS [--workers N | --scheduler ADDRESS] [--views front,top,left,iso] [--limit SECONDS]

Idea: a model is a task. A sheet appears whole or not at all, so what is there is done, and a second run does only what is missing
or older than its model. A worker that dies loses the tasks it was at; the scheduler gives them to others, and names those that keep
killing workers. Faulty files, full disks and models that take longer than the limit become lines of SHEETS/failed.tsv, with the
reason; the exit status tells whether there are any.

Needs dask.distributed (Debian: python3-distributed). With --scheduler the workers see the same folders and have zbr installed.
"""

import argparse
import sys
import time
from pathlib import Path

import zbr
from distributed import Client, KilledWorker, LocalCluster, as_completed

MODELS = {".stl", ".obj", ".ply", ".off", ".gltf", ".glb"}
FORMAT = ".svg"


def draw(model: str, sheet: str, views: list[str], limit: float) -> str:
    """Draws one model; an empty answer, or what was wrong with it."""
    deadline = time.monotonic() + limit

    def goes_on(share: float) -> bool:
        return time.monotonic() < deadline

    try:
        drawings = zbr.read(model, progress=goes_on).draw_views(views, progress=goes_on)
        Path(sheet).parent.mkdir(parents=True, exist_ok=True)
        zbr.sheet(drawings, progress=goes_on).save(sheet)
    except zbr.Cancelled:
        return f"took longer than {limit:g} s"
    except (ValueError, OSError, MemoryError) as error:
        return f"{type(error).__name__}: {error}".replace("\n", " ")
    return ""


def missing(models: Path, sheets: Path) -> dict[Path, Path]:
    """The models that have no sheet, or one older than they are, by the sheet."""
    found = {}
    for model in sorted(path for path in models.rglob("*") if path.suffix.lower() in MODELS):
        place = model.relative_to(models)
        sheet = sheets / place.parent / (place.name + FORMAT)  # a.stl and a.obj get sheets of their own
        if not sheet.exists() or sheet.stat().st_mtime < model.stat().st_mtime:
            found[sheet] = model
    return found


def run(client: Client, work: dict[Path, Path], views: list[str], limit: float) -> dict[Path, str]:
    """Draws all of it; what could not be drawn, with the reason."""
    tasks = {}
    for sheet, model in work.items():
        tasks[client.submit(draw, str(model), str(sheet), views, limit, pure=False)] = model
    failed = {}
    for count, task in enumerate(as_completed(tasks), 1):
        error = task.exception()
        reason = task.result() if error is None else "it killed its workers" if isinstance(error, KilledWorker) else repr(error)
        if reason:
            failed[tasks[task]] = reason
        print(f"\r{count} of {len(tasks)}, {len(failed)} failed", end="", file=sys.stderr, flush=True)
        task.release()
    print(file=sys.stderr)
    return failed


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("models", type=Path)
    parser.add_argument("sheets", type=Path)
    parser.add_argument("--workers", type=int, default=None)
    parser.add_argument("--scheduler")
    parser.add_argument("--views", default="front,top,left,iso")
    parser.add_argument("--limit", type=float, default=600.0)
    options = parser.parse_args()
    work = missing(options.models, options.sheets)
    options.sheets.mkdir(parents=True, exist_ok=True)
    failed: dict[Path, str] = {}
    if work:
        cluster = options.scheduler or LocalCluster(n_workers=options.workers, threads_per_worker=1, dashboard_address=None)
        with Client(cluster) as client:
            failed = run(client, work, options.views.split(","), options.limit)
        if not options.scheduler:
            cluster.close()
    text = "".join(f"{model.relative_to(options.models)}\t{reason}\n" for model, reason in sorted(failed.items()))
    place = options.sheets / "failed.tsv"
    try:
        place.write_text(text, encoding="utf-8", errors="surrogateescape")  # names as the file system has them
    except OSError as error:  # the disk may be full
        print(f"{text}{place}: {error}".encode(errors="replace").decode(), file=sys.stderr)
    print(f"{len(work) - len(failed)} drawn, {len(failed)} failed" + (f", see {place}" if failed else ""))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
