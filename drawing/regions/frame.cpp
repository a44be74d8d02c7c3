// The choice of scale and shift.
#include <zbr-drawing/frame.h>

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

constexpr int kSizeExponent = 12;       // the larger side gets a binary exponent of 12
constexpr int kLeastSizeExponent = 4;   // or less, but not so little that features fall below the smallest area
constexpr int kMagnitudeExponent = 19;  // below 2^20 a coordinate is rounded by at most 2^-34, 6e-11
constexpr int kScaleLimit = 1000;       // both the scale and its inverse stay ordinary numbers

// If lo and hi have one sign and are within a factor of two, x - lo is exact for every x between them, and so is adding lo again.
double ExactShift(double lo, double hi) {
  const bool farFromZero = lo > 0 ? hi / 2 <= lo : hi < 0 && lo / 2 >= hi;
  return farFromZero ? (lo > 0 ? lo : hi) : 0.0;
}

}  // namespace

Frame Frame::For(const Extent& extent) {
  Frame frame;
  if (extent.empty() || extent.Magnitude() == 0) return frame;
  frame.shift_.Set(ExactShift(extent.xmin, extent.xmax), ExactShift(extent.ymin, extent.ymax));
  int exponent = kMagnitudeExponent - std::ilogb(extent.Magnitude());
  if (extent.Size() > 0) {
    const int size = std::ilogb(extent.Size());
    exponent = std::clamp(exponent, kLeastSizeExponent - size, kSizeExponent - size);
  }
  frame.scale_ = std::ldexp(1.0, std::clamp(exponent, -kScaleLimit, kScaleLimit));
  return frame;
}

LoopList Frame::In(const ZBR_REGION& shape) const {
  LoopList loops = zbrLoopsOfRegion(shape.view());
  ForEachRing(loops, [&](ZBR_LOOP& ring) {
    for (ZBR_PT& p : ring.pt()) p = In(p);
    ring.Reset();
    ring.Setup();
  });
  return loops;
}

}  // namespace zbr::drawing
