// B-splines by their polar form.
//
// Idea: between two knots a spline of degree n is the value f(t, ..., t) of a function of n arguments that is symmetric, affine in
// each of them and found by repeated interpolation (de Boor's scheme with an argument of its own in each round). Its values with
// arguments a and b alone, f(a, .., a, b, .., b), are the Bezier points of the stretch from a to b. One routine thus gives points,
// pieces, and bounds: a curve lies in the hull of its Bezier points, so chords are within the largest distance of these.
// Rational splines are treated as curves in homogeneous coordinates; weights are positive, so the hull holds for them too.
#include "drawing/contours/spline.h"

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

constexpr int kHighestDegree = 25;  // of splines that programs exchange; the scheme works on copies of as many points
constexpr int kMostHalvings = 12;   // of the stretch between two knots, however small a deviation is asked for

struct Weighted {
  double x = 0.0, y = 0.0, w = 1.0;

  ZBR_PT Point() const { return {x / w, y / w}; }
};

// The knot span that holds t: knots[span] <= t < knots[span + 1], the last span for the end.
std::size_t SpanAt(const Spline& s, double t) {
  const auto first = s.knots.begin() + s.degree, end = s.knots.begin() + static_cast<std::ptrdiff_t>(s.control.size());
  auto above = std::upper_bound(first, end, t);
  while (above - 1 > first && *above == *(above - 1)) --above;  // at the end there may be spans of no length
  return static_cast<std::size_t>(above - s.knots.begin()) - 1;
}

// The value of the polar form of a span: the first `count` arguments are b, the others a.
Weighted Polar(const Spline& s, std::size_t span, double a, double b, int count) {
  const auto n = static_cast<std::size_t>(s.degree);
  Weighted d[kHighestDegree + 1];
  for (std::size_t j = 0; j <= n; ++j) {
    const std::size_t i = span - n + j;
    const double w = s.weights.empty() ? 1.0 : s.weights[i];
    d[j] = {s.control[i].x() * w, s.control[i].y() * w, w};
  }
  for (std::size_t round = 1; round <= n; ++round) {
    const double t = static_cast<int>(round) <= count ? b : a;
    for (std::size_t j = n; j >= round; --j) {
      const double low = s.knots[span - n + j], high = s.knots[span + 1 + j - round];
      const double part = (t - low) / (high - low);
      d[j] = {d[j - 1].x * (1 - part) + d[j].x * part, d[j - 1].y * (1 - part) + d[j].y * part,
              d[j - 1].w * (1 - part) + d[j].w * part};
    }
  }
  return d[n];
}

double DistanceToChord(const ZBR_PT& p, const ZBR_PT& from, const ZBR_PT& to) {
  const ZBR_PT along = to - from, off = p - from;
  const double length2 = along.x() * along.x() + along.y() * along.y();
  const double part = length2 > 0 ? std::clamp((off.x() * along.x() + off.y() * along.y()) / length2, 0.0, 1.0) : 0.0;
  return (off - along * part).Distance(ZBR_PT());
}

bool IsFlat(const Spline& s, std::size_t span, double a, double b, double deviation) {
  const ZBR_PT from = Polar(s, span, a, b, 0).Point(), to = Polar(s, span, a, b, s.degree).Point();
  for (int k = 1; k < s.degree; ++k) {
    if (!(DistanceToChord(Polar(s, span, a, b, k).Point(), from, to) <= deviation)) return false;
  }
  return true;
}

void Halve(const Spline& s, std::size_t span, double a, double b, double deviation, int halvings, std::vector<double>& found) {
  const double middle = a + (b - a) / 2;
  if (halvings == 0 || middle <= a || middle >= b || IsFlat(s, span, a, b, deviation)) return;
  Halve(s, span, a, middle, deviation, halvings - 1, found);
  found.push_back(middle);
  Halve(s, span, middle, b, deviation, halvings - 1, found);
}

// Calls visit with the knot spans between low and high and the part of each that lies there.
template <class Visit>
void ForEachSpan(const Spline& s, double low, double high, Visit visit) {
  for (std::size_t span = SpanAt(s, low); span < s.control.size() && s.knots[span] < high; ++span) {
    const double a = std::max(low, s.knots[span]), b = std::min(high, s.knots[span + 1]);
    if (a < b) visit(span, a, b);
  }
}

}  // namespace

bool Spline::IsValid() const {
  const auto isFinite = [](double number) { return std::isfinite(number); };
  if (degree < 1 || degree > kHighestDegree || control.size() <= static_cast<std::size_t>(degree)) return false;
  if (knots.size() != control.size() + static_cast<std::size_t>(degree) + 1) return false;
  if (!weights.empty() && weights.size() != control.size()) return false;
  for (const ZBR_PT& p : control) {
    if (!isFinite(p.x()) || !isFinite(p.y())) return false;
  }
  const auto isWeight = [&](double weight) { return isFinite(weight) && weight > 0; };
  return std::all_of(weights.begin(), weights.end(), isWeight) && std::all_of(knots.begin(), knots.end(), isFinite) &&
         std::is_sorted(knots.begin(), knots.end()) && Start() < End();
}

ZBR_PT Spline::At(double t) const {
  const double inside = std::clamp(t, Start(), End());
  return Polar(*this, SpanAt(*this, inside), inside, inside, 0).Point();
}

std::vector<double> ChordParameters(const Spline& spline, double from, double to, double deviation) {
  std::vector<double> found;
  ForEachSpan(spline, std::min(from, to), std::max(from, to), [&](std::size_t span, double a, double b) {
    if (a > std::min(from, to)) found.push_back(a);
    Halve(spline, span, a, b, deviation, kMostHalvings, found);
  });
  if (to < from) std::reverse(found.begin(), found.end());
  return found;
}

Spline Trimmed(const Spline& spline, double from, double to) {
  Spline piece;
  piece.degree = spline.degree;
  const double low = std::min(from, to), high = std::max(from, to);
  const auto add = [&](const Weighted& point) {
    piece.control.push_back(point.Point());
    if (!spline.weights.empty()) piece.weights.push_back(point.w);
  };
  piece.knots.assign(static_cast<std::size_t>(spline.degree) + 1, low);
  ForEachSpan(spline, low, high, [&](std::size_t span, double a, double b) {
    if (piece.control.empty()) add(Polar(spline, span, a, b, 0));
    for (int k = 1; k <= spline.degree; ++k) add(Polar(spline, span, a, b, k));
    piece.knots.insert(piece.knots.end(), static_cast<std::size_t>(spline.degree), b);
  });
  piece.knots.push_back(high);
  if (to < from) {
    std::reverse(piece.control.begin(), piece.control.end());
    std::reverse(piece.weights.begin(), piece.weights.end());
    std::reverse(piece.knots.begin(), piece.knots.end());
    for (double& knot : piece.knots) knot = low + (high - knot);
  }
  return piece;
}

}  // namespace zbr::drawing
