// Hidden-line removal on triangle shells seen along the z axis, and picking. This header brings its four parts:
//
//   hidden_line_interval.h   visible intervals of an edge, and operations on lists of them
//   hidden_line_triangle.h   the triangle: what callers fill in, the result, the rules for a pair
//   hidden_line_shell.h      shells of triangles, their quadtree, saved states
//   hidden_line_driver.h     removal for shells and objects, hidden segments, outlines, picking
//
// The viewer looks along -z from far above: everything is projected to the XY plane, and of two points over the same place the one
// with the larger z is nearer. A caller
//   1. fills an array of ZBR_HL_TRI per shell: vertices in view coordinates, `adj` (the neighbour across each edge, by position or
//      by `idx`), `dispj` (the edges to draw) and optionally `idx`;
//   2. wraps each array in a ZBR_HL_SHELL and calls ZBR_HiddenLine::HiddenLineObj or RemoveAll;
//   3. reads the visible intervals of each edge, or collects them as polylines (outline.h), or the hidden ones as segments
//      (GetHiddenLineObj), and the object's outline (GetOutLine).
//
// An edge shared by two triangles is drawn once, by the one that is prior, so both flag it. Vertices of neighbours are equal
// exactly (pairs are compared within 1e-7; coordinates up to about 1e6 suit that), or `adj_edge` is filled.
//
// Bad input: triangles that are degenerate, not finite or beyond 1e75 become invalid and hide nothing; of a triangle without width
// one edge may be drawn, of the others none: a shell of triangles without width draws free lines that hide nothing. Nothing here
// throws but std::bad_alloc, and what the caller's own functions throw.
#pragma once

#include <zbr/hidden_line_driver.h>
#include <zbr/hidden_line_interval.h>
#include <zbr/hidden_line_shell.h>
#include <zbr/hidden_line_triangle.h>
