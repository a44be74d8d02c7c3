// Whether rings are simple and keep apart.
#pragma once

#include "loops/edge_index.h"

namespace zbr {

enum class Simplicity {
  kSimple,    // no two edges come near each other but neighbours on a ring, and these do not fold back
  kTouching,  // some vertices lie on other vertices or edges; there the rings touch, they do not pass through each other
  kUnclear    // some edges cross or overlap, or may within the tolerance, or more touch or come near than can be looked at
};

// Of all rings in the index, which was built with the given margin around its leaves. Near is what lies within a few of the
// thread's tolerances. n log n; mostly a look at the directions of the edges.
Simplicity SimplicityOf(const EdgeIndex& index, double margin);

}  // namespace zbr
