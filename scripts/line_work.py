#!/usr/bin/env python3
"""Puts what 'zbr nest --faces all' makes of DXF files beside what ezdxf reads from them and shapely's polygonize makes of that.

    scripts/line_work.py ZBR FILE.dxf...

Lines are read, flattened and cut by ezdxf and GEOS alone. Prints files of which the area of all cells differs by more than a
thousandth, and counts. Needs python3-ezdxf and python3-shapely."""
import json
import math
import subprocess
import sys
import warnings
from ctypes import c_double, c_void_p

import ezdxf
from ezdxf import path as paths
from shapely.geometry import LineString, MultiLineString
from shapely.geometry.base import geom_factory
from shapely.geos import lgeos
from shapely.ops import polygonize

LINES = {'LINE', 'ARC', 'CIRCLE', 'ELLIPSE', 'LWPOLYLINE', 'POLYLINE', 'SPLINE', 'SOLID', 'TRACE', '3DFACE'}
SHARE = 1e-3  # of the area
GRID = 1e-6  # of the size of a drawing: ends that lie this close are one
DEVIATION = 1e-4  # of the size of an entity


def entities(block, depth=0):
    for entity in block:
        if entity.dxftype() != 'INSERT':
            yield entity
        elif depth < 20:
            for insert in entity.multi_insert() if entity.mcount > 1 else [entity]:
                yield from entities(insert.virtual_entities(), depth + 1)


def polyline(entity):
    path = paths.make_path(entity)
    controls = list(path.control_vertices())
    size = max(max(p[k] for p in controls) - min(p[k] for p in controls) for k in (0, 1)) if controls else 0
    points = [(p.x, p.y) for p in path.flattening(DEVIATION * size or 1e-9, segments=16)]
    if entity.dxftype() in ('SOLID', 'TRACE', '3DFACE'):
        points.append(points[0])
    return points


def peer_cells(file):
    lines = []
    for entity in entities(ezdxf.readfile(file).modelspace()):
        if entity.dxftype() in LINES:
            points = polyline(entity)
            if len(points) > 1 and max(math.dist(points[0], p) for p in points) > 0:
                lines.append(LineString(points))
    if not lines:
        return []
    union = lgeos._lgeos.GEOSUnaryUnionPrec_r
    union.restype, union.argtypes = c_void_p, [c_void_p, c_void_p, c_double]
    every = MultiLineString(lines)
    grid = GRID * max(abs(c) for c in every.bounds)
    return list(polygonize(geom_factory(union(lgeos.geos_handle, every._geom, grid))))


def own_area(tool, file):
    run = subprocess.run([tool, 'info', file, '--faces', 'all', '--all-layers', '--json'], capture_output=True, text=True, timeout=300)
    if run.returncode == 0:
        return json.loads(run.stdout)['area'], run.stderr
    return (0.0 if 'contour' in run.stderr else None), run.stderr


def main():
    warnings.simplefilter('ignore')
    counts = {'equal': 0, 'both without cells': 0, 'not read by ezdxf': 0, 'different': 0}
    for file in sys.argv[2:]:
        try:
            cells = peer_cells(file)
        except Exception:
            counts['not read by ezdxf'] += 1
            continue
        area, notes = own_area(sys.argv[1], file)
        peer = sum(cell.area for cell in cells)
        if area is not None and abs(area - peer) <= SHARE * max(area, peer):
            counts['equal' if peer > 0 else 'both without cells'] += 1
        else:
            counts['different'] += 1
            print(file, area, peer, len(cells), notes.strip().replace('\n', '; ')[:300])
    print(counts)


main()
