// Which leaves of a hierarchy over edges come near each other, the pairs that can't meet left out.
//
// Idea: a chain of edges whose directions all lie in one half-plane goes on and on in the direction in its middle, so it can't meet
// itself (as Volino and Magnenat-Thalmann have it for surfaces, "Efficient self-collision detection on smoothly discretized surface
// animations", 1994). The hierarchy over the edges of a ring is a hierarchy of chains: a mask of the directions in each node, one
// bit for an eighth of a turn, tells for most of them that nothing needs to be looked at. What is left is searched like the edges
// of two different rings.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "core/directions.h"
#include "loops/edge_index.h"

namespace zbr {

class NearLeaves {
 public:
  // Calls visitor.VisitLeaf(leaf) for leaves whose edges may come near each other, and visitor.VisitLeaves(a, b), a before b, for
  // pairs of leaves whose boxes come within `room`. Both return false to end the search; so does Run then.
  template <class Visitor>
  bool Run(const EdgeIndex& index, double room, Visitor& visitor) {
    index_ = &index;
    room_ = room;
    leaves_ = index.tree().Count(0);
    if (leaves_ == 0) return true;
    FillMasks();
    return SearchInside(index.tree().TopLevel(), 0, visitor);
  }

 private:
  void FillMasks();

  // Masks lie as the boxes do.
  unsigned Mask(int level, std::uint32_t node) const {
    return masks_[static_cast<std::size_t>(index_->tree().Level(level) - index_->tree().Level(0)) + node];
  }
  std::uint32_t FirstLeaf(int level, std::uint32_t node) const { return node << (2 * level); }
  std::uint32_t LastLeaf(int level, std::uint32_t node) const { return std::min(leaves_, (node + 1) << (2 * level)) - 1; }
  bool IsChain(std::uint32_t firstLeaf, std::uint32_t lastLeaf) const {
    return index_->leaf(firstLeaf).ring == index_->leaf(lastLeaf).ring;
  }

  template <class Visitor>
  bool SearchInside(int level, std::uint32_t node, Visitor& visitor) {
    if (kGoesOn[Mask(level, node)] && IsChain(FirstLeaf(level, node), LastLeaf(level, node))) return true;
    if (level == 0) return visitor.VisitLeaf(node);
    const std::uint32_t first = node * BoxTree::kFanOut;
    const std::uint32_t last = std::min(first + BoxTree::kFanOut, index_->tree().Count(level - 1));
    for (std::uint32_t i = first; i < last; ++i) {
      if (!SearchInside(level - 1, i, visitor)) return false;
      for (std::uint32_t j = i + 1; j < last; ++j) {
        if (!SearchBetween(level - 1, i, j, visitor)) return false;
      }
    }
    return true;
  }

  // Of two nodes, a before b.
  template <class Visitor>
  bool SearchBetween(int level, std::uint32_t a, std::uint32_t b, Visitor& visitor) {
    const Box* boxes = index_->tree().Level(level);
    if (!Overlap(boxes[a].Widened(room_), boxes[b])) return true;
    if (b == a + 1 && kGoesOn[Mask(level, a) | Mask(level, b)] && IsChain(FirstLeaf(level, a), LastLeaf(level, b))) return true;
    if (level == 0) return visitor.VisitLeaves(a, b);
    const std::uint32_t count = index_->tree().Count(level - 1);
    const Box around = boxes[b].Widened(room_);
    for (std::uint32_t i = a * BoxTree::kFanOut; i < std::min((a + 1) * BoxTree::kFanOut, count); ++i) {
      if (!Overlap(index_->tree().Level(level - 1)[i], around)) continue;
      for (std::uint32_t j = b * BoxTree::kFanOut; j < std::min((b + 1) * BoxTree::kFanOut, count); ++j) {
        if (!SearchBetween(level - 1, i, j, visitor)) return false;
      }
    }
    return true;
  }

  const EdgeIndex* index_ = nullptr;
  double room_ = 0.0;
  std::uint32_t leaves_ = 0;
  std::vector<std::uint8_t> masks_;
};

inline void NearLeaves::FillMasks() {
  const BoxTree& tree = index_->tree();
  const int top = tree.TopLevel();
  masks_.assign(static_cast<std::size_t>(tree.Level(top) - tree.Level(0)) + 1, 0);
  for (std::uint32_t leaf = 0; leaf < leaves_; ++leaf) masks_[leaf] = static_cast<std::uint8_t>(index_->leaf(leaf).directions);
  for (int level = 1; level <= top; ++level) {
    const std::uint8_t* below = masks_.data() + (tree.Level(level - 1) - tree.Level(0));
    std::uint8_t* masks = masks_.data() + (tree.Level(level) - tree.Level(0));
    for (std::uint32_t i = 0; i < tree.Count(level - 1); ++i) masks[i / BoxTree::kFanOut] |= below[i];
  }
}

}  // namespace zbr
