// Edges that run beside each other do so from an end of one of them to an end of one of them, so for each edge the ends of other
// shells near it are looked for. Edges are gone through in order: each keeps what no earlier one has left in common with it, and
// nothing goes without a line in its place. An edge that goes as a whole is held against nothing: many bodies in one place are no
// more work than one.
#include "drawing/sections/common_cuts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "drawing/curves/parts_beside.h"
#include "drawing/views/end_tree.h"

namespace zbr::drawing {
namespace {

constexpr double kSliver = 1e-9;  // of an edge: what is shorter is left over by rounding

struct CutEdge {
  ZBR_SEG segment;
  std::uint32_t shell;
  std::vector<Part> parts = {{0.0, 1.0}};  // that stay, in order

  ZBR_SEG At(const Part& part) const {
    const ZBR_PT along = segment.e() - segment.s();
    return {part.from > 0 ? segment.s() + along * part.from : segment.s(),
            part.to < 1 ? segment.s() + along * part.to : segment.e()};
  }

  void Take(const Part& gone) {
    std::vector<Part> left;
    for (const Part& part : parts) {
      if (const Part before{part.from, std::min(part.to, gone.from)}; before.to - before.from > kSliver) left.push_back(before);
      if (const Part behind{std::max(part.from, gone.to), part.to}; behind.to - behind.from > kSliver) left.push_back(behind);
    }
    parts = std::move(left);
  }
};

class CommonCuts {
 public:
  CommonCuts(const std::vector<SectionLine>& lines, double contact) : contact_(contact) {
    for (const SectionLine& line : lines) {
      for (std::size_t i = 0; line.isCut && i + 1 < line.points.size(); ++i)
        edges_.push_back({ZBR_SEG(line.points[i], line.points[i + 1]), line.shell});
    }
  }

  // The edges of all cuts, in order.
  const std::vector<CutEdge>& Run() {
    std::vector<EndTree::End> ends;
    for (std::uint32_t k = 0; k < edges_.size(); ++k) {
      for (const ZBR_PT& p : {edges_[k].segment.s(), edges_[k].segment.e()})
        ends.push_back(EndTree::End::At(p, edges_[k].shell, k));
    }
    const EndTree tree(std::move(ends));
    std::vector<std::uint32_t> near;
    for (std::uint32_t k = 0; k < edges_.size(); ++k) {
      if (edges_[k].parts.empty()) continue;
      near.clear();
      tree.ForEachNear(edges_[k].segment, contact_, edges_[k].shell, [&](std::uint32_t other) {
        if (!edges_[other].parts.empty()) near.push_back(other);
      });
      for (const std::uint32_t other : near) {
        if (other < k) TakeCommon(edges_[other], edges_[k]);
      }
      for (const std::uint32_t other : near) {
        if (other > k) TakeCommon(edges_[k], edges_[other]);
      }
    }
    return edges_;
  }

 private:
  // Takes what the first has left from the other.
  void TakeCommon(const CutEdge& stays, CutEdge& edge) const {
    const double length = edge.segment.s().Distance(edge.segment.e());
    if (!(length > 0)) return;
    for (const Part& part : stays.parts) {
      const ZBR_SEG other = stays.At(part);
      if (!(other.s().Distance(other.e()) > 0)) continue;
      const Side side(edge.segment, other, contact_);
      if (!side.IsOneLine(length, contact_)) continue;
      Part common = side.near;
      AddDisc(edge.segment, other.s(), contact_, common);
      AddDisc(edge.segment, other.e(), contact_, common);
      edge.Take(common);
    }
  }

  const double contact_;
  std::vector<CutEdge> edges_;
};

// Adds the polylines that the edges' parts make.
void AddPieces(const SectionLine& line, const CutEdge* edges, std::vector<SectionLine>& pieces) {
  const std::size_t first = pieces.size();
  for (std::size_t i = 0; i + 1 < line.points.size(); ++i) {
    for (const Part& part : edges[i].parts) {
      const ZBR_SEG segment = edges[i].At(part);
      if (pieces.size() == first || part.from > 0 || !(pieces.back().points.back() == segment.s()))
        pieces.push_back({{segment.s()}, {}, line.shell, false, line.isCut});
      pieces.back().points.push_back(segment.e());
      pieces.back().triangles.push_back(line.triangles[i]);
    }
  }
  if (pieces.size() < first + 2 || !line.closed) return;
  SectionLine &start = pieces[first], &end = pieces.back();  // which may be one, through the first point
  if (!(start.points.front() == end.points.back())) return;
  end.points.insert(end.points.end(), start.points.begin() + 1, start.points.end());
  end.triangles.insert(end.triangles.end(), start.triangles.begin(), start.triangles.end());
  start = std::move(end);
  pieces.pop_back();
}

bool IsWhole(const CutEdge& edge) {
  return edge.parts.size() == 1 && edge.parts[0].from == 0.0 && edge.parts[0].to == 1.0;
}

}  // namespace

void LeaveOutCommonCuts(std::vector<SectionLine>& lines, double contact) {
  CommonCuts cuts(lines, contact);
  const CutEdge* edge = cuts.Run().data();
  std::vector<SectionLine> left;
  for (SectionLine& line : lines) {
    const std::size_t count = line.isCut ? line.points.size() - 1 : 0;
    if (std::all_of(edge, edge + count, IsWhole)) {
      left.push_back(std::move(line));
    } else {
      AddPieces(line, edge, left);
    }
    edge += count;
  }
  lines = std::move(left);
}

}  // namespace zbr::drawing
