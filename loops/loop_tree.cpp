// Turning a flat loop list into a region: outer loops with their holes.
//
// Loops are nested largest first, so that a loop finds its containers already in place. The nesting may be any number of levels
// deep; a region has two. Material and void alternate with depth, so every second level becomes an outer loop of its own: an island
// in a hole moves to the top, its holes stay with it.
#include <algorithm>
#include <cmath>
#include <utility>

#include <zbr/loop.h>

#include "core/assert.h"
#include "core/bits.h"
#include "core/prefetch.h"
#include "core/radix_sort.h"
#include "core/tolerance_state.h"
#include "loops/check.h"
#include "loops/nesting.h"

namespace {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;
using zbr::kNoParent;

struct SizedLoop {
  std::uint64_t key;  // descends with the area; areas that are not finite come last
  std::uint32_t index;
};

// The bits of a non-negative double ascend with its value, so their complement descends.
std::uint64_t DescendingKey(double area) {
  return std::isfinite(area) ? ~zbr::BitsOf(std::fabs(area)) : ~std::uint64_t{0};
}

// `sized` has the loops in their order.
void SortBySize(std::vector<SizedLoop>& sized, LoopList& loops) {
  std::vector<SizedLoop> scratch;
  zbr::RadixSort(sized, scratch, [](const SizedLoop& s) { return s.key; });
  LoopList sorted(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) sorted[i] = std::move(loops[sized[i].index]);
  loops = std::move(sorted);
}

// The number of points is asked too: no area is within a tolerance of NaN.
bool IsDegenerate(const ZBR_LOOP& loop, double eps) {
  return loop.pt().size() < 3 || !std::isfinite(loop.area()) || zbr::WithinTol(loop.area(), eps);
}

// The order of the finished list: loops of even depth, depth by depth, in the order in which their parents' parents stand there.
// `first` and `next` are the child lists of the forest, kNoParent standing for the end; roots hang on the extra last entry.
struct Forest {
  std::vector<std::uint32_t> first;
  std::vector<std::uint32_t> next;

  explicit Forest(const std::vector<std::uint32_t>& parents)
      : first(parents.size() + 1, kNoParent), next(parents.size(), kNoParent) {
    for (std::size_t i = parents.size(); i-- > 0;) {
      std::uint32_t& head = first[parents[i] == kNoParent ? parents.size() : parents[i]];
      next[i] = head;
      head = static_cast<std::uint32_t>(i);
    }
  }

  template <class Visit>
  void ForEachChild(std::size_t parent, Visit visit) const {
    for (std::uint32_t c = first[parent]; c != kNoParent; c = next[c]) visit(c);
  }

  std::vector<std::uint32_t> OuterLoops() const {
    std::vector<std::uint32_t> outer;
    ForEachChild(next.size(), [&](std::uint32_t root) { outer.push_back(root); });
    for (std::size_t i = 0; i < outer.size(); ++i) {
      ForEachChild(outer[i],
                   [&](std::uint32_t hole) { ForEachChild(hole, [&](std::uint32_t island) { outer.push_back(island); }); });
    }
    return outer;
  }
};

// Gives the loop its level and the orientation that goes with it.
void Orient(ZBR_LOOP& loop, int level) {
  loop.level() = level;
  const bool isWrong = level == 0 ? loop.area() < 0.0 : loop.area() > 0.0;
  if (isWrong) loop.reverse();
}

// Hangs every hole below its outer loop, orients both, and returns the outer loops.
LoopList OuterLoopsWithHoles(LoopList& loops, const Forest& forest) {
  const std::vector<std::uint32_t> outer = forest.OuterLoops();
  LoopList result;
  result.reserve(outer.size());
  for (std::size_t k = 0; k < outer.size(); ++k) {
    if (k + zbr::kItemsAhead < outer.size()) zbr::PrefetchObject(*loops[outer[k + zbr::kItemsAhead]]);
    std::shared_ptr<ZBR_LOOP>& loop = loops[outer[k]];
    Orient(*loop, 0);
    forest.ForEachChild(outer[k], [&](std::uint32_t hole) {
      Orient(*loops[hole], 1);
      loop->children().push_back(std::move(loops[hole]));
    });
    result.push_back(std::move(loop));
  }
  return result;
}

}  // namespace

void zbrMakeLoopTree(std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  constexpr int kUnseen = -1;
  const double eps = zbr::t_tolerance.eps;
  bool allDegenerate = true;
  for (const std::shared_ptr<ZBR_LOOP>& loop : loops) {
    loop->Setup();
    loop->level() = kUnseen;
    allDegenerate &= IsDegenerate(*loop, eps);
  }
  // A loop that is in the list twice would become its own child; it stays once. Loops are far apart in memory: what is wanted of
  // one, is done or noted in one visit.
  std::vector<SizedLoop> sized;
  sized.reserve(loops.size());
  const auto isLeftOut = [&](const std::shared_ptr<ZBR_LOOP>& loop) {
    const bool isSeen = std::exchange(loop->level(), 0) != kUnseen;
    if (!allDegenerate && (isSeen || IsDegenerate(*loop, eps))) return true;
    sized.push_back({DescendingKey(loop->area()), static_cast<std::uint32_t>(sized.size())});
    if (!allDegenerate) loop->children().clear();
    return false;
  };
  std::erase_if(loops, isLeftOut);
  SortBySize(sized, loops);
  if (allDegenerate) return;
  loops = OuterLoopsWithHoles(loops, Forest(zbr::NestLoops(loops, eps)));
  ZBR_CHECK(zbr::NestingFault(loops, eps));
}

void zbrFlattenLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& loops) {
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const std::shared_ptr<ZBR_LOOP> loop = loops[i];
    loops.insert(loops.end(), loop->children().begin(), loop->children().end());
    loop->children().clear();
    loop->level() = 0;
  }
}
