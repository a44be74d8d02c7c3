// Nesting by insertion, with every question answered beforehand.
//
// Idea: "does X lie inside Y" is answered no at once when X's first vertex is outside Y's box. So only the pairs left by that test
// need a look. One join of a hierarchy of first vertices with a hierarchy of boxes finds them; they are decided on the spot, while
// both loops are near in memory, and the pairs answered yes, sorted by the later of the two loops, lie ready when that loop is
// inserted.
// Invariant: `parents` is the forest. A list of the forest holds its loops in insertion order: a new loop is appended, and loops
// that move below a new loop keep their order and precede whatever is hung there later. Where loops are nested thousands deep the
// pairs themselves grow with the square; then nest_separate.cpp takes over, and where that cannot (the loops touch), the pairs are
// enumerated loop by loop without being stored.
#include "loops/nesting.h"

#include <algorithm>
#include <utility>

#include "core/cost.h"
#include "core/planar_inline.h"
#include "core/prefetch.h"
#include "core/radix_sort.h"
#include "core/rings.h"

namespace zbr {

namespace {

// Pairs per loop beyond which the nesting counts as deep, and beyond which pairs are only noted until that is known.
constexpr std::size_t kPairsPerLoop = 32;
constexpr std::size_t kPairsDecidedAtOnce = 4;
constexpr std::size_t kPairsAtLeast = 4096;
// With fewer loops than this, all pairs are looked at without a hierarchy.
constexpr std::size_t kMinLoopsToJoin = 16;

std::vector<LoopProbe> ProbesOf(std::span<const std::shared_ptr<ZBR_LOOP>> loops) {
  std::vector<LoopProbe> probes;
  probes.reserve(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (i + kItemsAhead < loops.size()) PrefetchObject(*loops[i + kItemsAhead]);
    probes.emplace_back(*loops[i]);
  }
  return probes;
}

// Two loops of which one lies inside the other.
struct Inclusion {
  std::uint32_t later;
  std::uint32_t earlier;
  bool isLaterInside;

  std::uint64_t Key() const { return std::uint64_t{later} << 32U | earlier; }
};

class Inserter {
 public:
  Inserter(std::span<const std::shared_ptr<ZBR_LOOP>> loops, std::vector<LoopProbe> probes, double eps)
      : loops_(loops), eps_(eps), parents_(loops.size(), kNoParent), probes_(std::move(probes)) {}

  std::vector<std::uint32_t> Run() {
    if (loops_.size() < kMinLoopsToJoin) {
      InsertAllEnumerating();
    } else if (FindInclusions()) {
      InsertAll();
    } else if (!NestSeparateLoops(loops_, probes_, eps_, scratch_, parents_)) {
      InsertAllEnumerating();
    }
    return std::move(parents_);
  }

 private:
  // Fills inclusions_, sorted for insertion. False when there are too many pairs.
  bool FindInclusions() {
    const std::size_t n = loops_.size();
    std::vector<ZBR_PT> centers(n);
    for (std::size_t i = 0; i < n; ++i) centers[i] = probes_[i].box().Center();
    const std::vector<std::uint32_t> order = SpatialOrder(centers);
    const auto prefetchPoints = [&](std::size_t leaf) {
      if (leaf + kItemsAhead < n) Prefetch(probes_[order[leaf + kItemsAhead]].ring().data());
    };
    BoxTree vertices;
    BoxTree boxes;
    const std::span<Box> vertexLeaves = vertices.StartLeaves(n);
    const std::span<Box> boxLeaves = boxes.StartLeaves(n);
    for (std::size_t i = 0; i < n; ++i) {
      prefetchPoints(i);
      vertexLeaves[i].Add(probes_[order[i]].ring().front());
      boxLeaves[i] = probes_[order[i]].box().Widened(2.0 * eps_);  // more than the box test of a point allows
    }
    vertices.BuildInner();
    boxes.BuildInner();

    const std::size_t limit = kPairsAtLeast + kPairsPerLoop * n;
    const std::size_t limitAtOnce = kPairsAtLeast + kPairsDecidedAtOnce * n;
    std::size_t pairs = 0;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> noted;
    const bool isShallow = BoxJoin::Run(vertices, boxes, [&](std::uint32_t leaf, std::span<const std::uint32_t> found) {
      pairs += found.size();
      prefetchPoints(leaf);
      for (const std::uint32_t other : found) {
        if (pairs <= limitAtOnce) {
          Decide(order[leaf], order[other]);
        } else {
          noted.emplace_back(order[leaf], order[other]);
        }
      }
      return pairs <= limit;
    });
    if (!isShallow) return false;
    for (const auto& [x, y] : noted) Decide(x, y);
    std::vector<Inclusion> scratch;
    RadixSort(inclusions_, scratch, [](const Inclusion& i) { return i.Key(); });
    return true;
  }

  // Notes whether x lies inside y.
  void Decide(std::uint32_t x, std::uint32_t y) {
    ZBR_COUNT(pairs, 1);
    if (x == y) return;
    const int verdict = InsideVerdict(probes_[x], probes_[y], eps_, scratch_);
    if (verdict < 0 || (verdict == 0 && FillsGap(probes_[x], loops_[x]->area(), probes_[y], loops_[y]->area(), eps_))) return;
    inclusions_.push_back(x > y ? Inclusion{x, y, true} : Inclusion{y, x, false});
  }

  void InsertAll() {
    const Inclusion* next = inclusions_.data();
    const Inclusion* const end = next + inclusions_.size();
    for (std::uint32_t loop = 0; loop < loops_.size(); ++loop) {
      const Inclusion* const first = next;
      while (next != end && next->later == loop) ++next;
      Insert(loop, {first, static_cast<std::size_t>(next - first)});
    }
  }

  void InsertAllEnumerating() {
    for (std::uint32_t loop = 0; loop < loops_.size(); ++loop) {
      inclusions_.clear();
      for (std::uint32_t other = 0; other < loop; ++other) {
        Decide(loop, other);
        Decide(other, loop);
      }
      Insert(loop, inclusions_);
    }
  }

  void Insert(std::uint32_t loop, std::span<const Inclusion> inclusions) {
    const std::uint32_t parent = FindParent(inclusions);
    for (const Inclusion& i : inclusions) {
      if (i.isLaterInside || parents_[i.earlier] != parent) continue;
      parents_[i.earlier] = loop;
      anyMoved_ = true;
    }
    parents_[loop] = parent;
  }

  // Goes down from the top. Containers come in insertion order, a parent before its children, so that one pass sees every level in
  // order; once a loop has moved below a later one that no longer holds, and every level takes a pass of its own.
  std::uint32_t FindParent(std::span<const Inclusion> inclusions) const {
    std::uint32_t parent = kNoParent;
    for (bool again = true; again;) {
      again = false;
      for (const Inclusion& i : inclusions) {
        if (!i.isLaterInside || parents_[i.earlier] != parent) continue;
        parent = i.earlier;
        again = anyMoved_;
        if (again) break;
      }
    }
    return parent;
  }

  std::span<const std::shared_ptr<ZBR_LOOP>> loops_;
  double eps_;
  std::vector<std::uint32_t> parents_;
  std::vector<LoopProbe> probes_;
  std::vector<Inclusion> inclusions_;
  IncludeScratch scratch_;
  bool anyMoved_ = false;
};

// Whether the loops have the same points in the same order, wherever they start. Boxes are at hand, points are not.
bool AreCopies(const LoopProbe& a, const LoopProbe& b) {
  const RingSpan p = a.ring();
  const RingSpan q = b.ring();
  if (p.size() != q.size() || a.box().xmin != b.box().xmin || a.box().ymin != b.box().ymin) return false;
  if (p.empty()) return true;
  const auto start = std::find_if(q.begin(), q.end(), [&](const ZBR_PT& point) { return AreIdentical(point, p[0]); });
  const auto rest = static_cast<std::ptrdiff_t>(q.end() - start);
  return start != q.end() && std::equal(start, q.end(), p.begin(), AreIdentical) &&
         std::equal(q.begin(), start, p.begin() + rest, AreIdentical);
}

// Runs of copies, of which each lies in the one before. They are nested as one: what lies in the first lies in the last.
class CopyRuns {
 public:
  CopyRuns(std::span<const LoopProbe> probes, double eps) : count_(probes.size()) {
    first_.reserve(count_);
    for (std::uint32_t i = 0; i < count_; ++i) {
      const bool isCopy = i > 0 && AreCopies(probes[i - 1], probes[i]);
      if (!isCopy || !(i - 1 > first_.back() || LiesInCopy(probes[i], eps))) first_.push_back(i);
    }
  }
  bool AreAlone() const { return first_.size() == count_; }
  std::vector<std::shared_ptr<ZBR_LOOP>> Firsts(std::span<const std::shared_ptr<ZBR_LOOP>> loops) const {
    std::vector<std::shared_ptr<ZBR_LOOP>> firsts;
    firsts.reserve(first_.size());
    for (const std::uint32_t i : first_) firsts.push_back(loops[i]);
    return firsts;
  }
  std::vector<std::uint32_t> ParentsOfAll(std::span<const std::uint32_t> parentsOfFirsts) const {
    std::vector<std::uint32_t> parents(count_, kNoParent);
    for (std::uint32_t run = 0; run < first_.size(); ++run) {
      const std::uint32_t parent = parentsOfFirsts[run];
      parents[first_[run]] = parent == kNoParent ? kNoParent : EndOf(parent) - 1;
      for (std::uint32_t i = first_[run] + 1; i < EndOf(run); ++i) parents[i] = i - 1;
    }
    return parents;
  }

 private:
  static bool LiesInCopy(const LoopProbe& probe, double eps) {
    IncludeScratch scratch;
    LoopProbe copy(probe.ring(), probe.box());
    return IsLoopInside(probe, copy, eps, scratch);
  }
  std::uint32_t EndOf(std::uint32_t run) const {
    return run + 1 < first_.size() ? first_[run + 1] : static_cast<std::uint32_t>(count_);
  }

  std::size_t count_;
  std::vector<std::uint32_t> first_;
};

}  // namespace

std::vector<std::uint32_t> NestLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, double eps) {
  std::vector<LoopProbe> probes = ProbesOf(loops);
  const CopyRuns runs(probes, eps);
  if (runs.AreAlone()) return Inserter(loops, std::move(probes), eps).Run();
  const std::vector<std::shared_ptr<ZBR_LOOP>> firsts = runs.Firsts(loops);
  return runs.ParentsOfAll(Inserter(firsts, ProbesOf(firsts), eps).Run());
}

}  // namespace zbr
