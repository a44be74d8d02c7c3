// Cutting lines with one search.
//
// Idea: every vertex is an end of some line, so the pairs of lines whose boxes meet hold all that can come near: ends that the
// other line is to be led through, and crossings. Pairs that are clearly apart, both ends of one line on the same side of the
// other, are dropped; what is left is small. Lines are led through the vertices within reach first; that moves them by no more than
// the reach, so lines that cross then are still among the pairs, and only the parts of these are crossed. Not searched for: a third
// line through the cell of a crossing. It takes three edges within a step of the grid, and the sweep notices when pieces cross
// because of it.
//
// Boxes are searched first. Where they overlap all the time and hardly any lines come near each other, as in nested curves and
// slanted hatches, slabs are searched instead; what is found is put in the order in which boxes give it.
#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "arrangement/edge_cutter.h"
#include "core/cost.h"
#include "core/slab_search.h"

namespace zbr {
namespace {

constexpr std::uint32_t kLeafLines = 8;

// Beyond this distance, in widths of what is clear, no two lines are looked at for what they do to each other.
constexpr double kFar = 4.0;

}  // namespace

// Visits the pairs of lines whose boxes meet, each once, and some that just don't. Consecutive lines share a leaf of the hierarchy.
class EdgeCutter::PairSearch {
  // Of half the size; rounded outwards.
  struct NarrowBox {
    float xmin, ymin, xmax, ymax;

    explicit NarrowBox(const Box& box)
        : xmin(Below(box.xmin)), ymin(Below(box.ymin)), xmax(-Below(-box.xmax)), ymax(-Below(-box.ymax)) {}
    bool Meets(const NarrowBox& o) const { return xmin <= o.xmax && o.xmin <= xmax && ymin <= o.ymax && o.ymin <= ymax; }

    // A float no larger than the number.
    static float Below(double c) { return static_cast<float>(c - std::fabs(c) * std::numeric_limits<float>::epsilon()); }
  };

 public:
  explicit PairSearch(EdgeCutter& cutter) : cutter_(cutter) {
    const auto lines = static_cast<std::uint32_t>(cutter.lines_.size());
    boxes_.reserve(lines);
    const std::span<Box> leaves = tree_.StartLeaves((lines + kLeafLines - 1) / kLeafLines);
    for (std::uint32_t i = 0; i < lines; ++i) {
      const CutLine& line = cutter.lines_[i];
      const Box box =
          cutter.frame_.Around(cutter.Node(line.from).Point(), cutter.Node(line.to).Point()).Widened(cutter.reach_ / 2.0);
      boxes_.emplace_back(box);
      leaves[i / kLeafLines].Add(box);
    }
    tree_.BuildInner();
  }

  // False, and nothing is found, when there are too many hits for lines that don't lie on each other.
  bool Run(bool isLimited) {
    isLimited_ = isLimited;
    if (RunBoxes(true)) return true;
    if (!AreTooMany() && (Forget(), RunSlabs())) return SortAsBoxesDo(), true;
    if (!AreTooMany() && (Forget(), RunBoxes(false))) return true;
    return Forget(), false;
  }

 private:
  bool AreTooMany() const { return isLimited_ && cutter_.AreTooMany(cutter_.hits_.size()); }

  // False when there is a limit to what is looked at in vain, and that is reached.
  bool RunBoxes(bool isLimited) {
    looks_ = 0;
    const auto goesOn = [&] {
      if (AreTooMany()) return false;
      return !isLimited || looks_ <= kLooksPerLine * boxes_.size() + kLooksPerPair * cutter_.pairs_.size();
    };
    const auto skipNone = [](std::uint32_t, std::uint32_t) { return false; };
    const auto within = [&](std::uint32_t leaf) { return Within(leaf), true; };
    const auto across = [&](std::uint32_t a, std::uint32_t b) { return Across(a, b), goesOn(); };
    return BoxSelfJoin(tree_, skipNone, within, across).Run();
  }

  // False when there are as many pairs to be looked at as boxes would give.
  bool RunSlabs() {
    constexpr std::size_t kMostPerLine = 512;
    std::vector<SlabSegment> segments;
    segments.reserve(boxes_.size());
    for (const CutLine& line : cutter_.lines_) {
      const auto place = [&](std::uint32_t v) { return cutter_.frame_.Turned(cutter_.Node(v).Point()); };
      segments.push_back({place(line.from), place(line.to)});
    }
    looks_ = 0;
    const std::size_t most = kMostPerLine * boxes_.size();
    return SearchSlabs(segments, kFar * cutter_.Clear(), [&](std::uint32_t i, std::uint32_t j) {
      if (boxes_[i].Meets(boxes_[j])) cutter_.LookAtPair(i, j);
      return !AreTooMany() && ++looks_ <= most + kLooksPerPair * cutter_.pairs_.size();
    });
  }

  void Forget() {
    cutter_.hits_.clear();
    cutter_.pairs_.clear();
  }

  // Crossings make vertices in the order of the pairs. Boxes give those of pairs of nodes from the top of the hierarchy on.
  void SortAsBoxesDo() {
    const auto key = [](const LinePair& pair) {
      std::uint64_t k = 0;
      for (int digit = 28; digit >= 0; digit -= 2) {
        k = k << 4U | (pair.a / kLeafLines >> static_cast<unsigned>(digit) & 3U) << 2U |
            (pair.b / kLeafLines >> static_cast<unsigned>(digit) & 3U);
      }
      return k;
    };
    std::vector<std::pair<std::uint64_t, LinePair>> keyed;
    keyed.reserve(cutter_.pairs_.size());
    for (const LinePair& pair : cutter_.pairs_) keyed.emplace_back(key(pair), pair);
    std::sort(keyed.begin(), keyed.end(), [](const auto& x, const auto& y) {
      return x.first != y.first ? x.first < y.first : x.second.a != y.second.a ? x.second.a < y.second.a : x.second.b < y.second.b;
    });
    cutter_.pairs_.clear();
    for (const auto& [k, pair] : keyed) {
      if (cutter_.pairs_.empty() || cutter_.pairs_.back().a != pair.a || cutter_.pairs_.back().b != pair.b)
        cutter_.pairs_.push_back(pair);
    }
  }

  std::uint32_t LastOf(std::uint32_t leaf) const {
    return std::min((leaf + 1) * kLeafLines, static_cast<std::uint32_t>(boxes_.size()));
  }

  void Within(std::uint32_t leaf) {
    for (std::uint32_t i = leaf * kLeafLines; i < LastOf(leaf); ++i) {
      for (std::uint32_t j = i + 1; j < LastOf(leaf); ++j) {
        if (boxes_[i].Meets(boxes_[j])) cutter_.LookAtPair(i, j);
      }
    }
  }

  void Across(std::uint32_t a, std::uint32_t b) {
    const NarrowBox other(tree_.Level(0)[b]);
    ++looks_;
    for (std::uint32_t i = a * kLeafLines; i < LastOf(a); ++i) {
      if (!boxes_[i].Meets(other)) continue;
      for (std::uint32_t j = b * kLeafLines; j < LastOf(b); ++j) {
        if (!boxes_[i].Meets(boxes_[j])) continue;
        ++looks_;
        cutter_.LookAtPair(i, j);
      }
    }
  }

  // With more of them than this, pairs of leaves and of lines, slabs are as quick.
  static constexpr std::size_t kLooksPerLine = 64;
  static constexpr std::size_t kLooksPerPair = 8;

  EdgeCutter& cutter_;
  std::vector<NarrowBox> boxes_;
  BoxTree tree_;
  std::size_t looks_ = 0;
  bool isLimited_ = false;
};

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

bool EdgeCutter::SearchPairs(bool isLimited) {
  lengths_.clear();
  lengths_.reserve(lines_.size());
  for (const CutLine& line : lines_) lengths_.push_back(std::sqrt(Along(Node(line.from), Node(line.to), Node(line.to))));
  return lines_.empty() || PairSearch(*this).Run(isLimited);
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
