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

#include "drawing/sections/cut_chains.h"

namespace zbr::drawing {
namespace {

// As a part of the model's size: what rounding leaves of a height that is zero.
constexpr double kInPlane = 1e-12;
// Steps of coordinates that faces may be off the plane that they were made for.
constexpr double kSteps = 4.0;

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
    cuts.Add(static_cast<std::uint32_t>(t), from, to);
  }
  return cuts;
}

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
  const auto placeOf = [&](std::uint32_t end) {
    const ZBR_ZBREPE& edge = *shell.GetEdge(static_cast<int>(cuts.names[end]));
    const ZBR_ZBREPV &a = *edge.GetVertex0(), &b = *edge.GetVertex1();
    return CrossingOf(a.GetPt(), heights[static_cast<std::size_t>(a.GetIndex())], b.GetPt(),
                      heights[static_cast<std::size_t>(b.GetIndex())]);
  };
  std::vector<Contour> contours;
  for (const CutChain& chain : ChainCuts(cuts)) {
    Contour& contour = contours.emplace_back();
    contour.closed = chain.closed;
    for (const std::uint32_t end : chain.ends) {
      contour.points.push_back(placeOf(end));
      contour.triangles.push_back(cuts.triangles[end / 2]);
      contour.along += end % 2 == 0 ? 1.0 : -1.0;
    }
    if (!chain.closed) contour.points.push_back(placeOf(chain.last));
  }
  return contours;
}

}  // namespace zbr::drawing
