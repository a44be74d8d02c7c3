// The ends of segments of many shells, and which of them lie near a segment of another shell.
#pragma once

#include <zbr/planar.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zbr::drawing {

// Single precision, and reaches wider by its rounding: what is found is a choice to look at. A node knows the shells below it: as
// long as shells are apart, a search ends high up, however many lines of one shell there are.
class EndTree {
 public:
  struct End {
    float x, y;
    std::uint32_t shell, segment;

    static End At(const ZBR_PT& p, std::uint32_t shell, std::uint32_t segment) {
      return {static_cast<float>(p.x()), static_cast<float>(p.y()), shell, segment};
    }
  };

  // Ends of one shell that follow one another stay together: a shell with few of them is a leaf.
  explicit EndTree(std::vector<End> ends, unsigned threads = 1);

  // The shells that have ends of others in their box, `reach` wider. No line of another shell is near an end that is not its own.
  std::vector<std::uint32_t> CrowdedShells(double reach, unsigned threads) const;

  // Calls visit(segment) for the ends of other shells that are at most `reach` beside or beyond the segment.
  template <class Visit>
  void ForEachNear(const ZBR_SEG& g, double reach, std::uint32_t shell, const Visit& visit) const;

 private:
  static constexpr std::size_t kLeaf = 8;
  static constexpr std::size_t kDeepest = 64;

  struct Node {
    float low[2], high[2];
    std::uint32_t leastShell, mostShell;
    std::uint32_t begin, end;  // of ends
    std::uint32_t right;       // child; the left one follows its parent; 0 in leaves

    bool IsOf(std::uint32_t shell) const { return leastShell == shell && mostShell == shell; }
  };

  // A part of the tree that is built by itself: shells, and where its nodes begin.
  struct Branch {
    std::span<std::uint32_t> order;
    std::size_t at;
  };

  Node BoxOf(std::uint32_t begin, std::uint32_t end) const;
  std::size_t NodesOf(std::span<const std::uint32_t> order) const;
  // Build into the nodes from `at` on.
  std::size_t Split(std::span<std::uint32_t> order, std::size_t at);
  void BuildShells(std::span<std::uint32_t> order, std::size_t at);
  std::size_t BuildEnds(const Node& node, std::size_t at);
  bool HasOthers(const Node& box, double wide) const;

  // Calls use(end) for all in the leaves that can be entered.
  template <class Enters, class Use>
  void Walk(const Enters& enters, const Use& use) const;

  std::vector<End> ends_;
  std::vector<Node> shells_;  // boxes
  std::vector<Node> nodes_;
  double rounding_ = 0.0;
};

template <class Visit>
void EndTree::ForEachNear(const ZBR_SEG& g, double reach, std::uint32_t shell, const Visit& visit) const {
  const double length = g.s().Distance(g.e()), wide = reach + rounding_;
  if (!(length > 0)) return;
  const ZBR_PT u = (g.e() - g.s()) * (1.0 / length), middle = (g.s() + g.e()) * 0.5;
  const double ux = std::abs(u.x()), uy = std::abs(u.y());
  const ZBR_PT far(0.5 * length * ux + wide, 0.5 * length * uy + wide);
  const ZBR_PT low = middle - far, high = middle + far;
  const auto isNear = [&](const ZBR_PT& p, double dx, double dy) {
    const ZBR_PT d = p - middle;
    return std::abs(u.OuterProduct(d)) <= uy * dx + ux * dy + wide &&
           std::abs(u.InnerProduct(d)) <= 0.5 * length + ux * dx + uy * dy + wide;
  };
  const auto enters = [&](const Node& node) {
    if (node.low[0] > high.x() || node.high[0] < low.x() || node.low[1] > high.y() || node.high[1] < low.y()) return false;
    if (node.IsOf(shell)) return false;
    const ZBR_PT half(0.5 * (double{node.high[0]} - node.low[0]), 0.5 * (double{node.high[1]} - node.low[1]));
    return isNear(ZBR_PT(node.low[0], node.low[1]) + half, half.x(), half.y());
  };
  Walk(enters, [&](const End& end) {
    if (end.shell != shell && isNear(ZBR_PT(end.x, end.y), 0.0, 0.0)) visit(end.segment);
  });
}

template <class Enters, class Use>
void EndTree::Walk(const Enters& enters, const Use& use) const {
  std::uint32_t stack[kDeepest];
  std::size_t depth = 0;
  if (!nodes_.empty()) stack[depth++] = 0;
  while (depth > 0) {
    const std::uint32_t at = stack[--depth];
    const Node& node = nodes_[at];
    if (!enters(node)) continue;
    if (node.right != 0) {
      stack[depth++] = node.right;
      stack[depth++] = at + 1;
      continue;
    }
    for (std::uint32_t k = node.begin; k < node.end; ++k) use(ends_[k]);
  }
}

}  // namespace zbr::drawing
