// Idea: from each place in turn a stretch of the chain is grown, first forwards, then backwards, as long as one circle holds all
// its points. Lengths are doubled, and then halved, so that a stretch costs no more than a logarithm of its length for each edge.
// The longest stretch is then judged as a whole.
//
// Difficulties: A few points of a finely divided circle are straight within their rounding, and any circle fits them: such a
// stretch is grown further, and judged only when it has bent. A spline or a spiral is a circle nearby within any tolerance: but it
// drifts away from it, while an arc that ends does so at a corner or bends otherwise at once. A difference of third or fourth
// order that just keeps within the tolerance is 16 or 48 times as large half a length beyond the ends.
#include "drawing/curves/arc_search.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "drawing/curves/circle_fit.h"

namespace zbr::drawing {
namespace {

constexpr double kOfRadius = 1e-6;        // the least tolerance, as a part of the radius
constexpr double kOfChordHeight = 0.02;   // and of the distance between a chord and its arc
constexpr double kStraight = 4.0;         // heights up to so many tolerances tell nothing
constexpr double kLeastHeight = 50.0;     // of an arc, in tolerances
constexpr double kLargestRadius = 100.0;  // in diagonals
constexpr double kLeap = 100.0;           // how far a chain leaves an arc half a length beyond its end, in tolerances
constexpr double kFlat = 1.75;            // times the next shorter chord
constexpr double kSlack = 1.001;          // rounding, in comparisons of chords

// The longest chord as a part of the radius: 2 sin 15 degrees.
constexpr double kLargestChord = 0.5176380902 * kSlack;

enum class Fits { kNo, kYes, kMaybe };

class ArcSearch {
 public:
  ArcSearch(const EdgeChain& chain, double noise) : chain_(chain), noise_(noise) {}

  // The arc around an edge within [low, high); empty when there is none. `reached` is how far the stretch went.
  ChainArc At(std::size_t seed, std::size_t low, std::size_t high, std::size_t& reached) const {
    reached = seed + 1;
    if (high - seed < kFewestChords || Try(seed, seed + kFewestChords) == Fits::kNo) return {};
    const std::size_t end = seed + Grow(kFewestChords, high - seed, [&](std::size_t n) { return Try(seed, seed + n); });
    const std::size_t begin = end - Grow(end - seed, end - low, [&](std::size_t n) { return Try(end - n, end); });
    reached = end;
    return Judge(begin, end);
  }

 private:
  std::span<const ZBR_PT3> Points(std::size_t begin, std::size_t end) const {
    return std::span(chain_.points).subspan(begin, end - begin + 1);
  }

  double ToleranceFor(const Circle& circle, std::span<const ZBR_PT3> arc) const {
    double length = 0.0;
    for (std::size_t i = 1; i < arc.size(); ++i) length += arc[i].Distance(arc[i - 1]);
    const double chord = length / static_cast<double>(arc.size() - 1);
    const double chordHeight = chord * chord / (8.0 * circle.radius);
    return std::max({noise_, kOfRadius * circle.radius, kOfChordHeight * chordHeight});
  }

  // Whether the points go round the circle in one direction, and how far they are off at most.
  static bool GoesRound(const Circle& circle, std::span<const ZBR_PT3> arc, double tolerance) {
    for (std::size_t i = 0; i < arc.size(); ++i) {
      if (!(DistanceTo(circle, arc[i]) <= tolerance)) return false;
      if (i == 0) continue;
      const ZBR_PT3 a = arc[i - 1] - circle.centre, b = arc[i] - circle.centre;
      if (!(a.OuterProduct(b).InnerProduct(circle.axis) > 0)) return false;
      if (arc[i].Distance(arc[i - 1]) > kLargestChord * circle.radius) return false;
    }
    return true;
  }

  Fits Try(std::size_t begin, std::size_t end) const {
    const std::span<const ZBR_PT3> arc = Points(begin, end);
    const Circle circle = RoughCircle(arc);
    if (circle.radius > 0 && circle.radius < kLargestRadius && GoesRound(circle, arc, ToleranceFor(circle, arc))) return Fits::kYes;
    return HeightOf(arc) <= kStraight * noise_ ? Fits::kMaybe : Fits::kNo;
  }

  // The largest number of edges, up to `most`, that are tried with success; `good` is one.
  template <class TryLength>
  static std::size_t Grow(std::size_t good, std::size_t most, const TryLength& attempt) {
    std::size_t bad = most + 1;
    while (good < most && bad > most) {
      const std::size_t next = std::min(2 * good, most);
      if (attempt(next) == Fits::kNo) {
        bad = next;
      } else {
        good = next;
      }
    }
    while (bad - good > 1 && bad <= most) {
      const std::size_t middle = good + (bad - good) / 2;
      (attempt(middle) == Fits::kNo ? bad : good) = middle;
    }
    return good;
  }

  ChainArc Judge(std::size_t begin, std::size_t end) const {
    const std::span<const ZBR_PT3> points = Points(begin, end);
    ChainArc arc{begin, end, FitCircle(points), 0.0, {}};
    if (!(arc.circle.radius > 0 && arc.circle.radius < kLargestRadius)) return {};
    arc.tolerance = ToleranceFor(arc.circle, points);
    if (!GoesRound(arc.circle, points, arc.tolerance)) return {};
    if (HeightOf(points) < kLeastHeight * arc.tolerance || HasManyCorners(begin, end)) return {};
    const bool isWhole = chain_.isClosed && end - begin == chain_.edges.size();
    if (!isWhole && !(Leaves(arc, true) && Leaves(arc, false))) return {};
    arc.isFlat = Flats(points, isWhole);
    const auto chords = static_cast<std::size_t>(std::count(arc.isFlat.begin(), arc.isFlat.end(), false));
    return chords >= kFewestChords ? arc : ChainArc{};
  }

  // Where the surface is meant to have corners, edges start at them.
  bool HasManyCorners(std::size_t begin, std::size_t end) const {
    std::size_t corners = 0;
    for (std::size_t i = begin + 1; i < end; ++i) corners += chain_.isFree[i] ? 0 : 1;
    return 2 * corners > end - begin - 1;
  }

  // Whether the chain ends with the arc, or leaves it at once.
  bool Leaves(const ChainArc& arc, bool ahead) const {
    const std::size_t length = arc.end - arc.begin, look = (length + 1) / 2;
    const std::size_t left = ahead ? chain_.edges.size() - arc.end : arc.begin;
    for (std::size_t n = 1; n <= std::min(look, left); ++n) {
      const ZBR_PT3& p = chain_.points[ahead ? arc.end + n : arc.begin - n];
      if (DistanceTo(arc.circle, p) > kLeap * arc.tolerance) return true;
    }
    constexpr std::size_t kRest = 8;  // what follows is too short to tell
    return kRest * left <= length;
  }

  // The ends of a flat lie on the circle, too. But it stands alone, and nothing between its length and that of most chords occurs.
  // Wherever a whole circle starts, its last chord is beside the first.
  static std::vector<bool> Flats(std::span<const ZBR_PT3> points, bool isWhole) {
    std::vector<double> chords;
    for (std::size_t i = 1; i < points.size(); ++i) chords.push_back(points[i].Distance(points[i - 1]));
    std::vector<double> sorted = chords;
    std::sort(sorted.begin(), sorted.end());
    std::size_t few = 3 * sorted.size() / 4;
    while (few < sorted.size() && sorted[few] <= kFlat * sorted[few - 1]) ++few;
    const std::size_t count = chords.size();
    const auto isLong = [&](std::size_t i) { return few < count && chords[i] >= sorted[few]; };
    std::vector<bool> isFlat;
    for (std::size_t i = 0; i < count; ++i) {
      const bool hasLongBefore = (i > 0 || isWhole) && isLong((i + count - 1) % count);
      const bool hasLongAfter = (i + 1 < count || isWhole) && isLong((i + 1) % count);
      isFlat.push_back(isLong(i) && !hasLongBefore && !hasLongAfter);
    }
    return isFlat;
  }

  const EdgeChain& chain_;
  double noise_;
};

}  // namespace

std::vector<ChainArc> FindArcs(const EdgeChain& chain, const Noise& noise) {
  const ArcSearch strict(chain, noise.known), loose(chain, std::max(noise.known, noise.digits));
  std::vector<ChainArc> arcs;
  const std::size_t count = chain.edges.size();
  // A stretch that is no arc is left by half: an arc that starts in it is met in its middle. What is tried more loosely reaches
  // further, and is tried the less often.
  std::size_t low = 0, seed = 0, looseSeed = 0;
  while (seed + kFewestChords <= count) {
    std::size_t reached = 0;
    ChainArc arc = strict.At(seed, low, count, reached);
    const std::size_t next = seed + std::max<std::size_t>((reached - seed) / 2, 1);
    if (arc.end == 0 && seed >= looseSeed) {
      arc = loose.At(seed, low, count, reached);
      looseSeed = seed + (reached - seed) / 2;
    }
    seed = next;
    if (arc.end == 0) continue;
    low = seed = arc.end;
    arcs.push_back(std::move(arc));
  }
  return arcs;
}

}  // namespace zbr::drawing
