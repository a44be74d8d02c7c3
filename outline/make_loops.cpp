// Closing loose boundary pieces, which carry their ends as points, into loops: ends are merged into vertices, what can't be part of
// a boundary is dropped, the rest is traced.
#include <algorithm>
#include <vector>

#include <zbr/outline.h>

#include "arrangement/loop_builder.h"
#include "core/box.h"
#include "core/radix_sort.h"
#include "core/tolerance_state.h"
#include "hiddenline/extents.h"
#include "segments/vertices.h"

namespace {

using Ends = std::vector<ZBR_HL_OPT_PT>;

bool IsUsable(const ZBR_PT& p) {
  return zbr::IsUsable(p.x()) && zbr::IsUsable(p.y());
}

bool IsUsable(const Ends& ends, std::size_t piece) {
  return IsUsable(ends[2 * piece].pt) && IsUsable(ends[2 * piece + 1].pt);
}

double WidthFor(const Ends& ends) {
  zbr::Box box;
  for (std::size_t k = 0; k < ends.size() / 2; ++k) {
    if (!IsUsable(ends, k)) continue;
    box.Add(ends[2 * k].pt);
    box.Add(ends[2 * k + 1].pt);
  }
  return zbr::kOutlineTolerance * std::max({box.xmax - box.xmin, box.ymax - box.ymin, 0.0});
}

// The pieces that take part, between merged vertices.
class LoosePieces {
 public:
  LoosePieces(Ends& ends, double width) : ends_(ends) {
    for (std::size_t i = 0; i < ends_.size(); ++i) {
      ends_[i].index = static_cast<int>(i);
      ends_[i].vertex = -1;
      ends_[i].link = -1;
      ends_[i].state = OPT_ZERO;
    }
    MergeEnds(width);
    DropRepeats();
  }

  const std::vector<zbr::BoundaryPiece>& pieces() const { return pieces_; }
  const std::vector<ZBR_PT>& points() const { return points_; }

  // Records how the boundary goes on; next[i] follows piece i.
  void Link(const std::vector<std::uint32_t>& next) {
    std::vector<std::uint32_t> ending(points_.size());
    for (const zbr::BoundaryPiece& p : pieces_) ++ending[p.to];
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      ZBR_HL_OPT_PT& from = ends_[2 * number_[i]];
      ZBR_HL_OPT_PT& to = ends_[2 * number_[i] + 1];
      if (next[i] == zbr::kNoNext) {
        from.state = to.state = OPT_END;
        continue;
      }
      ZBR_HL_OPT_PT& follower = ends_[2 * number_[next[i]]];
      to.link = follower.index;
      follower.link = to.index;
      to.state = follower.state = ending[pieces_[i].to] > 1 ? OPT_BRANCH : OPT_PASSED;
    }
  }

 private:
  void MergeEnds(double width) {
    const zbr::ToleranceScope scope(width);
    zbr::VertexGrid vertices(ends_.size());
    for (std::size_t k = 0; k < ends_.size() / 2; ++k) {
      if (!IsUsable(ends_, k)) continue;
      for (std::size_t i = 2 * k; i < 2 * k + 2; ++i) {
        ends_[i].vertex = vertices.At(ends_[i].pt);
        if (static_cast<std::size_t>(ends_[i].vertex) == points_.size()) points_.push_back(ends_[i].pt);
      }
    }
  }

  // Of repeats the first piece stays; pieces that run both ways between two vertices have no region on either side.
  void DropRepeats() {
    struct Item {
      std::uint64_t ends;  // the smaller vertex first
      std::size_t piece;
      bool reversed;
    };
    std::vector<Item> items;
    std::vector<Item> scratch;
    for (std::size_t k = 0; k < ends_.size() / 2; ++k) {
      const auto from = static_cast<std::uint32_t>(ends_[2 * k].vertex);
      const auto to = static_cast<std::uint32_t>(ends_[2 * k + 1].vertex);
      if (from == to) continue;  // too short, or not finite
      items.push_back({std::uint64_t{std::min(from, to)} << 32U | std::max(from, to), k, from > to});
    }
    const auto ends = [](const Item& item) { return item.ends; };
    zbr::RadixSort(items, scratch, ends);
    zbr::ForEachRun(items, ends, [this](std::span<const Item> repeats) {
      const auto isLikeFirst = [&](const Item& item) { return item.reversed == repeats[0].reversed; };
      if (std::all_of(repeats.begin(), repeats.end(), isLikeFirst)) number_.push_back(repeats[0].piece);
    });
    std::sort(number_.begin(), number_.end());
    for (const std::size_t k : number_) {
      pieces_.push_back({static_cast<std::uint32_t>(ends_[2 * k].vertex), static_cast<std::uint32_t>(ends_[2 * k + 1].vertex)});
    }
  }

  Ends& ends_;
  std::vector<ZBR_PT> points_;
  std::vector<zbr::BoundaryPiece> pieces_;
  std::vector<std::size_t> number_;  // of the piece among those given
};

}  // namespace

int zbrMakeOutLineLoops(std::vector<ZBR_HL_OPT_PT>& pts, std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  const double width = WidthFor(pts);
  LoosePieces loose(pts, width);
  std::vector<std::uint32_t> next;
  const std::vector<zbr::Ring> rings = zbr::TraceRings(loose.pieces(), loose.points(), next);
  loose.Link(next);
  loops = zbr::NestRings(rings, loose.points(), loose.points(), width, zbr::kOutlineTolerance);
  return static_cast<int>(loops.size());
}
