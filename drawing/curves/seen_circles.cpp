#include "drawing/curves/seen_circles.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>

#include "drawing/points.h"

namespace zbr::drawing {
namespace {

// Ratio of the half axes below which a circle is drawn as a line: it is one within the tolerance of the chains.
constexpr double kEdgeOn = 1e-4;

// Sine of the tilt below which it is drawn as a circle: the half axes differ by half its square.
constexpr double kFaceOn = 1e-5;

// How near to the eye, as a part of the distance of its centre, a circle may come that is drawn as the ellipse that it is seen as.
constexpr double kNearest = 1e-3;

}  // namespace

SeenCircles::SeenCircles(const Model& model, const Scene& scene, const Circles* circles)
    : model_(model), scene_(scene), circles_(circles) {
  if (circles == nullptr) return;
  seen_.reserve(circles->all.size());
  for (const Circle& circle : circles->all) seen_.push_back(Look(circle));
}

// A place of the circle at the angle t, from where it is farthest from the eye, is seen at (A + B cos t + D sin t) / (w (1 + e cos
// t)): w is the distance of its centre along the line of sight, and e below 1 for what is wholly before the eye. With s such that
// cos s = (cos t + e) / (1 + e cos t), that is an ellipse in s.
SeenCircles::Seen SeenCircles::LookFromEye(const Circle& circle) const {
  const Perspective& from = *scene_.view.perspective;
  Seen seen;
  ZBR_PT3 down = -scene_.view.toViewer;
  down = down - circle.axis * circle.axis.InnerProduct(down);
  if (down.Length() < kFaceOn) down = scene_.view.right - circle.axis * circle.axis.InnerProduct(scene_.view.right);
  const ZBR_PT3 x = down * (1.0 / down.Length()), y = circle.axis.OuterProduct(x);
  const ZBR_PT3 a = scene_.view.In(circle.centre - from.eye), b = scene_.view.In(x) * circle.radius,
                d = scene_.view.In(y) * circle.radius;
  const double w = -a.z(), e = -b.z() / w, rest = 1.0 - e * e;
  if (!(w + b.z() > std::max(from.Nearest(), kNearest * w))) return seen;
  drawing::Curve ellipse;
  ellipse.centre = (a.xy() - b.xy() * e) * (from.distance / (w * rest));
  ellipse.u = (b.xy() - a.xy() * e) * (from.distance / (w * rest));
  ellipse.v = d.xy() * (from.distance / (w * std::sqrt(rest)));
  const drawing::Curve onAxes = OnAxes(ellipse);
  seen.centre = onAxes.centre;
  seen.u = onAxes.u;
  seen.v = onAxes.v;
  seen.isCurve = seen.v.Length() > kEdgeOn * seen.u.Length();
  return seen;
}

// The longer half axis is the one at right angles to the line of sight, and so is not foreshortened.
SeenCircles::Seen SeenCircles::Look(const Circle& circle) const {
  const View& view = scene_.view;
  if (view.perspective) return LookFromEye(circle);
  const ZBR_PT3 axis = circle.axis.InnerProduct(view.toViewer) < 0 ? -circle.axis : circle.axis;
  const double ratio = axis.InnerProduct(view.toViewer);
  const ZBR_PT3 level = view.toViewer.OuterProduct(axis);
  const double tilt = level.Length();
  Seen seen;
  seen.isCurve = ratio > kEdgeOn;
  if (!seen.isCurve) return seen;
  seen.centre = view.In(circle.centre - model_.Centre()).xy();
  if (tilt < kFaceOn) {
    const ZBR_PT3 right = view.right - axis * axis.InnerProduct(view.right);
    seen.x = right * (1.0 / right.Length());
    seen.y = axis.OuterProduct(seen.x);
    seen.u.Set(circle.radius, 0.0);
    seen.v.Set(0.0, circle.radius);
    return seen;
  }
  seen.x = level * (1.0 / tilt);
  seen.y = axis.OuterProduct(seen.x);
  seen.u = view.In(seen.x).xy() * circle.radius;
  seen.v = ZBR_PT(-seen.u.y(), seen.u.x()) * std::min(ratio, 1.0);
  return seen;
}

// Where a chord is cut, the arc is cut at the point that lies outwards of it.
void SeenCircles::Locate(const ChordSides::Side& side, EdgeSegment& segment) const {
  const Seen& seen = seen_[side.circle];
  if (!seen.isCurve) return;
  segment.circle = side.circle;
  if (scene_.view.perspective) {
    const auto angle = [&](const ZBR_PT& p) {
      const ZBR_PT q = scene_.ToDrawing(p) - seen.centre;
      return Atan2(q.InnerProduct(seen.v) / seen.v.Length2(), q.InnerProduct(seen.u) / seen.u.Length2());
    };
    segment.t0 = angle(segment.segment.s());
    segment.t1 = angle(segment.segment.e());
    return;
  }

  const ZBR_PT a = scene_.FromModel(side.start).xy(), b = scene_.FromModel(side.end).xy();
  const ZBR_PT3& centre = circles_->all[side.circle].centre;
  const ZBR_PT3 from = side.start - centre, to = side.end - centre;
  const auto angle = [&](const ZBR_PT& p) {
    const double t = NearestPart(p, a, b);
    const ZBR_PT3 q = from * (1.0 - t) + to * t;
    return Atan2(q.InnerProduct(seen.y), q.InnerProduct(seen.x));
  };
  segment.t0 = angle(segment.segment.s());
  segment.t1 = angle(segment.segment.e());
}

CircleRun SeenCircles::Curve(std::uint32_t circle) const {
  CircleRun run;
  run.circle = circle;
  run.centre = seen_[circle].centre;
  run.u = seen_[circle].u;
  run.v = seen_[circle].v;
  return run;
}

}  // namespace zbr::drawing
