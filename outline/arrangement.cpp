// Idea: put the vertices on a grid, on which the side of a point and the order along an edge are exact integers; cut the edges
// where they cross or pass vertices; move the crossings to grid nodes as well; and since that bends edges a little, look again at
// those that were cut, until nothing crosses any more. (Compare Hobby, "Practical segment intersection with finite precision
// output", 1999, whose hot pixels do it in one pass and with more effort.)
//
// An edge is led through every vertex that it passes within a reach: in the first round one and a half steps, more than
// rounding to the grid can move it, so what should meet but for the rounding errors of its coordinates, meets; later three quarters
// of a step, as far as a crossing can be moved from its edges. Without that, long edges that are nearly parallel would slide along
// each other, crossing anew one step farther in each round. Two or three rounds are the rule; the reach grows if they go on.
//
// Edges that share both ends are one line with a count from the start, so that the sides of triangles that were never told to be
// neighbours cancel before anything is searched. The first round joins all lines with all, later ones the lines just cut with all.
#include "outline/arrangement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <utility>

#include "core/box_tree.h"
#include "core/radix_sort.h"

namespace zbr {
namespace {

constexpr int kMaxRounds = 32;
constexpr std::size_t kManyParts = 6;  // of a line, from which sorting them in space pays

// How close to a vertex, in steps, an edge must pass to be led through it.
double ReachIn(int round) {
  return round == 0 ? 1.5 : std::ldexp(0.75, round / 8);
}

// An edge while it is cut. Lines cut from the same edge stand together, in its order.
struct Line {
  std::uint32_t from;
  std::uint32_t to;
  std::int32_t net;      // from `from` to `to`
  std::uint32_t origin;  // the line that it was cut from in the first place
};

struct Cut {
  std::uint32_t line;
  std::uint32_t vertex;
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
  std::vector<Keyed> scratch;
  RadixSort(keyed, scratch, [](const Keyed& k) { return k.ends; });
  for (std::size_t begin = 0; begin < keyed.size();) {
    std::size_t end = begin + 1;
    while (end < keyed.size() && keyed[end].ends == keyed[begin].ends) ++end;
    visit(std::span<const Keyed>(keyed).subspan(begin, end - begin));
    begin = end;
  }
}

std::int32_t NetOf(std::span<const Keyed> group) {
  std::int32_t net = 0;
  for (const Keyed& k : group) net += k.net;
  return net;
}

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
    for (round_ = 0; round_ < kMaxRounds; ++round_) {
      FindCuts();
      if (cuts_.empty()) break;
      ApplyCuts();
    }
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
  std::vector<std::uint32_t> InSpace(std::span<const std::uint32_t> lines) const;
  void SortLines();
  void FindCuts();
  void Cross(std::uint32_t i, std::uint32_t j);
  bool CutNear(std::uint32_t line, std::uint32_t vertex, std::int64_t side, double limit);
  void CutAtCrossing(std::uint32_t i, std::uint32_t j, const ZBR_PT& place);
  ZBR_PT TrueCrossing(std::uint32_t i, std::uint32_t j, const ZBR_PT& place) const;
  void ApplyCuts();
  void CutLine(const Line& line, std::span<Cut> cuts, std::vector<Line>& next);
  void NumberVertices();
  void MergeLines();

  Arrangement& out_;
  GridVertices vertices_;
  int round_ = 0;
  double reach_ = 0.0;
  std::vector<Line> lines_;
  std::vector<Line> origins_;
  std::vector<std::uint32_t> fresh_;  // what became of the lines cut in the last round
  std::size_t linesCut_ = 0;          // how many those were
  std::vector<Cut> cuts_;
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

// The lines in an order in which neighbours in the plane are near each other.
std::vector<std::uint32_t> EdgeCutter::InSpace(std::span<const std::uint32_t> lines) const {
  std::vector<ZBR_PT> centres;
  centres.reserve(lines.size());
  for (const std::uint32_t i : lines) centres.push_back((PointOn(Node(lines_[i].from)) + PointOn(Node(lines_[i].to))) / 2.0);
  std::vector<std::uint32_t> order = SpatialOrder(centres);
  for (std::uint32_t& i : order) i = lines[i];
  return order;
}

// Puts the lines themselves into that order; what is cut from them later stays together.
void EdgeCutter::SortLines() {
  std::vector<std::uint32_t> all(lines_.size());
  std::iota(all.begin(), all.end(), 0U);
  const std::vector<std::uint32_t> order = InSpace(all);
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

namespace {

// A hierarchy over some of the lines; its leaves are in the order of `members`.
template <class BoxOfLine>
BoxTree TreeOver(std::span<const std::uint32_t> members, BoxOfLine boxOfLine) {
  BoxTree tree;
  const std::span<Box> leaves = tree.StartLeaves(members.size());
  for (std::size_t i = 0; i < members.size(); ++i) leaves[i] = boxOfLine(members[i]);
  tree.BuildInner();
  return tree;
}

}  // namespace

void EdgeCutter::FindCuts() {
  cuts_.clear();
  reach_ = ReachIn(round_);
  std::vector<std::uint32_t> others;  // that have been joined with each other already
  if (round_ == 0) {
    linesCut_ = lines_.size();
    fresh_.resize(lines_.size());
    std::iota(fresh_.begin(), fresh_.end(), 0U);
  } else {
    others.reserve(lines_.size() - fresh_.size());
    for (std::uint32_t i = 0, k = 0; i < lines_.size(); ++i) {
      if (k < fresh_.size() && fresh_[k] == i) {
        ++k;
      } else {
        others.push_back(i);
      }
    }
  }
  // A row of many parts of one line is no good neighbourhood, but good for the memory's caches.
  if (fresh_.size() > kManyParts * linesCut_) fresh_ = InSpace(fresh_);
  const auto boxOfLine = [this](std::uint32_t i) {
    return BoxOfSegment(PointOn(Node(lines_[i].from)), PointOn(Node(lines_[i].to))).Widened(reach_ / 2.0);
  };
  const BoxTree fresh = TreeOver(fresh_, boxOfLine);
  BoxJoin::Run(fresh, fresh, [this](std::uint32_t i, std::span<const std::uint32_t> hits) {
    for (auto j = std::upper_bound(hits.begin(), hits.end(), i); j != hits.end(); ++j) Cross(fresh_[i], fresh_[*j]);
    return true;
  });
  BoxJoin::Run(fresh, TreeOver(others, boxOfLine), [&](std::uint32_t i, std::span<const std::uint32_t> hits) {
    for (const std::uint32_t j : hits) Cross(fresh_[i], others[j]);
    return true;
  });
}

// Cuts two lines where they meet: each at the ends of the other that lie on it, or, if there are none, both where they cross.
// (Lines led through an end of the other that cross elsewhere, too, are so flat that they do it again in the next round.)
void EdgeCutter::Cross(std::uint32_t i, std::uint32_t j) {
  const Line& a = lines_[i];
  const Line& b = lines_[j];
  const GridPoint p = Node(a.from);
  const GridPoint q = Node(a.to);
  const GridPoint r = Node(b.from);
  const GridPoint s = Node(b.to);
  const auto isBeside = [](std::int64_t u, std::int64_t v, double limit) {
    return static_cast<double>(std::min(u, v)) > limit || static_cast<double>(std::max(u, v)) < -limit;
  };
  const std::int64_t sideR = Side(p, q, r);
  const std::int64_t sideS = Side(p, q, s);
  const double limitA = reach_ * PointOn(p).Distance(PointOn(q));
  if (isBeside(sideR, sideS, limitA)) return;
  const std::int64_t sideP = Side(r, s, p);
  const std::int64_t sideQ = Side(r, s, q);
  const double limitB = reach_ * PointOn(r).Distance(PointOn(s));
  if (isBeside(sideP, sideQ, limitB)) return;
  bool met = CutNear(i, b.from, sideR, limitA);
  met |= CutNear(i, b.to, sideS, limitA);
  met |= CutNear(j, a.from, sideP, limitB);
  met |= CutNear(j, a.to, sideQ, limitB);
  if (met || sideR == 0 || sideS == 0 || sideP == 0 || sideQ == 0) return;
  if ((sideR > 0) == (sideS > 0) || (sideP > 0) == (sideQ > 0)) return;
  const double share = static_cast<double>(sideP) / (static_cast<double>(sideP) - static_cast<double>(sideQ));
  CutAtCrossing(i, j, PointOn(p) + (PointOn(q) - PointOn(p)) * share);
}

bool EdgeCutter::CutNear(std::uint32_t line, std::uint32_t vertex, std::int64_t side, double limit) {
  const Line& l = lines_[line];
  if (static_cast<double>(std::abs(side)) > limit || vertex == l.from || vertex == l.to) return false;
  const std::int64_t along = Along(Node(l.from), Node(l.to), Node(vertex));
  if (along <= 0 || along >= Along(Node(l.from), Node(l.to), Node(l.to))) return false;
  cuts_.push_back({line, vertex});
  return true;
}

void EdgeCutter::CutAtCrossing(std::uint32_t i, std::uint32_t j, const ZBR_PT& place) {
  const ZBR_PT point = TrueCrossing(i, j, place);
  // In the first round crossings at one place become one vertex, even across the border of two nodes.
  const std::uint32_t vertex = round_ == 0 ? vertices_.At(point) : vertices_.OnNode(GridVertices::NodeAt(place), point);
  for (const std::uint32_t line : {i, j}) {
    if (vertex != lines_[line].from && vertex != lines_[line].to) cuts_.push_back({line, vertex});
  }
}

// The crossing of the edges that the lines come from, as exact as doubles give it, if it is where the lines cross on the grid.
ZBR_PT EdgeCutter::TrueCrossing(std::uint32_t i, std::uint32_t j, const ZBR_PT& place) const {
  constexpr double kNear = 2.0;  // steps
  const auto [first, second] = std::minmax(lines_[i].origin, lines_[j].origin);
  const ZBR_PT& p = vertices_.point(origins_[first].from);
  const ZBR_PT& r = vertices_.point(origins_[second].from);
  const ZBR_PT d = vertices_.point(origins_[first].to) - p;
  const ZBR_PT e = vertices_.point(origins_[second].to) - r;
  const ZBR_PT point = p + d * ((r - p).OuterProduct(e) / d.OuterProduct(e));
  const ZBR_PT off = vertices_.ToGrid(point) - place;
  const bool isNear = std::fabs(off.x()) <= kNear && std::fabs(off.y()) <= kNear;  // false for NaN
  return isNear ? point : vertices_.FromGrid(place);
}

void EdgeCutter::ApplyCuts() {
  std::vector<Cut> scratch;
  RadixSort(cuts_, scratch, [](const Cut& c) { return c.line; });
  std::vector<Line> next;
  next.reserve(lines_.size() + cuts_.size());
  fresh_.clear();
  linesCut_ = 0;
  std::vector<std::uint32_t> begin(lines_.size() + 1);
  std::size_t k = 0;
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    begin[i] = static_cast<std::uint32_t>(next.size());
    const std::size_t firstCut = k;
    while (k < cuts_.size() && cuts_[k].line == i) ++k;
    CutLine(lines_[i], std::span(cuts_).subspan(firstCut, k - firstCut), next);
    linesCut_ += k > firstCut ? 1U : 0U;
    for (std::uint32_t made = begin[i]; k > firstCut && made < next.size(); ++made) fresh_.push_back(made);
  }
  begin[lines_.size()] = static_cast<std::uint32_t>(next.size());
  lines_.swap(next);
  for (std::uint32_t& line : out_.lineBegin_) line = begin[line];
}

// Appends the parts of the line between the cuts.
void EdgeCutter::CutLine(const Line& line, std::span<Cut> cuts, std::vector<Line>& next) {
  const auto along = [&](const Cut& c) { return std::pair(Along(Node(line.from), Node(line.to), Node(c.vertex)), c.vertex); };
  std::sort(cuts.begin(), cuts.end(), [&](const Cut& c, const Cut& d) { return along(c) < along(d); });
  std::uint32_t from = line.from;
  const auto goTo = [&](std::uint32_t to) {
    if (to == from) return;
    next.push_back(LineBetween(from, to, line.net, line.origin));
    from = to;
  };
  for (const Cut& c : cuts) goTo(c.vertex);
  goTo(line.to);
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
