// Where a curved surface turns away, the silhouette of its facets ends in a zigzag of which pieces show here and there.
//
// Idea: a piece shorter than a line is wide says something only as a part of a longer line, and then both its ends meet lines. So
// what has a free end goes, and what was held by nothing else goes with it. Difficulty: a long line may be made of short pieces, of
// many bodies, and end freely. So what is about to go is added up for each run, and long runs stay. And where the facets of a
// fillet hide each other by turns, its line is dashes so close together that they are one on paper: the next one, straight on,
// holds an end, too.
#include "drawing/views/specks.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "drawing/model/disjoint_sets.h"
#include "drawing/points.h"
#include "drawing/views/chains.h"
#include "drawing/views/end_tree.h"

namespace zbr::drawing {
namespace {

constexpr double kMeets = 0.1;         // of a line's width: as far as an end may be from a line that it meets
constexpr double kStraightOn = 0.866;  // cosine of 30 degrees

double Distance(const ZBR_PT& p, const ZBR_SEG& g) {
  return p.Distance(g.s() + (g.e() - g.s()) * NearestPart(p, g.s(), g.e()));
}

class Specks {
 public:
  Specks(const std::vector<Line>& lines, double width) : lines_(lines), width_(width) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const Line& line = lines[i];
      if (line.hidden || line.edgeClass != EdgeClass::kSilhouette || line.chain.closed) continue;
      if (const double length = LengthOf(line.chain); length < width) specks_.push_back({i, length});
    }
    if (specks_.empty()) return;
    FindHolders();
    LeaveHeld();
  }

  // In the order of the lines.
  std::vector<bool> AreOut() {
    std::vector<bool> areOut(lines_.size(), false);
    DisjointSets runs(specks_.size());
    for (const Hold& hold : holds_) {
      if (isLoose_[hold.end / 2] && isLoose_[hold.by]) runs.Unite(hold.end / 2, hold.by);
    }
    std::vector<double> lengths(specks_.size(), 0.0);
    for (std::uint32_t k = 0; k < specks_.size(); ++k) lengths[runs.Find(k)] += isLoose_[k] ? specks_[k].length : 0.0;
    for (std::uint32_t k = 0; k < specks_.size(); ++k) areOut[specks_[k].line] = isLoose_[k] && lengths[runs.Find(k)] < width_;
    return areOut;
  }

 private:
  struct Speck {
    std::size_t line;
    double length;
  };

  // Ends are numbered in pairs.
  struct Hold {
    std::uint32_t by, end;
    friend bool operator==(const Hold& a, const Hold& b) { return a.by == b.by && a.end == b.end; }
    friend bool operator<(const Hold& a, const Hold& b) { return a.by != b.by ? a.by < b.by : a.end < b.end; }
  };

  const ZBR_PT& At(std::uint32_t end) const {
    const std::vector<ZBR_PT>& points = lines_[specks_[end / 2].line].chain.points;
    return end % 2 == 0 ? points.front() : points.back();
  }

  // Whether a line that begins there goes on where that end stops.
  bool IsNext(std::uint32_t end, const ZBR_PT& begin) const {
    const ZBR_PT along = At(end) - At(end ^ 1U), gap = begin - At(end);
    const double length = gap.Length();
    return length <= width_ && along.InnerProduct(gap) >= kStraightOn * along.Length() * length;
  }

  void FindHolders() {
    std::vector<EndTree::End> ends;
    for (std::uint32_t end = 0; end < 2 * specks_.size(); ++end)
      ends.push_back(EndTree::End::At(At(end), static_cast<std::uint32_t>(specks_[end / 2].line), end));
    const EndTree tree(std::move(ends));
    holders_.assign(2 * specks_.size(), 0);
    std::uint32_t next = 0;  // of the specks
    for (std::uint32_t i = 0; i < lines_.size(); ++i) {
      if (lines_[i].hidden) continue;
      const bool isSpeck = next < specks_.size() && specks_[next].line == i;
      const std::vector<ZBR_PT>& points = lines_[i].chain.points;
      for (std::size_t k = 1; k < points.size(); ++k) {
        const ZBR_SEG g(points[k - 1], points[k]);
        tree.ForEachNear(g, width_, i, [&](std::uint32_t end) {
          if (!isSpeck && holders_[end] != 0) return;
          const bool isNext = (k == 1 && IsNext(end, g.s())) || (k + 1 == points.size() && IsNext(end, g.e()));
          if (!isNext && Distance(At(end), g) > kMeets * width_) return;
          if (isSpeck) {
            holds_.push_back({next, end});
          } else {
            holders_[end] = 1;
          }
        });
      }
      next += isSpeck ? 1 : 0;
    }
    std::sort(holds_.begin(), holds_.end());
    holds_.erase(std::unique(holds_.begin(), holds_.end()), holds_.end());
    for (const Hold& hold : holds_) ++holders_[hold.end];
  }

  // What a loose speck held alone becomes loose.
  void LeaveHeld() {
    isLoose_.assign(specks_.size(), false);
    std::vector<std::uint32_t> loose;
    const auto check = [&](std::uint32_t end) {
      if (holders_[end] > 0 || isLoose_[end / 2]) return;
      isLoose_[end / 2] = true;
      loose.push_back(end / 2);
    };
    for (std::uint32_t end = 0; end < 2 * specks_.size(); ++end) check(end);
    while (!loose.empty()) {
      const std::uint32_t by = loose.back();
      loose.pop_back();
      for (auto hold = std::lower_bound(holds_.begin(), holds_.end(), Hold{by, 0}); hold != holds_.end() && hold->by == by;
           ++hold) {
        --holders_[hold->end];
        check(hold->end);
      }
    }
  }

  const std::vector<Line>& lines_;
  const double width_;
  std::vector<Speck> specks_;
  std::vector<Hold> holds_;             // of specks by others; sorted
  std::vector<std::uint32_t> holders_;  // of each end, how many: other lines as one
  std::vector<bool> isLoose_;
};

}  // namespace

void DropSpecks(ViewLines& view, double width) {
  const std::vector<bool> areOut = Specks(view.lines, width).AreOut();
  std::size_t i = 0;
  std::erase_if(view.lines, [&](const Line&) { return areOut[i++]; });
}

}  // namespace zbr::drawing
