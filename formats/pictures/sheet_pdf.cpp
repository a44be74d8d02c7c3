// Sheets as PDF pages.
#include <zbr-drawing/region.h>
#include <zbr-formats/sheets.h>

#include <algorithm>

#include "formats/pictures/pdf_page.h"
#include "formats/pictures/sheet_ink.h"

namespace zbr::formats {
namespace {

// Layers of the page.
enum : std::size_t { kFillLayer, kHiddenLayer, kTangentLayer, kVisibleLayer, kFrameLayer, kHatchingLayer, kCentreLayer };

std::size_t LayerOf(EdgeClass edgeClass) {
  if (IsChainLine(edgeClass)) return kCentreLayer;
  return edgeClass == EdgeClass::kTangent ? kTangentLayer : edgeClass == EdgeClass::kHatching ? kHatchingLayer : kVisibleLayer;
}

bool IsUsed(const Sheet& sheet, std::size_t layer) {
  return std::any_of(sheet.views.begin(), sheet.views.end(), [&](const PlacedView& view) {
    return std::any_of(view.lines.lines.begin(), view.lines.lines.end(),
                       [&](const Line& line) { return !line.hidden && LayerOf(line.edgeClass) == layer; });
  });
}

void AddFills(PdfPage& page, const Sheet& sheet, const PlacedView& view) {
  page.SetWidth(kSeam);
  for (std::size_t k = 0; k < view.lines.outlines.size(); ++k) {
    std::vector<Path> paths;
    ForEachRing(view.lines.outlines[k], [&](const ZBR_LOOP& ring) {
      if (ring.pt().empty()) return;
      Path& path = paths.emplace_back();
      path.closed = true;
      for (const ZBR_PT& p : ring.pt()) path.points.push_back(sheet.OnPaper(view, p));
    });
    page.SetShade(ShadeOf(k));
    page.Fill(paths);
  }
}

void AddHidden(PdfPage& page, const Sheet& sheet, const PlacedView& view) {
  page.SetWidth(sheet.thin);
  for (const Line& line : view.lines.lines) {
    if (!line.hidden) continue;
    const auto dashes = line.chain.closed ? DashPattern{kDash * sheet.thin, kDashGap * sheet.thin} : DashesOf(sheet, line);
    page.SetDashes(dashes ? dashes->dash : 0, dashes ? dashes->gap : 0);
    page.Stroke(sheet.OnPaper(view, line.chain));
  }
}

// The visible lines of a layer.
void AddVisible(PdfPage& page, const Sheet& sheet, const PlacedView& view, std::size_t layer) {
  double width = layer == kVisibleLayer ? sheet.wide : sheet.thin;
  page.SetWidth(width);
  page.SetRoundEnds(layer != kCentreLayer);
  for (const Line& line : view.lines.lines) {
    if (line.hidden || LayerOf(line.edgeClass) != layer) continue;
    if (sheet.WidthOf(line.edgeClass) != width) page.SetWidth(width = sheet.WidthOf(line.edgeClass));
    page.Stroke(sheet.OnPaper(view, line.chain));
  }
}

void AddSheet(PdfPage& page, const Sheet& sheet) {
  for (const SheetPath& drawn : sheet.paths) {
    Path path;
    path.points = drawn.points;
    path.closed = drawn.closed;
    page.SetWidth(drawn.wide ? kWideFrame : kThinFrame);
    page.Stroke(path);
  }
  for (const SheetCircle& circle : sheet.circles) page.StrokeCircle(circle.centre, circle.radius);
  for (const SheetText& text : sheet.texts) page.Text(text.at, text.height * kSizePerHeight, text.text);
}

}  // namespace

std::string WriteSheetPdf(const Sheet& sheet) {
  std::vector<PdfLayer> layers = {{"FILL"},
                                  {"HIDDEN", sheet.options.hidden != HiddenStyle::kLayer},
                                  {"TANGENT", sheet.options.tangent != TangentStyle::kLayer},
                                  {"VISIBLE"},
                                  {"FRAME"}};
  const bool hasMarks = IsUsed(sheet, kHatchingLayer) || IsUsed(sheet, kCentreLayer);
  if (hasMarks) layers.insert(layers.end(), {{"HATCHING"}, {"CENTER"}});
  PdfPage page(sheet.paper.width, sheet.paper.height, sheet.options.title, layers);
  const auto onLayer = [&](std::size_t layer, const auto& add) {
    page.BeginLayer(layer);
    for (const PlacedView& view : sheet.views) add(page, sheet, view);
    page.EndLayer();
  };
  onLayer(kFillLayer, AddFills);
  onLayer(kHiddenLayer, AddHidden);
  for (const std::size_t layer : {kTangentLayer, kHatchingLayer, kVisibleLayer, kCentreLayer}) {
    if ((layer == kHatchingLayer || layer == kCentreLayer) && !hasMarks) continue;
    onLayer(layer, [&](PdfPage& p, const Sheet& s, const PlacedView& view) { AddVisible(p, s, view, layer); });
  }
  page.BeginLayer(kFrameLayer);
  AddSheet(page, sheet);
  page.EndLayer();
  return page.Take();
}

}  // namespace zbr::formats
