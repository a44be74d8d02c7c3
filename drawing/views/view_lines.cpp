// From the visible intervals and the hidden stretches of a scene to polylines.
//
// Segments are sorted into bins by class and shell first and each bin is chained by itself, so that a polyline is of one kind and
// one body throughout and can be traced back to it.
#include <zbr-drawing/view_lines.h>

#include <zbr/tolerance.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
#include <span>
#include <tuple>
#include <utility>

#include "drawing/curves/doubled_curves.h"
#include "drawing/curves/seen_circles.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/parallel.h"
#include "drawing/views/chains.h"

namespace zbr::drawing {
namespace {

// Lines that run closer together are one on paper: about a tenth of a line's width on a sheet filled by the view. Vertices of
// meshes, scanned ones above all, are that far off the planes and edges they stand for.
constexpr double kOneLine = 0.02;
constexpr double kChainTolerance = 1e-3;  // in scene units: a hundred-thousandth of the model's diagonal, nothing on paper

struct BinnedSegment {
  std::uint8_t edgeClass = 0;  // place in kDrawnClasses
  std::uint32_t shell = 0, other = 0;
  EdgeSegment segment;
};

std::uint8_t ClassPlace(EdgeClass edgeClass) {
  const auto* const found = std::find(std::begin(kDrawnClasses), std::end(kDrawnClasses), edgeClass);
  return static_cast<std::uint8_t>(found - std::begin(kDrawnClasses));
}

class Collector {
 public:
  Collector(const Model& model, const Scene& scene, const Circles* circles, unsigned threads)
      : model_(model), scene_(scene), known_(circles), circles_(model, scene, circles), threads_(threads) {
    for (const ZBR_HL_SHELL& shell : scene.shells) begins_.push_back(begins_.back() + static_cast<std::uint32_t>(shell.count));
  }

  // Of a shell's triangle.
  BinnedSegment Binned(std::size_t shell, std::size_t triangle, int edge, const ZBR_SEG& segment) const {
    const std::size_t t = static_cast<std::size_t>(scene_.shells[shell].tris - scene_.triangles.data()) + triangle;
    BinnedSegment s;
    s.edgeClass = ClassPlace(scene_.classes[t][static_cast<std::size_t>(edge)]);
    s.shell = s.other = static_cast<std::uint32_t>(shell);
    s.segment.segment = segment;
    if (t < scene_.TriangleCount()) {
      const auto [source, side] = SourceOf(t, edge);
      s.segment.edge = {model_.source[source], side};
      if (side != EdgeRef::kAcross) circles_.Locate(shell, source - model_.shellBegin[shell], side, s.segment);
    } else {
      const auto [first, second] = scene_.crossing[t - scene_.TriangleCount()];
      s.shell = model_.ShellOf(first);
      s.other = model_.ShellOf(second);
      s.segment.edge = {model_.source[first], EdgeRef::kAcross};
    }
    return s;
  }

  // In place: there may be millions of them, and these records are large.
  std::vector<BinnedSegment> Visible() const {
    std::vector<std::size_t> counts(RangeCount(begins_.back()) + 1);
    ForEachVisible([&](std::size_t range, std::size_t, std::size_t, int, const ZBR_SEG&) { ++counts[range + 1]; });
    std::partial_sum(counts.begin(), counts.end(), counts.begin());
    std::vector<BinnedSegment> segments(counts.back());
    ForEachVisible([&](std::size_t range, std::size_t s, std::size_t t, int edge, const ZBR_SEG& segment) {
      segments[counts[range]++] = Binned(s, t, edge, segment);
    });
    return segments;
  }

  std::vector<BinnedSegment> Hidden() const {
    std::vector<ZBR_SEG> hidden;
    std::vector<ZBR_HL_SOURCE> sources;
    constexpr int kAsDrawn = 3;
    ZBR_HL_REMOVAL options;
    options.executor = ExecutorOf(threads_);
    ZBR_HiddenLine::GetHiddenLineObj(scene_.shells.data(), hidden, kAsDrawn, scene_.ShellCount(), sources, kOneLine, options);
    if (scene_.shells.size() > 1 && !scene_.view.perspective) LeaveOutDoubles(hidden, sources);
    std::vector<BinnedSegment> segments;
    segments.reserve(hidden.size());
    for (std::size_t i = 0; i < hidden.size(); ++i) {
      const ZBR_HL_SOURCE& at = sources[i];
      segments.push_back(Binned(static_cast<std::size_t>(at.shell), static_cast<std::size_t>(at.triangle), at.edge, hidden[i]));
    }
    std::erase_if(segments, [](const BinnedSegment& s) { return kDrawnClasses[s.edgeClass] == EdgeClass::kTangent; });
    return segments;
  }

  // Reads nothing of the scene's triangles.
  void ChainInto(std::vector<Line>& lines, std::vector<BinnedSegment> segments, bool hidden) const {
    const auto isBefore = [](const BinnedSegment& a, const BinnedSegment& b) { return KeyOf(a) < KeyOf(b); };
    if (!std::is_sorted(segments.begin(), segments.end(), isBefore)) std::stable_sort(segments.begin(), segments.end(), isBefore);
    std::vector<std::size_t> begins;  // of pieces of work, which are whole bins
    for (std::size_t i = 0; i < segments.size(); ++i) {
      if (i == 0 || (i - begins.back() >= kPiece && KeyOf(segments[i]) != KeyOf(segments[i - 1]))) begins.push_back(i);
    }
    begins.push_back(segments.size());
    std::vector<std::vector<Line>> parts(begins.size() - 1);
    RunParallel(parts.size(), threads_, [&](std::size_t k) {
      ChainBins(std::span(segments).subspan(begins[k], begins[k + 1] - begins[k]), hidden, parts[k]);
    });
    lines.reserve(std::transform_reduce(parts.begin(), parts.end(), lines.size(), std::plus<>(),
                                        [](const std::vector<Line>& part) { return part.size(); }));
    for (std::vector<Line>& part : parts)
      lines.insert(lines.end(), std::make_move_iterator(part.begin()), std::make_move_iterator(part.end()));
  }

 private:
  // Calls use(range, shell, triangle, edge, segment) for all that is visible, in order within each range of triangles.
  template <class Use>
  void ForEachVisible(const Use& use) const {
    ForEachPart(begins_, threads_, [&](std::size_t range, std::size_t s, std::size_t begin, std::size_t end) {
      for (std::size_t t = begin; t < end; ++t) {
        for (int i = 0; i < 3; ++i) {
          for (const ZBR_HL_INTERVAL& visible : scene_.shells[s].tris[t].intvl_v[i])
            use(range, s, t, i, ZBR_SEG(visible.s.pt.xy(), visible.e.pt.xy()));
        }
      }
    });
  }

  static constexpr std::size_t kPiece = 4096;  // segments

  static std::tuple<std::uint8_t, std::uint32_t, std::uint32_t> KeyOf(const BinnedSegment& s) {
    return {s.edgeClass, s.shell, s.other};
  }

  // Whether a stretch of a triangle's edge stands for a curve.
  bool IsCurved(std::size_t shell, std::size_t triangle, int edge, const ZBR_SEG& segment, CurvedStretch& stretch) const {
    const std::size_t t = static_cast<std::size_t>(scene_.shells[shell].tris - scene_.triangles.data()) + triangle;
    if (t >= scene_.TriangleCount()) return false;
    const auto [source, side] = SourceOf(t, edge);
    const EdgeClass edgeClass = scene_.classes[t][static_cast<std::size_t>(edge)];
    if (side == EdgeRef::kAcross || edgeClass == EdgeClass::kTangent) return false;
    stretch.segment = segment;
    stretch.shell = static_cast<std::uint32_t>(shell);
    return drawing::IsCurved(model_, scene_, known_, shell, source - model_.shellBegin[shell], side, edgeClass, stretch);
  }

  // Curves that bodies have in common are dashed once.
  void LeaveOutDoubles(std::vector<ZBR_SEG>& hidden, std::vector<ZBR_HL_SOURCE>& sources) const {
    std::vector<CurvedStretch> curved;
    std::vector<std::size_t> places;
    CurvedStretch stretch;
    for (std::size_t i = 0; i < hidden.size(); ++i) {
      const ZBR_HL_SOURCE& at = sources[i];
      if (!IsCurved(static_cast<std::size_t>(at.shell), static_cast<std::size_t>(at.triangle), at.edge, hidden[i], stretch))
        continue;
      curved.push_back(stretch);
      places.push_back(i);
    }
    if (curved.empty()) return;
    std::vector<std::vector<CurvedStretch>> inRange(RangeCount(begins_.back()));
    ForEachVisible([&](std::size_t range, std::size_t s, std::size_t t, int edge, const ZBR_SEG& segment) {
      CurvedStretch seen;
      if (IsCurved(s, t, edge, segment, seen)) inRange[range].push_back(seen);
    });
    std::vector<CurvedStretch> visible;
    for (const auto& stretches : inRange) visible.insert(visible.end(), stretches.begin(), stretches.end());
    const std::vector<PartOfStretch> left = WithoutDoubles(scene_, known_, visible, curved);
    std::vector<ZBR_SEG> rest;
    std::vector<ZBR_HL_SOURCE> restSources;
    for (std::size_t i = 0, curve = 0, part = 0; i < hidden.size(); ++i) {
      const bool isCurve = curve < places.size() && places[curve] == i;
      if (!isCurve) {
        rest.push_back(hidden[i]);
        restSources.push_back(sources[i]);
        continue;
      }
      for (; part < left.size() && left[part].stretch == curve; ++part) {
        rest.push_back(left[part].Of(hidden[i]));
        restSources.push_back(sources[i]);
      }
      ++curve;
    }
    hidden = std::move(rest);
    sources = std::move(restSources);
  }

  // Whole bins.
  void ChainBins(std::span<const BinnedSegment> segments, bool hidden, std::vector<Line>& lines) const {
    std::vector<EdgeSegment> bin;
    for (std::size_t i = 0; i < segments.size(); ++i) {
      bin.push_back(segments[i].segment);
      if (i + 1 < segments.size() && KeyOf(segments[i + 1]) == KeyOf(segments[i])) continue;
      for (Chain& chain : ChainSegments(std::exchange(bin, {}), kChainTolerance, circles_)) {
        for (ZBR_PT& p : chain.points) p.Set(p.x() / scene_.scale, p.y() / scene_.scale);
        lines.push_back({kDrawnClasses[segments[i].edgeClass], hidden, segments[i].shell, segments[i].other, std::move(chain)});
      }
    }
  }

  // The triangle of the model and its edge.
  EdgeRef SourceOf(std::size_t t, int edge) const {
    if (scene_.parts.empty()) return {static_cast<std::uint32_t>(t), static_cast<std::uint8_t>(edge)};
    return {scene_.parts[t].triangle, scene_.parts[t].edges[static_cast<std::size_t>(edge)]};
  }

  const Model& model_;
  const Scene& scene_;
  const Circles* known_;
  SeenCircles circles_;
  const unsigned threads_;
  std::vector<std::uint32_t> begins_{0};  // of the shells' triangles, counted through, and the end
};

// `spent` is the scene, if its triangles may go when they have been read.
ViewLines CollectFrom(const Model& model, const Scene& scene, Scene* spent, bool hidden, const Circles* circles, unsigned threads) {
  const ZBR_TmpEps hold(kSceneTolerance);
  ViewLines view;
  view.view = scene.view;
  view.middle = scene.offset;
  view.drawable = scene.drawable;
  for (const ZBR_HL_SHELL& shell : scene.shells) view.pairs += shell.pairs_tried;
  view.extent = ExtentOf(scene);
  const Collector collector(model, scene, circles, threads);
  std::vector<BinnedSegment> unseen;
  if (hidden) unseen = collector.Hidden();
  std::vector<BinnedSegment> seen = collector.Visible();
  if (spent != nullptr) {
    spent->shells.clear();
    std::vector<ZBR_HL_TRI>().swap(spent->triangles);
  }
  collector.ChainInto(view.lines, std::move(seen), false);
  collector.ChainInto(view.lines, std::move(unseen), true);
  return view;
}

}  // namespace

const char* NameOf(EdgeClass edgeClass) {
  switch (edgeClass) {
    case EdgeClass::kBorder:
      return "border";
    case EdgeClass::kCrease:
      return "crease";
    case EdgeClass::kJunction:
      return "junction";
    case EdgeClass::kSilhouette:
      return "silhouette";
    case EdgeClass::kTangent:
      return "tangent";
    case EdgeClass::kIntersection:
      return "intersection";
    case EdgeClass::kCut:
      return "cut";
    case EdgeClass::kHatching:
      return "hatching";
    case EdgeClass::kCuttingPlane:
      return "cutting-plane";
    case EdgeClass::kCentre:
      return "centre";
    case EdgeClass::kSmooth:
      break;
  }
  return "smooth";
}

double ViewLines::VisibleLength() const {
  double length = 0.0;
  for (const Line& line : lines) {
    for (std::size_t i = 1; !line.hidden && i < line.chain.points.size(); ++i)
      length += line.chain.points[i].Distance(line.chain.points[i - 1]);
  }
  return length;
}

void AddVisible(ViewLines& view, std::vector<Line> lines) {
  const auto hidden = std::find_if(view.lines.begin(), view.lines.end(), [](const Line& line) { return line.hidden; });
  view.lines.insert(hidden, std::make_move_iterator(lines.begin()), std::make_move_iterator(lines.end()));
}

Extent ExtentOf(const Scene& scene) {
  Extent extent;
  for (const ZBR_HL_TRI& triangle : scene.triangles) {
    for (const ZBR_PT3& p : triangle.pt) extent.Add(ZBR_PT(p.x() / scene.scale, p.y() / scene.scale));
  }
  return extent;
}

ViewLines CollectLines(const Model& model, const Scene& scene, bool hidden, const Circles* circles, unsigned threads) {
  return CollectFrom(model, scene, nullptr, hidden, circles, threads);
}

ViewLines CollectLines(const Model& model, Scene&& scene, bool hidden, const Circles* circles, unsigned threads) {
  for (ZBR_HL_SHELL& shell : scene.shells) shell.occluders.reset();
  return CollectFrom(model, scene, &scene, hidden, circles, threads);
}

}  // namespace zbr::drawing
