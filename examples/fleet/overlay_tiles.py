#!/usr/bin/env python3
"""An overlay larger than one machine, by tiles: cut, combine, stitch.

usage: overlay_tiles.py A B RESULT [--op union] [--tiles 4] [--workers N | --scheduler ADDRESS]

Idea: what an operation makes within a tile depends on the operands within the tile only. So each tile cuts its share out of both
operands and combines that; a union of the tiles' results takes the seams away again. It is a tree of unions of neighbours, so that
no step holds more than its part, but for the last one.
What stays of a tile is exact to the rounding of crossings: the area is that of the whole, and so are all vertices away from seams; an
edge that crosses a seam may keep a vertex there, within the tolerance of the straight line.
"""

import argparse
import sys
from itertools import product
from pathlib import Path

import numpy as np
import zbr
from distributed import Client, LocalCluster

OPS = {"union": zbr.union, "intersection": zbr.intersection, "difference": zbr.difference, "xor": zbr.xor}


def combined(a: zbr.Region, b: zbr.Region, box: tuple[float, float, float, float], op: str) -> zbr.Region:
    x0, y0, x1, y1 = box
    tile = zbr.Region([(x0, y0), (x1, y0), (x1, y1), (x0, y1)])
    return OPS[op](a & tile, b & tile)


def joined(parts: list[zbr.Region]) -> zbr.Region:
    return zbr.unite(parts)


def overlay(client: Client, a: zbr.Region, b: zbr.Region, op: str, tiles: int) -> zbr.Region:
    """The result of the operation, from tiles by tiles pieces."""
    boxes = np.array([region.bounds for region in (a, b) if region])
    if len(boxes) == 0:
        return zbr.Region()
    low, high = boxes[:, :2].min(axis=0), boxes[:, 2:].max(axis=0)
    xs, ys = (np.linspace(low[k], high[k], tiles + 1) for k in (0, 1))
    whole = [client.scatter(region, broadcast=True) for region in (a, b)]  # with files in place of regions, workers read their part
    boxes_of_tiles = [(xs[i], ys[j], xs[i + 1], ys[j + 1]) for i, j in product(range(tiles), range(tiles))]
    level = [client.submit(combined, *whole, box, op, pure=False) for box in boxes_of_tiles]
    step = max(tiles, 2)
    while len(level) > 1:
        level = [client.submit(joined, level[k : k + step], pure=False) for k in range(0, len(level), step)]
    return level[0].result()


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("a", type=Path)
    parser.add_argument("b", type=Path)
    parser.add_argument("result", type=Path)
    parser.add_argument("--op", choices=OPS, default="union")
    parser.add_argument("--tiles", type=int, default=4)
    parser.add_argument("--workers", type=int, default=None)
    parser.add_argument("--scheduler")
    options = parser.parse_args()
    a, b = zbr.read(options.a), zbr.read(options.b)
    cluster = options.scheduler or LocalCluster(n_workers=options.workers, threads_per_worker=1, dashboard_address=None)
    with Client(cluster) as client:
        result = overlay(client, a, b, options.op, options.tiles)
    zbr.write(options.result, result)
    print(f"{len(result)} polygons, area {result.area:g}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
