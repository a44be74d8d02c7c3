// From a model to the lines of its views: scene, removal, lines and, where asked for, outlines, which use the scene up.
#include <zbr-drawing/views.h>

#include <zbr-drawing/outlines.h>
#include <zbr-drawing/removal.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "drawing/parallel.h"
#include "drawing/sections/cut_scene.h"
#include "drawing/views/perspective.h"

namespace zbr::drawing {
namespace {

// What is found once for all views.
struct Found {
  std::optional<Circles> circles;
  std::vector<IntersectionLine> crossings;
};

void AddSection(SectionCut&& section, const NamedDirection& direction, ViewLines& view) {
  view.section =
      SectionOfView{direction.name.substr(0, 1), *direction.section, std::move(section.faces), section.openLines, section.bridged};
  std::vector<Line> cuts;
  for (SectionLine& outline : section.lines) {
    Line& line = cuts.emplace_back();
    line.edgeClass = outline.isCut ? EdgeClass::kCut : EdgeClass::kCrease;
    line.shell = line.other = outline.shell;
    line.chain.closed = outline.closed;
    line.chain.points = std::move(outline.points);
    for (const std::uint32_t triangle : outline.triangles) line.chain.edges.push_back({triangle, EdgeRef::kAcross});
  }
  AddVisible(view, std::move(cuts));
}

ViewLines DrawView(const Model& model, const Found& found, const NamedDirection& direction, const DrawingOptions& options,
                   unsigned threads, const std::function<void(DrawStage)>& at) {
  at(DrawStage::kScene);
  Scene scene = MakeScene(model, direction.view, found.crossings, options.tangents);
  if (options.contact >= 0) scene.contact = options.contact * scene.scale;
  SectionCut section;
  Extent whole;
  if (direction.section) {
    whole = ExtentOf(scene);
    section = FindSection(model, direction.view, *direction.section);
    CutScene(model, found.crossings, PlanesOf(*direction.section), section, scene);
  }
  if (direction.view.perspective) FitPicture(model, found.crossings, scene);
  at(DrawStage::kRemoval);
  RemoveHidden(scene, threads);
  at(DrawStage::kLines);
  const bool hidden = options.hidden == HiddenLines::kInAllViews ||
                      (options.hidden == HiddenLines::kInPrincipalViews && direction.view.IsPrincipal() && !direction.section);
  const bool curves = options.curves && !direction.view.perspective;
  ViewLines lines = CollectLines(model, scene, hidden, curves ? &*found.circles : nullptr);
  if (options.centreLines && !direction.view.perspective) lines.centres = FindCentres(model, *found.circles, lines);
  lines.name = direction.name;
  if (direction.section) {
    lines.extent = whole;  // views of one model line up, whatever was cut away
    AddSection(std::move(section), direction, lines);
  }
  if (options.outlines) {
    at(DrawStage::kOutlines);
    constexpr bool kNarrow = true;
    FindOutlines(model, scene, kNarrow, threads);
    lines.outlines = OutlinesAroundMiddle(model, scene);
  }
  at(DrawStage::kDone);
  return lines;
}

}  // namespace

std::vector<ViewLines> DrawViews(const Model& model, const std::vector<NamedDirection>& views, const DrawingOptions& options) {
  std::vector<ViewLines> drawn(views.size());
  Found found;
  if (options.curves || options.centreLines) found.circles = FindCircles(model);
  if (options.intersections && !views.empty()) found.crossings = FindIntersections(model, options.contact, options.threads);
  const unsigned atOnce = static_cast<unsigned>(std::clamp<std::size_t>(views.size(), 1, std::max(options.threads, 1U)));
  RunParallel(views.size(), atOnce, [&](std::size_t i) {
    const auto at = [&](DrawStage stage) {
      if (options.progress) options.progress(i, stage);
    };
    drawn[i] = DrawView(model, found, views[i], options, std::max(options.threads / atOnce, 1U), at);
  });
  return drawn;
}

}  // namespace zbr::drawing
