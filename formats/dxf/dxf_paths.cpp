// Curves and whole paths as entities.
//
// Polylines hold arcs of circles as bulges, the tangent of a quarter of the angle. That grows without bounds towards a full turn,
// and centre and radius then hang on a short chord; so arcs of more than three quarters of a turn are halved.
#include <zbr-drawing/contours.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>

#include "formats/dxf/dxf_curves.h"
#include "formats/dxf/dxf_document.h"

namespace zbr::formats {
namespace {

constexpr double kWidestBulge = 1.5 * kPi;

double Sweep(const Curve& arc) {
  return arc.u.OuterProduct(arc.v) < 0 ? arc.t0 - arc.t1 : arc.t1 - arc.t0;
}

bool IsWhole(const Curve& curve) {
  constexpr double kRounding = 1e-12;
  return curve.spline == nullptr && std::abs(std::abs(curve.t1 - curve.t0) / (2 * kPi) - 1) <= kRounding;
}

double AngleOf(const ZBR_PT& direction) {
  const double degrees = Atan2(direction.y(), direction.x()) * 180.0 / kPi;
  return degrees < 0 ? degrees + 360.0 : degrees;
}

// Points and bulges of a run of edges that are straight or circular.
struct Run {
  std::vector<ZBR_PT> points;
  std::vector<double> bulges;

  void Add(const ZBR_PT& from, const Curve* arc) {
    const double sweep = arc == nullptr ? 0.0 : Sweep(*arc);
    const bool halved = std::abs(sweep) > kWidestBulge;
    points.push_back(from);
    bulges.push_back(Tan(sweep / (halved ? 8 : 4)));
    if (arc == nullptr || !halved) return;
    points.push_back(arc->At(arc->t0 + (arc->t1 - arc->t0) / 2));
    bulges.push_back(bulges.back());
  }
};

}  // namespace

Curve BulgeArc(const ZBR_PT& p, const ZBR_PT& q, double bulge) {
  const ZBR_PT chord = q - p;
  const ZBR_PT left(-chord.y(), chord.x());
  Curve arc;
  arc.centre = p + chord * 0.5 + left * ((1.0 / bulge - bulge) / 4.0);
  arc.u = p - arc.centre;
  arc.v.Set(-arc.u.y(), arc.u.x());
  arc.t1 = 4.0 * Atan(bulge);
  return arc;
}

void DxfDocument::AddArc(const ZBR_PT& centre, double radius, double startAngle, double endAngle, const DxfPen& pen) {
  Start("ARC", "AcDbCircle", pen);
  entities_.Point(10, centre, 0);
  entities_.Real(40, radius);
  entities_.Subclass("AcDbArc");
  entities_.Real(50, startAngle);
  entities_.Real(51, endAngle);
  const double sweep = endAngle - startAngle;
  Curve arc;
  arc.centre = centre;
  arc.u.Set(radius, 0);
  arc.v.Set(0, radius);
  arc.t0 = startAngle * kPi / 180.0;
  arc.t1 = arc.t0 + (sweep > 0 ? sweep : sweep + 360.0) * kPi / 180.0;
  ExtendBy(arc);
}

void DxfDocument::AddEllipse(const Curve& ellipse, const DxfPen& pen) {
  constexpr double kFlattest = 1e-6;  // programs refuse thinner ones
  const Curve axes = OnAxes(ellipse);
  const double ratio = std::min(axes.v.Length() / axes.u.Length(), 1.0);
  if (entities_.IsOld() || !(ratio >= kFlattest)) return AddChords(ellipse, pen);
  Start("ELLIPSE", "AcDbEllipse", pen);
  entities_.Point(10, axes.centre, 0);
  entities_.Point(11, axes.u, 0);
  entities_.Constants("210|0.0|220|0.0|230|1.0");
  entities_.Real(40, ratio);
  const double start = IsWhole(axes) ? 0.0 : axes.t0 - std::floor(axes.t0 / (2 * kPi)) * 2 * kPi;
  entities_.Real(41, start);
  entities_.Real(42, IsWhole(axes) ? 2 * kPi : start + (axes.t1 - axes.t0));
  ExtendBy(axes);
}

void DxfDocument::AddSpline(const Curve& curve, const DxfPen& pen) {
  constexpr int kRational = 4, kPlanar = 8;
  if (entities_.IsOld()) return AddChords(curve, pen);
  const Spline& whole = *curve.spline;
  const bool isWhole = curve.t0 == whole.Start() && curve.t1 == whole.End();
  const Spline spline = isWhole ? whole : Trimmed(whole, curve.t0, curve.t1);
  Start("SPLINE", "AcDbSpline", pen);
  entities_.Constants("210|0.0|220|0.0|230|1.0");
  entities_.Integer(70, kPlanar + (spline.weights.empty() ? 0 : kRational));
  entities_.Integer(71, spline.degree);
  entities_.Integer(72, static_cast<long>(spline.knots.size()));
  entities_.Integer(73, static_cast<long>(spline.control.size()));
  entities_.Integer(74, 0);
  for (const double knot : spline.knots) entities_.Real(40, knot);
  for (const double weight : spline.weights) entities_.Real(41, weight);
  for (const ZBR_PT& p : spline.control) {
    entities_.Point(10, p, 0);
    ExtendBy(p);
  }
}

void DxfDocument::AddChords(const Curve& curve, const DxfPen& pen) {
  Path path;
  path.closed = IsWhole(curve);
  path.points = {curve.At(curve.t0)};
  if (!path.closed) path.points.push_back(curve.At(curve.t1));
  path.curves = {curve};
  path.curves[0].at = 0;
  Drawing alone;
  alone.paths = {path};
  const double deviation = setup_.deviation > 0 ? setup_.deviation : WithDefaults({-1, -1}, ExtentOf(alone)).deviation;
  std::vector<ZBR_PT> points;
  FlattenPath(path, deviation, [&](const ZBR_PT& p, std::size_t, double) { points.push_back(p); });
  AddPolyline(points, path.closed, pen);
}

// A curve that is an entity of its own.
void DxfDocument::AddCurve(const Curve& curve, const DxfPen& pen) {
  if (curve.spline != nullptr) return AddSpline(curve, pen);
  if (!curve.IsCircular()) return AddEllipse(curve, pen);
  if (IsWhole(curve)) return AddCircle(curve.centre, curve.u.Length(), pen);
  ZBR_PT from = curve.At(curve.t0), to = curve.At(curve.t1);
  if (Sweep(curve) < 0) std::swap(from, to);
  AddArc(curve.centre, curve.u.Length(), AngleOf(from - curve.centre), AngleOf(to - curve.centre), pen);
}

// The edges `first` to `last` of a path, none of them an ellipse or a spline.
void DxfDocument::AddRun(const Path& path, std::size_t first, std::size_t last, const DxfPen& pen) {
  const std::size_t n = path.points.size();
  const bool closed = path.closed && last - first == n;
  Run run;
  auto curve =
      std::lower_bound(path.curves.begin(), path.curves.end(), first, [](const Curve& c, std::size_t at) { return c.at < at; });
  for (std::size_t i = first; i < last; ++i) {
    const bool isArc = curve != path.curves.end() && curve->at == i;
    run.Add(path.points[i], isArc ? &*curve : nullptr);
    if (isArc) ++curve;
  }
  if (!closed) run.Add(path.points[last % n], nullptr);
  const bool isStraight = std::all_of(run.bulges.begin(), run.bulges.end(), [](double bulge) { return bulge == 0; });
  if (run.points.size() == 2 && !closed && isStraight) return AddLine(run.points[0], run.points[1], pen);
  AddPolyline(run.points, closed, pen, 0.0, isStraight ? std::vector<double>() : run.bulges);
}

void DxfDocument::AddPath(const Path& path, const DxfPen& pen) {
  const std::size_t n = path.points.size();
  const std::size_t edges = path.closed ? n : n - std::min<std::size_t>(n, 1);
  if (edges == 0) return;
  if (edges == 1 && path.curves.size() == 1) return AddCurve(path.curves.front(), pen);
  std::size_t first = 0;
  for (const Curve& curve : path.curves) {
    if (curve.IsCircular()) continue;
    if (curve.at > first) AddRun(path, first, curve.at, pen);
    AddCurve(curve, pen);
    first = curve.at + 1;
  }
  if (first < edges) AddRun(path, first, edges, pen);
}

}  // namespace zbr::formats
