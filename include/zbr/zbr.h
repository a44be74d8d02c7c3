// The whole library: include this, or the header of one family.
//
//   tolerance.h   the thread's tolerance, tolerant comparisons, scope guards
//   planar.h      planar points, segments, corners, intersections, polygon areas
//   loop.h        closed loops, point and loop inclusion, nesting, point location
//   boolean.h     crossings and Boolean combinations of planar regions
#pragma once

#include <zbr/boolean.h>
#include <zbr/export.h>
#include <zbr/loop.h>
#include <zbr/planar.h>
#include <zbr/tolerance.h>
