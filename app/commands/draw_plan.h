// What the options of `zbr draw` ask for.
#pragma once

#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>
#include <zbr-formats/sheets.h>

#include <optional>
#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/commands/model_files.h"

namespace tool {

struct SheetOutput {
  std::string file;
  SheetFormat format = SheetFormat::kSvg;
};

struct DrawPlan {
  SheetOptions sheet;
  std::vector<PlacedFile> objects;
  std::vector<SheetOutput> outputs;
  std::vector<NamedDirection> views;
  unsigned threads = 1;
  double contact = -1.0;
  bool curves = true;
  HiddenLines hidden = HiddenLines::kInPrincipalViews;
  bool intersections = true;
  bool tangents = true;
  std::string silhouettes;  // empty: smooth ones of scans alone
  bool centreLines = false;
  bool fill = false;
};

// All but the views, which depend on what the models say. Fails on options that make no sense, before anything is read.
DrawPlan PlanDraw(const DrawOptions& options);

// Named views in the order given, then the one of --look or --eye, then sections; iso if there is none. `middle` is that of the
// model; without it the view of --eye is left out. Fails on views named twice.
std::vector<NamedDirection> ChooseViews(const DrawOptions& options, bool yUpInFile, const std::optional<ZBR_PT3>& middle);

}  // namespace tool
