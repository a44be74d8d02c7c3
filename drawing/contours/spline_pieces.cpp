// Idea: what was cut from a spline is the same polynomials of other parameters, and these are an affine map of the spline's. So the
// places of both ends on the spline give the map, and curves of one degree that agree in more places than they have coefficients
// are the same. Boxes of control points tell which to ask: that of a stretch is within that of its spline, whose control points it
// is made of by interpolation. A sweep finds such pairs.
//
// Places of a point are found by halving the spline's Bezier curves, whose hulls tell where it cannot be: a start for Newton's
// method that needs no luck. There are several where the spline meets itself; then every pair of them is tried.
#include "drawing/contours/spline_pieces.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>
#include <tuple>

#include "drawing/contours/meetings.h"

namespace zbr::drawing {
namespace {

constexpr std::size_t kMostPlaces = 16;  // of one point on a spline: beyond that it is not asked about
constexpr int kMostHalvings = 60;        // of a parameter's range, where a spline hardly moves

Extent BoxOf(const std::vector<ZBR_PT>& points) {
  Extent box;
  for (const ZBR_PT& p : points) box.Add(p);
  return box;
}

bool IsWithin(const Extent& inner, const Extent& outer, double reach) {
  return inner.xmin >= outer.xmin - reach && inner.xmax <= outer.xmax + reach && inner.ymin >= outer.ymin - reach &&
         inner.ymax <= outer.ymax + reach;
}

// Where a spline passes a point.
class Places {
 public:
  Places(const Spline& spline, const ZBR_PT& p, double reach) : p_(p), reach_(reach) {
    box_.Add(p), curve_.spline = Shared(spline);
  }

  std::vector<double> Find() {
    const Spline& s = *curve_.spline;
    const auto n = static_cast<std::size_t>(s.degree);
    for (std::size_t span = n; span < s.control.size() && leaves_.size() <= kMostPlaces; ++span) {
      if (s.knots[span] == s.knots[span + 1]) continue;
      const auto first = s.control.begin() + static_cast<std::ptrdiff_t>(span - n);
      if (IsWithin(box_, BoxOf({first, first + s.degree + 1}), reach_)) Halve(s.knots[span], s.knots[span + 1], kMostHalvings);
    }
    const double same = kSame * (s.End() - s.Start());
    std::vector<double> found;
    if (leaves_.size() > kMostPlaces) return found;
    for (const double leaf : leaves_) {
      const double t = std::clamp(NearestParameter(curve_, p_, leaf), s.Start(), s.End());
      const bool isKnown = std::any_of(found.begin(), found.end(), [&](double other) { return std::abs(other - t) <= same; });
      if (!isKnown && s.At(t).Distance(p_) <= reach_) found.push_back(t);
    }
    return found;
  }

 private:
  static constexpr double kSame = 1e-9;  // of the range of parameters

  // Not owned.
  static std::shared_ptr<const Spline> Shared(const Spline& spline) { return {std::shared_ptr<const Spline>(), &spline}; }

  void Halve(double a, double b, int halvings) {
    if (leaves_.size() > kMostPlaces) return;
    const Extent hull = BoxOf(Trimmed(*curve_.spline, a, b).control);
    if (!IsWithin(box_, hull, reach_)) return;
    const double middle = a + (b - a) / 2;
    if (halvings == 0 || hull.Size() <= reach_ || middle <= a || middle >= b) return leaves_.push_back(middle);
    Halve(a, middle, halvings - 1);
    Halve(middle, b, halvings - 1);
  }

  ZBR_PT p_;
  double reach_;
  Extent box_;
  Curve curve_;
  std::vector<double> leaves_;
};

class WholesFinder {
 public:
  WholesFinder(const std::vector<const Spline*>& splines, double tolerance) : splines_(splines), tolerance_(tolerance) {
    for (const Spline* const spline : splines) {
      boxes_.push_back(BoxOf(spline->control));
      wholes_.push_back({wholes_.size()});
    }
  }

  // By their coordinates, so that the one that stands for equals does not depend on the order they come in.
  std::vector<StretchOfSpline> Run() {
    std::vector<std::size_t> order(splines_.size()), active;
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto key = [&](std::size_t i) {
      const ZBR_PT &start = splines_[i]->control.front(), &end = splines_[i]->control.back();
      return std::tuple(boxes_[i].xmin, -boxes_[i].xmax, start.x(), start.y(), end.x(), end.y());
    };
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return key(a) < key(b); });
    for (const std::size_t next : order) {
      std::erase_if(active, [&](std::size_t other) {
        if (IsTop(next)) Compare(next, other);
        if (IsTop(next)) Compare(other, next);
        return !IsTop(other) || boxes_[other].xmax < boxes_[next].xmin - tolerance_;
      });
      if (IsTop(next)) active.push_back(next);
    }
    for (StretchOfSpline& stretch : wholes_) {
      while (!IsTop(stretch.whole)) stretch = After(wholes_[stretch.whole], stretch);
    }
    return std::move(wholes_);
  }

 private:
  bool IsTop(std::size_t i) const { return wholes_[i].whole == i; }

  static StretchOfSpline After(const StretchOfSpline& outer, const StretchOfSpline& inner) {
    return {outer.whole, outer.At(inner.start), outer.rate * inner.rate};
  }

  void Compare(std::size_t part, std::size_t whole) {
    if (!IsWithin(boxes_[part], boxes_[whole], tolerance_)) return;
    const Spline &p = *splines_[part], &w = *splines_[whole];
    if (IsSame(p, w)) {
      wholes_[part] = {whole};
      return;
    }
    const std::vector<double> starts = Places(w, p.At(p.Start()), tolerance_).Find();
    if (starts.empty()) return;
    for (const double end : Places(w, p.At(p.End()), tolerance_).Find()) {
      for (const double start : starts) {
        const double rate = (end - start) / (p.End() - p.Start());
        const StretchOfSpline map{whole, start - rate * p.Start(), rate};
        if (rate == 0 || !std::isfinite(rate) || !std::isfinite(map.start) || !Agree(p, w, map)) continue;
        wholes_[part] = map;
        return;
      }
    }
  }

  static bool IsSame(const Spline& a, const Spline& b) {
    return a.degree == b.degree && a.knots == b.knots && a.weights == b.weights &&
           std::equal(a.control.begin(), a.control.end(), b.control.begin(), b.control.end(), AreIdentical);
  }

  // Between any two knots of either. Ends of these stretches are left out, as splines may leap there.
  bool Agree(const Spline& part, const Spline& whole, const StretchOfSpline& map) const {
    std::vector<double> breaks;
    for (const double knot : part.knots) breaks.push_back(std::clamp(knot, part.Start(), part.End()));
    for (const double knot : whole.knots) breaks.push_back(std::clamp((knot - map.start) / map.rate, part.Start(), part.End()));
    std::sort(breaks.begin(), breaks.end());
    const int places = 2 * std::max(part.degree, whole.degree) + 2;
    for (std::size_t i = 1; i < breaks.size(); ++i) {
      const double a = breaks[i - 1], b = breaks[i];
      for (int k = 1; a < b && k < places; ++k) {
        const double t = a + (b - a) * k / places;
        if (!(part.At(t).Distance(whole.At(map.At(t))) <= tolerance_)) return false;
      }
    }
    return true;
  }

  const std::vector<const Spline*>& splines_;
  double tolerance_;
  std::vector<Extent> boxes_;
  std::vector<StretchOfSpline> wholes_;
};

}  // namespace

std::vector<StretchOfSpline> FindWholes(const std::vector<const Spline*>& splines, double tolerance) {
  return WholesFinder(splines, tolerance).Run();
}

}  // namespace zbr::drawing
