// Putting triangles into mesh records, and what then meets at which edges.
#pragma once

#include <zbr/mesh.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zbr::drawing {

using Corners = std::array<std::uint32_t, 3>;

// Fills records with triangles of common points, one shell after the other.
class ShellFiller {
 public:
  explicit ShellFiller(const std::vector<ZBR_PT3>& points) : points_(points), place_(points.size(), -1) {}

  // Gives the empty shell the points that the triangles use, numbered as they are met, and the triangles.
  void Fill(std::span<const Corners> triangles, ZBR_ZBREPS& shell, unsigned threads = 1);

 private:
  void FillPoints(std::span<const Corners> triangles, ZBR_ZBREPS& shell);

  const std::vector<ZBR_PT3>& points_;
  std::vector<int> place_;           // of each point among the shell's; -1 outside Fill
  std::vector<std::uint32_t> used_;  // points of the shell
};

// Edge i of triangle t as 3 t + i, with the number of the edge.
struct EdgeUse {
  int edge;
  std::uint32_t use;
  bool operator<(const EdgeUse& o) const { return edge != o.edge ? edge < o.edge : use < o.use; }
};

// Sorted, all uses of edges with three and more.
std::vector<EdgeUse> FindJunctions(const ZBR_ZBREPS& shell, unsigned threads);

// The triangles that repeat an earlier one, in either orientation, in increasing order. `triangles` are those of the shell.
std::vector<std::uint32_t> FindRepeated(const ZBR_ZBREPS& shell, std::span<const Corners> triangles,
                                        const std::vector<EdgeUse>& junctions, unsigned threads);

// Numbers what hangs together by edges that are no junctions, in order of the first triangles. Returns the number of each triangle;
// `count` receives how many there are.
std::vector<std::uint32_t> NumberParts(const ZBR_ZBREPS& shell, const std::vector<EdgeUse>& junctions, unsigned threads,
                                       std::uint32_t& count);

}  // namespace zbr::drawing
