// Idea: what coincides in drawings must still do so when curves have become chords. So vertices belong to the curve, not to the
// arcs on it: at fixed parameters, and wherever an arc begins or ends or something else meets the curve. All arcs along one place
// get them. Between two places where something happens there is at least one vertex more, so that thin lenses do not collapse.
#include "drawing/contours/carriers.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <map>
#include <numeric>
#include <optional>
#include <set>
#include <tuple>
#include <utility>

#include "drawing/contours/spline.h"
#include "drawing/contours/spline_pieces.h"

namespace zbr::drawing {
namespace {

constexpr double kSameCircle = 1e-10;  // of the radius: what differs by rounding, as centres and radii from bulges do
constexpr double kWholeTurn = 1e-12;   // turns short of one or beyond it
constexpr double kMostPerTurn = 1e5;   // chords, however small a deviation is asked for
constexpr double kLeastPerTurn = 8.0;  // however large
constexpr double kLeastLens = 1e-6;    // of the radius: the area of a lens that is shorter is nothing
constexpr double kLeastLensSnaps = 100;
constexpr double kNearVertex = 0.01;  // of a step: fixed parameters this close to a place are left out for it

double Length(const ZBR_PT& v) {
  return Hypot(v.x(), v.y());
}

double LongestAxis(const Curve& curve) {
  return std::max(Length(curve.u), Length(curve.v));
}

double Wrapped(double t) {
  const double wrapped = std::fmod(t, kFullTurn);
  return wrapped < 0 ? wrapped + kFullTurn : wrapped;
}

// A chord over the parameter range h is off the arc by radius * (1 - cos(h / 2)); for an ellipse the longer half axis bounds it,
// since the ellipse is the image of a circle of that radius under a map that lengthens nothing. A multiple of four, so that the box
// of a circle is that of the true one.
int ChordsPerTurn(const Curve& curve, double deviation) {
  const double radius = LongestAxis(curve);
  if (!(radius > 0 && radius < std::numeric_limits<double>::infinity())) return 4;  // coordinates that overflow are told later
  const double step = 2.0 * Acos(std::clamp(1.0 - deviation / radius, -1.0, 1.0));
  return 4 * static_cast<int>(std::ceil(std::clamp(kFullTurn / step, kLeastPerTurn, kMostPerTurn) / 4.0));
}

bool IsWhole(const Curve& curve) {
  return curve.spline == nullptr && std::abs(std::abs(curve.t1 - curve.t0) / kFullTurn - 1.0) < kWholeTurn;
}

bool AreNear(const Curve& a, const Curve& b) {
  const double reach = kSameCircle * LongestAxis(a);
  return a.u.Distance(b.u) <= reach && a.v.Distance(b.v) <= reach && a.centre.Distance(b.centre) <= reach;
}

// All that the curve is a part of, a circle from the x axis on.
Curve ShapeOf(const Curve& curve) {
  Curve shape = curve;
  shape.at = 0;
  if (curve.IsCircular()) {
    shape.u.Set(Length(curve.u), 0);
    shape.v.Set(0, shape.u.x());
  }
  shape.t0 = curve.spline != nullptr ? curve.spline->Start() : 0.0;
  shape.t1 = curve.spline != nullptr ? curve.spline->End() : kFullTurn;
  return shape;
}

auto KeyOf(const Curve& c) {
  return std::tuple(c.centre.x(), c.centre.y(), c.u.x(), c.u.y(), c.v.x(), c.v.y());
}

// All that tells a spline from others.
std::vector<double> NumbersOf(const Spline& spline) {
  std::vector<double> numbers = {static_cast<double>(spline.degree)};
  for (const ZBR_PT& p : spline.control) numbers.insert(numbers.end(), {p.x(), p.y()});
  numbers.insert(numbers.end(), spline.knots.begin(), spline.knots.end());
  numbers.insert(numbers.end(), spline.weights.begin(), spline.weights.end());
  return numbers;
}

// For each curve what its spline is a stretch of, by places of curves; of others nothing.
std::vector<StretchOfSpline> WholesOf(const std::vector<Curve>& shapes, double tolerance) {
  std::vector<std::size_t> places;
  std::vector<const Spline*> splines;
  for (std::size_t i = 0; i < shapes.size(); ++i) {
    if (shapes[i].spline == nullptr) continue;
    places.push_back(i);
    splines.push_back(shapes[i].spline.get());
  }
  std::vector<StretchOfSpline> wholes(shapes.size());
  std::size_t next = 0;
  for (const StretchOfSpline& found : FindWholes(splines, tolerance))
    wholes[places[next++]] = {places[found.whole], found.start, found.rate};
  return wholes;
}

// Of circles or ellipses that come by ascending centres, those whose centres are not yet too far to the left, by the height of
// their centres.
class RecentCurves {
 public:
  RecentCurves(const std::vector<Curve>& curves, double reach) : curves_(curves), reach_(reach) {}

  void Add(std::uint32_t carrier) {
    window_.push_back(carrier);
    byHeight_.emplace(curves_[carrier].centre.y(), carrier);
  }
  // The first one that is equal but for rounding.
  std::optional<std::uint32_t> Find(const Curve& shape) {
    while (!window_.empty() && shape.centre.x() - curves_[window_.front()].centre.x() > reach_) {
      byHeight_.erase({curves_[window_.front()].centre.y(), window_.front()});
      window_.pop_front();
    }
    const double y = shape.centre.y();
    for (auto at = byHeight_.lower_bound({y - reach_, 0}); at != byHeight_.end() && at->first <= y + reach_; ++at) {
      if (AreNear(curves_[at->second], shape)) return at->second;
    }
    return std::nullopt;
  }

 private:
  const std::vector<Curve>& curves_;
  double reach_;
  std::deque<std::uint32_t> window_;
  std::set<std::pair<double, std::uint32_t>> byHeight_;
};

}  // namespace

std::vector<double> ChordParameters(const Curve& curve, double deviation) {
  if (curve.spline != nullptr) return ChordParameters(*curve.spline, curve.t0, curve.t1, deviation);
  const int perTurn = ChordsPerTurn(curve, deviation);
  const double low = std::min(curve.t0, curve.t1), high = std::max(curve.t0, curve.t1);
  const double step = kFullTurn / perTurn;
  std::vector<double> parameters;
  for (double k = std::floor(low / step) + 1; kFullTurn * k / perTurn < high; ++k) parameters.push_back(kFullTurn * k / perTurn);
  if (curve.t1 < curve.t0) std::reverse(parameters.begin(), parameters.end());
  return parameters;
}

double Stretch::Unwrapped(double t, bool isPeriodic) const {
  if (!isPeriodic) return t;
  const double low = std::min(t0, t1);
  return low + Wrapped(t - low);
}

bool Carriers::IsPeriodic(std::uint32_t carrier) const {
  return curves_[carrier].spline == nullptr;
}

double Carriers::Canonical(std::uint32_t carrier, double t) const {
  return IsPeriodic(carrier) ? Wrapped(t) : t;
}

double Carriers::ParameterOf(std::uint32_t carrier, const ZBR_PT& p) const {
  const ZBR_PT d = p - curves_[carrier].centre;
  return Atan2(d.y(), d.x());
}

std::uint32_t Carriers::AddCarrier(const Curve& curve, bool isCircle) {
  curves_.push_back(curve);
  isCircle_.push_back(isCircle);
  vertices_.emplace_back();
  isSettled_.push_back(false);
  return static_cast<std::uint32_t>(curves_.size() - 1);
}

// Circles and ellipses are taken up by their coordinates, so that the one which stands for equals does not depend
// on the order of the arcs.
std::vector<Stretch> Carriers::Add(const std::vector<const Curve*>& curves) {
  std::vector<Curve> shapes;
  double largest = 0.0;
  for (const Curve* const curve : curves) {
    shapes.push_back(ShapeOf(*curve));
    largest = std::max(largest, LongestAxis(*curve));
  }
  std::vector<std::size_t> order(curves.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return KeyOf(shapes[a]) < KeyOf(shapes[b]); });
  std::vector<Stretch> stretches(curves.size());
  RecentCurves circles(curves_, kSameCircle * largest), ellipses(curves_, kSameCircle * largest);
  const std::vector<StretchOfSpline> wholes = WholesOf(shapes, snap_);
  std::map<std::vector<double>, std::uint32_t> splines;
  for (const std::size_t i : order) {
    const Curve& shape = shapes[i].spline != nullptr ? shapes[wholes[i].whole] : shapes[i];
    const bool isCircle = shape.IsCircular();
    std::optional<std::uint32_t> carrier;
    RecentCurves& recent = isCircle ? circles : ellipses;
    if (shape.spline == nullptr) {
      carrier = recent.Find(shape);
    } else {
      const auto [known, isNew] = splines.try_emplace(NumbersOf(*shape.spline), static_cast<std::uint32_t>(curves_.size()));
      if (!isNew) carrier = known->second;
    }
    if (!carrier) {
      carrier = AddCarrier(shape, isCircle);
      if (shape.spline == nullptr) recent.Add(*carrier);
    }
    stretches[i] = StretchOn(*carrier, *curves[i]);
    if (shape.spline == nullptr) continue;
    for (double* const t : {&stretches[i].t0, &stretches[i].t1}) *t = std::clamp(wholes[i].At(*t), shape.t0, shape.t1);
  }
  return stretches;
}

Stretch Carriers::StretchOn(std::uint32_t carrier, const Curve& curve) const {
  Stretch stretch;
  stretch.carrier = carrier;
  stretch.isWhole = IsWhole(curve);
  const bool turnsBack = IsCircle(carrier) && curve.u.x() * curve.v.y() - curve.u.y() * curve.v.x() < 0;
  stretch.t0 = IsCircle(carrier) ? ParameterOf(carrier, curve.At(curve.t0)) : curve.t0;
  stretch.t1 = stretch.t0 + (curve.t1 - curve.t0) * (turnsBack ? -1.0 : 1.0);
  return stretch;
}

void Carriers::AddVertex(std::uint32_t carrier, double t, const ZBR_PT& at, bool isBetween) {
  vertices_[carrier].push_back({Canonical(carrier, t), at, isBetween});
  isSettled_[carrier] = false;
}

// Sorts the places, makes one of those that are one, and adds the vertices between them.
void Carriers::Settle(std::uint32_t carrier) {
  const Curve& curve = curves_[carrier];
  std::vector<CurveVertex>& list = vertices_[carrier];
  std::stable_sort(list.begin(), list.end(), [](const CurveVertex& a, const CurveVertex& b) {
    return std::tuple(a.isBetween, a.t, a.at.x(), a.at.y()) < std::tuple(b.isBetween, b.t, b.at.x(), b.at.y());
  });
  const std::vector<double> chords = ChordParameters(curve, deviation_);
  for (const double t : chords) list.push_back({Canonical(carrier, t), curve.At(t), true});
  if (IsPeriodic(carrier)) list.push_back({0.0, curve.At(0.0), true});
  std::stable_sort(list.begin(), list.end(), [](const CurveVertex& a, const CurveVertex& b) { return a.t < b.t; });
  const double step = (curve.t1 - curve.t0) / static_cast<double>(chords.size() + 1);
  std::vector<CurveVertex> kept = Thinned(list, kNearVertex * step);
  while (IsPeriodic(carrier) && kept.size() > 1 && kept.front().at.Distance(kept.back().at) <= snap_) {
    if (!kept.back().isBetween && kept.front().isBetween) kept.front() = {0.0, kept.back().at, false};
    kept.pop_back();
  }
  list.clear();
  const double leastLens = std::max(kLeastLens * LongestAxis(curve), kLeastLensSnaps * snap_);
  for (std::size_t i = 0; i < kept.size(); ++i) {
    list.push_back(kept[i]);
    const bool isLast = i + 1 == kept.size();
    if (isLast && !IsPeriodic(carrier)) break;
    const CurveVertex& next = kept[isLast ? 0 : i + 1];
    if (kept[i].isBetween || next.isBetween || kept[i].at.Distance(next.at) < leastLens) continue;
    const double middle = (kept[i].t + next.t + (isLast ? kFullTurn : 0.0)) / 2;
    list.push_back({middle, curve.At(middle), true});
  }
  isSettled_[carrier] = true;
}

// Without what is one place with the vertex before it, or, of a place and a vertex that only serves the deviation, closer to it
// than the distance: the place stays.
std::vector<CurveVertex> Carriers::Thinned(const std::vector<CurveVertex>& list, double distance) const {
  std::vector<CurveVertex> kept;
  for (const CurveVertex& vertex : list) {
    const auto isNear = [&](const CurveVertex& last) {
      return last.at.Distance(vertex.at) <= snap_ || (last.isBetween != vertex.isBetween && vertex.t - last.t < distance);
    };
    if (!kept.empty() && isNear(kept.back())) {
      if (vertex.isBetween || !kept.back().isBetween) continue;
      kept.pop_back();
    }
    kept.push_back(vertex);
  }
  return kept;
}

std::vector<CurveVertex> Carriers::VerticesOf(const Stretch& stretch) {
  constexpr double kAtEnd = 1e-3;  // of the parameter: what is nearer to an end in the plane, too, is that end
  if (!isSettled_[stretch.carrier]) Settle(stretch.carrier);
  const std::vector<CurveVertex>& list = vertices_[stretch.carrier];
  const double low = std::min(stretch.t0, stretch.t1), high = std::max(stretch.t0, stretch.t1);
  const ZBR_PT& atLow = stretch.t0 < stretch.t1 ? stretch.from : stretch.to;
  const ZBR_PT& atHigh = stretch.t0 < stretch.t1 ? stretch.to : stretch.from;
  std::vector<CurveVertex> found;
  const double begin = Canonical(stretch.carrier, low);
  const auto first =
      std::lower_bound(list.begin(), list.end(), begin, [](const CurveVertex& vertex, double t) { return vertex.t < t; });
  auto at = static_cast<std::size_t>(first - list.begin());
  const double turns = low - begin;
  for (std::size_t k = 0; k < list.size(); ++k, ++at) {
    const CurveVertex& vertex = list[at % list.size()];
    if (at >= list.size() && !IsPeriodic(stretch.carrier)) break;
    const double t = vertex.t + turns + (at >= list.size() ? kFullTurn : 0.0);
    if (t >= high && !(stretch.isWhole && t < low + kFullTurn)) break;
    const bool isEnd = (t - low < kAtEnd && vertex.at.Distance(atLow) <= snap_) ||
                       (high - t < kAtEnd && vertex.at.Distance(atHigh) <= snap_) || t <= low;
    if (!isEnd || stretch.isWhole) found.push_back({t, vertex.at, vertex.isBetween});
  }
  if (stretch.t1 < stretch.t0) std::reverse(found.begin(), found.end());
  return found;
}

}  // namespace zbr::drawing
