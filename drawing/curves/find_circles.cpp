// From the arcs of all chains to the circles of a model. Arcs of one circle are many: a slotted rim, both shells of a joint, the
// mouth of a bore in a plate and the edge of the pin in it. Each arc, the longest ones first, takes the first circle before it that
// its own points lie on; circles are looked up by centre and radius in a grid.
#include <zbr-drawing/circles.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <unordered_map>

#include "drawing/curves/arc_search.h"
#include "drawing/curves/circle_fit.h"

namespace zbr::drawing {
namespace {

constexpr double kSteps = 4.0;         // of rounding that points may be off
constexpr double kLeastNoise = 1e-9;   // in diagonals
constexpr double kSixDigits = 1e-5;    // twice what six digits leave of the largest coordinate
constexpr double kCellPerNoise = 128;  // centres of short arcs are that much less certain than their points

// An arc with what is needed to compare it.
struct FoundArc {
  ChainArc arc;
  std::array<ZBR_PT3, 3> samples;
  std::vector<std::uint32_t> edges;  // of the model
  double turn = 0.0;                 // length over radius
};

class CircleGrid {
 public:
  CircleGrid(double cell, std::vector<Circle>& all) : cell_(cell), all_(all) {}

  // The place of the circle that the arc is part of, which may be new.
  std::uint32_t Place(const FoundArc& found) {
    const Circle& circle = found.arc.circle;
    const std::array<double, 4> at = {circle.centre.x() / cell_, circle.centre.y() / cell_, circle.centre.z() / cell_,
                                      circle.radius / cell_};
    for (unsigned corner = 0; corner < 16; ++corner) {
      const auto cell = cells_.find(Key(at, corner));
      if (cell == cells_.end()) continue;
      for (const std::uint32_t k : cell->second) {
        if (IsOn(all_[k], found)) return k;
      }
    }
    all_.push_back(circle);
    cells_[Key(at, 0)].push_back(static_cast<std::uint32_t>(all_.size() - 1));
    return static_cast<std::uint32_t>(all_.size() - 1);
  }

 private:
  // Of the cell (corner 0), and of those nearest to the place beside it in each direction.
  static std::uint64_t Key(const std::array<double, 4>& at, unsigned corner) {
    std::uint64_t key = 0;
    for (unsigned i = 0; i < 4; ++i) {
      double cell = std::floor(at[i]);
      if ((corner >> i & 1U) != 0) cell += at[i] - cell < 0.5 ? -1.0 : 1.0;
      key = (key ^ static_cast<std::uint64_t>(static_cast<std::int64_t>(cell))) * 0x9e3779b97f4a7c15ULL;
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

void AddArcs(const Model& model, std::size_t shell, const Noise& noise, std::vector<FoundArc>& found) {
  for (const EdgeChain& chain : ChainEdges(model, shell, kFewestChords)) {
    for (ChainArc& arc : FindArcs(chain, noise)) {
      FoundArc entry;
      entry.samples = {chain.points[arc.begin], chain.points[(arc.begin + arc.end) / 2], chain.points[arc.end]};
      for (std::size_t k = arc.begin; k < arc.end; ++k) {
        entry.turn += chain.points[k].Distance(chain.points[k + 1]) / arc.circle.radius;
        if (!arc.isFlat[k - arc.begin]) entry.edges.push_back(model.edgeBegin[shell] + chain.edges[k]);
      }
      entry.arc = std::move(arc);
      found.push_back(std::move(entry));
    }
  }
}

}  // namespace

Circles FindCircles(const Model& model) {
  Circles circles;
  circles.ofEdge.assign(model.edgeBegin.back(), kNoCircle);
  if (!(model.Diagonal() > 0)) return circles;
  const Noise noise = NoiseOf(model);
  std::vector<FoundArc> found;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) AddArcs(model, s, noise, found);

  std::stable_sort(found.begin(), found.end(), [](const FoundArc& a, const FoundArc& b) { return a.turn > b.turn; });
  CircleGrid grid(kCellPerNoise * noise.known, circles.all);
  for (const FoundArc& arc : found) {
    const std::uint32_t place = grid.Place(arc);
    for (const std::uint32_t edge : arc.edges) circles.ofEdge[edge] = place;
  }
  for (Circle& circle : circles.all) {
    circle.centre = circle.centre * model.Diagonal() + model.Centre();
    circle.radius *= model.Diagonal();
  }
  return circles;
}

}  // namespace zbr::drawing
