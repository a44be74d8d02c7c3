// Where lines cross, and the parts of a line between the vertices on it.
#include <algorithm>
#include <cmath>
#include <limits>

#include "arrangement/edge_cutter.h"

namespace zbr {

// Appends the parts of the line between the vertices.
void EdgeCutter::AppendParts(const CutLine& line, std::vector<std::uint32_t>& hits, std::vector<CutLine>& next) const {
  if (hits.size() > 1) {
    std::sort(hits.begin(), hits.end(), [&](std::uint32_t u, std::uint32_t v) {
      const int ahead = AheadSign(Node(line.from), Node(line.to), Node(u), Node(v));
      return ahead != 0 ? ahead > 0 : u < v;
    });
  }
  std::uint32_t from = line.from;
  for (const std::uint32_t v : hits) {
    next.push_back(LineBetween(from, v, line.net, line.origin));
    from = v;
  }
  next.push_back(LineBetween(from, line.to, line.net, line.origin));
}

namespace {

// p + d * share / whole, with 0 < share < whole, rounded to the nearest integer, halves up. The remainder of the quotient that
// doubles give is small, so that arithmetic modulo 2^128 knows it exactly.
double RoundedPlace(double p, double d, const Int128& share, const Int128& whole, double t) {
  const auto step = static_cast<std::int64_t>(d);
  auto quotient = static_cast<std::int64_t>(std::floor(d * t + 0.5));
  Int128 rest = share * step - whole * quotient;
  while (!(rest + rest < whole)) {
    ++quotient;
    rest = rest - whole;
  }
  while (rest + rest < -whole) {
    --quotient;
    rest = rest + whole;
  }
  return p + static_cast<double>(quotient);
}

}  // namespace

// The vertex of the crossing, or kNoVertex. Ends that lie on the other line are vertices already, so only proper crossings count.
std::uint32_t EdgeCutter::Cross(const CutLine& a, const CutLine& b) {
  const GridPoint p = Node(a.from);
  const GridPoint q = Node(a.to);
  const GridPoint r = Node(b.from);
  const GridPoint s = Node(b.to);
  if (SideSign(p, q, r) * SideSign(p, q, s) >= 0) return kNoVertex;
  if (SideSign(r, s, p) * SideSign(r, s, q) >= 0) return kNoVertex;
  const Int128 share = ExactSide(r, s, p).Abs();
  const Int128 whole = share + ExactSide(r, s, q).Abs();
  const double t = share.ToDouble() / whole.ToDouble();
  const GridPoint node = {RoundedPlace(p.x, q.x - p.x, share, whole, t), RoundedPlace(p.y, q.y - p.y, share, whole, t)};
  const ZBR_PT place = p.Point() + (q.Point() - p.Point()) * t;
  return vertices_.OnNode(node, isFine_ ? grid_.FromGrid(node.Point()) : TrueCrossing(a, b, place));
}

// A crossing on an edge that is parallel to an axis has that edge's coordinate, to the bit, and not that of its node.
void EdgeCutter::AlignCrossings(std::uint32_t firstCrossing) {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  std::vector<ZBR_PT> aligned(vertices_.size() - firstCrossing, ZBR_PT(kNone, kNone));
  if (aligned.empty()) return;
  for (const CutLine& line : lines_) {
    const ZBR_PT& p = vertices_.point(Origin(line.origin).from);
    const ZBR_PT& q = vertices_.point(Origin(line.origin).to);
    if (p.x() != q.x() && p.y() != q.y()) continue;
    for (const std::uint32_t v : {line.from, line.to}) {
      if (v < firstCrossing) continue;
      ZBR_PT& at = aligned[v - firstCrossing];  // of several edges the least, whatever their order is
      at = ZBR_PT(p.x() == q.x() ? std::min(at.x(), p.x()) : at.x(), p.y() == q.y() ? std::min(at.y(), p.y()) : at.y());
    }
  }
  const auto nearer = [&](double to, double from) { return std::fabs(to - from) <= grid_.step() ? to : from; };
  for (std::uint32_t v = firstCrossing; v < vertices_.size(); ++v) {
    const ZBR_PT& p = vertices_.point(v);
    const ZBR_PT& to = aligned[v - firstCrossing];
    vertices_.SetPoint(v, ZBR_PT(nearer(to.x(), p.x()), nearer(to.y(), p.y())));
  }
}

// The crossing of the edges that the lines come from, as exact as doubles give it, if it is where the lines cross on the grid.
ZBR_PT EdgeCutter::TrueCrossing(const CutLine& a, const CutLine& b, const ZBR_PT& place) const {
  constexpr double kNear = 2.0;  // steps
  const CutLine& first = Origin(std::min(a.origin, b.origin));
  const CutLine& second = Origin(std::max(a.origin, b.origin));
  const ZBR_PT& p = vertices_.point(first.from);
  const ZBR_PT& r = vertices_.point(second.from);
  const ZBR_PT d = vertices_.point(first.to) - p;
  const ZBR_PT e = vertices_.point(second.to) - r;
  const ZBR_PT point = p + d * ((r - p).OuterProduct(e) / d.OuterProduct(e));
  const ZBR_PT off = grid_.ToGrid(point) - place;
  const bool isNear = std::fabs(off.x()) <= kNear && std::fabs(off.y()) <= kNear;  // false for NaN
  return isNear ? point : grid_.FromGrid(place);
}

}  // namespace zbr
