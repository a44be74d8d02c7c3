// zbr pick: what of a model is seen at points of its drawing.

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/picker.h>

#include <cmath>
#include <utility>

#include "app/commands/commands.h"
#include "app/commands/model_files.h"
#include "app/commands/points.h"
#include "app/io/output_files.h"
#include "app/io/progress.h"

namespace tool {
namespace {

// What heights are off by, as a part of the model's diagonal.
constexpr double kRounding = 1e-14;

std::string Line(const ZBR_PT& at, const Picker& picker, double diagonal) {
  std::string text;
  AppendNumber(text, at.x());
  text += ' ';
  AppendNumber(text, at.y());
  const auto hit = picker.At(at);
  if (!hit) return text + " nothing\n";
  text += " shell " + std::to_string(hit->shell) + " triangle " + std::to_string(hit->triangle) + " height ";
  const bool isZero = std::abs(hit->height) < kRounding * diagonal;
  return text + (isZero ? "0" : RoundedText(hit->height, 12)) + "\n";
}

}  // namespace

int RunPick(const PickOptions& options) {
  Progress progress;
  const std::vector<ZBR_PT> points = ReadPoints(options.coordinates, options.file);
  progress.Stage("reading " + options.file);
  const Mesh mesh = ReadModel(options.file, options.modelFormat);
  const View view = ChooseView(options.view, mesh.yUp);
  progress.Stage("preparing");
  constexpr double kAnyCrease = 180;  // no lines are drawn
  const Model model = MakeModel(mesh, kAnyCrease, options.weld);
  const Picker picker(model, view);
  progress.Stage("picking");
  std::string text;
  for (const ZBR_PT& point : points) text += Line(point, picker, model.Diagonal());
  progress.Stage("");
  WriteToStandardOutput(std::move(text));
  return kExitFine;
}

}  // namespace tool
