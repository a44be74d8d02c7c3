// A hierarchy of boxes over a sequence, and the join of two such hierarchies or of one with itself.
//
// Idea: four neighbours of the sequence share a parent box, four parents a grandparent, and so on: no pointers, levels as flat
// arrays, built in one pass. It is as good as the sequence is coherent in space. The edges of a ring are so by nature; rings and
// points are first put in the order of a space-filling curve (SpatialOrder).
// The join walks two hierarchies against each other and reports, for each leaf of the first in sequence order, the leaves of the
// second whose boxes overlap it, in sequence order too. Callers that need pairs in a given order get them so without sorting.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "core/box.h"
#include "core/cost.h"
#include "core/scratch.h"

namespace zbr {

class BoxTree {
 public:
  static constexpr std::uint32_t kFanOut = 4;

  // Starts a tree over n leaves and returns their boxes for the caller to fill; BuildInner() then adds the levels above.
  std::span<Box> StartLeaves(std::size_t n);
  void BuildInner();
  // Without leaves; large memory is given back.
  void Clear() {
    FreeLarge(boxes_);
    begin_.clear();
  }

  bool empty() const { return Count(0) == 0; }
  int TopLevel() const { return static_cast<int>(begin_.size()) - 2; }
  std::uint32_t Count(int level) const {
    const auto l = static_cast<std::size_t>(level);
    return begin_.size() < 2 ? 0 : begin_[l + 1] - begin_[l];
  }
  const Box* Level(int level) const { return boxes_.data() + begin_[static_cast<std::size_t>(level)]; }

  // Visits the leaves for which `enter(box, level, index)` holds on the way down, in order. `leaf(index)` returns false to end the
  // walk.
  template <class Enter, class Leaf>
  void Walk(Enter enter, Leaf leaf) const;

 private:
  std::vector<Box> boxes_;            // level 0 (leaves) first
  std::vector<std::uint32_t> begin_;  // where each level begins, and the end
};

template <class Enter, class Leaf>
void BoxTree::Walk(Enter enter, Leaf leaf) const {
  if (empty()) return;
  // Depth first with an explicit stack: at most three siblings wait per level.
  struct Node {
    int level;
    std::uint32_t index;
  };
  Node stack[64];
  int depth = 0;
  if (enter(Level(TopLevel())[0], TopLevel(), std::uint32_t{0})) stack[depth++] = {TopLevel(), 0};
  while (depth > 0) {
    const Node node = stack[--depth];
    if (node.level == 0) {
      if (!leaf(node.index)) return;
      continue;
    }
    const std::uint32_t first = node.index * kFanOut;
    const std::uint32_t count = Count(node.level - 1);
    const std::uint32_t last = first + kFanOut < count ? first + kFanOut : count;
    const Box* boxes = Level(node.level - 1);
    ZBR_COUNT(nodes, last - first);
    for (std::uint32_t i = last; i-- > first;) {
      if (enter(boxes[i], node.level - 1, i)) stack[depth++] = {node.level - 1, i};
    }
  }
}

// For each leaf of `a` (as far as it overlaps anything) calls visit(leaf of a, overlapping leaves of b), both in sequence order.
// Returns early, with false, when visit does so.
class BoxJoin {
 public:
  template <class Visit>
  static bool Run(const BoxTree& a, const BoxTree& b, Visit visit) {
    if (a.empty() || b.empty()) return true;
    BoxJoin join(a, b);
    const Frame root = join.Keep(a.Level(a.TopLevel())[0], b.TopLevel(), 0, 1);
    return root.count == 0 || join.Descend(a.TopLevel(), 0, root, visit);
  }

 private:
  // A run of nodes of b, all of one level, on the shared stack.
  struct Frame {
    std::size_t begin;
    std::size_t count;
    int level;
  };

  BoxJoin(const BoxTree& a, const BoxTree& b) : a_(a), b_(b) { stack_.push_back(0); }

  // Pushes those of the nodes (or, with Split, of their children) that overlap `box`.
  Frame Keep(const Box& box, int level, std::size_t begin, std::size_t count);
  Frame Split(const Box& box, const Frame& nodes);
  void Reserve(std::size_t more) {
    if (stack_.size() < top_ + more) stack_.resize((top_ + more) * 2);
  }

  template <class Visit>
  bool Descend(int level, std::uint32_t node, Frame nodes, Visit& visit) {
    const std::size_t top = top_;
    const Box& box = a_.Level(level)[node];
    // b's nodes are kept no coarser than a's, so that every overlap test rejects as much as it can.
    while (nodes.level > level || (level == 0 && nodes.level > 0)) nodes = Split(box, nodes);
    bool go = true;
    if (nodes.count == 0) {
      // nothing of b reaches this node
    } else if (level == 0) {
      go = visit(node, std::span<const std::uint32_t>(stack_.data() + nodes.begin, nodes.count));
    } else {
      const std::uint32_t first = node * BoxTree::kFanOut;
      const std::uint32_t last = std::min(first + BoxTree::kFanOut, a_.Count(level - 1));
      for (std::uint32_t child = first; go && child < last; ++child) {
        const std::size_t mark = top_;
        const Box& childBox = a_.Level(level - 1)[child];
        const Frame below = nodes.level == level ? Split(childBox, nodes) : Keep(childBox, nodes.level, nodes.begin, nodes.count);
        if (below.count != 0) go = Descend(level - 1, child, below, visit);
        top_ = mark;
      }
    }
    top_ = top;
    return go;
  }

  const BoxTree& a_;
  const BoxTree& b_;
  std::vector<std::uint32_t> stack_;
  std::size_t top_ = 1;
};

// Holds the leaves of one hierarchy against each other: calls leaf(i) for each and pair(i, j), i < j, for those whose boxes
// overlap, neighbours first, until one of them returns false. Where skip(first, last) says so of leaves in a row, all below one
// node, these are not held against themselves.
template <class Skip, class Leaf, class Pair>
class BoxSelfJoin {
 public:
  BoxSelfJoin(const BoxTree& tree, Skip skip, Leaf leaf, Pair pair) : tree_(tree), skip_(skip), leaf_(leaf), pair_(pair) {}

  bool Run() const { return tree_.empty() || Inside(tree_.TopLevel(), 0); }

 private:
  bool Inside(int level, std::uint32_t node) const {
    std::uint32_t begin = node;  // the leaves below the node
    std::uint32_t end = node + 1;
    for (int k = 0; k < level; ++k) {
      begin *= BoxTree::kFanOut;
      end *= BoxTree::kFanOut;
    }
    if (skip_(begin, std::min(end, tree_.Count(0)))) return true;
    if (level == 0) return leaf_(node);
    const std::uint32_t first = node * BoxTree::kFanOut;
    const std::uint32_t last = std::min(first + BoxTree::kFanOut, tree_.Count(level - 1));
    for (std::uint32_t i = first; i < last; ++i) {
      if (!Inside(level - 1, i)) return false;
      for (std::uint32_t j = i + 1; j < last; ++j) {
        if (!Between(level - 1, i, j)) return false;
      }
    }
    return true;
  }

  bool Between(int level, std::uint32_t a, std::uint32_t b) const {
    const Box* boxes = tree_.Level(level);
    if (!Overlap(boxes[a], boxes[b])) return true;
    if (level == 0) return pair_(a, b);
    const std::uint32_t count = tree_.Count(level - 1);
    const Box* below = tree_.Level(level - 1);
    for (std::uint32_t i = a * BoxTree::kFanOut; i < std::min((a + 1) * BoxTree::kFanOut, count); ++i) {
      if (!Overlap(below[i], boxes[b])) continue;
      for (std::uint32_t j = b * BoxTree::kFanOut; j < std::min((b + 1) * BoxTree::kFanOut, count); ++j) {
        if (!Between(level - 1, i, j)) return false;
      }
    }
    return true;
  }

  const BoxTree& tree_;
  Skip skip_;
  Leaf leaf_;
  Pair pair_;
};

// The indices 0..n-1 in the order in which a Hilbert curve meets `centers`: neighbours in it are neighbours in the plane. Linear.
std::vector<std::uint32_t> SpatialOrder(std::span<const ZBR_PT> centers);

}  // namespace zbr
