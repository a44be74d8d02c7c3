// Idea: a line sweeps over the plane from left to right and meets edges, kept from the lowest to the highest. Of the first two that
// cross, both become neighbours before they do (Shamos and Hoey, "Geometric intersection problems", 1976), so only neighbours are
// held against each other, by exact sides.
// Difficulty: boundaries may touch at a common vertex, or with a vertex within an edge, and may pass through each other there. All
// arms that leave a place are looked at in their order around it: every boundary that comes along one of them leaves along another,
// and no two pass through each other when these pairs of arms are nested as brackets are.
// Invariant: left of the sweep nothing is faulty, so that the edges through a place are neighbours, at most one of them going on.
#include "loops/exact_simplicity.h"

#include <algorithm>
#include <numeric>
#include <vector>

#include "core/exact_side.h"
#include "core/planar_inline.h"
#include "loops/sweep_status.h"

namespace zbr {
namespace {

class SimplicitySweep {
 public:
  explicit SimplicitySweep(std::span<const RingSpan> rings) : status_(CountPoints(rings)) {
    vertices_.reserve(CountPoints(rings));
    for (const RingSpan& ring : rings) AddRing(ring);
  }

  ExactSimplicity Run() {
    if (std::any_of(vertices_.begin(), vertices_.end(), [this](const Vertex& v) { return AreIdentical(v.at, At(v.next)); }))
      return ExactSimplicity::kFaulty;
    std::vector<std::uint32_t> order(vertices_.size());
    std::iota(order.begin(), order.end(), 0U);
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) { return IsLess(At(a), At(b)); });
    for (std::size_t end = 0; end < order.size();) {
      const std::size_t begin = end++;
      while (end < order.size() && AreIdentical(At(order[begin]), At(order[end]))) ++end;
      if (!Pass(std::span(order).subspan(begin, end - begin))) return ExactSimplicity::kFaulty;
    }
    return touches_ ? ExactSimplicity::kTouching : ExactSimplicity::kSimple;
  }

 private:
  static constexpr std::uint32_t kNone = SweepStatus::kNone;

  // An edge has the number of the vertex that it starts at.
  struct Vertex {
    ZBR_PT at;
    std::uint32_t prev, next;
  };

  // An edge at a place, and the vertex there; kNone if the place is within the edge.
  struct Arm {
    std::uint32_t edge, vertex;
  };

  void AddRing(RingSpan ring) {
    const auto n = static_cast<std::uint32_t>(ring.size());
    const auto first = static_cast<std::uint32_t>(vertices_.size());
    for (std::uint32_t i = 0; i < n; ++i)
      vertices_.push_back({ring[i], first + (i == 0 ? n : i) - 1, first + (i + 1 == n ? 0 : i + 1)});
  }

  const ZBR_PT& At(std::uint32_t vertex) const { return vertices_[vertex].at; }
  const ZBR_PT& Left(std::uint32_t edge) const { return std::min(At(edge), At(vertices_[edge].next), IsLess); }
  const ZBR_PT& Right(std::uint32_t edge) const { return std::max(At(edge), At(vertices_[edge].next), IsLess); }
  int SideOf(std::uint32_t edge, const ZBR_PT& p) const { return ExactSideOf(Left(edge), Right(edge), p); }

  // These answer false where something is faulty.
  bool Pass(std::span<const std::uint32_t> here);
  bool SortLeaving(const ZBR_PT& p);
  bool AreNested();
  bool KeepApart(std::uint32_t lower, std::uint32_t upper) const;

  std::uint32_t FindArriving(const ZBR_PT& p, std::uint32_t ending);
  void Replace(std::uint32_t below);

  std::vector<Vertex> vertices_;
  SweepStatus status_;
  bool touches_ = false;
  std::vector<Arm> arriving_, leaving_;  // at the place in work, the lowest first; what goes on through it is in both
  std::vector<std::uint32_t> open_;
};

// All vertices at one place.
bool SimplicitySweep::Pass(std::span<const std::uint32_t> here) {
  const ZBR_PT& p = At(here[0]);
  leaving_.clear();
  std::uint32_t ending = kNone;
  std::size_t count = 0;
  for (const std::uint32_t v : here) {
    for (const std::uint32_t edge : {vertices_[v].prev, v}) {
      if (IsLess(p, Right(edge))) {
        leaving_.push_back({edge, v});
      } else {
        ending = edge;
        ++count;
      }
    }
  }
  const std::uint32_t below = FindArriving(p, ending);
  for (const Arm& arm : arriving_) {
    if (arm.vertex == kNone) leaving_.push_back(arm);
  }
  const std::size_t within = leaving_.size() + count - 2 * here.size();
  if (within > 1 || arriving_.size() != count + within || !SortLeaving(p)) return false;
  touches_ = touches_ || within == 1;
  if (here.size() + within > 1 && !AreNested()) return false;
  const std::uint32_t above = status_.Above(arriving_.empty() ? below : arriving_.back().edge);
  Replace(below);
  if (leaving_.empty()) return KeepApart(below, above);
  return KeepApart(below, leaving_.front().edge) && KeepApart(leaving_.back().edge, above);
}

// Notes the edges that come to p from the left, one of which is given unless none ends there. Returns the edge below them.
std::uint32_t SimplicitySweep::FindArriving(const ZBR_PT& p, std::uint32_t ending) {
  std::uint32_t below = ending;
  if (ending == kNone) below = status_.HighestBelow([&](std::uint32_t edge) { return SideOf(edge, p) > 0; });
  while (below != kNone && SideOf(below, p) == 0) below = status_.Below(below);
  arriving_.clear();
  for (std::uint32_t edge = status_.Above(below); edge != kNone && SideOf(edge, p) == 0; edge = status_.Above(edge)) {
    const std::uint32_t next = vertices_[edge].next;
    arriving_.push_back({edge, AreIdentical(At(edge), p) ? edge : AreIdentical(At(next), p) ? next : kNone});
  }
  return below;
}

// False if two run along each other.
bool SimplicitySweep::SortLeaving(const ZBR_PT& p) {
  if (leaving_.size() < 2) return true;
  const auto isBelow = [&](const Arm& a, const Arm& b) { return ExactSideOf(p, Right(a.edge), Right(b.edge)) > 0; };
  std::sort(leaving_.begin(), leaving_.end(), isBelow);
  return std::adjacent_find(leaving_.begin(), leaving_.end(), [&](const Arm& a, const Arm& b) { return !isBelow(a, b); }) ==
         leaving_.end();
}

// Whether the boundaries at the place do not pass through each other.
bool SimplicitySweep::AreNested() {
  open_.clear();
  const auto add = [this](const Arm& arm) {
    if (!open_.empty() && open_.back() == arm.vertex) {
      open_.pop_back();
    } else {
      open_.push_back(arm.vertex);
    }
  };
  std::for_each(leaving_.begin(), leaving_.end(), add);
  std::for_each(arriving_.rbegin(), arriving_.rend(), add);
  return open_.empty();
}

void SimplicitySweep::Replace(std::uint32_t below) {
  if (arriving_.size() == 1 && leaving_.size() == 1) return status_.Replace(arriving_[0].edge, leaving_[0].edge);
  for (const Arm& arm : arriving_) {
    if (arm.vertex != kNone) status_.Erase(arm.edge);
  }
  std::uint32_t lower = below;
  for (const Arm& arm : leaving_) {
    if (arm.vertex != kNone) status_.InsertAbove(lower, arm.edge);
    lower = arm.edge;
  }
}

// Of neighbours, the first below the second where the sweep is: whether they do not cross farther on.
bool SimplicitySweep::KeepApart(std::uint32_t lower, std::uint32_t upper) const {
  if (lower == kNone || upper == kNone) return true;
  const ZBR_PT &p = Right(lower), &q = Right(upper);
  return IsLess(p, q) ? SideOf(upper, p) <= 0 : SideOf(lower, q) >= 0;
}

}  // namespace

ExactSimplicity ExactSimplicityOf(std::span<const RingSpan> rings) {
  return SimplicitySweep(rings).Run();
}

}  // namespace zbr
