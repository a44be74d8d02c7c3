// zbr nest: which loops are outer loops and which are holes, as a list or as a drawing with the loops oriented accordingly.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>
#include <zbr-formats/picture.h>

#include <filesystem>

#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

std::string Line(const std::string& label, const ZBR_LOOP& loop, int depth, const Frame& frame) {
  return label + ": depth " + std::to_string(depth) + ", " + std::to_string(loop.pt().size()) + " points, area " +
         NumberText(frame.AreaOut(loop.area())) + ", at " + PointText(frame.Out(loop.pt().front())) + "\n";
}

std::string List(const LoopList& loops, const Frame& frame) {
  const LoopList rings = RingsOf(loops);
  const std::vector<int> depths = NestingDepths(rings);
  std::string text;
  std::size_t next = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const std::string number = std::to_string(i + 1);
    text += Line("loop " + number, *rings[next], depths[next], frame);
    ++next;
    for (std::size_t k = 0; k < loops[i]->children().size(); ++k, ++next) {
      text += Line("  hole " + number + "." + std::to_string(k + 1), *rings[next], depths[next], frame);
    }
  }
  return text;
}

std::string PictureOf(const Layer& layer, int units) {
  Picture picture;
  picture.title = layer.name;
  picture.units = units;
  picture.operands = {layer};
  picture.panels = {{std::to_string(layer.loops.size()) + " outer, " + std::to_string(CountHoles(layer.loops)) + " holes", layer}};
  return WriteSvg(picture);
}

}  // namespace

int RunNest(const NestOptions& options) {
  Progress progress;
  const std::string name = std::filesystem::path(BaseName(options.file)).stem().string();
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, FormatOption(options.input), options.file);
  const Loaded loaded = Load({options.file}, options.input, progress);
  Region region = LoadRegion(loaded.contours.front(), loaded.frame, progress);
  OutputFiles files;
  if (plans.empty()) {
    files.Add("-", List(region.loops, loaded.frame));
  } else {
    const Layer layer = MakeLayer(name, std::move(region.loops), loaded.frame);
    for (const OutputPlan& plan : plans) {
      files.Add(plan.file,
                plan.format == Format::kSvg ? PictureOf(layer, loaded.units) : WriteDrawing(plan.format, {layer}, loaded.units));
    }
  }
  progress.Stage("");
  files.Commit();
  return kExitFine;
}

}  // namespace tool
