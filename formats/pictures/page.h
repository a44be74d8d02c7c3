// What all pictures have in common: page, colours, captions, scale bar.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>

#include <cstddef>
#include <string>
#include <vector>

#include "formats/pictures/svg_text.h"

namespace zbr::formats {

// Lengths on the page, in pixels.
inline constexpr double kPageMargin = 28;
inline constexpr double kPanelGap = 22;
inline constexpr double kHeader = 88;         // title, legend and scale bar
inline constexpr double kCaptionHeight = 40;  // within a panel
inline constexpr double kPanelInset = 16;     // from the frame of a panel to the drawing

inline constexpr const char* kInk = "#1f2937";
inline constexpr const char* kPale = "#6b7280";

// Panels of one size in a grid.
struct PanelLayout {
  int columns = 1;
  double header = kHeader;
  double panelWidth = 0, plotWidth = 0, plotHeight = 0;
  double width = 0, height = 0;  // of the page

  // For this many panels, each with a drawing of the extent.
  PanelLayout(std::size_t panels, const Extent& extent, double headerHeight = kHeader);

  double PanelLeft(std::size_t i) const;
  double PanelTop(std::size_t i) const;
  double PanelHeight() const { return kCaptionHeight + plotHeight + kPanelInset; }
  std::size_t Columns() const { return static_cast<std::size_t>(columns); }
};

// A width for lines of this length together, in the unit of the drawing: where they lie so close that they would cover each other
// they are drawn thinner.
double StrokeWidth(double length, const PanelLayout& layout, const PageMap& map);

double LengthOfRings(const LoopList& loops);

// Numbers of one picture, written with equal precision, so that they can be compared at a glance.
class Quantities {
 public:
  // `unit` follows each number.
  Quantities(double largest, const std::string& unit);
  std::string operator()(double value) const;

 private:
  std::string unit_;
  bool readable_ = true;  // without an exponent
  int decimals_ = 0;
};

// "mm²", or nothing where the unit is not known.
std::string AreaUnit(int units);

std::string Font(double size, const char* colour, const char* more = "");

// The first lines of a picture: size, title and white ground.
std::string PageStart(const PanelLayout& layout, const std::string& title);

// Frame of a panel, its caption and what stands opposite the caption.
std::string PanelFrame(const PanelLayout& layout, std::size_t index, const std::string& caption, const std::string& remark);

// Moves what is drawn in the plot's own coordinates into a panel.
std::string InPanel(const PanelLayout& layout, std::size_t index, const std::string& svg);

// In the upper right corner; nothing for drawings without a size.
std::string ScaleBar(int units, const PanelLayout& layout, const PageMap& map);

}  // namespace zbr::formats
