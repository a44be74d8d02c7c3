// The coordinate frame in which points are located and lines cut.
//
//   const Frame frame = Frame::For(ExtentOf(contours.rings));
//   const ZBR_LOOP_LOCATOR locator(frame.In(ValidShape(region)));  // zbr/loop.h
//   const ZBR_POLY_INSIDE place = locator.IsInside(frame.In(point));
//
// The library compares lengths with an absolute tolerance there, so data in metres and data in nanometres would fare differently.
// Drawings are therefore scaled by a power of two, which changes no digit, into the range where the tolerance suits, and results
// are scaled back. Combinations and repairs of regions find their tolerance themselves.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr/planar.h>

namespace zbr::drawing {

// The library's tolerance to work with in a frame, in its units: hold it by ZBR_TmpEps.
inline constexpr double kTolerance = 1e-9;

class Frame {
 public:
  // For drawings of this extent together.
  //
  // The larger side comes to lie in [2^12, 2^13). Coordinates far from the origin carry the rounding of their own magnitude; when
  // that would exceed a tenth of the tolerance, the scale is lowered, down to 2^4 for the larger side. An axis is shifted as well
  // where the extent is farther from zero than it is long: then every difference to the shift is exact, and so is the way back.
  static Frame For(const Extent& extent);

  ZBR_PT In(const ZBR_PT& p) const { return ZBR_PT((p.x() - shift_.x()) * scale_, (p.y() - shift_.y()) * scale_); }
  ZBR_PT Out(const ZBR_PT& p) const { return ZBR_PT(p.x() / scale_ + shift_.x(), p.y() / scale_ + shift_.y()); }
  // The nested loops of a region.
  LoopList In(const ZBR_REGION& shape) const;

 private:
  ZBR_PT shift_;
  double scale_ = 1.0;  // a power of two
};

}  // namespace zbr::drawing
