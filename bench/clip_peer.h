// What the clipping benchmarks need of a library.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "peer.h"
#include "segment_inputs.h"

namespace bench {

struct ClipResult {
  double length = 0.0;  // of the inside pieces, in the plane
  std::size_t pieces = 0;
};

// Goes through Load (outside the clock), then any number of Run (timed: keeps the pieces of the lines inside the region) and Drop
// (outside the clock: frees the pieces).
class ClipPeer {
 public:
  virtual ~ClipPeer() = default;
  virtual void Load(const ClipInput& input) = 0;
  virtual void Run() = 0;
  virtual ClipResult Describe() const = 0;
  virtual void Drop() = 0;
};

// Ours first, then the peers that were found when this was built.
const std::vector<Entry<ClipPeer>>& ClipPeers();

std::unique_ptr<ClipPeer> MakeZbrClip();
std::unique_ptr<ClipPeer> MakeGeosClip();
std::unique_ptr<ClipPeer> MakeClipperClip();

// The lines of an input in the plane, as peers take them: of a chain one.
std::vector<std::vector<ZBR_PT>> PlanarLines(const ClipInput& input);

}  // namespace bench
