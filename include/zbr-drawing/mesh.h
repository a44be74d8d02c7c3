// Triangles and polygons in space, to be made a model of.
//
//   Mesh mesh;
//   mesh.points = {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}};
//   AddPolygon(mesh, {0, 1, 2, 3});
//   const Model model = MakeModel(mesh, 30.0);  // model.h
//
// Any unit of length. Nothing need be welded or oriented: MakeModel joins equal points and finds what hangs together.
#pragma once

#include <zbr/spatial.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// Three edges of each triangle can be numbered with 32 bits.
inline constexpr std::size_t kMostMeshPoints = 700'000'000;

// Where the points and the triangles of one object or body of a mesh start.
struct MeshObject {
  std::uint32_t firstPoint = 0, firstTriangle = 0;
};

// Any number of triangles may share a point, and points may be repeated; nothing is promised about how the triangles connect.
// Coordinates are finite and not above 1e75 in size.
struct Mesh {
  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> triangles;
  bool yUp = false;                 // the format says that y points up; most say nothing, and z is taken
  std::vector<MeshObject> objects;  // ascending from 0, 0; triangles use points of their own object only; none: all is one

  // Where within objects further bodies start, ascending: those that a file keeps apart. Points are joined within bodies only,
  // triangles use points of their own only, and sections tell them apart; lines, outlines and names are by object.
  std::vector<MeshObject> bodies;

  // Which shell each triangle is of, by any numbers; the same number in two objects is two shells. None: what hangs together by
  // edges is a shell. With numbers, points are joined within shells only.
  std::vector<std::uint32_t> shells;

  // The distance between neighbouring values that coordinates are rounded to, 0 where they are exact. Negative: RoundingOf tells.
  double rounding = -1.0;
};

// Whether a point is finite and small enough: products of four coordinates have to stay finite.
bool IsMeshCoordinate(const ZBR_PT3& p);

// Where objects and bodies start, ascending, each start once; at least the first of all.
std::vector<MeshObject> BodyStarts(const Mesh& mesh);

// The distance between single-precision numbers at the largest coordinate when the points were rounded to such numbers, else 0.
// They were when all coordinates are single-precision numbers and some of them need the last of the 24 digits: lengths that are
// whole, or halves, quarters and so on, do not, nor do decimal fractions that were kept in full.
double RoundingOf(const std::vector<ZBR_PT3>& points);

// Adds the polygon's triangles to the mesh; the corners are places of its points, counter-clockwise seen from outside. What is too
// crooked to be taken apart, or without area, becomes a fan; fewer than three corners add nothing. Which shell they are of is left
// to the caller. Fails for a corner that is no point of the mesh.
void AddPolygon(Mesh& mesh, const std::vector<std::uint32_t>& corners);
// The same for triangles that are put into a mesh of these points later.
void AddPolygon(const std::vector<ZBR_PT3>& points, const std::vector<std::uint32_t>& corners,
                std::vector<std::array<std::uint32_t, 3>>& triangles);

// Fails, saying which triangle or point it is, unless the mesh is as promised above. MakeModel asks for this.
void CheckMesh(const Mesh& mesh);

}  // namespace zbr::drawing
