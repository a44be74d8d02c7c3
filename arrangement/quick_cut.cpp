// Cutting lines with one search.
//
// Idea: every vertex is an end of some line, so the pairs of lines whose boxes meet hold all that can come near: ends that the
// other line is to be led through, and crossings. Pairs that are clearly apart, both ends of one line on the same side of the
// other, are dropped; what is left is small. Lines are led through the vertices within reach first; that moves them by no more than
// the reach, so lines that cross then are still among the pairs, and only the parts of these are crossed. Not searched for: a third
// line through the cell of a crossing. It takes three edges within a step of the grid, and the sweep notices when pieces cross
// because of it.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "arrangement/edge_cutter.h"
#include "core/cost.h"

namespace zbr {
void EdgeCutter::NoteReached(std::uint32_t line, std::uint32_t vertex, double side) {
  if (std::fabs(side) > reach_ * lengths_[line]) return;
  const GridPoint p = Node(lines_[line].from);
  const GridPoint q = Node(lines_[line].to);
  const double along = Along(p, q, Node(vertex));
  if (along > 0.0 && along < lengths_[line] * lengths_[line]) hits_.push_back({line, vertex});
}

void EdgeCutter::LookAtPair(std::uint32_t i, std::uint32_t j) {
  ZBR_COUNT(pairs, 1);
  const CutLine& a = lines_[i];
  const CutLine& b = lines_[j];
  const GridPoint p = Node(a.from);
  const GridPoint q = Node(a.to);
  const GridPoint r = Node(b.from);
  const GridPoint s = Node(b.to);
  const double clear = Clear();
  const auto areClear = [](double u, double v, double least) { return (u > least && v > least) || (u < -least && v < -least); };
  const double sideR = SideProducts(p, q, r).Value();
  const double sideS = SideProducts(p, q, s).Value();
  if (areClear(sideR, sideS, clear * lengths_[i])) return;
  const double sideP = SideProducts(r, s, p).Value();
  const double sideQ = SideProducts(r, s, q).Value();
  if (areClear(sideP, sideQ, clear * lengths_[j])) return;
  const bool share = a.from == b.from || a.from == b.to || a.to == b.from || a.to == b.to;
  const std::size_t before = hits_.size();
  if (b.from != a.from && b.from != a.to) NoteReached(i, b.from, sideR);
  if (b.to != a.from && b.to != a.to) NoteReached(i, b.to, sideS);
  if (a.from != b.from && a.from != b.to) NoteReached(j, a.from, sideP);
  if (a.to != b.from && a.to != b.to) NoteReached(j, a.to, sideQ);
  // Two lines from one vertex don't cross, unless they run so close together that being led through others may make them.
  if (!share || hits_.size() != before ||
      std::min(std::fabs(sideR + sideS), std::fabs(sideP + sideQ)) <= clear * std::max(lengths_[i], lengths_[j]))
    pairs_.push_back({i, j});
}

// Cuts every line at its hits. begin[i] becomes the first part of line i; there is one entry more than there are lines.
void EdgeCutter::CutAt(std::vector<Hit>& hits, std::vector<std::uint32_t>& begin) {
  std::sort(hits.begin(), hits.end(),
            [](const Hit& a, const Hit& b) { return a.line != b.line ? a.line < b.line : a.vertex < b.vertex; });
  const auto same = [](const Hit& a, const Hit& b) { return a.line == b.line && a.vertex == b.vertex; };
  hits.erase(std::unique(hits.begin(), hits.end(), same), hits.end());
  if (hits.empty()) {
    begin.resize(lines_.size() + 1);
    std::iota(begin.begin(), begin.end(), 0U);
    return;
  }
  std::vector<CutLine> next;
  next.reserve(lines_.size() + hits.size());
  begin.clear();
  begin.reserve(lines_.size() + 1);
  std::vector<std::uint32_t> vertices;
  auto hit = hits.begin();
  for (std::uint32_t i = 0; i < lines_.size(); ++i) {
    begin.push_back(static_cast<std::uint32_t>(next.size()));
    vertices.clear();
    for (; hit != hits.end() && hit->line == i; ++hit) vertices.push_back(hit->vertex);
    if (vertices.empty()) {
      next.push_back(lines_[i]);
    } else {
      AppendParts(lines_[i], vertices, next);
    }
  }
  begin.push_back(static_cast<std::uint32_t>(next.size()));
  if (origins_.empty()) origins_.swap(lines_);
  lines_.swap(next);
  for (std::uint32_t& line : out_.lineBegin_) line = begin[line];
}

// The parts of one line, in the order along it. Those beside other lines are asked for, which mostly follow each other: so the
// search goes on from the last answer.
class EdgeCutter::PartsOfLine {
 public:
  PartsOfLine(const EdgeCutter& cutter, std::uint32_t first, std::uint32_t last)
      : cutter_(cutter), first_(first), last_(last), beside_{first, last} {
    if (AreFew()) return;
    // The parts are turned one by one to run as a sweep does; together they run from the first one's end that no other shares.
    const auto shares = [&](std::uint32_t v, const CutLine& line) { return line.from == v || line.to == v; };
    const std::vector<CutLine>& lines = cutter.lines_;
    p_ = cutter.Node(shares(lines[first].to, lines[first + 1]) ? lines[first].from : lines[first].to);
    q_ = cutter.Node(shares(lines[last - 1].to, lines[last - 2]) ? lines[last - 1].from : lines[last - 1].to);
    room_ = (2.0 * cutter.reach_ + 2.0) * std::sqrt(Along(p_, q_, q_));
    beside_.b = first;
  }

  // Those that lie beside the other line or near it, as [a, b).
  LinePair Beside(const CutLine& other) {
    if (AreFew()) return beside_;
    const double ends[] = {Along(p_, q_, cutter_.Node(other.from)), Along(p_, q_, cutter_.Node(other.to))};
    const double least = std::min(ends[0], ends[1]) - room_;
    const double most = std::max(ends[0], ends[1]) + room_;
    while (beside_.a > first_ && Farthest(beside_.a - 1) >= least) --beside_.a;
    while (beside_.a < last_ && Farthest(beside_.a) < least) ++beside_.a;
    beside_.b = std::max(beside_.a, beside_.b);
    while (beside_.b > beside_.a && Nearest(beside_.b - 1) > most) --beside_.b;
    while (beside_.b < last_ && Nearest(beside_.b) <= most) ++beside_.b;
    return beside_;
  }

 private:
  bool AreFew() const {
    constexpr std::uint32_t kFew = 4;
    return last_ - first_ <= kFew;
  }
  double Farthest(std::uint32_t part) const {
    const CutLine& line = cutter_.lines_[part];
    return std::max(Along(p_, q_, cutter_.Node(line.from)), Along(p_, q_, cutter_.Node(line.to)));
  }
  double Nearest(std::uint32_t part) const {
    const CutLine& line = cutter_.lines_[part];
    return std::min(Along(p_, q_, cutter_.Node(line.from)), Along(p_, q_, cutter_.Node(line.to)));
  }

  const EdgeCutter& cutter_;
  std::uint32_t first_;
  std::uint32_t last_;
  LinePair beside_;  // the last answer
  GridPoint p_{};
  GridPoint q_{};
  double room_ = 0.0;
};

void EdgeCutter::CrossParts(const LinePair& pair, const std::vector<std::uint32_t>& begin) {
  const bool areWhole = begin[pair.a] + 1 == begin[pair.a + 1] && begin[pair.b] + 1 == begin[pair.b + 1];
  PartsOfLine ofA(*this, begin[pair.a], begin[pair.a + 1]);
  PartsOfLine ofB(*this, begin[pair.b], begin[pair.b + 1]);
  const LinePair as = areWhole ? LinePair{begin[pair.a], begin[pair.a + 1]} : ofA.Beside(Origin(pair.b));
  for (std::uint32_t i = as.a; i < as.b; ++i) {
    const LinePair bs = ofB.Beside(lines_[i]);
    for (std::uint32_t j = bs.a; j < bs.b; ++j) CrossPair(i, j);
  }
}

// Notes the hits of two lines at their crossing.
void EdgeCutter::CrossPair(std::uint32_t i, std::uint32_t j) {
  ZBR_COUNT(pairs, 1);
  const CutLine& a = lines_[i];
  const CutLine& b = lines_[j];
  if (a.from == b.from || a.from == b.to || a.to == b.from || a.to == b.to) return;
  const std::uint32_t vertex = Cross(a, b);
  if (vertex == kNoVertex) return;
  if (vertex != a.from && vertex != a.to) hits_.push_back({i, vertex});
  if (vertex != b.from && vertex != b.to) hits_.push_back({j, vertex});
}

void EdgeCutter::QuickCut() {
  if (!SearchPairs(true)) {
    SplitIntoStrands();
    SearchPairs(false);
  }
  FreeLarge(lengths_);
  std::vector<std::uint32_t> begin;
  CutAt(hits_, begin);
  hits_.clear();
  if (AreCrowded()) {
    CrossCrowdedParts();
  } else {
    for (const LinePair& pair : pairs_) CrossParts(pair, begin);
  }
  CutAt(hits_, begin);
}

}  // namespace zbr
