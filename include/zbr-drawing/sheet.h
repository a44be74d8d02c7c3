// Views placed on paper, in millimetres: first- or third-angle projection, scale, frame, title block.
//
//   SheetOptions options;
//   options.projection = Projection::kFirst;
//   options.title = "Housing";
//   const Sheet sheet = LayOut(DrawViews(model, views, {}), options);
//   for (const PlacedView& view : sheet.views) Plot(sheet.OnPaper(view, view.lines.lines[0].chain.points[0]));
//
// zbr-formats/sheets.h writes sheets as SVG, DXF and JSON.
#pragma once

#include <zbr-drawing/paper.h>
#include <zbr-drawing/view_lines.h>
#include <zbr/planar.h>

#include <optional>
#include <string>
#include <vector>

namespace zbr::drawing {

// How views are arranged: kNone places a single view without frame and title.
enum class Projection { kNone, kFirst, kThird };

enum class HiddenStyle { kNone, kDashed, kLayer };  // kLayer: on a layer that is not shown

enum class TangentStyle { kThin, kLayer };  // likewise

struct SheetOptions {
  Projection projection = Projection::kNone;
  HiddenStyle hidden = HiddenStyle::kDashed;
  TangentStyle tangent = TangentStyle::kThin;
  std::optional<double> scale;  // of the drawing to the model; none: the largest that fits
  bool anyScale = false;        // which is a standard one, unless this is set
  std::optional<Paper> paper;   // none: A4 for one view, A3 for several, larger when a given scale needs it
  std::string title;
  std::string number, author, date;  // of the drawing; empty ones have no field
  std::string unit = "mm";           // of the model
  double millimetres = 1.0;          // of one unit
};

struct PlacedView {
  ViewLines lines;
  ZBR_PT origin;  // where on paper the view's origin lies
};

// Frame, title, symbols and marks of sections. Points in millimetres.
struct SheetPath {
  std::vector<ZBR_PT> points;
  bool closed = false;
  bool wide = false;
};
struct SheetCircle {
  ZBR_PT centre;
  double radius = 0.0;
};
struct SheetText {
  ZBR_PT at;  // start of the base line
  double height = 0.0;
  std::string text;
};

// Everything on paper in millimetres from the lower left corner, y up.
struct Sheet {
  SheetOptions options;
  Paper paper;
  double scale = 1.0;              // as people write it: millimetres on paper for each of the model
  double perUnit = 1.0;            // millimetres on paper for each unit of the model
  double wide = 0.5, thin = 0.25;  // of visible and of hidden lines
  double cut = 0.7;                // of the outlines of cut faces
  std::vector<PlacedView> views;
  std::vector<SheetPath> paths;
  std::vector<SheetCircle> circles;
  std::vector<SheetText> texts;
  std::vector<std::string> shortened;  // fields of the title block that had no room for all of their text: "Title", "Number"

  // Of visible lines of this class.
  double WidthOf(EdgeClass edgeClass) const;
  ZBR_PT OnPaper(const PlacedView& view, const ZBR_PT& p) const { return view.origin + p * perUnit; }
  // With arcs in place of the runs along circles.
  Path OnPaper(const PlacedView& view, const Chain& chain) const;
};

// Dashes of hidden lines are this many line widths long, and the gaps between them.
inline constexpr double kDash = 12.0;
inline constexpr double kDashGap = 3.0;

// Chain lines have long dashes of this many line widths, then a gap, a dot and another gap.
inline constexpr double kLongDash = 24.0;
inline constexpr double kDot = 1.0;
bool IsChainLine(EdgeClass edgeClass);

// Arranges the views, hatches sections and marks where they are. Fails when paper and scale are given and the views do not fit. The
// same sheet with any number of threads.
Sheet LayOut(std::vector<ViewLines> views, const SheetOptions& options, unsigned threads = 1);

// Whether a view of this name shows one side of the model: front, back, left, right, top or bottom.
bool IsSideView(const std::string& name);

// Adds frame, title block and projection symbol.
void AddFrame(Sheet& sheet);

// Room that the frame and the title block leave for views; the frame stands kClearance millimetres around it.
inline constexpr double kClearance = 8;
struct DrawingArea {
  double left, bottom, width, height;
};
DrawingArea AreaWithinFrame(const Paper& paper, const SheetOptions& options);

}  // namespace zbr::drawing
