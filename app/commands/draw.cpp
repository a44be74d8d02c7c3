// zbr draw: hidden-line drawings of triangle models.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/survey.h>
#include <zbr-drawing/views.h>
#include <zbr-formats/sheets.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>

#include "app/commands/draw_plan.h"
#include "app/commands/eye.h"
#include "app/commands/report.h"
#include "app/io/output_files.h"
#include "app/io/progress.h"
#include "app/kept.h"
#include "app/libraries.h"

namespace tool {
namespace {

// When the stages of a view began. Views are worked on by different threads, each of which keeps to its own entry.
using Clock = std::chrono::steady_clock;
using StageTimes = std::array<Clock::time_point, static_cast<std::size_t>(DrawStage::kDone) + 1>;

std::vector<ViewLines> DrawPlanned(Model& model, const DrawPlan& plan, Progress& progress, std::vector<StageTimes>& times) {
  times.resize(plan.views.size());
  const std::size_t count = plan.views.size();
  std::atomic<std::size_t> done{0};
  DrawingOptions options;
  options.hidden = plan.hidden;
  options.intersections = plan.intersections;
  options.tangents = plan.tangents;
  options.curves = plan.curves;
  options.smoothSilhouettes = plan.silhouettes == "smooth" || (plan.silhouettes.empty() && model.isRough);
  options.centreLines = plan.centreLines;
  options.outlines = plan.fill;
  options.threads = plan.threads;
  options.contact = plan.contact;
  if (plan.sheet.scale) options.lineWidth = Sheet().wide / (*plan.sheet.scale * plan.sheet.millimetres);
  options.progress = [&](std::size_t view, DrawStage stage) {
    // Stages left out take no time.
    std::replace(times[view].begin(), times[view].begin() + static_cast<std::ptrdiff_t>(stage) + 1, Clock::time_point(),
                 Clock::now());
    if (stage == DrawStage::kDone) ++done;
    if (stage != DrawStage::kScene) return;
    const std::string counter =
        count > 1 ? " (" + std::to_string(done.load()) + " of " + std::to_string(count) + " views done)" : "";
    progress.Stage("removing hidden lines" + counter);
  };
  return DrawLastViews(model, plan.views, options);
}

void CountLines(Report& report, const Sheet& sheet) {
  for (const PlacedView& view : sheet.views) {
    const auto& lines = view.lines.lines;
    const auto hidden = static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [](const Line& l) { return l.hidden; }));
    report.Count(view.lines.name + ": drawable edges", view.lines.drawable);
    report.Count(view.lines.name + ": pairs tried", view.lines.pairs);
    report.Count(view.lines.name + ": visible lines", lines.size() - hidden);
    report.Count(view.lines.name + ": hidden lines", hidden);
  }
}

// What comes before the views, then the stages of views; of those that ran at once they are summed up.
void AddViewTimes(Report& report, Clock::time_point begin, const std::vector<StageTimes>& times, bool fill) {
  auto first = times.front().front();
  for (const StageTimes& t : times) first = std::min(first, t.front());
  report.Time("search", std::chrono::duration<double, std::milli>(first - begin).count());
  constexpr std::array<const char*, 4> kLabels = {"scene", "removal", "chaining", "outlines"};
  for (std::size_t stage = 0; stage < kLabels.size() - (fill ? 0 : 1); ++stage) {
    double sum = 0.0;
    for (const StageTimes& t : times) sum += std::chrono::duration<double, std::milli>(t[stage + 1] - t[stage]).count();
    report.Time(kLabels[stage], sum);
  }
}

// A file's objects, which are those from one of `begins` to the next, may be shaded in one view and covered, or seen edge-on, in
// another.
void NoteEmptyOutlines(const std::vector<ViewLines>& views, const Objects& objects, const std::vector<std::size_t>& begins,
                       Progress& progress) {
  for (const ViewLines& view : views) {
    for (std::size_t k = 0; k + 1 < begins.size(); ++k) {
      if (begins[k] == begins[k + 1]) continue;  // of a file without objects
      const auto outline = view.outlines.begin();
      const auto from = static_cast<std::ptrdiff_t>(begins[k]), to = static_cast<std::ptrdiff_t>(begins[k + 1]);
      if (std::all_of(outline + from, outline + to, [](const LoopList& loops) { return loops.empty(); }))
        progress.Note(objects.sources[begins[k]].name + ": note: nothing of it is seen in the view " + view.name +
                      ", and nothing is filled there");
    }
  }
}

// Lines have no meaning there: what is seen is backs of faces.
void NoteEyes(const Model& model, const std::vector<NamedDirection>& views, Progress& progress) {
  for (const NamedDirection& direction : views) {
    if (direction.view.perspective && IsWithinMaterial(model, direction.view.perspective->eye))
      progress.Note(direction.name + ": note: the eye is within the material; only backs of faces are seen from there");
  }
}

void NoteUnseen(const std::vector<ViewLines>& views, const DrawOptions& options, Progress& progress) {
  for (const ViewLines& view : views) {
    const bool isSeen = std::any_of(view.lines.begin(), view.lines.end(), [](const Line& line) { return !line.hidden; });
    if (!isSeen && !view.section) progress.Note(view.name + ": note: nothing of the model is seen");
    const Centres& centres = options.hidden == "layer" ? view.seenCentres : view.centres;
    if (options.centreLines && centres.marks.empty() && centres.axes.empty())
      progress.Note(view.name + (view.view.perspective ? ": note: perspectives have no centre lines"
                                                       : ": note: no centre lines: no circle is seen"));
  }
}

// Where the model is, as the option names planes: along an axis by its coordinate.
std::string ReachAcross(const Model& model, const SectionPlane& plane) {
  double low = HUGE_VAL, high = -HUGE_VAL;
  for (const double x : {model.low.x(), model.high.x()}) {
    for (const double y : {model.low.y(), model.high.y()}) {
      for (const double z : {model.low.z(), model.high.z()}) {
        low = std::min(low, plane.normal.InnerProduct({x, y, z}));
        high = std::max(high, plane.normal.InnerProduct({x, y, z}));
      }
    }
  }
  const ZBR_PT3& n = plane.normal;
  const bool isTurned = n.x() == -1 || n.y() == -1 || n.z() == -1;
  return "the model's box reaches from " + RoundedText(isTurned ? -high : low, 6) + " to " +
         RoundedText(isTurned ? -low : high, 6) + " there";
}

void NoteSections(const Model& model, const std::vector<ViewLines>& views, Progress& progress) {
  for (const ViewLines& view : views) {
    if (!view.section) continue;
    const std::size_t open = view.section->openLines, bridged = view.section->bridged;
    const std::string isOpen = view.name + ": note: the model is open there: ";
    if (bridged > 0)
      progress.Note(isOpen + std::to_string(bridged) + (bridged == 1 ? " cut was" : " cuts were") +
                    " closed across a small opening");
    if (open > 0)
      progress.Note(isOpen + std::to_string(open) + (open == 1 ? " cut does" : " cuts do") +
                    " not close, and nothing is hatched beside " + (open == 1 ? "it" : "them"));
    if (!view.section->faces.empty() || open > 0) continue;
    const char* const nothing = !view.lines.empty()                        ? "the plane cuts nothing"
                                : std::isfinite(view.section->plane.depth) ? "nothing of the model is between the planes"
                                                                           : "nothing of the model is behind the plane";
    progress.Note(view.name + ": note: " + nothing + "; " + ReachAcross(model, view.section->plane));
  }
}

// A section alone on its sheet is one that the reader knows.
void NoteUnmarked(const Sheet& sheet, Progress& progress) {
  for (const PlacedView& view : sheet.views) {
    if (sheet.views.size() > 1 && view.lines.section && !view.lines.section->isMarked)
      progress.Note(view.lines.name +
                    ": note: none of the views shows where its plane is; that takes one from the front, a side, above or below "
                    "which sees the plane as a line");
  }
}

void NoteShortened(const Sheet& sheet, Progress& progress) {
  for (const std::string& field : sheet.shortened)
    progress.Note("title block: note: the field " + field + " has no room for all of its text");
}

// A crease angle that was chosen is not talked about.
void NoteRoughness(const Model& model, const std::string& file, const DrawOptions& options, Progress& progress) {
  constexpr double kUsual = 30.0;
  if (options.crease == kUsual && HasRoughCreases(model))
    progress.Note(file +
                  ": note: many creases end nowhere, as the roughness of a scanned surface does; short ones are left out, --crease "
                  "60 draws fewer");
}

struct DrawTimes {
  double read = 0.0, model = 0.0, write = 0.0;
  Clock::time_point views;  // when the work on them began
  std::vector<StageTimes> stages;
};

Report ReportOf(const Model& model, const Sheet& sheet, const DrawTimes& times, bool fill) {
  Report report;
  report.Count("triangles", model.TriangleCount());
  report.Count("left out", model.collapsed + model.repeated);
  report.Count("shells", model.ShellCount());
  CountLines(report, sheet);
  report.Time("read", times.read);
  report.Time("model", times.model);
  AddViewTimes(report, times.views, times.stages, fill);
  report.Time("write", times.write);
  return report;
}

}  // namespace

int RunDraw(const DrawOptions& options) {
  Progress progress;
  DrawPlan plan = PlanDraw(options);
  DrawTimes times;
  Stopwatch watch;
  progress.Stage("reading");
  Objects objects = ReadObjects(plan.objects, options.modelFormat, plan.threads);
  std::vector<std::size_t> filled;
  if (plan.fill) filled = MakeBodiesObjects(objects);
  times.read = watch.Lap();

  progress.Stage("joining triangles");
  Model& model = Kept(MakeModel(objects.mesh, options.crease, options.weld, plan.threads));
  if (model.TriangleCount() == 0) throw Failure(plan.objects.front().file, "no triangle has an area");
  plan.views = ChooseViews(options, objects.mesh.yUp, model.Centre());
  objects.mesh = {};  // all there is to know is in the model
  NoteEyes(model, plan.views, progress);
  NoteRoughness(model, plan.objects.front().file, options, progress);
  times.model = watch.Lap();

  progress.Stage("looking for intersections and circles");
  times.views = Clock::now();
  std::vector<ViewLines> views = DrawPlanned(model, plan, progress, times.stages);
  NoteEmptyOutlines(views, objects, filled, progress);
  NoteUnseen(views, options, progress);
  NoteSections(model, views, progress);
  watch.Lap();

  progress.Stage("writing");
  const Sheet& sheet = Kept(LayOut(std::move(views), plan.sheet, plan.threads));
  NoteUnmarked(sheet, progress);
  NoteShortened(sheet, progress);
  OutputFiles files;
  for (const SheetOutput& output : plan.outputs)
    files.Add(output.file, WriteSheet(output.format, sheet, objects.sources, model.ShellCount(), options.dxf, plan.threads));
  files.Commit();
  progress.Stage("");
  times.write = watch.Lap();

  if (options.stats || plan.outputs.empty()) {
    const bool pipe = std::any_of(plan.outputs.begin(), plan.outputs.end(), [](const SheetOutput& o) { return o.file == "-"; });
    std::fputs(ReportOf(model, sheet, times, plan.fill).Table().c_str(), pipe ? stderr : stdout);
  }
  return kExitFine;
}

}  // namespace tool
