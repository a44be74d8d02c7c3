// Models: bytes or arrays in; drawings as arrays and as files out.
#include <zbr-drawing/outlines.h>
#include <zbr-drawing/picker.h>
#include <zbr-drawing/survey.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>
#include <zbr-formats/sheets.h>

#include <limits>
#include <map>

#include "web/bindings/exchange.h"
#include "web/bindings/exports.h"
#include "web/bindings/facts.h"
#include "web/bindings/models.h"

namespace zbr::web {
namespace {

using Json = Options::Json;

// What makes a model of a mesh; gives its number.
void HoldMesh(Mesh mesh, const std::string& name, Options& options, Exchange& out) {
  auto held = std::make_unique<HeldModel>();
  const std::string stem = formats::StemOf(name);
  AddObject(held->objects, std::move(mesh), {formats::BaseName(name), stem, {}});
  held->title = stem;
  held->crease = options.Get("crease", held->crease);
  held->weld = options.Get("weld", held->weld);
  options.Finish();
  held->With(held->crease);
  out.Give(std::vector<std::uint32_t>{Hold(std::move(held))});
}

// The lines of a view, one array for each of their properties.
void GiveLines(const ViewLines& view, Exchange& out) {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> begin{0}, shells, edgeBegin{0};
  std::vector<std::uint8_t> classes, hidden, sides;
  std::vector<std::uint32_t> triangles;
  for (const Line& line : view.lines) {
    points.insert(points.end(), line.chain.points.begin(), line.chain.points.end());
    begin.push_back(static_cast<std::int32_t>(points.size()));
    classes.push_back(static_cast<std::uint8_t>(line.edgeClass));
    hidden.push_back(line.hidden ? 1 : 0);
    shells.push_back(static_cast<std::int32_t>(line.shell));
    for (const EdgeRef& edge : line.chain.edges) {
      triangles.push_back(edge.triangle);
      sides.push_back(edge.edge);
    }
    edgeBegin.push_back(static_cast<std::int32_t>(triangles.size()));
  }
  out.Give(std::move(points));
  out.Give(std::move(begin));
  out.Give(std::move(classes));
  out.Give(std::move(hidden));
  out.Give(std::move(shells));
  out.Give(std::move(edgeBegin));
  out.Give(std::move(triangles));
  out.Give(std::move(sides));
}

Facts FactsOf(const ViewLines& view) {
  const ZBR_PT3 &right = view.view.right, &up = view.view.up;
  Facts facts;
  return facts.Add("name", view.name)
      .Add("right", {right.x(), right.y(), right.z()})
      .Add("up", {up.x(), up.y(), up.z()})
      .Add("middle", {view.middle.x(), view.middle.y()})
      .Add("extent", {view.extent.xmin, view.extent.ymin, view.extent.xmax, view.extent.ymax});
}

Facts FactsOf(const HeldModel& held, const Model& model) {
  const Survey survey = MakeSurvey(model);
  std::size_t closed = 0;
  for (const ShellSurvey& shell : survey.shells) closed += shell.isClosed ? 1 : 0;
  Facts facts;
  return facts.Add("name", held.title)
      .Add("triangles", model.TriangleCount())
      .Add("leftOut", model.collapsed + model.repeated)
      .Add("points", model.pointCount)
      .Add("shells", model.ShellCount())
      .Add("closedShells", closed)
      .Add("openEdges", survey.borders)
      .Add("junctions", survey.junctions)
      .Add("turnedEdges", survey.turned)
      .Add("low", {model.low.x(), model.low.y(), model.low.z()})
      .Add("high", {model.high.x(), model.high.y(), model.high.z()})
      .Add("axes", held.objects.mesh.yUp ? "y" : "z")
      .Add("roughCreases", HasRoughCreases(model));
}

std::vector<std::string> FormatsOf(Options& options) {
  const Json& list = options.At("formats");
  if (!list.is_array() || list.empty()) Options::Refuse("formats", "a list of svg, dxf, pdf and json is needed");
  std::vector<std::string> names;
  for (const Json& format : list) {
    const std::string name = format.is_string() ? format.get<std::string>() : format.dump();
    if (!formats::SheetFormatByName(name)) Options::Refuse("formats", name + " is none of svg, dxf, pdf and json");
    names.push_back(name);
  }
  return names;
}

View OneView(HeldModel& held, Options& options) {
  const Json& json = options.At("view");
  const NamedDirection direction = DirectionOf(json.is_null() ? Json("iso") : json, held.objects.mesh.yUp, 0, held.Any().Centre());
  if (direction.section || direction.view.perspective) Options::Refuse("view", "sections and perspectives can only be drawn");
  return direction.view;
}

// The model of a call that looks at all of it, and the view, which is all that its options say.
struct Looked {
  const Model& model;
  View view;
};
Looked LookAt(Exchange& out, std::uint32_t model) {
  Options options(out.TakeText(0));
  HeldModel& held = ModelAt(model);
  const View view = OneView(held, options);
  options.Finish();
  return {held.Any(), view};
}

}  // namespace
}  // namespace zbr::web

using namespace zbr::web;
namespace formats = zbr::formats;

int zbrwReadModel(std::size_t beside) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    const std::string name = options.Get("name", std::string("model"));
    const std::string format = options.Get("format", formats::ExtensionOf(name));
    std::map<std::string, std::string> others;
    const Json names = options.At("beside");
    for (std::size_t i = 0; i < beside; ++i) others[names.at(i).get<std::string>()] = out.TakeText(2 + i);
    Report(0.0, "reading");
    Mesh mesh = formats::ParseMesh(format, out.TakeText(1), name, [&](const std::string& wanted) {
      const auto found = others.find(wanted);
      if (found == others.end()) throw Failure(name, "the file " + wanted + " is needed, too");
      return found->second;
    });
    mesh.yUp = options.Choose("axes", {"z", "y"}, mesh.yUp ? 1 : 0) == 1;
    HoldMesh(std::move(mesh), name, options, out);
  });
}

int zbrwMakeModel(const double* points, std::size_t pointCount, const std::uint32_t* faces, std::size_t faceCount,
                  const std::uint32_t* shells, std::size_t shellCount) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    Mesh mesh;
    for (std::size_t i = 0; i < pointCount; ++i) mesh.points.emplace_back(points[3 * i], points[3 * i + 1], points[3 * i + 2]);
    for (std::size_t i = 0; i < faceCount; ++i) mesh.triangles.push_back({faces[3 * i], faces[3 * i + 1], faces[3 * i + 2]});
    mesh.shells.assign(shells, shells + shellCount);
    mesh.yUp = options.Choose("axes", {"z", "y"}, 0) == 1;
    CheckMesh(mesh);
    const std::string name = options.Get("name", std::string("model"));
    HoldMesh(std::move(mesh), name, options, out);
  });
}

int zbrwModelInfo(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    HeldModel& held = ModelAt(model);
    out.Give(FactsOf(held, held.With(held.crease)).Text());
  });
}

int zbrwModelMesh(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    const HeldModel& held = ModelAt(model);
    out.Give(held.objects.mesh.points);
    out.Give(held.objects.mesh.triangles);
  });
}

int zbrwDraw(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    const std::vector<ViewLines>& views = ViewsOf(ModelAt(model), options);
    options.Finish();
    std::vector<Facts> facts;
    for (const ViewLines& view : views) facts.push_back(FactsOf(view));
    out.Give(Facts::ListOf(facts));
    for (const ViewLines& view : views) GiveLines(view, out);
  });
}

int zbrwWriteSheet(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    HeldModel& held = ModelAt(model);
    const std::vector<std::string> names = FormatsOf(options);
    const std::size_t viewCount = options.At("views").is_array() ? options.At("views").size() : 1;
    const SheetOptions sheetOptions = SheetOptionsOf(held, options, viewCount);
    const auto version = static_cast<formats::DxfVersion>(options.Choose("dxf", {"r12", "r2000"}, 1));
    const std::vector<ViewLines>& views = ViewsOf(held, options);
    options.Finish();
    Report(1.0, "writing");
    const Sheet sheet = LayOut(views, sheetOptions);
    for (const std::string& name : names)
      out.Give(
          formats::WriteSheet(*formats::SheetFormatByName(name), sheet, held.objects.sources, held.model->ShellCount(), version));
    out.Give(Json(sheet.shortened).dump());
  });
}

int zbrwOutline(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    const auto [prepared, view] = LookAt(out, model);
    Report(0.3, "finding outlines");
    LoopList all;
    for (const LoopList& loops : FindOutlines(prepared, view, false, 1)) all.insert(all.end(), loops.begin(), loops.end());
    out.Give(zbrRegionOfLoops(all));
  });
}

int zbrwTraceOutline(std::uint32_t model) {
  return Answer([&](Exchange& out) {
    const auto [prepared, view] = LookAt(out, model);
    Report(0.3, "finding outlines");
    const TracedOutline traced = std::move(TraceOutlines(prepared, view, 1).front());  // models here have one object
    std::vector<std::uint32_t> shells, triangles;
    std::vector<std::uint8_t> sides;
    std::vector<double> along;
    for (const OutlinePiece& piece : traced.pieces) {
      shells.push_back(piece.shell);
      triangles.push_back(piece.edge.triangle);
      sides.push_back(piece.edge.edge);
      along.insert(along.end(), {piece.t0, piece.t1});
    }
    out.Give(zbrRegionOfLoops(traced.loops));
    out.Give(std::vector<std::int32_t>(traced.offsets.begin(), traced.offsets.end()));
    out.Give(std::move(shells));
    out.Give(std::move(triangles));
    out.Give(std::move(sides));
    out.Give(std::move(along));
  });
}

int zbrwPick(std::uint32_t model, const double* points, std::size_t count) {
  return Answer([&](Exchange& out) {
    const auto [prepared, view] = LookAt(out, model);
    const Picker picker(prepared, view);
    std::vector<std::int32_t> triangles(count, -1);
    std::vector<double> heights(count, std::numeric_limits<double>::quiet_NaN());
    for (std::size_t i = 0; i < count; ++i) {
      const auto hit = picker.At(ZBR_PT(points[2 * i], points[2 * i + 1]));
      if (!hit) continue;
      triangles[i] = static_cast<std::int32_t>(hit->triangle);
      heights[i] = hit->height;
    }
    out.Give(std::move(triangles));
    out.Give(std::move(heights));
  });
}
