// zbr nest: which loops are outer loops and which are holes, as a list or as a drawing with the loops oriented accordingly.

#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>


#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

std::string Line(const std::string& label, const ZBR_REGION& shape, std::size_t ring, int depth) {
  const auto first = static_cast<std::size_t>(shape.ring_offsets()[ring]),
             end = static_cast<std::size_t>(shape.ring_offsets()[ring + 1]);
  ZBR_REGION alone;
  alone.AddRing(shape.points().data() + first, end - first);
  return label + ": depth " + std::to_string(depth) + ", " + std::to_string(end - first) + " points, area " +
         NumberText(alone.area()) + ", at " + PointText(shape.points()[first]) + "\n";
}

std::string List(const ZBR_REGION& shape) {
  std::vector<std::int32_t> depths, parents;
  zbrNestRegion(shape.view(), depths, parents);
  std::string text;
  for (std::size_t i = 0; i < shape.polygon_count(); ++i) {
    const std::string number = std::to_string(i + 1);
    const auto first = static_cast<std::size_t>(shape.polygon_offsets()[i]);
    for (std::size_t r = first; r < static_cast<std::size_t>(shape.polygon_offsets()[i + 1]); ++r) {
      const std::string label = r == first ? "loop " + number : "  hole " + number + "." + std::to_string(r - first);
      text += Line(label, shape, r, depths[r]);
    }
  }
  return text;
}

}  // namespace

int RunNest(const NestOptions& options) {
  Progress progress;
  const std::string name = StemOf(options.file);
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, FormatOption(options.input), options.file);
  const Loaded loaded = Load({options.file}, options.input, progress);
  const ZBR_REGION shape = ValidShape(LoadRegion(loaded.contours.front(), options.input, progress));
  OutputFiles files;
  if (plans.empty()) {
    files.Add("-", List(shape));
  } else {
    const Layer layer = MakeLayer(name, shape);
    for (const OutputPlan& plan : plans) files.Add(plan.file, WriteRegion(plan.format, layer, loaded.units));
  }
  progress.Stage("");
  files.Commit();
  return kExitFine;
}

}  // namespace tool
