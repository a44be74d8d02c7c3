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

#include "core/cost.h"
#include "core/directions.h"
#include "core/scratch.h"
#include "loops/edge_index.h"

namespace zbr {

class NearLeaves {
 public:
  // With more pairs than this in which nothing meets, many long slanted edges lie beside each other, and every two have a common
  // box. The sweep over an arrangement tells them apart sooner.
  static constexpr std::size_t kMostPairsPerLeaf = 512;

  // Calls visitor.VisitLeaf(leaf) for leaves whose edges may come near each other, and visitor.VisitLeaves(a, b), a before b, for
  // pairs of leaves whose boxes come within `room`. Both return false to end the search; so does Run then. Before a leaf is
  // searched with what is in a node of some level, visitor.ComesNear(leaf, level, node) may tell that none of its edges comes into
  // the box.
  template <class Visitor>
  bool Run(const EdgeIndex& index, double room, Visitor& visitor) {
    index_ = &index;
    room_ = room;
    leaves_ = index.tree().Count(0);
    if (leaves_ == 0) return true;
    FillMasks();
    return SearchInside(index.tree().TopLevel(), 0, visitor);
  }

  // Large memory is given back.
  void Clear() { FreeLarge(masks_); }

 private:
  struct Node {
    int level;
    std::uint32_t index;
  };

  void FillMasks();
  const Box& BoxOf(Node node) const { return index_->tree().Level(node.level)[node.index]; }
  static double SizeOf(const Box& box) { return (box.xmax - box.xmin) + (box.ymax - box.ymin); }

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
    const Box* boxes = index_->tree().Level(level - 1);
    ZBR_COUNT(nodes, last - first);
    for (std::uint32_t i = first; i < last; ++i) {
      if (!SearchInside(level - 1, i, visitor)) return false;
      const Box around = boxes[i].Widened(room_);
      for (std::uint32_t j = i + 1; j < last; ++j) {
        if (Overlap(around, boxes[j]) && !SearchBetween({level - 1, i}, {level - 1, j}, visitor)) return false;
      }
    }
    return true;
  }

  // Of two nodes whose boxes come near each other, a before b. The larger one is divided, so that large things are told apart from
  // small ones high above the leaves.
  template <class Visitor>
  bool SearchBetween(Node a, Node b, Visitor& visitor) {
    const std::uint32_t lastLeaf = LastLeaf(b.level, b.index);
    if (LastLeaf(a.level, a.index) + 1 == FirstLeaf(b.level, b.index) && kGoesOn[Mask(a.level, a.index) | Mask(b.level, b.index)] &&
        IsChain(FirstLeaf(a.level, a.index), lastLeaf)) {
      return true;
    }
    if (a.level == 0 && b.level == 0) return visitor.VisitLeaves(a.index, b.index);
    if (a.level == 0 && !visitor.ComesNear(a.index, b.level, b.index)) return true;
    if (b.level == 0 && !visitor.ComesNear(b.index, a.level, a.index)) return true;
    const bool dividesA = b.level == 0 || (a.level > 0 && SizeOf(BoxOf(a)) > SizeOf(BoxOf(b)));
    const Node divided = dividesA ? a : b;
    const Box around = BoxOf(dividesA ? b : a).Widened(room_);
    const Box* boxes = index_->tree().Level(divided.level - 1);
    const std::uint32_t end = std::min((divided.index + 1) * BoxTree::kFanOut, index_->tree().Count(divided.level - 1));
    ZBR_COUNT(nodes, BoxTree::kFanOut);
    for (std::uint32_t i = divided.index * BoxTree::kFanOut; i < end; ++i) {
      if (!Overlap(around, boxes[i])) continue;
      const Node child{divided.level - 1, i};
      if (dividesA ? !SearchBetween(child, b, visitor) : !SearchBetween(a, child, visitor)) return false;
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
