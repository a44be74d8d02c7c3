// Sheets as JSON, for programs that go on with the lines.
//
// All is written as text, in the order in which it is to be read: of the lines there may be a million, one a line.
#include <zbr-drawing/numbers.h>
#include <zbr-formats/sheets.h>

#include <algorithm>
#include <cmath>

#include "formats/text/json_text.h"

namespace zbr::formats {
namespace {

// Coordinates of one view, rounded to a billionth of the model's size: what is beyond says nothing and takes room.
class Coordinates {
 public:
  explicit Coordinates(const ViewLines& view) : middle_(view.middle.xy()) {
    const double size = std::max(view.extent.Size(), view.extent.Magnitude());
    if (size > 0) power_ = PowerOfTen(9 - DecimalExponent(size));
    if (!std::isnormal(power_)) power_ = 0.0;
  }
  void Append(std::string& text, const ZBR_PT& p) const { AppendPair(text, p + middle_); }
  void AppendDirection(std::string& text, const ZBR_PT& v) const { AppendPair(text, v); }

 private:
  void AppendPair(std::string& text, const ZBR_PT& p) const {
    text += '[';
    AppendNumber(text, Rounded(p.x()));
    text += ',';
    AppendNumber(text, Rounded(p.y()));
    text += ']';
  }
  double Rounded(double value) const {
    const double rounded = std::round(value * power_) / power_ + 0.0;  // without the sign of a zero
    return std::isfinite(rounded) ? rounded : value;
  }

  ZBR_PT middle_;
  double power_ = 1.0;
};

std::string Vector(const ZBR_PT3& v) {
  return "[" + JsonOf(v.x() + 0.0) + "," + JsonOf(v.y() + 0.0) + "," + JsonOf(v.z() + 0.0) + "]";  // without the sign of a zero
}

std::string Pair(double x, double y) {
  return "[" + JsonOf(x) + "," + JsonOf(y) + "]";
}

const char* BoolText(bool value) {
  return value ? "true" : "false";
}

// Angles are rounded to what trigonometric functions agree on everywhere.
void AppendAngle(std::string& text, double angle) {
  constexpr double kDigits = 1e12;
  AppendNumber(text, std::round(angle * kDigits) / kDigits + 0.0);
}

void AppendCurves(std::string& text, const std::vector<CircleRun>& curves, const Coordinates& coordinates) {
  text += ",\"curves\":[";
  for (const CircleRun& run : curves) {
    if (&run != &curves.front()) text += ',';
    text += "{\"first\":" + std::to_string(run.at) + ",\"last\":" + std::to_string(run.last) + ",\"centre\":";
    coordinates.Append(text, run.centre);
    text += ",\"u\":";
    coordinates.AppendDirection(text, run.u);
    text += ",\"v\":";
    coordinates.AppendDirection(text, run.v);
    text += ",\"t0\":";
    AppendAngle(text, run.t0);
    text += ",\"t1\":";
    AppendAngle(text, run.t1);
    text += '}';
  }
  text += ']';
}

void AppendPolyline(std::string& text, const Line& line, const Coordinates& coordinates) {
  text += std::string("{\"class\":\"") + NameOf(line.edgeClass) + "\",\"visible\":" + BoolText(!line.hidden) +
          ",\"closed\":" + BoolText(line.chain.closed) + ",\"shell\":" + std::to_string(line.shell) +
          (line.other != line.shell ? ",\"other\":" + std::to_string(line.other) : "") + ",\"edges\":[";
  for (const EdgeRef& edge : line.chain.edges) {
    if (&edge != &line.chain.edges.front()) text += ',';
    text += '[' + std::to_string(edge.triangle) + ',' + std::to_string(edge.edge) + ']';
  }
  text += "],\"points\":[";
  for (const ZBR_PT& p : line.chain.points) {
    if (&p != &line.chain.points.front()) text += ',';
    coordinates.Append(text, p);
  }
  text += ']';
  if (!line.chain.curves.empty()) AppendCurves(text, line.chain.curves, coordinates);
  text += '}';
}

void AppendRing(std::string& text, const ZBR_LOOP& ring, const Coordinates& coordinates) {
  text += '[';
  for (const ZBR_PT& p : ring.pt()) {
    coordinates.Append(text, p);
    text += ',';
  }
  coordinates.Append(text, ring.pt().front());  // rings repeat their first point
  text += ']';
}

// A polygon is a list of rings, the outer one first.
void AppendOutline(std::string& text, std::size_t object, const LoopList& loops, const Coordinates& coordinates) {
  text += "{\"object\":" + std::to_string(object) + ",\"polygons\":[";
  for (const auto& outer : loops) {
    text += outer == loops.front() ? "[" : ",[";
    AppendRing(text, *outer, coordinates);
    for (const auto& hole : outer->children()) {
      text += ',';
      AppendRing(text, *hole, coordinates);
    }
    text += ']';
  }
  text += "]}";
}

std::string OutlinesText(const ViewLines& view, const Coordinates& coordinates) {
  std::string text;
  if (view.outlines.empty()) return text;
  for (std::size_t k = 0; k < view.outlines.size(); ++k) {
    text += k == 0 ? "\n],\"outlines\":[\n" : ",\n";
    AppendOutline(text, k, view.outlines[k], coordinates);
  }
  return text;
}

std::string SectionText(const SectionOfView& section, const Coordinates& coordinates) {
  JsonObject plane;
  plane.Add("normal", Vector(section.plane.normal)).Add("offset", JsonOf(section.plane.offset + 0.0));
  std::string text = "\n],\"section\":{\"letter\":" + JsonOf(section.letter) + ",\"plane\":" + plane.Closed();
  if (std::isfinite(section.plane.depth)) text += ",\"depth\":" + JsonOf(section.plane.depth);
  text +=
      ",\"open_lines\":" + std::to_string(section.openLines) + ",\"bridged\":" + std::to_string(section.bridged) + ",\"faces\":[\n";
  for (const SectionFace& face : section.faces) {
    if (&face != &section.faces.front()) text += ",\n";
    text += "{\"shell\":" + std::to_string(face.shell) + ",\"area\":" + JsonOf(face.region.area()) + ",";
    std::string outline;
    AppendOutline(outline, face.object, zbrLoopsOfRegion(face.region.view()), coordinates);
    text += outline.substr(1);
  }
  return text + "\n]}";
}

// Points times scale plus origin give millimetres on paper.
std::string ViewText(const Sheet& sheet, const PlacedView& placed) {
  const ViewLines& view = placed.lines;
  const ZBR_PT origin = placed.origin - view.middle.xy() * sheet.perUnit;
  JsonObject header;
  header.Add("name", JsonOf(view.name))
      .Add("right", Vector(view.view.right))
      .Add("up", Vector(view.view.up))
      .Add("to_viewer", Vector(view.view.toViewer))
      .Add("origin", Pair(origin.x(), origin.y()));
  if (view.view.perspective)
    header.Add("eye", Vector(view.view.perspective->eye)).Add("distance", JsonOf(view.view.perspective->distance));
  const Coordinates coordinates(view);
  std::string text = header.OpenedAt("polylines");
  for (const Line& line : view.lines) {
    text += &line == &view.lines.front() ? "\n" : ",\n";
    AppendPolyline(text, line, coordinates);
  }
  text += OutlinesText(view, coordinates);
  return text + (view.section ? SectionText(*view.section, coordinates) + "}" : "\n]}");
}

const char* ProjectionName(Projection projection) {
  if (projection == Projection::kNone) return "none";
  return projection == Projection::kFirst ? "first" : "third";
}

}  // namespace

std::string WriteSheetJson(const Sheet& sheet, const std::vector<ObjectSource>& objects, std::size_t shells) {
  std::string models;
  for (const ObjectSource& object : objects) {
    JsonObject model;
    model.Add("file", JsonOf(object.name)).Add("first_triangle", std::to_string(object.firstTriangle));
    const ZBR_PT3& d = object.shift;
    if (d.x() != 0 || d.y() != 0 || d.z() != 0) model.Add("shift", Vector(d));
    models += (models.empty() ? "" : ",") + model.Closed();
  }
  JsonObject header;
  header.Add("title", JsonOf(sheet.options.title))
      .Add("unit", JsonOf(sheet.options.unit))
      .Add("scale", JsonOf(sheet.scale))
      .Add("millimetres_per_unit", JsonOf(sheet.perUnit))
      .Add("paper", Pair(sheet.paper.width, sheet.paper.height))
      .Add("projection", JsonOf(ProjectionName(sheet.options.projection)))
      .Add("models", "[" + models + "]")
      .Add("shells", std::to_string(shells));
  std::string text = header.OpenedAt("views");
  for (const PlacedView& view : sheet.views) text += (&view == &sheet.views.front() ? "\n" : ",\n") + ViewText(sheet, view);
  return text + "\n]}\n";
}

}  // namespace zbr::formats
