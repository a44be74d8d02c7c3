// Combining regions keeps points to the bit, so an edge of a face that is one of a contour's has its ends, and is found by them.
#include "drawing/sections/face_lines.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "drawing/sections/common_cuts.h"

namespace zbr::drawing {
namespace {

bool Precedes(const ZBR_PT& a, const ZBR_PT& b) {
  return std::tuple(a.x(), a.y()) < std::tuple(b.x(), b.y());
}

struct Interval {
  double from, to;
};

// What sorted intervals leave of [0, 1].
std::vector<Interval> GapsOf(std::vector<Interval> taken) {
  constexpr double kSliver = 1e-9;
  std::sort(taken.begin(), taken.end(), [](const Interval& a, const Interval& b) { return a.from < b.from; });
  std::vector<Interval> gaps;
  double at = 0.0;
  for (const Interval& t : taken) {
    if (t.from - at > kSliver) gaps.push_back({at, t.from});
    at = std::max(at, t.to);
  }
  if (1.0 - at > kSliver) gaps.push_back({at, 1.0});
  return gaps;
}

// The stretches of the cover's edges along which the face runs, by edge through all rings.
std::vector<std::vector<Interval>> TakenOf(const ZBR_REGION& face, const ZBR_REGION& cover) {
  std::vector<std::vector<Interval>> taken(cover.point_count());
  for (const ZBR_EDGE_SOURCE& source : face.sources()) {
    if (source.operand != 0) continue;
    const auto begin = static_cast<std::size_t>(cover.ring_offsets()[static_cast<std::size_t>(source.ring)]);
    taken[begin + static_cast<std::size_t>(source.edge)].push_back(
        {std::min(source.t0, source.t1), std::max(source.t0, source.t1)});
  }
  return taken;
}

}  // namespace

void FaceLines::Note(const SeenContour& contour) {
  for (std::size_t i = 0; i < contour.triangles.size(); ++i) {
    const ZBR_PT &a = contour.points[i], &b = contour.points[(i + 1) % contour.points.size()];
    if (contour.triangles[i] == kNoTriangle) continue;
    const auto [low, high] = Precedes(a, b) ? std::pair(a, b) : std::pair(b, a);
    crossed_.push_back({low, high, contour.shell, contour.triangles[i]});
  }
  isSorted_ = false;
}

std::uint32_t FaceLines::TriangleAt(const ZBR_PT& a, const ZBR_PT& b, std::uint32_t shell) {
  const auto place = [](const Crossed& c) { return std::tuple(c.a.x(), c.a.y(), c.b.x(), c.b.y()); };
  const auto before = [&](const Crossed& c, const Crossed& d) {
    return std::pair(place(c), c.shell) < std::pair(place(d), d.shell);
  };
  if (!isSorted_) std::stable_sort(crossed_.begin(), crossed_.end(), before);
  isSorted_ = true;
  const Crossed wanted = Precedes(a, b) ? Crossed{a, b, shell, 0} : Crossed{b, a, shell, 0};
  const auto isThere = [&](const Crossed& c) { return place(c) == place(wanted); };
  const auto found = std::lower_bound(crossed_.begin(), crossed_.end(), wanted, before);
  if (found != crossed_.end() && isThere(*found)) return found->triangle;
  return found != crossed_.begin() && isThere(*std::prev(found)) ? std::prev(found)->triangle : kNoTriangle;
}

void FaceLines::AddWall(const SeenContour& contour) {
  SectionLine line;
  line.points = contour.points;
  line.triangles = contour.triangles;
  line.shell = contour.shell;
  lines_.push_back(std::move(line));
}

void FaceLines::AddOpen(const SeenContour& contour) {
  ++open_;
  AddWall(contour);
}

void FaceLines::AddFace(const SectionFace& face, const ZBR_REGION& cover) {
  for (std::size_t r = 0; r < face.region.ring_count(); ++r) AddRing(face.region, r, face.shell);
  if (!face.region.source_offsets().empty() || face.region.empty()) AddRest(face, cover);
}

void FaceLines::AddRing(const ZBR_REGION& region, std::size_t ring, std::uint32_t shell) {
  const auto begin = static_cast<std::size_t>(region.ring_offsets()[ring]),
             end = static_cast<std::size_t>(region.ring_offsets()[ring + 1]);
  SectionLine line;
  line.shell = shell;
  line.closed = true;
  line.points.assign(region.points().begin() + static_cast<std::ptrdiff_t>(begin),
                     region.points().begin() + static_cast<std::ptrdiff_t>(end));
  line.points.push_back(line.points.front());
  for (std::size_t i = 0; i + 1 < line.points.size(); ++i)
    line.triangles.push_back(TriangleAt(line.points[i], line.points[i + 1], shell));
  lines_.push_back(std::move(line));
}

void FaceLines::AddRest(const SectionFace& face, const ZBR_REGION& cover) {
  const std::vector<std::vector<Interval>> taken = TakenOf(face.region, cover);
  SectionLine line;
  line.shell = face.shell;
  line.isCut = false;
  const auto flush = [&] {
    if (line.points.size() > 1) lines_.push_back(line);
    line.points.clear();
    line.triangles.clear();
  };
  for (std::size_t r = 0; r < cover.ring_count(); ++r) {
    const auto begin = static_cast<std::size_t>(cover.ring_offsets()[r]),
               end = static_cast<std::size_t>(cover.ring_offsets()[r + 1]);
    for (std::size_t i = begin; i < end; ++i) {
      const ZBR_PT &a = cover.points()[i], &b = cover.points()[i + 1 < end ? i + 1 : begin];
      for (const Interval& gap : GapsOf(taken[i])) {
        const ZBR_PT from = gap.from > 0 ? a + (b - a) * gap.from : a, to = gap.to < 1 ? a + (b - a) * gap.to : b;
        if (line.points.empty() || !(line.points.back() == from)) {
          flush();
          line.points.push_back(from);
        }
        line.points.push_back(to);
        line.triangles.push_back(TriangleAt(a, b, face.shell));
      }
    }
    flush();
  }
}

bool FaceLines::IsStraight(const ZBR_PT& from, const ZBR_PT& p, const ZBR_PT& to) const {
  const ZBR_PT along = to - from, off = p - from;
  const double length = along.Length(), part = off.InnerProduct(along);
  return length > 0 && part >= 0 && part <= length * length && std::abs(along.OuterProduct(off)) <= straight_ * length;
}

// From a corner on.
void FaceLines::Rotate(SectionLine& line) const {
  std::vector<ZBR_PT>& points = line.points;
  const std::size_t n = points.size() - 1;
  std::size_t corner = 0;
  while (corner < n && IsStraight(points[(corner + n - 1) % n], points[corner], points[corner + 1])) ++corner;
  if (corner == 0 || corner == n) return;
  points.pop_back();
  const auto first = static_cast<std::ptrdiff_t>(corner);
  std::rotate(points.begin(), points.begin() + first, points.end());
  std::rotate(line.triangles.begin(), line.triangles.begin() + first, line.triangles.end());
  points.push_back(points.front());
}

// Leaves out what lies straight between its neighbours.
void FaceLines::Straighten(SectionLine& line) const {
  if (line.closed) Rotate(line);
  std::vector<ZBR_PT> points = std::move(line.points);
  line.points.assign(1, points.front());
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    if (!IsStraight(line.points.back(), points[i], points[i + 1])) line.points.push_back(points[i]);
  }
  line.points.push_back(points.back());
  std::erase(line.triangles, kNoTriangle);
  line.triangles.erase(std::unique(line.triangles.begin(), line.triangles.end()), line.triangles.end());
}

std::vector<SectionLine> FaceLines::Take(std::optional<double> contact) {
  std::stable_sort(lines_.begin(), lines_.end(), [](const SectionLine& a, const SectionLine& b) { return a.shell < b.shell; });
  if (contact) LeaveOutCommonCuts(lines_, *contact);
  for (SectionLine& line : lines_) Straighten(line);
  return std::move(lines_);
}

}  // namespace zbr::drawing
