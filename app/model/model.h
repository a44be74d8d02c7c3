// A mesh prepared for drawing: what depends on the mesh alone and serves all its views.
//
// Repeated points are made one, triangles get their neighbours and are sorted into shells, and each edge gets the class that it
// has from every side. The cost is linear but for the sorting of edges at a point.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "model/mesh.h"

namespace tool {

// Why an edge is drawn, or that it is not. The first reason that applies counts, in the order junction, border, crease,
// silhouette.
enum class EdgeClass : std::uint8_t {
  kSmooth,      // not drawn
  kBorder,      // edge of one triangle
  kCrease,      // the surface bends here by more than the given angle
  kJunction,    // edge of three and more triangles
  kSilhouette,  // smooth, but seen from here the surface turns away; in scenes only
};

// How the triangles of a shell are oriented.
enum class Facing : std::uint8_t {
  kOutward,  // closed, with the vertices counter-clockwise seen from outside
  kInward,   // closed, the other way round
  kUnknown,  // with a border, or not oriented alike: no side is the outer one
};

// Edge i of a triangle runs from its vertex i to its vertex (i + 1) % 3. All lists but points and shells are parallel to triangles.
struct Model {
  std::vector<ZBR_PT3> points;  // some may be unused
  std::vector<std::array<std::uint32_t, 3>> triangles;

  // Triangle across edge i and which of its edges it is; -1 at borders and junctions.
  std::vector<std::array<std::int32_t, 3>> adjacent;
  std::vector<std::array<std::int8_t, 3>> adjacentEdge;
  std::vector<std::array<EdgeClass, 3>> classes;

  std::vector<ZBR_PT3> normals;       // of length 1, or 0; of a triangle without area, that of the neighbour at its longest edge
  std::vector<std::uint32_t> source;  // place in the mesh

  // Shells are what hangs together by adjacency, in the order of their first triangles in the mesh; so are the triangles of a
  // shell. Triangles of shell s: shellBegin[s] up to shellBegin[s + 1].
  std::vector<std::uint32_t> shellBegin{0};
  std::vector<Facing> facing;

  ZBR_PT3 low, high;  // box of the triangles

  // Triangles of the mesh that were left out: with two vertices at the same place; repeating another one.
  std::size_t collapsed = 0;
  std::size_t repeated = 0;
  // Edges of junctions, counted for all their triangles but one.
  std::size_t junctionCopies = 0;

  std::size_t ShellCount() const { return facing.size(); }
  ZBR_PT3 Centre() const { return (low + high) * 0.5; }
  double Diagonal() const { return low.Distance(high); }
  // Whether the two triangles at this edge, which is none of a border or a junction, run along it the same way: then one of them
  // shows its other side.
  bool SameWay(std::size_t triangle, int edge) const;
};

// An edge is a crease when the angle between the normals exceeds creaseDegrees by more than rounding explains. Points closer than
// weld times the diagonal become one, where 0 joins equal ones only.
Model MakeModel(const Mesh& mesh, double creaseDegrees, double weld = 0.0);

}  // namespace tool
