#include "boolean/parted_loops.h"

#include <cmath>
#include <iterator>
#include <optional>

#include "boolean/clusters.h"
#include "boolean/combination.h"
#include "boolean/exact_loops.h"
#include "core/constants.h"
#include "core/tolerance_state.h"
#include "loops/point_in_loop.h"

namespace zbr {

// Some loops of either operand, combined apart from the others.
class LoopPart {
 public:
  LoopPart(LoopList a, LoopList b) : a_(std::move(a)), b_(std::move(b)) {}

  // Whether walking along the crossings is certain to give the result.
  bool TryWalk(ZBR_BOOLEAN_OPE op) {
    walk_.emplace(a_, b_, crosses_);
    walk_->FindCrossings();
    first_ = walk_->Walk(op);
    firstOp_ = op;
    return first_.has_value();
  }

  LoopList Combine(ZBR_BOOLEAN_OPE op) {
    std::optional<LoopList> walked;
    if (first_ && op == firstOp_) {
      walked.swap(first_);
    } else if (walk_) {
      walked = walk_->Walk(op);
    }
    if (walked) return std::move(*walked);
    if (!exact_) exact_.emplace(PolygonsOf(a_), PolygonsOf(b_));
    return exact_->Combine(op);
  }
  bool WasExact() const { return exact_.has_value(); }

 private:
  LoopList a_;
  LoopList b_;
  std::vector<ZBR_CROSS> crosses_;
  std::optional<Combination> walk_;  // refers to the lists
  std::optional<LoopList> first_;    // what the trial gave
  ZBR_BOOLEAN_OPE firstOp_ = ZBR_BOOL_OR;
  std::optional<ExactLoops> exact_;
};

namespace {

// Every loop with its holes, those of A before those of B, and the boxes around them. What is not finite takes no part.
struct LoopItems {
  std::vector<const std::shared_ptr<ZBR_LOOP>*> loops;
  std::vector<Box> boxes;
  std::uint32_t ofA = 0;

  void Add(const std::vector<Polygon>& polygons) {
    for (const Polygon& p : polygons) {
      if (p.key.poly() == 0) {
        loops.push_back(p.loop);
        boxes.emplace_back();
      }
      (**p.loop).Setup();
      if (IsFiniteRing(**p.loop)) boxes.back().Add(BoxOf(**p.loop));
    }
  }

  std::unique_ptr<LoopPart> PartOf(const std::vector<std::uint32_t>& items) const {
    LoopList lists[2];
    for (const std::uint32_t i : items) lists[i < ofA ? 0 : 1].push_back(*loops[i]);
    return std::make_unique<LoopPart>(std::move(lists[0]), std::move(lists[1]));
  }

  // What both ways of combining look at beyond a loop's box.
  double Margin() const {
    constexpr double kTolerances = 4.0;
    Box all;
    for (const Box& box : boxes) all.Add(box);
    return std::max(kBoxMargin, kTolerances * OverlayTolerance(all, t_tolerance.eps));
  }
};

}  // namespace

PartedLoops::PartedLoops(const std::vector<Polygon>& a, const std::vector<Polygon>& b, ZBR_BOOLEAN_OPE op) {
  LoopItems items;
  items.Add(a);
  items.ofA = static_cast<std::uint32_t>(items.loops.size());
  items.Add(b);
  const auto walk = [&](const std::vector<std::uint32_t>& some) {
    std::unique_ptr<LoopPart> part = items.PartOf(some);
    if (!part->TryWalk(op)) return false;
    parts_.push_back(std::move(part));
    return true;
  };
  const std::vector<std::uint32_t> left = ClusterSearch(Clusters(items.boxes, items.Margin()), walk).Run();
  if (!left.empty()) parts_.push_back(items.PartOf(left));
}

PartedLoops::~PartedLoops() = default;

LoopList PartedLoops::Combine(ZBR_BOOLEAN_OPE op) {
  LoopList result;
  for (const std::unique_ptr<LoopPart>& part : parts_) {
    LoopList loops = part->Combine(op);
    result.insert(result.end(), std::make_move_iterator(loops.begin()), std::make_move_iterator(loops.end()));
    wasExact_ = wasExact_ || part->WasExact();
  }
  // An operand that has no area is passed on by the walk, which a part of one must not be.
  std::erase_if(result, [](const auto& loop) { return WithinTol(loop->area(), t_tolerance.eps); });
  if (parts_.size() > 1) SortBySize(result);
  return result;
}

}  // namespace zbr
