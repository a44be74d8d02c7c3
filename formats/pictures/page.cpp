// Layout of pages and what stands around their drawings.
#include "formats/pictures/page.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>

#include <algorithm>
#include <cmath>

namespace zbr::formats {
namespace {

constexpr int kDigits = 6;  // of the largest number; the others get as many decimals
constexpr const char* kFrame = "#e5e7eb";

}  // namespace

PanelLayout::PanelLayout(std::size_t panels, const Extent& extent, double headerHeight) : header(headerHeight) {
  const double w = extent.empty() ? 1.0 : extent.xmax / 2 - extent.xmin / 2;
  const double h = extent.empty() ? 1.0 : extent.ymax / 2 - extent.ymin / 2;
  const double aspect = w > 0 ? h / w : 1.0;
  columns = panels <= 3 ? static_cast<int>(panels) : (panels == 4 ? 2 : 3);
  panelWidth = panels == 1 ? 920 : (columns == 2 ? 560 : 420);
  plotWidth = panelWidth - 2 * kPanelInset;
  plotHeight = std::clamp(plotWidth * aspect, plotWidth * 0.25, plotWidth * (panels == 1 ? 0.8 : 1.0));
  const std::size_t rows = (panels + Columns() - 1) / Columns();
  width = 2 * kPageMargin + columns * panelWidth + (columns - 1) * kPanelGap;
  height = 2 * kPageMargin + header + static_cast<double>(rows) * (PanelHeight() + kPanelGap) - kPanelGap;
}

double PanelLayout::PanelLeft(std::size_t i) const {
  return kPageMargin + static_cast<double>(i % Columns()) * (panelWidth + kPanelGap);
}

double PanelLayout::PanelTop(std::size_t i) const {
  const std::size_t row = i / Columns();
  return kPageMargin + header + static_cast<double>(row) * (PanelHeight() + kPanelGap);
}

// The space between lines follows from their length: drawn evenly over the plot, lines of length L are plot / L apart.
double StrokeWidth(double length, const PanelLayout& layout, const PageMap& map) {
  constexpr double kThinnest = 0.25;
  constexpr double kThickest = 1.3;
  constexpr double kShareOfSpace = 0.15;
  const double space = layout.plotWidth * layout.plotHeight / (length * map.PixelsPerUnit());
  return std::clamp(space * kShareOfSpace, kThinnest, kThickest);
}

double LengthOfRings(const LoopList& loops) {
  double length = 0.0;
  ForEachRing(loops, [&](const ZBR_LOOP& ring) {
    for (std::size_t i = 0; i < ring.pt().size(); ++i) length += ring.pt()[i].Distance(ring.pt()[(i + 1) % ring.pt().size()]);
  });
  return length;
}

Quantities::Quantities(double largest, const std::string& unit) : unit_(unit) {
  const int magnitude = largest > 0 ? DecimalExponent(largest) : 0;
  readable_ = magnitude >= -6 && magnitude < 12;
  decimals_ = readable_ ? std::max(0, kDigits - 1 - magnitude) : 0;
}

std::string Quantities::operator()(double value) const {
  return (readable_ ? FixedText(value, decimals_) : RoundedText(value, kDigits)) + (unit_.empty() ? "" : " " + unit_);
}

std::string AreaUnit(int units) {
  return UnitName(units).empty() ? "" : UnitName(units) + "²";
}

std::string Font(double size, const char* colour, const char* more) {
  return "font-size=\"" + Px(size) + "\" fill=\"" + colour + "\"" + more;
}

std::string PageStart(const PanelLayout& layout, const std::string& title) {
  const std::string size = Px(layout.width) + "\" height=\"" + Px(layout.height);
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" " +
         std::string(kContentAttribute) + "=\"" + kPictureContent + "\" width=\"" + size + "\" viewBox=\"0 0 " + Px(layout.width) +
         " " + Px(layout.height) +
         "\" font-family=\"Inter, 'Helvetica Neue', Helvetica, Arial, 'DejaVu Sans', sans-serif\" stroke-linejoin=\"round\">\n"
         "<title>" +
         Escaped(title) + "</title>\n<rect width=\"" + size + "\" fill=\"#ffffff\"/>\n" +
         TextElement(kPageMargin, kPageMargin + 20, Font(22, kInk, " font-weight=\"600\""), title);
}

std::string PanelFrame(const PanelLayout& layout, std::size_t index, const std::string& caption, const std::string& remark) {
  const double left = layout.PanelLeft(index);
  const double top = layout.PanelTop(index);
  return "<rect x=\"" + Px(left) + "\" y=\"" + Px(top) + "\" width=\"" + Px(layout.panelWidth) + "\" height=\"" +
         Px(layout.PanelHeight()) + "\" rx=\"8\" fill=\"none\" stroke=\"" + kFrame + "\"/>\n" +
         TextElement(left + kPanelInset, top + 27, Font(16, kInk, " font-weight=\"600\""), caption) +
         TextElement(left + layout.panelWidth - kPanelInset, top + 27, Font(14, kPale, " text-anchor=\"end\""), remark);
}

std::string InPanel(const PanelLayout& layout, std::size_t index, const std::string& svg) {
  const std::string x = Px(layout.PanelLeft(index) + kPanelInset);
  const std::string y = Px(layout.PanelTop(index) + kCaptionHeight);
  return "<g transform=\"translate(" + x + " " + y + ")\">\n" + svg + "</g>\n";
}

// The longest of 1, 2 or 5 times a power of ten that is at most a quarter of a panel wide.
std::string ScaleBar(int units, const PanelLayout& layout, const PageMap& map) {
  const double longest = layout.panelWidth / 4 / map.PixelsPerUnit();
  if (!std::isfinite(longest) || !(longest > 0)) return "";
  const double power = PowerOfTen(DecimalExponent(longest));
  const double factor = longest >= 5 * power ? 5 : (longest >= 2 * power ? 2 : 1);
  const double length = factor * power * map.PixelsPerUnit();
  if (!std::isfinite(length)) return "";
  const double right = layout.width - kPageMargin;
  const double y = kPageMargin + 56;
  std::string svg = "<path d=\"M" + Px(right - length) + " " + Px(y - 5) + "V" + Px(y) + "H" + Px(right) + "V" + Px(y - 5) +
                    "\" fill=\"none\" stroke=\"" + kInk + "\" stroke-width=\"1.2\"/>\n";
  const std::string unit = UnitName(units);
  const std::string label = RoundedText(factor * power, kDigits) + (unit.empty() ? "" : " " + unit);
  return svg + TextElement(right - length / 2, y - 9, Font(12, kPale, " text-anchor=\"middle\""), label);
}

}  // namespace zbr::formats
