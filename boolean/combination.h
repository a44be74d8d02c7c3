// Everything that one call of the Boolean works with. What does not depend on the operation is found once.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include <zbr/boolean.h>

#include "boolean/cross_clean.h"
#include "boolean/parted_loops.h"
#include "boolean/paths.h"
#include "boolean/polygons.h"
#include "boolean/search.h"
#include "boolean/trace.h"
#include "boolean/uncrossed.h"

namespace zbr {

// Walking directions along A and B.
struct Directions {
  bool forwardA;
  bool forwardB;
};

class Combination {
 public:
  Combination(const LoopList& a, const LoopList& b, std::vector<ZBR_CROSS>& crosses) : crosses_(crosses) {
    families_[0].Set(a);
    families_[1].Set(b);
  }

  void FindCrossings();
  // Whether walking along the crossings gives the region asked for, as far as is known.
  bool IsCertain() const { return isCertain_; }
  // Nested loops; by the exact arrangement where the walk is not certain.
  LoopList Combine(ZBR_BOOLEAN_OPE op);
  // By walking, or nothing when that turns out not to be certain.
  std::optional<LoopList> Walk(ZBR_BOOLEAN_OPE op);
  // Whether some result came from the exact arrangement.
  bool WasExact() const { return parts_ && parts_->WasExact(); }
  // Leaves in the crossings which of them the last walk used.
  void MarkDone();

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

  void NoteCrossedPolygons(int side);
  void PrepareTracing();
  bool Trace(Directions directions, LoopList& result);
  LoopList CombineExactly(ZBR_BOOLEAN_OPE op);
  void AddUncrossed(ZBR_BOOLEAN_OPE op, int side, LoopList& result);

  std::vector<ZBR_CROSS>& crosses_;
  SortedCrossings sorted_;
  Family families_[2];
  PathFinder paths_;
  TracedRegions traced_;
  std::unique_ptr<PartedLoops> parts_;
  bool arePathsPrepared_ = false;
  bool isCertain_ = true;  // that walking along the crossings gives the region asked for
};

}  // namespace zbr
