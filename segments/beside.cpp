#include "segments/beside.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zbr {
namespace {

// Rounding of turned coordinates and of points along a segment, in parts of the largest coordinate; rounded up generously.
constexpr double kRounding = 1e-12;
// Pieces of a long segment, on the average: more find less that is in vain, and take more memory.
constexpr double kPieces = 8.0;

double LargestCoordinate(std::span<const ZBR_SEG> segments) {
  double largest = 0.0;
  for (const ZBR_SEG& g : segments) {
    for (const ZBR_PT& p : {g.s(), g.e()}) largest = std::max({largest, std::fabs(p.x()), std::fabs(p.y())});
  }
  return largest;
}

}  // namespace

// Directions from 0 to half a turn as numbers from 0 to 2 that grow with the angle, by 0.5 to 1 per radian.
int Beside::BundleOf(const ZBR_SEG& g) {
  double x = g.e().x() - g.s().x(), y = g.e().y() - g.s().y();
  if (y < 0.0) {
    x = -x;
    y = -y;
  }
  const double sum = std::fabs(x) + y;
  if (!(sum > 0.0)) return 0;
  const double turn = x > 0.0 ? y / sum : 1.0 - x / sum;
  return std::min(static_cast<int>(turn * (kBundles / 2.0)), kBundles - 1);
}

template <class Rank>
void Beside::PartTree::Build(Rank rank) {
  if (boxes_.empty()) return;
  std::vector<ZBR_PT> centres;
  centres.reserve(boxes_.size());
  for (const Box& box : boxes_) centres.push_back(box.Center());
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  std::vector<ZBR_PT>().swap(centres);
  const std::span<Box> leaves = tree_.StartLeaves(boxes_.size());
  std::vector<std::uint32_t> segments(boxes_.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    leaves[i] = boxes_[order[i]];
    segments[i] = segments_[order[i]];
  }
  segments_ = std::move(segments);
  std::vector<Box>().swap(boxes_);
  tree_.BuildInner();
  least_.assign(PlaceOf(tree_.TopLevel()) + 1, std::numeric_limits<std::uint32_t>::max());
  for (std::size_t i = 0; i < segments_.size(); ++i) least_[i] = rank(segments_[i]);
  for (int level = 1; level <= tree_.TopLevel(); ++level) {
    for (std::uint32_t i = 0; i < tree_.Count(level - 1); ++i) {
      std::uint32_t& least = least_[PlaceOf(level) + i / BoxTree::kFanOut];
      least = std::min(least, least_[PlaceOf(level - 1) + i]);
    }
  }
}

Beside::Beside(std::span<const ZBR_SEG> first, std::span<const ZBR_SEG> second, double width, const Sharing& sharing)
    : first_(first), second_(second), width_(width), bundles_(kBundles) {
  MeasureLong();
  for (int b = 0; b < kBundles; ++b) {
    const double turn = (b + 0.5) / (kBundles / 2.0);
    const ZBR_PT along = turn < 1.0 ? ZBR_PT(1.0 - turn, turn) : ZBR_PT(1.0 - turn, 2.0 - turn);
    bundles_[static_cast<std::size_t>(b)].along = along / along.Length();
  }
  const auto n = static_cast<std::uint32_t>(first.size() + second.size());
  shorts_.Reserve(n - longCount_);
  ends_.Reserve(2 * longCount_);
  for (std::uint32_t i = 0; i < n; ++i) {
    if (IsLong(At(i))) {
      AddLong(i);
    } else {
      shorts_.Add(i, At(i).s(), At(i).e());
    }
  }
  std::vector<PartTree*> trees{&shorts_, &ends_, &pieces_};
  for (Bundle& bundle : bundles_) trees.push_back(&bundle.tree);
  sharing.Run(trees.size(), [&](std::size_t k) { trees[k]->Build([this](std::uint32_t i) { return RankOf(i); }); });
}

// Segments that stay within the width over more than the length `least` differ by an angle of at most 2 width / least, which has to
// be less than a bundle's share of the directions.
void Beside::MeasureLong() {
  constexpr double kRoom = 1.25;
  const double largest = std::max(LargestCoordinate(first_), LargestCoordinate(second_));
  width_ += kRounding * largest;
  const double least = kRoom * width_ * kBundles;
  short_ = least + 2.0 * width_;
  double sum = 0.0;
  for (std::size_t i = 0; i < first_.size() + second_.size(); ++i) {
    const double length = At(i).s().Distance(At(i).e());
    if (!(length > short_)) continue;
    sum += length;
    ++longCount_;
  }
  piece_ = std::max(short_, longCount_ > 0 ? sum / static_cast<double>(longCount_) / kPieces : 0.0);
}

void Beside::AddLong(std::uint32_t i) {
  const ZBR_SEG& g = At(i);
  ForEachEnd(g, [&](const ZBR_PT& p, const ZBR_PT& q) { ends_.Add(i, p, q); });
  ForEachPiece(g, [&](const ZBR_PT& p, const ZBR_PT& q) { pieces_.Add(i, p, q); });
  Bundle& bundle = bundles_[static_cast<std::size_t>(BundleOf(g))];
  bundle.tree.Add(i, bundle.Turned(g.s()), bundle.Turned(g.e()));
}

}  // namespace zbr
