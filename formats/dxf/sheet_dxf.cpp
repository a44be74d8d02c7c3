// Sheets as DXF drawings.
#include <zbr-drawing/region.h>
#include <zbr-formats/dxf.h>

#include <algorithm>
#include <cmath>

#include "formats/dxf/dxf_document.h"

namespace zbr::formats {
namespace {

constexpr const char* kVisible = "VISIBLE";
constexpr const char* kOutline = "OUTLINE";
constexpr const char* kIntersection = "INTERSECTION";
constexpr const char* kTangent = "TANGENT";
constexpr const char* kHidden = "HIDDEN";
constexpr const char* kFrame = "FRAME";
constexpr const char* kTitle = "TITLE";

int Hundredths(double millimetres) {
  return static_cast<int>(std::lround(millimetres * 100));
}

bool HasOutlines(const Sheet& sheet) {
  return std::any_of(sheet.views.begin(), sheet.views.end(), [](const PlacedView& v) { return !v.lines.outlines.empty(); });
}

std::string FillLayer(const ObjectSource& object) {
  return "FILL-" + object.id;
}

DxfSetup SetupOf(const Sheet& sheet, const std::vector<ObjectSource>& objects) {
  constexpr int kMillimetres = 4, kBlack = 7, kBlue = 5, kGrey = 8, kFrameWidth = 70, kTitleWidth = 25;
  const bool dashed = sheet.options.hidden == HiddenStyle::kDashed;
  const std::string continuous = "CONTINUOUS";
  DxfSetup setup;
  setup.variables = {{"$INSUNITS", kMillimetres}, {"$MEASUREMENT", 1}, {"$LWDISPLAY", 1}};
  setup.linetypes = {{"HIDDEN", "Hidden __ __ __ __", {kDash * sheet.thin, -kDashGap * sheet.thin}}};
  setup.layers = {{kVisible, kBlack, Hundredths(sheet.wide), continuous, false},
                  {kOutline, kBlue, Hundredths(sheet.wide), continuous, false},
                  {kIntersection, kBlack, Hundredths(sheet.wide), continuous, false},
                  {kTangent, kBlack, Hundredths(sheet.thin), continuous, sheet.options.tangent == TangentStyle::kLayer},
                  {kHidden, kGrey, Hundredths(sheet.thin), dashed ? "HIDDEN" : continuous, !dashed},
                  {kFrame, kBlack, kFrameWidth, continuous, false},
                  {kTitle, kBlack, kTitleWidth, continuous, false}};
  if (!HasOutlines(sheet)) return setup;
  constexpr int kFirstGrey = 251, kGreys = 4, kHairline = 5;
  for (std::size_t k = 0; k < objects.size(); ++k) {
    const int grey = kFirstGrey + static_cast<int>(k) % kGreys;
    setup.layers.push_back({FillLayer(objects[k]), grey, kHairline, continuous, false});
  }
  return setup;
}

const char* LayerOf(const Line& line) {
  if (line.hidden) return kHidden;
  if (line.edgeClass == EdgeClass::kIntersection) return kIntersection;
  if (line.edgeClass == EdgeClass::kTangent) return kTangent;
  return line.edgeClass == EdgeClass::kSilhouette ? kOutline : kVisible;
}

void AddOutlines(DxfDocument& document, const Sheet& sheet, const PlacedView& view, const std::vector<ObjectSource>& objects) {
  for (std::size_t k = 0; k < view.lines.outlines.size(); ++k) {
    ForEachRing(view.lines.outlines[k], [&](const ZBR_LOOP& ring) {
      std::vector<ZBR_PT> points;
      for (const ZBR_PT& p : ring.pt()) points.push_back(sheet.OnPaper(view, p));
      document.AddPolyline(points, true, FillLayer(objects[k]));
    });
  }
}

}  // namespace

std::string WriteSheetDxf(const Sheet& sheet, const std::vector<ObjectSource>& objects) {
  DxfDocument document(SetupOf(sheet, objects));
  for (const PlacedView& view : sheet.views) {
    AddOutlines(document, sheet, view, objects);
    for (const Line& line : view.lines.lines) {
      std::vector<ZBR_PT> points;
      for (const ZBR_PT& p : line.chain.points) points.push_back(sheet.OnPaper(view, p));
      if (line.chain.closed) points.pop_back();
      document.AddPolyline(points, line.chain.closed, LayerOf(line));
    }
  }
  for (const SheetPath& path : sheet.paths) document.AddPolyline(path.points, path.closed, path.wide ? kFrame : kTitle);
  for (const SheetCircle& circle : sheet.circles) document.AddCircle(circle.centre, circle.radius, kTitle);
  for (const SheetText& text : sheet.texts) document.AddText(text.at, text.height, text.text, kTitle);
  return document.Take();
}

}  // namespace zbr::formats
