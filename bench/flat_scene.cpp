// A scene as a programmer has it who starts from nothing.

#include "flat_scene.h"

#include <algorithm>
#include <tuple>

namespace bench {
namespace {

constexpr double kEdgeOn = 1e-9;  // twice the area, in squared scene units, below which a triangle is a line

std::tuple<double, double, double> Key(const ZBR_PT3& p) {
  return {p.x(), p.y(), p.z()};
}

// An edge of three and more triangles knows none of its neighbours: its copies are found by their ends.
void KeepOneOfEach(std::vector<FlatEdge>& edges) {
  const auto key = [](const FlatEdge& e) { return std::pair(Key(e.a), Key(e.b)); };
  for (FlatEdge& e : edges) {
    if (Key(e.b) < Key(e.a)) std::swap(e.a, e.b);
  }
  std::sort(edges.begin(), edges.end(), [&](const FlatEdge& d, const FlatEdge& e) { return key(d) < key(e); });
  edges.erase(std::unique(edges.begin(), edges.end(), [&](const FlatEdge& d, const FlatEdge& e) { return key(d) == key(e); }),
              edges.end());
}

}  // namespace

std::vector<GivenTriangle> GiveScene(const zbr::drawing::Model& model, const zbr::drawing::View& view) {
  const zbr::drawing::Scene scene = zbr::drawing::MakeScene(model, view);
  std::vector<GivenTriangle> given;
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const auto first = static_cast<int>(model.shellBegin[s]);
    for (std::size_t t = model.shellBegin[s]; t < model.shellBegin[s + 1]; ++t) {
      const ZBR_HL_TRI& triangle = scene.triangles[t];
      GivenTriangle& last = given.emplace_back();
      for (std::size_t i = 0; i < 3; ++i) {
        last.corners[i] = triangle.pt[i];
        last.neighbours[i] = triangle.adj[i] < 0 ? -1 : first + triangle.adj[i];
        last.classes[i] = scene.classes[t][i];
      }
    }
  }
  return given;
}

FlatScene MakeFlatScene(const std::vector<GivenTriangle>& given) {
  using zbr::drawing::EdgeClass;
  FlatScene flat;
  std::vector<FlatEdge> junctions;
  for (int t = 0; t < static_cast<int>(given.size()); ++t) {
    const auto& [pt, neighbours, classes] = given[static_cast<std::size_t>(t)];
    if (std::abs((pt[1] - pt[0]).OuterProductXY(pt[2] - pt[0])) > kEdgeOn) flat.triangles.push_back(pt);
    for (std::size_t i = 0; i < 3; ++i) {
      if (classes[i] == EdgeClass::kSmooth || (neighbours[i] >= 0 && neighbours[i] < t)) continue;
      const bool junction = classes[i] == EdgeClass::kJunction;
      (junction ? junctions : flat.edges).push_back({pt[i], pt[(i + 1) % 3], junction});
    }
  }
  KeepOneOfEach(junctions);
  flat.edges.insert(flat.edges.end(), junctions.begin(), junctions.end());
  return flat;
}

void AddVisible(const FlatEdge& edge, double part, std::size_t pieces, DrawnLines& lines) {
  const double length = part * edge.Length();
  lines.visible += length;
  if (edge.junction) lines.visibleJunctions += length;
  lines.pieces += pieces;
}

}  // namespace bench
