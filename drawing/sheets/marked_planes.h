// Where a sheet shows the planes of its sections: in which view, along which line, and how far out the ends of that line stand.
#pragma once

#include <zbr-drawing/sheet.h>

#include <cstddef>
#include <vector>

#include "drawing/sheets/lettering.h"

namespace zbr::drawing {

// Millimetres.
inline constexpr double kPlaneBeyond = 7;  // the plane's line reaches beyond the view
inline constexpr double kThickEnd = 6;
inline constexpr double kArrow = 8;
inline constexpr double kMarkLetter = 5;

// The line of a plane in a view that sees it edge-on, in the view's x and y.
struct MarkedPlane {
  std::size_t section = 0, parent = 0;  // places of views
  ZBR_PT along, toViewer;               // of length 1; the second the way the section's viewer is
  ZBR_PT foot;                          // of the line
  double low = 0.0, high = 0.0;         // along it, where it crosses the view
  double past = 0.0;                    // millimetres that it passes the view by, towards the viewer where positive
  double beside = 0.0;                  // how many of them it is drawn beside the view
  double outwards = 0.0;                // millimetres beyond the usual: the ends of planes close to each other stand apart

  ZBR_PT From(double perUnit) const { return foot + along * (low - (kPlaneBeyond + outwards) / perUnit); }
  ZBR_PT To(double perUnit) const { return foot + along * (high + (kPlaneBeyond + outwards) / perUnit); }
};

// Of the sections that another view of the sheet shows, in their order.
std::vector<MarkedPlane> FindMarkedPlanes(const Sheet& sheet);

// Puts the ends of planes back that stand outside of where the sheet is drawn on, even if they meet those of other planes.
void KeepMarksWithin(const Sheet& sheet, const PaperBox& bounds, std::vector<MarkedPlane>& planes);

// The middle of the letter behind the arrow at an end, on paper.
ZBR_PT LetterAt(const MarkedPlane& plane, const ZBR_PT& end);

}  // namespace zbr::drawing
