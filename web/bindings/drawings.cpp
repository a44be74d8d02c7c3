// Drawings: contents of one or two files in, their region or combinations out, as arrays and as files.
#include <zbr-drawing/affine.h>
#include <zbr-drawing/contours.h>
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/region.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/files.h>
#include <zbr-formats/picture.h>

#include <algorithm>
#include <array>
#include <set>

#include "web/bindings/exchange.h"
#include "web/bindings/exports.h"
#include "web/bindings/facts.h"
#include "web/bindings/options.h"

namespace zbr::web {
namespace {

using Json = Options::Json;
using formats::Format;

struct Operation {
  const char* name;
  const char* caption;
};

// At the places of ZBR_BOOLEAN_OPE.
constexpr std::array<Operation, 5> kOperations = {
    {{"a-b", "A − B"}, {"b-a", "B − A"}, {"union", "A ∪ B"}, {"intersection", "A ∩ B"}, {"xor", "A ⊕ B"}}};

// What the call works with, filled step by step.
struct Work {
  std::vector<std::string> names;
  std::vector<ZBR_BOOLEAN_OPE> ops;
  std::vector<Format> outputs;
  std::vector<Region> regions;
  std::vector<Layer> operands, results;
  std::vector<ZBR_REGION> shapes;  // of operands, then results
  int units = 0;
  std::vector<Facts> notes;

  void Note(const std::string& file, std::size_t line, const std::string& text) {
    notes.emplace_back().Add("file", file).Add("line", line).Add("text", text);
  }
};

std::string Counted(std::size_t count, const std::string& one, const std::string& many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

void Prepare(Drawing& drawing, Work& work) {
  for (const auto& [what, left] : drawing.leftOut)
    work.Note(drawing.file, left.line, "left out " + std::to_string(left.count) + " " + what);
  const std::size_t before = drawing.paths.size();
  drawing.paths.erase(std::remove_if(drawing.paths.begin(), drawing.paths.end(), [](const Path& path) { return path.hidden; }),
                      drawing.paths.end());
  if (const std::size_t count = before - drawing.paths.size(); count > 0)
    work.Note(drawing.file, 0, "left out " + Counted(count, "contour that is", "contours that are") + " not shown");
  if (const std::size_t count = DropFillings(drawing.paths); count > 0)
    work.Note(drawing.file, 0,
              "left out " + Counted(count, "boundary", "boundaries") + " of hatches, as other contours are drawn there");
  const std::size_t repeats = drawing.joinsEnds ? DropRepeats(drawing.paths) : 0;
  if (repeats > 0)
    work.Note(drawing.file, 0,
              "left out " + Counted(repeats, "line or contour that repeats", "lines or contours that repeat") + " others");
}

void Convert(Drawing& drawing, int units, Work& work) {
  const double factor = UnitFactor(drawing.units, units);
  if (factor == 0 || factor == 1) return;
  for (Path& path : drawing.paths) Map(path, Affine::Scale(factor, factor));
  work.Note(drawing.file, 0, "converted from " + UnitName(drawing.units) + " to " + UnitName(units));
}

void NoteContours(const Contours& contours, const Region& region, Work& work) {
  if (!contours.open.empty())
    work.Note(contours.file, contours.open.front().line,
              "left out " + Counted(contours.open.size(), "contour that does", "contours that do") + " not close");
  if (!contours.forks.empty()) {
    const Fork& fork = contours.forks.front();
    work.Note(contours.file, fork.line,
              "lines fork at " + RoundedText(fork.at.x(), 9) + ", " + RoundedText(fork.at.y(), 9) +
                  "; what they enclose together is taken");
  }
  if (!region.faults.empty()) {
    const ZBR_REGION_FAULT& fault = region.faults.front();
    work.Note(contours.file, contours.rings[static_cast<std::size_t>(fault.ring_a)].line,
              "contours cross or overlap at " + RoundedText(fault.place.x(), 9) + ", " + RoundedText(fault.place.y(), 9));
  }
}

ZBR_FILL_RULE FillOf(Options& options) {
  return static_cast<ZBR_FILL_RULE>(options.Choose("fill", {"evenodd", "nonzero", "positive", "negative"}, 0));
}

void Read(std::size_t count, Options& options, Exchange& out, Work& work) {
  const Json files = options.At("files");
  const FlattenOptions flatten{options.Get("deviation", -1.0), options.Get("join", -1.0)};
  const ZBR_FILL_RULE fill = FillOf(options);
  std::vector<Drawing> drawings;
  Extent extent;
  for (std::size_t i = 0; i < count; ++i) {
    Options file(files.at(i));
    const std::string name = file.Get("name", std::string("drawing"));
    const std::string format = file.Get("format", std::string());
    file.Finish();
    Report(0.2 * static_cast<double>(i), "reading");
    const Format known = format.empty() ? formats::FormatOf(name, Format::kUnknown) : formats::FormatByName(format);
    Drawing& drawing = drawings.emplace_back(formats::ParseDrawing(known, out.TakeText(1 + i), name));
    Prepare(drawing, work);
    Convert(drawing, drawings.front().units, work);
    extent.Add(ExtentOf(drawing));
    work.names.push_back(name);
  }
  work.units = drawings.front().units;
  Report(0.4, "joining contours");
  for (const Contours& contours : MakeContours(std::move(drawings), WithDefaults(flatten, extent))) {
    work.regions.push_back(MakeRegion(contours, fill));
    NoteContours(contours, work.regions.back(), work);
  }
}

// All operations share one search for crossings, on the rings as they are.
std::vector<CurvedRegion> Combine(const Work& work) {
  if (work.ops.empty()) return {};
  const Region &a = work.regions[0], &b = work.regions[1];
  ZBR_REGION_OPTIONS options;
  options.canonical = true;
  options.sources = a.HasCurves() || b.HasCurves();
  options.fill_a = a.fill;
  options.fill_b = b.fill;
  options.progress = MayGoOn;
  std::vector<ZBR_REGION> combined(work.ops.size());
  Demand(zbrCombineRegions(a.rings.view(), b.rings.view(), work.ops.data(), combined.data(), static_cast<int>(combined.size()),
                           options));
  std::vector<CurvedRegion> results;
  for (ZBR_REGION& result : combined) results.push_back(Traced(std::move(result), {&a, &b}));
  return results;
}

std::string PictureOf(const Work& work) {
  formats::Picture picture;
  picture.operands = work.operands;
  for (const std::string& name : work.names) picture.title += (picture.title.empty() ? "" : " and ") + formats::BaseName(name);
  picture.units = work.units;
  for (std::size_t i = 0; i < work.results.size(); ++i)
    picture.panels.push_back({kOperations[static_cast<std::size_t>(work.ops[i])].caption, work.results[i]});
  return WriteSvg(picture);
}

std::vector<Facts> FactsOf(const std::vector<Layer>& layers) {
  std::vector<Facts> all;
  for (const Layer& layer : layers)
    all.emplace_back()
        .Add("name", layer.name)
        .Add("area", layer.area)
        .Add("polygons", layer.loops.size())
        .Add("holes", CountHoles(layer.loops))
        .Add("vertices", CountVertices(layer.loops));
  return all;
}

void ReadWishes(std::size_t count, Options& options, Work& work) {
  for (const std::string& name : options.Get("ops", std::vector<std::string>())) {
    const auto* const found =
        std::find_if(kOperations.begin(), kOperations.end(), [&](const Operation& o) { return name == o.name; });
    if (found == kOperations.end() || count != 2)
      Options::Refuse("ops",
                      Quoted(name) + " is no operation on them; there are union, intersection, a-b, b-a and xor, of two drawings");
    work.ops.push_back(static_cast<ZBR_BOOLEAN_OPE>(found - kOperations.begin()));
  }
  for (const std::string& name : options.Get("formats", std::vector<std::string>())) {
    const Format format = formats::FormatByName(name);
    if (format == Format::kUnknown) Options::Refuse("formats", Quoted(name) + " is none of dxf, geojson, wkt, text and svg");
    work.outputs.push_back(format);
  }
}

}  // namespace
}  // namespace zbr::web

using namespace zbr::web;
namespace formats = zbr::formats;

int zbrwCombineDrawings(std::size_t count) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    Work work;
    ReadWishes(count, options, work);
    const auto version = static_cast<formats::DxfVersion>(options.Choose("dxf", {"r12", "r2000"}, 1));
    Read(count, options, out, work);
    options.Finish();
    for (const Region& region : work.regions) {
      CurvedRegion shape = CurvedShape(region);
      work.operands.push_back(MakeLayer(formats::BaseName(work.names[work.operands.size()]), shape));
      work.shapes.push_back(std::move(shape.rings));
    }
    Report(0.6, "combining");
    for (CurvedRegion& result : Combine(work)) {
      work.results.push_back(MakeLayer(kOperations[static_cast<std::size_t>(work.ops[work.results.size()])].name, result));
      work.shapes.push_back(std::move(result.rings));
    }
    Facts facts;
    facts.Add("unit", UnitName(work.units)).Add("notes", work.notes);
    out.Give(facts.Add("operands", FactsOf(work.operands)).Add("results", FactsOf(work.results)).Text());
    for (const ZBR_REGION& shape : work.shapes) {
      out.Give(shape.points());
      out.Give(shape.ring_offsets());
      out.Give(shape.polygon_offsets());
    }
    Report(0.9, "writing");
    const std::vector<Layer>& layers = work.results.empty() ? work.operands : work.results;
    for (const Format format : work.outputs)
      out.Give(format == Format::kSvg ? PictureOf(work) : formats::WriteDrawing(format, layers, work.units, version));
  });
}

int zbrwWriteRegions(const ZBR_REGION_VIEW* regions) {
  return Answer([&](Exchange& out) {
    Options options(out.TakeText(0));
    const std::vector<std::string> names = options.Get("names", std::vector<std::string>());
    const Format format = formats::FormatByName(options.Get("format", std::string()));
    if (format == Format::kUnknown || format == Format::kSvg) Options::Refuse("format", "dxf, geojson, wkt or text is needed");
    const auto version = static_cast<formats::DxfVersion>(options.Choose("dxf", {"r12", "r2000"}, 1));
    const std::string unit = options.Get("unit", std::string());
    options.Finish();
    int code = 0;
    constexpr int kLastCode = 20;
    for (int c = 1; c <= kLastCode; ++c) code = !unit.empty() && UnitName(c) == unit ? c : code;
    if (!unit.empty() && code == 0) Options::Refuse("unit", Quoted(unit) + " is no unit");
    std::vector<Layer> layers;
    for (std::size_t i = 0; i < names.size(); ++i) {
      ZBR_REGION valid;
      ZBR_REGION_OPTIONS canonical;
      canonical.canonical = true;
      Demand(zbrMakeValidRegion(regions[i], valid, canonical));
      layers.push_back(MakeLayer(names[i], valid));
    }
    out.Give(formats::WriteDrawing(format, layers, code, version));
  });
}
