// A scene as a programmer has it who starts from nothing: triangles as corners, and the edges to be drawn, each once.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "hidden_remover.h"

namespace bench {

struct FlatEdge {
  ZBR_PT3 a, b;
  bool junction = false;  // of three and more triangles

  ZBR_PT3 At(double t) const { return a + (b - a) * t; }
  double Length() const { return a.DistanceXY(b); }
};

struct FlatScene {
  std::vector<std::array<ZBR_PT3, 3>> triangles;
  std::vector<FlatEdge> edges;
};

// What a remover is given: for each triangle its corners, the triangles across its edges (-1: none), and which edges are drawn.
struct GivenTriangle {
  std::array<ZBR_PT3, 3> corners;
  std::array<int, 3> neighbours;
  std::array<zbr::drawing::EdgeClass, 3> classes;
};
std::vector<GivenTriangle> GiveScene(const zbr::drawing::Model& model, const zbr::drawing::View& view);

// Leaves out triangles that are seen exactly edge-on, or so nearly that nothing can be told from their corners: they hide nothing.
// Part of a removal and timed with it, as ours has to find all that out, too.
FlatScene MakeFlatScene(const std::vector<GivenTriangle>& given);

// Points so little above an edge are on it, in scene units: what makes its triangles, whose rounding is a hundredth of that, not
// hide it.
inline constexpr double kRise = 1e-6;

// Adds to the lines the stretches of an edge that are seen, given as a part of its length.
void AddVisible(const FlatEdge& edge, double part, std::size_t pieces, DrawnLines& lines);

}  // namespace bench
