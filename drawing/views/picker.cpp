#include <zbr-drawing/picker.h>

#include <zbr-drawing/failure.h>
#include <zbr/tolerance.h>

#include <cmath>
#include <cstddef>
#include <limits>

#include "drawing/views/bare_scene.h"

namespace zbr::drawing {

Picker::Picker(const Model& model, const View& view) : model_(&model) {
  if (view.perspective) throw Failure("what is seen at points can be told of parallel views only");
  MakeScene(model, view, scene_);
  GiveUpLines(scene_);
  const ZBR_TmpEps hold(kSceneTolerance);
  ZBR_HiddenLine::Prepare(scene_.shells.data(), scene_.ShellCount());
}

std::optional<Picker::Hit> Picker::At(const ZBR_PT& p) const {
  const ZBR_PT3 at = scene_.FromDrawing(ZBR_PT3(p.x(), p.y(), 0));
  if (!std::isfinite(at.x()) || !std::isfinite(at.y())) return std::nullopt;
  const ZBR_TmpEps hold(kSceneTolerance);
  double z = std::numeric_limits<double>::lowest();
  ZBR_HL_SOURCE hit;
  if (!ZBR_HiddenLine::PickShells(at.x(), at.y(), scene_.shells.data(), scene_.ShellCount(), z, hit)) return std::nullopt;
  const std::size_t shell = static_cast<std::size_t>(hit.shell);
  const std::size_t triangle = model_->shellBegin[shell] + static_cast<std::size_t>(hit.triangle);
  return Hit{static_cast<std::uint32_t>(hit.shell), model_->source[triangle], scene_.ToDrawing(ZBR_PT3(at.x(), at.y(), z)).z()};
}

}  // namespace zbr::drawing
