// zbr pick: what of a model is seen at points of its drawing.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/scene.h>
#include <zbr-formats/meshes.h>
#include <zbr/tolerance.h>

#include <cmath>
#include <limits>
#include <utility>

#include "app/commands/commands.h"
#include "app/commands/points.h"
#include "app/io/output_files.h"
#include "app/io/progress.h"

namespace tool {
namespace {

// What heights are off by, as a part of the model's diagonal.
constexpr double kRounding = 1e-14;

std::string Line(const ZBR_PT& at, const Scene& scene, const Model& model) {
  std::string text;
  AppendNumber(text, at.x());
  text += ' ';
  AppendNumber(text, at.y());
  const ZBR_PT3 p = scene.FromDrawing(ZBR_PT3(at.x(), at.y(), 0));
  const bool isFar = !std::isfinite(p.x()) || !std::isfinite(p.y());
  double z = std::numeric_limits<double>::lowest();
  ZBR_HL_SOURCE hit;
  if (isFar || !ZBR_HiddenLine::PickShells(p.x(), p.y(), scene.shells.data(), scene.ShellCount(), z, hit))
    return text + " nothing\n";
  const double height = scene.ToDrawing(ZBR_PT3(p.x(), p.y(), z)).z();
  const std::size_t triangle = model.shellBegin[static_cast<std::size_t>(hit.shell)] + static_cast<std::size_t>(hit.triangle);
  text += " shell " + std::to_string(hit.shell) + " triangle " + std::to_string(model.source[triangle]) + " height ";
  const bool isZero = std::abs(height) < kRounding * model.Diagonal();
  return text + (isZero ? "0" : RoundedText(height, 12)) + "\n";
}

}  // namespace

int RunPick(const PickOptions& options) {
  Progress progress;
  const std::vector<ZBR_PT> points = ReadPoints(options.coordinates, options.file);
  progress.Stage("reading " + options.file);
  const Mesh mesh = ReadMesh(options.file, options.modelFormat);
  const View view = ChooseView(options.view, mesh.yUp);
  progress.Stage("preparing");
  constexpr double kAnyCrease = 180;  // no lines are drawn
  const Model model = MakeModel(mesh, kAnyCrease, options.weld);
  Scene scene = MakeScene(model, view);
  const ZBR_TmpEps tolerance(kSceneTolerance);
  ZBR_HiddenLine::Prepare(scene.shells.data(), scene.ShellCount());
  progress.Stage("picking");
  std::string text;
  for (const ZBR_PT& point : points) text += Line(point, scene, model);
  progress.Stage("");
  WriteToStandardOutput(std::move(text));
  return kExitFine;
}

}  // namespace tool
