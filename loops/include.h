// How one loop lies relative to another, for repeated use against the same loops.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <zbr/loop.h>

#include "loops/locator.h"
#include "loops/point_in_loop.h"

namespace zbr {

// Buffers of the inclusion tests, owned by whoever runs many of them; they only grow.
struct IncludeScratch {
  std::vector<ZBR_POS_PT_PT> pos;
  std::vector<double> params;
};

// A loop that points are tested against. Large loops get an index once the linear tests on them have cost as much as building it.
class LoopProbe {
 public:
  // The loop must be set up and keep its points while the probe is used.
  // All tests use one tolerance.
  explicit LoopProbe(const ZBR_LOOP& loop) : LoopProbe(loop.pt(), BoxOf(loop)) {}
  // The same of a ring of points, by its box.
  LoopProbe(std::span<const ZBR_PT> ring, const Box& box) : ring_(ring), box_(box) {}

  std::span<const ZBR_PT> ring() const { return ring_; }
  const Box& box() const { return box_; }
  ZBR_POLY_INSIDE At(const ZBR_PT& p, double eps, IncludeScratch& scratch);
  // Appends the parameters in (0, 1) at which vertices of this loop lie on the segment a-b.
  void VerticesOnSegment(const ZBR_PT& a, const ZBR_PT& b, double eps, std::vector<double>& params);

 private:
  // The index, and the last square found to hold nothing of the ring: what lies in it is where its middle is. Tests come in spatial
  // order, so that most of those in the open are answered by it (the 62,500 holes of two crossed combs are nested in half the
  // time).
  struct Index {
    RingLocator locator;
    Box clear;
    ZBR_POLY_INSIDE inside = ZBR_PI_UNKNOWN;
    std::uint32_t squares = 0;  // found
    std::uint32_t hits = 0;     // answers that they gave
    std::uint32_t passed = 0;   // tests without looking for one

    ZBR_POLY_INSIDE At(const ZBR_PT& p, double eps);
  };

  bool UseIndex();

  std::span<const ZBR_PT> ring_;
  Box box_;
  std::uint32_t scans_ = 0;
  std::unique_ptr<Index> index_;
};

// The first sample of a (vertices, edge midpoints, stretches of edges between vertices of b) that is clearly inside b gives +1, the
// first that is clearly outside gives -1. 0: all of a lies on b's boundary.
int SampleInside(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch);

// The same, -1 at once for loops whose boxes are apart.
int InsideVerdict(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch);
// Of loops of which all of a lies on b's boundary: whether a fills a gap that b surrounds, a ring that touches itself. Areas are
// wanted for their signs.
bool FillsGap(const LoopProbe& a, double areaA, const LoopProbe& b, double areaB, double eps);

// zbrIsInside and zbrCheckInclude for two loops.
bool IsLoopInside(const LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch);
ZBR_POLY_REL LoopRelation(LoopProbe& a, LoopProbe& b, double eps, IncludeScratch& scratch);

}  // namespace zbr
