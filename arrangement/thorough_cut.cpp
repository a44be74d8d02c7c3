// Cutting lines with a search for every cell that they pass.
//
// Idea: lines are led through the vertices within reach; then all crossings become vertices, and every line is searched for the
// vertices whose cells it passes. So no piece passes a vertex, whatever crowds together.
#include <algorithm>
#include <cmath>

#include "arrangement/edge_cutter.h"
#include "core/cost.h"

namespace zbr {
namespace {

// Where an edge may pass the cell of a vertex, in steps: a little more than half a diagonal.
constexpr double kCellReach = 0.75;

}  // namespace

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

// What is left of the lines while they are cut one after the other.
class EdgeCutter::CutInOrder {
 public:
  explicit CutInOrder(const EdgeCutter& cutter, std::size_t expected) : cutter_(cutter) {
    next_.reserve(cutter.lines_.size() + expected);
    begin_.reserve(cutter.lines_.size() + 1);
  }

  // Cuts a line, none of those before it that were named already. `hits` may have repeats; they are used up.
  void Cut(std::uint32_t line, std::vector<std::uint32_t>& hits) {
    if (hits.empty()) return;
    KeepUpTo(line);
    begin_.push_back(static_cast<std::uint32_t>(next_.size()));
    std::sort(hits.begin(), hits.end());
    hits.erase(std::unique(hits.begin(), hits.end()), hits.end());
    cutter_.AppendParts(cutter_.lines_[line], hits, next_);
    hits.clear();
  }

  // Whether anything was cut; then the lines, and where the parts of each begin, are replaced.
  bool Finish(std::vector<CutLine>& lines, std::vector<std::uint32_t>& lineBegin) {
    if (begin_.empty()) return false;
    KeepUpTo(lines.size());
    begin_.push_back(static_cast<std::uint32_t>(next_.size()));
    lines.swap(next_);
    for (std::uint32_t& first : lineBegin) first = begin_[first];
    return true;
  }

 private:
  void KeepUpTo(std::size_t line) {
    while (begin_.size() < line) {
      next_.push_back(cutter_.lines_[begin_.size()]);
      begin_.push_back(static_cast<std::uint32_t>(next_.size()) - 1);
    }
  }

  const EdgeCutter& cutter_;
  std::vector<CutLine> next_;
  std::vector<std::uint32_t> begin_;
};

// Cuts every line at those vertices, from the given one on, that isHit says. With a limit to them, kTooMany tells that nothing was
// cut.
template <class IsHit>
EdgeCutter::Cuts EdgeCutter::CutLines(std::uint32_t firstVertex, double margin, bool isLimited, IsHit isHit) {
  std::vector<ZBR_PT> places;
  places.reserve(vertices_.size() - firstVertex);
  for (std::uint32_t v = firstVertex; v < vertices_.size(); ++v) places.push_back(frame_.Turned(Node(v).Point()));
  const PlaceGroups groups(places);
  CutInOrder cut(*this, places.size());
  std::vector<std::uint32_t> hits;  // of the line in work
  std::size_t count = 0;            // of all lines
  std::uint32_t line = 0;
  const std::uint32_t spans = SpansFor(places.size());
  BoxJoin::Run(TreeOverLines(margin, spans), groups.tree, [&](std::uint32_t leaf, std::span<const std::uint32_t> near) {
    if (leaf / spans != line) cut.Cut(line, hits);
    line = leaf / spans;
    for (const std::uint32_t group : near) {
      ZBR_COUNT(pairs, groups.Group(group).size());
      for (const std::uint32_t place : groups.Group(group)) {
        const std::uint32_t v = firstVertex + place;
        if (v == lines_[line].from || v == lines_[line].to || !isHit(lines_[line], v)) continue;
        hits.push_back(v);
        ++count;
      }
    }
    return !isLimited || !AreTooMany(count);
  });
  if (isLimited && AreTooMany(count)) return Cuts::kTooMany;
  cut.Cut(line, hits);
  return cut.Finish(lines_, out_.lineBegin_) ? Cuts::kSome : Cuts::kNone;
}

// Makes a vertex of every crossing.
void EdgeCutter::AddCrossings() {
  const bool areCrowded = AreCrowded();
  std::vector<CutLine> all;
  if (areCrowded) {
    all = lines_;
    DropRepeatedParts();
  }
  const BoxTree tree = TreeOverLines(0.0, 1);
  BoxJoin::Run(tree, tree, [this](std::uint32_t i, std::span<const std::uint32_t> hits) {
    for (auto j = std::upper_bound(hits.begin(), hits.end(), i); j != hits.end(); ++j) {
      ZBR_COUNT(pairs, 1);
      Cross(lines_[i], lines_[*j]);
    }
    return true;
  });
  if (areCrowded) lines_.swap(all);
}

void EdgeCutter::ThoroughCut() {
  const auto isWithinReach = [this](const CutLine& line, std::uint32_t v) { return IsWithinReach(line, v); };
  origins_ = lines_;
  Cuts bent = CutLines(0, reach_, isFine_, isWithinReach);
  if (bent == Cuts::kTooMany) {
    SplitIntoStrands();
    origins_ = lines_;
    bent = CutLines(0, reach_, false, isWithinReach);
  }
  const std::uint32_t firstCrossing = vertices_.size();
  AddCrossings();
  // Lines that were not led through vertices above pass none of those, so only the crossings are left to be passed.
  CutLines(bent == Cuts::kSome ? 0 : firstCrossing, kCellReach, false,
           [this](const CutLine& line, std::uint32_t v) { return PassesCell(line, v); });
}

}  // namespace zbr
