// Cutting segments at the boundary of a planar region.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include <zbr/loop.h>
#include <zbr/spatial.h>

#include "loops/locator.h"

namespace zbr {

// A stretch of a segment on one side of the boundary, between two parameters.
struct CutPiece {
  double t0;
  double t1;
  bool inside;
};

// Cuts segments by the region within given loops and outside their children, under one tolerance. Holds an index over the
// region's edges; the loops must outlive it and stay as they are.
class RegionCutter {
 public:
  RegionCutter(std::span<const std::shared_ptr<ZBR_LOOP>> region, double eps);

  // The pieces of the projected segment a-b, from 0 to 1, inside and outside by turns; at least one. Valid until the next call.
  std::span<const CutPiece> Cut(const ZBR_PT3& a, const ZBR_PT3& b);

  // Where a projected point lies. What cannot be decided is outside.
  ZBR_POLY_INSIDE Locate(const ZBR_PT& p) const { return locator_.Locate(p, eps_); }

 private:
  void FindCuts(const ZBR_PT& a, const ZBR_PT& b);
  void CutAtEdge(const ZBR_PT& a, const ZBR_PT& b, const ZBR_PT& p, const ZBR_PT& q);
  void KeepApart(double least);
  ZBR_POLY_INSIDE LocateAt(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1, double share) const;
  ZBR_POLY_INSIDE LocateStretch(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1) const;
  void AddRun(const ZBR_PT& a, const ZBR_PT& b, double t0, double t1, double least);
  void AddPiece(double t0, double t1, bool inside);

  double eps_;
  double size_ = 0.0;  // the largest coordinate of the region
  double away_ = 0.0;  // what lies farther from the segment than this, certainly does
  RingLocator locator_;
  std::vector<double> cuts_;
  std::vector<double> near_;  // vertices that lie near the segment, though not on it
  bool plain_ = true;         // every edge near the segment crosses it, steeply and well away from the edge's ends
  std::vector<CutPiece> pieces_;
};

}  // namespace zbr
