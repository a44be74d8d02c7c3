// Named constants of the library: what each is measured in, why it has its value, and what changing it does.
#pragma once

#include <cstddef>

namespace zbr {

// Length added around boxes before edges are compared. It only rejects early, so any value above the tolerance in force is
// correct; a larger one lets more edge pairs through to the exact tests. It also decides which near misses beyond a tolerance
// larger than itself are found, so it is part of the observable behaviour.
inline constexpr double kBoxMargin = 0.001;

// Length tolerance during a Boolean. Features below its root (about 3e-5) vanish in the area test; larger values merge more.
inline constexpr double kBooleanEps = 1e-9;

// Distances at which contacts of a Boolean are certain, in tolerances: up to the first a point is on an edge or a vertex, beyond
// the others it is not. What lies between is decided by the exact arrangement; a wider band sends more there, a narrower one lets
// contacts be judged differently from different edges.
inline constexpr double kSurelyOn = 0.02;
inline constexpr double kSurelyOff = 4.0;
inline constexpr double kSurelyApart = 16.0;  // two vertices

// Factor on eps while rays are cast. A ray is given up when it passes a vertex closer than this, which is rare because the point
// itself is known to be farther than eps from every edge.
inline constexpr double kRayEpsScale = 1e-5;

// Length below which a vector normalises to zero instead of dividing by (almost) zero.
inline constexpr double kMinNormalizeLength = 1e-100;

// Scalar product of a plane's unit normal and a line's direction below which the two do not meet: only exact parallels and
// underflow.
inline constexpr double kMinPlaneSlope = 1e-100;

// Length tolerance while one triangle hides edges of another, for coordinates of ordinary size (up to about 1e6). Neighbours must
// have vertices equal to within it.
inline constexpr double kOcclusionEps = 1e-7;

// Coordinates of drawings: up to this size a glance tells what an occlusion rule within kOcclusionEps will say. Larger ones all go
// through the full rule, which is slower.
inline constexpr double kLargestUsual = 1e3;

// Length tolerance while visible stretches are chained: gaps left by the rounding of many small stretches close, and a drawing in
// millimetres loses nothing that can be seen.
inline constexpr double kChainEps = 0.001;

// The chaining's tolerance where it is relative, in larger sides of the drawing: as the above at a size of 100. And the binary
// exponent of the size (64 to 128) at which such drawings are chained.
inline constexpr double kChainShare = 1e-5;
inline constexpr int kChainSize = 6;

// Coordinates beyond this make a triangle invalid: products of four of them still are finite.
inline constexpr double kLargestCoordinate = 1e75;

// Triangles up to which a quadtree node is not split.
inline constexpr std::size_t kQuadLeafSize = 200;

}  // namespace zbr
