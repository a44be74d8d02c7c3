// Drawings with their curves replaced by chords, so that what they do to each other stays the same.
#pragma once

#include <zbr-drawing/contours.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

// A path of straight edges.
struct ChordLine {
  std::vector<ZBR_PT> points;
  std::vector<EdgeOrigin> origins;  // by edge, the closing one last; empty where nothing has curves
  std::vector<std::size_t> edges;   // the same: the edge of the path
};

struct ChordDrawing {
  std::vector<ChordLine> lines;  // one for each path
  std::vector<Curve> curves;     // that origins refer to
};

// Of paths that may meet each other. Every place where true curves meet lines or each other is a vertex of both, and chords do not
// cross where the curves do not, down to about 1e-12 of the drawing.
ChordDrawing MakeChords(const std::vector<const Path*>& paths, double deviation);

// Contours of drawings, and chords of other paths that may meet them.
std::vector<Contours> MakeContoursAnd(const std::vector<Path>& others, std::vector<ChordLine>& chordsOfOthers,
                                      std::vector<Drawing> drawings, const FlattenOptions& options);

}  // namespace zbr::drawing
