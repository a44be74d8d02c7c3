// Idea: lines that run beside each other do so from an end of one of them to an end of one of them. So for each line the ends near
// it that are another shell's are looked for, and these tell the pairs. The lines are then gone through in the order of shells,
// each keeping what no line that stayed before it has in common with it. Difficulty: a line may lie within the contact of one that
// itself goes for a third which is farther away. Held against what stays, it stays as far as that: nothing goes without a line in
// its place.
#include "drawing/views/double_lines.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

#include "drawing/parallel.h"
#include "drawing/views/end_tree.h"

namespace zbr::drawing {
namespace {

// In scene units: lines this close are at one place, and the removal has seen to them if they are straight.
constexpr double kOnePlace = 1e-6;

class CommonLines {
 public:
  CommonLines(const DrawnSegments& drawn, const std::vector<DrawnSegment>& lines, unsigned threads)
      : drawn_(drawn), lines_(lines), threads_(threads), contact_(std::max(drawn.GetScene().contact, kOnePlace)) {}

  // What is left of the lines of which something goes: their places, and their parts by the order of these.
  void Find(std::vector<std::size_t>& places, std::vector<PartOfStretch>& parts) const {
    std::unordered_map<std::size_t, std::vector<Part>> left;
    const std::vector<Pair> pairs = Pairs();
    for (std::size_t k = 0; k < pairs.size();) {
      const std::size_t later = pairs[k].later;
      std::vector<Part> gone;
      for (; k < pairs.size() && pairs[k].later == later; ++k) AddCommon(later, pairs[k].earlier, left, gone);
      if (gone.empty()) continue;
      std::vector<Part>& rest = left[later];
      rest = Rest(gone);
      for (const Part& part : rest) parts.push_back({places.size(), part.from, part.to});
      places.push_back(later);
    }
  }

 private:
  struct Pair {
    std::uint32_t later, earlier;
    bool operator<(const Pair& o) const { return later != o.later ? later < o.later : earlier < o.earlier; }
    bool operator==(const Pair& o) const { return later == o.later && earlier == o.earlier; }
  };

  bool IsChord(const DrawnSegment& line) const { return line.segment.circle != kNoCircle && !drawn_.GetScene().view.perspective; }

  // Intersection lines have two shells and are found once for both.
  bool TakesPart(const DrawnSegment& line) const {
    return line.triangle < drawn_.GetScene().TriangleCount() && (contact_ > kOnePlace || IsChord(line));
  }

  EndTree Ends() const {
    std::vector<EndTree::End> ends;
    for (std::uint32_t i = 0; i < lines_.size(); ++i) {
      if (!TakesPart(lines_[i])) continue;
      const ZBR_SEG& g = lines_[i].segment.segment;
      for (const ZBR_PT& p : {g.s(), g.e()})
        ends.push_back({static_cast<float>(p.x()), static_cast<float>(p.y()), lines_[i].shell, i});
    }
    return EndTree(std::move(ends));
  }

  // By circle, of the chords that are drawn.
  std::vector<double> Heights() const {
    std::vector<double> heights(drawn_.KnownCircles() != nullptr ? drawn_.KnownCircles()->all.size() : 0);
    for (const DrawnSegment& line : lines_) {
      if (!TakesPart(line) || !IsChord(line)) continue;
      double& height = heights[line.segment.circle];
      height = std::max(height, drawn_.StretchOf(line).height);
    }
    return heights;
  }

  // Sorted. Where arcs have a part in common, an end of one chord is no farther from the other than either is from its arc.
  std::vector<Pair> Pairs() const {
    const EndTree ends = Ends();
    const std::vector<double> heights = Heights();
    std::vector<std::vector<Pair>> inRange(RangeCount(lines_.size()));
    RunInRanges(lines_.size(), threads_, [&](std::size_t range, std::size_t begin, std::size_t end) {
      for (std::size_t i = begin; i < end; ++i) {
        if (!TakesPart(lines_[i])) continue;
        const double height = IsChord(lines_[i]) ? heights[lines_[i].segment.circle] : 0.0;
        AddPairs(ends, static_cast<std::uint32_t>(i), height + contact_, inRange[range]);
      }
    });
    std::vector<Pair> pairs;
    for (const std::vector<Pair>& found : inRange) pairs.insert(pairs.end(), found.begin(), found.end());
    std::sort(pairs.begin(), pairs.end());
    pairs.erase(std::unique(pairs.begin(), pairs.end()), pairs.end());
    return pairs;
  }

  void AddPairs(const EndTree& ends, std::uint32_t i, double reach, std::vector<Pair>& pairs) const {
    const DrawnStretch line = drawn_.StretchOf(lines_[i]);
    ends.ForEachNear(line.segment, reach, lines_[i].shell, [&](std::uint32_t k) {
      if (lines_[k].edgeClass != lines_[i].edgeClass) return;
      const DrawnStretch other = drawn_.StretchOf(lines_[k]);
      const bool isLater = lines_[i].shell > lines_[k].shell;
      const Part part = isLater ? InCommon(line, other) : InCommon(other, line);
      if (part.from < part.to) pairs.push_back(isLater ? Pair{i, k} : Pair{k, i});
    });
  }

  Part InCommon(const DrawnStretch& later, const DrawnStretch& earlier) const {
    return PartInCommon(drawn_.GetScene(), drawn_.KnownCircles(), contact_, later, earlier);
  }

  void AddCommon(std::size_t later, std::size_t earlier, const std::unordered_map<std::size_t, std::vector<Part>>& left,
                 std::vector<Part>& gone) const {
    const DrawnStretch line = drawn_.StretchOf(lines_[later]), other = drawn_.StretchOf(lines_[earlier]);
    const auto add = [&](const DrawnStretch& stays) {
      const Part part = InCommon(line, stays);
      if (part.from < part.to) gone.push_back(part);
    };
    const auto parts = left.find(earlier);
    if (parts == left.end()) return add(other);
    for (const Part& part : parts->second) add(other.PartFrom(part.from, part.to));
  }

  static std::vector<Part> Rest(std::vector<Part>& gone) {
    std::sort(gone.begin(), gone.end(), [](const Part& a, const Part& b) { return a.from < b.from; });
    std::vector<Part> rest;
    double from = 0.0;
    for (const Part& part : gone) {
      if (part.from > from) rest.push_back({from, part.from});
      from = std::max(from, part.to);
    }
    if (from < 1.0) rest.push_back({from, 1.0});
    return rest;
  }

  const DrawnSegments& drawn_;
  const std::vector<DrawnSegment>& lines_;
  const unsigned threads_;
  const double contact_;
};

}  // namespace

void LeaveOutVisibleDoubles(const DrawnSegments& drawn, unsigned threads, std::vector<DrawnSegment>& visible) {
  if (drawn.GetScene().shells.size() < 2) return;
  std::vector<std::size_t> places;
  std::vector<PartOfStretch> parts;
  CommonLines(drawn, visible, threads).Find(places, parts);
  if (!places.empty()) drawn.KeepParts(places, parts, visible);
}

}  // namespace zbr::drawing
