// The whole library: include this, or the header of one family.
//
//   tolerance.h   the thread's tolerance, tolerant comparisons, scope guards
//   planar.h      planar points, segments, corners, intersections, polygon areas
//   loop.h        closed loops, point and loop inclusion, nesting, point location
//   boolean.h     crossings and Boolean combinations of planar regions
//   region.h      regions as flat arrays: combinations, unions of many, repair, sources
//   spatial.h     spatial points, segments, planes, relations of lines
//   segments.h    repeated segments removed, clipping
//   hidden_line.h hidden-line removal on triangle shells, picking
//   outline.h     visible lines chained into polylines
//   mesh.h        triangle meshes as records of shells, triangles, edges and vertices
//   allocator.h   many small buffers, released at once
#pragma once

#include <zbr/allocator.h>
#include <zbr/boolean.h>
#include <zbr/export.h>
#include <zbr/hidden_line.h>
#include <zbr/loop.h>
#include <zbr/mesh.h>
#include <zbr/outline.h>
#include <zbr/planar.h>
#include <zbr/region.h>
#include <zbr/segments.h>
#include <zbr/spatial.h>
#include <zbr/tolerance.h>
