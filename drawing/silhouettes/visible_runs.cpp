#include "drawing/silhouettes/visible_runs.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zbr::drawing {
namespace {

constexpr double kShort = 0.01;
constexpr double kTogether = 1e-9;  // of the curve, and nothing but rounding

constexpr double kInset = 1e-6;
constexpr int kHalvings = 24;

// Joins it to the last one where that ends as far as `together` before it.
void AddTo(std::vector<SeenCurve::Run>& runs, const SeenCurve::Run& run, double together) {
  if (!runs.empty() && run.from <= runs.back().to + together) {
    runs.back().to = std::max(runs.back().to, run.to);
  } else if (run.to > run.from) {
    runs.push_back(run);
  }
}

// The part of `whole` that is seen, as places at its ends, `looked` at, tell.
template <class IsAt>
SeenCurve::Run SeenPart(const SeenCurve::Run& looked, const SeenCurve::Run& whole, const IsAt& isAt) {
  const bool first = isAt(looked.from), last = isAt(looked.to);
  if (first && last) return whole;
  if (!first && !last) return {whole.from, whole.from};
  double seen = first ? looked.from : looked.to, hidden = first ? looked.to : looked.from;
  for (int halvings = 0; halvings < kHalvings; ++halvings) {
    const double middle = (seen + hidden) * 0.5;
    (isAt(middle) ? seen : hidden) = middle;
  }
  return first ? SeenCurve::Run{whole.from, seen} : SeenCurve::Run{seen, whole.to};
}

// Stretches in a row are seen and hidden in turn. On a closed curve the last one may end beyond the start.
struct Stretch {
  double from = 0.0, to = 0.0;
  bool visible = false;
  double Length() const { return to - from; }
};

std::vector<Stretch> StretchesOf(const SeenCurve& curve) {
  const double whole = curve.along.back();
  std::vector<Stretch> stretches;
  double at = 0.0;
  for (const SeenCurve::Run& run : curve.visible) {
    if (run.from > at) stretches.push_back({at, run.from, false});
    stretches.push_back({run.from, run.to, true});
    at = run.to;
  }
  if (whole > at) stretches.push_back({at, whole, false});
  if (curve.closed && stretches.size() > 1 && stretches.front().visible == stretches.back().visible) {
    stretches.back().to = whole + stretches.front().to;
    stretches.erase(stretches.begin());
  }
  return stretches;
}

// Makes one of a stretch and those beside it.
void Absorb(std::vector<Stretch>& stretches, std::size_t i, bool closed, double whole) {
  const std::size_t n = stretches.size();
  if (!closed) {
    const std::size_t first = i > 0 ? i - 1 : 0, last = std::min(i + 1, n - 1);
    const Stretch joined{stretches[first].from, stretches[last].to, !stretches[i].visible};
    stretches.erase(stretches.begin() + static_cast<std::ptrdiff_t>(first),
                    stretches.begin() + static_cast<std::ptrdiff_t>(last + 1));
    stretches.insert(stretches.begin() + static_cast<std::ptrdiff_t>(first), joined);
    return;
  }
  std::rotate(stretches.begin(), stretches.begin() + static_cast<std::ptrdiff_t>((i + n - 1) % n), stretches.end());
  const Stretch next = stretches[2 % n];  // of two it is the one before as well
  Stretch& before = stretches.front();
  before.to = n == 2 ? before.from + whole : next.to + (next.to < before.from ? whole : 0.0);
  stretches.erase(stretches.begin() + 1, stretches.begin() + (n == 2 ? 2 : 3));
}

void AbsorbShort(std::vector<Stretch>& stretches, double least, bool closed, double whole) {
  while (stretches.size() > 1) {
    const auto shortest = std::min_element(stretches.begin(), stretches.end(),
                                           [](const Stretch& a, const Stretch& b) { return a.Length() < b.Length(); });
    if (shortest->Length() >= least) return;
    Absorb(stretches, static_cast<std::size_t>(shortest - stretches.begin()), closed, whole);
  }
}

// Where a curve dips into another body just before it ends, it is drawn as far as that.
void DropCovered(std::vector<Stretch>& stretches, double least, const SeenCurve& curve) {
  const auto isShort = [&](const Stretch& stretch) { return !stretch.visible && stretch.Length() < least; };
  if (curve.closed) return;
  if (curve.isCovered[1] && stretches.size() > 1 && isShort(stretches.back())) stretches.pop_back();
  if (curve.isCovered[0] && stretches.size() > 1 && isShort(stretches.front())) stretches.erase(stretches.begin());
}

// Twice around.
SeenCurve Doubled(const SeenCurve& curve) {
  SeenCurve doubled = curve;
  for (std::size_t i = 1; i < curve.points.size(); ++i) {
    doubled.points.push_back(curve.points[i]);
    doubled.along.push_back(curve.along[i] + curve.along.back());
    doubled.triangles.push_back(curve.triangles[i - 1]);
  }
  return doubled;
}

// The part of the curve between two distances.
Chain Part(const SeenCurve& curve, double from, double to) {
  Chain chain;
  for (std::size_t i = 0; i + 1 < curve.points.size(); ++i) {
    const double a = curve.along[i], b = curve.along[i + 1];
    if (b <= from || a >= to || !(b - a > kTogether * curve.along.back())) continue;
    const ZBR_PT step = curve.points[i + 1] - curve.points[i];
    if (chain.points.empty()) chain.points.push_back(curve.points[i] + step * (std::max(from - a, 0.0) / (b - a)));
    chain.points.push_back(to < b ? curve.points[i] + step * ((to - a) / (b - a)) : curve.points[i + 1]);
    const EdgeRef edge{curve.triangles[i], EdgeRef::kAcross};
    if (chain.edges.empty() || !(chain.edges.back() == edge)) chain.edges.push_back(edge);
  }
  return chain;
}

}  // namespace

void SeenCurve::Add(const ZBR_PT& from, const ZBR_PT& to, std::uint32_t triangle, const std::vector<ZBR_HL_INTERVAL>& intervals) {
  if (points.empty()) {
    points.push_back(from);
    along.push_back(0.0);
  }
  const double begin = along.back(), length = from.Distance(to);
  points.push_back(to);
  along.push_back(begin + length);
  triangles.push_back(triangle);
  for (const ZBR_HL_INTERVAL& interval : intervals) {
    AddTo(visible, {begin + interval.s.t * length, begin + interval.e.t * length}, kTogether * along.back());
  }
}

void SeenCurve::Keep(const std::function<bool(std::size_t k, double t)>& isSeen) {
  std::vector<Run> kept;
  std::size_t k = 0;
  for (const Run& run : visible) {
    while (k + 2 < along.size() && along[k + 1] <= run.from) ++k;
    for (std::size_t i = k; i + 1 < along.size() && along[i] < run.to; ++i) {
      const double length = along[i + 1] - along[i], from = std::max(run.from, along[i]), to = std::min(run.to, along[i + 1]);
      const auto isAt = [&](double at) { return isSeen(i, (at - along[i]) / length); };
      if (!(to - from > kTogether * along.back())) continue;
      const double middle = (from + to) * 0.5;
      for (const Run& half : {Run{from, middle}, Run{middle, to}}) {
        const double inset = kInset * (half.to - half.from);  // other bodies may end at a corner of the curve
        AddTo(kept, SeenPart({half.from + inset, half.to - inset}, half, isAt), kTogether * along.back());
      }
    }
  }
  visible = std::move(kept);
  isCovered = {!isSeen(0, kInset), !isSeen(along.size() - 2, 1.0 - kInset)};
}

std::vector<Line> LinesOf(const SeenCurve& curve, double size) {
  std::vector<Line> lines;
  if (curve.points.empty() || curve.along.back() < kShort * size) return lines;
  const double whole = curve.along.back();
  std::vector<Stretch> stretches = StretchesOf(curve);
  DropCovered(stretches, kShort * size, curve);
  AbsorbShort(stretches, kShort * size, curve.closed, whole);
  const SeenCurve around = curve.closed ? Doubled(curve) : curve;
  for (const Stretch& stretch : stretches) {
    Line& line = lines.emplace_back();
    line.edgeClass = EdgeClass::kSilhouette;
    line.hidden = !stretch.visible;
    line.chain = Part(around, stretch.from, stretch.to);
    line.chain.closed = curve.closed && stretches.size() == 1;
    if (line.chain.closed) line.chain.points.back() = line.chain.points.front();
  }
  return lines;
}

}  // namespace zbr::drawing
