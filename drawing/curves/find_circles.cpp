// From the arcs of all chains to the circles of a model. Arcs of one circle are many: a slotted rim, both shells of a joint, the
// mouth of a bore in a plate and the edge of the pin in it. Each arc, the longest ones first, takes the first circle before it that
// its own points lie on; circles are looked up by centre and radius in a grid.
#include <zbr-drawing/circles.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>
#include <unordered_map>

#include "drawing/curves/arc_search.h"
#include "drawing/curves/circle_fit.h"
#include "drawing/curves/rims.h"
#include "drawing/curves/roundings.h"

namespace zbr::drawing {
namespace {

constexpr double kSteps = 4.0;         // of rounding that points may be off
constexpr double kLeastNoise = 1e-9;   // in diagonals
constexpr double kSixDigits = 1e-5;    // twice what six digits leave of the largest coordinate
constexpr double kAlike = 1.05;        // of chords of one division: the longer over the shorter
constexpr double kCellPerNoise = 128;  // centres of short arcs are that much less certain than their points

// An arc with what is needed to compare it.
struct FoundArc {
  ChainArc arc;
  std::array<ZBR_PT3, 3> samples;
  std::vector<std::uint32_t> edges;  // of the model
  double turn = 0.0;                 // length over radius
  double longest = 0.0;              // of its chords
};

class CircleGrid {
 public:
  CircleGrid(double cell, std::vector<Circle>& all) : cell_(cell), all_(all) {}

  // The place of the circle that the arc is part of, which may be new.
  std::uint32_t Place(const FoundArc& found) {
    const std::uint32_t known = Find(found.arc.circle, [&](const Circle& circle) { return IsOn(circle, found); });
    if (known != kNoCircle) return known;
    all_.push_back(found.arc.circle);
    cells_[Key(PlaceOf(found.arc.circle), 0)].push_back(static_cast<std::uint32_t>(all_.size() - 1));
    return static_cast<std::uint32_t>(all_.size() - 1);
  }

  // Of the circles nearby, the first one that is right.
  template <class IsRight>
  std::uint32_t Find(const Circle& near, const IsRight& isRight) const {
    const std::array<double, 4> at = PlaceOf(near);
    for (unsigned corner = 0; corner < 16; ++corner) {
      const auto cell = cells_.find(Key(at, corner));
      if (cell == cells_.end()) continue;
      for (const std::uint32_t k : cell->second) {
        if (isRight(all_[k])) return k;
      }
    }
    return kNoCircle;
  }

 private:
  std::array<double, 4> PlaceOf(const Circle& circle) const {
    return {circle.centre.x() / cell_, circle.centre.y() / cell_, circle.centre.z() / cell_, circle.radius / cell_};
  }

  // Of the cell (corner 0), and of those nearest to the place beside it in each direction.
  static std::uint64_t Key(const std::array<double, 4>& at, unsigned corner) {
    std::uint64_t key = 0;
    for (unsigned i = 0; i < 4; ++i) {
      double cell = std::floor(at[i]);
      if ((corner >> i & 1U) != 0) cell += at[i] - cell < 0.5 ? -1.0 : 1.0;
      key = (key ^ std::bit_cast<std::uint64_t>(cell + 0.0)) * 0x9e3779b97f4a7c15ULL;  // of circles that are nearly lines, too
      key ^= key >> 29;
    }
    return key;
  }

  static bool IsOn(const Circle& circle, const FoundArc& found) {
    const double tolerance = 2.0 * found.arc.tolerance;
    return std::fabs(circle.radius - found.arc.circle.radius) <= kCellPerNoise * tolerance &&
           std::all_of(found.samples.begin(), found.samples.end(),
                       [&](const ZBR_PT3& p) { return DistanceTo(circle, p) <= tolerance; });
  }

  double cell_;
  std::vector<Circle>& all_;
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> cells_;
};

Noise NoiseOf(const Model& model) {
  const double perDiagonal = 1.0 / model.Diagonal();
  const auto largest = [](const ZBR_PT3& p) { return std::max({std::fabs(p.x()), std::fabs(p.y()), std::fabs(p.z())}); };
  const double magnitude = std::max(largest(model.low), largest(model.high)) * perDiagonal;
  return {std::max(kSteps * model.rounding * perDiagonal, kLeastNoise), kSixDigits * std::min(magnitude, 1.0)};
}

FoundArc Collect(const Model& model, std::size_t shell, const EdgeChain& chain, ChainArc arc) {
  FoundArc found;
  found.samples = {chain.points[arc.begin], chain.points[(arc.begin + arc.end) / 2], chain.points[arc.end]};
  for (std::size_t k = arc.begin; k < arc.end; ++k) {
    const double chord = chain.points[k].Distance(chain.points[k + 1]);
    found.turn += chord / arc.circle.radius;
    if (arc.isFlat[k - arc.begin]) continue;
    found.longest = std::max(found.longest, chord);
    found.edges.push_back(model.edgeBegin[shell] + chain.edges[k]);
  }
  found.arc = std::move(arc);
  return found;
}

constexpr std::size_t kFewestOfShort = 2;

// A chain with edges that are part of no arc.
struct OpenChain {
  std::size_t shell;
  EdgeChain chain;
};

void AddArcs(const Model& model, std::size_t shell, const Noise& noise, std::vector<FoundArc>& found,
             std::vector<OpenChain>& rest) {
  std::vector<EdgeChain> chains = ChainEdges(model, shell, kFewestOfShort);
  GoOnInPlane(model, shell, chains);
  for (EdgeChain& chain : chains) {
    std::size_t chords = 0;
    for (ChainArc& arc : FindArcs(chain, noise)) {
      found.push_back(Collect(model, shell, chain, std::move(arc)));
      chords += found.back().edges.size();
    }
    if (chords < chain.edges.size()) rest.push_back({shell, std::move(chain)});
  }
}

// The arcs of two or three chords: roundings, and those of circles that are known from elsewhere.
class ShortArcs {
 public:
  // `longest` are the circles' chords.
  ShortArcs(const Model& model, const Noise& noise, CircleGrid& grid, std::vector<double>& longest, Circles& circles)
      : model_(model), noise_(noise), grid_(grid), longest_(longest), circles_(circles) {}

  void Take(const OpenChain& open) {
    const EdgeChain& chain = open.chain;
    CircleOfEdge known;
    for (const std::uint32_t e : chain.edges) {
      const std::uint32_t circle = circles_.ofEdge[model_.edgeBegin[open.shell] + e];
      known.push_back(circle != kNoCircle ? &circles_.all[circle] : nullptr);
    }
    for (ChainArc& arc : FindRoundings(chain, known, noise_)) {
      const FoundArc found = Collect(model_, open.shell, chain, std::move(arc));
      const std::uint32_t place = grid_.Place(found);
      longest_.resize(circles_.all.size());
      longest_[place] = std::max(longest_[place], found.longest);
      for (const std::uint32_t edge : found.edges) circles_.ofEdge[edge] = place;
    }
    TakeKnown(open.shell, chain);
  }

 private:
  void TakeKnown(std::size_t shell, const EdgeChain& chain) {
    const auto placeOf = [&](std::uint32_t e) -> std::uint32_t& { return circles_.ofEdge[model_.edgeBegin[shell] + e]; };
    for (std::size_t count = kFewestChords - 1; count >= kFewestOfShort; --count) {
      for (std::size_t k = 0; k + count <= chain.edges.size(); ++k) {
        const std::span edges = std::span(chain.edges).subspan(k, count);
        if (std::any_of(edges.begin(), edges.end(), [&](std::uint32_t e) { return placeOf(e) != kNoCircle; })) continue;
        const std::uint32_t circle = CircleOf(std::span(chain.points).subspan(k, count + 1));
        for (const std::uint32_t e : edges) placeOf(e) = circle;
      }
    }
  }

  std::uint32_t CircleOf(std::span<const ZBR_PT3> points) const {
    const ChordLengths chords = ChordLengthsOf(points);
    if (chords.longest > kAlike * chords.shortest) return kNoCircle;
    const Circle through = CircleThrough(points.front(), points[1], points.back());
    if (!(through.radius > 0)) return kNoCircle;
    return grid_.Find(through, [&](const Circle& circle) {
      const double tolerance = 2.0 * noise_.known;
      return chords.longest <= kAlike * longest_[static_cast<std::size_t>(&circle - circles_.all.data())] &&
             std::all_of(points.begin(), points.end(), [&](const ZBR_PT3& p) { return DistanceTo(circle, p) <= tolerance; });
    });
  }

  const Model& model_;
  const Noise noise_;
  CircleGrid& grid_;
  std::vector<double>& longest_;
  Circles& circles_;
};

}  // namespace

Circles FindCircles(const Model& model) {
  Circles circles;
  circles.ofEdge.assign(model.edgeBegin.back(), kNoCircle);
  if (!(model.Diagonal() > 0)) return circles;
  const Noise noise = NoiseOf(model);
  std::vector<FoundArc> found;
  std::vector<OpenChain> rest;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) AddArcs(model, s, noise, found, rest);

  std::stable_sort(found.begin(), found.end(), [](const FoundArc& a, const FoundArc& b) { return a.turn > b.turn; });
  CircleGrid grid(kCellPerNoise * noise.known, circles.all);
  std::vector<double> longest;  // chords, of the circles
  for (const FoundArc& arc : found) {
    const std::uint32_t place = grid.Place(arc);
    longest.resize(circles.all.size());
    longest[place] = std::max(longest[place], arc.longest);
    for (const std::uint32_t edge : arc.edges) circles.ofEdge[edge] = place;
  }
  ShortArcs shorts(model, noise, grid, longest, circles);
  for (const OpenChain& chain : rest) shorts.Take(chain);
  for (Circle& circle : circles.all) {
    circle.centre = circle.centre * model.Diagonal() + model.Centre();
    circle.radius *= model.Diagonal();
  }
  return circles;
}

}  // namespace zbr::drawing
