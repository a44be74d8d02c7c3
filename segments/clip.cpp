// Clipping of segments and polylines: what to do with the pieces that a RegionCutter makes of a segment.
#include <span>
#include <vector>

#include <zbr/segments.h>

#include "core/tolerance_state.h"
#include "segments/region_cutter.h"

namespace {

using Region = std::span<const std::shared_ptr<ZBR_LOOP>>;
using Polyline = std::vector<ZBR_PT3>;

// The point at t, where 0 and 1 are the segment's own ends.
ZBR_PT3 PointOf(const ZBR_PT3& a, const ZBR_PT3& b, double t) {
  return t == 0.0 ? a : t == 1.0 ? b : a + (b - a) * t;
}

int ClipSegs(std::span<const ZBR_SEG3> segs, Region region, std::vector<ZBR_SEG3>& inside, std::vector<ZBR_SEG3>* outside) {
  zbr::RegionCutter cutter(region, zbr::t_tolerance.eps);
  int count = 0;
  for (const ZBR_SEG3& seg : segs) {
    const ZBR_PT3 a = seg.s();
    const ZBR_PT3 b = seg.e();
    for (const zbr::CutPiece& piece : cutter.Cut(a, b)) {
      count += piece.inside ? 1 : 0;
      std::vector<ZBR_SEG3>* out = piece.inside ? &inside : outside;
      if (out != nullptr) out->emplace_back(PointOf(a, b, piece.t0), PointOf(a, b, piece.t1));
    }
  }
  return count;
}

// Strings the pieces of consecutive segments together.
class PolylineClipper {
 public:
  PolylineClipper(zbr::RegionCutter& cutter, std::vector<Polyline>& inside, std::vector<Polyline>* outside)
      : cutter_(cutter), inside_(inside), outside_(outside) {}

  int Run(const Polyline& line) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) Add(line[i], line[i + 1]);
    Finish();
    return count_;
  }

 private:
  void Add(const ZBR_PT3& a, const ZBR_PT3& b) {
    for (const zbr::CutPiece& piece : cutter_.Cut(a, b)) {
      if (!IsMerePoint(a, b)) {
        if (decided_ && piece.inside != side_) Finish();
        side_ = piece.inside;
        decided_ = true;
      }
      if (open_.empty()) open_.push_back(PointOf(a, b, piece.t0));
      open_.push_back(PointOf(a, b, piece.t1));
    }
  }

  // A point on the boundary, repeated: it goes with the line before or behind it, which may only touch the boundary there.
  bool IsMerePoint(const ZBR_PT3& a, const ZBR_PT3& b) const {
    if (!zbr::WithinTol(a.Distance2(b), zbr::t_tolerance.eps2)) return false;
    const ZBR_POLY_INSIDE at = cutter_.Locate(a.xy());
    return at == ZBR_PI_ON_EDGE || at == ZBR_PI_ON_VERTEX;
  }

  void Finish() {
    if (open_.empty()) return;
    count_ += side_ ? 1 : 0;
    std::vector<Polyline>* out = side_ ? &inside_ : outside_;
    if (out != nullptr) out->push_back(std::move(open_));
    open_.clear();
  }

  zbr::RegionCutter& cutter_;
  std::vector<Polyline>& inside_;
  std::vector<Polyline>* outside_;
  Polyline open_;
  bool side_ = true;      // of the open piece
  bool decided_ = false;  // it is more than a point on the boundary
  int count_ = 0;
};

}  // namespace

int zbrClipSeg(const ZBR_SEG3& seg, const std::shared_ptr<ZBR_LOOP>& region, std::vector<ZBR_SEG3>& inside,
               std::vector<ZBR_SEG3>* outside) {
  return ClipSegs({&seg, 1}, {&region, 1}, inside, outside);
}

int zbrClipSeg(const ZBR_SEG3& seg, const std::vector<std::shared_ptr<ZBR_LOOP>>& region, std::vector<ZBR_SEG3>& inside,
               std::vector<ZBR_SEG3>* outside) {
  return ClipSegs({&seg, 1}, region, inside, outside);
}

int zbrClipSegs(const std::vector<ZBR_SEG3>& segs, const std::shared_ptr<ZBR_LOOP>& region, std::vector<ZBR_SEG3>& inside,
                std::vector<ZBR_SEG3>* outside) {
  return ClipSegs(segs, {&region, 1}, inside, outside);
}

int zbrClipSegs(const std::vector<ZBR_SEG3>& segs, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                std::vector<ZBR_SEG3>& inside, std::vector<ZBR_SEG3>* outside) {
  return ClipSegs(segs, region, inside, outside);
}

int zbrClipPolyline(const std::vector<ZBR_PT3>& line, const std::shared_ptr<ZBR_LOOP>& region,
                    std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside) {
  zbr::RegionCutter cutter({&region, 1}, zbr::t_tolerance.eps);
  return PolylineClipper(cutter, inside, outside).Run(line);
}

int zbrClipPolyline(const std::vector<ZBR_PT3>& line, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                    std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside) {
  zbr::RegionCutter cutter(region, zbr::t_tolerance.eps);
  return PolylineClipper(cutter, inside, outside).Run(line);
}

int zbrClipPolylines(const std::vector<std::vector<ZBR_PT3>>& lines, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                     std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside,
                     std::vector<int>* inside_of, std::vector<int>* outside_of) {
  zbr::RegionCutter cutter(region, zbr::t_tolerance.eps);
  int count = 0;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    count += PolylineClipper(cutter, inside, outside).Run(lines[i]);
    if (inside_of != nullptr) inside_of->resize(inside.size(), static_cast<int>(i));
    if (outside_of != nullptr && outside != nullptr) outside_of->resize(outside->size(), static_cast<int>(i));
  }
  return count;
}
