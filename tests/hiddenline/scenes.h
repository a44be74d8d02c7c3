// Seeded scenes for hidden-line removal: bodies of several families seen from many sides. The same seed gives the same scene.
#pragma once

#include <zbr-drawing/view.h>
#include <zbr/hidden_line.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "models/models.h"
#include "support/random_shapes.h"

using zbr::drawing::Mesh;
using zbr::drawing::View;

// Triangles ready for the library, an array per shell. Copying a vector of triangles would empty it, so this type moves only.
struct Drawing {
  std::vector<std::vector<ZBR_HL_TRI>> bodies;

  Drawing() = default;
  Drawing(const Drawing&) = delete;
  Drawing(Drawing&&) = default;
  Drawing& operator=(const Drawing&) = delete;
  Drawing& operator=(Drawing&&) = default;

  // Shells over the bodies, not processed.
  std::vector<ZBR_HL_SHELL> Shells();
};

// One body of triangles given by their corners, all edges drawn.
using Corners = std::array<ZBR_PT3, 3>;
Drawing DrawTriangles(const std::vector<Corners>& triangles);
// Each body by itself (no points or edges shared between bodies), 16 units of the drawing to the unit of the mesh.
Drawing Draw(const std::vector<Mesh>& bodies, const View& view);
// Every point becomes p with its coordinates multiplied. A negative factor mirrors.
void Scale(Drawing& drawing, const ZBR_PT3& factors);
// The same drawing written another way: shells and triangles shuffled, vertices started elsewhere, other numbers, adj_edge known or
// not.
void Disguise(Drawing& drawing, Random& random);
// No triangle knows its neighbours any more.
void ForgetNeighbours(Drawing& drawing);

Mesh Moved(Mesh mesh, const ZBR_PT3& by);
// Along an axis, slanting, or along walls that stand at an angle, where rounding errors show.
View RandomView(Random& random);

// Prepares a shell's triangles, all edges whole.
void Classify(ZBR_HL_SHELL& shell);
// Hides every shell by itself and by every other as the driver does, but told triangle by triangle.
void WalkTrees(std::vector<ZBR_HL_SHELL>& shells);
// The projected triangles, counter-clockwise; without those that are not finite.
std::vector<Ring> FacesOf(const std::vector<ZBR_HL_SHELL>& shells);
// The visible intervals of all edges, to the last bit.
std::string StateText(const std::vector<ZBR_HL_SHELL>& shells);

// A way to draw bodies.
struct SceneFamily {
  const char* name;
  std::vector<Mesh> (*bodies)(Random&);
};
inline void PrintTo(const SceneFamily& family, std::ostream* out) {
  *out << family.name;
}

// boxes    up to six on a lattice: apart, touching, stacked, through each other, with shared faces
// poses    boxes, L and U solids and prisms turned at random, through each other
// prisms   upright ones of 3 to 24 sides
// plates   boxes on a plate
// lattices the same with many coincident projections
// round    a torus or a gear
// sheets   open sheets, flat or bumpy, facing either way, over and through each other
// stacks   dozens of thin plates behind one another, a shell each or a comb
// soups    triangles at random, or between lattice points so that they share vertices and edges
const std::vector<SceneFamily>& SceneFamilies();

// One scene of a family, disguised; some without neighbours, some with needles, some with other edges drawn, some a
// thousand times larger.
Drawing DrawHard(const SceneFamily& family, std::uint64_t seed);
