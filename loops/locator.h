// Point location on one ring or on many rings at once, through a box hierarchy over the edges.
#pragma once

#include <span>
#include <vector>

#include <zbr/loop.h>

#include "loops/edge_index.h"

namespace zbr {

// Answers for a set of rings what PointInRing answers for one, and decides where that is left with ZBR_PI_UNKNOWN; with several
// rings, inside means an odd number of rings around. The rings' points must outlive the locator.
class RingLocator {
 public:
  // Rings of fewer than three points are left out, as nothing is ever on or in them.
  explicit RingLocator(std::span<const std::span<const ZBR_PT>> rings);

  ZBR_POLY_INSIDE Locate(const ZBR_PT& p, double eps) const;

  // A square around p for all points of which Locate gives the same answer, since no edge comes near it; empty when there is none.
  Box ClearSquare(const ZBR_PT& p, double eps) const;

  // Calls visit(p, q) for edges p-q of the rings, at least for all that come within `margin` of the segment a-b.
  template <class Visit>
  void EdgesNear(const ZBR_PT& a, const ZBR_PT& b, double margin, Visit visit) const;

  // Appends the parameters in (0, 1) at which vertices of the rings lie on the segment a-b.
  void VerticesOnSegment(const ZBR_PT& a, const ZBR_PT& b, double eps, std::vector<double>& params) const;

 private:
  struct RayScan;

  double RoundingAt(const ZBR_PT& p) const;
  ZBR_POLY_INSIDE Snap(const ZBR_PT& p, double eps) const;
  ZBR_POLY_INSIDE ScanRings(const ZBR_PT& p, double eps) const;
  void ScanLeaf(std::uint32_t leaf, RayScan& scan) const;
  bool IsChainCut(int level, std::uint32_t node, const RayScan& scan) const;

  EdgeIndex index_;
  Box box_;
  double reach_ = 0.0;  // largest coordinate magnitude: the scale of rounding errors
};

template <class Visit>
void RingLocator::EdgesNear(const ZBR_PT& a, const ZBR_PT& b, double margin, Visit visit) const {
  const SegmentBand band(a, b, margin);
  index_.tree().Walk([&band](const Box& node, int, std::uint32_t) { return band.Meets(node); },
                     [&](std::uint32_t leaf) {
                       index_.VisitEdges(leaf, visit);
                       return true;
                     });
}

}  // namespace zbr
