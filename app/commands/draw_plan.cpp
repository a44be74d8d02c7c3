// From the options of `zbr draw` to views, sheet and outputs.
#include "app/commands/draw_plan.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/files.h>

#include <algorithm>
#include <cmath>

#include "app/commands/outputs.h"
#include "app/io/output_files.h"
#include "app/libraries.h"

namespace tool {
namespace {

constexpr const char* kLook = "look";
constexpr const char* kEye = "eye";

std::size_t ViewCount(const DrawOptions& options) {
  return std::max<std::size_t>(
      options.views.size() + (options.look.empty() && options.eye.empty() ? 0 : 1) + options.sections.size(), 1);
}

SheetFormat FormatOfSheet(const std::string& file, const std::string& chosen) {
  const auto byName = SheetFormatByName(ExtensionOf(file));
  const auto format = byName ? byName : SheetFormatByName(chosen);
  if (!format) throw Failure(file, "the name does not tell the format, svg, pdf, dxf or json; give --format");
  return *format;
}

double MillimetresOf(const std::string& unit) {
  constexpr int kMillimetre = 4;
  return UnitFactor(UnitOption(unit), kMillimetre);
}

SheetOptions PlanSheet(const DrawOptions& options, const std::vector<PlacedFile>& objects) {
  SheetOptions sheet;
  if (options.sheet == "third") {
    sheet.projection = Projection::kThird;
  } else if (options.sheet == "first" || ViewCount(options) > 1) {
    sheet.projection = Projection::kFirst;
  }
  if (options.hidden == "none") sheet.hidden = HiddenStyle::kNone;
  if (options.hidden == "layer") sheet.hidden = HiddenStyle::kLayer;
  if (options.tangent == "layer") sheet.tangent = TangentStyle::kLayer;
  sheet.anyScale = options.scale == "fit";
  if (!options.scale.empty() && !sheet.anyScale) sheet.scale = ForOption("--scale", [&] { return ParseScale(options.scale); });
  if (!options.paper.empty()) sheet.paper = ForOption("--paper", [&] { return ParsePaper(options.paper); });
  sheet.unit = options.unit;
  sheet.millimetres = MillimetresOf(options.unit);
  sheet.number = options.number;
  sheet.author = options.author;
  sheet.date = options.date;
  sheet.title = options.title.empty() ? TitleOf(objects) : options.title;
  return sheet;
}

View EyeView(const DrawOptions& options, bool yUp, const ZBR_PT3& middle) {
  const ZBR_PT3 eye = ParseVector(options.eye, "--eye");
  ZBR_PT3 at = middle;
  if (!options.look.empty()) {
    const ZBR_PT3 ahead = -LookView(options.look, options.up, yUp).toViewer;
    const double distance = ahead.InnerProduct(at - eye);
    at = eye + ahead * (distance > 0 ? distance : std::max(eye.Distance(at), 1e-6));
  }
  const auto up = options.up.empty() ? std::nullopt : std::optional(ParseVector(options.up, "--up"));
  return ForOption("--eye", [&] { return LookFrom(eye, at, up ? *up : UsualUp(at - eye, yUp), options.fov); });
}

// What the options say for themselves, wherever the model is: seen from the side of what is upwards.
void CheckEye(DrawOptions options) {
  ParseVector(options.eye, "--eye");
  options.eye = "0,0,0";
  const ZBR_PT3 up = options.up.empty() ? ZBR_PT3(0, 0, 1) : ParseVector(options.up, "--up");
  EyeView(options, false, std::abs(up.x()) <= std::max(std::abs(up.y()), std::abs(up.z())) ? ZBR_PT3(1, 0, 0) : ZBR_PT3(0, 1, 0));
}

void AddSections(const std::vector<std::string>& sections, bool yUp, std::vector<NamedDirection>& views) {
  if (!sections.empty()) ForOption("--section", [&] { return SectionName(sections.size() - 1); });  // whether there are enough
  for (std::size_t k = 0; k < sections.size(); ++k) {
    const SectionPlane plane = ForOption("--section", [&] { return ParseSection(sections[k], yUp); });
    views.push_back({SectionName(k), SectionView(plane, yUp), plane});
  }
}

}  // namespace

DrawPlan PlanDraw(const DrawOptions& options) {
  if (!options.up.empty() && options.look.empty() && options.eye.empty()) throw Failure("--up needs --look or --eye");
  if (options.fov != 0 && options.eye.empty()) throw Failure("--fov needs --eye");
  ChooseViews(options, false, std::nullopt);
  DrawPlan plan;
  plan.objects = ListObjects(options.models, options.objects);
  plan.sheet = PlanSheet(options, plan.objects);
  for (const std::string& file : options.outputs) {
    const auto same = [&](const SheetOutput& o) { return IsSameFile(o.file, file); };
    if (std::any_of(plan.outputs.begin(), plan.outputs.end(), same)) throw Failure(file, "named twice as output");
    if (AreRead(plan.objects, file)) throw Failure(file, "is a model to be drawn; the drawing needs another name");
    CheckPlaceholders(file, "");
    plan.outputs.push_back({file, FormatOfSheet(file, options.format)});
  }
  plan.threads = ThreadCount(options.jobs);
  plan.contact = options.contact;
  plan.curves = options.curves == "on";
  plan.hidden = options.hidden.empty()     ? HiddenLines::kInPrincipalViews
                : options.hidden == "none" ? HiddenLines::kNone
                                           : HiddenLines::kInAllViews;
  plan.intersections = options.intersections == "on";
  plan.tangents = options.tangent != "none";
  plan.silhouettes = options.silhouettes;
  plan.centreLines = options.centreLines;
  plan.fill = options.fill;
  return plan;
}

std::vector<NamedDirection> ChooseViews(const DrawOptions& options, bool yUpInFile, const std::optional<ZBR_PT3>& middle) {
  const bool yUp = YUp(options.axes, yUpInFile);
  std::vector<NamedDirection> views;
  for (const std::string& name : options.views) {
    if (std::any_of(views.begin(), views.end(), [&](const NamedDirection& v) { return v.name == name; }))
      throw Failure("--view: " + Quoted(name) + " is named twice");
    views.push_back({name, ViewByName(name, yUp)});
  }
  if (!options.eye.empty()) {
    if (!middle) {
      CheckEye(options);
    } else {
      views.push_back({kEye, EyeView(options, yUp, *middle)});
    }
  } else if (!options.look.empty()) {
    views.push_back({kLook, LookView(options.look, options.up, yUp)});
  }
  AddSections(options.sections, yUp, views);
  if (views.empty()) views.push_back({"iso", ViewByName("iso", yUp)});
  return views;
}

}  // namespace tool
