// The arrangement of views: which cell of the sheet each one takes, the scale, the paper and the widths of lines.
//
// Cells are columns and rows around the front view at (0, 0). In first-angle projection each side view stands opposite to the side
// that it is seen from (what is seen from above stands below), in third-angle projection on that side. Views of one column share
// the place of their origin in x, those of one row in y, and the origin is the middle of the model: that lines them up. Pictorial
// views take a corner, where they are centred by what they show.
#include <zbr-drawing/sheet.h>

#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

#include "drawing/sheets/centre_lines.h"
#include "drawing/sheets/hatching.h"
#include "drawing/sheets/marked_planes.h"
#include "drawing/sheets/section_marks.h"
#include "drawing/sheets/view_names.h"
#include "drawing/views/specks.h"

namespace zbr::drawing {
namespace {

constexpr double kGap = 15;     // between views
constexpr double kMargin = 10;  // around a single view without a frame

struct Cell {
  int column = 0, row = 0;  // to the right, upwards
  bool aligned = false;

  bool SamePlace(const Cell& o) const { return column == o.column && row == o.row; }
};

struct SideView {
  const char* name;
  int column, row;  // in third-angle projection
};
constexpr std::array<SideView, 6> kSideViews = {
    {{"front", 0, 0}, {"top", 0, 1}, {"bottom", 0, -1}, {"left", -1, 0}, {"right", 1, 0}, {"back", 2, 0}}};

// In first-angle projection all but the back view change sides.
std::optional<Cell> SideCell(const std::string& name, Projection projection) {
  for (const SideView& side : kSideViews) {
    if (name != side.name) continue;
    const bool swap = projection == Projection::kFirst && side.column < 2;
    return Cell{swap ? -side.column : side.column, swap ? -side.row : side.row, true};
  }
  return std::nullopt;
}

// The first free corner, beside a side view and in the row of the view from above or below if there is one; else further columns.
Cell PictorialCell(const std::vector<Cell>& taken, Projection projection) {
  const auto isTaken = [&](const Cell& c) {
    return std::any_of(taken.begin(), taken.end(), [&](const Cell& t) { return t.SamePlace(c); });
  };
  if (std::none_of(taken.begin(), taken.end(), [](const Cell& c) { return c.aligned; }))
    return {static_cast<int>(taken.size()), 0, false};
  const int column = isTaken({-1, 0}) && !isTaken({1, 0}) ? -1 : 1;
  const int usual = projection == Projection::kFirst ? -1 : 1;
  const int row = isTaken({0, -usual}) && !isTaken({0, usual}) ? -usual : usual;
  for (const Cell corner : {Cell{column, row}, Cell{-column, row}, Cell{column, -row}, Cell{-column, -row}}) {
    if (!isTaken(corner)) return corner;
  }
  Cell cell{3, 0};
  while (isTaken(cell)) ++cell.column;
  return cell;
}

// Which way to go on a sheet from a view to one that is turned from it by a right angle, in third-angle projection; to the right
// for the same direction. None for other views.
std::optional<Cell> StepTo(const View& to, const View& from) {
  constexpr double kSame = 1e-9;
  const auto isSame = [](const ZBR_PT3& a, const ZBR_PT3& b) { return a.Distance(b) < kSame; };
  if (isSame(to.up, from.up)) {
    if (isSame(to.toViewer, from.right) || isSame(to.toViewer, from.toViewer)) return Cell{1, 0, true};
    if (isSame(to.toViewer, -from.right)) return Cell{-1, 0, true};
  }
  if (isSame(to.right, from.right)) {
    if (isSame(to.toViewer, from.up)) return Cell{0, 1, true};
    if (isSame(to.toViewer, -from.up)) return Cell{0, -1, true};
  }
  return std::nullopt;
}

// Sections stand in line with the first view that they are turned from by a right angle, as near as there is room.
std::optional<Cell> SectionCell(const std::vector<ViewLines>& views, const std::vector<Cell>& cells, std::size_t section,
                                const std::vector<Cell>& taken, Projection projection) {
  if (taken.empty()) return Cell{0, 0, true};
  for (std::size_t i = 0; i < views.size(); ++i) {
    const auto step = cells[i].aligned ? StepTo(views[section].view, views[i].view) : std::nullopt;
    if (!step) continue;
    const bool isSame = views[section].view.toViewer.InnerProduct(views[i].view.toViewer) > 0.5;
    const int sign = projection == Projection::kFirst && !isSame ? -1 : 1;
    Cell cell = cells[i];
    do {
      cell.column += sign * step->column;
      cell.row += sign * step->row;
    } while (std::any_of(taken.begin(), taken.end(), [&](const Cell& t) { return t.SamePlace(cell); }));
    return cell;
  }
  return std::nullopt;
}

std::vector<Cell> CellsOf(const std::vector<ViewLines>& views, Projection projection) {
  std::vector<Cell> cells(views.size());
  std::vector<Cell> taken;
  for (std::size_t i = 0; i < views.size(); ++i) {
    if (const auto side = SideCell(views[i].name, projection)) taken.push_back(cells[i] = *side);
  }
  for (std::size_t i = 0; i < views.size(); ++i) {
    if (!views[i].section) continue;
    if (const auto cell = SectionCell(views, cells, i, taken, projection)) taken.push_back(cells[i] = *cell);
  }
  for (std::size_t i = 0; i < views.size(); ++i) {
    if (!cells[i].aligned) taken.push_back(cells[i] = PictorialCell(taken, projection));
  }
  return cells;
}

// A column or a row: its views in the model's unit, and in millimetres what they need around them.
struct Band {
  double size = 0.0, room = 0.0;

  double On(double perUnit) const { return size * perUnit + room; }
};
// Those in use, by number.
using Bands = std::map<int, Band>;

double Sum(const Bands& bands, double Band::*part) {
  return std::accumulate(bands.begin(), bands.end(), 0.0, [part](double sum, const auto& band) { return sum + band.second.*part; });
}

// The middle of band `number` behind those before it; `first` is the first one's start.
double MiddleOf(const Bands& bands, int number, double first, double perUnit, double gap) {
  double at = first;
  for (auto band = bands.begin(); band->first != number; ++band) at += band->second.On(perUnit) + gap;
  return at + bands.at(number).On(perUnit) / 2;
}

struct Grid {
  std::vector<Cell> cells;
  Bands columns, rows;
  double marks = 0.0;  // room around views

  Grid(const std::vector<ViewLines>& views, Projection projection) : cells(CellsOf(views, projection)) {
    if (std::any_of(views.begin(), views.end(), [](const ViewLines& view) { return view.section.has_value(); }))
      marks = kSectionMarks;
    for (std::size_t i = 0; i < views.size(); ++i) {
      const Extent& e = views[i].extent;
      Band &column = columns[cells[i].column], &row = rows[cells[i].row];
      column.size = std::max(column.size, e.xmax - e.xmin);
      row.size = std::max(row.size, e.ymax - e.ymin);
    }
  }
  double Gap() const { return kGap + marks; }
  // All that does not grow with the scale.
  double Gaps(const Bands& bands) const {
    return Gap() * static_cast<double>(bands.size() - 1) + 2 * marks + Sum(bands, &Band::room);
  }
  double Width(double perUnit) const { return Sum(columns, &Band::size) * perUnit + Gaps(columns); }
  double Height(double perUnit) const { return Sum(rows, &Band::size) * perUnit + Gaps(rows); }
  // The largest scale in millimetres for each unit with which the views fit; at most 0 when even the gaps do not.
  double LargestIn(const DrawingArea& area) const {
    return std::min((area.width - Gaps(columns)) / Sum(columns, &Band::size), (area.height - Gaps(rows)) / Sum(rows, &Band::size));
  }
  // Room for cutting planes beside the view, and for ends that stand farther out than usual. Whether there was less before.
  bool WidenFor(const std::vector<MarkedPlane>& planes) {
    bool wider = false;
    const auto widen = [&](Band& band, double room) {
      wider = wider || room > band.room;
      band.room = std::max(band.room, room);
    };
    for (const MarkedPlane& plane : planes) {
      const auto room = [&](double x, double y) { return 2 * (plane.outwards * std::abs(x) + plane.beside * std::abs(y)); };
      widen(columns[cells[plane.parent].column], room(plane.along.x(), plane.toViewer.x()));
      widen(rows[cells[plane.parent].row], room(plane.along.y(), plane.toViewer.y()));
    }
    return wider;
  }
};

DrawingArea AreaOf(const Paper& paper, const SheetOptions& options) {
  if (options.projection != Projection::kNone) return AreaWithinFrame(paper, options);
  return {kMargin, kMargin, paper.width - 2 * kMargin, paper.height - 2 * kMargin};
}

// The largest scale in millimetres for each unit at which the views fit on a paper.
double LargestOn(const Paper& paper, const Sheet& sheet, const Grid& grid) {
  return grid.LargestIn(AreaOf(paper, sheet.options));
}

Paper BetterWay(const Paper& paper, const Sheet& sheet, const Grid& grid) {
  const bool turn = paper.mayTurn && LargestOn(Turned(paper), sheet, grid) > LargestOn(paper, sheet, grid);
  return turn ? Turned(paper) : paper;
}

// The scale for the paper.
void ChooseScale(Sheet& sheet, const Grid& grid) {
  const SheetOptions& options = sheet.options;
  const Paper& usual = StandardPapers()[sheet.views.size() == 1 ? 0 : 1];
  sheet.paper = BetterWay(options.paper.value_or(usual), sheet, grid);
  const double largest = LargestOn(sheet.paper, sheet, grid);
  if (!(largest > 0)) throw Failure("the views do not fit on " + sheet.paper.name);
  const double limit = largest / options.millimetres;
  sheet.scale = options.anyScale ? FittingScale(limit) : StandardScale(limit);
  if (!std::isnormal(sheet.scale)) throw Failure("the model is too large or too small to be drawn");
}

// Paper as large as the views need at the given scale.
Paper PaperAround(const Sheet& sheet, const Grid& grid, double perUnit) {
  constexpr double kLongestSide = 1e5;
  const DrawingArea area = AreaOf(sheet.paper, sheet.options);
  const double width = grid.Width(perUnit) + sheet.paper.width - area.width;
  const double height = grid.Height(perUnit) + sheet.paper.height - area.height;
  if (!(std::max(width, height) < kLongestSide))
    throw Failure("at " + ScaleText(sheet.scale) + " the drawing is more than 100 m long");
  return {"", std::max(width, sheet.paper.width), std::max(height, sheet.paper.height), false};
}

// The paper for a given scale: the one asked for, or the smallest standard one that holds the views, or a larger one.
void ChoosePaper(Sheet& sheet, const Grid& grid) {
  constexpr double kSlack = 1 + 1e-9;
  const SheetOptions& options = sheet.options;
  sheet.scale = *options.scale;
  const double perUnit = sheet.scale * options.millimetres;
  for (const Paper& paper : options.paper ? std::vector<Paper>{*options.paper} : StandardPapers()) {
    sheet.paper = BetterWay(paper, sheet, grid);
    if (LargestOn(sheet.paper, sheet, grid) * kSlack >= perUnit) return;
  }
  if (options.paper) throw Failure("at " + ScaleText(sheet.scale) + " the views do not fit on " + options.paper->name);
  sheet.paper = PaperAround(sheet, grid, perUnit);
}

void PlaceViews(Sheet& sheet, const Grid& grid) {
  const DrawingArea area = AreaOf(sheet.paper, sheet.options);
  const double left = area.left + (area.width - grid.Width(sheet.perUnit)) / 2 + grid.marks;
  const double bottom = area.bottom + (area.height - grid.Height(sheet.perUnit)) / 2 + grid.marks;
  for (std::size_t i = 0; i < sheet.views.size(); ++i) {
    PlacedView& view = sheet.views[i];
    view.origin.Set(MiddleOf(grid.columns, grid.cells[i].column, left, sheet.perUnit, grid.Gap()),
                    MiddleOf(grid.rows, grid.cells[i].row, bottom, sheet.perUnit, grid.Gap()));
    const Extent& e = view.lines.extent;
    if (!grid.cells[i].aligned) view.origin -= ZBR_PT((e.xmin + e.xmax) / 2, (e.ymin + e.ymax) / 2) * sheet.perUnit;
  }
}

// The scale or the paper, and the places of views.
void Arrange(Sheet& sheet, const Grid& grid) {
  if (sheet.options.scale) {
    ChoosePaper(sheet, grid);
  } else {
    ChooseScale(sheet, grid);
  }
  sheet.perUnit = sheet.scale * sheet.options.millimetres;
  PlaceViews(sheet, grid);
}

// Marks of planes that are close to each other on paper need more room, whereby the scale may shrink and planes come closer still.
// What there is no room for without halving the scale stays where it is: the marks are drawn, at worst over other views.
void MakeRoomForMarks(Sheet& sheet, Grid& grid) {
  const double least = sheet.options.scale ? sheet.perUnit : sheet.perUnit / 2;
  const bool isPaperGiven = !sheet.options.scale || sheet.options.paper;
  for (Grid wider = grid; wider.WidenFor(FindMarkedPlanes(sheet)); grid = wider) {
    if (isPaperGiven && LargestOn(BetterWay(sheet.paper, sheet, wider), sheet, wider) < least) return;
    Arrange(sheet, wider);
  }
}

// The paper is cut to the drawing when nobody asked for a size.
void CutPaper(Sheet& sheet, double marks) {
  PlacedView& view = sheet.views.front();
  const Extent& e = view.lines.extent;
  const double margin = kMargin + marks;
  sheet.paper = {"", (e.xmax - e.xmin) * sheet.perUnit + 2 * margin, (e.ymax - e.ymin) * sheet.perUnit + 2 * margin, false};
  view.origin = ZBR_PT(margin, margin) - ZBR_PT(e.xmin, e.ymin) * sheet.perUnit;
}

// How much of the views' places lines of the width 1 would cover, at the view where they are closest.
double Density(const Sheet& sheet) {
  constexpr double kAround = 10;  // a thin part is no crowd
  double densest = 0.0;
  for (const PlacedView& view : sheet.views) {
    const Extent& e = view.lines.extent;
    const double width = (e.xmax - e.xmin) * sheet.perUnit + kAround, height = (e.ymax - e.ymin) * sheet.perUnit + kAround;
    densest = std::max(densest, view.lines.VisibleLength() * sheet.perUnit / (width * height));
  }
  return densest;
}

// The standard width for the paper, or a thinner one where lines would run into each other.
void ChooseWidths(Sheet& sheet) {
  struct Pair {
    double wide, thin;
  };
  constexpr std::array<Pair, 6> kWidths = {{{0.7, 0.35}, {0.5, 0.25}, {0.35, 0.18}, {0.25, 0.13}, {0.18, 0.09}, {0.13, 0.09}}};
  constexpr double kLargeSide = 600;
  constexpr double kMayCover = 0.12;
  const double density = Density(sheet);
  std::size_t i = std::max(sheet.paper.width, sheet.paper.height) > kLargeSide ? 0 : 1;
  while (i + 1 < kWidths.size() && kWidths[i].wide * density > kMayCover) ++i;
  sheet.wide = kWidths[i].wide;
  sheet.cut = i > 0 ? kWidths[i - 1].wide : 1.0;
  sheet.thin = kWidths[i].thin;
}

}  // namespace

double Sheet::WidthOf(EdgeClass edgeClass) const {
  if (edgeClass == EdgeClass::kCut) return cut;
  return edgeClass == EdgeClass::kTangent || edgeClass == EdgeClass::kHatching || IsChainLine(edgeClass) ? thin : wide;
}

bool IsChainLine(EdgeClass edgeClass) {
  return edgeClass == EdgeClass::kCuttingPlane || edgeClass == EdgeClass::kCentre;
}

bool IsSideView(const std::string& name) {
  return SideCell(name, Projection::kThird).has_value();
}

Sheet LayOut(std::vector<ViewLines> views, const SheetOptions& options, unsigned threads) {
  Sheet sheet;
  sheet.options = options;
  NameSections(views);
  Grid grid(views, options.projection);
  for (ViewLines& view : views) {
    if (options.hidden == HiddenStyle::kNone) std::erase_if(view.lines, [](const Line& line) { return line.hidden; });
    sheet.views.push_back({std::move(view), {}});
  }
  Arrange(sheet, grid);
  MakeRoomForMarks(sheet, grid);
  if (options.projection == Projection::kNone && !options.paper) CutPaper(sheet, grid.marks);
  ChooseWidths(sheet);
  for (PlacedView& view : sheet.views) DropSpecks(view.lines, sheet.wide / sheet.perUnit, threads);
  AddHatching(sheet);
  std::vector<MarkedPlane> planes = FindMarkedPlanes(sheet);
  KeepMarksWithin(sheet, BoundsOf(sheet), planes);
  AddCentreLines(sheet, planes);
  AddSectionMarks(sheet, planes);
  if (options.projection != Projection::kNone) AddFrame(sheet);
  AddViewNames(sheet);
  return sheet;
}

}  // namespace zbr::drawing
