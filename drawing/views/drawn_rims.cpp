// How much of a rim is drawn, and how near it is, is counted in steps: what differs by rounding alone is alike.
#include "drawing/views/drawn_rims.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <tuple>
#include <utility>

namespace zbr::drawing {
namespace {

// Of a turn. Finer ones would tell rims apart by what the removal leaves at their ends.
constexpr double kSteps = 361.0;

struct Rim {
  std::uint32_t shell = 0, circle = kNoCircle;
  double turn = 0.0;                   // of what is drawn, in radians
  double drawn = 0.0, nearness = 0.0;  // in steps
};

class Rims {
 public:
  Rims(const DrawnSegments& drawn, const std::vector<DrawnSegment>& lines) : last_(drawn.KnownCircles()->all.size(), kNoRim) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].segment.circle != kNoCircle) Add(i, lines[i], lines.size());
    }
  }

  std::vector<std::uint32_t> TakeRanks(const DrawnSegments& drawn, double contact) {
    const Scene& scene = drawn.GetScene();
    for (Rim& rim : rims_) {
      const ZBR_PT3 centre = drawn.KnownCircles()->all[rim.circle].centre;
      rim.drawn = std::round(std::min(rim.turn / kFullTurn, 1.0) * kSteps);
      rim.nearness = std::round(scene.FromModel(centre).z() / contact);
    }
    std::vector<std::uint32_t> order(rims_.size()), rankOf(rims_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t i, std::uint32_t k) {
      const Rim &a = rims_[i], &b = rims_[k];
      return std::tie(b.drawn, b.nearness, a.shell) < std::tie(a.drawn, a.nearness, b.shell);
    });
    for (std::size_t k = 0; k < order.size(); ++k) rankOf[order[k]] = static_cast<std::uint32_t>(k);
    for (std::uint32_t& rim : rimOf_) {
      if (rim != kNoRim) rim = rankOf[rim];
    }
    return std::move(rimOf_);
  }

 private:
  void Add(std::size_t i, const DrawnSegment& line, std::size_t count) {
    if (rimOf_.empty()) rimOf_.assign(count, kNoRim);
    const std::uint32_t circle = line.segment.circle;
    std::uint32_t& rim = last_[circle];
    if (rim == kNoRim || rims_[rim].shell != line.shell) {
      rim = static_cast<std::uint32_t>(rims_.size());
      rims_.push_back({line.shell, circle});
    }
    rims_[rim].turn += std::abs(std::remainder(line.segment.t1 - line.segment.t0, kFullTurn));
    rimOf_[i] = rim;
  }

  std::vector<Rim> rims_;
  std::vector<std::uint32_t> last_;  // by circle, its rim of the shell that lines were seen of last
  std::vector<std::uint32_t> rimOf_;
};

}  // namespace

std::vector<std::uint32_t> RankRims(const DrawnSegments& drawn, double contact, const std::vector<DrawnSegment>& lines) {
  if (drawn.KnownCircles() == nullptr || drawn.GetScene().view.perspective) return {};
  return Rims(drawn, lines).TakeRanks(drawn, contact);
}

}  // namespace zbr::drawing
