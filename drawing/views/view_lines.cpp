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

#include "drawing/curves/seen_circles.h"
#include "drawing/parallel.h"
#include "drawing/views/chains.h"
#include "drawing/views/collect_lines.h"
#include "drawing/views/common_rims.h"
#include "drawing/views/double_lines.h"
#include "drawing/views/drawn_segments.h"
#include "drawing/views/wall_rims.h"

namespace zbr::drawing {
namespace {

constexpr double kChainTolerance = 1e-3;  // in scene units: a hundred-thousandth of the model's diagonal, nothing on paper

// Reads nothing of the scene's triangles.
class Chainer {
 public:
  // Refers to both.
  Chainer(const Scene& scene, const SeenCircles& circles, unsigned threads) : scene_(scene), circles_(circles), threads_(threads) {}

  void ChainInto(std::vector<Line>& lines, std::vector<DrawnSegment> segments, bool hidden) const {
    const auto isBefore = [](const DrawnSegment& a, const DrawnSegment& b) { return KeyOf(a) < KeyOf(b); };
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
  static constexpr std::size_t kPiece = 4096;  // segments

  static std::tuple<std::uint8_t, std::uint32_t, std::uint32_t> KeyOf(const DrawnSegment& s) {
    return {s.edgeClass, s.shell, s.other};
  }

  // Whole bins.
  void ChainBins(std::span<const DrawnSegment> segments, bool hidden, std::vector<Line>& lines) const {
    SegmentChainer chainer(kChainTolerance, circles_);
    std::vector<EdgeSegment> bin;
    for (std::size_t i = 0; i < segments.size(); ++i) {
      bin.push_back(segments[i].segment);
      if (i + 1 < segments.size() && KeyOf(segments[i + 1]) == KeyOf(segments[i])) continue;
      for (Chain& chain : chainer.ChainsOf(bin)) {
        for (ZBR_PT& p : chain.points) p.Set(p.x() / scene_.scale, p.y() / scene_.scale);
        lines.push_back({kDrawnClasses[segments[i].edgeClass], hidden, segments[i].shell, segments[i].other, std::move(chain)});
      }
      bin.clear();
    }
  }

  const Scene& scene_;
  const SeenCircles& circles_;
  const unsigned threads_;
};

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

// The removal leaves the boxes of shells. Rounding keeps the order of quotients: the least comes from the least.
Extent ExtentOf(const Scene& scene) {
  Extent extent;
  const auto isBoxed = [](const ZBR_HL_SHELL& shell) { return shell.maxmin_valid && shell.max_z > shell.min_z; };
  if (!scene.view.perspective && !scene.shells.empty() && std::all_of(scene.shells.begin(), scene.shells.end(), isBoxed)) {
    for (const ZBR_HL_SHELL& shell : scene.shells) {
      extent.Add(ZBR_PT(shell.min_x, shell.min_y));
      extent.Add(ZBR_PT(shell.max_x, shell.max_y));
    }
  } else {
    for (const ZBR_HL_TRI& triangle : scene.triangles) {
      for (const ZBR_PT3& p : triangle.pt) extent.Add(p.xy());
    }
  }
  if (extent.empty()) return extent;
  for (double* const side : {&extent.xmin, &extent.xmax, &extent.ymin, &extent.ymax}) *side /= scene.scale;
  return extent;
}

ViewLines CollectFrom(const Model& model, const Scene& scene, Scene* spent, bool hidden, const Circles* circles,
                      const ChordSides& sides, const CurveNotes& notes, unsigned threads) {
  const ZBR_TmpEps hold(kSceneTolerance);
  if (spent != nullptr) {
    RunInRanges(spent->shells.size(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
      for (std::size_t s = begin; s < end; ++s) spent->shells[s].occluders.reset();
    });
  }
  ViewLines view;
  view.view = scene.view;
  view.middle = scene.offset;
  view.drawable = scene.drawable;
  for (const ZBR_HL_SHELL& shell : scene.shells) view.pairs += shell.pairs_tried;
  view.extent = ExtentOf(scene);
  const DrawnSegments drawn(model, scene, circles, threads, &sides, &notes.walls);
  std::vector<DrawnSegment> unseen;
  if (hidden) unseen = drawn.Hidden(notes.heights);
  std::vector<DrawnSegment> seen = drawn.Visible();
  if (spent != nullptr) {
    spent->shells.clear();
    spent->triangles.clear();
  }
  LeaveOutVisibleDoubles(drawn, threads, seen);
  GiveRimsToOneBody(model, drawn, seen);
  LeaveOutRimsOfOneWall(drawn, seen, unseen);
  const Chainer chainer(scene, drawn.Seen(), threads);
  chainer.ChainInto(view.lines, std::move(seen), false);
  chainer.ChainInto(view.lines, std::move(unseen), true);
  return view;
}

ViewLines CollectLines(const Model& model, const Scene& scene, bool hidden, const Circles* circles, unsigned threads) {
  const ChordSides sides(model, circles, threads);
  return CollectFrom(model, scene, nullptr, hidden, circles, sides, {model, circles, sides, scene, hidden, threads}, threads);
}

ViewLines CollectLines(const Model& model, Scene&& scene, bool hidden, const Circles* circles, unsigned threads) {
  const ChordSides sides(model, circles, threads);
  return CollectFrom(model, scene, &scene, hidden, circles, sides, {model, circles, sides, scene, hidden, threads}, threads);
}

}  // namespace zbr::drawing
