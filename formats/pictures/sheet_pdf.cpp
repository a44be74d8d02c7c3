// Sheets as PDF pages.
#include <zbr-drawing/region.h>
#include <zbr-formats/sheets.h>

#include <algorithm>

#include "formats/pictures/pdf_page.h"
#include "formats/pictures/sheet_ink.h"

namespace zbr::formats {
namespace {

// Layers of the page.
enum : std::size_t { kFillLayer, kHiddenLayer, kTangentLayer, kVisibleLayer, kFrameLayer };

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

// The visible lines that are tangent edges, or those that are not.
void AddVisible(PdfPage& page, const Sheet& sheet, const PlacedView& view, bool tangent) {
  page.SetWidth(tangent ? sheet.thin : sheet.wide);
  page.SetRoundEnds(true);
  for (const Line& line : view.lines.lines) {
    if (!line.hidden && (line.edgeClass == EdgeClass::kTangent) == tangent) page.Stroke(sheet.OnPaper(view, line.chain));
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
  PdfPage page(sheet.paper.width, sheet.paper.height, sheet.options.title,
               {{"FILL"},
                {"HIDDEN", sheet.options.hidden != HiddenStyle::kLayer},
                {"TANGENT", sheet.options.tangent != TangentStyle::kLayer},
                {"VISIBLE"},
                {"FRAME"}});
  const auto onLayer = [&](std::size_t layer, const auto& add) {
    page.BeginLayer(layer);
    for (const PlacedView& view : sheet.views) add(page, sheet, view);
    page.EndLayer();
  };
  onLayer(kFillLayer, AddFills);
  onLayer(kHiddenLayer, AddHidden);
  for (const bool tangent : {true, false}) {
    onLayer(tangent ? kTangentLayer : kVisibleLayer,
            [&](PdfPage& p, const Sheet& s, const PlacedView& view) { AddVisible(p, s, view, tangent); });
  }
  page.BeginLayer(kFrameLayer);
  AddSheet(page, sheet);
  page.EndLayer();
  return page.Take();
}

}  // namespace zbr::formats
