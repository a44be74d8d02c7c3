// Bodies that were joined along their faces, of which a single one was left, are sheets that meet three and more at an edge; their
// cuts end where others begin, and which of them belong together is not told by their ends.
//
// Idea: together they cut the plane into cells, of which each is material, as walls have some on both sides whichever way they
// face. Only what all its borders turn away from is a void between bodies, such as the bore of two half shells, or a hollow that is
// parted by walls.
#include "drawing/sections/cut_cells.h"

#include <zbr/region.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <map>
#include <tuple>
#include <utility>

#include "drawing/model/disjoint_sets.h"

namespace zbr::drawing {
namespace {

// The share of a void's border that turns away from it, but for triangles turned round.
constexpr double kVoid = 0.9;

struct End {
  ZBR_PT place;
  std::uint32_t contour;
  std::tuple<double, double> Key() const { return {place.x(), place.y()}; }
};

// For each contour, whether it hangs together, by equal ends, with a place where three and more end.
std::vector<bool> AreAtForks(const std::vector<SeenContour>& open) {
  std::vector<End> ends;
  for (std::uint32_t k = 0; k < open.size(); ++k) {
    ends.push_back({open[k].points.front(), k});
    ends.push_back({open[k].points.back(), k});
  }
  std::sort(ends.begin(), ends.end(), [](const End& a, const End& b) { return a.Key() < b.Key(); });
  DisjointSets sets(open.size());
  std::vector<std::uint32_t> forked;
  for (std::size_t begin = 0, end = 0; begin < ends.size(); begin = end) {
    for (; end < ends.size() && ends[end].Key() == ends[begin].Key(); ++end) sets.Unite(ends[begin].contour, ends[end].contour);
    if (end - begin > 2) forked.push_back(ends[begin].contour);
  }
  std::vector<bool> areRoots(open.size()), areAt(open.size());
  for (const std::uint32_t k : forked) areRoots[sets.Find(k)] = true;
  for (std::uint32_t k = 0; k < open.size(); ++k) areAt[k] = areRoots[sets.Find(k)];
  return areAt;
}

class CellTracer {
 public:
  explicit CellTracer(std::vector<SeenContour> contours) : contours_(std::move(contours)), sides_(contours_.size()) {
    ZBR_REGION lines;
    for (const SeenContour& contour : contours_) lines.AddRing(contour.points, true);
    ZBR_REGION_OPTIONS options;
    options.sources = true;
    options.canonical = true;
    zbrTraceFaces(lines.view(), cells_, options);
  }

  // What bounds no cell goes back.
  CutCells Run(std::vector<SeenContour>& rest) {
    for (std::size_t p = 0; p < cells_.polygon_count(); ++p) Look(p);
    for (Cell& cell : looked_) TellVoid(cell);
    CutCells found;
    for (std::size_t p = 0; p < cells_.polygon_count(); ++p) AddRings(p, found.rings);
    for (std::uint32_t k = 0; k < contours_.size(); ++k) {
      if (sides_[k].empty()) {
        rest.push_back(std::move(contours_[k]));
        continue;
      }
      if (IsWall(k)) found.walls.push_back(contours_[k]);
      found.used.push_back(std::move(contours_[k]));
    }
    return found;
  }

 private:
  struct Cell {
    std::map<std::uint32_t, double> lengths;  // by contour
    std::map<std::uint32_t, double> away;     // what of them turns away from the cell
    std::uint32_t shell = SeenContour::kNoShell;
    bool isVoid = false;
  };

  void Look(std::size_t polygon) {
    Cell& cell = looked_.emplace_back();
    for (std::size_t r = RingBegin(polygon); r < RingBegin(polygon + 1); ++r) {
      ForEachEdge(r, [&](const ZBR_PT& a, const ZBR_PT& b, const ZBR_EDGE_SOURCE& source) {
        const auto k = static_cast<std::uint32_t>(source.ring);
        const double part = a.Distance(b);
        cell.lengths[k] += part;
        if ((contours_[k].along > 0) == (source.t1 < source.t0)) cell.away[k] += part;
      });
    }
    for (const auto& [k, part] : cell.lengths) sides_[k].push_back(static_cast<std::uint32_t>(polygon));
    if (!cell.lengths.empty()) cell.shell = MainShell(cell.lengths);
  }

  // By the borders that it has alone, as walls between two cells face one of them anyway; by all of them where it has walls only.
  void TellVoid(Cell& cell) const {
    double length[2] = {}, away[2] = {};
    for (const auto& [k, part] : cell.lengths) {
      const std::size_t isShared = sides_[k].size() > 1 ? 1 : 0;
      const auto turned = cell.away.find(k);
      length[isShared] += part;
      away[isShared] += turned != cell.away.end() ? turned->second : 0.0;
    }
    const std::size_t by = length[0] > 0 ? 0 : 1;
    cell.isVoid = length[by] > 0 && away[by] > kVoid * length[by];
  }

  // Nothing but voids along its border: together they are a hollow of what is around them.
  bool IsHollow(const Cell& cell) const {
    return cell.isVoid && std::all_of(cell.lengths.begin(), cell.lengths.end(), [this](const auto& border) {
             const std::vector<std::uint32_t>& sides = sides_[border.first];
             return std::all_of(sides.begin(), sides.end(), [this](std::uint32_t side) { return looked_[side].isVoid; });
           });
  }

  // No ring's border: the same is on both sides, or a void and the open.
  bool IsWall(std::uint32_t k) const {
    const Cell& first = looked_[sides_[k].front()];
    if (sides_[k].size() == 1) return first.isVoid && !IsHollow(first);
    return std::all_of(sides_[k].begin(), sides_[k].end(), [&](std::uint32_t side) {
      return looked_[side].isVoid == first.isVoid && (first.isVoid || looked_[side].shell == first.shell);
    });
  }

  // Around what is material, and around hollows, which face inwards.
  void AddRings(std::size_t polygon, std::vector<SeenContour>& rings) {
    const Cell& cell = looked_[polygon];
    if (cell.lengths.empty() || (cell.isVoid && !IsHollow(cell))) return;
    for (std::size_t r = RingBegin(polygon); r < RingBegin(polygon + 1); ++r) {
      SeenContour& ring = rings.emplace_back();
      const auto begin = static_cast<std::ptrdiff_t>(cells_.ring_offsets()[r]),
                 end = static_cast<std::ptrdiff_t>(cells_.ring_offsets()[r + 1]);
      ring.points.assign(cells_.points().begin() + begin, cells_.points().begin() + end);
      ring.triangles.assign(ring.points.size(), kNoTriangle);
      ring.shell = cell.shell;
      ring.closed = true;
      ring.along = cell.isVoid ? -1.0 : 1.0;  // all of it
    }
  }

  std::size_t RingBegin(std::size_t polygon) const { return static_cast<std::size_t>(cells_.polygon_offsets()[polygon]); }

  template <class Look>
  void ForEachEdge(std::size_t ring, const Look& look) const {
    const auto begin = static_cast<std::size_t>(cells_.ring_offsets()[ring]),
               end = static_cast<std::size_t>(cells_.ring_offsets()[ring + 1]);
    for (std::size_t i = begin; i < end; ++i) {
      const auto source = static_cast<std::size_t>(cells_.source_offsets()[i]);
      if (cells_.source_offsets()[i + 1] > cells_.source_offsets()[i])
        look(cells_.points()[i], cells_.points()[i + 1 < end ? i + 1 : begin], cells_.sources()[source]);
    }
  }

  std::uint32_t MainShell(const std::map<std::uint32_t, double>& lengths) const {
    std::map<std::uint32_t, double> ofShells;
    for (const auto& [k, part] : lengths) ofShells[contours_[k].shell] += part;
    return std::max_element(ofShells.begin(), ofShells.end(), [](const auto& a, const auto& b) { return a.second < b.second; })
        ->first;
  }

  std::vector<SeenContour> contours_;
  ZBR_REGION cells_;
  std::vector<Cell> looked_;                       // by polygon
  std::vector<std::vector<std::uint32_t>> sides_;  // of contours: the cells that they bound
};

}  // namespace

CutCells TakeCells(std::vector<SeenContour>& open) {
  const std::vector<bool> areAtForks = AreAtForks(open);
  std::vector<SeenContour> forked, rest;
  for (std::size_t k = 0; k < open.size(); ++k) (areAtForks[k] ? forked : rest).push_back(std::move(open[k]));
  open = std::move(rest);
  return forked.empty() ? CutCells() : CellTracer(std::move(forked)).Run(open);
}

}  // namespace zbr::drawing
