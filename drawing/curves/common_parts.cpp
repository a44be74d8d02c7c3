// Straight lines are held against each other as they are seen. Chords of one circle stand for the same curve however they divide
// it: they are held against each other by their angles around the axis, in space, where a circle seen nearly edge-on is as round as
// any.
#include "drawing/curves/common_parts.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "drawing/curves/doubled_curves.h"
#include "drawing/points.h"

namespace zbr::drawing {
namespace {

// The angles of a chord from its middle, which are small, and its places at angles.
class ChordAngles {
 public:
  ChordAngles(const DrawnStretch& chord, const ZBR_PT3& axis) : start_(chord.start), end_(chord.end) {
    x_ = (start_ + end_) * 0.5;
    y_ = axis.OuterProduct(x_);
    from_ = Of(start_);
    to_ = Of(end_);
  }

  double Of(const ZBR_PT3& p) const { return Atan2(p.InnerProduct(y_), p.InnerProduct(x_)); }

  // Of the chord, from 0 to 1, what lies between two angles.
  Part Between(double low, double high) const {
    if (high < std::min(from_, to_) || low > std::max(from_, to_)) return kNoPart;
    const double a = PlaceAt(low), b = PlaceAt(high);
    return {std::min(a, b), std::max(a, b)};
  }

 private:
  double PlaceAt(double angle) const {
    if (angle <= std::min(from_, to_)) return from_ < to_ ? 0.0 : 1.0;
    if (angle >= std::max(from_, to_)) return from_ < to_ ? 1.0 : 0.0;
    const double x = Cos(angle), y = Sin(angle);
    const auto beside = [&](const ZBR_PT3& p) { return p.InnerProduct(y_) * x - p.InnerProduct(x_) * y; };
    const double s = beside(start_), e = beside(end_);
    return std::clamp(s / (s - e), 0.0, 1.0);
  }

  ZBR_PT3 start_, end_, x_, y_;
  double from_ = 0.0, to_ = 0.0;
};

Part PartOfArc(const ZBR_PT3& axis, double slack, const DrawnStretch& stretch, const DrawnStretch& other) {
  constexpr double kLargestArc = 1.0;  // radians; the largest chords have half of it
  const ChordAngles angles(stretch, axis);
  const double from = angles.Of(other.start), to = angles.Of(other.end);
  const double low = std::min(from, to), high = std::max(from, to);
  return high - low < kLargestArc ? angles.Between(low - slack, high + slack) : kNoPart;
}

}  // namespace

DrawnStretch DrawnStretch::PartFrom(double from, double to) const {
  DrawnStretch part = *this;
  part.segment = PartOfStretch{0, from, to}.Of(segment);
  part.start = start + (end - start) * from;
  part.end = start + (end - start) * to;
  return part;
}

DrawnStretch StretchOfChord(const Scene& scene, const Circle& circle, const ChordSides::Side& side, const ZBR_SEG& segment) {
  const ZBR_PT3 &p = side.start, &q = side.end;
  const ZBR_PT a = scene.FromModel(p).xy(), b = scene.FromModel(q).xy();
  const ZBR_PT3 from = p - circle.centre, along = q - p;
  const auto fromAxis = [&](const ZBR_PT3& d) { return d.OuterProduct(circle.axis).Length(); };
  DrawnStretch stretch;
  stretch.segment = segment;
  stretch.height = std::max(circle.radius - fromAxis(from + along * 0.5), 0.0) * scene.scale;
  stretch.radius = 0.5 * (fromAxis(from) + fromAxis(from + along)) * scene.scale;
  stretch.start = from + along * NearestPart(segment.s(), a, b);
  stretch.end = from + along * NearestPart(segment.e(), a, b);
  return stretch;
}

// Lines that merely cross, or meet at an end, have nothing in common.
Part PartInCommon(const Scene& scene, const Circles* circles, double contact, const DrawnStretch& stretch,
                  const DrawnStretch& other) {
  const double length = stretch.segment.s().Distance(stretch.segment.e());
  if (!(length > 0 && other.segment.s().Distance(other.segment.e()) > 0)) return kNoPart;
  if (stretch.circle != kNoCircle && other.circle != kNoCircle) {
    const bool isOne = stretch.circle == other.circle ? std::abs(stretch.radius - other.radius) <= contact
                                                      : AreSeenAsOne(scene, *circles, stretch.circle, other.circle, contact);
    if (isOne) return PartOfArc(circles->all[stretch.circle].axis, contact / stretch.radius, stretch, other);
  }
  const Side side(stretch.segment, other.segment, contact);
  if (!side.IsOneLine(length, contact)) return kNoPart;
  Part part = side.near;
  AddDisc(stretch.segment, other.segment.s(), contact, part);
  AddDisc(stretch.segment, other.segment.e(), contact, part);
  return part;
}

}  // namespace zbr::drawing
