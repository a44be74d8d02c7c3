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

}  // namespace

SeenCircles::SeenCircles(const Model& model, const Scene& scene, const Circles* circles)
    : model_(model), scene_(scene), circles_(circles) {
  if (circles != nullptr) seen_.resize(circles->all.size());
}

// The longer half axis is the one at right angles to the line of sight, and so is not foreshortened.
SeenCircles::Seen SeenCircles::Look(const Circle& circle) const {
  const View& view = scene_.view;
  const ZBR_PT3 axis = circle.axis.InnerProduct(view.toViewer) < 0 ? -circle.axis : circle.axis;
  const double ratio = axis.InnerProduct(view.toViewer);
  const ZBR_PT3 level = view.toViewer.OuterProduct(axis);
  const double tilt = level.Length();
  Seen seen;
  seen.isKnown = true;
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
void SeenCircles::Locate(std::size_t shell, std::size_t triangle, std::size_t edge, EdgeSegment& segment) {
  if (circles_ == nullptr) return;
  const ZBR_ZBREPT& record = *model_.Shell(shell).GetTriangle(static_cast<int>(triangle));
  const std::size_t place = model_.edgeBegin[shell] + static_cast<std::size_t>(EdgeOf(record, edge).GetIndex());
  const std::uint32_t circle = circles_->ofEdge[place];
  if (circle == kNoCircle) return;
  Seen& seen = seen_[circle];
  if (!seen.isKnown) seen = Look(circles_->all[circle]);
  if (!seen.isCurve) return;

  const ZBR_PT3 &start = VertexOf(record, edge).GetPt(), &end = VertexOf(record, (edge + 1) % 3).GetPt();
  const ZBR_PT a = scene_.FromModel(start).xy(), b = scene_.FromModel(end).xy();
  const ZBR_PT3& centre = circles_->all[circle].centre;
  const ZBR_PT3 from = start - centre, to = end - centre;
  const auto angle = [&](const ZBR_PT& p) {
    const double t = NearestPart(p, a, b);
    const ZBR_PT3 q = from * (1.0 - t) + to * t;
    return Atan2(q.InnerProduct(seen.y), q.InnerProduct(seen.x));
  };
  segment.circle = circle;
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
