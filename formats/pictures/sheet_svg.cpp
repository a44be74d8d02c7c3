// Sheets as SVG pages.
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/region.h>
#include <zbr-formats/sheets.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "formats/pictures/svg_text.h"

namespace zbr::formats {
namespace {

constexpr double kMerged = 0.02;  // mm: points closer together than this make no difference on paper

std::string Attribute(const char* name, const std::string& value) {
  return std::string(" ") + name + "=\"" + value + "\"";
}

std::string MmText(double value) {
  return RoundedText(value, 3);
}

// Where points of the paper are on the page, whose y points down.
class Page {
 public:
  explicit Page(double height) : height_(height) {}

  // Points too close to the one before are left out, the last one kept.
  std::string PathData(const std::vector<ZBR_PT>& points, bool closed) const {
    std::string data;
    ZBR_PT last;
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (i > 0 && i + 1 < points.size() && points[i].Distance(last) < kMerged) continue;
      data += i == 0 ? 'M' : 'L';
      data += Px(points[i].x());
      data += ' ';
      data += Px(Down(points[i].y()));
      last = points[i];
    }
    return data + (closed ? "Z" : "");
  }
  double Down(double y) const { return height_ - y; }

 private:
  double height_;
};

double LengthOf(const std::vector<ZBR_PT>& points) {
  double length = 0.0;
  for (std::size_t i = 1; i < points.size(); ++i) length += points[i].Distance(points[i - 1]);
  return length;
}

// The dashes of an open line are stretched or shortened so that it starts and ends with a whole one: then corners close, and a
// short line still shows that it is hidden.
std::string Dashes(double length, double lineWidth) {
  constexpr double kShortest = 1;
  if (length < kShortest) return "none";
  const double dash = kDash * lineWidth, period = (kDash + kDashGap) * lineWidth;
  const double gaps = std::max(std::round((length - dash) / period), 1.0);
  const double stretch = length / (gaps * period + dash);
  return Px(dash * stretch) + " " + Px((period - dash) * stretch);
}

std::string PathElement(const Sheet& sheet, const PlacedView& view, const Line& line, const Page& page) {
  std::vector<ZBR_PT> points;
  for (const ZBR_PT& p : line.chain.points) points.push_back(sheet.OnPaper(view, p));
  std::string style;
  if (line.hidden && sheet.options.hidden == HiddenStyle::kDashed && !line.chain.closed)
    style = Attribute("stroke-dasharray", Dashes(LengthOf(points), sheet.thin));
  if (line.chain.closed) points.pop_back();
  return "<path" + style + Attribute("d", page.PathData(points, line.chain.closed)) + "/>\n";
}

// Light enough for lines on top, and apart from each other even in print.
std::string ShadeOf(std::size_t object) {
  constexpr std::array<const char*, 6> kShades = {"#e4e6e9", "#c9d8e6", "#ecdfc4", "#cfe3cf", "#e9d0cd", "#d8d0e6"};
  return kShades[object % kShades.size()];
}

std::string RingsData(const Sheet& sheet, const PlacedView& view, const LoopList& loops, const Page& page) {
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
  if (edgeClass != EdgeClass::kTangent) return "";
  return Attribute("stroke-width", MmText(sheet.thin)) +
         (sheet.options.tangent == TangentStyle::kLayer ? Attribute("display", "none") : "");
}

// The hidden or the visible lines of a view.
std::string LinesGroup(const Sheet& sheet, const PlacedView& view, bool hidden, const Page& page) {
  const char* const visibility = hidden ? "hidden" : "visible";
  std::string content;
  for (const EdgeClass edgeClass : kDrawnClasses) {
    std::string paths;
    for (const Line& line : view.lines.lines) {
      if (line.hidden == hidden && line.edgeClass == edgeClass) paths += PathElement(sheet, view, line, page);
    }
    if (paths.empty()) continue;
    content += "<g" + Attribute("id", ViewId(view) + "-" + visibility + "-" + NameOf(edgeClass)) +
               Attribute("class", NameOf(edgeClass)) + ClassStyle(sheet, edgeClass) + ">\n" + paths + "</g>\n";
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
std::string FillGroup(const Sheet& sheet, const PlacedView& view, const std::vector<ObjectSource>& objects, const Page& page) {
  constexpr double kSeam = 0.05;
  std::string paths;
  for (std::size_t k = 0; k < view.lines.outlines.size(); ++k) {
    const std::string data = RingsData(sheet, view, view.lines.outlines[k], page);
    if (data.empty()) continue;
    paths += "<path" + Attribute("id", ViewId(view) + "-fill-" + std::to_string(k)) + Attribute("fill", ShadeOf(k)) +
             Attribute("stroke", ShadeOf(k)) + Attribute("d", data) + "><title>" + Escaped(objects[k].id) + "</title></path>\n";
  }
  if (paths.empty()) return "";
  return "<g class=\"fill\" fill-rule=\"evenodd\"" + Attribute("stroke-width", MmText(kSeam)) + ">\n" + paths + "</g>\n";
}

std::string FrameGroup(const Sheet& sheet, const Page& page) {
  constexpr double kWideFrame = 0.7, kThinFrame = 0.25;
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
    constexpr double kSizePerHeight = 1.38;  // the size of a font counts the room above and below its capitals
    const std::string style = "stroke=\"none\" fill=\"#000\" font-size=\"" + Px(text.height * kSizePerHeight) + "\"";
    svg += TextElement(text.at.x(), page.Down(text.at.y()), style, text.text);
  }
  return svg + "</g>\n";
}

}  // namespace

std::string WriteSheetSvg(const Sheet& sheet, const std::vector<ObjectSource>& objects) {
  const Page page(sheet.paper.height);
  const std::string width = Px(sheet.paper.width), height = Px(sheet.paper.height);
  std::string svg =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("width", width + "mm") +
      Attribute("height", height + "mm") + Attribute("viewBox", "0 0 " + width + " " + height) +
      " font-family=\"'DejaVu Sans', Arial, Helvetica, sans-serif\" fill=\"none\" stroke=\"#000\" stroke-linejoin=\"round\">\n";
  svg += "<title>" + Escaped(sheet.options.title) + "</title>\n";
  svg += "<rect" + Attribute("width", width) + Attribute("height", height) + " fill=\"#fff\" stroke=\"none\"/>\n";
  for (const PlacedView& view : sheet.views) {
    svg += "<g" + Attribute("id", ViewId(view)) + Attribute("class", "view") + ">\n<title>" + view.lines.name + "</title>\n" +
           FillGroup(sheet, view, objects, page) + LinesGroup(sheet, view, true, page) + LinesGroup(sheet, view, false, page) +
           "</g>\n";
  }
  if (!sheet.paths.empty()) svg += FrameGroup(sheet, page);
  return svg + "</svg>\n";
}

}  // namespace zbr::formats
