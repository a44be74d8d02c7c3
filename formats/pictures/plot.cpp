// Pictures of one drawing.
#include <zbr-formats/plot.h>

#include <zbr-drawing/contours.h>
#include <zbr-drawing/measures.h>
#include <zbr-drawing/units.h>

#include <algorithm>
#include <array>

#include "formats/pictures/page.h"

namespace zbr::formats {
namespace {

constexpr double kEntryWidth = 230;  // of the legend
constexpr double kEntryHeight = 42;
constexpr std::size_t kMostEntries = 12;

Extent ExtentOf(const Plot& plot) {
  Extent extent;
  for (const PlotItem& item : plot.items) {
    ForEachRing(item.region, [&](const ZBR_LOOP& ring) {
      for (const ZBR_PT& p : ring.pt()) extent.Add(p);
    });
    for (const auto& line : item.lines) {
      for (const ZBR_PT& p : line) extent.Add(p);
    }
    for (const Path& path : item.paths) extent.Add(TrueExtentOf(path));
  }
  return extent;
}

double LengthOf(const PlotItem& item) {
  double length = LengthOfRings(item.region);
  for (const auto& line : item.lines) {
    for (std::size_t i = 1; i < line.size(); ++i) length += line[i].Distance(line[i - 1]);
  }
  for (const Path& path : item.paths) {
    constexpr double kCoarse = 1e-3;  // of the size: enough for the width of lines
    std::vector<ZBR_PT> points;
    FlattenPath(path, kCoarse * TrueExtentOf(path).Size(), [&](const ZBR_PT& p, std::size_t, double) { points.push_back(p); });
    for (std::size_t i = 1; i < points.size(); ++i) length += points[i].Distance(points[i - 1]);
  }
  return length;
}

std::string Colours(const PlotItem& item) {
  return " fill=\"" + (item.fill.empty() ? "none" : item.fill) + "\" stroke=\"" + (item.stroke.empty() ? "none" : item.stroke) +
         "\"";
}

std::string ItemShape(const PlotItem& item, double usualWidth, const PageMap& map) {
  std::string data = item.borders.empty() ? PathData(item.region, map) : PathData(item.borders, map);
  for (const auto& line : item.lines) data += PathData(line, map);
  data += PathData(item.paths, map);
  if (data.empty()) return data;
  return "<path" + Colours(item) + " stroke-width=\"" + Px(usualWidth * item.width) +
         "\" stroke-linecap=\"round\" fill-rule=\"evenodd\" d=\"" + data + "\"/>\n";
}

std::string Swatch(const PlotItem& item, double x, double y) {
  if (item.fill.empty())
    return "<path d=\"M" + Px(x) + " " + Px(y - 5) + "h26\"" + Colours(item) + " stroke-width=\"3\" stroke-linecap=\"round\"/>\n";
  return "<rect x=\"" + Px(x) + "\" y=\"" + Px(y - 13) + "\" width=\"26\" height=\"16\" rx=\"3\"" + Colours(item) + "/>\n";
}

// The items that have a label, in rows below the title; the scale bar takes the end of the first row.
class Legend {
 public:
  explicit Legend(const Plot& plot) {
    for (const PlotItem& item : plot.items) {
      if (!item.label.empty() && entries_.size() < kMostEntries) entries_.push_back(&item);
      if (!item.label.empty()) ++count_;
    }
  }

  double Height() const {
    const std::size_t rows = (entries_.size() + kPerRow - 1) / kPerRow;
    return kHeader + kEntryHeight * static_cast<double>(std::max<std::size_t>(rows, 1) - 1);
  }

  std::string Svg(int units) const {
    double area = 0.0, length = 0.0;
    for (const PlotItem* item : entries_)
      (item->fill.empty() ? length : area) = std::max(item->fill.empty() ? length : area, item->quantity);
    const Quantities areaText(area, AreaUnit(units)), lengthText(length, UnitName(units));
    std::string svg;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
      const std::size_t column = i % kPerRow, row = i / kPerRow;
      const double x = kPageMargin + kEntryWidth * static_cast<double>(column);
      const double y = kPageMargin + 54 + kEntryHeight * static_cast<double>(row);
      const PlotItem& item = *entries_[i];
      const bool isRest = i + 1 == kMostEntries && count_ > kMostEntries;
      svg += Swatch(item, x, y);
      svg += TextElement(x + 36, y, Font(15, kInk), isRest ? std::to_string(count_ - i) + " more" : item.label);
      if (!isRest) svg += TextElement(x + 36, y + 18, Font(13, kPale), (item.fill.empty() ? lengthText : areaText)(item.quantity));
    }
    return svg;
  }

 private:
  static constexpr std::size_t kPerRow = 3;
  std::vector<const PlotItem*> entries_;
  std::size_t count_ = 0;
};

}  // namespace

std::string WriteSvg(const Plot& plot) {
  const Extent extent = ExtentOf(plot);
  const Legend legend(plot);
  const PanelLayout layout(1, extent, legend.Height());
  const PageMap map(extent, layout.plotWidth, layout.plotHeight);
  double length = 0.0;
  for (const PlotItem& item : plot.items) length = std::max(length, LengthOf(item));
  const double width = StrokeWidth(length, layout, map);

  std::string svg = PageStart(layout, plot.title) + legend.Svg(plot.units);
  std::string shapes;
  for (const PlotItem& item : plot.items) shapes += ItemShape(item, width, map);
  if (extent.empty()) {
    shapes = TextElement(layout.plotWidth / 2, layout.plotHeight / 2,
                         Font(15, kPale, " text-anchor=\"middle\" font-style=\"italic\""), "empty");
  } else {
    svg += ScaleBar(plot.units, layout, map);
  }
  return svg + PanelFrame(layout, 0, plot.caption, plot.remark) + InPanel(layout, 0, shapes) + "</svg>\n";
}

std::string AreaText(double area, int units) {
  return Quantities(area, AreaUnit(units))(area);
}

}  // namespace zbr::formats
