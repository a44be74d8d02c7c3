// Regions as flat arrays: combinations, unions of many, repair, checks, sources.
//
// Fill a ZBR_REGION ring by ring, or point a ZBR_REGION_VIEW at arrays that you have, and call zbrCombineRegions, zbrUniteRegions
// or zbrMakeValidRegion. Any rings are taken, in any order and orientation, crossing themselves or not; a rule of filling says what
// is inside. What comes back is valid: simple rings, outer ones counter-clockwise, each followed by its holes, which touch in
// single points at most. It can be an operand again.
//
// Nothing has to be scaled: tolerances are found from the extent of the operands. Points of the result are points of the operands,
// to the bit, or crossings. No input gives a wrong region: what rounded arithmetic can't be certain of is decided exactly.
//
// The layout is GeoArrow's: x and y interleaved, and for rings and polygons a list of offsets that begins with 0 and has one entry
// more than there are items. Rings are not closed: the last point differs from the first (a repeated first point does no harm).
//
// Threads: everything here works on its arguments only; the calling thread's tolerance is neither used nor changed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <zbr/boolean.h>
#include <zbr/export.h>
#include <zbr/loop.h>
#include <zbr/planar.h>

// Somebody's arrays, read only. With polygon_offsets null, the rings belong together by the rule of filling alone; so they do with
// polygons: a point's winding number counts all rings.
struct ZBR_REGION_VIEW {
  const double* xy = nullptr;  // 2 * point_count
  std::size_t point_count = 0;
  const std::int32_t* ring_offsets = nullptr;  // ring_count + 1, into the points
  std::size_t ring_count = 0;
  const std::int32_t* polygon_offsets = nullptr;  // polygon_count + 1, into the rings
  std::size_t polygon_count = 0;
};

// Where an edge of a result comes from: it runs along a piece of this edge of an operand, from parameter t0 to t1 (0 at the edge's
// start, 1 at its end; t0 > t1 when it runs the other way).
struct ZBR_EDGE_SOURCE {
  std::int32_t operand = 0;  // 0 for A, 1 for B; the number of the region where there are many
  std::int32_t ring = 0;     // of the operand
  std::int32_t edge = 0;     // of the ring; it starts at the point of the same number
  double t0 = 0.0;
  double t1 = 1.0;
};

// A region that owns its arrays. A value: copied, moved and compared as such; what was moved from is empty.
class ZBR_REGION {
 public:
  ZBR_REGION() = default;

  std::size_t point_count() const { return points_.size(); }
  std::size_t ring_count() const { return ring_offsets_.empty() ? 0 : ring_offsets_.size() - 1; }
  std::size_t polygon_count() const { return polygon_offsets_.empty() ? 0 : polygon_offsets_.size() - 1; }
  bool empty() const { return ring_count() == 0; }
  const std::vector<ZBR_PT>& points() const { return points_; }
  const std::vector<std::int32_t>& ring_offsets() const { return ring_offsets_.empty() ? NoOffsets() : ring_offsets_; }
  const std::vector<std::int32_t>& polygon_offsets() const { return polygon_offsets_.empty() ? NoOffsets() : polygon_offsets_; }
  // Valid until the region changes or goes.
  ZBR_API ZBR_REGION_VIEW view() const;

  // Adds a ring: as one more of the last polygon, or, with startsPolygon or as the first, as the outer ring of a new one.
  ZBR_API void AddRing(const ZBR_PT* points, std::size_t count, bool startsPolygon = true);
  void AddRing(const std::vector<ZBR_PT>& points, bool startsPolygon = true) {
    AddRing(points.data(), points.size(), startsPolygon);
  }
  ZBR_API void Clear();

  // Area by the orientation of the rings, sum of their lengths, and box (0 for an empty region).
  ZBR_API double area() const;
  ZBR_API double perimeter() const;
  ZBR_API void GetBounds(double& xmin, double& ymin, double& xmax, double& ymax) const;

  // Sources, when the call that made the region was asked for them: those of the edge that starts at point i are
  // sources()[source_offsets()[i]] up to sources()[source_offsets()[i + 1]]. Empty lists otherwise.
  const std::vector<ZBR_EDGE_SOURCE>& sources() const { return sources_; }
  const std::vector<std::int32_t>& source_offsets() const { return source_offsets_; }

  // Whether all coordinates and offsets are equal, without any tolerance. Sources do not count.
  ZBR_API bool operator==(const ZBR_REGION& o) const;
  bool operator!=(const ZBR_REGION& o) const { return !(*this == o); }

 private:
  friend class ZBR_REGION_ACCESS;

  // The offsets of nothing. Empty regions have none of their own, so that to make one needs no memory. Never freed, as threads may
  // read it while the program ends.
  static const std::vector<std::int32_t>& NoOffsets() {
    static const auto* const offsets = new std::vector<std::int32_t>(1, 0);
    return *offsets;
  }

  std::vector<ZBR_PT> points_;
  std::vector<std::int32_t> ring_offsets_;
  std::vector<std::int32_t> polygon_offsets_;
  std::vector<ZBR_EDGE_SOURCE> sources_;
  std::vector<std::int32_t> source_offsets_;
};

// What is inside, by the winding number of all rings around a place.
enum ZBR_FILL_RULE : std::int32_t {
  ZBR_FILL_EVEN_ODD = 0,  // odd numbers
  ZBR_FILL_NON_ZERO = 1,  // all but 0
  ZBR_FILL_POSITIVE = 2,  // counter-clockwise rings count 1, clockwise ones -1
  ZBR_FILL_NEGATIVE = 3
};

struct ZBR_REGION_OPTIONS {
  // What is closer than this is one place, and what is narrower on the average is nothing. 0: about 1e-12 of the operands' extent,
  // and no less than a few units in the last place of their coordinates.
  double tolerance = 0.0;
  ZBR_FILL_RULE fill_a = ZBR_FILL_EVEN_ODD;  // of the only operand too, and of each of many
  ZBR_FILL_RULE fill_b = ZBR_FILL_EVEN_ODD;
  bool sources = false;    // wanted
  bool canonical = false;  // every ring from its lowest leftmost point on, holes and polygons in the order of these points
  // When not null, called now and then on the calling thread with the share of the work that is done and progress_data; when it
  // answers false the call ends with ZBR_REGION_STOPPED.
  bool (*progress)(double share, void* data) = nullptr;
  void* progress_data = nullptr;
};

enum ZBR_REGION_CODE : std::int32_t {
  ZBR_REGION_OK = 0,
  ZBR_REGION_BAD_OFFSETS = 1,  // offsets descend, or lead beyond the points or rings
  ZBR_REGION_NOT_FINITE = 2,   // a coordinate is NaN, infinite or beyond 1e150
  ZBR_REGION_TOO_LARGE = 3,    // more than 2^31 - 1 points
  ZBR_REGION_STOPPED = 4       // by the caller's progress function
};

// How a call went. Unless code is ZBR_REGION_OK, results are empty and operand, ring and point say where the fault is.
struct ZBR_REGION_STATUS {
  ZBR_REGION_CODE code = ZBR_REGION_OK;
  std::int32_t operand = -1;
  std::int32_t ring = -1;
  std::int32_t point = -1;
  bool exact = false;  // some result was decided by the exact arrangement
};

// Forms `count` combinations with one search: results[k] becomes what ops[k] says of A and B. A result may be the owner of an
// operand's arrays. n log n in edges and crossings.
ZBR_API ZBR_REGION_STATUS zbrCombineRegions(const ZBR_REGION_VIEW& a, const ZBR_REGION_VIEW& b, const ZBR_BOOLEAN_OPE* ops,
                                            ZBR_REGION* results, int count, const ZBR_REGION_OPTIONS& options = {});

// One combination, without a word on how it went: faulty arrays are an empty region.
ZBR_API ZBR_REGION zbrCombineRegions(const ZBR_REGION& a, const ZBR_REGION& b, ZBR_BOOLEAN_OPE op,
                                     const ZBR_REGION_OPTIONS& options = {});

// Many pairs: results[i] becomes what `op` says of a[i] and b[i]. The same as a call for each, faster for small ones. The status is
// that of the first pair that fails; the others are formed all the same.
ZBR_API ZBR_REGION_STATUS zbrCombineRegionPairs(const ZBR_REGION_VIEW* a, const ZBR_REGION_VIEW* b, std::size_t count,
                                                ZBR_BOOLEAN_OPE op, ZBR_REGION* results, const ZBR_REGION_OPTIONS& options = {});

// What at least `times` of the regions cover, each filled by options.fill_a: 1 gives the union of all, which takes neighbours
// together first and is walked where that is certain; more times take one arrangement for all.
ZBR_API ZBR_REGION_STATUS zbrCoverRegions(const ZBR_REGION_VIEW* regions, std::size_t count, int times, ZBR_REGION& result,
                                          const ZBR_REGION_OPTIONS& options = {});
ZBR_API ZBR_REGION zbrUniteRegions(const std::vector<ZBR_REGION>& regions, const ZBR_REGION_OPTIONS& options = {});

// The region that the rings bound by options.fill_a, whatever they do to each other.
ZBR_API ZBR_REGION_STATUS zbrMakeValidRegion(const ZBR_REGION_VIEW& rings, ZBR_REGION& result,
                                             const ZBR_REGION_OPTIONS& options = {});

// The cells of line work: the bounded faces into which lines cut the plane, each a polygon, in an order of its own. Each list of
// points is a line, open unless its last point repeats the first; lines may cross, touch and overlap anywhere, and all of that
// cuts. What encloses nothing (dead ends, bridges) bounds no cell. Neighbouring cells share their border, so all cells together are
// no valid region, but each is one. The lines' order does not matter, with options.canonical to the bit. n log n.
ZBR_API ZBR_REGION_STATUS zbrTraceFaces(const ZBR_REGION_VIEW& lines, ZBR_REGION& cells, const ZBR_REGION_OPTIONS& options = {});

// What keeps rings from bounding a region as they are. zbrMakeValidRegion takes them nevertheless.
enum ZBR_REGION_FAULT_KIND : std::int32_t {
  ZBR_FAULT_CROSSING = 0,        // boundaries pass through each other, at an edge or at a vertex
  ZBR_FAULT_OVERLAP = 1,         // they share a stretch; the place is its middle
  ZBR_FAULT_FOLD = 2,            // a boundary turns back on itself
  ZBR_FAULT_REPEATED_POINT = 3,  // an edge has no length; the place is its start
  ZBR_FAULT_NO_AREA = 4,         // a ring of less than three different points, or narrower on the average than rounding explains
  ZBR_FAULT_NOT_FINITE = 5       // a coordinate is NaN, infinite or beyond 1e150; the ring is not looked at otherwise
};

// One fault at one place. Edges have the numbers of the points they start at. ring_a is not larger than ring_b, and both are one
// ring's where it does this to itself; ring_b and edge_b are -1 for faults of a single edge, and edge_a for those of a whole ring.
struct ZBR_REGION_FAULT {
  ZBR_REGION_FAULT_KIND kind = ZBR_FAULT_CROSSING;
  ZBR_PT place;
  std::int32_t ring_a = -1;
  std::int32_t edge_a = -1;
  std::int32_t ring_b = -1;
  std::int32_t edge_b = -1;
};

// Finds the faults of the rings, whose polygons are not looked at: rings of different ones may not cross either. Touching is no
// fault, nor is what the rounding of coordinates explains, nor what comes however near but exactly neither crosses nor overlaps;
// what is narrower than combinations care for is looked at all the same, as their results may be. faults is replaced, by ascending
// rings, then kinds, then edges. Where rings cross very often the search for what they do to each other ends when `most` such
// faults are found. The status tells of faulty offsets only. n log n for rings that keep apart.
ZBR_API ZBR_REGION_STATUS zbrCheckRegion(const ZBR_REGION_VIEW& rings, std::vector<ZBR_REGION_FAULT>& faults,
                                         std::size_t most = 1000000);

// Without points that lie straight between their neighbours within the tolerance, valid by options.fill_a. Gives no sources.
ZBR_API ZBR_REGION_STATUS zbrSimplifyRegion(const ZBR_REGION_VIEW& rings, double tolerance, ZBR_REGION& result,
                                            const ZBR_REGION_OPTIONS& options = {});

// How many rings lie around each ring, and which one directly (-1 for none). For rings that do not cross; depths and parents have
// an entry per ring. n log n.
ZBR_API ZBR_REGION_STATUS zbrNestRegion(const ZBR_REGION_VIEW& rings, std::vector<std::int32_t>& depths,
                                        std::vector<std::int32_t>& parents);

// From and to loop lists: a list's loops and their children become polygons and their holes; deeper ones are not read. The other
// way the loops come back nested as zbrMakeLoopTree leaves them, without its search.
ZBR_API ZBR_REGION zbrRegionOfLoops(const std::vector<std::shared_ptr<ZBR_LOOP>>& loops);
ZBR_API std::vector<std::shared_ptr<ZBR_LOOP>> zbrLoopsOfRegion(const ZBR_REGION_VIEW& region);
