// Triangles cut by a plane, and the cuts chained.
//
// Idea: a triangle with vertices on both sides is cut from one of its edges to another. A cut's end is named by the edge that it is
// on, so the next cut is that of the triangle across, and nothing is found by comparing places: a closed shell has closed contours.
// Difficulty: vertices in the plane. They are counted to one side, all to the same, as if the plane were moved by less than
// anything; the cut then runs beside them and has cuts without length there, which do no harm.
#include "drawing/sections/contours.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <tuple>

namespace zbr::drawing {
namespace {

// As a part of the model's size: what rounding leaves of a height that is zero.
constexpr double kInPlane = 1e-12;
// Steps of coordinates that faces may be off the plane that they were made for.
constexpr double kSteps = 4.0;

constexpr std::uint32_t kNone = 0xffffffffU;

// An end of a cut: twice the cut's number, and 1 for where it leads to.
struct CutEnd {
  std::uint32_t edge, end;
  bool IsTo() const { return end % 2 == 1; }
};

struct Cuts {
  std::vector<std::uint32_t> triangles;
  std::vector<CutEnd> ends;  // two for each
};

Cuts CutTriangles(const ZBR_ZBREPS& shell, const std::vector<double>& heights, InPlane inPlane) {
  Cuts cuts;
  for (int t = 0; t < shell.GetTriangleCnt(); ++t) {
    const ZBR_ZBREPT& triangle = *shell.GetTriangle(t);
    std::array<bool, 3> above{};
    for (std::size_t i = 0; i < 3; ++i)
      above[i] = IsAbove(heights[static_cast<std::size_t>(VertexOf(triangle, i).GetIndex())], inPlane);
    if (above[0] == above[1] && above[1] == above[2]) continue;
    std::uint32_t from = 0, to = 0;
    for (std::size_t i = 0; i < 3; ++i) {
      if (above[i] == above[(i + 1) % 3]) continue;
      (above[i] ? from : to) = static_cast<std::uint32_t>(EdgeOf(triangle, i).GetIndex());
    }
    const auto k = static_cast<std::uint32_t>(cuts.triangles.size());
    cuts.triangles.push_back(static_cast<std::uint32_t>(t));
    cuts.ends.push_back({from, 2 * k});
    cuts.ends.push_back({to, 2 * k + 1});
  }
  return cuts;
}

// The end that each end goes on with: at an edge the one of the other triangle; at an edge of more, those that come with those
// that go as far as there are such, then what is left.
std::vector<std::uint32_t> Partners(const Cuts& cuts) {
  std::vector<CutEnd> ends = cuts.ends;
  std::sort(ends.begin(), ends.end(),
            [](const CutEnd& a, const CutEnd& b) { return std::tie(a.edge, a.end) < std::tie(b.edge, b.end); });
  std::vector<std::uint32_t> partner(ends.size(), kNone);
  const auto match = [&](const CutEnd& a, const CutEnd& b) {
    partner[a.end] = b.end;
    partner[b.end] = a.end;
  };
  for (std::size_t begin = 0, end = 0; begin < ends.size(); begin = end) {
    while (end < ends.size() && ends[end].edge == ends[begin].edge) ++end;
    std::vector<CutEnd> coming, going;
    for (std::size_t i = begin; i < end; ++i) (ends[i].IsTo() ? coming : going).push_back(ends[i]);
    const std::size_t both = std::min(coming.size(), going.size());
    for (std::size_t i = 0; i < both; ++i) match(coming[i], going[i]);
    std::vector<CutEnd>& rest = coming.size() > both ? coming : going;
    for (std::size_t i = both; i + 1 < rest.size(); i += 2) match(rest[i], rest[i + 1]);
  }
  return partner;
}

class Chainer {
 public:
  Chainer(const ZBR_ZBREPS& shell, const std::vector<double>& heights, const Cuts& cuts)
      : shell_(shell), heights_(heights), cuts_(cuts), partner_(Partners(cuts)), done_(cuts.triangles.size()) {}

  // Open ones first, from their ends that lead away; what is left closes.
  std::vector<Contour> Run() {
    for (const bool second : {false, true}) {
      for (std::uint32_t end = second ? 1 : 0; end < partner_.size(); end += 2) {
        if (partner_[end] == kNone && !done_[end / 2]) Follow(end);
      }
    }
    for (std::uint32_t end = 0; end < partner_.size(); end += 2) {
      if (!done_[end / 2]) Follow(end);
    }
    return std::move(contours_);
  }

 private:
  void Follow(std::uint32_t start) {
    Contour& contour = contours_.emplace_back();
    for (std::uint32_t end = start; end != kNone; end = partner_[end ^ 1U]) {
      if (done_[end / 2]) {
        contour.closed = true;
        return;
      }
      done_[end / 2] = true;
      contour.points.push_back(PlaceOf(end));
      contour.triangles.push_back(cuts_.triangles[end / 2]);
      last_ = end ^ 1U;
    }
    contour.points.push_back(PlaceOf(last_));
  }

  ZBR_PT3 PlaceOf(std::uint32_t end) const {
    const ZBR_ZBREPE& edge = *shell_.GetEdge(static_cast<int>(cuts_.ends[end].edge));
    const ZBR_ZBREPV &a = *edge.GetVertex0(), &b = *edge.GetVertex1();
    return CrossingOf(a.GetPt(), heights_[static_cast<std::size_t>(a.GetIndex())], b.GetPt(),
                      heights_[static_cast<std::size_t>(b.GetIndex())]);
  }

  const ZBR_ZBREPS& shell_;
  const std::vector<double>& heights_;
  const Cuts& cuts_;
  std::vector<std::uint32_t> partner_;
  std::vector<bool> done_;  // of cuts
  std::vector<Contour> contours_;
  std::uint32_t last_ = 0;
};

bool Precedes(const ZBR_PT3& a, const ZBR_PT3& b) {
  if (a.x() != b.x()) return a.x() < b.x();
  if (a.y() != b.y()) return a.y() < b.y();
  return a.z() < b.z();
}

}  // namespace

std::vector<double> HeightsOf(const Model& model, std::size_t shell, const SectionPlane& plane) {
  const ZBR_PT3 size = model.high - model.low;
  const double reach = std::max({std::abs(plane.offset), model.Diagonal(), model.low.Length(), model.high.Length(), size.Length()});
  const double tolerance = std::max(kSteps * model.rounding, kInPlane * reach);
  const ZBR_ZBREPS& records = model.Shell(shell);
  std::vector<double> heights;
  heights.reserve(static_cast<std::size_t>(records.GetVertexCnt()));
  for (int v = 0; v < records.GetVertexCnt(); ++v) {
    const double height = plane.HeightOf(records.GetVertex(v)->GetPt());
    heights.push_back(std::abs(height) > tolerance ? height : 0.0);
  }
  return heights;
}

ZBR_PT3 CrossingOf(const ZBR_PT3& a, double heightA, const ZBR_PT3& b, double heightB) {
  if (heightA == 0) return a;
  if (heightB == 0) return b;
  if (Precedes(b, a)) return CrossingOf(b, heightB, a, heightA);
  return a + (b - a) * (heightA / (heightA - heightB));
}

std::vector<Contour> CutShell(const ZBR_ZBREPS& shell, const std::vector<double>& heights, InPlane inPlane) {
  const Cuts cuts = CutTriangles(shell, heights, inPlane);
  return Chainer(shell, heights, cuts).Run();
}

}  // namespace zbr::drawing
