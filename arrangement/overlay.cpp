// Idea: arrange all edges, those that nothing comes near in whole chains; sweep once for the winding numbers of both operands on
// either side of every piece; then an operation is nothing but a choice of faces, and its result the border of these. Where the
// border only passes a vertex, because an edge was led through it or another one ends there, and no second part of the border does,
// the vertex is left out again: the edge is straight as it was. Nothing comes to cross by that where the vertex lies on the edge
// but for rounding. Where it lay aside by what the tolerance allows, something may; such a result is arranged once more, as it
// stands. So is one of pieces that come nearer to nodes than the points lie that these stand for: then crossings are no new places,
// but vertices that edges are led through. Where something comes nearly as close, the result is looked at without any rounding, and
// arranged again as long as it crosses itself. One that does not come to rest so is made of the places of the nodes, which keep
// apart as the pieces do.
#include "arrangement/overlay.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "core/planar_inline.h"
#include "core/rings.h"
#include "loops/exact_simplicity.h"

namespace zbr {
namespace {

double ParameterOn(const DirectedEdge& edge, const ZBR_PT& p) {
  const ZBR_PT d = edge.to - edge.from;
  return (p - edge.from).InnerProduct(d) / d.Length2();
}

}  // namespace

double OverlayTolerance(const Box& box, double wanted) {
  constexpr double kDigits = 4.0 * std::numeric_limits<double>::epsilon();
  const double size = std::max({std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
  return std::max(wanted, kDigits * size);
}

void TraceBack(const FlatRegion& before, FlatRegion& region) {
  std::vector<FlatSource> sources;
  std::uint32_t first = 0;
  for (std::size_t i = 0; i < region.points.size(); ++i) {
    for (std::uint32_t k = first; k < region.sourceEnds[i]; ++k) {
      const FlatSource& piece = region.sources[k];
      const std::uint32_t begin = piece.edge == 0 ? 0 : before.sourceEnds[piece.edge - 1];
      for (std::uint32_t s = begin; s < before.sourceEnds[piece.edge]; ++s) {
        const FlatSource& whole = before.sources[s];
        const double length = whole.t1 - whole.t0;
        sources.push_back({whole.edge, whole.t0 + length * piece.t0, whole.t0 + length * piece.t1});
      }
    }
    first = std::exchange(region.sourceEnds[i], static_cast<std::uint32_t>(sources.size()));
  }
  region.sources = std::move(sources);
}

Overlay::Overlay(std::span<const RingSpan> rings, std::size_t secondOperand, double tolerance, double width)
    : Overlay(rings, secondOperand, tolerance, width, BoxOfRings(rings)) {}

Overlay::Overlay(std::span<const RingSpan> rings, std::size_t secondOperand, double tolerance, double width, const Box& box)
    : tolerance_(tolerance),
      width_(width),
      edges_(rings),
      resolution_(Resolution::Fine(box, tolerance)),
      grid_(box, resolution_.step),
      chains_(FindClearChains(edges_, grid_, resolution_)),
      arrangement_(Arranged(CountPoints(rings.first(secondOperand)), Arrangement::Care::kQuick)),
      swept_(SweepWindings(arrangement_, Arrangement::Care::kQuick)) {
  if (!swept_.isPlanar) {
    arrangement_ = Arranged(CountPoints(rings.first(secondOperand)), Arrangement::Care::kThorough);
    swept_ = SweepWindings(arrangement_, Arrangement::Care::kThorough);
    swept_.isNear = true;
  }
  along_ = StrandsAlong(arrangement_);
}

Arrangement Overlay::Arranged(std::size_t secondOperand, Arrangement::Care care) const {
  if (chains_.empty()) return {edges_, resolution_, secondOperand, care};
  return {edges_, chains_, grid_, resolution_, secondOperand, care};
}

// Makes points, rings and polygons of traced boundaries.
class Overlay::Assembler {
 public:
  Assembler(const Overlay& overlay, std::vector<std::int8_t> sides, bool withSources, Points points)
      : overlay_(overlay),
        pieces_(overlay.arrangement_.pieces()),
        sides_(std::move(sides)),
        rings_(TraceBoundary(overlay.arrangement_, sides_, overlay.swept_)),
        withSources_(withSources),
        onGrid_(points == Points::kOfGrid) {
    if (withSources)
      edgesOf_.emplace(overlay.arrangement_, overlay.chains_.empty() ? overlay.edges_.size() : overlay.chains_.others.size());
    CountTouches();
  }

  FlatRegion Run() {
    // Holes by their outer rings.
    std::vector<std::uint32_t> begin(rings_.size() + 1, 0);
    for (const std::uint32_t parent : rings_.parent) {
      if (parent != BoundaryRings::kOuter) ++begin[parent + 1];
    }
    for (std::size_t r = 1; r < begin.size(); ++r) begin[r] += begin[r - 1];
    std::vector<std::uint32_t> holes(begin.back());
    std::vector<std::uint32_t> place(begin.begin(), begin.end() - 1);
    for (std::uint32_t r = 0; r < rings_.size(); ++r) {
      if (rings_.parent[r] != BoundaryRings::kOuter) holes[place[rings_.parent[r]]++] = r;
    }
    for (std::uint32_t r = 0; r < rings_.size(); ++r) {
      if (rings_.parent[r] != BoundaryRings::kOuter || !AddRing(r)) continue;
      for (std::uint32_t h = begin[r]; h < begin[r + 1]; ++h) AddRing(holes[h]);
      region_.polygonEnds.push_back(static_cast<std::uint32_t>(region_.ringEnds.size()));
    }
    return std::move(region_);
  }
  // Whether an edge was made straight past a vertex that lies beside it, or is shorter than the tolerance, as crossings of three
  // edges in almost one place make them; or two edges came to lie on each other, since what was left out between them was as good
  // as straight; or an outer ring may lie in a hole that was too narrow.
  bool IsUnsettled() {
    constexpr double kLonger = 2.0;  // than the hole, at the most
    if (shortestOuter_ <= kLonger * longestDropped_) return true;
    std::sort(crowdedEdges_.begin(), crowdedEdges_.end());
    return straightened_ || hasShortEdge_ || std::adjacent_find(crowdedEdges_.begin(), crowdedEdges_.end()) != crowdedEdges_.end();
  }

 private:
  std::uint32_t Start(std::uint32_t piece) const { return StartOf(pieces_[piece], sides_[piece]); }

  void CountTouches() {
    passes_.assign(overlay_.arrangement_.nodes().size(), 0);
    for (const std::uint32_t piece : rings_.pieces) {
      std::uint8_t& count = passes_[Start(piece)];
      count = count == 0 ? 1 : 2;
    }
  }

  // Narrows what the border has run along since its last corner to what it runs along in the next piece as well. False when it
  // turns before that piece, as it does at the ends of chains, whose edges are not among those.
  bool GoesOn(std::uint32_t next) {
    if (passes_[Start(next)] != 1 || onGrid_) return false;
    return overlay_.along_.GoOn(next, along_);
  }

  bool LiesAside(std::uint32_t vertex, const DirectedEdge& edge) const {
    constexpr double kOnEdge = 3.0;  // steps
    const ZBR_PT d = edge.to - edge.from;
    const double side = Cross(d, overlay_.arrangement_.points()[vertex] - edge.from);
    return std::fabs(side) > kOnEdge * overlay_.arrangement_.step() * d.Length();
  }

  // Where the border turns, as places in the ring's list of pieces. The walk begins at a sure corner; the leftmost point is one
  // when neighbours have edges in common all around.
  void FindCorners(std::span<const std::uint32_t> pieces) {
    const std::size_t n = pieces.size();
    std::size_t first = n;
    std::size_t leftmost = 0;
    for (std::size_t i = 0; i < n && first == n; ++i) {
      overlay_.along_.Start(pieces[i == 0 ? n - 1 : i - 1], along_);
      if (!GoesOn(pieces[i])) first = i;
      if (Start(pieces[i]) < Start(pieces[leftmost])) leftmost = i;
    }
    if (first == n) first = leftmost;
    corners_.clear();
    runSources_.clear();
    runEnds_.clear();
    for (std::size_t k = 0; k < n; ++k) {
      const std::size_t i = first + k < n ? first + k : first + k - n;
      if (k > 0 && GoesOn(pieces[i])) continue;
      if (k > 0) EndRun();
      corners_.push_back(static_cast<std::uint32_t>(i));
      overlay_.along_.Start(pieces[i], along_);
    }
    EndRun();
  }

  void EndRun() {
    if (withSources_) edgesOf_->Append(along_, runSources_);
    runEnds_.push_back(static_cast<std::uint32_t>(runSources_.size()));
  }

  bool AddRing(std::uint32_t r) {
    const std::span<const std::uint32_t> pieces = rings_.ring(r);
    FindCorners(pieces);
    beginsInChain_ = std::binary_search(rings_.beginningInChain.begin(), rings_.beginningInChain.end(), r);
    begin_ = region_.points.size();
    AddPoints(pieces);
    const bool isHole = rings_.parent[r] != BoundaryRings::kOuter;
    if (IsNarrow() && !(isHole && onGrid_)) {
      if (isHole) longestDropped_ = std::max(longestDropped_, perimeter_);
      region_.points.resize(begin_);
      return false;
    }
    if (!isHole) shortestOuter_ = std::min(shortestOuter_, perimeter_);
    LookAtEdges(pieces);
    if (withSources_) AddSources(pieces);
    region_.ringEnds.push_back(static_cast<std::uint32_t>(region_.points.size()));
    return true;
  }

  void AddPoints(std::span<const std::uint32_t> pieces) {
    std::size_t count = 0;
    for (const std::uint32_t corner : corners_) count += overlay_.arrangement_.BendCount(pieces[corner]) + 1;
    region_.points.resize(begin_ + count);
    if (beginsInChain_) region_.points[begin_] = BendOf(pieces.back(), overlay_.arrangement_.BendCount(pieces.back()) - 1);
    ForEachCorner(pieces, [&](std::size_t c, std::size_t from) {
      const std::uint32_t piece = pieces[corners_[c]];
      const std::uint32_t bends = EdgeCount(pieces, c) - 1;
      region_.points[from] = PointAt(piece);
      for (std::uint32_t k = 0; k < bends; ++k) region_.points[from + 1 + k] = BendOf(piece, k);
    });
  }

  // The k-th point that the border passes within a piece.
  ZBR_PT BendOf(std::uint32_t piece, std::uint32_t k) const {
    const Arrangement& arrangement = overlay_.arrangement_;
    const ZBR_PT& p = arrangement.Bend(piece, sides_[piece] > 0 ? k : arrangement.BendCount(piece) - 1 - k);
    return onGrid_ ? arrangement.PlaceOf(p) : p;
  }

  // How many edges of the ring begin in the piece at a corner, and before the next one; without one that the ring begins with.
  std::uint32_t EdgeCount(std::span<const std::uint32_t> pieces, std::size_t c) const {
    const bool isSplit = beginsInChain_ && corners_[c] + 1 == pieces.size();
    return overlay_.arrangement_.BendCount(pieces[corners_[c]]) + (isSplit ? 0 : 1);
  }

  // Calls visit(c, from) for each corner, `from` being the place of the edge that begins there among all points.
  template <class Visit>
  void ForEachCorner(std::span<const std::uint32_t> pieces, Visit visit) const {
    std::size_t from = begin_ + (beginsInChain_ ? 1 : 0);
    for (std::size_t c = 0; c < corners_.size(); ++c) {
      visit(c, from);
      from += overlay_.arrangement_.BendCount(pieces[corners_[c]]) + 1;
    }
  }

  // The edge of the ring in work that begins at a point.
  DirectedEdge EdgeFrom(std::size_t from) const {
    return {region_.points[from], region_.points[from + 1 < region_.points.size() ? from + 1 : begin_]};
  }

  // The edges of chains are long, alone, and as they were.
  void LookAtEdges(std::span<const std::uint32_t> pieces) {
    ForEachCorner(pieces, [&](std::size_t c, std::size_t from) {
      if (overlay_.arrangement_.BendCount(pieces[corners_[c]]) > 0) return;
      NoteCrowded(Start(pieces[corners_[c]]), Start(pieces[corners_[c + 1 < corners_.size() ? c + 1 : 0]]));
      const DirectedEdge edge = EdgeFrom(from);
      NoteLeftOut(pieces, c, edge);
      hasShortEdge_ = hasShortEdge_ || edge.from.Distance2(edge.to) <= overlay_.tolerance_ * overlay_.tolerance_;
    });
  }

  // What was left out between corner c and the next. The edge is held against it as it is in the result: its ends may lie off the
  // edge of the input.
  void NoteLeftOut(std::span<const std::uint32_t> pieces, std::size_t c, const DirectedEdge& edge) {
    const std::size_t end = corners_[c + 1 < corners_.size() ? c + 1 : 0];
    const auto after = [&](std::size_t k) { return k + 1 < pieces.size() ? k + 1 : 0; };
    for (std::size_t k = after(corners_[c]); k != end; k = after(k)) {
      straightened_ = straightened_ || LiesAside(Start(pieces[k]), edge);
    }
  }

  // Only edges between vertices that the border passes more than once can be there twice.
  void NoteCrowded(std::uint32_t from, std::uint32_t to) {
    if (passes_[from] < 2 || passes_[to] < 2) return;
    crowdedEdges_.push_back(std::uint64_t{std::min(from, to)} << 32U | std::max(from, to));
  }

  ZBR_PT PointAt(std::uint32_t piece) const {
    const Arrangement& arrangement = overlay_.arrangement_;
    return onGrid_ ? arrangement.PlaceOf(Start(piece)) : arrangement.points()[Start(piece)];
  }

  // The area of a narrow ring is its width times half the way around it. In steps of the grid, where nothing under- or overflows.
  bool IsNarrow() {
    perimeter_ = 0.0;
    const RingSpan ring = std::span(region_.points).subspan(begin_);
    if (ring.size() < 3) return true;
    const double perStep = 1.0 / overlay_.arrangement_.step();
    double twiceArea = 0.0;
    ZBR_PT p;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const ZBR_PT q = (ring[i + 1 < ring.size() ? i + 1 : 0] - ring[0]) * perStep;
      twiceArea += Cross(p, q);
      perimeter_ += p.Distance(q);
      p = q;
    }
    return !(std::fabs(twiceArea) > overlay_.width_ * perStep * perimeter_);
  }

  // Of the edges of the ring: the input edges that run along the whole of each.
  void AddSources(std::span<const std::uint32_t> pieces) {
    if (beginsInChain_) AddSourcesOfChain(pieces.back(), overlay_.arrangement_.BendCount(pieces.back()), begin_);
    ForEachCorner(pieces, [&](std::size_t c, std::size_t from) {
      const std::uint32_t piece = pieces[corners_[c]];
      if (overlay_.arrangement_.ChainOf(piece) != nullptr) {
        const std::uint32_t edges = EdgeCount(pieces, c);
        for (std::uint32_t k = 0; k < edges; ++k) AddSourcesOfChain(piece, k, from + k);
        return;
      }
      for (std::uint32_t k = c == 0 ? 0 : runEnds_[c - 1]; k < runEnds_[c]; ++k) {
        const auto& others = overlay_.chains_.others;
        AddSource(others.empty() ? runSources_[k] : others[runSources_[k]], from);
      }
      region_.sourceEnds.push_back(static_cast<std::uint32_t>(region_.sources.size()));
    });
  }

  // Of the chain's k-th edge in walking order.
  void AddSourcesOfChain(std::uint32_t piece, std::uint32_t k, std::size_t from) {
    const ClearChain& chain = *overlay_.arrangement_.ChainOf(piece);
    const std::uint32_t place = (sides_[piece] > 0) != overlay_.arrangement_.RunsBack(piece) ? k : chain.count - 1 - k;
    AddSource(chain.first + place, from);
    if (chain.twin != ClearChain::kNoTwin) AddSource(chain.TwinOf(place), from);
    region_.sourceEnds.push_back(static_cast<std::uint32_t>(region_.sources.size()));
  }

  void AddSource(std::uint32_t edge, std::size_t from) {
    const DirectedEdge source = overlay_.edges_[edge];
    const DirectedEdge result = EdgeFrom(from);
    region_.sources.push_back({edge, ParameterOn(source, result.from), ParameterOn(source, result.to)});
  }

  const Overlay& overlay_;
  const std::vector<ArrangedPiece>& pieces_;
  std::vector<std::int8_t> sides_;
  BoundaryRings rings_;
  bool withSources_;
  bool onGrid_;
  bool straightened_ = false;
  bool hasShortEdge_ = false;
  bool beginsInChain_ = false;   // the ring in work
  std::size_t begin_ = 0;        // of its points
  double perimeter_ = 0.0;       // of the last ring, in steps
  double longestDropped_ = 0.0;  // of narrow holes
  double shortestOuter_ = std::numeric_limits<double>::infinity();
  std::vector<std::uint64_t> crowdedEdges_;  // of the result, by their vertices
  std::vector<std::uint8_t> passes_;         // by vertex: 1 when the border passes it once, 2 when more often
  std::vector<std::uint32_t> corners_;       // of the ring in work, as places in its list of pieces
  std::optional<EdgesOfStrands> edgesOf_;    // when sources are asked for
  StrandsAlong::Rows along_;                 // what the border has run along since its last corner
  std::vector<std::uint32_t> runSources_;    // the edges along each of the ring's edges
  std::vector<std::uint32_t> runEnds_;
  FlatRegion region_;
};

FlatRegion Overlay::Region(const Inside& inside, bool withSources) const {
  constexpr int kMostTimes = 4;  // that a region is arranged again
  Rest rest = Rest::kCertain;
  FlatRegion region = Assembled(inside, withSources, Points::kTrue, rest);
  for (int times = 0; rest == Rest::kNone && times < kMostTimes; ++times) region = Settled(region, Points::kTrue, rest);
  if (rest == Rest::kCertain) return region;
  for (int times = 0; ExactSimplicityOf(region.Rings()) != ExactSimplicity::kSimple; ++times) {
    if (times == kMostTimes) return Settled(region, Points::kOfGrid, rest);
    region = Settled(region, Points::kTrue, rest);
  }
  return region;
}

FlatRegion Overlay::Assembled(const Inside& inside, bool withSources, Points points, Rest& rest) const {
  const auto& pieces = arrangement_.pieces();
  std::vector<std::int8_t> sides(pieces.size());
  for (std::uint32_t i = 0; i < pieces.size(); ++i) {
    const bool below = inside(swept_.below[i]);
    const bool above = inside(swept_.below[i] + pieces[i].net);
    sides[i] = static_cast<std::int8_t>(static_cast<int>(above) - static_cast<int>(below));
  }
  Assembler assembler(*this, std::move(sides), withSources, points);
  FlatRegion region = assembler.Run();
  rest = assembler.IsUnsettled() || swept_.isTight ? Rest::kNone : swept_.isNear ? Rest::kDoubtful : Rest::kCertain;
  return region;
}

// The region once more, from its own rings.
FlatRegion Overlay::Settled(const FlatRegion& region, Points points, Rest& rest) const {
  const std::vector<RingSpan> rings = region.Rings();
  const Overlay again(rings, rings.size(), tolerance_, width_);
  const bool withSources = !region.sourceEnds.empty();
  FlatRegion settled = again.Assembled([](Winding w) { return w.of[0] > 0; }, withSources, points, rest);
  if (withSources) TraceBack(region, settled);
  return settled;
}

}  // namespace zbr
