// The outline of an object: the boundary of the union of its projected triangles.
//
// Idea: let every projected triangle run counter-clockwise. The sum of their boundaries winds around each place once for each
// triangle that covers it, and two triangles on opposite sides of a common edge cancel there. So only the edges that do not
// cancel (silhouettes, borders, neighbours of vertical triangles) are needed to know everywhere how many triangles there are:
// arranged in the plane (Arrangement), they divide it into parts with one number each (BoundarySides), and the outline runs where a
// positive number meets 0. As boundary of a set of parts it closes by itself, whatever rounding did to the arrangement
// before (TraceRings, NestRings). Its size is that of the silhouettes, not of the mesh.
#include <memory>
#include <vector>

#include <zbr/hidden_line.h>
#include <zbr/loop.h>

#include "arrangement/arrangement.h"
#include "arrangement/loop_builder.h"
#include "arrangement/winding_sweep.h"
#include "outline/bare_edges.h"
#include "outline/outline_sources.h"

namespace {

using Loops = std::vector<std::shared_ptr<ZBR_LOOP>>;

void Classify(ZBR_HL_SHELL* shells, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (shells[i].done || shells[i].prepared) continue;
    const bool wasValid = shells[i].maxmin_valid;
    shells[i].GetMaxMin();
    shells[i].CheckTriangle();
    shells[i].maxmin_valid = wasValid;  // the caller may still move the triangles before they are processed
  }
}

// Whether a side lies on the outline: not (0), in part (1), wholly (2).
int ProfileOf(std::size_t side, const zbr::Arrangement& arrangement, const std::vector<std::int8_t>& boundary) {
  bool some = false;
  bool all = true;
  arrangement.PiecesOf(side, [&](std::uint32_t piece) {
    const bool on = piece != zbr::Arrangement::kNoPiece && boundary[piece] != 0;
    some |= on;
    all &= on;
  });
  return !some ? 0 : all ? 2 : 1;
}

void SetProfiles(ZBR_HL_SHELL* shells, const zbr::BareEdges& bare, const zbr::Arrangement& arrangement,
                 const std::vector<std::int8_t>& boundary) {
  for (std::size_t i = 0; i < bare.sides.size(); ++i) {
    const zbr::TriangleSide& side = bare.sides[i];
    shells[side.shell].tris[side.triangle].profile[side.edge] = ProfileOf(i, arrangement, boundary);
  }
}

// With their rings and traces when `traced` is not null.
Loops LoopsAround(const zbr::Arrangement& arrangement, const std::vector<std::int8_t>& boundary, zbr::TracedLoops* traced) {
  std::vector<zbr::BoundaryPiece> pieces;
  for (std::size_t i = 0; i < boundary.size(); ++i) {
    const zbr::Arrangement::Piece& p = arrangement.pieces()[i];
    if (boundary[i] > 0) pieces.push_back({p.from, p.to});
    if (boundary[i] < 0) pieces.push_back({p.to, p.from});
  }
  // Turns and nesting are judged on the grid, where nothing crosses.
  std::vector<ZBR_PT> places;
  places.reserve(arrangement.nodes().size());
  for (const zbr::GridPoint& node : arrangement.nodes()) places.push_back(node.Point());
  std::vector<std::uint32_t> next;
  std::vector<zbr::Ring> rings = zbr::TraceRings(pieces, places, next);
  std::vector<zbr::LoopTrace>* traces = traced != nullptr ? &traced->traces : nullptr;
  Loops loops = zbr::NestRings(rings, places, arrangement.points(), arrangement.step(), zbr::kTouchOnGrid, traces);
  if (traced != nullptr) traced->rings = std::move(rings);
  return loops;
}

void FindOutline(ZBR_HL_SHELL* shells, unsigned count, ZBR_HL_OUTLINE_SOURCES* sources) {
  Classify(shells, count);
  const zbr::BareEdges bare = zbr::CollectBareEdges(shells, count);
  const zbr::Arrangement arrangement{zbr::EdgePoints(bare.edges)};
  const std::vector<std::int8_t> boundary = zbr::BoundarySides(arrangement);
  SetProfiles(shells, bare, arrangement, boundary);
  zbr::TracedLoops traced;
  Loops all = LoopsAround(arrangement, boundary, sources != nullptr ? &traced : nullptr);
  if (sources != nullptr) *sources = zbr::FindSources(shells, bare, arrangement, traced);
  Loops copy;
  ZBR_LOOP::DeepCopyLoops(copy, all);
  shells[0].outline_all.swap(all);
  shells[0].outline.swap(copy);
}

}  // namespace

void ZBR_HiddenLine::OutLineObj(ZBR_HL_SHELL* shells, unsigned count) {
  if (count != 0) FindOutline(shells, count, nullptr);
}

void ZBR_HiddenLine::OutLineObj(ZBR_HL_SHELL* shells, unsigned count, ZBR_HL_OUTLINE_SOURCES& sources) {
  sources = {{}, {0}, {}};
  if (count != 0) FindOutline(shells, count, &sources);
}
