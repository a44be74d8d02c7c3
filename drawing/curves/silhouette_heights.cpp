#include "drawing/curves/silhouette_heights.h"

#include <algorithm>

#include "drawing/parallel.h"

namespace zbr::drawing {
namespace {

// Twice the area of the triangle over the edge, over the edge's length.
double WidthOver(const ZBR_ZBREPT& triangle, std::size_t edge) {
  const ZBR_PT3 &a = VertexOf(triangle, edge).GetPt(), &b = VertexOf(triangle, (edge + 1) % 3).GetPt();
  const double length = a.Distance(b);
  return length > 0 ? (b - a).OuterProduct(VertexOf(triangle, (edge + 2) % 3).GetPt() - a).Length() / length : 0.0;
}

std::size_t PlaceOfEdge(const ZBR_ZBREPT& triangle, const ZBR_ZBREPE& edge) {
  std::size_t i = 0;
  while (i < 2 && &EdgeOf(triangle, i) != &edge) ++i;
  return i;
}

// Of arcs over facets as wide and as bent as those at a smooth edge, over the chord.
double HeightOverFacets(const Model& model, std::size_t shell, const ZBR_ZBREPT& triangle, std::size_t edge) {
  ZBR_ZBREPE& record = EdgeOf(triangle, edge);
  const ZBR_ZBREPT* const other = model.Across(shell, triangle, record);
  if (other == nullptr) return 0.0;
  const auto normal = [&](const ZBR_ZBREPT& t) {
    return model.normals[model.shellBegin[shell] + static_cast<std::size_t>(t.GetIndex())];
  };
  const double width = std::max(WidthOver(triangle, edge), WidthOver(*other, PlaceOfEdge(*other, record)));
  return width * normal(triangle).Distance(normal(*other)) / 8.0;
}

}  // namespace

// Where the scene is cut, several of its triangles are parts of one of the model.
SilhouetteHeights::SilhouetteHeights(const Model& model, const Scene& scene, unsigned threads) {
  std::vector<std::vector<Side>> inRange(RangeCount(scene.TriangleCount()));
  RunInRanges(scene.TriangleCount(), threads, [&](std::size_t range, std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      for (std::size_t i = 0; i < 3; ++i) {
        if (scene.classes[t][i] != EdgeClass::kSilhouette) continue;
        const std::size_t source = scene.parts.empty() ? t : scene.parts[t].triangle;
        const std::size_t edge = scene.parts.empty() ? i : scene.parts[t].edges[i];
        if (edge == EdgeRef::kAcross) continue;
        const std::size_t shell = model.ShellOf(static_cast<std::uint32_t>(source));
        const ZBR_ZBREPT& record = *model.Shell(shell).GetTriangle(static_cast<int>(source - model.shellBegin[shell]));
        const double height = HeightOverFacets(model, shell, record, edge);
        if (height > 0) inRange[range].push_back({static_cast<std::uint32_t>(3 * source + edge), height});
      }
    }
  });
  for (const std::vector<Side>& sides : inRange) sides_.insert(sides_.end(), sides.begin(), sides.end());
  if (!std::is_sorted(sides_.begin(), sides_.end())) std::sort(sides_.begin(), sides_.end());
}

double SilhouetteHeights::Over(std::size_t triangle, std::size_t edge) const {
  const Side wanted{static_cast<std::uint32_t>(3 * triangle + edge), 0.0};
  const auto side = std::lower_bound(sides_.begin(), sides_.end(), wanted);
  return side != sides_.end() && side->number == wanted.number ? side->height : 0.0;
}

}  // namespace zbr::drawing
