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

void EdgeCutter::MakeLines(std::span<const DirectedEdge> edges, std::size_t secondOperand) {
  out_.lineOfEdge_.assign(edges.size(), Arrangement::kNoPiece);
  std::vector<Keyed> keyed;
  keyed.reserve(edges.size());
  std::uint32_t to = 0;
  for (std::uint32_t i = 0; i < edges.size(); ++i) {
    // Mostly an edge starts where the one before ends.
    const bool goesOn = i > 0 && edges[i].from.x() == edges[i - 1].to.x() && edges[i].from.y() == edges[i - 1].to.y();
    const std::uint32_t from = goesOn ? to : vertices_.At(edges[i].from);
    to = vertices_.At(edges[i].to);
    if (from == to) continue;
    const CutLine line = LineBetween(from, to, i < secondOperand ? Winding{{1, 0}} : Winding{{0, 1}}, 0);
    keyed.push_back({std::uint64_t{line.from} << 32U | line.to, i, line.net});
  }
  ForEachGroup(keyed, [this](std::span<const Keyed> group) {
    const Winding net = NetOf(group);
    if (net.IsZero()) return;
    const auto number = static_cast<std::uint32_t>(lines_.size());
    for (const Keyed& k : group) out_.lineOfEdge_[k.index] = number;
    const std::uint64_t ends = group[0].ends;
    lines_.push_back({static_cast<std::uint32_t>(ends >> 32U), static_cast<std::uint32_t>(ends), net, 0});
  });
}

// Puts neighbours in the plane next to each other; what is cut from them stays together. Chooses the frame to join them in.
void EdgeCutter::SortLines() {
  std::vector<ZBR_PT> centres;
  std::vector<ZBR_PT> directions;
  centres.reserve(lines_.size());
  directions.reserve(lines_.size());
  for (const CutLine& line : lines_) {
    directions.push_back(Node(line.to).Point() - Node(line.from).Point());
    centres.push_back((Node(line.from).Point() + Node(line.to).Point()) / 2.0);
  }
  frame_ = LeaningFrame(directions);
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  std::vector<CutLine> sorted(lines_.size());
  std::vector<std::uint32_t> place(lines_.size());
  for (std::uint32_t i = 0; i < order.size(); ++i) {
    sorted[i] = lines_[order[i]];
    sorted[i].origin = i;
    place[order[i]] = i;
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

BoxTree EdgeCutter::TreeOverLines(double margin) const {
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(lines_.size());
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    leaves[i] = frame_.Around(Node(lines_[i].from).Point(), Node(lines_[i].to).Point()).Widened(margin);
  }
  tree.BuildInner();
  return tree;
}

// Cuts every line at those vertices, from the given one on, that isHit says. Returns whether there were any. The vertices are
// searched in groups of four that are near each other.
template <class IsHit>
bool EdgeCutter::CutLines(std::uint32_t firstVertex, double margin, IsHit isHit) {
  constexpr std::uint32_t kGroup = 4;
  std::vector<ZBR_PT> places;
  places.reserve(vertices_.size() - firstVertex);
  for (std::uint32_t v = firstVertex; v < vertices_.size(); ++v) places.push_back(frame_.Turned(Node(v).Point()));
  const std::vector<std::uint32_t> order = SpatialOrder(places);
  BoxTree groups;
  const std::span<Box> leaves = groups.StartLeaves((order.size() + kGroup - 1) / kGroup);
  for (std::size_t i = 0; i < order.size(); ++i) leaves[i / kGroup].Add(places[order[i]]);
  groups.BuildInner();

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
  std::vector<std::uint32_t> hits;
  bool any = false;
  BoxJoin::Run(TreeOverLines(margin), groups, [&](std::uint32_t i, std::span<const std::uint32_t> near) {
    const CutLine& line = lines_[i];
    hits.clear();
    for (const std::uint32_t group : near) {
      const std::size_t end = std::min<std::size_t>(order.size(), (group + 1) * std::size_t{kGroup});
      ZBR_COUNT(pairs, end - group * std::size_t{kGroup});
      for (std::size_t k = group * std::size_t{kGroup}; k < end; ++k) {
        const std::uint32_t v = firstVertex + order[k];
        if (v != line.from && v != line.to && isHit(line, v)) hits.push_back(v);
      }
    }
    if (hits.empty()) return true;
    any = true;
    keepUpTo(i);
    begin.push_back(static_cast<std::uint32_t>(next.size()));
    AppendParts(line, hits, next);
    return true;
  });
  if (!any) return false;
  keepUpTo(lines_.size());
  begin.push_back(static_cast<std::uint32_t>(next.size()));
  lines_.swap(next);
  for (std::uint32_t& line : out_.lineBegin_) line = begin[line];
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
  const BoxTree tree = TreeOverLines(0.0);
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

// By the upper digits of x first; what they leave undecided is compared.
void EdgeCutter::NumberVertices() {
  constexpr double kMostKeys = 0x1p32 - 1.0;
  struct Item {
    std::uint32_t key;
    std::uint32_t vertex;
  };
  std::vector<Item> items(vertices_.size());
  std::vector<Item> scratch;
  const auto [leftmost, rightmost] = std::minmax_element(vertices_.nodes().begin(), vertices_.nodes().end(),
                                                         [](const GridPoint& a, const GridPoint& b) { return a.x < b.x; });
  const double left = leftmost->x;
  const double keysPerStep = kMostKeys / std::max(rightmost->x - left, 1.0);
  for (std::uint32_t v = 0; v < items.size(); ++v) {
    items[v] = {static_cast<std::uint32_t>((Node(v).x - left) * keysPerStep), v};
  }
  const auto keyOf = [](const Item& item) { return item.key; };
  RadixSort(items, scratch, keyOf);
  ForEachRun(items, keyOf, [this](std::span<Item> run) {
    if (run.size() < 2) return;
    std::sort(run.begin(), run.end(), [this](const Item& i, const Item& j) { return IsBefore(Node(i.vertex), Node(j.vertex)); });
  });
  number_.resize(items.size());
  out_.nodes_.reserve(items.size());
  out_.points_.reserve(items.size());
  for (std::uint32_t i = 0; i < items.size(); ++i) {
    number_[items[i].vertex] = i;
    out_.nodes_.push_back(Node(items[i].vertex));
    out_.points_.push_back(vertices_.point(items[i].vertex));
  }
}

// Lines that came to lie on each other become one piece.
void EdgeCutter::MergeLines() {
  std::vector<Keyed> keyed;
  keyed.reserve(lines_.size());
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    keyed.push_back({std::uint64_t{number_[lines_[i].from]} << 32U | number_[lines_[i].to], i, lines_[i].net});
  }
  out_.pieceOfLine_.assign(lines_.size(), Arrangement::kNoPiece);
  ForEachGroup(keyed, [this](std::span<const Keyed> group) {
    const Winding net = NetOf(group);
    if (net.IsZero()) return;
    for (const Keyed& k : group) out_.pieceOfLine_[k.index] = static_cast<std::uint32_t>(out_.pieces_.size());
    const std::uint64_t ends = group[0].ends;
    out_.pieces_.push_back({static_cast<std::uint32_t>(ends >> 32U), static_cast<std::uint32_t>(ends), net});
  });
}

Arrangement::Arrangement(std::span<const DirectedEdge> edges, const Resolution& resolution, std::size_t secondOperand, Care care) {
  if (!edges.empty()) EdgeCutter(*this, edges, BoxOf(edges), resolution, secondOperand).Run(care);
}

Arrangement::Arrangement(std::span<const DirectedEdge> edges)
    : Arrangement(edges, Resolution::Coarse(BoxOf(edges)), edges.size(), Care::kThorough) {}

}  // namespace zbr
