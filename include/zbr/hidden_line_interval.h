// Lists of visible intervals, and the operations on them.
//
// What is left of an edge after removal is a sorted list of disjoint intervals of its parameter, 0 at its start and 1 at its end:
//   for (const ZBR_HL_INTERVAL& v : triangle.intvl_v[edge]) Draw(v.s.pt, v.e.pt);
// The points are stored with the parameters, so nothing is to be computed for drawing. The operations are for callers who remove
// intervals of their own (a clip, another kind of occluder): they compare parameters within the thread's eps.
#pragma once

#include <vector>

#include <zbr/export.h>
#include <zbr/spatial.h>

// A stretch of an edge between two parameters (0 at the edge's start, 1 at its end), with the points there. The lists of an edge
// are sorted and disjoint; the single interval from exactly 0.0 to exactly 1.0 is the whole edge.
struct ZBR_HL_INTERVAL {
  struct PT_LIN {
    ZBR_PT3 pt;
    double t = 0.0;
  };
  PT_LIN s;
  PT_LIN e;

  ZBR_HL_INTERVAL() = default;
  ZBR_HL_INTERVAL(const ZBR_PT3& ps, const ZBR_PT3& pe, double ts, double te) : s{ps, ts}, e{pe, te} {}
  ZBR_HL_INTERVAL(const PT_LIN& start, const PT_LIN& end) : s(start), e(end) {}
  // Both also with the interval's own ends, exchanged.
  void Set(const ZBR_PT3& ps, const ZBR_PT3& pe, double ts, double te) { *this = ZBR_HL_INTERVAL(ps, pe, ts, te); }
  void Set(const PT_LIN& start, const PT_LIN& end) { *this = ZBR_HL_INTERVAL(start, end); }
};

// Replaces a by the intersection of a and b, both sorted and disjoint (not checked). Overlaps of at most eps are dropped, intervals
// touching within eps joined. `work` is scratch and may be a itself. Returns the size of a; when a was the whole edge, its former
// size, 1. Linear.
ZBR_API int zbrIntervalIntersection(std::vector<ZBR_HL_INTERVAL>& a, const std::vector<ZBR_HL_INTERVAL>& b,
                                    std::vector<ZBR_HL_INTERVAL>& work);

// Drops the intervals of a that are at most eps long and joins those that touch within eps; a joined interval ends where its second
// part does. Returns the size. Linear.
ZBR_API int zbrIntervalOptimize(std::vector<ZBR_HL_INTERVAL>& a);

// The range a0..a1 without the range b0..b1, either of which may be given backwards; r0..r1 runs as a0..a1 does.
//   0  nothing longer than eps is left (r0 and r1 untouched)
//   1  r0..r1 is left
//   2  b lies strictly inside: a0..r0 and r1..a1 are left
ZBR_API int zbrDifferenceOfRealSeg(double a0, double a1, double b0, double b1, double& r0, double& r1);
