// Pictures of combinations: legend, the operands by themselves, and a panel for each result.
#include <zbr-formats/picture.h>

#include <algorithm>
#include <array>

#include "formats/pictures/page.h"

namespace zbr::formats {
namespace {

constexpr double kLegendStep = 260;  // from one operand to the next

constexpr const char* kFill = "#99d8c9";
constexpr std::size_t kMostInLegend = 4;
constexpr std::array<const char*, 6> kOperandColours = {"#2563eb", "#e8590c", "#7c3aed", "#be123c", "#4d7c0f", "#0e7490"};

std::string ColourOf(std::size_t operand) {
  return kOperandColours[operand % kOperandColours.size()];
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

double LargestArea(const Picture& picture) {
  double largest = 0.0;
  for (const Layer& operand : picture.operands) largest = std::max(largest, operand.area);
  for (const Panel& panel : picture.panels) largest = std::max(largest, panel.result.area);
  return largest;
}

std::string Legend(const Picture& picture, const Quantities& areaText) {
  std::string svg;
  if (picture.operands.size() < 2) return svg;  // nothing to tell apart
  const double y = kPageMargin + 54;
  const std::size_t shown = std::min(picture.operands.size(), kMostInLegend);
  for (std::size_t i = 0; i < shown; ++i) {
    const Layer& operand = picture.operands[i];
    const double x = kPageMargin + static_cast<double>(i) * kLegendStep;
    svg += "<line x1=\"" + Px(x) + "\" y1=\"" + Px(y - 5) + "\" x2=\"" + Px(x + 26) + "\" y2=\"" + Px(y - 5) + "\" stroke=\"" +
           ColourOf(i) + "\" stroke-width=\"3\" stroke-linecap=\"round\"/>\n";
    svg += TextElement(x + 36, y, Font(15, kInk, " font-weight=\"600\""), OperandLabel(i));
    svg += TextElement(x + 54, y, Font(15, kInk), operand.name);
    svg += TextElement(x + 54, y + 18, Font(13, kPale), areaText(operand.area));
  }
  return svg;
}

// The shapes of the operands, which every panel refers to.
std::string Definitions(const Picture& picture, const PageMap& map) {
  std::string svg = "<defs>\n";
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    svg += "<path id=\"" + OperandLabel(i) + "\" d=\"" + PathData(picture.operands[i], map) + "\"/>\n";
  }
  return svg + "</defs>\n";
}

std::string Reference(std::size_t operand, const std::string& style) {
  return "<use xlink:href=\"#" + OperandLabel(operand) + "\" " + style + "/>\n";
}

std::string Outlines(const Picture& picture, const PanelLayout& layout, const PageMap& map) {
  std::string svg;
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    const std::string width = Px(StrokeWidth(LengthOfRings(picture.operands[i].loops), layout, map));
    svg += Reference(i, "fill=\"none\" stroke=\"" + ColourOf(i) + "\" stroke-width=\"" + width + "\"");
  }
  return svg;
}

std::string OperandsPanel(const Picture& picture, const PanelLayout& layout, const PageMap& map) {
  std::string svg;
  for (std::size_t i = 0; i < picture.operands.size(); ++i) {
    svg += Reference(i, "fill=\"" + ColourOf(i) + "\" fill-opacity=\"0.16\" fill-rule=\"evenodd\"");
  }
  std::string caption = OperandLabel(0);
  for (std::size_t i = 1; i < std::min(picture.operands.size(), kMostInLegend); ++i) caption += ", " + OperandLabel(i);
  if (picture.operands.size() > kMostInLegend) caption += ", …";
  return PanelFrame(layout, 0, caption, "") + InPanel(layout, 0, svg + Outlines(picture, layout, map));
}

std::string ResultPanel(const Picture& picture, const Panel& panel, const PanelLayout& layout, const PageMap& map,
                        std::size_t index, const Quantities& areaText) {
  std::string svg = "<path fill=\"" + std::string(kFill) + "\" fill-rule=\"evenodd\" d=\"" + PathData(panel.result, map) + "\"/>\n";
  svg += Outlines(picture, layout, map);
  if (panel.result.loops.empty()) {
    svg += TextElement(layout.plotWidth / 2, layout.plotHeight / 2,
                       Font(15, kPale, " text-anchor=\"middle\" font-style=\"italic\""), "empty");
  }
  return PanelFrame(layout, index, panel.caption, areaText(panel.result.area)) + InPanel(layout, index, svg);
}

}  // namespace

std::string OperandLabel(std::size_t operand) {
  constexpr std::size_t kLetters = 26;
  const std::string letter(1, static_cast<char>('A' + operand % kLetters));
  return operand < kLetters ? letter : letter + std::to_string(operand / kLetters);
}

std::string WriteSvg(const Picture& picture) {
  const Extent extent = ExtentOfLayers(picture);
  const Quantities areaText(LargestArea(picture), AreaUnit(picture.units));
  // Beside several results the operands are shown once by themselves.
  const std::size_t first = picture.panels.size() > 1 ? 1 : 0;
  const PanelLayout layout(first + picture.panels.size(), extent);
  const PageMap map(extent, layout.plotWidth, layout.plotHeight);
  std::string svg = PageStart(layout, picture.title) + Legend(picture, areaText);
  if (!extent.empty()) svg += ScaleBar(picture.units, layout, map);
  svg += Definitions(picture, map);
  if (first > 0) svg += OperandsPanel(picture, layout, map);
  for (std::size_t i = 0; i < picture.panels.size(); ++i) {
    svg += ResultPanel(picture, picture.panels[i], layout, map, first + i, areaText);
  }
  return svg + "</svg>\n";
}

}  // namespace zbr::formats
