// Named constants of the library: what each is measured in, why it has its value, and what changing it does.
#pragma once

namespace zbr {

// Length added around boxes before edges are compared. It only rejects early, so any value above the tolerance in force is
// correct; a larger one lets more edge pairs through to the exact tests. It also decides which near misses beyond a tolerance
// larger than itself are found, so it is part of the observable behaviour.
inline constexpr double kBoxMargin = 0.001;

// Length tolerance during a Boolean. Features below its root (about 3e-5) vanish in the area test; larger values merge more.
inline constexpr double kBooleanEps = 1e-9;

// Factor on eps while rays are cast. A ray is given up when it passes a vertex closer than this, which is rare because the point
// itself is known to be farther than eps from every edge.
inline constexpr double kRayEpsScale = 1e-5;

// Length below which a vector normalises to zero instead of dividing by (almost) zero.
inline constexpr double kMinNormalizeLength = 1e-100;

}  // namespace zbr
