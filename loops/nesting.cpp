// Nesting by insertion, with the candidates for every question found beforehand.
//
// Idea: "does L lie inside R" is answered no at once when L's first vertex is outside R's box. So the pairs (X, Y) with X's first
// vertex in Y's box are all that can ever be answered yes. One join of a hierarchy of first vertices with a hierarchy of boxes
// finds them; sorted by the later of the two loops they lie ready when that loop is inserted.
// Invariant: `parents` is the forest. A list of the forest holds its loops in insertion order: a new loop is appended, and loops
// that move below a new loop keep their order and precede whatever is hung there later. Where loops are nested thousands deep the
// pairs themselves grow with the square; then nest_separate.cpp takes over, and where that cannot (the loops touch), the pairs are
// enumerated loop by loop without being stored.
#include "loops/nesting.h"

#include "core/radix_sort.h"
#include "loops/point_in_loop.h"

namespace zbr {

namespace {

// Stored pairs per loop beyond which the nesting counts as deep.
constexpr std::size_t kPairsPerLoop = 32;
constexpr std::size_t kPairsAtLeast = 4096;
// With fewer loops than this, all pairs are looked at without a hierarchy.
constexpr std::size_t kMinLoopsToJoin = 16;

// A question that insertion of `later` may ask about `earlier`.
struct Candidate {
  std::uint32_t later;
  std::uint32_t earlier;
  bool isContainer;  // later may lie inside earlier; else earlier may lie inside later

  std::uint64_t Key() const { return std::uint64_t{later} << 32U | earlier; }
};

// Whether the box test leaves open that x lies inside y.
bool MayLieInside(const ZBR_LOOP& x, const ZBR_LOOP& y, double eps) {
  return !IsOutsideBox(x.pt().front(), BoxOf(y), eps);
}

class Inserter {
 public:
  Inserter(std::span<const std::shared_ptr<ZBR_LOOP>> loops, double eps)
      : loops_(loops), eps_(eps), parents_(loops.size(), kNoParent) {
    probes_.reserve(loops.size());
    for (const std::shared_ptr<ZBR_LOOP>& loop : loops) probes_.emplace_back(*loop);
  }

  std::vector<std::uint32_t> Run() {
    if (loops_.size() < kMinLoopsToJoin) {
      InsertAllEnumerating();
    } else if (FindCandidates()) {
      InsertAll();
    } else if (!NestSeparateLoops(loops_, probes_, eps_, scratch_, parents_)) {
      InsertAllEnumerating();
    }
    return std::move(parents_);
  }

 private:
  // Fills candidates_, sorted for insertion. False when there are too many to store.
  bool FindCandidates() {
    const std::size_t n = loops_.size();
    std::vector<ZBR_PT> centers(n);
    for (std::size_t i = 0; i < n; ++i) {
      const Box box = BoxOf(*loops_[i]);
      centers[i] = ZBR_PT((box.xmin + box.xmax) / 2.0, (box.ymin + box.ymax) / 2.0);
    }
    const std::vector<std::uint32_t> order = SpatialOrder(centers);
    BoxTree vertices;
    BoxTree boxes;
    const std::span<Box> vertexLeaves = vertices.StartLeaves(n);
    const std::span<Box> boxLeaves = boxes.StartLeaves(n);
    for (std::size_t i = 0; i < n; ++i) {
      vertexLeaves[i].Add(loops_[order[i]]->pt().front());
      boxLeaves[i] = BoxOf(*loops_[order[i]]).Widened(2.0 * eps_);
    }
    vertices.BuildInner();
    boxes.BuildInner();

    const std::size_t limit = kPairsAtLeast + kPairsPerLoop * n;
    const bool few = BoxJoin::Run(vertices, boxes, [&](std::uint32_t leaf, std::span<const std::uint32_t> found) {
      const std::uint32_t x = order[leaf];
      for (const std::uint32_t other : found) AddCandidate(x, order[other]);
      return candidates_.size() <= limit;
    });
    if (few) {
      std::vector<Candidate> scratch;
      RadixSort(candidates_, scratch, [](const Candidate& c) { return c.Key(); });
    }
    return few;
  }

  void AddCandidate(std::uint32_t x, std::uint32_t y) {
    if (x == y || !MayLieInside(*loops_[x], *loops_[y], eps_)) return;
    candidates_.push_back(x > y ? Candidate{x, y, true} : Candidate{y, x, false});
  }

  void InsertAll() {
    auto next = candidates_.begin();
    for (std::uint32_t loop = 0; loop < loops_.size(); ++loop) {
      const auto first = next;
      while (next != candidates_.end() && next->later == loop) ++next;
      Insert(loop, {first, next});
    }
  }

  void InsertAllEnumerating() {
    for (std::uint32_t loop = 0; loop < loops_.size(); ++loop) {
      candidates_.clear();
      for (std::uint32_t other = 0; other < loop; ++other) {
        AddCandidate(loop, other);
        AddCandidate(other, loop);
      }
      Insert(loop, candidates_);
    }
  }

  void Insert(std::uint32_t loop, std::span<const Candidate> candidates) {
    const std::uint32_t parent = FindParent(loop, candidates);
    for (const Candidate& c : candidates) {
      if (c.isContainer || parents_[c.earlier] != parent) continue;
      if (!IsLoopInside(*loops_[c.earlier], probes_[loop], eps_, scratch_)) continue;
      parents_[c.earlier] = loop;
      anyMoved_ = true;
    }
    parents_[loop] = parent;
  }

  // Goes down from the top. Containers come in insertion order, a parent before its children, so that one pass sees every level in
  // order; once a loop has moved below a later one that no longer holds, and every level takes a pass of its own.
  std::uint32_t FindParent(std::uint32_t loop, std::span<const Candidate> candidates) {
    std::uint32_t parent = kNoParent;
    for (bool again = true; again;) {
      again = false;
      for (const Candidate& c : candidates) {
        if (!c.isContainer || parents_[c.earlier] != parent) continue;
        if (!IsLoopInside(*loops_[loop], probes_[c.earlier], eps_, scratch_)) continue;
        parent = c.earlier;
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
  std::vector<Candidate> candidates_;
  IncludeScratch scratch_;
  bool anyMoved_ = false;
};

}  // namespace

std::vector<std::uint32_t> NestLoops(std::span<const std::shared_ptr<ZBR_LOOP>> loops, double eps) {
  return Inserter(loops, eps).Run();
}

}  // namespace zbr
