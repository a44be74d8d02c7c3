#include "drawing/views/drawn_segments.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "drawing/parallel.h"
#include "drawing/touched.h"

namespace zbr::drawing {
namespace {

std::uint8_t ClassPlace(EdgeClass edgeClass) {
  const auto* const found = std::find(std::begin(kDrawnClasses), std::end(kDrawnClasses), edgeClass);
  return static_cast<std::uint8_t>(found - std::begin(kDrawnClasses));
}

}  // namespace

DrawnSegments::DrawnSegments(const Model& model, const Scene& scene, const Circles* circles, unsigned threads,
                             const ChordSides* sides, const RoundWalls* walls)
    : model_(model),
      scene_(scene),
      circles_(circles),
      own_(sides != nullptr ? ChordSides() : ChordSides(model, circles, threads)),
      sides_(sides != nullptr ? *sides : own_),
      walls_(walls != nullptr && !walls->ofRims.empty() ? walls : nullptr),
      seen_(model, scene, circles),
      threads_(threads),
      triangleCount_(scene.TriangleCount()) {
  for (const ZBR_HL_SHELL& shell : scene.shells) begins_.push_back(begins_.back() + static_cast<std::uint32_t>(shell.count));
}

EdgeRef DrawnSegments::SourceOf(std::size_t triangle, std::size_t edge) const {
  if (scene_.parts.empty()) return {static_cast<std::uint32_t>(triangle), static_cast<std::uint8_t>(edge)};
  return {scene_.parts[triangle].triangle, scene_.parts[triangle].edges[edge]};
}

DrawnSegment DrawnSegments::Of(std::size_t shell, std::size_t triangle, int edge, const ZBR_SEG& segment) const {
  const std::size_t t = static_cast<std::size_t>(scene_.shells[shell].tris - scene_.triangles.data()) + triangle;
  DrawnSegment s;
  s.edgeClass = ClassPlace(scene_.classes[t][static_cast<std::size_t>(edge)]);
  s.side = static_cast<std::uint8_t>(edge);
  s.triangle = static_cast<std::uint32_t>(t);
  s.shell = s.other = static_cast<std::uint32_t>(shell);
  s.segment.segment = segment;
  if (t < triangleCount_) {
    const auto [source, side] = SourceOf(t, s.side);
    s.segment.edge = {model_.source[source], side};
  } else {
    const auto [first, second] = scene_.crossing[t - triangleCount_];
    s.shell = model_.ShellOf(first);
    s.other = model_.ShellOf(second);
    s.segment.edge = {model_.source[first], EdgeRef::kAcross};
    if (const ChordSides::Crossing* const rim = RimOf(s); rim != nullptr) {
      if (rim->shell != s.shell) s.segment.edge.triangle = model_.source[second];
      s.shell = s.other = rim->shell;
      s.edgeClass = ClassPlace(EdgeClass::kCrease);
    }
  }
  return s;
}

void DrawnSegments::Locate(DrawnSegment& drawn) const {
  if (const ChordSides::Side* const chord = ChordOf(drawn)) seen_.Locate(*chord, drawn.segment);
}

const ChordSides::Crossing* DrawnSegments::RimOf(const DrawnSegment& drawn) const {
  return IsOfOneShell(drawn) ? nullptr : sides_.FindCrossing(scene_.crossing[drawn.triangle - triangleCount_]);
}

const ChordSides::Side* DrawnSegments::ChordOf(const DrawnSegment& drawn) const {
  if (!IsOfOneShell(drawn)) {
    const ChordSides::Crossing* const rim = RimOf(drawn);
    return rim != nullptr ? &rim->side : nullptr;
  }
  const auto [source, side] = SourceOf(drawn.triangle, drawn.side);
  if (side == EdgeRef::kAcross) return nullptr;
  const ChordSides::Side* const own = sides_.Find(source, side);
  if (walls_ == nullptr || (own != nullptr && walls_->ofRims[own->circle] != RoundWalls::kNone)) return own;
  const ChordSides::Side* const onWall = walls_->sides.Find(source, side);
  return onWall != nullptr ? onWall : own;
}

bool DrawnSegments::IsOwnChord(const DrawnSegment& drawn) const {
  if (!IsOfOneShell(drawn)) return true;
  const auto [source, side] = SourceOf(drawn.triangle, drawn.side);
  return ChordOf(drawn) == sides_.Find(source, side);
}

// In place: there may be millions of them, and these records are large. Those of triangles are larger still, and few have lines:
// they are gone through once, and those with lines a second time.
std::vector<DrawnSegment> DrawnSegments::Visible() const {
  struct Seen {
    std::vector<std::uint32_t> triangles;  // counted through all shells
    std::size_t segments = 0;
  };
  std::vector<Seen> inRange(RangeCount(begins_.back()));
  ForEachVisible([&](std::size_t range, std::size_t s, std::size_t t, int, const ZBR_SEG&) {
    Seen& seen = inRange[range];
    const std::uint32_t triangle = begins_[s] + static_cast<std::uint32_t>(t);
    if (seen.triangles.empty() || seen.triangles.back() != triangle) seen.triangles.push_back(triangle);
    ++seen.segments;
  });
  std::size_t count = 0;
  for (Seen& seen : inRange) count += std::exchange(seen.segments, count);
  std::vector<DrawnSegment> segments;
  ResizeTouched(segments, count, threads_);
  RunParallel(inRange.size(), threads_, [&](std::size_t range) {
    std::size_t at = inRange[range].segments, s = 0;
    for (const std::uint32_t triangle : inRange[range].triangles) {
      if (triangle >= begins_[s + 1])
        s = static_cast<std::size_t>(std::upper_bound(begins_.begin(), begins_.end(), triangle) - begins_.begin() - 1);
      const std::size_t t = triangle - begins_[s];
      ForEachVisibleOf(s, t, [&](int edge, const ZBR_SEG& segment) { segments[at++] = Located(Of(s, t, edge, segment)); });
    }
  });
  return segments;
}

std::vector<DrawnSegment> DrawnSegments::Hidden(const SilhouetteHeights& heights) const {
  std::vector<ZBR_SEG> hidden;
  std::vector<ZBR_HL_SOURCE> sources;
  constexpr int kAsDrawn = 3;
  ZBR_HL_REMOVAL options;
  options.executor = ExecutorOf(threads_);
  ZBR_HiddenLine::GetHiddenLineObj(scene_.shells.data(), hidden, kAsDrawn, scene_.ShellCount(), sources, kOneLine, options);
  std::vector<DrawnSegment> segments;
  segments.reserve(hidden.size());
  for (std::size_t i = 0; i < hidden.size(); ++i) {
    const ZBR_HL_SOURCE& at = sources[i];
    segments.push_back(Located(Of(static_cast<std::size_t>(at.shell), static_cast<std::size_t>(at.triangle), at.edge, hidden[i])));
  }
  std::erase_if(segments, [](const DrawnSegment& s) { return kDrawnClasses[s.edgeClass] == EdgeClass::kTangent; });
  if (ShellCount() > 1 && !scene_.view.perspective) LeaveOutDoubles(heights, segments);
  return segments;
}

bool DrawnSegments::IsCurved(const DrawnSegment& drawn, const SilhouetteHeights& heights, CurvedStretch& stretch) const {
  if (!IsOfOneShell(drawn)) return IsPartOfRim(drawn, stretch);
  const EdgeClass edgeClass = kDrawnClasses[drawn.edgeClass];
  const auto [source, side] = SourceOf(drawn.triangle, drawn.side);
  if (side == EdgeRef::kAcross || edgeClass == EdgeClass::kTangent) return false;
  stretch.segment = drawn.segment.segment;
  stretch.shell = drawn.shell;
  if (edgeClass == EdgeClass::kSilhouette) {
    stretch.circle = kNoCircle;
    stretch.height = heights.Over(source, side) * scene_.scale;
    return stretch.height > 0;
  }
  const ChordSides::Side* const chord = sides_.Find(source, side);
  return chord != nullptr && IsCurvedChord(scene_, *circles_, *chord, stretch);
}

// It lies on the other body, and beside what that hides of the rim.
bool DrawnSegments::IsPartOfRim(const DrawnSegment& drawn, CurvedStretch& stretch) const {
  const ChordSides::Crossing* const rim = RimOf(drawn);
  if (rim == nullptr) return false;
  const std::uint32_t first = model_.ShellOf(rim->triangles[0]), second = model_.ShellOf(rim->triangles[1]);
  stretch.segment = drawn.segment.segment;
  stretch.shell = first == rim->shell ? second : first;
  return IsCurvedChord(scene_, *circles_, rim->side, stretch);
}

DrawnStretch DrawnSegments::StretchOf(const DrawnSegment& drawn) const {
  DrawnStretch stretch;
  if (drawn.segment.circle != kNoCircle && !scene_.view.perspective) {
    stretch = StretchOfChord(scene_, circles_->all[drawn.segment.circle], *ChordOf(drawn), drawn.segment.segment);
    stretch.circle = drawn.segment.circle;
  }
  stretch.segment = drawn.segment.segment;
  return stretch;
}

// Curves that bodies have in common are dashed once.
void DrawnSegments::LeaveOutDoubles(const SilhouetteHeights& heights, std::vector<DrawnSegment>& hidden) const {
  std::vector<CurvedStretch> curved;
  std::vector<std::size_t> places;
  CurvedStretch stretch;
  for (std::size_t i = 0; i < hidden.size(); ++i) {
    if (!IsCurved(hidden[i], heights, stretch)) continue;
    curved.push_back(stretch);
    places.push_back(i);
  }
  if (curved.empty()) return;
  std::vector<std::vector<CurvedStretch>> inRange(RangeCount(begins_.back()));
  ForEachVisible([&](std::size_t range, std::size_t s, std::size_t t, int edge, const ZBR_SEG& segment) {
    CurvedStretch seen;
    if (IsCurved(Of(s, t, edge, segment), heights, seen)) inRange[range].push_back(seen);
  });
  std::vector<CurvedStretch> visible;
  for (const auto& stretches : inRange) visible.insert(visible.end(), stretches.begin(), stretches.end());
  KeepParts(places, WithoutDoubles(scene_, circles_, visible, curved), hidden);
}

// In place: first what goes is closed up, then room is made for second parts, from the end on.
void DrawnSegments::KeepParts(const std::vector<std::size_t>& places, const std::vector<PartOfStretch>& parts,
                              std::vector<DrawnSegment>& segments) const {
  std::vector<std::pair<std::size_t, DrawnSegment>> more;  // with the place that each comes behind
  std::size_t kept = 0, part = 0;
  for (std::size_t i = 0, k = 0; i < segments.size(); ++i) {
    const DrawnSegment whole = segments[i];
    if (k == places.size() || places[k] != i) {
      segments[kept++] = whole;
      continue;
    }
    for (bool isFirst = true; part < parts.size() && parts[part].stretch == k; ++part, isFirst = false) {
      DrawnSegment left = whole;
      left.segment.segment = parts[part].Of(whole.segment.segment);
      Locate(left);
      if (isFirst) {
        segments[kept++] = left;
      } else {
        more.emplace_back(kept - 1, left);
      }
    }
    ++k;
  }
  segments.resize(kept + more.size());
  for (std::size_t to = segments.size(); !more.empty(); more.pop_back()) {
    while (kept > more.back().first + 1) segments[--to] = segments[--kept];
    segments[--to] = more.back().second;
  }
}

}  // namespace zbr::drawing
