// Snap rounding (Hobby, "Practical segment intersection with finite precision output", 1999; Guibas and Marimont, "Rounding
// arrangements dynamically", 1998): put the vertices on a grid; find all crossings of the edges between them; call the cell around
// the grid node of a vertex or a crossing hot; and lead every edge through the nodes of the hot cells that it passes. What results
// does not cross and passes no vertex: if a piece between two nodes passed a third, the edge, which is no farther from the piece
// than half a cell anywhere, would have passed that one's cell. That holds exactly, however many edges crowd together, because
// everything is exact: edges have integer ends, so sides are exact in 64 bits, and the cell of a crossing in 96.
//
// Before that, edges are led through the vertices that they pass within one and a half steps. That is more than putting both on the
// grid can have moved them apart; so what should meet but for the rounding errors of its coordinates, meets, and triangles with
// vertices on each other's edges leave no cracks.
//
// Edges that share both ends are one line with a count from the start, so that the sides of triangles that were never told to be
// neighbours cancel before anything is searched.
#include "arrangement/arrangement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "core/box_tree.h"
#include "core/radix_sort.h"

namespace zbr {
namespace {

// How close to a vertex, in steps, an edge must pass to be led through it in any case.
constexpr double kReach = 1.5;
// The same for an edge that may pass the vertex's cell: a little more than half a diagonal.
constexpr double kCellReach = 0.75;

// An edge while it is cut. Lines cut from the same edge stand together, in its order.
struct Line {
  std::uint32_t from;
  std::uint32_t to;
  std::int32_t net;      // from `from` to `to`
  std::uint32_t origin;  // the line that it was cut from in the first place
};

// A line or its place, to be sorted by both ends.
struct Keyed {
  std::uint64_t ends;
  std::uint32_t index;
  std::int32_t net;
};

Box BoxOf(std::span<const DirectedEdge> edges) {
  Box box;
  for (const DirectedEdge& e : edges) {
    box.Add(e.from);
    box.Add(e.to);
  }
  return box;
}

ZBR_PT PointOn(GridPoint p) {
  return ZBR_PT(p.x, p.y);
}

// Sorts by both ends and calls visit(group) for each run of equal ones.
template <class Visit>
void ForEachGroup(std::vector<Keyed>& keyed, Visit visit) {
  const auto ends = [](const Keyed& k) { return k.ends; };
  std::vector<Keyed> scratch;
  RadixSort(keyed, scratch, ends);
  ForEachRun(keyed, ends, visit);
}

std::int32_t NetOf(std::span<const Keyed> group) {
  std::int32_t net = 0;
  for (const Keyed& k : group) net += k.net;
  return net;
}

// The frame in which boxes around lines are joined: turned so that the longest lines run along its axes, since the box of a
// slanting line meets those of all lines beside it.
class LeaningFrame {
 public:
  LeaningFrame() = default;
  explicit LeaningFrame(std::span<const ZBR_PT> directions) {
    // Lengths by direction, a quarter turn being the same; each bin knows its longest line.
    constexpr int kBins = 32;
    double length[kBins] = {};
    ZBR_PT longest[kBins];
    for (const ZBR_PT& d : directions) {
      const ZBR_PT along = (d.x() > 0.0) == (d.y() > 0.0) ? d : ZBR_PT(-d.y(), d.x());
      const double x = std::fabs(along.x());
      const double y = std::fabs(along.y());
      const auto bin = static_cast<int>(kBins * (y / (x + y)) * (1.0 - 1e-9));
      length[bin] += d.Length();
      if (along.Length2() > longest[bin].Length2()) longest[bin] = ZBR_PT(x, y);
    }
    const auto best = std::max_element(length, length + kBins) - length;
    axis_ = longest[best] / std::max(longest[best].Length(), 1.0);
  }

  ZBR_PT Turned(const ZBR_PT& p) const {
    return ZBR_PT(axis_.x() * p.x() + axis_.y() * p.y(), axis_.x() * p.y() - axis_.y() * p.x());
  }
  // The box around a segment, with room for rounding.
  Box Around(const ZBR_PT& p, const ZBR_PT& q) const { return BoxOfSegment(Turned(p), Turned(q)).Widened(kRoom); }

 private:
  static constexpr double kRoom = 1e-3;  // steps; coordinates are at most 2^30 in size

  ZBR_PT axis_{1.0, 0.0};
};

}  // namespace

// The work of building an arrangement.
class EdgeCutter {
 public:
  EdgeCutter(Arrangement& out, std::span<const DirectedEdge> edges) : out_(out), vertices_(BoxOf(edges), edges.size() / 2 + 16) {
    out_.step_ = vertices_.step();
    MakeLines(edges);
    SortLines();
    origins_ = lines_;
    out_.lineBegin_.resize(lines_.size() + 1);
    for (std::uint32_t i = 0; i <= lines_.size(); ++i) out_.lineBegin_[i] = i;
  }

  void Run() {
    const bool anyBent = CutLines(0, kReach, [this](const Line& line, std::uint32_t v) { return IsWithinReach(line, v); });
    const std::uint32_t firstCrossing = vertices_.size();
    AddCrossings();
    // Lines that were not led through vertices above pass none of those, so only the crossings are left to be passed.
    CutLines(anyBent ? 0 : firstCrossing, kCellReach, [this](const Line& line, std::uint32_t v) { return PassesCell(line, v); });
    NumberVertices();
    MergeLines();
  }

 private:
  GridPoint Node(std::uint32_t vertex) const { return vertices_.node(vertex); }

  // A line between the two vertices, in the order of a sweep.
  Line LineBetween(std::uint32_t from, std::uint32_t to, std::int32_t net, std::uint32_t origin) const {
    return IsBefore(Node(from), Node(to)) ? Line{from, to, net, origin} : Line{to, from, -net, origin};
  }

  void MakeLines(std::span<const DirectedEdge> edges);
  void SortLines();
  bool IsWithinReach(const Line& line, std::uint32_t v) const;
  bool PassesCell(const Line& line, std::uint32_t v) const;
  BoxTree TreeOverLines(double margin) const;
  template <class IsHit>
  bool CutLines(std::uint32_t firstVertex, double margin, IsHit isHit);
  void CutLine(const Line& line, std::vector<std::uint32_t>& hits, std::vector<Line>& next) const;
  void AddCrossings();
  void Cross(const Line& a, const Line& b);
  ZBR_PT TrueCrossing(const Line& a, const Line& b, const ZBR_PT& place) const;
  void NumberVertices();
  void MergeLines();

  Arrangement& out_;
  GridVertices vertices_;
  LeaningFrame frame_;
  std::vector<Line> lines_;
  std::vector<Line> origins_;
  std::vector<std::uint32_t> number_;  // of a vertex in the order of a sweep
};

void EdgeCutter::MakeLines(std::span<const DirectedEdge> edges) {
  out_.lineOfEdge_.assign(edges.size(), Arrangement::kNoPiece);
  std::vector<Keyed> keyed;
  keyed.reserve(edges.size());
  for (std::uint32_t i = 0; i < edges.size(); ++i) {
    const std::uint32_t from = vertices_.At(edges[i].from);
    const std::uint32_t to = vertices_.At(edges[i].to);
    if (from == to) continue;
    const Line line = LineBetween(from, to, 1, 0);
    keyed.push_back({std::uint64_t{line.from} << 32U | line.to, i, line.net});
  }
  ForEachGroup(keyed, [this](std::span<const Keyed> group) {
    const std::int32_t net = NetOf(group);
    if (net == 0) return;
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
  for (const Line& line : lines_) {
    directions.push_back(PointOn(Node(line.to)) - PointOn(Node(line.from)));
    centres.push_back((PointOn(Node(line.from)) + PointOn(Node(line.to))) / 2.0);
  }
  frame_ = LeaningFrame(directions);
  const std::vector<std::uint32_t> order = SpatialOrder(centres);
  std::vector<Line> sorted(lines_.size());
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

bool EdgeCutter::IsWithinReach(const Line& line, std::uint32_t v) const {
  const GridPoint p = Node(line.from);
  const GridPoint q = Node(line.to);
  const std::int64_t along = Along(p, q, Node(v));
  const std::int64_t length2 = Along(p, q, q);
  if (along <= 0 || along >= length2) return false;
  return std::fabs(static_cast<double>(Side(p, q, Node(v)))) <= kReach * std::sqrt(static_cast<double>(length2));
}

// Whether the line meets the cell of the vertex: the square of one step around its node, with its lower and left sides, but without
// the others. Seen along x, along y and along the line the two must overlap. If the line only touches the cell, it does so in a
// corner, or along a side, and these belong to the cell or not.
bool EdgeCutter::PassesCell(const Line& line, std::uint32_t v) const {
  const GridPoint p = Node(line.from);
  const GridPoint q = Node(line.to);
  const GridPoint c = Node(v);
  if (c.x < p.x || c.x > q.x || c.y < std::min(p.y, q.y) || c.y > std::max(p.y, q.y)) return false;
  const std::int64_t dx = std::int64_t{q.x} - p.x;  // never negative
  const std::int64_t dy = std::int64_t{q.y} - p.y;
  const std::int64_t twiceSide = 2 * Side(p, q, c);
  const std::int64_t width = dx + std::abs(dy);
  if (std::abs(twiceSide) != width) return std::abs(twiceSide) < width;
  return twiceSide > 0 ? dy <= 0 : dx == 0;
}

BoxTree EdgeCutter::TreeOverLines(double margin) const {
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(lines_.size());
  for (std::size_t i = 0; i < lines_.size(); ++i) {
    leaves[i] = frame_.Around(PointOn(Node(lines_[i].from)), PointOn(Node(lines_[i].to))).Widened(margin);
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
  for (std::uint32_t v = firstVertex; v < vertices_.size(); ++v) places.push_back(frame_.Turned(PointOn(Node(v))));
  const std::vector<std::uint32_t> order = SpatialOrder(places);
  BoxTree groups;
  const std::span<Box> leaves = groups.StartLeaves((order.size() + kGroup - 1) / kGroup);
  for (std::size_t i = 0; i < order.size(); ++i) leaves[i / kGroup].Add(places[order[i]]);
  groups.BuildInner();

  std::vector<Line> next;
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
    const Line& line = lines_[i];
    hits.clear();
    for (const std::uint32_t group : near) {
      const std::size_t end = std::min<std::size_t>(order.size(), (group + 1) * std::size_t{kGroup});
      for (std::size_t k = group * std::size_t{kGroup}; k < end; ++k) {
        const std::uint32_t v = firstVertex + order[k];
        if (v != line.from && v != line.to && isHit(line, v)) hits.push_back(v);
      }
    }
    if (hits.empty()) return true;
    any = true;
    keepUpTo(i);
    begin.push_back(static_cast<std::uint32_t>(next.size()));
    CutLine(line, hits, next);
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
void EdgeCutter::CutLine(const Line& line, std::vector<std::uint32_t>& hits, std::vector<Line>& next) const {
  if (hits.size() > 1) {
    const auto along = [&](std::uint32_t v) { return std::pair(Along(Node(line.from), Node(line.to), Node(v)), v); };
    std::sort(hits.begin(), hits.end(), [&](std::uint32_t u, std::uint32_t v) { return along(u) < along(v); });
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

// The product of a factor of at most 2^31 in size and one from 0 to 2^62, as high * 2^32 + low.
struct WideProduct {
  std::int64_t high;
  std::int64_t low;  // from 0 below 2^32

  WideProduct(std::int64_t a, std::int64_t b) {
    const std::int64_t partial = a * (b & 0xffffffff);
    high = a * (b >> 32) + (partial >> 32);
    low = partial & 0xffffffff;
  }
  bool operator>=(const WideProduct& o) const { return high != o.high ? high > o.high : low >= o.low; }
};

// p + d * share / whole, with 0 < share < whole, rounded to the nearest integer, halves up.
std::int32_t RoundedPlace(std::int32_t p, std::int64_t d, std::int64_t share, std::int64_t whole) {
  constexpr double kSure = 1e-3;  // far more than the error of the computation in doubles
  const double place = p + static_cast<double>(d) * (static_cast<double>(share) / static_cast<double>(whole)) + 0.5;
  const double border = std::nearbyint(place);
  if (std::fabs(place - border) > kSure) return static_cast<std::int32_t>(std::floor(place));
  const auto k = static_cast<std::int64_t>(border);
  const bool reaches = WideProduct(2 * d, share) >= WideProduct(2 * (k - p) - 1, whole);
  return static_cast<std::int32_t>(reaches ? k : k - 1);
}

}  // namespace

// Ends that lie on the other line are vertices already, so only proper crossings count.
void EdgeCutter::Cross(const Line& a, const Line& b) {
  const GridPoint p = Node(a.from);
  const GridPoint q = Node(a.to);
  const GridPoint r = Node(b.from);
  const GridPoint s = Node(b.to);
  const auto areApart = [](std::int64_t u, std::int64_t v) { return (u < 0 && v > 0) || (u > 0 && v < 0); };
  if (!areApart(Side(p, q, r), Side(p, q, s))) return;
  const std::int64_t sideP = Side(r, s, p);
  const std::int64_t sideQ = Side(r, s, q);
  if (!areApart(sideP, sideQ)) return;
  const std::int64_t share = std::abs(sideP);
  const std::int64_t whole = share + std::abs(sideQ);
  const GridPoint node = {RoundedPlace(p.x, std::int64_t{q.x} - p.x, share, whole),
                          RoundedPlace(p.y, std::int64_t{q.y} - p.y, share, whole)};
  const double t = static_cast<double>(share) / static_cast<double>(whole);
  vertices_.AddOnNode(node, TrueCrossing(a, b, PointOn(p) + (PointOn(q) - PointOn(p)) * t));
}

// The crossing of the edges that the lines come from, as exact as doubles give it, if it is where the lines cross on the grid.
ZBR_PT EdgeCutter::TrueCrossing(const Line& a, const Line& b, const ZBR_PT& place) const {
  constexpr double kNear = 2.0;  // steps
  const Line& first = origins_[std::min(a.origin, b.origin)];
  const Line& second = origins_[std::max(a.origin, b.origin)];
  const ZBR_PT& p = vertices_.point(first.from);
  const ZBR_PT& r = vertices_.point(second.from);
  const ZBR_PT d = vertices_.point(first.to) - p;
  const ZBR_PT e = vertices_.point(second.to) - r;
  const ZBR_PT point = p + d * ((r - p).OuterProduct(e) / d.OuterProduct(e));
  const ZBR_PT off = vertices_.ToGrid(point) - place;
  const bool isNear = std::fabs(off.x()) <= kNear && std::fabs(off.y()) <= kNear;  // false for NaN
  return isNear ? point : vertices_.FromGrid(place);
}

void EdgeCutter::NumberVertices() {
  constexpr std::uint32_t kBias = std::uint32_t{1} << 31U;
  struct Item {
    std::uint64_t place;
    std::uint32_t vertex;
  };
  std::vector<Item> items(vertices_.size());
  std::vector<Item> scratch;
  for (std::uint32_t v = 0; v < items.size(); ++v) {
    const GridPoint node = Node(v);
    const auto key = [](std::int32_t c) { return std::uint64_t{static_cast<std::uint32_t>(c) + kBias}; };
    items[v] = {key(node.x) << 32U | key(node.y), v};
  }
  RadixSort(items, scratch, [](const Item& item) { return item.place; });
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
    const std::int32_t net = NetOf(group);
    if (net == 0) return;
    for (const Keyed& k : group) out_.pieceOfLine_[k.index] = static_cast<std::uint32_t>(out_.pieces_.size());
    const std::uint64_t ends = group[0].ends;
    out_.pieces_.push_back({static_cast<std::uint32_t>(ends >> 32U), static_cast<std::uint32_t>(ends), net});
  });
}

Arrangement::Arrangement(std::span<const DirectedEdge> edges) {
  if (!edges.empty()) EdgeCutter(*this, edges).Run();
}

}  // namespace zbr
