// The layout of a picture: title, legend, scale bar and panels.
#include "picture/picture.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "geometry/units.h"
#include "io/numbers.h"
#include "picture/svg_text.h"

namespace tool {
namespace {

// The page, in pixels.
constexpr double kMargin = 28;
constexpr double kGap = 22;            // between panels
constexpr double kHeader = 88;         // title, legend and scale bar
constexpr double kCaptionHeight = 40;  // within a panel
constexpr double kLegendStep = 260;    // from one operand to the next
constexpr double kInset = 16;          // from the frame of a panel to the drawing
constexpr int kAreaDigits = 6;         // of the largest area; the others get as many decimals

constexpr const char* kInk = "#1f2937";
constexpr const char* kPale = "#6b7280";
constexpr const char* kFrame = "#e5e7eb";
constexpr const char* kFill = "#99d8c9";
constexpr std::array<const char*, 2> kOperandColours = {"#2563eb", "#e8590c"};
constexpr std::array<const char*, 2> kOperandLabels = {"A", "B"};

struct Layout {
  int columns = 1;
  double panelWidth = 0, plotWidth = 0, plotHeight = 0;
  double width = 0, height = 0;

  double PanelLeft(std::size_t i) const { return kMargin + static_cast<double>(i % Columns()) * (panelWidth + kGap); }
  double PanelTop(std::size_t i) const {
    const std::size_t row = i / Columns();
    return kMargin + kHeader + static_cast<double>(row) * (PanelHeight() + kGap);
  }
  double PanelHeight() const { return kCaptionHeight + plotHeight + kInset; }
  std::size_t Columns() const { return static_cast<std::size_t>(columns); }
};

Layout LayOut(std::size_t panels, const Extent& extent) {
  const double width = extent.empty() ? 1.0 : extent.xmax / 2 - extent.xmin / 2;
  const double height = extent.empty() ? 1.0 : extent.ymax / 2 - extent.ymin / 2;
  const double aspect = width > 0 ? height / width : 1.0;
  Layout layout;
  layout.columns = panels <= 3 ? static_cast<int>(panels) : (panels == 4 ? 2 : 3);
  layout.panelWidth = panels == 1 ? 920 : (layout.columns == 2 ? 560 : 420);
  layout.plotWidth = layout.panelWidth - 2 * kInset;
  layout.plotHeight = std::clamp(layout.plotWidth * aspect, layout.plotWidth * 0.25, layout.plotWidth * (panels == 1 ? 0.8 : 1.0));
  const std::size_t rows = (panels + layout.Columns() - 1) / layout.Columns();
  layout.width = 2 * kMargin + layout.columns * layout.panelWidth + (layout.columns - 1) * kGap;
  layout.height = 2 * kMargin + kHeader + static_cast<double>(rows) * (layout.PanelHeight() + kGap) - kGap;
  return layout;
}

Extent ExtentOfLayers(const Picture& picture) {
  Extent extent;
  const auto add = [&](const ZBR_LOOP& ring) {
    for (const ZBR_PT& p : ring.pt()) extent.Add(p);
  };
  for (const Layer& operand : picture.operands) ForEachRing(operand.loops, add);
  for (const Panel& panel : picture.panels) ForEachRing(panel.result.loops, add);
  return extent;
}

// Where lines lie so close that they would cover each other they are drawn thinner. The space between them follows from their
// length: drawn evenly over the plot, lines of length L are plot / L apart.
double StrokeWidth(const LoopList& loops, const Layout& layout, const PageMap& map) {
  constexpr double kThinnest = 0.25;
  constexpr double kThickest = 1.3;
  constexpr double kShareOfSpace = 0.15;
  double length = 0.0;
  ForEachRing(loops, [&](const ZBR_LOOP& ring) {
    for (std::size_t i = 0; i < ring.pt().size(); ++i) length += ring.pt()[i].Distance(ring.pt()[(i + 1) % ring.pt().size()]);
  });
  const double space = layout.plotWidth * layout.plotHeight / (length * map.PixelsPerUnit());
  return std::clamp(space * kShareOfSpace, kThinnest, kThickest);
}

// Areas of one picture, written so that they can be compared at a glance.
class AreaWriter {
 public:
  explicit AreaWriter(const Picture& picture) : unit_(UnitName(picture.units)) {
    double largest = 0.0;
    for (const Layer& operand : picture.operands) largest = std::max(largest, operand.area);
    for (const Panel& panel : picture.panels) largest = std::max(largest, panel.result.area);
    const double magnitude = largest > 0 ? std::floor(std::log10(largest)) : 0.0;
    readable_ = magnitude >= -6 && magnitude < 12;
    decimals_ = readable_ ? std::max(0, kAreaDigits - 1 - static_cast<int>(magnitude)) : 0;
  }

  std::string operator()(double area) const {
    const std::string number = readable_ ? FixedText(area, decimals_) : RoundedText(area, kAreaDigits);
    return number + (unit_.empty() ? "" : " " + unit_ + "²");
  }

 private:
  std::string unit_;
  bool readable_ = true;  // without an exponent
  int decimals_ = 0;
};

std::string Font(double size, const char* colour, const char* more = "") {
  return "font-size=\"" + Px(size) + "\" fill=\"" + colour + "\"" + more;
}

std::string Legend(const Picture& picture, const AreaWriter& areaText) {
  std::string svg;
  if (picture.operands.size() < 2) return svg;  // nothing to tell apart
  const double y = kMargin + 54;
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    const Layer& operand = picture.operands[i];
    const double x = kMargin + static_cast<double>(i) * kLegendStep;
    svg += "<line x1=\"" + Px(x) + "\" y1=\"" + Px(y - 5) + "\" x2=\"" + Px(x + 26) + "\" y2=\"" + Px(y - 5) + "\" stroke=\"" +
           kOperandColours[i] + "\" stroke-width=\"3\" stroke-linecap=\"round\"/>\n";
    svg += TextElement(x + 36, y, Font(15, kInk, " font-weight=\"600\""), kOperandLabels[i]);
    svg += TextElement(x + 54, y, Font(15, kInk), operand.name);
    svg += TextElement(x + 54, y + 18, Font(13, kPale), areaText(operand.area));
  }
  return svg;
}

// The shapes of the operands, which every panel refers to.
std::string Definitions(const Picture& picture, const PageMap& map) {
  std::string svg = "<defs>\n";
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    svg += "<path id=\"" + std::string(kOperandLabels[i]) + "\" d=\"" + PathData(picture.operands[i].loops, map) + "\"/>\n";
  }
  return svg + "</defs>\n";
}

std::string Reference(std::size_t operand, const std::string& style) {
  return "<use xlink:href=\"#" + std::string(kOperandLabels[operand]) + "\" " + style + "/>\n";
}

std::string Outlines(const Picture& picture, const Layout& layout, const PageMap& map) {
  std::string svg;
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    const std::string width = Px(StrokeWidth(picture.operands[i].loops, layout, map));
    svg += Reference(i, std::string("fill=\"none\" stroke=\"") + kOperandColours[i] + "\" stroke-width=\"" + width + "\"");
  }
  return svg;
}

// The frame of a panel, its caption and what stands opposite the caption.
std::string PanelFrame(const Layout& layout, std::size_t index, const std::string& caption, const std::string& remark) {
  const double left = layout.PanelLeft(index);
  const double top = layout.PanelTop(index);
  return "<rect x=\"" + Px(left) + "\" y=\"" + Px(top) + "\" width=\"" + Px(layout.panelWidth) + "\" height=\"" +
         Px(layout.PanelHeight()) + "\" rx=\"8\" fill=\"none\" stroke=\"" + kFrame + "\"/>\n" +
         TextElement(left + kInset, top + 27, Font(16, kInk, " font-weight=\"600\""), caption) +
         TextElement(left + layout.panelWidth - kInset, top + 27, Font(14, kPale, " text-anchor=\"end\""), remark);
}

// Moves what is drawn in the plot's own coordinates into a panel.
std::string InPanel(const Layout& layout, std::size_t index, const std::string& svg) {
  const std::string x = Px(layout.PanelLeft(index) + kInset);
  const std::string y = Px(layout.PanelTop(index) + kCaptionHeight);
  return "<g transform=\"translate(" + x + " " + y + ")\">\n" + svg + "</g>\n";
}

std::string OperandsPanel(const Picture& picture, const Layout& layout, const PageMap& map) {
  std::string svg;
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    svg += Reference(i, std::string("fill=\"") + kOperandColours[i] + "\" fill-opacity=\"0.16\" fill-rule=\"evenodd\"");
  }
  return PanelFrame(layout, 0, "A, B", "") + InPanel(layout, 0, svg + Outlines(picture, layout, map));
}

std::string ResultPanel(const Picture& picture, const Panel& panel, const Layout& layout, const PageMap& map, std::size_t index,
                        const AreaWriter& areaText) {
  std::string svg =
      "<path fill=\"" + std::string(kFill) + "\" fill-rule=\"evenodd\" d=\"" + PathData(panel.result.loops, map) + "\"/>\n";
  svg += Outlines(picture, layout, map);
  if (panel.result.loops.empty()) {
    svg += TextElement(layout.plotWidth / 2, layout.plotHeight / 2,
                       Font(15, kPale, " text-anchor=\"middle\" font-style=\"italic\""), "empty");
  }
  return PanelFrame(layout, index, panel.caption, areaText(panel.result.area)) + InPanel(layout, index, svg);
}

// The longest of 1, 2 or 5 times a power of ten that is at most a quarter of a panel wide.
std::string ScaleBar(const Picture& picture, const Layout& layout, const PageMap& map) {
  const double longest = layout.panelWidth / 4 / map.PixelsPerUnit();
  if (!std::isfinite(longest) || !(longest > 0)) return "";
  const double power = std::pow(10.0, std::floor(std::log10(longest)));
  const double factor = longest >= 5 * power ? 5 : (longest >= 2 * power ? 2 : 1);
  const double length = factor * power * map.PixelsPerUnit();
  if (!std::isfinite(length)) return "";
  const double right = layout.width - kMargin;
  const double y = kMargin + 56;
  std::string svg = "<path d=\"M" + Px(right - length) + " " + Px(y - 5) + "V" + Px(y) + "H" + Px(right) + "V" + Px(y - 5) +
                    "\" fill=\"none\" stroke=\"" + kInk + "\" stroke-width=\"1.2\"/>\n";
  const std::string unit = UnitName(picture.units);
  const std::string label = RoundedText(factor * power, kAreaDigits) + (unit.empty() ? "" : " " + unit);
  return svg + TextElement(right - length / 2, y - 9, Font(12, kPale, " text-anchor=\"middle\""), label);
}

}  // namespace

std::string WriteSvg(const Picture& picture) {
  const Extent extent = ExtentOfLayers(picture);
  const AreaWriter areaText(picture);
  // Beside several results the operands are shown once by themselves.
  const std::size_t first = picture.panels.size() > 1 ? 1 : 0;
  const Layout layout = LayOut(first + picture.panels.size(), extent);
  const PageMap map(extent, layout.plotWidth, layout.plotHeight);
  const std::string size = Px(layout.width) + "\" height=\"" + Px(layout.height);
  std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  svg += "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"" + size +
         "\" viewBox=\"0 0 " + Px(layout.width) + " " + Px(layout.height) +
         "\" font-family=\"Inter, 'Helvetica Neue', Helvetica, Arial, 'DejaVu Sans', sans-serif\" stroke-linejoin=\"round\">\n";
  svg += "<title>" + Escaped(picture.title) + "</title>\n";
  svg += "<rect width=\"" + size + "\" fill=\"#ffffff\"/>\n";
  svg += TextElement(kMargin, kMargin + 20, Font(22, kInk, " font-weight=\"600\""), picture.title);
  svg += Legend(picture, areaText) + (extent.empty() ? "" : ScaleBar(picture, layout, map));
  svg += Definitions(picture, map);
  if (first > 0) svg += OperandsPanel(picture, layout, map);
  for (std::size_t i = 0; i < picture.panels.size(); ++i) {
    svg += ResultPanel(picture, picture.panels[i], layout, map, first + i, areaText);
  }
  return svg + "</svg>\n";
}

}  // namespace tool
