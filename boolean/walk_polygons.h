// The rings of a result, and the polygons that they make.
#pragma once

#include <cstdint>
#include <vector>

#include <zbr/region.h>

#include "boolean/walk_rings.h"
#include "core/rings.h"

namespace zbr {

// Rings that neither cross nor touch, outer ones counter-clockwise, holes clockwise. Memory is kept from one result to the next.
class WalkPolygons {
 public:
  // A result without rings. It will have about so many points at the most.
  void Start(std::size_t mostPoints);
  // The points of the ring that is being made, at the end of the list.
  std::vector<ZBR_PT>& points() { return points_; }
  // Ends the ring. False when it encloses next to nothing.
  bool EndRing(const WalkScale& scale);
  // Rings added from here on are not nested in those before.
  void StartGroup() { groupBegin_ = rings_.size(); }
  // Finds the outer ring of each hole of the group. False when rounded arithmetic can't tell.
  bool Nest(double eps);
  // Replaces the region: polygons in the order of their outer rings, holes in theirs.
  void Write(ZBR_REGION& region);

 private:
  static constexpr std::uint32_t kOuter = 0xffffffff;
  struct Made {
    std::uint32_t begin;
    std::uint32_t end;
    double twiceArea;
    std::uint32_t outer;  // the ring that a hole lies in
  };

  RingSpan PointsOf(const Made& ring) const { return RingSpan(points_).subspan(ring.begin, ring.end - ring.begin); }
  bool NestAmong(const std::vector<std::uint32_t>& outers, double eps);

  std::vector<ZBR_PT> points_;
  std::vector<Made> rings_;
  std::size_t groupBegin_ = 0;
  std::vector<std::uint32_t> next_;  // hole of the same outer ring
  std::vector<std::uint32_t> last_;  // hole of each outer ring, as far as seen
};

}  // namespace zbr
