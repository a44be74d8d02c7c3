// The arrangement knows which sides of triangles became each of its pieces, and a loop goes from piece to piece. Between two points
// of a loop there may be several, where a vertex was left out that lies straight between its neighbours: what the same side gave of
// these is one piece again.
#include "outline/outline_sources.h"

#include <algorithm>

#include "core/assert.h"
#include "core/planar_inline.h"

namespace zbr {
namespace {

class SourceFinder {
 public:
  SourceFinder(const ZBR_HL_SHELL* shells, const BareEdges& bare, const Arrangement& arrangement)
      : shells_(shells),
        bare_(bare),
        arrangement_(arrangement),
        along_(EdgesAlong(arrangement, bare.edges.size())),
        corners_(arrangement.points().size()) {
    out_.offsets.push_back(0);
    for (std::size_t s = 0; s < bare_.sides.size(); ++s) NoteCorners(s);
  }

  void AddLoop(const Ring& ring, const LoopTrace& trace) {
    const std::size_t n = ring.size();
    for (std::size_t k = 0; k < trace.kept.size(); ++k) {
      const std::size_t end = trace.kept[k + 1 < trace.kept.size() ? k + 1 : 0];
      std::size_t i = trace.kept[k];
      out_.corners.push_back(corners_[ring[i]]);
      open_.clear();
      do {
        const std::size_t next = trace.runsBack ? (i + n - 1) % n : (i + 1) % n;
        AddStretch(ring[i], ring[next]);
        i = next;
      } while (i != end);
      out_.offsets.push_back(out_.pieces.size());
    }
  }

  ZBR_HL_OUTLINE_SOURCES Take() { return std::move(out_); }

 private:
  // A piece that goes on in the last stretch, and its side.
  struct Open {
    std::uint32_t side;
    std::size_t piece;
  };

  // The side as the triangle has it, whichever way its projection runs round.
  DirectedEdge EdgeOf(std::size_t side) const {
    const TriangleSide& s = bare_.sides[side];
    const ZBR_HL_TRI& t = shells_[s.shell].tris[s.triangle];
    return {t.pt[s.edge].xy(), t.pt[(s.edge + 1) % 3].xy()};
  }
  bool RunsBack(std::size_t side) const { return !AreIdentical(EdgeOf(side).from, bare_.edges[side].from); }
  // The same of its ends.
  Arrangement::Ends EndsOf(std::size_t side) const {
    const Arrangement::Ends ends = arrangement_.EndsOf(side);
    return RunsBack(side) ? Arrangement::Ends{ends.to, ends.from} : ends;
  }

  ZBR_HL_SOURCE SourceOf(std::size_t side, std::uint32_t edge) const {
    const TriangleSide& s = bare_.sides[side];
    return {static_cast<int>(s.shell), static_cast<int>(s.triangle), static_cast<int>(edge)};
  }

  void NoteCorners(std::size_t side) {
    const std::uint32_t edge = bare_.sides[side].edge;
    const DirectedEdge line = EdgeOf(side);
    const Arrangement::Ends ends = EndsOf(side);
    const auto note = [&](std::uint32_t vertex, const ZBR_PT& p, std::uint32_t corner) {
      const bool isIt = AreIdentical(arrangement_.points()[vertex], p);
      if (isIt && corners_[vertex].triangle < 0) corners_[vertex] = SourceOf(side, corner);
    };
    note(ends.from, line.from, edge);
    note(ends.to, line.to, (edge + 1) % 3);
  }

  double ParameterOf(std::size_t side, std::uint32_t vertex) const {
    const Arrangement::Ends ends = EndsOf(side);
    if (vertex == ends.from) return 0.0;
    if (vertex == ends.to) return 1.0;
    const DirectedEdge line = EdgeOf(side);
    return std::clamp(ParamOnLine(arrangement_.points()[vertex], line.from, line.to), 0.0, 1.0) + 0.0;  // no minus zero
  }

  // The sides along one piece of the arrangement.
  void AddStretch(std::uint32_t from, std::uint32_t to) {
    const std::uint32_t piece = arrangement_.PieceBetween(from, to);
    ZBR_ASSERT(piece != Arrangement::kNoPiece);
    std::vector<Open> open;
    for (const std::uint32_t side : along_[piece]) {
      const auto before = std::lower_bound(open_.begin(), open_.end(), side, [](const Open& o, auto s) { return o.side < s; });
      const double t1 = ParameterOf(side, to);
      if (before != open_.end() && before->side == side) {
        out_.pieces[before->piece].t1 = t1;
        open.push_back(*before);
        continue;
      }
      open.push_back({side, out_.pieces.size()});
      out_.pieces.push_back({SourceOf(side, bare_.sides[side].edge), ParameterOf(side, from), t1});
    }
    open_.swap(open);
  }

  const ZBR_HL_SHELL* shells_;
  const BareEdges& bare_;
  const Arrangement& arrangement_;
  NumberLists along_;
  std::vector<ZBR_HL_SOURCE> corners_;  // by vertex
  std::vector<Open> open_;              // by ascending side
  ZBR_HL_OUTLINE_SOURCES out_;
};

}  // namespace

ZBR_HL_OUTLINE_SOURCES FindSources(const ZBR_HL_SHELL* shells, const BareEdges& bare, const Arrangement& arrangement,
                                   const TracedLoops& loops) {
  SourceFinder finder(shells, bare, arrangement);
  for (const LoopTrace& trace : loops.traces) finder.AddLoop(loops.rings[trace.ring], trace);
  return finder.Take();
}

}  // namespace zbr
