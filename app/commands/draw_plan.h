// What the options of `zbr draw` ask for.
#pragma once

#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>
#include <zbr-formats/sheets.h>

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
  bool fill = false;
};

// All but the views, which depend on what the models say. Fails on options that make no sense, before anything is read.
DrawPlan PlanDraw(const DrawOptions& options);

// Named views in the order given, then the one of --look; iso if there is none. Fails on views named twice.
std::vector<NamedDirection> ChooseViews(const DrawOptions& options, bool yUpInFile);

}  // namespace tool
