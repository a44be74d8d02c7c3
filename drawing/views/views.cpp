// From a model to the lines of its views: scene, removal, lines and, where asked for, outlines, which use the scene up.
#include <zbr-drawing/views.h>

#include <zbr-drawing/failure.h>
#include <zbr-drawing/outlines.h>
#include <zbr-drawing/removal.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "drawing/intersections/coaxial.h"
#include "drawing/intersections/seams.h"
#include "drawing/model/connectivity.h"
#include "drawing/parallel.h"
#include "drawing/sections/cut_scene.h"
#include "drawing/sections/drawn_section.h"
#include "drawing/silhouettes/smooth_silhouettes.h"
#include "drawing/views/collect_lines.h"
#include "drawing/views/crumbs.h"
#include "drawing/views/perspective.h"
#include "drawing/views/section_outlines.h"
#include "drawing/views/specks.h"

namespace zbr::drawing {
namespace {

// What is found once for all views.
struct Found {
  std::optional<Circles> circles;
  std::vector<IntersectionLine> crossings;
  std::vector<SmoothNormals> normals;  // of shells, where silhouettes are to be smooth
  ChordSides sides;                    // on the circles, where these are wanted as curves
};

void AddSection(SectionCut&& section, const NamedDirection& direction, ViewLines& view) {
  view.section = SectionOfView{direction.name.substr(0, 1), *direction.section, std::move(section.faces),
                               section.openLines,           section.bridged,    false};
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

// A view on its way to lines.
struct Prepared {
  Scene scene;
  SectionCut section;
  Extent whole;  // of what a section is made of
  std::optional<SmoothSilhouettes> silhouettes;
  CurveNotes curves;
};

bool IsWhole(const NamedDirection& direction) {
  return !direction.section && !direction.view.perspective;
}

bool IsHiddenWanted(const NamedDirection& direction, const DrawingOptions& options) {
  return options.hidden == HiddenLines::kInAllViews ||
         (options.hidden == HiddenLines::kInPrincipalViews && direction.view.IsPrincipal() && !direction.section);
}

Prepared Prepare(const Model& model, const Found& found, const NamedDirection& direction, const DrawingOptions& options,
                 unsigned threads) {
  Prepared view;
  std::vector<IntersectionLine> lines = found.crossings;
  if (options.smoothSilhouettes && IsWhole(direction)) view.silhouettes.emplace(model, found.normals, direction.view).AddTo(lines);
  view.scene = MakeScene(model, direction.view, lines, options.tangents, threads);
  if (options.contact >= 0) view.scene.contact = options.contact * view.scene.scale;
  if (direction.section) {
    view.whole = ExtentOf(view.scene);
    const double contact = std::max(view.scene.contact, kSceneTolerance) / view.scene.scale;
    view.section = FindDrawnSection(model, direction.view, *direction.section, contact);
    CutScene(model, lines, PlanesOf(*direction.section), view.section, view.scene);
  }
  if (direction.view.perspective) FitPicture(model, lines, view.scene);
  if (view.silhouettes) view.silhouettes->PutInto(model, view.scene);
  const Circles* const circles = options.curves ? &*found.circles : nullptr;
  view.curves = {model, circles, found.sides, view.scene, IsHiddenWanted(direction, options), threads};
  return view;
}

// Whether scenes are of no use when their lines have been told.
bool IsSceneSpent(const Model& model, const NamedDirection& direction, const DrawingOptions& options) {
  return !options.outlines && !model.isRough && !(options.smoothSilhouettes && IsWhole(direction));
}

bool AreRecordsSpent(const Model& model, const NamedDirection& direction, const DrawingOptions& options) {
  return IsSceneSpent(model, direction, options) && !options.centreLines;
}

// What views are made of but places and counts.
void GiveBackRecords(Model& model, unsigned threads) {
  RunInRanges(model.ShellCount(), threads, [&](std::size_t, std::size_t begin, std::size_t end) {
    for (std::size_t s = begin; s < end; ++s) *model.body.GetShell(static_cast<int>(s)) = ZBR_ZBREPS();
  });
  model.body = ZBR_ZBREPB();
  model.normals = std::vector<ZBR_PT3>();
  model.notes = std::vector<EdgeNote>();
}

ViewLines Collect(const Model& model, const Found& found, const NamedDirection& direction, const DrawingOptions& options,
                  unsigned threads, Prepared& view) {
  const bool hidden = IsHiddenWanted(direction, options);
  std::vector<Line> silhouettes;
  if (view.silhouettes) silhouettes = view.silhouettes->TakeFrom(model, view.scene, hidden);
  const Circles* const circles = options.curves ? &*found.circles : nullptr;
  Scene* const spent = IsSceneSpent(model, direction, options) ? &view.scene : nullptr;
  ViewLines lines = CollectFrom(model, view.scene, spent, hidden, circles, found.sides, view.curves, threads);
  lines.name = direction.name;
  const auto isHidden = [](const Line& line) { return line.hidden; };
  const auto unseen = std::stable_partition(silhouettes.begin(), silhouettes.end(), [&](const Line& l) { return !isHidden(l); });
  lines.lines.insert(lines.lines.end(), unseen, silhouettes.end());
  silhouettes.erase(unseen, silhouettes.end());
  AddVisible(lines, std::move(silhouettes));
  if (model.isRough) DropCrumbs(lines);
  if (view.silhouettes) {
    view.silhouettes->CloseContours(model, view.scene, lines);
  } else if (model.isRough && IsWhole(direction)) {
    CloseContours(model, view.scene, SilhouetteEdges(view.scene), lines);
  }
  if (direction.section) {
    lines.extent = view.whole;  // views of one model line up, whatever was cut away
    AddSection(std::move(view.section), direction, lines);
  }
  DropSpecks(lines, options.lineWidth > 0 ? options.lineWidth : kLineWidth * lines.extent.Size(), threads);
  if (!options.centreLines || direction.view.perspective) return lines;
  lines.centres = FindCentres(model, *found.circles, lines);
  const bool hasHidden = !lines.lines.empty() && lines.lines.back().hidden;
  lines.seenCentres = hasHidden ? FindCentres(model, *found.circles, lines, true) : lines.centres;
  return lines;
}

// A section is looked at along the normal of its plane, from afar.
void CheckSection(const NamedDirection& direction) {
  constexpr double kParallel = 1e-6;
  if (!direction.section) return;
  const bool isAlong = (direction.view.toViewer - direction.section->normal).Length() <= kParallel;  // not for NaN
  if (!isAlong || direction.view.perspective)
    throw Failure("'" + direction.name + "' is a section that is not seen along its plane's normal");
  if (!(direction.section->depth > 0) || !std::isfinite(direction.section->offset))
    throw Failure("'" + direction.name + "' is a section without a plane");
}

// `spent` is the model, if this is the last of its views.
ViewLines DrawOne(const Model& model, Model* spent, const Found& found, const NamedDirection& direction,
                  const DrawingOptions& options, unsigned threads, const std::function<void(DrawStage)>& at,
                  const std::function<bool(double)>& removal) {
  at(DrawStage::kScene);
  Prepared view = Prepare(model, found, direction, options, threads);
  if (spent != nullptr && AreRecordsSpent(model, direction, options)) GiveBackRecords(*spent, threads);
  at(DrawStage::kRemoval);
  if (!RemoveHidden(view.scene, threads, removal)) throw Failure("the removal of hidden lines was ended");
  at(DrawStage::kLines);
  std::vector<CutFace> faces;
  if (options.outlines && direction.section) faces = CutFacesOf(view.section, view.scene);
  ViewLines lines = Collect(model, found, direction, options, threads, view);
  if (options.outlines) {
    at(DrawStage::kOutlines);
    FindSectionOutlines(model, view.scene, faces, threads);
    lines.outlines = OutlinesAroundMiddle(model, view.scene);
  }
  at(DrawStage::kDone);
  return lines;
}

// `spent` is the model, if it is not needed afterwards.
std::vector<ViewLines> Draw(const Model& model, Model* spent, const std::vector<NamedDirection>& views,
                            const DrawingOptions& options) {
  for (const NamedDirection& direction : views) CheckSection(direction);
  std::vector<ViewLines> drawn(views.size());
  Found found;
  RunParallel(2, options.threads, [&](std::size_t which) {
    if (which == 0 && options.intersections && !views.empty()) found.crossings = FindSeams(model, options.contact, options.threads);
    if (which == 0 && !options.intersections) DropConnectivity(model);
    if (which == 1 && (options.curves || options.centreLines)) found.circles = FindCircles(model);
  });
  if (options.curves) found.sides = ChordSides(model, &*found.circles, options.threads);
  if (!found.crossings.empty()) {
    const Circles own = found.circles ? Circles() : FindCircles(model);
    DropCoaxial(model, found.circles ? *found.circles : own, found.crossings);
    if (options.curves) found.sides.SetCrossings(FindCrossingsOfRims(model, *found.circles, found.crossings));
  }
  for (std::size_t s = 0; options.smoothSilhouettes && s < model.ShellCount(); ++s)
    found.normals.push_back(SmoothNormalsOf(model, s));
  const unsigned atOnce = static_cast<unsigned>(std::clamp<std::size_t>(views.size(), 1, std::max(options.threads, 1U)));
  RunParallel(views.size(), atOnce, [&](std::size_t i) {
    const auto at = [&](DrawStage stage) {
      if (options.progress) options.progress(i, stage);
    };
    std::function<bool(double)> removal;
    if (options.removal) removal = [&](double share) { return options.removal(i, share); };
    drawn[i] = DrawOne(model, views.size() == 1 ? spent : nullptr, found, views[i], options, std::max(options.threads / atOnce, 1U),
                       at, removal);
  });
  return drawn;
}

}  // namespace

std::vector<ViewLines> DrawViews(const Model& model, const std::vector<NamedDirection>& views, const DrawingOptions& options) {
  return Draw(model, nullptr, views, options);
}

std::vector<ViewLines> DrawLastViews(Model& model, const std::vector<NamedDirection>& views, const DrawingOptions& options) {
  return Draw(model, &model, views, options);
}

ViewLines DrawView(const Model& model, const std::string& name, const DrawingOptions& options) {
  const std::optional<View> view = NamedView(name);
  if (!view) throw Failure("'" + name + "' is no view");
  return std::move(DrawViews(model, {{name, *view}}, options).front());
}

}  // namespace zbr::drawing
