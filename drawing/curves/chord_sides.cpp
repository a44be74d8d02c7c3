#include "drawing/curves/chord_sides.h"

#include <algorithm>

#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"

namespace zbr::drawing {

ChordSides::ChordSides(const Model& model, const Circles* circles, unsigned threads) {
  if (circles == nullptr || circles->all.empty()) return;
  std::vector<std::vector<Side>> inRange(RangeCount(model.TriangleCount()));
  ForEachPart(model.shellBegin, threads, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
    const std::uint32_t* const ofEdge = circles->ofEdge.data() + model.edgeBegin[s];
    for (std::size_t t = begin; t < end; ++t) {
      const ZBR_ZBREPT& triangle = *model.Shell(s).GetTriangle(static_cast<int>(t));
      for (std::size_t i = 0; i < 3; ++i) {
        const std::uint32_t circle = ofEdge[EdgeOf(triangle, i).GetIndex()];
        if (circle == kNoCircle) continue;
        inRange[range].push_back({static_cast<std::uint32_t>(3 * (model.shellBegin[s] + t) + i), circle,
                                  VertexOf(triangle, i).GetPt(), VertexOf(triangle, (i + 1) % 3).GetPt()});
      }
    }
  });
  for (const std::vector<Side>& sides : inRange) sides_.insert(sides_.end(), sides.begin(), sides.end());
  FindBlocks(model.TriangleCount());
}

ChordSides::ChordSides(std::vector<Side> sides, std::size_t triangleCount) : sides_(std::move(sides)) {
  std::stable_sort(sides_.begin(), sides_.end(), [](const Side& a, const Side& b) { return a.number < b.number; });
  FindBlocks(triangleCount);
}

void ChordSides::FindBlocks(std::size_t triangleCount) {
  begins_.reserve(3 * triangleCount / kBlock + 2);
  for (std::uint32_t k = 0; k < sides_.size(); ++k) {
    while (begins_.size() <= sides_[k].number / kBlock) begins_.push_back(k);
  }
  begins_.resize(3 * triangleCount / kBlock + 2, static_cast<std::uint32_t>(sides_.size()));
}

const ChordSides::Side* ChordSides::Find(std::size_t triangle, std::size_t edge) const {
  if (sides_.empty()) return nullptr;
  const std::size_t number = 3 * triangle + edge, block = number / kBlock;
  for (std::uint32_t k = begins_[block]; k < begins_[block + 1]; ++k) {
    if (sides_[k].number == number) return &sides_[k];
  }
  return nullptr;
}

const ChordSides::Crossing* ChordSides::FindCrossing(const std::array<std::uint32_t, 2>& triangles) const {
  const auto found =
      std::partition_point(crossings_.begin(), crossings_.end(), [&](const Crossing& c) { return c.triangles < triangles; });
  return found != crossings_.end() && found->triangles == triangles ? &*found : nullptr;
}

}  // namespace zbr::drawing
