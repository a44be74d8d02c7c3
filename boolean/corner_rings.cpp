// Idea: a corner has one horizontal edge and one vertical one, so the border is followed from corner to corner without a choice.
// Where two corners of the region meet in one point, each belongs to one of the parts that touch there; a walk that comes back to
// such a point takes off what it did since as a ring of its own, as the border of an arrangement is traced (boundary.cpp).
// At its lowest leftmost corner a ring runs to the right if it is an outer one, and upwards if it is a hole. What lies below that
// corner of a hole is inside, down to the next edge of the border, whose ring begins earlier: so it is known by then what that one
// lies in.
#include "boolean/corner_rings.h"

#include <algorithm>
#include <numeric>

#include "boolean/region_input.h"
#include "core/assert.h"

namespace zbr {

void CornerRings::Start(std::span<const double> xs, std::span<const double> ys) {
  xs_ = xs;
  ys_ = ys;
  corners_.clear();
}

std::uint32_t CornerRings::Add(std::uint32_t x, std::uint32_t y, bool leavesHorizontally, bool meetsLast) {
  if (meetsLast) corners_.back().meetsNext = true;
  corners_.push_back({x, y, kNone, kNone, kNone, leavesHorizontally, meetsLast, false});
  return static_cast<std::uint32_t>(corners_.size()) - 1;
}

void CornerRings::Trace() {
  ringOf_.assign(corners_.size(), kNone);
  place_.assign(corners_.size(), kNone);
  taken_.clear();
  taken_.reserve(corners_.size());
  rings_.clear();
  for (std::uint32_t start = 0; start < corners_.size(); ++start) {
    if (ringOf_[start] == kNone) WalkFrom(start);
  }
}

void CornerRings::WalkFrom(std::uint32_t start) {
  walk_.clear();
  std::uint32_t corner = start;
  do {
    const Corner& c = corners_[corner];
    if (c.meetsLast || c.meetsNext) {
      std::uint32_t& place = place_[c.meetsLast ? corner - 1 : corner];
      if (place != kNone) TakeRing(place);
      place = static_cast<std::uint32_t>(walk_.size());
    }
    walk_.push_back(corner);
    corner = After(corner);
    ZBR_ASSERT(corner != kNone && (corner == start || ringOf_[corner] == kNone));
  } while (corner != start);
  TakeRing(0);
}

// Takes what was walked from the given place on as a ring.
void CornerRings::TakeRing(std::size_t from) {
  const auto number = static_cast<std::uint32_t>(rings_.size());
  const auto begin = static_cast<std::uint32_t>(taken_.size());
  taken_.insert(taken_.end(), walk_.begin() + static_cast<std::ptrdiff_t>(from), walk_.end());
  walk_.resize(from);
  const auto ring = taken_.begin() + begin;
  for (auto corner = ring; corner != taken_.end(); ++corner) {
    const Corner& c = corners_[*corner];
    ringOf_[*corner] = number;
    if (c.meetsLast || c.meetsNext) place_[c.meetsLast ? *corner - 1 : *corner] = kNone;
  }
  std::rotate(ring, std::min_element(ring, taken_.end()), taken_.end());
  rings_.push_back({begin, static_cast<std::uint32_t>(taken_.size()), taken_[begin], kNone});
}

// Puts the rings in order and finds what the holes lie in.
void CornerRings::Nest() {
  order_.resize(rings_.size());
  std::iota(order_.begin(), order_.end(), 0U);
  std::sort(order_.begin(), order_.end(), [this](std::uint32_t r, std::uint32_t s) { return rings_[r].first < rings_[s].first; });
  for (const std::uint32_t r : order_) {
    Ring& ring = rings_[r];
    const bool isOuter = corners_[taken_[ring.begin + 1]].y == corners_[ring.first].y;
    ZBR_ASSERT(isOuter || corners_[ring.first].below != kNone);
    ring.outer = isOuter ? r : rings_[ringOf_[corners_[ring.first].below]].outer;
  }
}

void CornerRings::Append(const Ring& ring, std::vector<ZBR_PT>& points) const {
  for (std::uint32_t k = ring.begin; k < ring.end; ++k) {
    const Corner& c = corners_[taken_[k]];
    points.emplace_back(xs_[c.x], ys_[c.y]);
  }
}

void CornerRings::Write(ZBR_REGION& region) {
  Trace();
  Nest();
  std::vector<std::uint32_t> next(rings_.size(), kNone);  // ring of the same polygon
  std::vector<std::uint32_t> last(rings_.size());
  std::size_t polygons = 0;
  for (const std::uint32_t r : order_) {
    const std::uint32_t outer = rings_[r].outer;
    if (outer != r) next[last[outer]] = r;
    if (outer == r) ++polygons;
    last[outer] = r;
  }
  const ZBR_REGION_ACCESS::Lists lists = ZBR_REGION_ACCESS::Restart(region, taken_.size(), rings_.size(), polygons);
  for (const std::uint32_t outer : order_) {
    if (rings_[outer].outer != outer) continue;
    for (std::uint32_t r = outer; r != kNone; r = next[r]) {
      Append(rings_[r], lists.points);
      lists.ringOffsets.push_back(static_cast<std::int32_t>(lists.points.size()));
    }
    lists.polygonOffsets.push_back(static_cast<std::int32_t>(lists.ringOffsets.size()) - 1);
  }
}

}  // namespace zbr
