// The Boolean of two regions: find the crossings, clean them up, then per operation trace, add what no crossing touches, nest.
// Where one of these steps can't be certain, the operands go through the exact arrangement instead.
#include <algorithm>
#include <optional>

#include <zbr/boolean.h>

#include "boolean/cross_clean.h"
#include "boolean/exact_loops.h"
#include "boolean/paths.h"
#include "boolean/polygons.h"
#include "boolean/search.h"
#include "boolean/trace.h"
#include "boolean/uncrossed.h"
#include "core/constants.h"
#include "core/tolerance_state.h"

namespace zbr {

namespace {

// Walking directions along A and B: along the minuend the result lies on the same side as the operand, along the subtrahend on the
// other; a union keeps both, an intersection turns both, so that its loops come out the same way round as traced.
struct Directions {
  bool forwardA;
  bool forwardB;
};

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

// Everything one call works with. What does not depend on the operation is found once.
class BooleanWork {
 public:
  BooleanWork(const LoopList& a, const LoopList& b, std::vector<ZBR_CROSS>& crosses) : crosses_(crosses) {
    families_[0].Set(a);
    families_[1].Set(b);
  }

  void FindCrossings() {
    Family& a = families_[0];
    Family& b = families_[1];
    SearchReport report;
    SearchCrossings(a.polygons, b.polygons, true, crosses_, &a.seen, &b.seen, &report);
    const bool isClean = CleanCrossings(*a.loops, *b.loops, crosses_, true, sorted_,
                                        {report.simplicity[0] != Simplicity::kSimple, report.simplicity[1] != Simplicity::kSimple});
    isCertain_ = isClean && report.doubts.empty() && report.simplicity[0] != Simplicity::kUnclear &&
                 report.simplicity[1] != Simplicity::kUnclear;
    for (int side = 0; side < 2; ++side) NoteCrossedPolygons(side);
    // Where an uncrossed ring lies, samples tell, which must be right about what is on its boundary.
    for (const PolygonPair& p : report.contacts) {
      if (report.isCoarse && !(a.touched[p.a] && b.touched[p.b])) isCertain_ = false;
    }
  }

  LoopList Combine(ZBR_BOOLEAN_OPE op) {
    LoopList result;
    if (isCertain_ && crosses_.size() > 1) {
      if (op == ZBR_BOOL_XOR) {
        isCertain_ &= Trace(DirectionsOf(ZBR_BOOL_A_MINUS_B), result);
        isCertain_ &= Trace(DirectionsOf(ZBR_BOOL_B_MINUS_A), result);
      } else {
        isCertain_ &= Trace(DirectionsOf(op), result);
      }
    }
    if (!isCertain_) return CombineExactly(op);
    AddUncrossed(op, 0, result);
    AddUncrossed(op, 1, result);
    zbrMakeLoopTree(result);
    return result;
  }

  // Whether some result came from the exact arrangement.
  bool WasExact() const { return exact_.has_value(); }

  // Leaves in the crossings which of them the last walk used.
  void MarkDone() {
    if (!arePathsPrepared_) return;
    for (std::size_t k = 0; k < crosses_.size(); ++k)
      crosses_[static_cast<std::size_t>(sorted_.side[0][k].index)].done = paths_.done(k);
  }

 private:
  struct Family {
    const LoopList* loops = nullptr;
    std::vector<Polygon> polygons;
    std::vector<std::uint32_t> firstPolygon;
    std::vector<SearchedPolygon> seen;
    std::vector<bool> touched;  // by a crossing
    std::optional<std::vector<UncrossedPolygon>> uncrossed;

    void Set(const LoopList& list) {
      loops = &list;
      polygons = PolygonsOf(list);
      firstPolygon.resize(list.size());
      for (std::uint32_t i = 0; i < polygons.size(); ++i) {
        if (polygons[i].key.poly() == 0) firstPolygon[static_cast<std::size_t>(polygons[i].key.loop())] = i;
      }
    }
    std::size_t Number(ZBR_CROSS_LOOP key) const {
      return firstPolygon[static_cast<std::size_t>(key.loop())] + static_cast<std::size_t>(key.poly());
    }
  };

  // Once for each run of crossings on one polygon.
  void NoteCrossedPolygons(int side) {
    Family& family = families_[side];
    family.touched.assign(family.polygons.size(), false);
    const std::vector<PlacedCrossing>& list = sorted_.side[side];
    const auto loopAt = [&list](std::size_t k) { return list[k].loop; };
    ForEachPolygonRun(list.size(), loopAt, [&](std::size_t first, std::size_t) {
      const std::size_t number = family.Number(list[first].loop);
      family.touched[number] = true;
      traced_.polygons[side].push_back(family.seen[number]);
    });
    std::vector<SearchedPolygon>().swap(family.seen);
  }

  void PrepareTracing() {
    paths_.Prepare(sorted_);
    std::vector<PlacedCrossing>().swap(sorted_.side[1]);
    traced_.crossings.reserve(crosses_.size());
    for (const PlacedCrossing& p : sorted_.side[0]) {
      const ZBR_CROSS& c = crosses_[static_cast<std::size_t>(p.index)];
      traced_.crossings.push_back({c.pt, {c.a.pos, c.b.pos}});
    }
    arePathsPrepared_ = true;
  }

  // False when a path did not close.
  bool Trace(Directions directions, LoopList& result) {
    if (!arePathsPrepared_) PrepareTracing();
    if (!paths_.Find(directions.forwardA, directions.forwardB)) return false;
    TracePaths(traced_, paths_, directions.forwardA, directions.forwardB, result);
    return true;
  }

  LoopList CombineExactly(ZBR_BOOLEAN_OPE op) {
    if (crosses_.size() > 1) {  // for what the crossings say of the last walk
      if (!arePathsPrepared_) PrepareTracing();
      const Directions directions = DirectionsOf(op == ZBR_BOOL_XOR ? ZBR_BOOL_B_MINUS_A : op);
      paths_.Find(directions.forwardA, directions.forwardB);
    }
    if (!exact_) exact_.emplace(families_[0].polygons, families_[1].polygons);
    return exact_->Combine(op);
  }

  void AddUncrossed(ZBR_BOOLEAN_OPE op, int side, LoopList& result) {
    Family& family = families_[side];
    if (!family.uncrossed) {
      family.uncrossed = RelateUncrossed(family.polygons, family.touched, families_[1 - side].polygons);
    }
    for (const UncrossedPolygon& u : *family.uncrossed) {
      if (IsKept(op, side, u.polygon->key.poly() != 0, u.relation)) ZBR_LOOP::AppendTopLoopDup(result, **u.polygon->loop);
    }
  }

  std::vector<ZBR_CROSS>& crosses_;
  SortedCrossings sorted_;
  Family families_[2];
  PathFinder paths_;
  TracedRegions traced_;
  std::optional<ExactLoops> exact_;
  bool arePathsPrepared_ = false;
  bool isCertain_ = true;  // that walking along the crossings gives the region asked for
};

}  // namespace

}  // namespace zbr

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                     std::vector<ZBR_CROSS>& crosses, ZBR_BOOLEAN_STATUS& status) {
  const zbr::ToleranceScope tolerance(zbr::kBooleanEps);
  crosses.clear();
  zbr::BooleanWork work(A, B, crosses);
  work.FindCrossings();
  // A result list may be an operand: all are formed before the first is handed over.
  std::vector<std::vector<std::shared_ptr<ZBR_LOOP>>> formed;
  for (int k = 0; k < count; ++k) formed.push_back(work.Combine(ops[k]));
  work.MarkDone();
  status.exact = work.WasExact();
  for (int k = 0; k < count; ++k) results[k] = std::move(formed[static_cast<std::size_t>(k)]);
}

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                     std::vector<ZBR_CROSS>& crosses) {
  ZBR_BOOLEAN_STATUS status;
  zbrBooleanLoops(A, B, ops, results, count, crosses, status);
}

void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                     ZBR_BOOLEAN_OPE op, std::vector<std::shared_ptr<ZBR_LOOP>>& result) {
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(A, B, &op, &result, 1, crosses);
}
