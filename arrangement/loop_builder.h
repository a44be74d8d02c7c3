// Closing directed boundary pieces into simple loops, and these into a nested region.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <zbr/loop.h>

namespace zbr {

// A piece of a region's boundary between two vertices, the region on its left.
struct BoundaryPiece {
  std::uint32_t from;
  std::uint32_t to;
};

using Ring = std::vector<std::uint32_t>;  // vertices
inline constexpr std::uint32_t kNoNext = ~std::uint32_t{0};

// Follows the pieces into rings that pass no vertex twice. No piece may be repeated or run opposite to another. `places` are the
// vertices' points. Where several pieces leave a vertex, the one that turns most sharply to the left goes on: it bounds the same
// wedge of the region, so that rings never cross. Pieces that lead to an end without continuation are left out. next[i] becomes
// the piece that follows piece i, kNoNext for those left out. Linear but for vertices at which very many pieces meet.
std::vector<Ring> TraceRings(std::span<const BoundaryPiece> pieces, std::span<const ZBR_PT> places,
                             std::vector<std::uint32_t>& next);

// The width below which a gap or a part of a region counts as none, relative to the larger side of its box.
inline constexpr double kOutlineTolerance = 1e-9;

// How close rings may come to touch, relative to the larger side of their box: on a grid, where they share vertices or do not
// touch, just above the rounding errors that nesting allows for.
inline constexpr double kTouchOnGrid = 6e-14;

// How a loop goes along its ring.
struct LoopTrace {
  std::uint32_t ring;
  std::vector<std::uint32_t> kept;  // by point of the loop: its place in the ring
  bool runsBack;                    // against the ring
};

// The loops of rings through the given points, nested by zbrMakeLoopTree whatever their size and place. Nesting looks at `places`,
// where rings must not cross; `touch` is how close to another ring a place counts as on it (kTouchOnGrid or kOutlineTolerance).
// Points within the width of the one before, and points that lie straight between their neighbours but for rounding errors, are
// removed; rings narrower than the width are left out. `traces`, when not null, becomes those of the loops, each outer loop before
// its holes.
std::vector<std::shared_ptr<ZBR_LOOP>> NestRings(std::span<const Ring> rings, std::span<const ZBR_PT> places,
                                                 std::span<const ZBR_PT> points, double width, double touch,
                                                 std::vector<LoopTrace>* traces = nullptr);

}  // namespace zbr
