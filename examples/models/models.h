// Meshes made by formulas: for examples, tests and benchmarks.
//
// Bodies are closed, oriented with the vertices counter-clockwise seen from outside, and share the points of their edges. All
// numbers come from additions, multiplications and divisions, so that they are the same to the bit on every machine.
#pragma once

#include <zbr-drawing/mesh.h>

#include <cstddef>
#include <cstdint>

namespace example {

using zbr::drawing::Mesh;

// Adds the triangles of `other`, turned by a rotation or moved as the caller did before.
void Append(Mesh& mesh, const Mesh& other);
void Move(Mesh& mesh, const ZBR_PT3& by);
// Turns by an angle, in full turns, about the axis through the origin.
void Turn(Mesh& mesh, const ZBR_PT3& axis, double turns);

Mesh Box(const ZBR_PT3& low, const ZBR_PT3& high);

// A prism over a regular polygon with `sides` corners, which is smooth around when there are many. Its axis is z.
Mesh Cylinder(int sides, double radius, double height);
// L and U as seen from above, of the given height.
Mesh LSolid(double height);
Mesh USolid(double height);

// About `triangles` of them; radii 1 and 0.4, axis z.
Mesh Torus(std::size_t triangles);
// A helical gear with a hub hole; radius about 1, axis z. One shell.
Mesh Gear(std::size_t triangles);

// n x n boxes of various sizes on a plate. On a lattice, they are all of the same width and of heights that are multiples of a
// quarter, so that very many lines coincide in projection.
Mesh BoxesOnPlate(int n, bool lattice = false, std::uint64_t seed = 1);
// k x k x k gears of about `triangles` triangles in random poses, apart from each other.
Mesh Gears(int k, std::size_t triangles = 2300, std::uint64_t seed = 1);

// The models shipped with the examples: a bearing housing, in millimetres; a house of several bodies, in metres; a cover with
// fillets, a boss on it and a pipe through that; a cone through a sphere; boxes and pegs that stand on a plate, in millimetres.
Mesh Housing();
Mesh House();
Mesh Cover();
Mesh ConeThroughSphere();
Mesh Assembly();

}  // namespace example
