// A shell as parts of some thousand triangles each, most of which are known not to meet themselves nor each other.
//
// Idea: seen along some direction, all triangles of a part turn the same way round. Then each lies, in this picture, inside the
// part's border as often as the border winds around it. Where the border winds round everything at most once, the part is a sheet:
// no two of its triangles cover each other, and so they have nothing in common but corners and edges (Volino and Magnenat-Thalmann
// 1994). Two parts likewise, where both together are one. That takes the borders alone to be looked at: of a million triangles,
// some ten thousand edges.
// Difficulty: where a body bends sharply, and where it comes close to itself, no picture shows both sides.
// Way taken: parts grow from triangle to triangle as long as these face about the same way, so that faces of a body are parts;
// those that are no sheets are cut into smaller ones. What pairs of parts are in doubt then is left to those who ask. A sign that
// is not clear, an edge that touches another one, and a part is no sheet.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "drawing/intersections/exact_sign.h"
#include "drawing/intersections/pictures.h"
#include "drawing/intersections/triangle_trees.h"
#include "drawing/model/connectivity.h"
#include "drawing/unfilled.h"

namespace zbr::drawing {

class SheetCover {
 public:
  using Pair = std::array<std::uint32_t, 2>;

  // Of a shell of which no two triangles run along their common edge the same way.
  SheetCover(const std::vector<GridPoint>& points, const Connectivity& mesh, const std::vector<ZBR_PT3>& normals,
             std::span<const std::array<std::uint32_t, 3>> corners, std::uint32_t first, unsigned threads);

  // Not where the shell falls to crumbs.
  bool IsMade() const { return isMade_; }
  // Parts whose triangles may meet; twice the same where a part may meet itself.
  const std::vector<Pair>& Doubtful() const { return doubtful_; }
  // Calls visit(t, u) for triangles of a doubtful pair whose boxes meet. False when there is too much to look at.
  template <class Visit>
  bool LookInto(const Pair& pair, Visit visit) const;

 private:
  struct Edge {
    std::uint32_t from, to, across;  // points, with the part on the left, and the triangle on the right
  };
  struct Part {
    std::uint32_t begin = 0, end = 0;  // in the order
    Turns turns = kAllTurns;           // all of its triangles'
    bool isSheet = false;
    std::vector<Edge> border;
    std::vector<FloatBox> boxes;        // of chunks, and the levels of a tree above them
    std::vector<std::uint32_t> chunks;  // in the order of the tree

    TreeView Tree() const { return TreeView(boxes.data(), static_cast<std::uint32_t>(chunks.size())); }
  };

  // Triangles that share a box.
  static constexpr std::uint32_t kChunk = 16;
  // Pairs of chunks of a pair of parts, for each chunk. Parts that are next to each other have about one.
  static constexpr std::size_t kMostPairs = 32;

  std::span<const std::uint32_t> Chunk(const Part& part, std::uint32_t leaf) const {
    const std::uint32_t begin = part.begin + part.chunks[leaf] * kChunk;
    return {&order_[begin], std::min(part.end - begin, kChunk)};
  }
  FloatBox BoxOf(std::uint32_t t) const {
    const auto& c = corners_[t - first_];
    return FloatBox::Around(points_[c[0]], points_[c[1]], points_[c[2]]);
  }

  // A triangle of the shell, or none.
  bool Contains(const Part& part, std::uint32_t t) const {
    return t != Connectivity::kNone && place_[t - first_] - part.begin < part.end - part.begin;
  }

  void FindTurns(unsigned threads);
  void Grow();
  void LookAt(Part& part) const;
  void FindBorder(Part& part) const;
  GridPoint FacingOf(const Part& part) const;
  bool IsSheet(const Part& part) const;
  bool AreSheet(const Pair& pair) const;
  void AddSeen(const Part& part, unsigned turn, const Part& without, std::vector<BorderEdge>& edges) const;
  std::vector<std::uint32_t> ComponentsOf(const Part& part) const;
  std::vector<std::uint32_t> PiecesOf(const Part& part) const;
  std::vector<std::uint32_t> Sort(const Part& part, const std::vector<std::uint32_t>& pieces);
  void CutAll(std::vector<std::uint32_t>& open, unsigned threads);
  void FindDoubtful(unsigned threads);

  const std::vector<GridPoint>& points_;
  const Connectivity& mesh_;
  const std::vector<ZBR_PT3>& normals_;
  const std::span<const std::array<std::uint32_t, 3>> corners_;
  const std::uint32_t first_;
  Unfilled<Turns> turns_;          // of triangles, counted from the first
  Unfilled<std::uint32_t> place_;  // of triangles in the order
  Unfilled<std::uint32_t> order_;  // triangles, part by part
  std::vector<Part> parts_;
  std::vector<Pair> doubtful_;
  bool isMade_ = false;
};

template <class Visit>
bool SheetCover::LookInto(const Pair& pair, Visit visit) const {
  const Part &a = parts_[pair[0]], &b = parts_[pair[1]];
  std::size_t left = kMostPairs * (a.chunks.size() + b.chunks.size());
  const auto lookAt = [&](std::uint32_t i, std::uint32_t j) {
    std::array<FloatBox, kChunk> boxes;
    const auto these = Chunk(a, i), those = Chunk(b, j);
    std::transform(those.begin(), those.end(), boxes.begin(), [&](std::uint32_t u) { return BoxOf(u); });
    for (const std::uint32_t t : these) {
      const FloatBox box = BoxOf(t);
      for (std::size_t k = 0; k < those.size(); ++k) {
        if ((&a != &b || t < those[k]) && Meet(box, boxes[k])) visit(t, those[k]);
      }
    }
    return left-- > 0;
  };
  return a.Tree().Join(b.Tree(), lookAt);
}

}  // namespace zbr::drawing
