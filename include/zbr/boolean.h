// Crossings between the boundaries of two planar regions, and Boolean combinations of the regions.
//
// A region is a loop list as zbrMakeLoopTree leaves it: outer loops counter-clockwise, their holes clockwise as children; anything
// deeper is not read. Directions are not checked: rings that run the other way give other regions, so pass what has not been
// through zbrMakeLoopTree to it first. A polygon is one ring of such a list, named by (loop index, polygon index): polygon 0 is the
// loop itself, polygon k its child k - 1. Lengths are in the caller's unit.
//
// Clean input, rings that are simple and do not cross others of the same list (they may touch), is walked along its crossings. What
// that can't settle, rings that cross or overlap included, goes through an exact arrangement; a region is then what an odd number
// of its rings winds around. A ring with a NaN or infinite coordinate is left out of the combination. The Boolean compares with
// 1e-9 of the caller's unit; results of an area below 1e-9 are dropped, and zbrMakeLoopTree drops areas within the thread's
// tolerance. region.h has neither limit.
//
// Threads: calls on different threads are independent. Loops that both use must be set up (ZBR_LOOP::Setup) beforehand.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/export.h>
#include <zbr/loop.h>
#include <zbr/planar.h>

// Names one polygon of a loop list: loop index in the high 32 bits, polygon index in the low 32. Comparing `value` orders by loop,
// then by polygon.
struct ZBR_CROSS_LOOP {
  std::int64_t value = 0;

  ZBR_CROSS_LOOP() = default;
  ZBR_CROSS_LOOP(std::int64_t packed) : value(packed) {}
  ZBR_CROSS_LOOP(int loop, int poly)
      : value(static_cast<std::int64_t>(static_cast<std::uint64_t>(static_cast<std::uint32_t>(loop)) << 32U |
                                        static_cast<std::uint32_t>(poly))) {}
  int loop() const { return static_cast<int>(value >> 32); }
  int poly() const { return static_cast<int>(static_cast<std::uint32_t>(value)); }
};

// Direction in which B's boundary passes A's directed edge, walking B forward.
enum ZBR_CROSS_DIR : std::int32_t {
  ZBR_CROSS_TO_LEFT = 0,  // from the right, or from on the edge, to the left
  ZBR_CROSS_TO_RIGHT = 1
};

// A crossing's place on one of the two polygons.
struct ZBR_CROSS_AB {
  ZBR_CROSS_LOOP loop;
  double pos = 0.0;  // index of the edge's start vertex + parameter on the edge; may round up to the number of vertices
  int seq = -1;      // place among all crossings sorted along this side
  int order = 0;     // rank among crossings at one place of this side, whatever the last bits of pos
};

// One place where the boundaries meet, and which fields hold when:
//
//   after             seq                 order                        valid  done                    index
//   detection         -1                  0                            true   false                   place in the vector
//   zbrOptimizeCross  place in the list   1, 2, ... at a shared place, true   false                   place in the vector
//                     of the side         else 0
//   zbrBooleanLoops   the same            the same                     true   used by the last walk   place in the vector
struct ZBR_CROSS {
  ZBR_PT pt;
  ZBR_CROSS_DIR dir = ZBR_CROSS_TO_LEFT;
  ZBR_CROSS_AB a;
  ZBR_CROSS_AB b;
  bool valid = false;
  bool done = false;
  int index = -1;
};

// Orders crossing indices along one side (primary: 0 for a, 1 for b): by polygon, pos and order of that side, then of the other.
// A strict weak ordering without tolerance. Refers to the vector, which must outlive it.
class ZBR_CROSS_SORT_FUNCTOR {
 public:
  ZBR_CROSS_SORT_FUNCTOR(const std::vector<ZBR_CROSS>& crosses, int primary, int secondary)
      : crosses_(crosses), primary_(primary), secondary_(secondary) {}
  ZBR_API bool operator()(int i, int j) const;

 private:
  const std::vector<ZBR_CROSS>& crosses_;
  int primary_;
  int secondary_;
};

// Finds the crossings of ring A with ring B (closedB) or with the open polyline B, and appends them in the order of A's vertices,
// then of B's edges (closing edge first).
//
// A vertex of B on a vertex of A gives two records, one per edge of B meeting there: equal directions for a passage, opposite ones
// for a touch; zbrOptimizeCross merges or drops them. Other touches along one side give none or two of opposite directions. Rings
// of fewer than three points (B open: two) give nothing, nor do rings with a NaN or infinite coordinate. The four ints (loop of A,
// loop of B, polygon of A, polygon of B) are only stored. Sets both loops up if both have points enough; uses the thread's
// tolerance. Cost: n log n + candidates, edge pairs whose boxes come within 0.001.
ZBR_API void zbrGetPolygonCross(const std::shared_ptr<ZBR_LOOP>& A, const std::shared_ptr<ZBR_LOOP>& B, int loopA, int loopB,
                                int polyA, int polyB, std::vector<ZBR_CROSS>& crosses, bool closedB);

// The same for loop A and its children against loop B and its children. Appends.
ZBR_API void zbrGetLoopCross(const std::shared_ptr<ZBR_LOOP>& A, const std::shared_ptr<ZBR_LOOP>& B, int loopA, int loopB,
                             std::vector<ZBR_CROSS>& crosses);

// The same for all polygons of two lists, in the order loop of A, loop of B, polygon of A, polygon of B. Appends. One search
// serves all polygons of both lists: many small rings cost as little as one large one.
ZBR_API void zbrGetLoopsCross(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                              std::vector<ZBR_CROSS>& crosses);

// Removes duplicates, touches and polygons crossed one way only, sorts what is left along both sides and settles the order of
// crossings that share a place.
//
//   crosses      changed in place; emptied when fewer than two crossings are left (unless an open B had fewer to begin with)
//   sorted       two lists, refilled: sorted[0] holds the crossings' indices in order along A, sorted[1] along B
//   bothClosed   true for two families of rings, false when B holds open polylines
// Positions are compared with the thread's eps as they stand, as vertex index + parameter (intended, also on long edges). Those
// within eps of each other are one place; there `order` ranks the lists, whatever the positions say. Cost: n log n in crossings.
ZBR_API void zbrOptimizeCross(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                              std::vector<ZBR_CROSS>& crosses, std::vector<int>* sorted, bool bothClosed);

// Marks as done every crossing of direction `dir` whose predecessor on the same polygon (cyclic, in walking order) has that
// direction too: a walk could never leave from it. `sorted` is the list of `side` (0 = a, 1 = b).
ZBR_API void zbrSetFollowingCrossDone(std::vector<ZBR_CROSS>& crosses, int side, const std::vector<int>& sorted, ZBR_CROSS_DIR dir,
                                      bool forward);

enum ZBR_BOOLEAN_OPE : std::int32_t {
  ZBR_BOOL_A_MINUS_B = 0,  // in A and not in B
  ZBR_BOOL_B_MINUS_A = 1,  // in B and not in A
  ZBR_BOOL_OR = 2,         // in A or in B
  ZBR_BOOL_AND = 3,        // in both
  ZBR_BOOL_XOR = 4         // in one of the two; its loops may share an edge (a piece of A - B beside a piece of B - A)
};

// Forms `count` combinations of two regions with one search for crossings.
//
//   ops[k]      what results[k] shall hold; other values than the five give only what the crossings yield, walked forward
//   results[k]  cleared, then filled with new, nested loops; none is shared with A or B. May be A or B itself, which is then read
//               before it is filled
//   crosses     cleared, then filled with the crossings left after clean-up; with count 0 (ops and results may be null) that is
//               all that happens
// Shared boundary is taken once, from A in a union or intersection. Traced loops of two points or fewer, or of an area within 1e-9,
// are dropped without notice; an empty list is an empty region. Throws nothing of its own (std::bad_alloc can pass through).
// The calling thread's tolerance is 1e-9 for the duration of the call and is put back on every way out.
// Cost: n log n in points, crossings and loops; a further operation repeats only tracing and nesting.
ZBR_API void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                             const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                             std::vector<ZBR_CROSS>& crosses);

// How a combination was found.
struct ZBR_BOOLEAN_STATUS {
  bool exact = false;  // some result came from the exact arrangement, as the crossings did not settle it
};

// The same, telling how.
ZBR_API void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                             const ZBR_BOOLEAN_OPE* ops, std::vector<std::shared_ptr<ZBR_LOOP>>* results, int count,
                             std::vector<ZBR_CROSS>& crosses, ZBR_BOOLEAN_STATUS& status);

// One combination.
ZBR_API void zbrBooleanLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                             ZBR_BOOLEAN_OPE op, std::vector<std::shared_ptr<ZBR_LOOP>>& result);

// Nests a list again: zbrMakeLoopTree on the same loops. No point moves.
ZBR_API void zbrOptimizeLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

// Appends a loop to a list, whatever is in it already; `loop` may be an element of that list.
ZBR_API void zbrOptimizeLoop(const std::shared_ptr<ZBR_LOOP>& loop, std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

// Runs every operation on (A, B) and A - B with the operands exchanged, and drops the results; with alsoSwapped the same again for
// (B, A). For exercising the machinery: it reports nothing. The thread's tolerance comes back as its absolute value.
ZBR_API void zbrCheckPolyBoolean(const std::vector<std::shared_ptr<ZBR_LOOP>>& A, const std::vector<std::shared_ptr<ZBR_LOOP>>& B,
                                 bool alsoSwapped);
