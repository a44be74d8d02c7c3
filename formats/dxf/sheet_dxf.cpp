// Sheets as DXF drawings.
#include <zbr-drawing/region.h>
#include <zbr-formats/dxf.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "formats/dxf/dxf_document.h"

namespace zbr::formats {
namespace {

constexpr const char* kVisible = "VISIBLE";
constexpr const char* kOutline = "OUTLINE";
constexpr const char* kIntersection = "INTERSECTION";
constexpr const char* kTangent = "TANGENT";
constexpr const char* kSection = "SECTION";
constexpr const char* kHatching = "HATCHING";
constexpr const char* kCentre = "CENTER";
constexpr const char* kHidden = "HIDDEN";
// Some programs go by the name of a line type and leave its pattern: of the standard names these come nearest to the dashes of
// hidden lines, 3 mm for the usual width, and to chain lines, 6 mm and a dot; CENTER has no gap in lines below 30 mm.
constexpr const char* kDashes = "HIDDEN2";
constexpr const char* kChain = "DASHDOT2";
// The letters of "txt" are all as wide as capitals, which fields have no room for. Programs that have no such font take their own.
constexpr const char* kFont = "arial.ttf";
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

const char* LayerOf(const Line& line) {
  if (line.hidden) return kHidden;
  if (line.edgeClass == EdgeClass::kCut) return kSection;
  if (line.edgeClass == EdgeClass::kHatching) return kHatching;
  if (IsChainLine(line.edgeClass)) return kCentre;
  if (line.edgeClass == EdgeClass::kIntersection) return kIntersection;
  if (line.edgeClass == EdgeClass::kTangent) return kTangent;
  return line.edgeClass == EdgeClass::kSilhouette ? kOutline : kVisible;
}

bool HasLines(const Sheet& sheet, const char* layer) {
  return std::any_of(sheet.views.begin(), sheet.views.end(), [&](const PlacedView& view) {
    return std::any_of(view.lines.lines.begin(), view.lines.lines.end(), [&](const Line& line) { return LayerOf(line) == layer; });
  });
}

// Frozen layers are drawn and printed nowhere until they are thawed, which takes one click; ones with a negative colour, as layers
// that are off have, are printed by programs that read the colour alone.
DrawingLayer Frozen(DrawingLayer layer, bool frozen) {
  layer.frozen = frozen;
  return layer;
}

// The layers that few sheets have lines on.
void AddMarks(const Sheet& sheet, DxfSetup& setup) {
  constexpr int kBlack = 7;
  const std::string continuous = "CONTINUOUS";
  if (HasLines(sheet, kSection)) setup.layers.push_back({kSection, kBlack, Hundredths(sheet.cut), continuous});
  if (HasLines(sheet, kHatching)) setup.layers.push_back({kHatching, kBlack, Hundredths(sheet.thin), continuous});
  if (!HasLines(sheet, kCentre)) return;
  setup.layers.push_back({kCentre, kBlack, Hundredths(sheet.thin), kChain});
  const double dash = kLongDash * sheet.thin, gap = -kDashGap * sheet.thin;
  setup.lineTypes.push_back({kChain, "Dash dot (.5x) _._._._._._._._._._", {dash, gap, kDot * sheet.thin, gap}});
}

DxfSetup SetupOf(const Sheet& sheet, const std::vector<ObjectSource>& objects, DxfVersion version) {
  constexpr int kMillimetres = 4, kBlack = 7, kGrey = 8, kFrameWidth = 70, kTitleWidth = 25;
  const std::string continuous = "CONTINUOUS";
  DxfSetup setup;
  setup.version = version;
  setup.units = kMillimetres;
  setup.font = kFont;
  setup.showWidths = true;
  setup.paper = {sheet.paper.width, sheet.paper.height};
  setup.lineTypes = {{kDashes, "Hidden (.5x) _ _ _ _ _", {kDash * sheet.thin, -kDashGap * sheet.thin}}};
  setup.layers = {{kVisible, kBlack, Hundredths(sheet.wide), continuous},
                  {kOutline, kBlack, Hundredths(sheet.wide), continuous},
                  {kIntersection, kBlack, Hundredths(sheet.wide), continuous},
                  Frozen({kTangent, kBlack, Hundredths(sheet.thin), continuous}, sheet.options.tangent == TangentStyle::kLayer),
                  Frozen({kHidden, kGrey, Hundredths(sheet.thin), kDashes}, sheet.options.hidden == HiddenStyle::kLayer),
                  {kFrame, kBlack, kFrameWidth, continuous},
                  {kTitle, kBlack, kTitleWidth, continuous}};
  AddMarks(sheet, setup);
  if (!HasOutlines(sheet)) return setup;
  constexpr int kFirstGrey = 251, kGreys = 4, kHairline = 5;
  for (std::size_t k = 0; k < objects.size(); ++k) {
    const int grey = kFirstGrey + static_cast<int>(k) % kGreys;
    setup.layers.push_back({FillLayer(objects[k]), grey, kHairline, continuous});
  }
  return setup;
}

void AddOutlines(DxfDocument& document, const Sheet& sheet, const PlacedView& view, const std::vector<ObjectSource>& objects) {
  for (std::size_t k = 0; k < std::min(view.lines.outlines.size(), objects.size()); ++k) {
    ForEachRing(view.lines.outlines[k], [&](const ZBR_LOOP& ring) {
      std::vector<ZBR_PT> points;
      for (const ZBR_PT& p : ring.pt()) points.push_back(sheet.OnPaper(view, p));
      document.AddPolyline(points, true, {FillLayer(objects[k])});
    });
  }
}

// Arcs are entities of their own: of these programs snap to the centre and measure the radius, which are the same for all arcs of a
// circle. What is between them is straight.
void AddPieces(DxfDocument& document, const Path& path, const DxfPen& pen) {
  if (path.curves.empty()) return document.AddPath(path, pen);
  const std::size_t n = path.points.size(), edges = path.closed ? n : n - 1;
  std::size_t first = 0;
  const auto addStraight = [&](std::size_t last) {
    Path piece;
    for (std::size_t i = first; i <= last; ++i) piece.points.push_back(path.points[i % n]);
    if (first < last) document.AddPath(piece, pen);
  };
  for (const Curve& curve : path.curves) {
    addStraight(curve.at);
    Path arc;
    const bool isWhole = path.closed && n == 1;
    arc.points = isWhole ? path.points : std::vector<ZBR_PT>{path.points[curve.at], path.points[(curve.at + 1) % n]};
    arc.closed = isWhole;
    arc.curves = {curve};
    arc.curves[0].at = 0;
    document.AddPath(arc, pen);
    first = curve.at + 1;
  }
  addStraight(edges);
}

// Fonts that are drawn with strokes have no en dash.
std::string WithHyphens(std::string_view text) {
  constexpr std::string_view kEnDash = "\xe2\x80\x93";
  std::string written;
  for (std::size_t at = 0; at < text.size();) {
    const bool isDash = text.substr(at, kEnDash.size()) == kEnDash;
    written += isDash ? '-' : text[at];
    at += isDash ? kEnDash.size() : 1;
  }
  return written;
}

}  // namespace

std::string WriteSheetDxf(const Sheet& sheet, const std::vector<ObjectSource>& objects, DxfVersion version) {
  DxfDocument document(SetupOf(sheet, objects, version));
  for (const PlacedView& view : sheet.views) {
    AddOutlines(document, sheet, view, objects);
    for (const Line& line : view.lines.lines) {
      AddPieces(document, sheet.OnPaper(view, line.chain), {LayerOf(line)});
    }
  }
  for (const SheetPath& path : sheet.paths) document.AddPolyline(path.points, path.closed, {path.wide ? kFrame : kTitle});
  for (const SheetCircle& circle : sheet.circles) document.AddCircle(circle.centre, circle.radius, {kTitle});
  for (const SheetText& text : sheet.texts) document.AddText(text.at, text.height, WithHyphens(text.text), {kTitle});
  return document.Take();
}

}  // namespace zbr::formats
