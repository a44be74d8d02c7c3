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

// "X,Y", the origin where nothing is given.
ZBR_PT PointOf(const std::string& text, const char* option) {
  if (text.empty()) return {};
  const std::size_t comma = text.find(',');
  const auto x = ParseNumber(text.substr(0, comma));
  const auto y = comma == std::string::npos ? std::nullopt : ParseNumber(text.substr(comma + 1));
  if (!x || !y) throw Failure(std::string(option) + ": " + Quoted(text) + " is not X,Y");
  return {*x, *y};
}

Affine MapOf(const TransformOptions& options) {
  const ZBR_PT about = PointOf(options.about, "--about"), move = PointOf(options.move, "--move");
  const double x = options.mirror == "x" ? -options.scale : options.scale;
  const double y = options.mirror == "y" ? -options.scale : options.scale;
  const Affine inPlace = Affine::Turn(options.turn).After(Affine::Scale(x, y));
  return Affine::Move(move + about).After(inPlace.After(Affine::Move(about * -1.0)));
}

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
  const Affine map = MapOf(options);
  const auto isDxf = [](const OutputPlan& plan) { return plan.format == Format::kDxf; };
  const bool isReadForLines = std::all_of(plans.begin(), plans.end(), isDxf);
  Drawing drawing = ReadInput(options.file, isReadForLines ? Content::kLines : Content::kRegions, options.input, progress);
  for (Path& path : drawing.paths) {
    Map(path, map);
    for (double& z : path.heights) z *= options.scale;
    if (!IsFinite(path)) FailAt(options.file, path.line, "a coordinate overflows");
  }
  OutputFiles files;
  for (const OutputPlan& plan : plans) {
    files.Add(plan.file, isDxf(plan) ? WriteDxf(drawing, options.input.writing.dxf)
                                     : WriteRegion(plan.format, RegionLayer(drawing, name, options.input, progress), drawing.units,
                                                   options.input.writing));
  }
  progress.Stage("");
  files.Commit();
  return kExitFine;
}

}  // namespace tool
