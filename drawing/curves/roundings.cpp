// Coarse fillets and corners of plates have two or three chords, which circles through any three points would explain, and chamfers
// are no arcs. What tells a rounding: its chords are of one length and turn by one angle, the lines before and behind it turn by
// half of that, as tangents of the circle do, and nothing starts at the corners in between. In a finely divided curve of another
// kind the neighbours are chords and turn as much as the rest; a chamfer in two steps has no reason to halve the first and the last
// angle.
#include "drawing/curves/roundings.h"

#include <algorithm>
#include <span>

#include "drawing/curves/circle_fit.h"

namespace zbr::drawing {
namespace {

constexpr double kAlike = 1.01;           // the longer chord over the shorter
constexpr double kTangent = 0.02;         // by how much a neighbour may be off the tangent, of the angle between chords
constexpr double kLeastHeight = 50.0;     // of an arc, in tolerances
constexpr double kLargestChord = 0.5181;  // as a part of the radius: 2 sin 15 degrees, and 0.1 %
constexpr double kShortestLine = 0.5;     // beside the arc, in chords
constexpr double kOfRadius = 1e-6;        // the least tolerance, as a part of the radius

class RoundingSearch {
 public:
  RoundingSearch(const EdgeChain& chain, const CircleOfEdge& circles, const Noise& noise)
      : chain_(chain), circles_(circles), noise_(noise) {}

  // An empty arc when those edges are none.
  ChainArc At(std::size_t begin, std::size_t count) const {
    const std::size_t end = begin + count, edges = chain_.edges.size();
    if (!chain_.isClosed && (begin == 0 || end == edges)) return {};
    for (std::size_t k = begin; k < end; ++k) {
      if (circles_[k] != nullptr || (k > begin && !chain_.isFree[k])) return {};
    }
    const std::span points = std::span(chain_.points).subspan(begin, count + 1);
    const auto [shortest, longest] = ChordLengthsOf(points);
    if (longest > kAlike * shortest) return {};
    ChainArc arc{begin, end, CircleThrough(points.front(), points[1], points.back()), 0.0, std::vector<bool>(count, false)};
    const Circle& circle = arc.circle;
    if (!(circle.radius > 0) || longest > kLargestChord * circle.radius) return {};
    const double off = DistanceTo(circle, points[count - 1]);
    arc.tolerance = std::max(noise_.known, kOfRadius * circle.radius);
    if (off > arc.tolerance) arc.tolerance = std::max(arc.tolerance, noise_.digits);
    if (off > arc.tolerance || HeightOf(points) < kLeastHeight * arc.tolerance) return {};
    const std::size_t before = begin == 0 ? edges - 1 : begin - 1, behind = end == edges ? 0 : end;
    const bool isTangent = IsTangent(circle, points.front(), points[1], before, shortest) &&
                           IsTangent(circle, points.back(), points[count - 1], behind, shortest);
    return isTangent ? arc : ChainArc{};
  }

 private:
  // Whether an edge of the chain meets the circle at `end` as its tangent, leaving the arc, whose next point is `inner`.
  bool IsTangent(const Circle& circle, const ZBR_PT3& end, const ZBR_PT3& inner, std::size_t edge, double chord) const {
    const ZBR_PT3 &p = chain_.points[edge], &q = chain_.points[edge + 1];
    const double length = p.Distance(q), turn = chord / circle.radius;
    if (length < kShortestLine * chord) return false;
    ZBR_PT3 away = p.Distance(end) < q.Distance(end) ? q - p : p - q;
    if (circles_[edge] != nullptr) away = Along(*circles_[edge], end, away);
    const ZBR_PT3 tangent = Along(circle, end, end - inner);
    return away.Distance(tangent * away.Length()) <= kTangent * turn * away.Length();
  }

  // The unit tangent of the circle at a place, in the direction nearer to the one given.
  static ZBR_PT3 Along(const Circle& circle, const ZBR_PT3& at, const ZBR_PT3& direction) {
    const ZBR_PT3 tangent = circle.axis.OuterProduct(at - circle.centre);
    const double length = tangent.InnerProduct(direction) < 0 ? -tangent.Length() : tangent.Length();
    return tangent * (1.0 / length);
  }

  const EdgeChain& chain_;
  const CircleOfEdge& circles_;
  const Noise noise_;
};

}  // namespace

std::vector<ChainArc> FindRoundings(const EdgeChain& chain, const CircleOfEdge& circles, const Noise& noise) {
  const RoundingSearch search(chain, circles, noise);
  std::vector<ChainArc> arcs;
  for (std::size_t k = 0; k < chain.edges.size();) {
    ChainArc arc;
    for (std::size_t count = kFewestChords - 1; count >= 2 && arc.end == 0; --count) {
      if (k + count <= chain.edges.size()) arc = search.At(k, count);
    }
    k = arc.end == 0 ? k + 1 : arc.end;
    if (arc.end != 0) arcs.push_back(std::move(arc));
  }
  return arcs;
}

}  // namespace zbr::drawing
