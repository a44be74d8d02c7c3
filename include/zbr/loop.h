// Closed planar loops: record, point and loop inclusion, nesting, point location.
//
// A loop is a closed ring of points; the edge from the last point to the first is implicit. Loops are handled through
// std::shared_ptr, sets of loops as std::vector of such pointers ("loop list"). After zbrMakeLoopTree a list describes a region:
// outer loops counter-clockwise (positive area, level 0), each with its holes as children (clockwise, level 1).
//
// Lengths are in the caller's unit; tests use the calling thread's tolerance (tolerance.h). Correct answers about several loops
// need rings that do not cross themselves or each other; they may touch. Other input gives some answer, never a crash.
//
// Threads: area and bounding box are cached by Setup(), which the functions below call when a loop is not set up yet. A loop that
// is set up is only read by the inclusion tests and may then be shared between threads; zbrMakeLoopTree always writes.
#pragma once

#include <memory>
#include <vector>

#include <zbr/export.h>
#include <zbr/planar.h>

// A closed loop with cached area and bounding box, a nesting level and the loops nested directly in it.
//
// The cache describes the points only while IsSetuped() holds and the points are unchanged: code that edits pt() calls Reset()
// before the next use. Nothing recomputes a cache that claims to be valid.
class ZBR_LOOP : public ZBR_POLYGON {
 public:
  // No points, no children, level -1, not set up, area and bounds 0.
  ZBR_LOOP() = default;
  // Copies points and cache; the children are shared with `o`, not copied.
  ZBR_API ZBR_LOOP(const ZBR_LOOP& o);
  // Copies points and cache and appends deep copies of o's children behind the children already here (they are kept; intended).
  // Assigning a loop to itself does nothing.
  ZBR_API ZBR_LOOP& operator=(const ZBR_LOOP& o);
  // Releases the children without recursion, however deep they are nested.
  ZBR_API ~ZBR_LOOP();

  double area() const { return area_; }
  double xmax() const { return xmax_; }
  double xmin() const { return xmin_; }
  double ymax() const { return ymax_; }
  double ymin() const { return ymin_; }
  int& level() { return level_; }
  int level() const { return level_; }
  std::vector<std::shared_ptr<ZBR_LOOP>>& children() { return children_; }
  const std::vector<std::shared_ptr<ZBR_LOOP>>& children() const { return children_; }
  bool IsSetuped() const { return setuped_; }
  // Declares the cache invalid; to be called after editing pt().
  void Reset() { setuped_ = false; }

  // Computes area and bounding box unless they are valid. An empty loop gets zeros. Points stay as they are.
  ZBR_API void Setup();
  // Reverses the order of the points and negates the cached area.
  ZBR_API void reverse();
  // Copies points, level and cache of `o`; the children stay.
  ZBR_API void CopyMember(const ZBR_LOOP& o);
  // Whether the cached boxes are farther apart than d on some axis. Both loops must be set up.
  ZBR_API bool outof(const ZBR_LOOP& o, double d) const;
  // Translates points and bounds by v, children (at every depth) included.
  ZBR_API void Offset(const ZBR_PT& v);
  ZBR_API static void Offset(std::vector<std::shared_ptr<ZBR_LOOP>>& loops, const ZBR_PT& v);
  // The point at boundary parameter t; the end of the last edge, n, is vertex 0. NaN when t lies outside [0, n] or is NaN.
  ZBR_API ZBR_PT LinTo(double t) const;

  using ZBR_POLYGON::get_area;
  // Net area of a forest from the cached areas, children at every depth included: every loop must be set up.
  ZBR_API static double get_area(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

  // dst becomes a list of the same loops (shared, not copied).
  ZBR_API static void CopyLoopsPtr(std::vector<std::shared_ptr<ZBR_LOOP>>& dst, const std::vector<std::shared_ptr<ZBR_LOOP>>& src);
  // dst becomes a list of copies of the loops and of their children.
  ZBR_API static void DeepCopyLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& dst, const std::vector<std::shared_ptr<ZBR_LOOP>>& src);
  // Appends a copy of o's points and cache as a loop of its own: no children, level -1.
  ZBR_API static void AppendTopLoopDup(std::vector<std::shared_ptr<ZBR_LOOP>>& loops, const ZBR_LOOP& o);

 private:
  std::vector<std::shared_ptr<ZBR_LOOP>> children_;
  int level_ = -1;
  bool setuped_ = false;
  double area_ = 0.0;
  double xmax_ = 0.0;
  double xmin_ = 0.0;
  double ymax_ = 0.0;
  double ymin_ = 0.0;
};

// Position of a loop vertex relative to a test point, per axis: -1 less, 0 within eps, +1 greater.
struct ZBR_POS_PT_PT {
  signed char xPos = 0;
  signed char yPos = 0;
};

// Where a point lies relative to a loop.
enum ZBR_POLY_INSIDE {
  ZBR_PI_UNKNOWN = 0,    // undecided: every ray tried grazed a vertex
  ZBR_PI_ON_VERTEX = 1,  // within eps of a vertex in x and in y
  ZBR_PI_ON_EDGE = 2,    // on an edge, within eps
  ZBR_PI_IN = 4,
  ZBR_PI_OUT = 5  // outside, or the loop has fewer than three points
};

// Relation of loop a to loop b.
enum ZBR_POLY_REL {
  ZBR_PR_SAME = 0,  // the boundaries coincide
  ZBR_PR_A_IN_B = 1,
  ZBR_PR_B_IN_A = 2,
  ZBR_PR_APART = 3  // neither contains the other
};

// Relation of loop a to loop b taken together with b's children, its holes.
enum ZBR_LOOP_REL {
  ZBR_LR_SAME = 0,          // coincides with b
  ZBR_LR_SAME_AS_HOLE = 1,  // inside b, coincides with a child of b
  ZBR_LR_INSIDE = 2,        // inside b and in none of its children
  ZBR_LR_IN_HOLE = 3,       // inside a child of b
  ZBR_LR_CONTAINS = 4,      // b lies inside a
  ZBR_LR_OUTSIDE = 5        // outside b
};

// Where pt lies relative to the ring of `loop` (children are ignored). Sets the loop up unless it has fewer than three
// points.
//
// pos receives each vertex's position relative to pt, in loop order. It is left untouched when the answer is ZBR_PI_OUT by the
// bounding box, and is cut short at the vertex that gave ZBR_PI_ON_VERTEX. Linear in the number of points; for many points
// against one loop build a ZBR_LOOP_LOCATOR.
ZBR_API ZBR_POLY_INSIDE zbrIsInside(const ZBR_PT& pt, ZBR_LOOP& loop, std::vector<ZBR_POS_PT_PT>& pos);

// Whether loop a lies inside loop b; a loop that coincides with b does. The first vertex or edge midpoint of a that is clearly
// inside or outside b decides. Sets both loops up.
ZBR_API bool zbrIsInside(ZBR_LOOP& a, ZBR_LOOP& b);

// Relation of two rings that do not cross. Sets both loops up.
ZBR_API ZBR_POLY_REL zbrCheckInclude(ZBR_LOOP& a, ZBR_LOOP& b);

// Relation of a to b and b's children. Sets up a, b and the children looked at.
ZBR_API ZBR_LOOP_REL zbrCheckInclude(const std::shared_ptr<ZBR_LOOP>& a, const std::shared_ptr<ZBR_LOOP>& b);

// Relation of a to the first loop of the list that contains it (or coincides with it) and that loop's children. A loop inside
// none is ZBR_LR_OUTSIDE, also when it contains loops of the list: this form never answers ZBR_LR_CONTAINS.
ZBR_API ZBR_LOOP_REL zbrCheckInclude(const std::shared_ptr<ZBR_LOOP>& a, const std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

// Nests a flat list of loops, in any order and orientation, in place.
//
// Afterwards the list holds outer loops (counter-clockwise, level 0), largest first among those not inside another; their
// children are holes (clockwise, level 1). An island in a hole becomes an outer loop of its own behind them. Loops whose area is
// within eps (compared with the length tolerance itself; intended) or not finite are removed. If that holds for all of them,
// none is removed: the list is only sorted and its levels set to 0, recognisable by the area of its first loop.
// CHILDREN THAT THE LOOPS HAD BEFORE ARE DROPPED: a region that is nested already loses its holes; call zbrFlattenLoops first.
// Of two coincident loops the later becomes a hole of the earlier. Points stay as they are, except that a loop may be reversed. A
// loop that is in the list more than once stays once; none may be null. Loops of extents beyond about 1e154, where areas overflow,
// count as not finite.
// Cost: n log n in loops and points. Only loops nested thousands deep that also touch each other, or whose coordinates exceed about
// 1e13 eps, cost the depth per loop.
ZBR_API void zbrMakeLoopTree(std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

// Makes one list of loops and their children at every depth, parents first, without children of their own; levels are set to 0.
// What zbrMakeLoopTree takes, from a region or several of them put together.
ZBR_API void zbrFlattenLoops(std::vector<std::shared_ptr<ZBR_LOOP>>& loops);

// Locates many points relative to one loop, or to a region, in logarithmic time each, and some for each ring around the point; in
// linear time where eps is not well above the rounding errors of the coordinates (about 4e-15 of their size).
//
// Built once (n log n; a tree of about 8 bytes per point beside a copy of the points), then read-only: one locator may serve any
// number of threads, each with its own tolerance, which is read per call. It keeps nothing of its arguments.
class ZBR_LOOP_LOCATOR {
 public:
  // For the ring of one loop; IsInside(p) answers as zbrIsInside(p, loop, pos) does, and decides where that answers ZBR_PI_UNKNOWN.
  ZBR_API explicit ZBR_LOOP_LOCATOR(const ZBR_LOOP& loop);
  // For a region as zbrMakeLoopTree leaves it: the loops of the list and their children, deeper ones are not read. A point is
  // ZBR_PI_IN when it lies in the region's interior, ZBR_PI_ON_VERTEX or ZBR_PI_ON_EDGE on any of its rings.
  ZBR_API explicit ZBR_LOOP_LOCATOR(const std::vector<std::shared_ptr<ZBR_LOOP>>& region);
  ZBR_API ~ZBR_LOOP_LOCATOR();
  ZBR_API ZBR_LOOP_LOCATOR(const ZBR_LOOP_LOCATOR& o);
  ZBR_API ZBR_LOOP_LOCATOR& operator=(const ZBR_LOOP_LOCATOR& o);

  ZBR_API ZBR_POLY_INSIDE IsInside(const ZBR_PT& pt) const;

 private:
  class Impl;
  std::shared_ptr<const Impl> impl_;
};
