// What the outline benchmarks need of a peer: the union of triangles.
#pragma once

#include <memory>
#include <vector>

#include "peer.h"
#include "workloads.h"

namespace bench {

// Goes once through Load (outside the clock: brings the triangles into the library's own form) and Describe, and any number of
// times through Run (timed).
class OutlinePeer {
 public:
  virtual ~OutlinePeer() = default;
  // Triangles in the plane, counter-clockwise.
  virtual void Load(const std::vector<Ring>& triangles) = 0;
  virtual void Run() = 0;
  virtual Summary Describe() const = 0;
};

// Those that were found when this was built.
const std::vector<Entry<OutlinePeer>>& OutlinePeers();

std::unique_ptr<OutlinePeer> MakeGeosOutline();
std::unique_ptr<OutlinePeer> MakeClipperOutline();
std::unique_ptr<OutlinePeer> MakeCgalOutline();

}  // namespace bench
