// Snap rounding (Hobby, "Practical segment intersection with finite precision output", 1999; Guibas and Marimont, "Rounding
// arrangements dynamically", 1998): put the vertices on a grid; find all crossings of the edges between them; call the cell around
// the grid node of a vertex or a crossing hot; and lead every edge through the nodes of the hot cells that it passes. What results
// does not cross and passes no vertex: if a piece between two nodes passed a third, the edge, which is no farther from the piece
// than half a cell anywhere, would have passed that one's cell. That holds exactly, however many edges crowd together, because
// everything is exact: edges have integer ends, so the signs of areas and the cells of crossings can be decided (grid_point.h).
//
// Before that, points within a tolerance become one vertex, and edges are led through the vertices that they pass within a
// tolerance. On a coarse grid it is one and a half steps: more than putting both on the grid can have moved them apart, so that
// what should meet but for rounding, meets, and triangles with vertices on each other's edges leave no cracks. On a fine grid it is
// what the caller counts as noise; what lies farther apart stays apart, to the grid's step.
//
// Edges that share both ends are one line with a count from the start, so that the sides of triangles that were never told to be
// neighbours cancel before anything is searched.
#include "arrangement/arrangement.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "arrangement/check.h"
#include "arrangement/edge_cutter.h"
#include "core/assert.h"
#include "core/box_tree.h"
#include "core/cost.h"
#include "core/radix_sort.h"

namespace zbr {
namespace {

// The same for an edge that may pass the vertex's cell: a little more than half a diagonal.
constexpr double kCellReach = 0.75;

// A line or its place, to be sorted by both ends.
struct Keyed {
  std::uint64_t ends;
  std::uint32_t index;
  Winding net;
};

Box BoxOf(std::span<const DirectedEdge> edges) {
  Box box;
  for (const DirectedEdge& e : edges) {
    box.Add(e.from);
    box.Add(e.to);
  }
  return box;
}

// Sorts by both ends and calls visit(group) for each run of equal ones.
template <class Visit>
void ForEachGroup(std::vector<Keyed>& keyed, Visit visit) {
  const auto ends = [](const Keyed& k) { return k.ends; };
  std::vector<Keyed> scratch;
  RadixSort(keyed, scratch, ends);
  ForEachRun(keyed, ends, visit);
}

Winding NetOf(std::span<const Keyed> group) {
  Winding net;
  for (const Keyed& k : group) net += k.net;
  return net;
}

}  // namespace

void EdgeCutter::Run(Arrangement::Care care) {
  if (care == Arrangement::Care::kQuick) {
    QuickCut();
  } else {
    const bool anyBent = CutLines(0, reach_, [this](const CutLine& line, std::uint32_t v) { return IsWithinReach(line, v); });
    const std::uint32_t firstCrossing = vertices_.size();
    AddCrossings();
    // Lines that were not led through vertices above pass none of those, so only the crossings are left to be passed.
    CutLines(anyBent ? 0 : firstCrossing, kCellReach, [this](const CutLine& line, std::uint32_t v) { return PassesCell(line, v); });
  }
  NumberVertices();
  MergeLines();
}

namespace {

bool AreEqual(const ZBR_PT& p, const ZBR_PT& q) {
  return p.x() == q.x() && p.y() == q.y();
}

}  // namespace

// Fills fromVertex_ and toVertex_.
void EdgeCutter::MakeVertices(std::span<const DirectedEdge> edges) {
  // An edge mostly ends where the next one begins, or where the first of its chain did: such points are looked up once.
  const auto count = static_cast<std::uint32_t>(edges.size());
  std::vector<ZBR_PT> points;
  points.reserve(count + count / 8);
  for (const DirectedEdge& e : edges) points.push_back(e.from);
  toPoint_.resize(count);
  std::uint32_t chain = 0;
  for (std::uint32_t i = 0; i < count; ++i) {
    const bool goesOn = i + 1 < count && AreEqual(edges[i].to, points[i + 1]);
    const bool closes = !goesOn && AreEqual(edges[i].to, points[chain]);
    toPoint_[i] = goesOn ? i + 1 : closes ? chain : static_cast<std::uint32_t>(points.size());
    if (!goesOn && !closes) points.push_back(edges[i].to);
    if (!goesOn) chain = i + 1;
  }
  vertexOf_ = isFine_ ? vertices_.AddApart(points) : std::vector<std::uint32_t>(points.size(), kNoVertex);
  for (std::uint32_t i = 0; i < count; ++i) {
    for (const std::uint32_t point : {i, toPoint_[i]}) {
      if (vertexOf_[point] == kNoVertex) vertexOf_[point] = vertices_.At(points[point]);
    }
  }
}

// Which edges may have another one between the same vertices. Not those with an end that no other point shares, unless the edges
// there run both ways.
std::vector<bool> EdgeCutter::FindRepeated() const {
  const auto count = static_cast<std::uint32_t>(toPoint_.size());
  std::vector<bool> isRepeated(count, !isFine_);
  if (!isFine_) return isRepeated;
  std::vector<std::uint8_t> shares(vertices_.size(), 0);  // 1: one point, 2: more
  for (const std::uint32_t v : vertexOf_) shares[v] = shares[v] == 0 ? 1 : 2;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t next = toPoint_[i];
    if (shares[vertexOf_[i]] > 1 && shares[vertexOf_[next]] > 1) isRepeated[i] = true;
    if (next < count && vertexOf_[toPoint_[next]] == vertexOf_[i]) isRepeated[i] = isRepeated[next] = true;
  }
  return isRepeated;
}

void EdgeCutter::MakeLines(std::span<const DirectedEdge> edges, std::size_t secondOperand) {
  MakeVertices(edges);
  const std::vector<bool> isRepeated = FindRepeated();
  const auto lineOf = [&](std::uint32_t i) {
    return LineBetween(vertexOf_[i], vertexOf_[toPoint_[i]], i < secondOperand ? Winding{{1, 0}} : Winding{{0, 1}}, 0);
  };
  const auto isPoint = [&](std::uint32_t i) { return vertexOf_[i] == vertexOf_[toPoint_[i]]; };
  out_.lineOfEdge_.assign(edges.size(), Arrangement::kNoPiece);
  lines_.reserve(edges.size());
  edgeOfLine_.reserve(edges.size());
  std::vector<Keyed> keyed;
  for (std::uint32_t i = 0; i < edges.size(); ++i) {
    if (!isRepeated[i] || isPoint(i)) continue;
    const CutLine line = lineOf(i);
    keyed.push_back({std::uint64_t{line.from} << 32U | line.to, i, line.net});
  }
  ForEachGroup(keyed, [this](std::span<const Keyed> group) {
    const Winding net = NetOf(group);
    if (net.IsZero()) return;
    for (const Keyed& k : group) out_.lineOfEdge_[k.index] = static_cast<std::uint32_t>(lines_.size());
    const std::uint64_t ends = group[0].ends;
    lines_.push_back({static_cast<std::uint32_t>(ends >> 32U), static_cast<std::uint32_t>(ends), net, 0});
    edgeOfLine_.push_back(group[0].index);
  });
  for (std::uint32_t i = 0; i < edges.size(); ++i) {
    if (isRepeated[i] || isPoint(i)) continue;
    out_.lineOfEdge_[i] = static_cast<std::uint32_t>(lines_.size());
    lines_.push_back(lineOf(i));
    edgeOfLine_.push_back(i);
  }
}

// Puts neighbours in the plane next to each other; what is cut from them stays together. Chooses the frame to join them in. Lines
// of edges that follow each other are neighbours already and are put in their place some at a time.
void EdgeCutter::SortLines() {
  constexpr std::uint32_t kTogether = 8;
  std::vector<ZBR_PT> directions;
  directions.reserve(lines_.size());
  for (const CutLine& line : lines_) directions.push_back(Node(line.to).Point() - Node(line.from).Point());
  frame_ = LeaningFrame(directions);
  std::vector<std::uint32_t> begin;  // of each run of lines
  std::vector<ZBR_PT> centres;
  Box box;
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    const bool follows =
        i > 0 && isFine_ && edgeOfLine_[i] == edgeOfLine_[i - 1] + 1 && toPoint_[edgeOfLine_[i - 1]] == edgeOfLine_[i];
    if (!follows || i - begin.back() == kTogether) {
      if (i > 0) centres.push_back(box.Center());
      begin.push_back(i);
      box = Box();
    }
    box.Add(BoxOfSegment(Node(lines_[i].from).Point(), Node(lines_[i].to).Point()));
  }
  if (!lines_.empty()) centres.push_back(box.Center());
  begin.push_back(static_cast<std::uint32_t>(lines_.size()));
  std::vector<CutLine> sorted;
  sorted.reserve(lines_.size());
  std::vector<std::uint32_t> place(lines_.size());
  for (const std::uint32_t run : SpatialOrder(centres)) {
    for (std::uint32_t i = begin[run]; i < begin[run + 1]; ++i) {
      place[i] = static_cast<std::uint32_t>(sorted.size());
      sorted.push_back(lines_[i]);
      sorted.back().origin = place[i];
    }
  }
  lines_.swap(sorted);
  for (std::uint32_t& line : out_.lineOfEdge_) {
    if (line != Arrangement::kNoPiece) line = place[line];
  }
}

bool EdgeCutter::IsWithinReach(const CutLine& line, std::uint32_t v) const {
  const GridPoint p = Node(line.from);
  const GridPoint q = Node(line.to);
  const double along = Along(p, q, Node(v));
  const double length2 = Along(p, q, q);
  if (!(along > 0.0 && along < length2)) return false;
  return std::fabs(SideProducts(p, q, Node(v)).Value()) <= reach_ * std::sqrt(length2);
}

// Whether the line meets the cell of the vertex: the square of one step around its node, with its lower and left sides, but without
// the others. Seen along x, along y and along the line the two must overlap. If the line only touches the cell, it does so in a
// corner, or along a side, and these belong to the cell or not.
bool EdgeCutter::PassesCell(const CutLine& line, std::uint32_t v) const {
  const GridPoint p = Node(line.from);
  const GridPoint q = Node(line.to);
  const GridPoint c = Node(v);
  if (c.x < p.x || c.x > q.x || c.y < std::min(p.y, q.y) || c.y > std::max(p.y, q.y)) return false;
  const double dx = q.x - p.x;  // never negative
  const double dy = q.y - p.y;
  const double width = dx + std::fabs(dy);  // twice the reach of the cell to either side of the line, times the line's length
  const SideProducts side(p, q, c);
  const double beyond = 2.0 * std::fabs(side.Value()) - width;
  if (std::fabs(beyond) > 2.0 * side.Error()) return beyond < 0.0;
  const Int128 exact = ExactSide(p, q, c);
  const Int128 twice = exact.Abs() + exact.Abs() - Int128(static_cast<std::int64_t>(width));
  if (twice.Sign() != 0) return twice.Sign() < 0;
  return exact.Sign() > 0 ? dy <= 0.0 : dx == 0.0;
}

// Every line in that many spans of equal length: the boxes of a long line's spans hold much less than its own.
BoxTree EdgeCutter::TreeOverLines(double margin, std::uint32_t spans) const {
  const double room = spans > 1 ? margin + 2.0 : margin;  // where a span ends, is rounded
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(lines_.size() * spans);
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    const ZBR_PT from = Node(lines_[i].from).Point();
    const ZBR_PT to = Node(lines_[i].to).Point();
    ZBR_PT at = from;
    for (std::uint32_t k = 1; k <= spans; ++k) {
      const ZBR_PT next = k == spans ? to : from + (to - from) * (static_cast<double>(k) / spans);
      leaves[i * spans + k - 1] = frame_.Around(at, next).Widened(room);
      at = next;
    }
  }
  tree.BuildInner();
  return tree;
}

// Places in groups of four that are near each other.
struct EdgeCutter::PlaceGroups {
  static constexpr std::uint32_t kGroup = 4;
  std::vector<std::uint32_t> order;
  BoxTree tree;

  explicit PlaceGroups(std::span<const ZBR_PT> places) : order(SpatialOrder(places)) {
    const std::span<Box> leaves = tree.StartLeaves((order.size() + kGroup - 1) / kGroup);
    for (std::size_t i = 0; i < order.size(); ++i) leaves[i / kGroup].Add(places[order[i]]);
    tree.BuildInner();
  }
  std::span<const std::uint32_t> Group(std::uint32_t group) const {
    const std::size_t first = group * std::size_t{kGroup};
    return std::span(order).subspan(first, std::min<std::size_t>(kGroup, order.size() - first));
  }
};

// Where vertices are many more than the lines, so that many lie on each, they are searched along spans of the lines.
std::uint32_t EdgeCutter::SpansFor(std::size_t vertices) const {
  constexpr std::size_t kMostSpans = 64;
  const std::size_t perLine = vertices / std::max(lines_.size(), std::size_t{1});
  return static_cast<std::uint32_t>(std::clamp(perLine, std::size_t{1}, kMostSpans));
}

// Cuts every line at those vertices, from the given one on, that isHit says. Returns whether there were any.
template <class IsHit>
bool EdgeCutter::CutLines(std::uint32_t firstVertex, double margin, IsHit isHit) {
  std::vector<ZBR_PT> places;
  places.reserve(vertices_.size() - firstVertex);
  for (std::uint32_t v = firstVertex; v < vertices_.size(); ++v) places.push_back(frame_.Turned(Node(v).Point()));
  const PlaceGroups groups(places);
  std::vector<CutLine> next;
  next.reserve(lines_.size() + places.size());
  std::vector<std::uint32_t> begin;
  begin.reserve(lines_.size() + 1);
  const auto keepUpTo = [&](std::size_t line) {
    while (begin.size() < line) {
      next.push_back(lines_[begin.size()]);
      begin.push_back(static_cast<std::uint32_t>(next.size()) - 1);
    }
  };
  std::vector<std::uint32_t> hits;  // of the line in work
  std::uint32_t line = 0;
  const auto cut = [&] {
    if (hits.empty()) return;
    keepUpTo(line);
    begin.push_back(static_cast<std::uint32_t>(next.size()));
    std::sort(hits.begin(), hits.end());
    hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
    AppendParts(lines_[line], hits, next);
    hits.clear();
  };
  const std::uint32_t spans = SpansFor(places.size());
  BoxJoin::Run(TreeOverLines(margin, spans), groups.tree, [&](std::uint32_t leaf, std::span<const std::uint32_t> near) {
    if (leaf / spans != line) cut();
    line = leaf / spans;
    for (const std::uint32_t group : near) {
      ZBR_COUNT(pairs, groups.Group(group).size());
      for (const std::uint32_t place : groups.Group(group)) {
        const std::uint32_t v = firstVertex + place;
        if (v != lines_[line].from && v != lines_[line].to && isHit(lines_[line], v)) hits.push_back(v);
      }
    }
    return true;
  });
  cut();
  if (begin.empty()) return false;
  keepUpTo(lines_.size());
  begin.push_back(static_cast<std::uint32_t>(next.size()));
  lines_.swap(next);
  for (std::uint32_t& first : out_.lineBegin_) first = begin[first];
  return true;
}

// Appends the parts of the line between the vertices.
void EdgeCutter::AppendParts(const CutLine& line, std::vector<std::uint32_t>& hits, std::vector<CutLine>& next) const {
  if (hits.size() > 1) {
    std::sort(hits.begin(), hits.end(), [&](std::uint32_t u, std::uint32_t v) {
      const int ahead = AheadSign(Node(line.from), Node(line.to), Node(u), Node(v));
      return ahead != 0 ? ahead > 0 : u < v;
    });
  }
  std::uint32_t from = line.from;
  for (const std::uint32_t v : hits) {
    next.push_back(LineBetween(from, v, line.net, line.origin));
    from = v;
  }
  next.push_back(LineBetween(from, line.to, line.net, line.origin));
}

// Makes a vertex of every crossing.
void EdgeCutter::AddCrossings() {
  const BoxTree tree = TreeOverLines(0.0, 1);
  BoxJoin::Run(tree, tree, [this](std::uint32_t i, std::span<const std::uint32_t> hits) {
    for (auto j = std::upper_bound(hits.begin(), hits.end(), i); j != hits.end(); ++j) Cross(lines_[i], lines_[*j]);
    return true;
  });
}

namespace {

// p + d * share / whole, with 0 < share < whole, rounded to the nearest integer, halves up. The remainder of the quotient that
// doubles give is small, so that arithmetic modulo 2^128 knows it exactly.
double RoundedPlace(double p, double d, const Int128& share, const Int128& whole, double t) {
  const auto step = static_cast<std::int64_t>(d);
  auto quotient = static_cast<std::int64_t>(std::floor(d * t + 0.5));
  Int128 rest = share * step - whole * quotient;
  while (!(rest + rest < whole)) {
    ++quotient;
    rest = rest - whole;
  }
  while (rest + rest < -whole) {
    --quotient;
    rest = rest + whole;
  }
  return p + static_cast<double>(quotient);
}

}  // namespace

// The vertex of the crossing, or kNoVertex. Ends that lie on the other line are vertices already, so only proper crossings count.
std::uint32_t EdgeCutter::Cross(const CutLine& a, const CutLine& b) {
  ZBR_COUNT(pairs, 1);
  const GridPoint p = Node(a.from);
  const GridPoint q = Node(a.to);
  const GridPoint r = Node(b.from);
  const GridPoint s = Node(b.to);
  if (SideSign(p, q, r) * SideSign(p, q, s) >= 0) return kNoVertex;
  if (SideSign(r, s, p) * SideSign(r, s, q) >= 0) return kNoVertex;
  const Int128 share = ExactSide(r, s, p).Abs();
  const Int128 whole = share + ExactSide(r, s, q).Abs();
  const double t = share.ToDouble() / whole.ToDouble();
  const GridPoint node = {RoundedPlace(p.x, q.x - p.x, share, whole, t), RoundedPlace(p.y, q.y - p.y, share, whole, t)};
  const ZBR_PT place = p.Point() + (q.Point() - p.Point()) * t;
  return vertices_.OnNode(node, isFine_ ? vertices_.FromGrid(node.Point()) : TrueCrossing(a, b, place));
}

// The crossing of the edges that the lines come from, as exact as doubles give it, if it is where the lines cross on the grid.
ZBR_PT EdgeCutter::TrueCrossing(const CutLine& a, const CutLine& b, const ZBR_PT& place) const {
  constexpr double kNear = 2.0;  // steps
  const CutLine& first = origins_[std::min(a.origin, b.origin)];
  const CutLine& second = origins_[std::max(a.origin, b.origin)];
  const ZBR_PT& p = vertices_.point(first.from);
  const ZBR_PT& r = vertices_.point(second.from);
  const ZBR_PT d = vertices_.point(first.to) - p;
  const ZBR_PT e = vertices_.point(second.to) - r;
  const ZBR_PT point = p + d * ((r - p).OuterProduct(e) / d.OuterProduct(e));
  const ZBR_PT off = vertices_.ToGrid(point) - place;
  const bool isNear = std::fabs(off.x()) <= kNear && std::fabs(off.y()) <= kNear;  // false for NaN
  return isNear ? point : vertices_.FromGrid(place);
}

// The vertices that are in order already are merged with the others.
void EdgeCutter::NumberVertices() {
  const std::uint32_t sorted = vertices_.sorted();
  const std::vector<std::uint32_t> others = SweepOrder(std::span(vertices_.nodes()).subspan(sorted));
  number_.resize(vertices_.size());
  out_.nodes_.reserve(vertices_.size());
  out_.points_.reserve(vertices_.size());
  const auto take = [this](std::uint32_t vertex) {
    number_[vertex] = static_cast<std::uint32_t>(out_.nodes_.size());
    out_.nodes_.push_back(Node(vertex));
    out_.points_.push_back(vertices_.point(vertex));
  };
  std::uint32_t next = 0;
  for (const std::uint32_t other : others) {
    while (next < sorted && IsBefore(Node(next), Node(sorted + other))) take(next++);
    take(sorted + other);
  }
  while (next < sorted) take(next++);
}

// Lines that came to lie on each other become one piece.
void EdgeCutter::MergeLines() {
  const auto from = [this](std::uint32_t line) { return number_[lines_[line].from]; };
  const auto to = [this](std::uint32_t line) { return number_[lines_[line].to]; };
  std::vector<std::uint32_t> begin(out_.nodes_.size() + 1, 0);  // of the lines from each vertex
  for (std::uint32_t i = 0; i < lines_.size(); ++i) ++begin[from(i) + 1];
  std::partial_sum(begin.begin(), begin.end(), begin.begin());
  std::vector<std::uint32_t> order(lines_.size());
  std::vector<std::uint32_t> place(begin.begin(), begin.end() - 1);
  for (std::uint32_t i = 0; i < lines_.size(); ++i) order[place[from(i)]++] = i;
  out_.pieceOfLine_.assign(lines_.size(), Arrangement::kNoPiece);
  out_.pieces_.reserve(lines_.size());
  for (std::uint32_t v = 0; v < out_.nodes_.size(); ++v) {
    const std::span<std::uint32_t> here = std::span(order).subspan(begin[v], begin[v + 1] - begin[v]);
    if (here.size() > 1) std::sort(here.begin(), here.end(), [&](std::uint32_t i, std::uint32_t j) { return to(i) < to(j); });
    for (std::size_t first = 0; first < here.size();) {
      const std::uint32_t end = to(here[first]);
      std::size_t last = first;
      Winding net;
      for (; last < here.size() && to(here[last]) == end; ++last) net += lines_[here[last]].net;
      for (; first < last; ++first) {
        if (!net.IsZero()) out_.pieceOfLine_[here[first]] = static_cast<std::uint32_t>(out_.pieces_.size());
      }
      if (!net.IsZero()) out_.pieces_.push_back({v, end, net});
    }
  }
}

Arrangement::Arrangement(std::span<const DirectedEdge> edges, const Resolution& resolution, std::size_t secondOperand, Care care) {
  if (!edges.empty()) EdgeCutter(*this, edges, BoxOf(edges), resolution, secondOperand).Run(care);
}

Arrangement::Arrangement(std::span<const DirectedEdge> edges)
    : Arrangement(edges, Resolution::Coarse(BoxOf(edges)), edges.size(), Care::kThorough) {}

}  // namespace zbr
