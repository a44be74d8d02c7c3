// Idea: lines that run beside each other do so from an end of one of them to an end of one of them. So for each line the ends near
// it that are another shell's are looked for, and these tell the pairs. The lines are gone through in order, those of the heavier
// classes first, of these the chords of rims of which more is drawn, then the earlier shells': each keeps what no line that stayed
// before it has in common with it.
// Difficulty: a line may lie within the contact of one that itself goes for a third which is farther away. Held against what stays,
// it stays as far as that: nothing goes without a line in its place. Chords of two rims in one place cross over and over: the order
// is that of the rims, as both would be left in pieces else. Many bodies in one place have pairs in the square of their number. A
// line that goes as a whole is held against nothing, and pairs are kept for a block of lines at a time.
#include "drawing/views/double_lines.h"

#include <zbr-drawing/threads.h>

#include <algorithm>
#include <span>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "drawing/views/drawn_rims.h"
#include "drawing/views/end_tree.h"

namespace zbr::drawing {
namespace {

// Of lines at one place the first stays: what is an edge on its own account before what only the view makes one. Others have
// nothing in common with lines of another class.
enum Weight : std::uint8_t { kCreases, kBorders, kJunctions, kSilhouettes, kTangents, kByThemselves };

Weight WeightOf(std::uint8_t classPlace) {
  switch (kDrawnClasses[classPlace]) {
    case EdgeClass::kCrease:
      return kCreases;
    case EdgeClass::kBorder:
      return kBorders;
    case EdgeClass::kJunction:
      return kJunctions;
    case EdgeClass::kSilhouette:
      return kSilhouettes;
    case EdgeClass::kTangent:
      return kTangents;
    default:
      return kByThemselves;
  }
}

class CommonLines {
 public:
  CommonLines(const DrawnSegments& drawn, const std::vector<DrawnSegment>& lines, unsigned threads)
      : drawn_(drawn),
        lines_(lines),
        threads_(threads),
        contact_(std::max(drawn.GetScene().contact, kSceneTolerance)),
        rims_(RankRims(drawn, contact_, lines)),
        order_(Order()),
        ends_(Ends()),
        heights_(Heights()),
        isCrowded_(Crowded()),
        isGone_(lines.size()) {}

  // What is left of the lines of which something goes: their places, and their parts by the order of these.
  void Find(std::vector<std::size_t>& places, std::vector<PartOfStretch>& parts) {
    std::size_t size = kFewLines;
    for (std::size_t at = 0; at < order_.size();) {
      std::vector<std::uint32_t> block;
      for (; at < order_.size() && block.size() < size; ++at) {
        if (!isGone_[order_[at]]) block.push_back(order_[at]);
      }
      const std::size_t count = Settle(block);
      size = std::clamp(count > kManyHits ? size / 2 : 2 * size, kFewLines, kManyLines);
    }
    for (std::size_t i = 0; i < lines_.size(); ++i) {
      const auto left = left_.find(static_cast<std::uint32_t>(i));
      if (left == left_.end() && !isGone_[i]) continue;
      if (left != left_.end()) {
        for (const Part& part : left->second) parts.push_back({places.size(), part.from, part.to});
      }
      places.push_back(i);
    }
  }

 private:
  // Of a block; fewer where lines have so many neighbours that these would take more room than the drawing.
  static constexpr std::size_t kFewLines = 64, kManyLines = 32768, kManyHits = 400000;
  static constexpr std::size_t kSlice = 256;  // of a block, for a thread

  // The later one of two lines has the part in common with the earlier one.
  struct Hit {
    std::uint32_t line, other;
    Part part;
  };

  bool IsChord(const DrawnSegment& line) const { return line.segment.circle != kNoCircle && !drawn_.GetScene().view.perspective; }

  std::uint32_t RimOf(std::uint32_t i) const { return rims_.empty() ? kNoRim : rims_[i]; }

  bool IsBefore(std::uint32_t i, std::uint32_t k) const {
    return std::tuple(WeightOf(lines_[i].edgeClass), RimOf(i), i) < std::tuple(WeightOf(lines_[k].edgeClass), RimOf(k), k);
  }

  bool AreComparable(std::uint32_t i, std::uint32_t k) const {
    return lines_[i].edgeClass == lines_[k].edgeClass ||
           (WeightOf(lines_[i].edgeClass) != kByThemselves && WeightOf(lines_[k].edgeClass) != kByThemselves);
  }

  // Intersection lines are found once for both of their shells.
  std::vector<std::uint32_t> Order() const {
    std::vector<std::uint32_t> inClass[kByThemselves + 1], chords[kByThemselves + 1];
    for (std::uint32_t i = 0; i < lines_.size(); ++i) {
      if (!drawn_.IsOfOneShell(lines_[i])) continue;
      (RimOf(i) != kNoRim ? chords : inClass)[WeightOf(lines_[i].edgeClass)].push_back(i);
    }
    std::vector<std::uint32_t> order;
    for (std::size_t weight = 0; weight <= kByThemselves; ++weight) {
      std::vector<std::uint32_t>& ofRims = chords[weight];
      std::stable_sort(ofRims.begin(), ofRims.end(), [&](std::uint32_t i, std::uint32_t k) { return rims_[i] < rims_[k]; });
      order.insert(order.end(), ofRims.begin(), ofRims.end());
      order.insert(order.end(), inClass[weight].begin(), inClass[weight].end());
    }
    return order;
  }

  // By shell, as the lines are.
  EndTree Ends() const {
    std::vector<EndTree::End> ends;
    ends.reserve(2 * order_.size());
    for (std::uint32_t i = 0; i < lines_.size(); ++i) {
      if (!drawn_.IsOfOneShell(lines_[i])) continue;
      const ZBR_SEG& g = lines_[i].segment.segment;
      for (const ZBR_PT& p : {g.s(), g.e()}) ends.push_back(EndTree::End::At(p, lines_[i].shell, i));
    }
    return EndTree(std::move(ends), threads_);
  }

  // Shells that stand apart have nothing in common with others but where it is the others that stand around them.
  std::vector<bool> Crowded() const {
    const double height = heights_.empty() ? 0.0 : *std::max_element(heights_.begin(), heights_.end());
    std::vector<bool> isCrowded(drawn_.ShellCount());
    for (const std::uint32_t shell : ends_.CrowdedShells(height + contact_, threads_)) isCrowded[shell] = true;
    return isCrowded;
  }

  // By circle, of the chords that are drawn.
  std::vector<double> Heights() const {
    std::vector<double> heights(drawn_.KnownCircles() != nullptr ? drawn_.KnownCircles()->all.size() : 0);
    for (const std::uint32_t i : order_) {
      if (!IsChord(lines_[i])) continue;
      double& height = heights[lines_[i].segment.circle];
      height = std::max(height, drawn_.StretchOf(lines_[i]).height);
    }
    return heights;
  }

  // Returns how many hits there were.
  std::size_t Settle(const std::vector<std::uint32_t>& block) {
    std::vector<std::vector<Hit>> found((block.size() + kSlice - 1) / kSlice);
    RunParallel(found.size(), threads_, [&](std::size_t slice) {
      std::vector<std::uint32_t> near;
      const std::size_t end = std::min((slice + 1) * kSlice, block.size());
      for (std::size_t k = slice * kSlice; k < end; ++k) {
        if (isCrowded_[lines_[block[k]].shell]) AddHits(block[k], near, found[slice]);
      }
    });
    std::size_t count = 0;
    for (std::size_t slice = 0; slice < found.size(); ++slice) {
      const std::vector<Hit>& hits = found[slice];
      count += hits.size();
      const Hit *hit = hits.data(), *const end = hit + hits.size();
      for (std::size_t k = slice * kSlice; k < block.size() && k < (slice + 1) * kSlice; ++k) {
        const Hit* const begin = hit;
        while (hit != end && hit->line == block[k]) ++hit;
        Settle(block[k], {begin, hit});
      }
    }
    return count;
  }

  // Where arcs have a part in common, an end of one chord is no farther from the other than either is from its arc.
  void AddHits(std::uint32_t i, std::vector<std::uint32_t>& near, std::vector<Hit>& hits) const {
    const double height = IsChord(lines_[i]) ? heights_[lines_[i].segment.circle] : 0.0;
    near.clear();
    ends_.ForEachNear(lines_[i].segment.segment, height + contact_, lines_[i].shell, [&](std::uint32_t k) {
      if (!isGone_[k] && AreComparable(i, k)) near.push_back(k);
    });
    if (near.empty()) return;
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());
    const DrawnStretch line = drawn_.StretchOf(lines_[i]);
    for (const std::uint32_t k : near) {
      const DrawnStretch other = drawn_.StretchOf(lines_[k]);
      const Part part = IsBefore(i, k) ? InCommon(other, line) : InCommon(line, other);
      if (part.from < part.to) hits.push_back({i, k, part});
    }
  }

  Part InCommon(const DrawnStretch& later, const DrawnStretch& earlier) const {
    return PartInCommon(drawn_.GetScene(), drawn_.KnownCircles(), contact_, later, earlier);
  }

  // What is left of a line, when all before it are settled; then what of it the later ones have in common with it.
  void Settle(std::uint32_t i, std::span<const Hit> hits) {
    if (isGone_[i]) return;
    std::vector<Part> gone;
    if (const auto known = gone_.find(i); known != gone_.end()) {
      gone = std::move(known->second);
      gone_.erase(known);
    }
    for (const Hit& hit : hits) {
      if (IsBefore(hit.other, i)) ForEachInCommon(i, hit.other, hit.part, [&](const Part& part) { gone.push_back(part); });
    }
    if (!gone.empty()) {
      std::vector<Part> rest = Rest(gone);
      isGone_[i] = rest.empty();
      if (isGone_[i]) return;
      left_[i] = std::move(rest);
    }
    for (const Hit& hit : hits) {
      if (IsBefore(i, hit.other)) ForEachInCommon(hit.other, i, hit.part, [&](const Part& part) { TakeFrom(hit.other, part); });
    }
  }

  // The parts that a line has in common with what is left of an earlier one, with which it would have `whole` in common.
  template <class Use>
  void ForEachInCommon(std::uint32_t later, std::uint32_t earlier, const Part& whole, const Use& use) const {
    if (isGone_[later] || isGone_[earlier]) return;
    const auto left = left_.find(earlier);
    if (left == left_.end()) return use(whole);
    const DrawnStretch line = drawn_.StretchOf(lines_[later]), other = drawn_.StretchOf(lines_[earlier]);
    for (const Part& stays : left->second) {
      const Part part = InCommon(line, other.PartFrom(stays.from, stays.to));
      if (part.from < part.to) use(part);
    }
  }

  void TakeFrom(std::uint32_t line, const Part& part) {
    if (part.from <= 0.0 && part.to >= 1.0) {
      isGone_[line] = true;
      gone_.erase(line);
    } else if (!isGone_[line]) {
      gone_[line].push_back(part);
    }
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
  const std::vector<std::uint32_t> rims_;  // ranks by line, or empty
  const std::vector<std::uint32_t> order_;
  const EndTree ends_;
  const std::vector<double> heights_;                          // of the arcs over chords, the most by circle
  const std::vector<bool> isCrowded_;                          // by shell
  std::vector<bool> isGone_;                                   // as a whole
  std::unordered_map<std::uint32_t, std::vector<Part>> gone_;  // of lines whose turn comes
  std::unordered_map<std::uint32_t, std::vector<Part>> left_;  // of lines that go in part
};

}  // namespace

void LeaveOutVisibleDoubles(const DrawnSegments& drawn, unsigned threads, std::vector<DrawnSegment>& visible) {
  if (drawn.ShellCount() < 2) return;
  std::vector<std::size_t> places;
  std::vector<PartOfStretch> parts;
  CommonLines(drawn, visible, threads).Find(places, parts);
  if (!places.empty()) drawn.KeepParts(places, parts, visible);
}

}  // namespace zbr::drawing
