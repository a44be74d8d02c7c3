// The cells of line work: the bounded faces into which lines cut the plane.
//
// Idea: arrange the lines; around every vertex the piece that comes next in clockwise order goes on along the same face, so walking
// gives the border of every face, once for each connected part of it. A piece with the same walk on both sides encloses nothing: it
// is a dead end or a bridge between two things that do, and is left out; then nothing dangles any more, and the walks are made
// anew. Where a walk comes back to a vertex, what it did since is a ring and is taken off. Rings that run clockwise are holes,
// either of the ring of the same walk, or, being the outline of a part by itself, of the face below their leftmost vertex.
// Independent of the order of the lines: their edges are sorted before they are arranged.
#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

#include <zbr/region.h>

#include "arrangement/overlay.h"
#include "arrangement/strands_along.h"
#include "boolean/region_input.h"
#include "core/rings.h"

namespace zbr {
namespace {

constexpr std::uint32_t kNone = ~std::uint32_t{0};

// An edge of a line, from left to right.
struct LineEdge {
  DirectedEdge along;
  std::uint32_t number;  // counted through the points of all lines

  auto Key() const { return std::tuple(along.from.x(), along.from.y(), along.to.x(), along.to.y(), number); }
};

std::vector<LineEdge> EdgesOf(std::span<const RingSpan> lines) {
  std::vector<LineEdge> edges;
  std::uint32_t number = 0;
  for (const RingSpan& line : lines) {
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
      LineEdge edge{{line[i], line[i + 1]}, number + static_cast<std::uint32_t>(i)};
      const ZBR_PT d = line[i + 1] - line[i];
      if (d.x() < 0.0 || (d.x() == 0.0 && d.y() < 0.0)) std::swap(edge.along.from, edge.along.to);
      edges.push_back(edge);
    }
    number += static_cast<std::uint32_t>(line.size());
  }
  std::sort(edges.begin(), edges.end(), [](const LineEdge& a, const LineEdge& b) { return a.Key() < b.Key(); });
  return edges;
}

// Pieces of an arrangement, each with a side for either direction: 2 p runs along piece p from its `from`, 2 p + 1 back, the face
// in question on the left.
class FaceTracer {
 public:
  using Rings = std::vector<std::vector<std::uint32_t>>;  // of sides, in walking order

  FaceTracer(const Arrangement& arrangement, const SweptPieces& swept)
      : nodes_(arrangement.nodes()), pieces_(arrangement.pieces()), swept_(swept), kept_(pieces_.size(), true) {
    Walk();
    for (std::size_t p = 0; p < pieces_.size(); ++p) kept_[p] = walkOf_[2 * p] != walkOf_[2 * p + 1];
    Walk();
    TakeRings();
    FindParents();
  }

  const Rings& rings() const { return rings_; }
  // Of a ring: itself for the outer ring of a cell, that of its cell for a hole, kNone for the outline of all.
  std::uint32_t OuterOf(std::uint32_t ring) const { return outer_[ring]; }
  std::uint32_t Start(std::uint32_t side) const { return side % 2 == 0 ? pieces_[side / 2].from : pieces_[side / 2].to; }
  // Whether no more than two pieces meet at a vertex.
  bool IsPlain(std::uint32_t vertex) const { return begin_[vertex + 1] - begin_[vertex] == 2; }

 private:
  std::uint32_t End(std::uint32_t side) const { return Start(side ^ 1U); }

  void Link();
  void Walk();
  void TakeRings();
  void FindParents();
  std::uint32_t ParentOf(std::uint32_t ring, const std::vector<std::uint32_t>& outerOfWalk) const;
  bool IsHole(std::uint32_t ring) const;
  std::size_t LeftmostOf(std::uint32_t ring) const;

  std::span<const GridPoint> nodes_;
  std::span<const ArrangedPiece> pieces_;
  const SweptPieces& swept_;
  std::vector<bool> kept_;            // by piece
  std::vector<std::uint32_t> begin_;  // by vertex, in leaving_
  std::vector<std::uint32_t> leaving_;
  std::vector<std::uint32_t> next_;    // by side
  std::vector<std::uint32_t> walkOf_;  // by side
  std::uint32_t walks_ = 0;
  Rings rings_;
  std::vector<std::uint32_t> ringOf_;  // by side
  std::vector<std::uint32_t> outer_;   // by ring
};

// Sorts the sides that leave each vertex counter-clockwise and finds what follows each side.
void FaceTracer::Link() {
  begin_.assign(nodes_.size() + 1, 0);
  const auto sides = static_cast<std::uint32_t>(2 * pieces_.size());
  for (std::uint32_t s = 0; s < sides; ++s) begin_[Start(s) + 1] += kept_[s / 2] ? 1 : 0;
  for (std::size_t v = 1; v < begin_.size(); ++v) begin_[v] += begin_[v - 1];
  leaving_.resize(begin_.back());
  std::vector<std::uint32_t> place(begin_.begin(), begin_.end() - 1);
  for (std::uint32_t s = 0; s < sides; ++s) {
    if (kept_[s / 2]) leaving_[place[Start(s)]++] = s;
  }
  next_.assign(sides, kNone);
  for (std::uint32_t v = 0; v + 1 < begin_.size(); ++v) {
    const std::span<std::uint32_t> around = std::span(leaving_).subspan(begin_[v], begin_[v + 1] - begin_[v]);
    const GridPoint p = nodes_[v];
    std::sort(around.begin(), around.end(), [&](std::uint32_t a, std::uint32_t b) {
      const bool rightA = IsBefore(p, nodes_[End(a)]), rightB = IsBefore(p, nodes_[End(b)]);
      return rightA != rightB ? rightA : SideSign(p, nodes_[End(a)], nodes_[End(b)]) > 0;
    });
    for (std::size_t i = 0; i < around.size(); ++i) next_[around[i] ^ 1U] = around[i == 0 ? around.size() - 1 : i - 1];
  }
}

void FaceTracer::Walk() {
  Link();
  walkOf_.assign(next_.size(), kNone);
  walks_ = 0;
  for (std::uint32_t start = 0; start < next_.size(); ++start) {
    if (next_[start] == kNone || walkOf_[start] != kNone) continue;
    for (std::uint32_t s = start; walkOf_[s] == kNone; s = next_[s]) walkOf_[s] = walks_;
    ++walks_;
  }
}

void FaceTracer::TakeRings() {
  std::vector<std::uint32_t> place(nodes_.size(), kNone), walk;  // where in the walk a vertex was passed
  std::vector<bool> isWalked(walks_, false);
  ringOf_.assign(next_.size(), kNone);
  const auto take = [&](std::size_t first) {
    for (std::size_t i = first; i < walk.size(); ++i) {
      place[Start(walk[i])] = kNone;
      ringOf_[walk[i]] = static_cast<std::uint32_t>(rings_.size());
    }
    rings_.emplace_back(walk.begin() + static_cast<std::ptrdiff_t>(first), walk.end());
    walk.resize(first);
  };
  for (std::uint32_t start = 0; start < next_.size(); ++start) {
    if (next_[start] == kNone || isWalked[walkOf_[start]]) continue;
    isWalked[walkOf_[start]] = true;
    std::uint32_t s = start;
    do {
      std::uint32_t& at = place[Start(s)];
      if (at != kNone) take(at);
      at = static_cast<std::uint32_t>(walk.size());
      walk.push_back(s);
      s = next_[s];
    } while (s != start);
    take(0);
  }
}

std::size_t FaceTracer::LeftmostOf(std::uint32_t ring) const {
  const auto& sides = rings_[ring];
  const auto isLess = [&](std::uint32_t a, std::uint32_t b) { return Start(a) < Start(b); };
  return static_cast<std::size_t>(std::min_element(sides.begin(), sides.end(), isLess) - sides.begin());
}

bool FaceTracer::IsHole(std::uint32_t ring) const {
  const auto& sides = rings_[ring];
  const std::size_t first = LeftmostOf(ring);
  const std::uint32_t arriving = sides[first == 0 ? sides.size() - 1 : first - 1];
  return SideSign(nodes_[Start(sides[first])], nodes_[End(sides[first])], nodes_[Start(arriving)]) < 0;
}

// The ring of the same face that tells its cell: the outer ring of the same walk, or one of the walk below the leftmost vertex.
std::uint32_t FaceTracer::ParentOf(std::uint32_t ring, const std::vector<std::uint32_t>& outerOfWalk) const {
  const auto& sides = rings_[ring];
  if (const std::uint32_t outer = outerOfWalk[walkOf_[sides[0]]]; outer != kNone) return outer;
  const std::size_t first = LeftmostOf(ring);
  std::uint32_t piece = sides[first == 0 ? sides.size() - 1 : first - 1] / 2;
  do {
    piece = swept_.under[piece];
  } while (piece != kNoPieceBelow && !kept_[piece]);
  return piece == kNoPieceBelow ? kNone : ringOf_[std::size_t{2} * piece];
}

void FaceTracer::FindParents() {
  constexpr std::uint32_t kUnknown = kNone - 1;
  outer_.assign(rings_.size(), kUnknown);
  std::vector<std::uint32_t> outerOfWalk(walks_, kNone);
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    if (!IsHole(r)) outer_[r] = outerOfWalk[walkOf_[rings_[r][0]]] = r;
  }
  std::vector<std::uint32_t> waiting;
  for (std::uint32_t r = 0; r < rings_.size(); ++r) {
    std::uint32_t at = r;
    while (at != kNone && outer_[at] == kUnknown) {
      waiting.push_back(at);
      at = ParentOf(at, outerOfWalk);
    }
    for (const std::uint32_t hole : waiting) outer_[hole] = at == kNone ? kNone : outer_[at];
    waiting.clear();
  }
}

// The cells as a region.
class CellRegion {
 public:
  CellRegion(const RegionInput& input, double tolerance, bool withSources)
      : edges_(EdgesOf(input.rings())),
        width_(tolerance),
        withSources_(withSources),
        arrangement_(Directed(edges_), Resolution::Fine(BoxOfRings(input.rings()), tolerance), edges_.size(),
                     Arrangement::Care::kThorough, Arrangement::Sense::kNone),
        points_(InputPoints(input)),
        along_(arrangement_),
        edgesOf_(arrangement_, edges_.size()) {}

  FlatRegion Run() {
    const SweptPieces swept = SweepWindings(arrangement_, Arrangement::Care::kThorough);
    const FaceTracer tracer(arrangement_, swept);
    const auto count = static_cast<std::uint32_t>(tracer.rings().size());
    std::vector<std::vector<std::uint32_t>> holes(count);
    for (std::uint32_t r = 0; r < count; ++r) {
      if (const std::uint32_t outer = tracer.OuterOf(r); outer != kNone && outer != r) holes[outer].push_back(r);
    }
    for (std::uint32_t r = 0; r < count; ++r) {
      if (tracer.OuterOf(r) != r || !AddRing(tracer, r)) continue;
      for (const std::uint32_t hole : holes[r]) AddRing(tracer, hole);
      region_.polygonEnds.push_back(static_cast<std::uint32_t>(region_.ringEnds.size()));
    }
    return std::move(region_);
  }

 private:
  static EdgePoints Directed(const std::vector<LineEdge>& edges) {
    std::vector<DirectedEdge> directed;
    for (const LineEdge& edge : edges) directed.push_back(edge.along);
    return EdgePoints(directed);
  }

  static std::vector<ZBR_PT> InputPoints(const RegionInput& input) {
    std::vector<ZBR_PT> points;
    for (const RingSpan& line : input.rings()) points.insert(points.end(), line.begin(), line.end());
    return points;
  }

  // Without the vertices where an edge only goes on; a ring that is narrow on the average is none.
  bool AddRing(const FaceTracer& tracer, std::uint32_t r) {
    const auto& sides = tracer.rings()[r];
    const std::size_t n = sides.size();
    StrandsAlong::Rows rows;
    const auto start = [&](std::size_t i) { along_.Start(sides[i] / 2, rows); };
    const auto goesOn = [&](std::size_t i) { return tracer.IsPlain(tracer.Start(sides[i])) && along_.GoOn(sides[i] / 2, rows); };
    std::size_t first = 0;
    for (; first < n; ++first) {
      start((first + n - 1) % n);
      if (!goesOn(first)) break;
    }
    std::vector<ZBR_PT> points;
    std::vector<StrandsAlong::Rows> along;
    for (std::size_t k = 0; k < n; ++k) {
      const std::size_t i = (first + k) % n;
      if (k > 0 && goesOn(i)) continue;
      if (k > 0) along.push_back(rows);
      points.push_back(arrangement_.points()[tracer.Start(sides[i])]);
      start(i);
    }
    along.push_back(rows);
    if (points.size() < 3 || !(std::fabs(TwiceArea(points)) > width_ * Perimeter(points))) return false;
    for (std::size_t i = 0; i < points.size(); ++i) AddEdge(points[i], points[(i + 1) % points.size()], along[i]);
    region_.ringEnds.push_back(static_cast<std::uint32_t>(region_.points.size()));
    return true;
  }

  void AddEdge(const ZBR_PT& from, const ZBR_PT& to, const StrandsAlong::Rows& along) {
    region_.points.push_back(from);
    if (!withSources_) return;
    std::vector<std::uint32_t> sources;
    edgesOf_.Append(along, sources);
    for (std::uint32_t& edge : sources) edge = edges_[edge].number;
    std::sort(sources.begin(), sources.end());
    for (const std::uint32_t edge : sources) {
      const ZBR_PT start = points_[edge], d = points_[edge + 1] - start;
      const double length2 = d.Length2();
      region_.sources.push_back({edge, (from - start).InnerProduct(d) / length2, (to - start).InnerProduct(d) / length2});
    }
    region_.sourceEnds.push_back(static_cast<std::uint32_t>(region_.sources.size()));
  }

  std::vector<LineEdge> edges_;
  double width_;
  bool withSources_;
  Arrangement arrangement_;
  std::vector<ZBR_PT> points_;
  StrandsAlong along_;
  EdgesOfStrands edgesOf_;
  FlatRegion region_;
};

}  // namespace
}  // namespace zbr

ZBR_REGION_STATUS zbrTraceFaces(const ZBR_REGION_VIEW& lines, ZBR_REGION& cells, const ZBR_REGION_OPTIONS& options) {
  return zbr::FormOfOne(
      lines, cells, options,
      [&](const zbr::RegionInput& input, double tolerance) { return zbr::CellRegion(input, tolerance, options.sources); },
      [](zbr::CellRegion& region) { return region.Run(); });
}
