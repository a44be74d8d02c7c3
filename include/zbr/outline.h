// Chaining of segments into polylines, and of outline pieces into loops.
#pragma once

#include <memory>
#include <vector>

#include <zbr/export.h>
#include <zbr/hidden_line.h>
#include <zbr/loop.h>
#include <zbr/planar.h>

// How far the chaining of a segment end has come.
enum ZBR_HL_OPT_STATE {
  OPT_NEW = 1,     // not yet classified
  OPT_JOINED = 2,  // linked to one other end at its vertex: the chain passes through
  OPT_END = 3,     // free end: nothing to continue to
  OPT_BRANCH = 4,  // at a vertex where three or more ends meet, and branches are kept
  OPT_LAST = 5,    // last end of a traced chain
  OPT_PASSED = 6,  // passed through while tracing
  OPT_FIRST = 7,   // first end of a traced open chain, or a free end reached as its last
  OPT_ZERO = 8     // end of a segment that is shorter than eps or repeats another; takes no part
};

// One end of a segment. Ends 2k and 2k + 1 of an array are those of segment k, so the other end of end i is i ^ 1.
struct ZBR_HL_OPT_PT {
  ZBR_PT pt;
  int index = -1;       // place in the array
  int vertex = -1;      // number of the vertex that the ends within eps of each other share
  int link = -1;        // the end at the same vertex through which the chain goes on; -1 when none
  int state = OPT_NEW;  // ZBR_HL_OPT_STATE
};

// Joins segments into as few polylines as following them from end to end gives.
//
// Ends within eps of a vertex (the position of the first end seen there) share it; where three or more meet they are joined in
// pairs, in order. Segments shorter than eps and repeats are left out, and points lying straight between their neighbours are
// removed. `out` is replaced by the open polylines, then the closed ones (whose last point is an exact copy of the first). Returns
// the number of open ones. The fields vertex, link and state of the records are overwritten. n log n; one vertex's many ends cost
// no more.
ZBR_API int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out);

// The same with a tolerance of its own, and the source of each polyline. The tolerance is a length; 0, or none, stands for 1e-5 of
// the larger side of all segments, so that the unit of a drawing does not matter. entered[k] lists the ends at which polyline k
// enters its segments, in order: segment entered / 2, run forwards when entered is even. Segments left out (repeats, too short) are
// in no list, each of the others in one. Points that are not removed come out as they went in.
ZBR_API int zbrOptimizeSegs(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::vector<ZBR_PT>>& out,
                            std::vector<std::vector<int>>& entered, double tolerance = 0.0);

// The visible lines of `count` shells as polylines in the XY plane: chains the visible intervals of all their triangles under a
// tolerance of 0.001 (restored afterwards). Changes nothing in the shells. Output and result as zbrOptimizeSegs.
ZBR_API int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count);

// The same under a tolerance of the caller's, or 1e-5 of the drawing's larger side when it is 0: nothing is lost of a drawing in
// metres. sources[k] receives the edges that polyline k runs along, in order.
ZBR_API int zbrOptimizeHiddenLine(const ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>& out, unsigned int count,
                                  std::vector<std::vector<ZBR_HL_SOURCE>>& sources, double tolerance = 0.0);

// Closes directed pieces of a region's boundary into loops. Records 2k and 2k + 1 are the start and the end of piece k, which has
// the region on its left; the order of the pieces is free. `loops` is replaced by outer loops (counter-clockwise, level 0) with
// their holes (clockwise, level 1), nested by zbrMakeLoopTree; returns the number of outer loops.
//
// Ends within 1e-9 of the larger side of the pieces' box share a vertex. Pieces shorter than that, repeats, pairs of opposite
// pieces, pieces that do not close and loops narrower than that are left out; so are points lying straight between their
// neighbours. Where several pieces leave a vertex, the one that turns most sharply to the left goes on, and a loop that comes back
// to a vertex is cut off there: loops touch, but do not cross. The fields index, vertex, link (the record at the same vertex
// through which the boundary goes on) and state of the records are overwritten. n log n, unless loops meet by the thousands
// at one vertex.
ZBR_API int zbrMakeOutLineLoops(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::shared_ptr<ZBR_LOOP>>& loops);
