// Sheets as SVG pages.
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/region.h>
#include <zbr-drawing/threads.h>
#include <zbr-formats/sheets.h>

#include "formats/pictures/sheet_ink.h"
#include "formats/pictures/sheet_path.h"
#include "formats/pictures/svg_text.h"

#include <algorithm>

namespace zbr::formats {
namespace {

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

std::string MmText(double value) {
  return RoundedText(value, 3);
}

std::string PathElement(const Sheet& sheet, const PlacedView& view, const Line& line, const SheetPage& page) {
  std::string style;
  if (line.hidden && sheet.options.hidden == HiddenStyle::kDashed && !line.chain.closed) {
    const auto dashes = DashesOf(sheet, line);
    style = Attribute("stroke-dasharray", dashes ? Px(dashes->dash) + " " + Px(dashes->gap) : "none");
  }
  if (IsChainLine(line.edgeClass)) {
    std::string dashes;
    if (const auto pattern = ChainPattern(sheet, line)) {
      for (const double part : *pattern) dashes.append(dashes.empty() ? "" : " ").append(MmText(part));
    }
    if (!dashes.empty()) style = Attribute("stroke-dasharray", dashes);
  }
  return "<path" + style + Attribute("d", page.PathData(sheet.OnPaper(view, line.chain))) + "/>\n";
}

std::string ShadeText(std::size_t object) {
  std::string text = "#";
  for (const int value : ShadeOf(object)) {
    for (const int digit : {value / 16, value % 16}) text += "0123456789abcdef"[digit];
  }
  return text;
}

std::string RingsData(const Sheet& sheet, const PlacedView& view, const LoopList& loops, const SheetPage& page) {
  std::string data;
  ForEachRing(loops, [&](const ZBR_LOOP& ring) {
    std::vector<ZBR_PT> points;
    for (const ZBR_PT& p : ring.pt()) points.push_back(sheet.OnPaper(view, p));
    data += page.PathData(points, true);
  });
  return data;
}

std::string ViewId(const PlacedView& view) {
  return "view-" + view.lines.name;
}

// What lines of a class have of their own.
std::string ClassStyle(const Sheet& sheet, EdgeClass edgeClass) {
  const double width = sheet.WidthOf(edgeClass);
  std::string style = width != sheet.wide ? Attribute("stroke-width", MmText(width)) : "";
  if (edgeClass == EdgeClass::kTangent && sheet.options.tangent == TangentStyle::kLayer) style += Attribute("display", "none");
  return style + (IsChainLine(edgeClass) ? Attribute("stroke-linecap", "butt") : "");
}

// Of the hidden or the visible lines of a class. Lines by the thousand are shared out among threads in ranges.
std::string Paths(const Sheet& sheet, const PlacedView& view, bool hidden, EdgeClass edgeClass, const SheetPage& page,
                  unsigned threads) {
  constexpr std::size_t kRange = 4096;
  const std::vector<Line>& lines = view.lines.lines;
  std::vector<std::string> parts((lines.size() + kRange - 1) / kRange);
  RunParallel(parts.size(), threads, [&](std::size_t k) {
    for (std::size_t i = k * kRange; i < std::min(lines.size(), (k + 1) * kRange); ++i) {
      if (lines[i].hidden == hidden && lines[i].edgeClass == edgeClass) parts[k] += PathElement(sheet, view, lines[i], page);
    }
  });
  std::string paths;
  for (const std::string& part : parts) paths += part;
  return paths;
}

// The hidden or the visible lines of a view.
std::string LinesGroup(const Sheet& sheet, const PlacedView& view, bool hidden, const SheetPage& page, unsigned threads) {
  const char* const visibility = hidden ? "hidden" : "visible";
  std::string content;
  for (const EdgeClass edgeClass : kDrawnClasses) {
    const std::string paths = Paths(sheet, view, hidden, edgeClass, page, threads);
    if (paths.empty()) continue;
    content += "<g" + Attribute("id", ViewId(view) + "-" + visibility + "-" + NameOf(edgeClass)) +
               Attribute("class", NameOf(edgeClass)) + (hidden ? "" : ClassStyle(sheet, edgeClass)) + ">\n" + paths + "</g>\n";
  }
  if (content.empty()) return "";
  std::string style = Attribute("class", visibility);
  if (!hidden) {
    style += Attribute("stroke-width", MmText(sheet.wide)) + Attribute("stroke-linecap", "round");
  } else {
    style += Attribute("stroke-width", MmText(sheet.thin));
    style += sheet.options.hidden == HiddenStyle::kLayer
                 ? Attribute("display", "none")
                 : Attribute("stroke-dasharray", MmText(kDash * sheet.thin) + " " + MmText(kDashGap * sheet.thin));
  }
  return "<g" + style + ">\n" + content + "</g>\n";
}

// What each object covers, below all lines. A hairline of the same shade closes the seams that smoothing leaves between neighbours.
std::string FillGroup(const Sheet& sheet, const PlacedView& view, const std::vector<ObjectSource>& objects, const SheetPage& page) {
  std::string paths;
  for (std::size_t k = 0; k < std::min(view.lines.outlines.size(), objects.size()); ++k) {
    const std::string data = RingsData(sheet, view, view.lines.outlines[k], page);
    if (data.empty()) continue;
    paths += "<path" + Attribute("id", ViewId(view) + "-fill-" + std::to_string(k)) + Attribute("fill", ShadeText(k)) +
             Attribute("stroke", ShadeText(k)) + Attribute("d", data) + "><title>" + Escaped(objects[k].id) + "</title></path>\n";
  }
  if (paths.empty()) return "";
  return "<g class=\"fill\" fill-rule=\"evenodd\"" + Attribute("stroke-width", MmText(kSeam)) + ">\n" + paths + "</g>\n";
}

std::string FrameGroup(const Sheet& sheet, const SheetPage& page) {
  std::string svg = "<g id=\"sheet\"" + Attribute("stroke-width", MmText(kThinFrame)) + ">\n";
  for (const SheetPath& path : sheet.paths) {
    svg += "<path" + (path.wide ? Attribute("stroke-width", MmText(kWideFrame)) : "") +
           Attribute("d", page.PathData(path.points, path.closed)) + "/>\n";
  }
  for (const SheetCircle& circle : sheet.circles) {
    svg += "<circle" + Attribute("cx", Px(circle.centre.x())) + Attribute("cy", Px(page.Down(circle.centre.y()))) +
           Attribute("r", Px(circle.radius)) + "/>\n";
  }
  for (const SheetText& text : sheet.texts) {
    const std::string style = "stroke=\"none\" fill=\"#000\" font-size=\"" + Px(text.height * kSizePerHeight) + "\"";
    svg += TextElement(text.at.x(), page.Down(text.at.y()), style, text.text);
  }
  return svg + "</g>\n";
}

}  // namespace

std::string WriteSheetSvg(const Sheet& sheet, const std::vector<ObjectSource>& objects, unsigned threads) {
  const SheetPage page(sheet.paper.height);
  const std::string width = Px(sheet.paper.width), height = Px(sheet.paper.height);
  std::string svg =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" +
      Attribute(kContentAttribute, kSheetContent) + Attribute("width", width + "mm") + Attribute("height", height + "mm") +
      Attribute("viewBox", "0 0 " + width + " " + height) +
      " font-family=\"'DejaVu Sans', Arial, Helvetica, sans-serif\" fill=\"none\" stroke=\"#000\" stroke-linejoin=\"round\">\n";
  svg += "<title>" + Escaped(sheet.options.title) + "</title>\n";
  svg += "<rect" + Attribute("width", width) + Attribute("height", height) + " fill=\"#fff\" stroke=\"none\"/>\n";
  for (const PlacedView& view : sheet.views) {
    svg += "<g" + Attribute("id", ViewId(view)) + Attribute("class", "view") + ">\n<title>" + view.lines.name + "</title>\n" +
           FillGroup(sheet, view, objects, page) + LinesGroup(sheet, view, true, page, threads) +
           LinesGroup(sheet, view, false, page, threads) + "</g>\n";
  }
  if (!sheet.paths.empty() || !sheet.texts.empty()) svg += FrameGroup(sheet, page);
  return svg + "</svg>\n";
}

}  // namespace zbr::formats
