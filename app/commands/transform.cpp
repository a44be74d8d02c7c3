// zbr transform: a drawing mirrored, scaled, turned and moved.

#include <zbr-drawing/affine.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/dxf.h>
#include <zbr-formats/files.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

bool IsFinite(const ZBR_PT& p) {
  return std::isfinite(p.x()) && std::isfinite(p.y());
}

bool IsFinite(const Path& path) {
  const auto isFinite = [](const ZBR_PT& p) { return IsFinite(p); };
  return std::all_of(path.points.begin(), path.points.end(), isFinite) &&
         std::all_of(path.curves.begin(), path.curves.end(), [&](const Curve& curve) {
           return IsFinite(curve.centre) && IsFinite(curve.u) && IsFinite(curve.v) &&
                  (!curve.spline || std::all_of(curve.spline->control.begin(), curve.spline->control.end(), isFinite));
         });
}

// The region that the drawing bounds, for formats that hold regions.
Layer RegionLayer(const Drawing& drawing, const std::string& name, const InputOptions& input, Progress& progress) {
  const Contours contours = MakeContours(drawing, WithDefaults(input.flatten, ExtentOf(drawing)));
  return MakeLayer(name, CurvedShape(LoadRegion(contours, input, progress)));
}

}  // namespace

int RunTransform(const TransformOptions& options) {
  Progress progress;
  const std::string name = std::filesystem::path(BaseName(options.file)).stem().string();
  const Format format = FormatOption(options.input);
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, format, options.file);
  NoteUnused(options.input.writing, plans, progress);
  const Affine map = MapOf(options.placement);
  const auto isDxf = [](const OutputPlan& plan) { return plan.format == Format::kDxf; };
  const bool isReadForLines = std::all_of(plans.begin(), plans.end(), isDxf);
  Drawing drawing = ReadInput(options.file, isReadForLines ? Content::kLines : Content::kRegions, options.input, progress);
  for (Path& path : drawing.paths) {
    Map(path, map);
    for (double& z : path.heights) z *= options.placement.scale;
    if (!IsFinite(path)) FailAt(options.file, path.line, "a coordinate overflows");
  }
  const auto isFlattened = [](const Path& path) {
    return !path.curves.empty() && std::any_of(path.heights.begin(), path.heights.end(), [](double z) { return z != 0; });
  };
  if (const auto count = std::count_if(drawing.paths.begin(), drawing.paths.end(), isFlattened); count > 0)
    progress.Note(options.file + ": note: " + std::to_string(count) + (count == 1 ? " contour" : " contours") +
                  " with curves put to height 0");
  OutputFiles files;
  for (const OutputPlan& plan : plans) {
    files.Add(plan.file, isDxf(plan) ? WriteDxf(drawing, options.input.writing.dxf.version)
                                     : WriteRegion(plan.format, RegionLayer(drawing, name, options.input, progress), drawing.units,
                                                   options.input.writing));
  }
  progress.Stage("");
  files.Commit();
  return kExitFine;
}

}  // namespace tool
