// The region record.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include <zbr/region.h>

#include "boolean/region_input.h"
#include "core/planar_inline.h"
#include "core/rings.h"

namespace {

using zbr::IsLess;
using zbr::RingSpan;

RingSpan RingOf(const ZBR_REGION& region, std::size_t ring) {
  const auto begin = static_cast<std::size_t>(region.ring_offsets()[ring]);
  return RingSpan(region.points()).subspan(begin, static_cast<std::size_t>(region.ring_offsets()[ring + 1]) - begin);
}

// The sum of offsets. Beyond the largest it is of no use, and IsTooLarge tells so later.
std::int32_t Advanced(std::int32_t offset, std::uint32_t by) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(offset) + by);
}

// The ring's lowest leftmost point.
std::size_t FirstPointOf(RingSpan ring) {
  return static_cast<std::size_t>(std::min_element(ring.begin(), ring.end(), IsLess) - ring.begin());
}

}  // namespace

ZBR_REGION_VIEW ZBR_REGION::view() const {
  ZBR_REGION_VIEW view;
  view.xy = reinterpret_cast<const double*>(points_.data());
  view.point_count = points_.size();
  view.ring_offsets = ring_offsets().data();
  view.ring_count = ring_count();
  view.polygon_offsets = polygon_offsets().data();
  view.polygon_count = polygon_count();
  return view;
}

void ZBR_REGION::AddRing(const ZBR_PT* points, std::size_t count, bool startsPolygon) {
  if (ring_offsets_.empty()) ring_offsets_.push_back(0);
  if (polygon_offsets_.empty()) polygon_offsets_.push_back(0);
  const std::vector<ZBR_PT> ring(points, points + count);  // they may be points of this region
  points_.insert(points_.end(), ring.begin(), ring.end());
  ring_offsets_.push_back(static_cast<std::int32_t>(points_.size()));
  if (startsPolygon || polygon_count() == 0) polygon_offsets_.push_back(polygon_offsets_.back());
  polygon_offsets_.back() = static_cast<std::int32_t>(ring_count());
  sources_.clear();
  source_offsets_.clear();
}

void ZBR_REGION::Clear() {
  *this = ZBR_REGION();
}

double ZBR_REGION::area() const {
  double twice = 0.0;
  for (std::size_t r = 0; r < ring_count(); ++r) twice += zbr::TwiceArea(RingOf(*this, r));
  return twice / 2.0;
}

double ZBR_REGION::perimeter() const {
  double sum = 0.0;
  for (std::size_t r = 0; r < ring_count(); ++r) sum += zbr::Perimeter(RingOf(*this, r));
  return sum;
}

void ZBR_REGION::GetBounds(double& xmin, double& ymin, double& xmax, double& ymax) const {
  zbr::Box box = zbr::BoxOfRing(points_);
  if (points_.empty()) box = {0.0, 0.0, 0.0, 0.0};
  xmin = box.xmin;
  ymin = box.ymin;
  xmax = box.xmax;
  ymax = box.ymax;
}

bool ZBR_REGION::operator==(const ZBR_REGION& o) const {
  const auto same = [](const ZBR_PT& p, const ZBR_PT& q) { return p.x() == q.x() && p.y() == q.y(); };
  return ring_offsets() == o.ring_offsets() && polygon_offsets() == o.polygon_offsets() &&
         std::equal(points_.begin(), points_.end(), o.points_.begin(), o.points_.end(), same);
}

void ZBR_REGION_ACCESS::Append(ZBR_REGION& region, zbr::FlatRegion&& flat, const zbr::RegionInput& input,
                               const ZBR_REGION_OPTIONS& options) {
  if (region.empty()) {
    region.Clear();
    region.points_ = std::move(flat.points);
  } else {
    region.points_.insert(region.points_.end(), flat.points.begin(), flat.points.end());
  }
  const auto appendEnds = [](const std::vector<std::uint32_t>& ends, std::vector<std::int32_t>& offsets) {
    if (offsets.empty()) offsets.push_back(0);
    const std::int32_t before = offsets.back();
    for (const std::uint32_t end : ends) offsets.push_back(Advanced(before, end));
  };
  appendEnds(flat.ringEnds, region.ring_offsets_);
  appendEnds(flat.polygonEnds, region.polygon_offsets_);
  if (!options.sources) return;
  std::vector<std::uint32_t> firstEdge{0};  // of each ring
  for (const RingSpan& ring : input.rings()) firstEdge.push_back(firstEdge.back() + static_cast<std::uint32_t>(ring.size()));
  appendEnds(flat.sourceEnds, region.source_offsets_);
  for (const zbr::FlatSource& s : flat.sources) {
    const auto ring =
        static_cast<std::size_t>(std::upper_bound(firstEdge.begin(), firstEdge.end(), s.edge) - firstEdge.begin()) - 1;
    const std::size_t operand = input.OperandOf(ring);
    const std::size_t firstRing = operand == 0 ? 0 : input.end(operand - 1);
    // A vertex within the tolerance of an edge's end may lie beyond it; adding zero makes one of minus zero.
    const auto onEdge = [](double t) { return std::clamp(t, 0.0, 1.0) + 0.0; };
    region.sources_.push_back({static_cast<std::int32_t>(operand), static_cast<std::int32_t>(ring - firstRing),
                               static_cast<std::int32_t>(s.edge - firstEdge[ring]), onEdge(s.t0), onEdge(s.t1)});
  }
}

void ZBR_REGION_ACCESS::Append(ZBR_REGION& region, const ZBR_REGION& more) {
  if (more.empty()) return;
  if (region.empty()) {
    region = more;
    return;
  }
  const std::int32_t points = region.ring_offsets_.back();
  const std::int32_t rings = region.polygon_offsets_.back();
  region.points_.insert(region.points_.end(), more.points_.begin(), more.points_.end());
  for (std::size_t r = 0; r < more.ring_count(); ++r) {
    region.ring_offsets_.push_back(Advanced(points, static_cast<std::uint32_t>(more.ring_offsets_[r + 1])));
  }
  for (std::size_t p = 0; p < more.polygon_count(); ++p) {
    region.polygon_offsets_.push_back(Advanced(rings, static_cast<std::uint32_t>(more.polygon_offsets_[p + 1])));
  }
}

bool ZBR_REGION_ACCESS::IsTooLarge(const ZBR_REGION& region) {
  constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  return region.points_.size() > kMost || region.sources_.size() > kMost;
}

void ZBR_REGION_ACCESS::Set(ZBR_REGION& region, zbr::FlatRegion&& flat, const zbr::RegionInput& input,
                            const ZBR_REGION_OPTIONS& options) {
  region.Clear();
  Append(region, std::move(flat), input, options);
  if (options.canonical && !IsTooLarge(region)) Canonicalize(region);
}

void ZBR_REGION_ACCESS::AppendRing(const ZBR_REGION& from, std::size_t ring, std::size_t first, ZBR_REGION& to) {
  const auto begin = static_cast<std::size_t>(from.ring_offsets_[ring]);
  const std::size_t n = RingOf(from, ring).size();
  for (std::size_t i = 0; i < n; ++i) {
    const std::size_t point = begin + (first + i) % n;
    to.points_.push_back(from.points_[point]);
    if (from.source_offsets_.empty()) continue;
    to.sources_.insert(to.sources_.end(), from.sources_.begin() + from.source_offsets_[point],
                       from.sources_.begin() + from.source_offsets_[point + 1]);
    to.source_offsets_.push_back(static_cast<std::int32_t>(to.sources_.size()));
  }
  to.ring_offsets_.push_back(static_cast<std::int32_t>(to.points_.size()));
}

void ZBR_REGION_ACCESS::Canonicalize(ZBR_REGION& region) {
  struct Item {
    std::size_t ring;
    std::size_t first;
  };
  std::vector<Item> rings(region.ring_count());
  for (std::size_t r = 0; r < rings.size(); ++r) {
    rings[r] = {r, FirstPointOf(RingOf(region, r))};
  }
  // Rings that start at one place are told apart by the points that follow.
  const auto comesFirst = [&region](const Item& a, const Item& b) {
    const RingSpan p = RingOf(region, a.ring);
    const RingSpan q = RingOf(region, b.ring);
    for (std::size_t i = 0; i < std::min(p.size(), q.size()); ++i) {
      const ZBR_PT& u = p[(a.first + i) % p.size()];
      const ZBR_PT& v = q[(b.first + i) % q.size()];
      if (IsLess(u, v) || IsLess(v, u)) return IsLess(u, v);
    }
    return p.size() < q.size();
  };
  std::vector<std::size_t> polygons(region.polygon_count());
  std::iota(polygons.begin(), polygons.end(), std::size_t{0});
  const auto outer = [&](std::size_t p) { return static_cast<std::size_t>(region.polygon_offsets_[p]); };
  for (const std::size_t p : polygons) {
    const auto begin = rings.begin() + static_cast<std::ptrdiff_t>(outer(p));
    std::stable_sort(begin + 1, rings.begin() + region.polygon_offsets_[p + 1], comesFirst);
  }
  std::stable_sort(polygons.begin(), polygons.end(),
                   [&](std::size_t p, std::size_t q) { return comesFirst(rings[outer(p)], rings[outer(q)]); });
  ZBR_REGION sorted;
  sorted.ring_offsets_.push_back(0);
  sorted.polygon_offsets_.push_back(0);
  if (!region.source_offsets_.empty()) sorted.source_offsets_.push_back(0);
  for (const std::size_t p : polygons) {
    for (std::size_t k = outer(p); k < static_cast<std::size_t>(region.polygon_offsets_[p + 1]); ++k)
      AppendRing(region, rings[k].ring, rings[k].first, sorted);
    sorted.polygon_offsets_.push_back(static_cast<std::int32_t>(sorted.ring_count()));
  }
  region = std::move(sorted);
}
