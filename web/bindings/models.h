// Models that JavaScript holds by number, and what is kept of them between calls.
//
// A mesh is read once. Its model depends on the crease angle, its views on many options; the latest of each is kept with a key that
// tells what it was made for, so that a drawing that was shown can be saved without drawing it again.
#pragma once

#include <zbr-drawing/objects.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "web/bindings/options.h"

namespace zbr::web {

using namespace drawing;

struct HeldModel {
  Objects objects;
  std::string title;
  double crease = 30.0, weld = 0.0;
  std::optional<Model> model;
  double modelCrease = 0.0;  // that `model` was made for
  std::string viewsKey;
  std::vector<ViewLines> views;

  // Fails where no triangle has an area.
  const Model& With(double creaseDegrees);
  // For what does not depend on creases: the model there is.
  const Model& Any() { return With(model ? modelCrease : crease); }
};

// Fails for a number that no model has.
HeldModel& ModelAt(std::uint32_t number);
std::uint32_t Hold(std::unique_ptr<HeldModel> model);

// "front", {direction: [x, y, z], up: [x, y, z], name: "..."}, {eye: [x, y, z], at: [x, y, z], up, fov, name} or {section: "X=10"}.
// `at` is the middle of the model if nothing else is said.
NamedDirection DirectionOf(const Options::Json& json, bool yUp, std::size_t place, const ZBR_PT3& middle);

// The views that the options ask for, drawn unless they are kept.
const std::vector<ViewLines>& ViewsOf(HeldModel& held, Options& options);

SheetOptions SheetOptionsOf(const HeldModel& held, Options& options, std::size_t viewCount);

}  // namespace zbr::web
