// Reading somebody's arrays as rings.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include <zbr/region.h>

#include "arrangement/overlay.h"
#include "core/box.h"

namespace zbr {

// Times a power of two.
inline ZBR_PT Scaled(const ZBR_PT& p, int exponent) {
  return ZBR_PT(std::ldexp(p.x(), exponent), std::ldexp(p.y(), exponent));
}

// The rings of one or more operands, and what is known of all of them.
class RegionInput {
 public:
  // Without rings, keeping the memory.
  void Clear();
  // Appends the rings of an operand. False, with the status telling the place, when the arrays are faulty.
  bool Add(const ZBR_REGION_VIEW& view, ZBR_REGION_STATUS& status);

  // The power of two that makes operands of an unusual size ordinary ones; mostly 0. Multiplying by it is exact but for coordinates
  // so much smaller than the extent that they vanish against its tolerance; with a positive one always.
  int OrdinaryExponent() const;
  // Multiplies all points, as copies of its own, by a power of two. Once, after the last operand.
  void Scale(int exponent);
  // The same with that of operands whose squared lengths would underflow.
  void ScaleUp() { Scale(std::max(OrdinaryExponent(), 0)); }
  // What results are to be multiplied by.
  int ExponentBack() const { return -exponent_; }
  // Becomes some rings of two operands, whose numbers ascend, with the bounds and so the tolerance of all.
  void Choose(const RegionInput& all, std::span<const std::uint32_t> rings);

  const std::vector<RingSpan>& rings() const { return rings_; }
  // By ring, counted through all operands.
  std::vector<Box> Boxes() const;
  // The rings of an operand, in the order of Add.
  std::span<const RingSpan> operand(std::size_t i) const {
    const std::size_t begin = i == 0 ? 0 : ends_[i - 1];
    return std::span(rings_).subspan(begin, ends_[i] - begin);
  }
  std::size_t operands() const { return ends_.size(); }
  std::size_t end(std::size_t i) const { return ends_[i]; }
  std::size_t OperandOf(std::size_t ring) const {
    return static_cast<std::size_t>(std::upper_bound(ends_.begin(), ends_.end(), ring) - ends_.begin());
  }
  const Box& bounds() const { return bounds_; }
  // The tolerance asked for, or one for the extent.
  double ToleranceFor(const ZBR_REGION_OPTIONS& options) const;
  // What points may be off by because of the digits of their coordinates.
  double Rounding() const { return HasExtent() ? OverlayTolerance(bounds_, 0.0) : 0.0; }

 private:
  bool AddRing(RingSpan ring, ZBR_REGION_STATUS& status);
  bool HasExtent() const { return bounds_.xmax >= bounds_.xmin; }

  std::vector<RingSpan> rings_;
  std::vector<ZBR_PT> scaled_;  // points of the rings, where they are not the caller's
  std::vector<std::size_t> ends_;
  Box bounds_;
  std::size_t points_ = 0;
  int exponent_ = 0;
};

// Whether the offsets ascend and stay within their arrays.
bool HaveUsableOffsets(const ZBR_REGION_VIEW& view);

// Whether a winding number is inside.
inline bool IsFilled(ZBR_FILL_RULE rule, std::int32_t winding) {
  switch (rule) {
    case ZBR_FILL_NON_ZERO:
      return winding != 0;
    case ZBR_FILL_POSITIVE:
      return winding > 0;
    case ZBR_FILL_NEGATIVE:
      return winding < 0;
    default:
      return winding % 2 != 0;
  }
}

// Asks the caller whether to go on.
class RegionProgress {
 public:
  RegionProgress(const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status) : options_(options), status_(status) {}
  bool GoesOn(double share) {
    if (options_.progress == nullptr || options_.progress(begin_ + share * length_, options_.progress_data)) return true;
    status_.code = ZBR_REGION_STOPPED;
    return false;
  }
  // What follows is the k-th of `count` equal parts of all there is to do.
  void SetPart(std::size_t k, std::size_t count) {
    length_ = 1.0 / static_cast<double>(count);
    begin_ = static_cast<double>(k) * length_;
  }

 private:
  const ZBR_REGION_OPTIONS& options_;
  ZBR_REGION_STATUS& status_;
  double begin_ = 0.0, length_ = 1.0;  // of the part at hand, in the whole
};

}  // namespace zbr

// Fills regions from inside.
class ZBR_REGION_ACCESS {
 public:
  // Appends polygons. Sources name edges through all rings of the input.
  static void Append(ZBR_REGION& region, zbr::FlatRegion&& flat, const zbr::RegionInput& input, const ZBR_REGION_OPTIONS& options);
  // The same in place of what there was, and in canonical order when that is asked for.
  static void Set(ZBR_REGION& region, zbr::FlatRegion&& flat, const zbr::RegionInput& input, const ZBR_REGION_OPTIONS& options);
  // The same, or nothing, which the status tells, where there is too much for the offsets.
  static void SetResult(ZBR_REGION& region, zbr::FlatRegion&& flat, const zbr::RegionInput& input,
                        const ZBR_REGION_OPTIONS& options, ZBR_REGION_STATUS& status) {
    Set(region, std::move(flat), input, options);
    if (!IsTooLarge(region)) return;
    region.Clear();
    status.code = ZBR_REGION_TOO_LARGE;
  }
  // The region's lists, for whoever fills them.
  struct Lists {
    std::vector<ZBR_PT>& points;
    std::vector<std::int32_t>& ringOffsets;
    std::vector<std::int32_t>& polygonOffsets;
  };
  // An empty region that keeps its memory, with room for so much.
  static Lists Restart(ZBR_REGION& region, std::size_t points, std::size_t rings, std::size_t polygons) {
    region.points_.clear();
    region.points_.reserve(points);
    region.ring_offsets_.reserve(rings + 1);
    region.ring_offsets_.assign(1, 0);
    region.polygon_offsets_.reserve(polygons + 1);
    region.polygon_offsets_.assign(1, 0);
    region.sources_.clear();
    region.source_offsets_.clear();
    return {region.points_, region.ring_offsets_, region.polygon_offsets_};
  }
  static void Append(ZBR_REGION& region, const ZBR_REGION& more);
  static void Scale(ZBR_REGION& region, int exponent) {
    if (exponent == 0) return;
    for (ZBR_PT& p : region.points_) p = zbr::Scaled(p, exponent);
  }
  // Appends the polygon of a nested loop, its points taken by `pointOf`.
  template <class PointOf>
  static void AddPolygon(ZBR_REGION& region, const ZBR_LOOP& outer, PointOf pointOf) {
    if (region.ring_offsets_.empty()) region.ring_offsets_.push_back(0);
    if (region.polygon_offsets_.empty()) region.polygon_offsets_.push_back(0);
    AddLoop(region, outer, pointOf);
    for (const auto& hole : outer.children()) AddLoop(region, *hole, pointOf);
    region.polygon_offsets_.push_back(static_cast<std::int32_t>(region.ring_count()));
  }
  // Lowest vertices first, by them the rings and polygons.
  static void Canonicalize(ZBR_REGION& region);
  // Whether offsets do not reach to the end; they are wrong then.
  static bool IsTooLarge(const ZBR_REGION& region);

 private:
  // Appends a ring, from one of its points on, with its sources.
  static void AppendRing(const ZBR_REGION& from, std::size_t ring, std::size_t first, ZBR_REGION& to);
  template <class PointOf>
  static void AddLoop(ZBR_REGION& region, const ZBR_LOOP& loop, PointOf pointOf) {
    for (const ZBR_PT& p : loop.pt()) region.points_.push_back(pointOf(p));
    region.ring_offsets_.push_back(static_cast<std::int32_t>(region.points_.size()));
  }
};

namespace zbr {

// A call with one operand: `arrange` makes what the result is formed of by `form`.
template <class Arrange, class Form>
ZBR_REGION_STATUS FormOfOne(const ZBR_REGION_VIEW& operand, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options, Arrange arrange,
                            Form form) {
  constexpr double kShareOfArranging = 0.6;
  ZBR_REGION_STATUS status;
  RegionInput input;
  RegionProgress progress(options, status);
  if (input.Add(operand, status) && progress.GoesOn(0.0)) {
    input.ScaleUp();
    auto arranged = arrange(input, input.ToleranceFor(options));
    status.exact = true;
    if (progress.GoesOn(kShareOfArranging)) ZBR_REGION_ACCESS::SetResult(result, form(arranged), input, options, status);
    ZBR_REGION_ACCESS::Scale(result, input.ExponentBack());
  }
  if (status.code != ZBR_REGION_OK) result.Clear();
  return status;
}

}  // namespace zbr
