// The Boolean of two regions: find the crossings, clean them up, then per operation trace, add what no crossing touches, nest.
// Where one of these steps can't be certain, the loops concerned go through the exact arrangement instead.
#include "boolean/combination.h"

#include <algorithm>
#include <iterator>

namespace zbr {

namespace {

// Along the minuend the result lies on the same side as the operand, along the subtrahend on the other; a union keeps both, an
// intersection turns both, so that its loops come out the same way round as traced.
Directions DirectionsOf(ZBR_BOOLEAN_OPE op) {
  switch (op) {
    case ZBR_BOOL_A_MINUS_B:
      return {true, false};
    case ZBR_BOOL_B_MINUS_A:
      return {false, true};
    case ZBR_BOOL_AND:
      return {false, false};
    default:
      return {true, true};
  }
}

}  // namespace

void Combination::FindCrossings() {
  Family& a = families_[0];
  Family& b = families_[1];
  SearchReport report;
  SearchCrossings(a.polygons, b.polygons, true, crosses_, &a.seen, &b.seen, &report);
  const Touching touching{report.simplicity[0] != Simplicity::kSimple, report.simplicity[1] != Simplicity::kSimple};
  const bool isClean = CleanCrossings(*a.loops, *b.loops, crosses_, true, sorted_, touching);
  isCertain_ = isClean && report.doubts.empty() && report.simplicity[0] != Simplicity::kUnclear &&
               report.simplicity[1] != Simplicity::kUnclear;
  for (int side = 0; side < 2; ++side) NoteCrossedPolygons(side);
  // Where an uncrossed ring lies, samples tell, which must be right about what is on its boundary.
  for (const PolygonPair& p : report.contacts) {
    if (report.isCoarse && !(a.touched[p.a] && b.touched[p.b])) isCertain_ = false;
  }
}

LoopList Combination::Combine(ZBR_BOOLEAN_OPE op) {
  std::optional<LoopList> result = Walk(op);
  return result ? std::move(*result) : CombineExactly(op);
}

std::optional<LoopList> Combination::Walk(ZBR_BOOLEAN_OPE op) {
  LoopList result;
  if (isCertain_ && crosses_.size() > 1) {
    if (op == ZBR_BOOL_XOR) {
      isCertain_ &= Trace(DirectionsOf(ZBR_BOOL_A_MINUS_B), result);
      isCertain_ &= Trace(DirectionsOf(ZBR_BOOL_B_MINUS_A), result);
    } else {
      isCertain_ &= Trace(DirectionsOf(op), result);
    }
  }
  if (!isCertain_) return std::nullopt;
  AddUncrossed(op, 0, result);
  AddUncrossed(op, 1, result);
  zbrMakeLoopTree(result);
  return result;
}

void Combination::MarkDone() {
  if (!arePathsPrepared_) return;
  for (ZBR_CROSS& c : crosses_) c.done = paths_.done(static_cast<std::size_t>(c.a.seq));
}

// Once for each run of crossings on one polygon.
void Combination::NoteCrossedPolygons(int side) {
  Family& family = families_[side];
  family.touched.assign(family.polygons.size(), false);
  const std::vector<PlacedCrossing>& list = sorted_.side[side];
  ForEachPolygonRun(list, [&](std::size_t first, std::size_t) {
    const std::size_t number = family.Number(list[first].loop);
    family.touched[number] = true;
    traced_.polygons[side].push_back(family.seen[number]);
  });
  std::vector<SearchedPolygon>().swap(family.seen);
}

void Combination::PrepareTracing() {
  paths_.Prepare(sorted_);
  traced_.crossings = std::move(sorted_.traced);
  sorted_ = {};
  arePathsPrepared_ = true;
}

// False when a path did not close.
bool Combination::Trace(Directions directions, LoopList& result) {
  if (!arePathsPrepared_) PrepareTracing();
  if (!paths_.Find(directions.forwardA, directions.forwardB)) return false;
  TracePaths(traced_, paths_, directions.forwardA, directions.forwardB, result);
  return true;
}

LoopList Combination::CombineExactly(ZBR_BOOLEAN_OPE op) {
  if (crosses_.size() > 1) {  // for what the crossings say of the last walk
    if (!arePathsPrepared_) PrepareTracing();
    const Directions directions = DirectionsOf(op == ZBR_BOOL_XOR ? ZBR_BOOL_B_MINUS_A : op);
    paths_.Find(directions.forwardA, directions.forwardB);
  }
  if (parts_ == nullptr) parts_ = std::make_unique<PartedLoops>(families_[0].polygons, families_[1].polygons, op);
  return parts_->Combine(op);
}

void Combination::AddUncrossed(ZBR_BOOLEAN_OPE op, int side, LoopList& result) {
  Family& family = families_[side];
  if (!family.uncrossed) {
    family.uncrossed = RelateUncrossed(family.polygons, family.touched, families_[1 - side].polygons);
  }
  for (const UncrossedPolygon& u : *family.uncrossed) {
    if (IsKept(op, side, u.polygon->key.poly() != 0, u.relation)) ZBR_LOOP::AppendTopLoopDup(result, **u.polygon->loop);
  }
}

}  // namespace zbr
