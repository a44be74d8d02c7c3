// Which edges run along the pieces of an arrangement, for borders that leave out vertices which an edge only passes.
//
// Lists of edges for each piece would be as long as edges and pieces multiplied where many lie on each other. But lines run along
// rows of strands; so all edges along some pieces are those whose rows hold the strands of these, from the first to the last. There
// are such as long as the line that begins at or before the first strand and ends last gets there.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "arrangement/arrangement.h"
#include "core/number_lists.h"

namespace zbr {

class StrandsAlong {
 public:
  StrandsAlong() = default;
  explicit StrandsAlong(const Arrangement& arrangement);

  // What has edges along all pieces of a walk: some rows of strands, mostly one.
  using Rows = std::vector<Arrangement::Strands>;

  // The walk begins with a piece.
  void Start(std::uint32_t piece, Rows& rows) const {
    const std::span<const std::uint32_t> strands = strandsOf_[piece];
    rows.resize(strands.size());
    for (std::size_t i = 0; i < strands.size(); ++i) rows[i] = {strands[i], strands[i] + 1};
  }
  // The walk goes on along a piece. False, and nothing changes, when no edge does.
  bool GoOn(std::uint32_t piece, Rows& rows) const {
    const std::span<const std::uint32_t> strands = strandsOf_[piece];
    if (!farthest_.empty()) return KeepReached(strands, rows);
    if (rows.size() != 1 || strands.size() != 1) return KeepCommon(strands, rows);
    return rows[0].first == strands[0];
  }

 private:
  bool KeepReached(std::span<const std::uint32_t> strands, Rows& rows) const;
  // The same where each line is its own strand, and rows are no longer.
  static bool KeepCommon(std::span<const std::uint32_t> strands, Rows& rows);
  static void DropRepeated(Rows& rows);
  // Where the lines end that go on farthest from a strand.
  std::uint32_t FarthestFrom(std::uint32_t strand) const { return farthest_[strand]; }

  NumberLists strandsOf_;                // by piece
  std::vector<std::uint32_t> farthest_;  // none where each line is its own strand
};

// The edges whose lines run along all of a row of strands.
class EdgesOfStrands {
 public:
  EdgesOfStrands(const Arrangement& arrangement, std::size_t edgeCount);

  // Appends the edges of all rows, ascending, each once.
  void Append(const StrandsAlong::Rows& rows, std::vector<std::uint32_t>& edges) const;

 private:
  void AppendLine(std::uint32_t line, std::vector<std::uint32_t>& edges) const;
  void AppendLines(std::size_t node, const Arrangement::Strands& row, std::vector<std::uint32_t>& edges) const;

  NumberLists edgesOf_;  // by line
  // Lines with common strands, by their first, and above them a binary tree of where those below end last.
  std::vector<std::uint32_t> order_;
  std::vector<Arrangement::Strands> tree_;  // the least first strand, and the last one
};

}  // namespace zbr
