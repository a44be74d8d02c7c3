// The lines of an arrangement before they are cut: vertices for the ends of edges, edges between the same two vertices counted as
// one line, neighbours in the plane next to each other.
#include <algorithm>

#include "arrangement/edge_cutter.h"
#include "core/radix_sort.h"

namespace zbr {
namespace {

// A line or its place, to be sorted by both ends.
struct Keyed {
  std::uint64_t ends;
  std::uint32_t index;
  Winding net;
};

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

void EdgeCutter::MakeVertices() {
  const std::vector<ZBR_PT>& points = edges_.points();
  vertexOf_ = isFine_ ? vertices_.AddApart(points) : std::vector<std::uint32_t>(points.size(), kNoVertex);
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    for (const std::uint32_t point : {i, edges_.To(i)}) {
      if (vertexOf_[point] == kNoVertex) vertexOf_[point] = vertices_.At(points[point]);
    }
  }
  for (ChainLine& chain : chains_) {
    for (std::uint32_t* end : {&chain.from, &chain.to}) {
      if (vertexOf_[*end] == kNoVertex) vertexOf_[*end] = vertices_.At(points[*end]);
      *end = vertexOf_[*end];
    }
  }
}

// Which edges may have another one between the same vertices. Not those with an end that no other point shares, unless the edges
// there run both ways.
std::vector<bool> EdgeCutter::FindRepeated() const {
  const std::uint32_t count = edges_.size();
  std::vector<bool> isRepeated(count, !isFine_);
  if (!isFine_) return isRepeated;
  std::vector<std::uint8_t> shares(vertices_.size(), 0);  // 1: one point, 2: more
  for (const std::uint32_t v : vertexOf_) shares[v] = shares[v] == 0 ? 1 : 2;
  for (std::uint32_t i = 0; i < count; ++i) {
    const std::uint32_t next = edges_.To(i);
    if (shares[vertexOf_[i]] > 1 && shares[vertexOf_[next]] > 1) isRepeated[i] = true;
    if (next < count && vertexOf_[edges_.To(next)] == vertexOf_[i]) isRepeated[i] = isRepeated[next] = true;
  }
  return isRepeated;
}

void EdgeCutter::MakeLines(std::size_t secondOperand) {
  MakeVertices();
  const std::vector<bool> isRepeated = FindRepeated();
  const auto lineOf = [&](std::uint32_t i) {
    return LineBetween(vertexOf_[i], vertexOf_[edges_.To(i)], i < secondOperand ? Winding{{1, 0}} : Winding{{0, 1}}, 0);
  };
  const auto isPoint = [&](std::uint32_t i) { return vertexOf_[i] == vertexOf_[edges_.To(i)]; };
  out_.lineOfEdge_.assign(edges_.size(), Arrangement::kNoPiece);
  lines_.reserve(edges_.size());
  edgeOfLine_.reserve(edges_.size());
  std::vector<Keyed> keyed;
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
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
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
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
  frame_ = LeaningFrame(lines_, [this](const CutLine& line) { return Node(line.to).Point() - Node(line.from).Point(); });
  std::vector<std::uint32_t> begin;  // of each run of lines
  std::vector<ZBR_PT> centres;
  Box box;
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    const bool follows =
        i > 0 && isFine_ && edgeOfLine_[i] == edgeOfLine_[i - 1] + 1 && edges_.To(edgeOfLine_[i - 1]) == edgeOfLine_[i];
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

}  // namespace zbr
