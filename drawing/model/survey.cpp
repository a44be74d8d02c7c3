// Counts edges by what meets there, and the fans of triangles around points.
//
// Triangles around a point that follow each other across edges form a fan. A point in the middle of a surface has one; each further
// one is a touch. Handles are counted with such points taken apart, as a surface that touches itself has no more handles for it.
#include <zbr-drawing/survey.h>

#include <algorithm>
#include <cstdint>

#include "drawing/model/disjoint_sets.h"

namespace zbr::drawing {
namespace {

// How many more fans than points there are. Junctions part fans for a reason of their own: their points are left out.
std::size_t CountPinches(const Model& model, std::size_t s) {
  const ZBR_ZBREPS& shell = model.Shell(s);
  DisjointSets fans(3 * static_cast<std::size_t>(shell.GetTriangleCnt()));
  std::vector<std::size_t> touches(static_cast<std::size_t>(shell.GetVertexCnt()));  // fans of a point
  std::vector<bool> isAtJunction(touches.size());
  const auto cornerAt = [](const ZBR_ZBREPT& t, int vertex) {
    std::size_t i = 0;
    while (VertexOf(t, i).GetIndex() != vertex) ++i;
    return static_cast<std::uint32_t>(3 * static_cast<std::size_t>(t.GetIndex()) + i);
  };
  for (int k = 0; k < shell.GetTriangleCnt(); ++k) {
    for (std::size_t i = 0; i < 3; ++i) ++touches[static_cast<std::size_t>(VertexOf(*shell.GetTriangle(k), i).GetIndex())];
  }
  for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
    const ZBR_ZBREPE& edge = *shell.GetEdge(e);
    const bool isJunction = model.Note(s, edge).isJunction;
    for (const int vertex : {edge.GetV0(), edge.GetV1()}) {
      const auto v = static_cast<std::size_t>(vertex);
      if (isJunction) {
        isAtJunction[v] = true;
      } else if (edge.GetTriangle1() != nullptr) {
        if (fans.Unite(cornerAt(*edge.GetTriangle0(), vertex), cornerAt(*edge.GetTriangle1(), vertex))) --touches[v];
      }
    }
  }
  std::size_t count = 0;
  for (std::size_t v = 0; v < touches.size(); ++v) count += isAtJunction[v] ? 0 : touches[v] - 1;
  return count;
}

ShellSurvey SurveyShell(const Model& model, std::size_t s) {
  const ZBR_ZBREPS& shell = model.Shell(s);
  ShellSurvey survey;
  survey.triangles = static_cast<std::size_t>(shell.GetTriangleCnt());
  survey.isClosed = true;
  for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
    const ZBR_ZBREPE& edge = *shell.GetEdge(e);
    const EdgeNote note = model.Note(s, edge);
    const bool isBorder = !note.isJunction && edge.GetTriangle1() == nullptr;
    if (isBorder || note.isJunction) {
      survey.isClosed = false;
      if (isBorder) ++survey.borders;
    } else if (note.isSameWay) {
      ++survey.turned;
    }
  }
  survey.isInward = model.facing[s] == Facing::kInward;
  survey.pinches = CountPinches(model, s);
  survey.euler = shell.GetVertexCnt() - shell.GetEdgeCnt() + shell.GetTriangleCnt();
  if (survey.isClosed && survey.turned == 0) survey.genus = (2 - survey.euler - static_cast<long>(survey.pinches)) / 2;
  return survey;
}

}  // namespace

bool HasRoughCreases(const Model& model) {
  return model.isRough;
}

Survey MakeSurvey(const Model& model) {
  Survey survey;
  survey.junctions = model.junctions;
  survey.flat = model.collapsed + model.flat;
  survey.repeated = model.repeated;
  survey.shells.reserve(model.ShellCount());
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const ShellSurvey& shell = survey.shells.emplace_back(SurveyShell(model, s));
    survey.borders += shell.borders;
    survey.turned += shell.turned;
    survey.pinches += shell.pinches;
    if (shell.isInward) ++survey.inward;
  }
  return survey;
}

}  // namespace zbr::drawing
