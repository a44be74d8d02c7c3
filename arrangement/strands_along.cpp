#include "arrangement/strands_along.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <numeric>

namespace zbr {

StrandsAlong::StrandsAlong(const Arrangement& arrangement) {
  const auto count = static_cast<std::uint32_t>(arrangement.strandCount());
  strandsOf_ = {arrangement.pieces().size(), [&](const auto& add) {
                  for (std::uint32_t s = 0; s < count; ++s) {
                    arrangement.PiecesOfStrand(s, [&](std::uint32_t piece) {
                      if (piece != Arrangement::kNoPiece) add(piece, s);
                    });
                  }
                }};
  if (arrangement.strandsOfLines().empty()) return;
  farthest_.assign(count, 0);
  for (const Arrangement::Strands& row : arrangement.strandsOfLines())
    farthest_[row.first] = std::max(farthest_[row.first], row.last);
  for (std::uint32_t s = 1; s < count; ++s) farthest_[s] = std::max(farthest_[s], farthest_[s - 1]);
}

// Of the piece's strands those count from which a line gets to the end of the row, and to which one gets from its start: some that
// follow each other.
bool StrandsAlong::KeepReached(std::span<const std::uint32_t> strands, Rows& rows) const {
  const auto before = static_cast<std::ptrdiff_t>(rows.size());
  for (std::ptrdiff_t i = 0; i < before; ++i) {
    const Arrangement::Strands row = rows[static_cast<std::size_t>(i)];
    const std::uint32_t farthest = FarthestFrom(row.first);
    const auto endsBefore = [&](std::uint32_t s, std::uint32_t last) { return FarthestFrom(s) < last; };
    for (auto s = std::lower_bound(strands.begin(), strands.end(), row.last, endsBefore); s != strands.end() && *s < farthest;
         ++s) {
      rows.push_back({std::min(row.first, *s), std::max(row.last, *s + 1)});
    }
  }
  if (static_cast<std::ptrdiff_t>(rows.size()) == before) return false;
  rows.erase(rows.begin(), rows.begin() + before);
  if (rows.size() > 1) DropRepeated(rows);
  return true;
}

bool StrandsAlong::KeepCommon(std::span<const std::uint32_t> strands, Rows& rows) {
  std::size_t kept = 0;
  for (const Arrangement::Strands& row : rows) {
    if (std::binary_search(strands.begin(), strands.end(), row.first)) rows[kept++] = row;
  }
  if (kept == 0) return false;
  rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end());
  return true;
}

void StrandsAlong::DropRepeated(Rows& rows) {
  std::sort(rows.begin(), rows.end(), [](const Arrangement::Strands& a, const Arrangement::Strands& b) {
    return a.first != b.first ? a.first < b.first : a.last < b.last;
  });
  const auto isSame = [](const Arrangement::Strands& a, const Arrangement::Strands& b) {
    return a.first == b.first && a.last == b.last;
  };
  rows.erase(std::unique(rows.begin(), rows.end(), isSame), rows.end());
}

EdgesOfStrands::EdgesOfStrands(const Arrangement& arrangement, std::size_t edgeCount) {
  const std::vector<Arrangement::Strands>& rows = arrangement.strandsOfLines();
  const std::size_t lines = rows.empty() ? arrangement.strandCount() : rows.size();
  edgesOf_ = {lines, [&](const auto& add) {
                for (std::uint32_t e = 0; e < edgeCount; ++e) {
                  if (arrangement.LineOf(e) != Arrangement::kNoPiece) add(arrangement.LineOf(e), e);
                }
              }};
  if (rows.empty()) return;
  order_.resize(lines);
  std::iota(order_.begin(), order_.end(), 0U);
  std::stable_sort(order_.begin(), order_.end(), [&](auto i, auto j) { return rows[i].first < rows[j].first; });
  const std::size_t leaves = std::bit_ceil(lines);
  tree_.assign(2 * leaves, {std::numeric_limits<std::uint32_t>::max(), 0});
  for (std::size_t k = 0; k < lines; ++k) tree_[leaves + k] = rows[order_[k]];
  for (std::size_t k = leaves; k-- > 1;) {
    tree_[k] = {std::min(tree_[2 * k].first, tree_[2 * k + 1].first), std::max(tree_[2 * k].last, tree_[2 * k + 1].last)};
  }
}

void EdgesOfStrands::Append(const StrandsAlong::Rows& rows, std::vector<std::uint32_t>& edges) const {
  const auto begin = static_cast<std::ptrdiff_t>(edges.size());
  for (const Arrangement::Strands& row : rows) {
    if (tree_.empty()) {
      AppendLine(row.first, edges);
    } else {
      AppendLines(1, row, edges);
    }
  }
  std::sort(edges.begin() + begin, edges.end());
  edges.erase(std::unique(edges.begin() + begin, edges.end()), edges.end());
}

void EdgesOfStrands::AppendLine(std::uint32_t line, std::vector<std::uint32_t>& edges) const {
  edges.insert(edges.end(), edgesOf_[line].begin(), edgesOf_[line].end());
}

// Of the lines below a node of the tree those that begin at or before the row and end at or behind it.
void EdgesOfStrands::AppendLines(std::size_t node, const Arrangement::Strands& row, std::vector<std::uint32_t>& edges) const {
  if (tree_[node].first > row.first || tree_[node].last < row.last) return;
  const std::size_t leaves = tree_.size() / 2;
  if (node >= leaves) return AppendLine(order_[node - leaves], edges);
  AppendLines(2 * node, row, edges);
  AppendLines(2 * node + 1, row, edges);
}

}  // namespace zbr
