// zbr pick: what of a model is seen at points of its drawing.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/scene.h>
#include <zbr-formats/meshes.h>
#include <zbr/tolerance.h>

#include <algorithm>
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

constexpr double kNothing = std::numeric_limits<double>::lowest();

// A scene prepared for picking. Without lines there is nothing to remove, and preparing is all that the removal does.
void Prepare(Scene& scene) {
  for (ZBR_HL_TRI& triangle : scene.triangles) std::fill(std::begin(triangle.dispj), std::end(triangle.dispj), false);
  for (ZBR_HL_SHELL& shell : scene.shells) shell.HiddenLineSelf();
}

struct Hit {
  std::size_t shell = 0;
  std::size_t triangle = 0;  // place in the scene
  double z = kNothing;
};

// The library finds the shell and the height; the triangle is then the first of the shell that reaches it.
Hit Highest(const Scene& scene, const ZBR_PT3& p) {
  Hit hit;
  bool found = false;
  for (std::size_t s = 0; s < scene.shells.size(); ++s) {
    if (!ZBR_HiddenLine::PickShell(p.x(), p.y(), scene.shells[s], hit.z)) continue;
    hit.shell = s;
    found = true;
  }
  if (!found) return hit;
  const ZBR_HL_SHELL& shell = scene.shells[hit.shell];
  for (unsigned t = 0; t < shell.count; ++t) {
    double z = kNothing;
    if (!shell.tris[t].Pick(p, z) || z < hit.z) continue;
    hit.triangle = static_cast<std::size_t>(shell.tris + t - scene.triangles.data());
    break;
  }
  return hit;
}

std::string Line(const ZBR_PT& at, const Scene& scene, const Model& model) {
  std::string text;
  AppendNumber(text, at.x());
  text += ' ';
  AppendNumber(text, at.y());
  const ZBR_PT3 p = scene.FromDrawing(ZBR_PT3(at.x(), at.y(), 0));
  const bool isFar = !std::isfinite(p.x()) || !std::isfinite(p.y());
  const Hit hit = isFar ? Hit() : Highest(scene, p);
  if (hit.z == kNothing) return text + " nothing\n";
  const double height = scene.ToDrawing(ZBR_PT3(p.x(), p.y(), hit.z)).z();
  text += " shell " + std::to_string(hit.shell) + " triangle " + std::to_string(model.source[hit.triangle]) + " height ";
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
  Prepare(scene);
  progress.Stage("picking");
  std::string text;
  for (const ZBR_PT& point : points) text += Line(point, scene, model);
  progress.Stage("");
  WriteToStandardOutput(std::move(text));
  return kExitFine;
}

}  // namespace tool
