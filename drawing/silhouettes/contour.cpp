// Idea: silhouettes along the edges of facets leave no gap, as the facets are a closed surface themselves, but where crumbs of them
// are dropped; smooth ones lie up to a facet's width beside them, end where creases cut them, and where facets are coarse are taken
// for hidden. So where the facets' own silhouette parts the body from the empty paper, where nothing can hide it, and no line is
// drawn as near as a smooth silhouette would be, it is drawn itself, and led on to the lines at its ends.
#include "drawing/silhouettes/contour.h"

#include <zbr/hidden_line.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <unordered_map>
#include <utility>

#include "drawing/curves/seen_circles.h"
#include "drawing/points.h"
#include "drawing/silhouettes/line_ends.h"
#include "drawing/views/chains.h"

namespace zbr::drawing {
namespace {

// As parts of the drawing's size. How far apart places are looked at, and how far beside the edge; along how much of it one look
// tells whether there is paper, which costs more; how near a line is in any case, and how far off one may be at all.
constexpr double kStep = 1e-3;
constexpr double kBesideEdge = 5e-4;
constexpr std::size_t kStepsALook = 4;
constexpr double kNear = 1e-3;
constexpr double kFar = 5e-3;
// A smooth silhouette lies that far from the facets' own, in their widths.
constexpr double kBeside = 0.12;
// However large they are: where they bend, by twice as much as the surface rises over them.
constexpr double kRise = 0.25;
// What closes a gap is farthest from other lines in its middle, by half its length if it is straight. Less than this part of it,
// and it is shorter than that part of the size: then it runs beside a line.
constexpr double kApart = 0.35;
constexpr double kShort = 0.01;
// How much farther a line may go between two places than what goes beside it.
constexpr double kDetour = 1.5;
constexpr double kChainTolerance = 1e-3;  // in scene units, as for all lines

// Twice the area over the longest side.
double WidthOf(const ZBR_HL_TRI& t) {
  double longest2 = 0.0;
  for (int i = 0; i < 3; ++i) longest2 = std::max(longest2, (t.pt[(i + 1) % 3] - t.pt[i]).Length2());
  return longest2 > 0 ? (t.pt[1] - t.pt[0]).OuterProduct(t.pt[2] - t.pt[0]).Length() / std::sqrt(longest2) : 0.0;
}

// Ends to the bit.
ZBR_PT NearestOn(const ZBR_SEG& segment, const ZBR_PT& p) {
  const double part = NearestPart(p, segment.s(), segment.e());
  return part < 1 ? segment.s() + (segment.e() - segment.s()) * part : segment.e();
}

// Looks up what is drawn near a place, by square cells as large as the longest way that is looked.
class DrawnLines {
 public:
  static constexpr std::uint32_t kAnyShell = std::numeric_limits<std::uint32_t>::max();

  DrawnLines(const ViewLines& view, double scale, double reach) : cell_(reach) {
    for (std::uint32_t i = 0; i < view.lines.size(); ++i) {
      const Line& line = view.lines[i];
      if (line.hidden) continue;
      const std::vector<ZBR_PT>& points = line.chain.points;
      const std::uint32_t shell = line.edgeClass == EdgeClass::kSilhouette ? line.shell : kAnyShell;
      double along = 0.0;
      for (std::size_t k = 1; k < points.size(); ++k) {
        Add({{points[k - 1] * scale, points[k] * scale}, shell, i, along});
        along += points[k].Distance(points[k - 1]) * scale;
      }
    }
  }

  // Any line, or only silhouettes of a shell.
  bool HasNear(const ZBR_PT& p, double reach, std::uint32_t shell = kAnyShell) const {
    return !ForEachNear(p, [&](const Segment& segment) {
      return (shell != kAnyShell && segment.shell != shell) || NearestOn(segment.ends, p).Distance(p) > reach;
    });
  }

  struct Place {
    ZBR_PT at;
    std::uint32_t line = 0;  // of the view
    double along = 0.0;      // from its start
  };

  // The nearest point of a line that is not beyond `reach`, as far as there is one.
  bool Nearest(const ZBR_PT& p, double reach, Place& nearest) const {
    bool found = false;
    ForEachNear(p, [&](const Segment& segment) {
      const ZBR_PT at = NearestOn(segment.ends, p);
      const double distance = at.Distance(p);
      if (distance > reach) return true;
      reach = distance;
      nearest = {at, segment.line, segment.along + at.Distance(segment.ends.s())};
      found = true;
      return true;
    });
    return found;
  }

 private:
  struct Segment {
    ZBR_SEG ends;
    std::uint32_t shell;  // of a silhouette
    std::uint32_t line;
    double along;  // at its start
  };

  // While what it is told says so. Whether it did to the end.
  template <class GoesOn>
  bool ForEachNear(const ZBR_PT& p, const GoesOn& goesOn) const {
    const std::int64_t x = Cell(p.x()), y = Cell(p.y());
    for (std::int64_t i = x - 1; i <= x + 1; ++i) {
      for (std::int64_t j = y - 1; j <= y + 1; ++j) {
        const auto cell = cells_.find(Key(i, j));
        if (cell == cells_.end()) continue;
        for (const std::uint32_t k : cell->second) {
          if (!goesOn(segments_[k])) return false;
        }
      }
    }
    return true;
  }

  std::int64_t Cell(double x) const { return static_cast<std::int64_t>(std::floor(x / cell_)); }
  static std::uint64_t Key(std::int64_t i, std::int64_t j) {
    return static_cast<std::uint64_t>(i) << 32U ^ static_cast<std::uint32_t>(j);
  }

  // Into all cells that it passes: a step of a cell's size may cut the corner of one, which is looked at from next to it.
  void Add(const Segment& segment) {
    const auto k = static_cast<std::uint32_t>(segments_.size());
    segments_.push_back(segment);
    const ZBR_PT from = segment.ends.s(), along = segment.ends.e() - from;
    const auto steps = static_cast<std::size_t>(std::max(std::ceil(2.0 * along.Length() / cell_), 1.0));
    for (std::size_t step = 0; step <= steps; ++step) {
      const ZBR_PT p = from + along * (static_cast<double>(step) / static_cast<double>(steps));
      std::vector<std::uint32_t>& cell = cells_[Key(Cell(p.x()), Cell(p.y()))];
      if (cell.empty() || cell.back() != k) cell.push_back(k);
    }
  }

  double cell_;
  std::vector<Segment> segments_;
  std::unordered_map<std::uint64_t, std::vector<std::uint32_t>> cells_;
};

// A silhouette along an edge of facets.
struct FacetEdge {
  ZBR_SEG segment;
  ZBR_PT outwards;     // of length 1
  double width = 0.0;  // of the facets there
  double rise = 0.0;   // how far the smooth surface may stand off them, as far as that is told from how they bend
  EdgeRef edge;
};

ZBR_PT3 NormalOf(const ZBR_HL_TRI& t) {
  return (t.pt[1] - t.pt[0]).OuterProduct(t.pt[2] - t.pt[0]);
}

// Both facets lie on one side of the edge; one of them may be seen edge-on.
FacetEdge Look(const Model& model, const Scene& scene, const EdgeRef& edge, std::size_t begin) {
  const ZBR_HL_TRI& triangle = scene.triangles[edge.triangle];
  const std::size_t i = edge.edge;
  const ZBR_PT from = triangle.pt[i].xy(), along = triangle.pt[(i + 1) % 3].xy() - from;
  const double width = WidthAround(scene, model, edge.triangle);
  double rise = 0.0, inwards = along.OuterProduct(triangle.pt[(i + 2) % 3].xy() - from);
  if (triangle.adj[i] >= 0) {
    const ZBR_HL_TRI& other = scene.triangles[begin + static_cast<std::size_t>(triangle.adj[i])];
    const ZBR_PT apex = other.pt[(static_cast<std::size_t>(triangle.adj_edge[i]) + 2) % 3].xy();
    const double there = along.OuterProduct(apex - from);
    if (std::abs(there) > std::abs(inwards)) inwards = there;
    const ZBR_PT3 m = NormalOf(triangle), n = NormalOf(other);
    const double lengths = m.Length() * n.Length();
    if (lengths > 0 && !model.isRough) rise = kRise * width * m.OuterProduct(n).Length() / lengths;
  }
  const double length = along.Length();
  const ZBR_PT outwards = length > 0 ? ZBR_PT(along.y(), -along.x()) * ((inwards > 0 ? 1.0 : -1.0) / length) : ZBR_PT();
  return {ZBR_SEG(from, from + along), outwards, width, rise, {model.source[edge.triangle], edge.edge}};
}

double Reach(const FacetEdge& edge, double size) {
  return std::clamp(kBeside * edge.width, kNear * size, kFar * size);
}

// The same for silhouettes of the body itself.
double OwnReach(const FacetEdge& edge, double size) {
  return std::max(Reach(edge, size), std::min(kBeside * edge.width, edge.rise));
}

// The parts of a shell's edge that no line is near to and behind which there is nothing.
class Gaps {
 public:
  Gaps(const Scene& scene, const DrawnLines& drawn, std::uint32_t shell, double size)
      : scene_(scene), drawn_(drawn), shell_(shell), size_(size) {}

  void AddOf(const FacetEdge& edge, std::vector<EdgeSegment>& gaps) const {
    const ZBR_PT from = edge.segment.s(), along = edge.segment.e() - from;
    const auto steps = static_cast<std::size_t>(std::max(std::ceil(along.Length() / (kStep * size_)), 1.0));
    const auto at = [&](std::size_t k) {
      return k == steps ? edge.segment.e() : from + along * (static_cast<double>(k) / static_cast<double>(steps));
    };
    for (std::size_t begin = 0, end = 0; begin < steps; begin = std::max(end, begin + 1)) {
      for (end = begin; end < std::min(begin + kStepsALook, steps) && IsBare(edge, (at(end) + at(end + 1)) * 0.5);) ++end;
      if (end > begin && IsPaper((at(begin) + at(end)) * 0.5 + edge.outwards * (kBesideEdge * size_)))
        gaps.push_back({ZBR_SEG(at(begin), at(end)), edge.edge});
    }
  }

 private:
  bool IsBare(const FacetEdge& edge, const ZBR_PT& p) const {
    return !drawn_.HasNear(p, Reach(edge, size_)) && !drawn_.HasNear(p, OwnReach(edge, size_), shell_);
  }

  bool IsPaper(const ZBR_PT& p) const {
    double height = std::numeric_limits<double>::lowest();
    return !ZBR_HiddenLine::PickShells(p.x(), p.y(), scene_.shells.data(), scene_.ShellCount(), height);
  }

  const Scene& scene_;
  const DrawnLines& drawn_;
  std::uint32_t shell_;
  double size_;
};

// Of a shell, each once. `next` is the first of its edges, and then that of the next one's.
std::vector<FacetEdge> EdgesOf(const Model& model, const Scene& scene, std::size_t s, const std::vector<EdgeRef>& edges,
                               std::size_t& next) {
  const std::size_t begin = model.shellBegin[s];
  std::vector<FacetEdge> own;
  for (; next < edges.size() && edges[next].triangle < model.shellBegin[s + 1]; ++next) {
    const int adjacent = scene.triangles[edges[next].triangle].adj[edges[next].edge];
    if (adjacent >= 0 && begin + static_cast<std::size_t>(adjacent) < edges[next].triangle) continue;  // the other side's
    own.push_back(Look(model, scene, edges[next], begin));
  }
  return own;
}

bool IsBeside(const DrawnLines& drawn, const Chain& chain, double size) {
  const double length = LengthOf(chain);
  const std::size_t half = chain.points.size() / 2;
  const ZBR_PT middle = chain.points.size() > 2 ? chain.points[half] : (chain.points.front() + chain.points.back()) * 0.5;
  return length < kShort * size && drawn.HasNear(middle, kApart * length);
}

// To the lines that its ends have come near to. False for what leaves a line for a little and comes back to it: it closes nothing.
bool LeadOn(const DrawnLines& drawn, double reach, double size, Chain& chain) {
  if (chain.closed) return true;
  std::vector<ZBR_PT>& points = chain.points;
  DrawnLines::Place first, last;
  const bool hasFirst = drawn.Nearest(points.front(), reach, first), hasLast = drawn.Nearest(points.back(), reach, last);
  if (hasFirst) points.insert(points.begin(), first.at);
  if (hasLast) points.push_back(last.at);
  if (!hasFirst || !hasLast || first.line != last.line) return true;
  const double length = LengthOf(chain);
  return length >= kShort * size || std::abs(first.along - last.along) > kDetour * length;
}

}  // namespace

double WidthAround(const Scene& scene, const Model& model, std::uint32_t t) {
  double width = WidthOf(scene.triangles[t]);
  const std::size_t begin = model.shellBegin[model.ShellOf(t)];
  for (const int adjacent : scene.triangles[t].adj) {
    if (adjacent >= 0) width = std::max(width, WidthOf(scene.triangles[begin + static_cast<std::size_t>(adjacent)]));
  }
  return width;
}

std::vector<EdgeRef> SilhouetteEdges(const Scene& scene) {
  std::vector<EdgeRef> edges;
  for (std::size_t t = 0; t < scene.TriangleCount(); ++t) {
    for (std::size_t i = 0; i < 3; ++i) {
      if (scene.classes[t][i] == EdgeClass::kSilhouette)
        edges.push_back({static_cast<std::uint32_t>(t), static_cast<std::uint8_t>(i)});
    }
  }
  return edges;
}

void CloseContours(const Model& model, const Scene& scene, const std::vector<EdgeRef>& edges, ViewLines& view) {
  const double size = view.extent.Size() * scene.scale;
  if (!(size > 0) || edges.empty()) return;
  std::vector<std::vector<FacetEdge>> ofShells(model.ShellCount());
  std::size_t next = 0;
  double farthest = kFar * size;
  for (std::size_t s = 0; s < ofShells.size(); ++s) {
    ofShells[s] = EdgesOf(model, scene, s, edges, next);
    for (const FacetEdge& edge : ofShells[s]) farthest = std::max(farthest, OwnReach(edge, size));
  }
  const DrawnLines drawn(view, scene.scale, farthest + kStep * size);
  const SeenCircles none(model, scene, nullptr);
  SegmentChainer chainer(kChainTolerance, none);
  std::vector<Line> lines;
  for (std::size_t s = 0; s < ofShells.size(); ++s) {
    const auto shell = static_cast<std::uint32_t>(s);
    const Gaps gaps(scene, drawn, shell, size);
    std::vector<EdgeSegment> found;
    double reach = 0.0;
    for (const FacetEdge& edge : ofShells[s]) {
      gaps.AddOf(edge, found);
      reach = std::max(reach, OwnReach(edge, size));
    }
    for (Chain& chain : chainer.ChainsOf(found)) {
      if (IsBeside(drawn, chain, size)) continue;
      if (LeadOn(drawn, reach + kStep * size, size, chain))
        lines.push_back({EdgeClass::kSilhouette, false, shell, shell, std::move(chain)});
    }
  }
  AddToEnds(view, std::move(lines), scene.scale);
}

}  // namespace zbr::drawing
