// Finding the segments that may run beside a given one.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include <zbr/planar.h>

#include "core/box_tree.h"
#include "core/sharing.h"

namespace zbr {

// Two segments run beside each other where one, as far as it lies over the other, stays within `width` of it. Searching boxes
// alone finds, of many long slanted segments, nearly all of them for each: what merely crosses has to be told apart.
//
// Idea: over a long stretch only segments of nearly the same direction stay within the width. Long ones are bundled by direction,
// each bundle with boxes along its own direction, which are slender. A short stretch that two long ones have in common is at an
// end of either, for which the ends have a tree. Short segments have another, and where one of two is short, it is the pieces of
// the long one that are looked at.
class Beside {
 public:
  // Of two lists that are counted as one; refers to both. Coordinates are finite and below 1e75: products of four
  // stay finite.
  Beside(std::span<const ZBR_SEG> first, std::span<const ZBR_SEG> second, double width, const Sharing& sharing = Sharing());

  const ZBR_SEG& At(std::size_t i) const { return i < first_.size() ? first_[i] : second_[i - first_.size()]; }

  // Calls visit(k) for all that may run beside segment i of the first list and are of the second or come before it, for some of
  // them more than once, and for others of those as well. `visit` returns false to end the search.
  template <class Visit>
  void ForEach(std::uint32_t i, Visit visit) const;

 private:
  static constexpr int kBundles = 64;

  // Boxes of parts of segments, in an order good for a tree. Its nodes know the least rank below them: where lines are stacked by
  // the hundred, half of all that a search meets would come too late to matter.
  class PartTree {
   public:
    void Reserve(std::size_t count) {
      segments_.reserve(count);
      boxes_.reserve(count);
    }
    void Add(std::uint32_t segment, const ZBR_PT& p, const ZBR_PT& q) {
      segments_.push_back(segment);
      boxes_.push_back(BoxOfSegment(p, q));
    }
    // rank(segment) orders segments.
    template <class Rank>
    void Build(Rank rank);
    // Of rank `last` at most. False when visit ended it.
    template <class Visit>
    bool Search(const Box& box, std::uint32_t last, Visit& visit) const {
      bool goOn = true;
      const auto enter = [&](const Box& node, int level, std::uint32_t index) {
        return least_[PlaceOf(level) + index] <= last && Overlap(box, node);
      };
      tree_.Walk(enter, [&](std::uint32_t leaf) { return goOn = visit(segments_[leaf]); });
      return goOn;
    }

   private:
    // Of the first node of a level among all.
    std::size_t PlaceOf(int level) const { return static_cast<std::size_t>(tree_.Level(level) - tree_.Level(0)); }

    std::vector<std::uint32_t> segments_;  // of the parts
    std::vector<Box> boxes_;               // until they are the leaves of the tree
    std::vector<std::uint32_t> least_;     // ranks, of the nodes of all levels, leaves first
    BoxTree tree_;
  };

  struct Bundle {
    ZBR_PT along;  // of length 1
    PartTree tree;

    ZBR_PT Turned(const ZBR_PT& p) const { return {p.InnerProduct(along), along.x() * p.y() - along.y() * p.x()}; }
  };

  static int BundleOf(const ZBR_SEG& g);
  // 0 in the second list, then by place in the first.
  std::uint32_t RankOf(std::uint32_t i) const { return i < first_.size() ? i + 1 : 0; }
  void MeasureLong();
  void AddLong(std::uint32_t i);
  // Call use(p, q) for both ends, or all pieces, of a long segment.
  template <class Use>
  void ForEachEnd(const ZBR_SEG& g, Use use) const {
    const ZBR_PT part = (g.e() - g.s()) * (short_ / g.s().Distance(g.e()));
    use(g.s(), g.s() + part);
    use(g.e() - part, g.e());
  }
  template <class Use>
  void ForEachPiece(const ZBR_SEG& g, Use use) const {
    const ZBR_PT along = g.e() - g.s();
    const auto count = static_cast<std::size_t>(std::ceil(along.Length() / piece_));
    const auto at = [&](std::size_t k) { return g.s() + along * (static_cast<double>(k) / static_cast<double>(count)); };
    for (std::size_t k = 0; k < count; ++k) use(at(k), at(k + 1));
  }
  bool IsLong(const ZBR_SEG& g) const { return g.s().Distance(g.e()) > short_; }

  std::span<const ZBR_SEG> first_, second_;
  double width_;        // with room for rounding
  double short_ = 0.0;  // length up to which a segment, or a stretch that two have in common, is short
  double piece_ = 0.0;  // length of the pieces of long ones
  std::size_t longCount_ = 0;
  PartTree shorts_;
  PartTree ends_;    // of long ones
  PartTree pieces_;  // of long ones
  std::vector<Bundle> bundles_;
};

template <class Visit>
void Beside::ForEach(std::uint32_t i, Visit visit) const {
  const ZBR_SEG& g = At(i);
  if (!IsLong(g)) {
    const Box box = BoxOfSegment(g.s(), g.e()).Widened(width_);
    if (shorts_.Search(box, i, visit)) pieces_.Search(box, i, visit);
    return;
  }
  const int at = BundleOf(g);
  for (const int step : {0, 1, kBundles - 1}) {
    const Bundle& bundle = bundles_[static_cast<std::size_t>((at + step) % kBundles)];
    const Box box = BoxOfSegment(bundle.Turned(g.s()), bundle.Turned(g.e())).Widened(width_);
    if (!bundle.tree.Search(box, i, visit)) return;
  }
  bool goOn = true;
  const auto search = [&](const PartTree& tree, const ZBR_PT& p, const ZBR_PT& q) {
    goOn = goOn && tree.Search(BoxOfSegment(p, q).Widened(width_), i, visit);
  };
  ForEachEnd(g, [&](const ZBR_PT& p, const ZBR_PT& q) { search(ends_, p, q); });
  ForEachPiece(g, [&](const ZBR_PT& p, const ZBR_PT& q) { search(shorts_, p, q); });
}

}  // namespace zbr
