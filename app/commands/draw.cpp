// zbr draw: hidden-line drawings of triangle models.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/outlines.h>
#include <zbr-drawing/removal.h>
#include <zbr-drawing/scene.h>
#include <zbr-formats/sheets.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

#include "app/commands/draw_plan.h"
#include "app/io/output_files.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {
namespace {

// Milliseconds of a view's stages.
struct Times {
  double scene = 0.0, removal = 0.0, chaining = 0.0, outlines = 0.0;
};

ViewLines DrawView(const Model& model, const NamedDirection& view, const DrawPlan& plan, unsigned threads, Times& times) {
  Stopwatch watch;
  Scene scene = MakeScene(model, view.view);
  times.scene = watch.Lap();
  RemoveHidden(scene, threads);
  times.removal = watch.Lap();
  ViewLines lines = CollectLines(model, scene, plan.sheet.hidden != HiddenStyle::kNone);
  lines.name = view.name;
  times.chaining = watch.Lap();
  if (!plan.fill) return lines;
  constexpr bool kNarrow = true;
  FindOutlines(model, scene, kNarrow, threads);
  lines.outlines = OutlinesAroundMiddle(model, scene);
  times.outlines = watch.Lap();
  return lines;
}

// Threads go to the views first, which need nothing of each other, and what is left of them to the shells of each.
std::vector<ViewLines> DrawViews(const Model& model, const DrawPlan& plan, Progress& progress, std::vector<Times>& times) {
  std::vector<ViewLines> drawn(plan.views.size());
  times.resize(plan.views.size());
  const auto count = static_cast<unsigned>(plan.views.size());
  const unsigned atOnce = std::min(plan.threads, count);
  std::atomic<unsigned> done{0};
  RunParallel(plan.views.size(), atOnce, [&](std::size_t i) {
    const std::string counter =
        count > 1 ? " (" + std::to_string(done.load()) + " of " + std::to_string(count) + " views done)" : "";
    progress.Stage("removing hidden lines" + counter);
    drawn[i] = DrawView(model, plan.views[i], plan, std::max(plan.threads / atOnce, 1U), times[i]);
    ++done;
  });
  return drawn;
}

// Two columns; numbers are aligned to the right.
class Report {
 public:
  void Count(const std::string& label, std::size_t count) { rows_.emplace_back(label, std::to_string(count)); }
  void Time(const std::string& label, double milliseconds) { rows_.emplace_back(label, FixedText(milliseconds, 2) + " ms"); }

  std::string Text() const {
    std::size_t label = 0, value = 0;
    for (const auto& [l, v] : rows_) {
      label = std::max(label, l.size());
      value = std::max(value, v.size());
    }
    std::string text;
    for (const auto& [l, v] : rows_) text.append(l).append(label - l.size() + 2 + value - v.size(), ' ').append(v).append("\n");
    return text;
  }

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
};

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

// The stages of views that ran at once are summed up.
void AddViewTimes(Report& report, const std::vector<Times>& times, bool fill) {
  Times sum;
  for (const Times& t : times) {
    sum.scene += t.scene;
    sum.removal += t.removal;
    sum.chaining += t.chaining;
    sum.outlines += t.outlines;
  }
  report.Time("scene", sum.scene);
  report.Time("removal", sum.removal);
  report.Time("chaining", sum.chaining);
  if (fill) report.Time("outlines", sum.outlines);
}

// An object may be shaded in one view and covered, or seen edge-on, in another.
void NoteEmptyOutlines(const std::vector<ViewLines>& views, const std::vector<ObjectSource>& objects, Progress& progress) {
  for (const ViewLines& view : views) {
    for (std::size_t k = 0; k < view.outlines.size(); ++k) {
      if (view.outlines[k].empty())
        progress.Note(objects[k].name + ": note: nothing of it is seen in the view " + view.name + ", and nothing is filled there");
    }
  }
}

}  // namespace

int RunDraw(const DrawOptions& options) {
  Progress progress;
  DrawPlan plan = PlanDraw(options);
  Report report;
  Stopwatch watch;
  progress.Stage("reading");
  const Objects objects = ReadObjects(plan.objects, options.modelFormat);
  plan.views = ChooseViews(options, objects.mesh.yUp);
  const double read = watch.Lap();

  progress.Stage("joining triangles");
  const Model model = MakeModel(objects.mesh, options.crease, options.weld);
  if (model.TriangleCount() == 0) throw Failure(plan.objects.front().file + ": no triangle has an area");
  const double prepared = watch.Lap();

  std::vector<Times> times;
  std::vector<ViewLines> views = DrawViews(model, plan, progress, times);
  NoteEmptyOutlines(views, objects.sources, progress);
  watch.Lap();

  progress.Stage("writing");
  const Sheet sheet = LayOut(std::move(views), plan.sheet);
  OutputFiles files;
  for (const SheetOutput& output : plan.outputs)
    files.Add(output.file, WriteSheet(output.format, sheet, objects.sources, model.ShellCount()));
  files.Commit();
  progress.Stage("");

  if (options.stats || plan.outputs.empty()) {
    report.Count("triangles", model.TriangleCount());
    report.Count("left out", model.collapsed + model.repeated);
    report.Count("shells", model.ShellCount());
    CountLines(report, sheet);
    report.Time("read", read);
    report.Time("model", prepared);
    AddViewTimes(report, times, plan.fill);
    report.Time("write", watch.Lap());
    const bool pipe = std::any_of(plan.outputs.begin(), plan.outputs.end(), [](const SheetOutput& o) { return o.file == "-"; });
    std::fputs(report.Text().c_str(), pipe ? stderr : stdout);
  }
  return kExitFine;
}

}  // namespace tool
