// Where a curved surface turns away, the silhouette of its facets ends in a zigzag of which pieces show here and there.
//
// Idea: a piece shorter than a line is wide says something only as a part of a longer line, and then both its ends meet lines. So
// what has a free end goes, and what was held by nothing else goes with it. Difficulty: a long line may be made of short pieces, of
// many bodies, and end freely. So what is about to go is added up for each run, and long runs stay. And where the facets of a
// fillet hide each other by turns, its line is dashes so close together that they are one on paper: the next one, straight on,
// holds an end, too.
#include "drawing/views/specks.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "drawing/model/disjoint_sets.h"
#include "drawing/parallel.h"
#include "drawing/points.h"
#include "drawing/views/chains.h"
#include "drawing/views/end_tree.h"

namespace zbr::drawing {
namespace {

constexpr double kMeets = 0.1;               // of a line's width: as far as an end may be from a line that it meets
constexpr double kStraightOn = 0.866;        // cosine of 30 degrees
constexpr std::size_t kRangeOfLines = 1024;  // a turn of a thread: they are of any length

double Distance(const ZBR_PT& p, const ZBR_SEG& g) {
  return p.Distance(g.s() + (g.e() - g.s()) * NearestPart(p, g.s(), g.e()));
}

class Specks {
 public:
  // Refers to the lines.
  Specks(const std::vector<Line>& lines, double width, unsigned threads) : lines_(lines), width_(width), threads_(threads) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
      const Line& line = lines[i];
      if (line.hidden || line.edgeClass != EdgeClass::kSilhouette || line.chain.closed) continue;
      if (const double length = LengthOf(line.chain); length < width) specks_.push_back({i, length});
    }
    isLoose_.assign(specks_.size(), false);
    if (!specks_.empty()) FindLoose();
  }

  // In the order of the lines.
  std::vector<bool> AreOut() const {
    std::vector<bool> areOut(lines_.size(), false);
    DisjointSets runs(specks_.size());
    for (const Hold& hold : HoldsOf(EndsIf([&](std::uint32_t end) { return isLoose_[end / 2]; }))) {
      if (isLoose_[hold.by]) runs.Unite(hold.end / 2, hold.by);
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

  template <class IsWanted>
  std::vector<EndTree::End> EndsIf(const IsWanted& isWanted) const {
    std::vector<EndTree::End> ends;
    for (std::uint32_t end = 0; end < 2 * specks_.size(); ++end) {
      if (isWanted(end)) ends.push_back(EndTree::End::At(At(end), static_cast<std::uint32_t>(specks_[end / 2].line), end));
    }
    return ends;
  }

  // Calls use(end) for the ends in the tree, not its own, that a line holds; for some of them more than once. Ends that are
  // isDone(end) are passed over.
  template <class IsDone, class Use>
  void ForEachHeld(const EndTree& tree, std::size_t line, const IsDone& isDone, const Use& use) const {
    const std::vector<ZBR_PT>& points = lines_[line].chain.points;
    for (std::size_t k = 1; k < points.size(); ++k) {
      const ZBR_SEG g(points[k - 1], points[k]);
      tree.ForEachNear(g, width_, static_cast<std::uint32_t>(line), [&](std::uint32_t end) {
        if (isDone(end)) return;
        const bool isNext = (k == 1 && IsNext(end, g.s())) || (k + 1 == points.size() && IsNext(end, g.e()));
        if (isNext || Distance(At(end), g) <= kMeets * width_) use(end);
      });
    }
  }

  // What holds an end that a longer line holds, too, makes no difference to it: mostly that is all of them.
  void FindLoose() {
    const std::vector<std::atomic<bool>> isHeld = HeldByLonger();
    const std::vector<EndTree::End> free = EndsIf([&](std::uint32_t end) { return !isHeld[end]; });
    if (free.empty()) return;
    const std::vector<Hold> holds = HoldsOf(free);
    std::vector<std::uint32_t> holders(isHeld.begin(), isHeld.end());  // of each end, how many: longer lines as one
    for (const Hold& hold : holds) ++holders[hold.end];
    LeaveHeld(holds, holders);
  }

  std::vector<std::atomic<bool>> HeldByLonger() const {
    const EndTree tree(EndsIf([](std::uint32_t) { return true; }), threads_);
    std::vector<std::atomic<bool>> isHeld(2 * specks_.size());
    RunParallel((lines_.size() + kRangeOfLines - 1) / kRangeOfLines, threads_, [&](std::size_t range) {
      const std::size_t begin = range * kRangeOfLines, end = std::min(begin + kRangeOfLines, lines_.size());
      const auto isBefore = [](const Speck& speck, std::size_t line) { return speck.line < line; };
      auto next = std::lower_bound(specks_.begin(), specks_.end(), begin, isBefore);
      for (std::size_t i = begin; i < end; ++i) {
        const bool isSpeck = next != specks_.end() && next->line == i;
        if (isSpeck) ++next;
        if (isSpeck || lines_[i].hidden) continue;
        ForEachHeld(
            tree, i, [&](std::uint32_t k) { return isHeld[k].load(std::memory_order_relaxed); },
            [&](std::uint32_t k) { isHeld[k].store(true, std::memory_order_relaxed); });
      }
    });
    return isHeld;
  }

  // Of these ends by specks, sorted.
  std::vector<Hold> HoldsOf(const std::vector<EndTree::End>& ends) const {
    std::vector<Hold> holds;
    if (ends.empty()) return holds;
    const EndTree tree(ends, threads_);
    std::vector<std::vector<Hold>> inRange((specks_.size() + kRangeOfLines - 1) / kRangeOfLines);
    RunParallel(inRange.size(), threads_, [&](std::size_t range) {
      std::vector<Hold>& own = inRange[range];
      for (std::size_t k = range * kRangeOfLines; k < std::min((range + 1) * kRangeOfLines, specks_.size()); ++k) {
        const auto by = static_cast<std::uint32_t>(k);
        ForEachHeld(
            tree, specks_[k].line, [](std::uint32_t) { return false; },
            [&](std::uint32_t end) {
              own.push_back({by, end});
            });
      }
      std::sort(own.begin(), own.end());
      own.erase(std::unique(own.begin(), own.end()), own.end());
    });
    for (const std::vector<Hold>& own : inRange) holds.insert(holds.end(), own.begin(), own.end());
    return holds;
  }

  // What a loose speck held alone becomes loose.
  void LeaveHeld(const std::vector<Hold>& holds, std::vector<std::uint32_t>& holders) {
    std::vector<std::uint32_t> loose;
    const auto check = [&](std::uint32_t end) {
      if (holders[end] > 0 || isLoose_[end / 2]) return;
      isLoose_[end / 2] = true;
      loose.push_back(end / 2);
    };
    for (std::uint32_t end = 0; end < 2 * specks_.size(); ++end) check(end);
    while (!loose.empty()) {
      const std::uint32_t by = loose.back();
      loose.pop_back();
      for (auto hold = std::lower_bound(holds.begin(), holds.end(), Hold{by, 0}); hold != holds.end() && hold->by == by; ++hold) {
        --holders[hold->end];
        check(hold->end);
      }
    }
  }

  const std::vector<Line>& lines_;
  const double width_;
  const unsigned threads_;
  std::vector<Speck> specks_;
  std::vector<bool> isLoose_;
};

}  // namespace

void DropSpecks(ViewLines& view, double width, unsigned threads) {
  const std::vector<bool> areOut = Specks(view.lines, width, threads).AreOut();
  std::size_t i = 0;
  std::erase_if(view.lines, [&](const Line&) { return areOut[i++]; });
}

}  // namespace zbr::drawing
