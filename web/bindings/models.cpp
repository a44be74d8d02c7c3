#include "web/bindings/models.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "web/bindings/exchange.h"
#include "web/bindings/exports.h"

namespace zbr::web {
namespace {

struct Models {
  std::map<std::uint32_t, std::unique_ptr<HeldModel>> held;
  std::uint32_t last = 0;

  static Models& Get() {
    static Models models;
    return models;
  }
};

ZBR_PT3 VectorOf(const Options::Json& json, const std::string& name) {
  if (!json.is_array() || json.size() != 3 || !std::all_of(json.begin(), json.end(), [](const auto& v) { return v.is_number(); }))
    Options::Refuse(name, "three finite numbers are needed");
  return ZBR_PT3(json[0].get<double>(), json[1].get<double>(), json[2].get<double>());
}

bool YUp(const HeldModel& held, Options& options) {
  constexpr std::size_t kFromFile = 2;
  const std::size_t axis = options.Choose("axes", {"z", "y"}, kFromFile);
  return axis == kFromFile ? held.objects.mesh.yUp : axis == 1;
}

NamedDirection SectionOf(Options& options, bool yUp) {
  const std::string plane = options.Get("section", std::string());
  options.Finish();
  const SectionPlane section = ParseSection(plane, yUp);
  return {"", SectionView(section, yUp), section};
}

std::string LettersOf(const std::vector<NamedDirection>& before) {
  const auto isSection = [](const NamedDirection& d) { return d.section.has_value(); };
  const auto count = static_cast<std::size_t>(std::count_if(before.begin(), before.end(), isSection));
  try {
    return SectionName(count);
  } catch (const Failure& failure) {
    Options::Refuse("views", failure.Cause());
  }
}

// From an eye, or along a direction.
View LookOf(Options& options, bool yUp, const ZBR_PT3& middle) {
  const Options::Json &eye = options.At("eye"), &up = options.At("up");
  if (eye.is_null()) {
    const ZBR_PT3 direction = VectorOf(options.At("direction"), "direction");
    return LookAlong(direction, up.is_null() ? UsualUp(direction, yUp) : VectorOf(up, "up"));
  }
  const ZBR_PT3 from = VectorOf(eye, "eye");
  const Options::Json& at = options.At("at");
  const ZBR_PT3 to = at.is_null() ? middle : VectorOf(at, "at");
  return LookFrom(from, to, up.is_null() ? UsualUp(to - from, yUp) : VectorOf(up, "up"), options.Get("fov", 0.0));
}

std::vector<NamedDirection> DirectionsOf(HeldModel& held, Options& options) {
  const bool yUp = YUp(held, options);
  const Options::Json& views = options.At("views");
  std::vector<NamedDirection> directions;
  if (views.is_null()) return {{"iso", *NamedView("iso", yUp), {}}};
  if (!views.is_array() || views.empty()) Options::Refuse("views", "a list of views is needed");
  for (const auto& view : views) {
    NamedDirection direction = DirectionOf(view, yUp, directions.size(), held.Any().Centre());
    if (direction.section) direction.name = LettersOf(directions);
    const auto isSame = [&](const NamedDirection& d) { return d.name == direction.name; };
    if (std::any_of(directions.begin(), directions.end(), isSame))
      Options::Refuse("views", Quoted(direction.name) + " is named twice");
    directions.push_back(std::move(direction));
  }
  return directions;
}

DrawingOptions DrawingOptionsOf(Options& options, bool isRough) {
  DrawingOptions drawing;
  drawing.hidden = static_cast<HiddenLines>(options.Choose("hidden", {"none", "principal", "all"}, 1));
  drawing.intersections = options.Get("intersections", true);
  drawing.tangents = options.Get("tangents", false);
  drawing.curves = options.Get("curves", true);
  drawing.outlines = options.Get("fill", false);
  drawing.smoothSilhouettes = options.Choose("silhouettes", {"facets", "smooth"}, isRough ? 1 : 0) == 1;
  drawing.centreLines = options.Get("centreLines", false);
  drawing.contact = options.Get("contact", -1.0);
  return drawing;
}

// What the views depend on.
std::string KeyOf(const std::vector<NamedDirection>& directions, const DrawingOptions& options, double crease) {
  std::string key;
  const auto add = [&](double number) {
    AppendNumber(key, number);
    key += ' ';
  };
  add(crease);
  add(static_cast<double>(options.hidden));
  for (const bool flag :
       {options.intersections, options.tangents, options.curves, options.smoothSilhouettes, options.outlines, options.centreLines})
    add(flag ? 1 : 0);
  add(options.contact);
  const auto addPoint = [&](const ZBR_PT3& p) {
    for (const double x : {p.x(), p.y(), p.z()}) add(x);
  };
  for (const NamedDirection& d : directions) {
    key += d.name + ' ';
    addPoint(d.view.right);
    addPoint(d.view.up);
    if (d.view.perspective) addPoint(d.view.perspective->eye);
    if (d.view.perspective) addPoint({d.view.perspective->distance, d.view.perspective->fieldOfView, 0});
    if (d.section) add(d.section->offset);
    if (d.section) add(d.section->depth);
  }
  return key;
}

void ReportStage(std::size_t view, std::size_t count, DrawStage stage) {
  static constexpr std::array<const char*, 5> kNames = {"preparing a view", "removing hidden lines", "joining lines",
                                                        "finding outlines", "drawn"};
  constexpr double kBefore = 0.2;  // of the work is done before the first view
  const auto part = static_cast<std::size_t>(stage);
  const double done = static_cast<double>(view) + static_cast<double>(part) / (kNames.size() - 1);
  Report(kBefore + (1.0 - kBefore) * done / static_cast<double>(count), kNames[part]);
}

// Null or a text; "" stands for null.
std::string TextOption(Options& options, const char* name) {
  return options.Get(name, std::string());
}

int UnitOf(Options& options) {
  const std::string name = options.Get("unit", std::string("mm"));
  constexpr int kLastCode = 20;
  for (int code = 1; code <= kLastCode; ++code) {
    if (UnitName(code) == name) return code;
  }
  Options::Refuse("unit", Quoted(name) + " is no unit; there are mm, cm, m, in, ft and others");
}

}  // namespace

const Model& HeldModel::With(double creaseDegrees) {
  if (!model || modelCrease != creaseDegrees) {
    Report(0.0, "joining triangles");
    views.clear();
    viewsKey.clear();
    model.reset();
    model = MakeModel(objects.mesh, creaseDegrees, weld);
    modelCrease = creaseDegrees;
  }
  if (model->TriangleCount() == 0) throw Failure(title, "no triangle has an area");
  return *model;
}

HeldModel& ModelAt(std::uint32_t number) {
  const auto found = Models::Get().held.find(number);
  if (found == Models::Get().held.end()) throw Failure("the model was freed");
  return *found->second;
}

std::uint32_t Hold(std::unique_ptr<HeldModel> model) {
  Models& models = Models::Get();
  models.held.emplace(++models.last, std::move(model));
  return models.last;
}

NamedDirection DirectionOf(const Options::Json& json, bool yUp, std::size_t place, const ZBR_PT3& middle) {
  if (json.is_string()) {
    const auto name = json.get<std::string>();
    const auto view = NamedView(name, yUp);
    if (!view)
      Options::Refuse("views", Quoted(name) + " is no view; there are front, back, left, right, top, bottom, iso and dimetric");
    return {name, *view, {}};
  }
  if (!json.is_object()) Options::Refuse("views", "a view is a name or an object with a direction");
  Options options(json);
  if (!options.At("section").is_null()) return SectionOf(options, yUp);
  const std::string name = options.Get("name", "view" + std::to_string(place + 1));
  try {
    const View view = LookOf(options, yUp, middle);
    options.Finish();
    return {name, view, {}};
  } catch (const Failure& failure) {
    if (!failure.File().empty()) throw;  // an option's
    Options::Refuse(options.At("eye").is_null() ? "direction" : "eye", failure.Cause());
  }
}

const std::vector<ViewLines>& ViewsOf(HeldModel& held, Options& options) {
  const std::vector<NamedDirection> directions = DirectionsOf(held, options);
  const double crease = options.Get("crease", held.crease);
  const Model& model = held.With(crease);
  DrawingOptions drawing = DrawingOptionsOf(options, model.isRough);
  std::string key = KeyOf(directions, drawing, crease);
  if (key == held.viewsKey) return held.views;
  held.viewsKey.clear();
  held.views.clear();
  Report(0.1, "looking for intersections and circles");
  drawing.progress = [&](std::size_t view, DrawStage stage) { ReportStage(view, directions.size(), stage); };
  held.views = DrawViews(model, directions, drawing);
  held.viewsKey = std::move(key);
  return held.views;
}

SheetOptions SheetOptionsOf(const HeldModel& held, Options& options, std::size_t viewCount) {
  SheetOptions sheet;
  const std::size_t usual = viewCount > 1 ? 1 : 0;
  sheet.projection = static_cast<Projection>(options.Choose("projection", {"none", "first", "third"}, usual));
  if (sheet.projection == Projection::kNone && viewCount > 1) Options::Refuse("projection", "several views need first or third");
  sheet.hidden = static_cast<HiddenStyle>(options.Choose("hiddenStyle", {"none", "dashed", "layer"}, 1));
  sheet.tangent = static_cast<TangentStyle>(options.Choose("tangentStyle", {"thin", "layer"}, 0));
  const Options::Json& scale = options.At("scale");
  sheet.anyScale = scale == "fit";
  if (scale.is_number()) sheet.scale = ParseScale(NumberText(scale.get<double>()));
  if (scale.is_string() && !sheet.anyScale) sheet.scale = ParseScale(scale.get<std::string>());
  const std::string paper = TextOption(options, "paper");
  if (!paper.empty()) sheet.paper = ParsePaper(paper);
  const std::string title = TextOption(options, "title");
  sheet.title = title.empty() ? held.title : title;
  sheet.number = TextOption(options, "number");
  sheet.author = TextOption(options, "author");
  sheet.date = TextOption(options, "date");
  constexpr int kMillimetre = 4;
  const int unit = UnitOf(options);
  sheet.unit = UnitName(unit);
  sheet.millimetres = UnitFactor(unit, kMillimetre);
  return sheet;
}

}  // namespace zbr::web

void zbrwFreeModel(std::uint32_t model) {
  zbr::web::Models::Get().held.erase(model);
}

std::size_t zbrwModelCount() {
  return zbr::web::Models::Get().held.size();
}
