// zbr outline: what models cover in a view, as regions.

#include <zbr-drawing/outlines.h>
#include <zbr-formats/plot.h>

#include <algorithm>
#include <cstdio>

#include "app/commands/load.h"
#include "app/commands/model_files.h"
#include "app/commands/outputs.h"
#include "app/commands/stats.h"
#include "app/commands/view_options.h"
#include "app/io/output_files.h"
#include "app/libraries.h"

namespace tool {
namespace {

std::vector<OutputPlan> PlanOutputs(const OutlineOptions& options, const std::vector<PlacedFile>& objects) {
  const Format chosen = options.format.empty() ? Format::kUnknown : FormatByName(options.format);
  Results results{{}, "{object}", false};
  for (const PlacedFile& object : objects) results.names.push_back(object.id);
  std::vector<OutputPlan> plans = PlanOutputs(options.outputs, results, chosen, "");
  for (const OutputPlan& plan : plans) {
    if (AreRead(objects, plan.file)) throw Failure(plan.file, "is a model to be read; the outline needs another name");
  }
  return plans;
}

std::string ViewName(const ViewOptions& view) {
  if (!view.look.empty()) return "seen along " + view.look;
  return (view.view.empty() ? "iso" : view.view) + " view";
}

// What the run works with, filled stage by stage.
struct Run {
  std::vector<OutputPlan> plans;
  int units = 0;
  std::string title, view;
  std::vector<Layer> layers;  // one for each object
  DxfVersion dxf = DxfVersion::kR2000;
};

std::vector<Layer> FindLayers(const Objects& objects, const Model& model, const View& view, const OutlineOptions& options) {
  std::vector<Layer> layers;
  for (LoopList& loops : FindOutlines(model, view, !options.whole, ThreadCount(options.jobs))) {
    const double area = zbrRegionOfLoops(loops).area();
    layers.push_back({objects.sources[layers.size()].id, std::move(loops), area});
  }
  return layers;
}

std::string PictureOf(const Run& run, const std::vector<Layer>& layers) {
  struct Colours {
    const char *fill, *stroke;
  };
  static constexpr std::array<Colours, 6> kColours = {{{"#c3ccd6", "#334155"},
                                                       {"#b5d8cd", "#0f766e"},
                                                       {"#f3d3b3", "#b45309"},
                                                       {"#c9cdf0", "#4338ca"},
                                                       {"#efc6cf", "#be123c"},
                                                       {"#dcdca8", "#4d7c0f"}}};
  Plot plot;
  plot.title = run.title;
  plot.caption = layers.size() == 1 ? "Outline, " + run.view : "Outlines, " + run.view;
  plot.units = run.units;
  if (layers.size() == 1) plot.remark = AreaText(layers[0].area, run.units);
  for (const Layer& layer : layers) {
    const Colours& colours = kColours[static_cast<std::size_t>(&layer - layers.data()) % kColours.size()];
    PlotItem item;
    if (layers.size() > 1) item.label = layer.name;  // else there is nothing to tell apart
    item.quantity = layer.area;
    item.region = layer.loops;
    item.fill = colours.fill;
    item.stroke = colours.stroke;
    plot.items.push_back(std::move(item));
  }
  return WriteSvg(plot);
}

std::string TextOf(const Run& run, const std::vector<Layer>& layers, Format format) {
  return format == Format::kSvg ? PictureOf(run, layers) : WriteDrawing(format, layers, run.units, run.dxf);
}

void WriteOutputs(const Run& run) {
  OutputFiles files;
  for (const OutputPlan& plan : run.plans) {
    std::vector<Layer> layers;
    for (const std::size_t i : plan.results) layers.push_back(run.layers[i]);
    files.Add(plan.file, TextOf(run, layers, plan.format));
  }
  files.Commit();
}

void NoteEmpty(const Objects& objects, const std::vector<Layer>& layers, Progress& progress) {
  for (std::size_t k = 0; k < layers.size(); ++k) {
    if (layers[k].loops.empty())
      progress.Note(objects.sources[k].name + ": note: nothing of it is seen in this view; its outline is empty");
  }
}

std::vector<std::string> NamesOf(const std::vector<Layer>& layers) {
  std::vector<std::string> names;
  for (const Layer& layer : layers) names.push_back(layer.name);
  return names;
}

}  // namespace

int RunOutline(const OutlineOptions& options) {
  Progress progress;
  const std::vector<PlacedFile> files = ListObjects(options.models, options.objects);
  Run run{PlanOutputs(options, files), UnitOption(options.unit), TitleOf(files), ViewName(options.view), {}, options.dxf};
  ChooseView(options.view, false);  // fails before anything is read
  std::vector<std::pair<std::string, double>> stages;
  Stopwatch watch;
  progress.Stage("reading");
  const Objects objects = ReadObjects(files, options.modelFormat, ThreadCount(options.jobs));
  const View view = ChooseView(options.view, objects.mesh.yUp);
  stages.emplace_back("read", watch.Lap());

  progress.Stage("joining triangles");
  constexpr double kAnyCrease = 180;  // no lines are drawn
  const Model model = MakeModel(objects.mesh, kAnyCrease, options.weld, ThreadCount(options.jobs));
  if (model.TriangleCount() == 0) throw Failure(files.front().file, "no triangle has an area");
  stages.emplace_back("model", watch.Lap());

  progress.Stage("finding outlines");
  run.layers = FindLayers(objects, model, view, options);
  stages.emplace_back("outline", watch.Lap());
  NoteEmpty(objects, run.layers, progress);

  progress.Stage("writing");
  WriteOutputs(run);
  stages.emplace_back("write", watch.Lap());
  progress.Stage("");
  if (options.stats || run.plans.empty()) {
    const std::string report = LayerTable(NamesOf(run.layers), run.layers) + "triangles  " + std::to_string(model.TriangleCount()) +
                               "\n" + StageTable(stages);
    std::fputs(report.c_str(), UsesStandardOutput(run.plans) ? stderr : stdout);
  }
  return kExitFine;
}

}  // namespace tool
