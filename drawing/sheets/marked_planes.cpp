// The ends of a plane's line have an arrow each and behind it a letter, which would run into those of a plane close by. So ends
// step outwards until they are clear. A letter stands before its plane, where the line of another one may pass: the foremost plane
// stays innermost, and no line has to pass a letter. Only planes that are looked at from opposite sides can be in each other's way
// however far out they are.
#include "drawing/sheets/marked_planes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kLetterGap = 1.5;           // behind the arrow
constexpr double kStep = kMarkLetter + 1.5;  // from an end to the next one outwards
constexpr double kMarkLength = 3;            // steps past arrow and letter of a plane that crosses
constexpr double kClear = 1.0;               // between marks
constexpr double kFarthestBeside = 3.0;      // a plane that misses the model is drawn beside the view, or the nearer planes there
constexpr double kSamePlane = 1e-6;
constexpr double kSameSide = 1e-6;  // between directions

double Reach(const Extent& e, const ZBR_PT& direction, bool high) {
  double reach = high ? -HUGE_VAL : HUGE_VAL;
  for (const double x : {e.xmin, e.xmax}) {
    for (const double y : {e.ymin, e.ymax}) {
      const double at = direction.InnerProduct(ZBR_PT(x, y));
      reach = high ? std::max(reach, at) : std::min(reach, at);
    }
  }
  return reach;
}

// The ends of what the line, which meets the box, has in it; of one along a side the side.
void SetWhereItCrosses(MarkedPlane& line, const Extent& e) {
  line.low = -HUGE_VAL;
  line.high = HUGE_VAL;
  const auto cut = [&](double at, double step, double low, double high) {
    constexpr double kAlongSide = 1e-6;
    if (std::abs(step) < kAlongSide) return;
    const double a = (low - at) / step, b = (high - at) / step;
    line.low = std::max(line.low, std::min(a, b));
    line.high = std::min(line.high, std::max(a, b));
  };
  cut(line.foot.x(), line.along.x(), e.xmin, e.xmax);
  cut(line.foot.y(), line.along.y(), e.ymin, e.ymax);
  if (line.low > line.high) std::swap(line.low, line.high);  // at a corner, by rounding
}

MarkedPlane LineOf(const Sheet& sheet, std::size_t parent, std::size_t section) {
  const ViewLines& view = sheet.views[parent].lines;
  const SectionPlane& plane = sheet.views[section].lines.section->plane;
  MarkedPlane line;
  line.section = section;
  line.parent = parent;
  line.toViewer = view.view.In(plane.normal).xy();
  line.toViewer = line.toViewer * (1.0 / line.toViewer.Length());
  line.along.Set(-line.toViewer.y(), line.toViewer.x());
  const double height = plane.offset - plane.normal.InnerProduct(view.view.Out(view.middle));
  const double within = std::clamp(height, Reach(view.extent, line.toViewer, false), Reach(view.extent, line.toViewer, true));
  line.foot = line.toViewer * within;
  SetWhereItCrosses(line, view.extent);
  line.past = (height - within) * sheet.perUnit;
  return line;
}

// The first view of a side of the model that sees the plane edge-on.
std::optional<std::size_t> ParentOf(const Sheet& sheet, const SectionPlane& plane) {
  constexpr double kEdgeOn = 1e-6;
  for (std::size_t i = 0; i < sheet.views.size(); ++i) {
    const ViewLines& view = sheet.views[i].lines;
    if (!view.section && IsSideView(view.name) && std::abs(view.view.toViewer.InnerProduct(plane.normal)) < kEdgeOn) return i;
  }
  return std::nullopt;
}

// Planes that miss the model are drawn nearer than they are, where they are far away: the section shows the same from there. Those
// on one side stay in their order, and apart.
void PutBeside(const Sheet& sheet, std::vector<MarkedPlane>& planes) {
  std::vector<MarkedPlane*> outwards;
  for (MarkedPlane& plane : planes) {
    if (plane.past != 0) outwards.push_back(&plane);
  }
  const auto distance = [](const MarkedPlane* p) { return std::abs(p->past); };
  std::stable_sort(outwards.begin(), outwards.end(), [&](auto* a, auto* b) { return distance(a) < distance(b); });
  const auto away = [](const MarkedPlane* p) { return p->toViewer * (p->past > 0 ? 1.0 : -1.0); };
  for (auto plane = outwards.begin(); plane != outwards.end(); ++plane) {
    const auto isOnSameSide = [&](const MarkedPlane* o) {
      return o->parent == (*plane)->parent && away(o).Distance(away(*plane)) < kSameSide;
    };
    const auto nearer = std::find_if(std::make_reverse_iterator(plane), outwards.rend(), isOnSameSide);
    double farthest = kFarthestBeside;
    if (nearer != outwards.rend())
      farthest = (*nearer)->beside + (distance(*plane) - distance(*nearer) > kSamePlane ? kFarthestBeside : 0.0);
    (*plane)->beside = std::min(distance(*plane), std::max(farthest, kFarthestBeside));
    (*plane)->foot += away(*plane) * ((*plane)->beside / sheet.perUnit);
  }
}

bool AreApart(const PaperBox& a, const PaperBox& b) {
  return a.Wider(kClear).IsClearOf(b);
}

// What the marks of a plane take on paper, at each of its ends.
struct Marks {
  struct End {
    PaperBox letter, arrow, line;

    bool IsClearOf(const End& o) const {
      return AreApart(letter, o.letter) && AreApart(letter, o.arrow) && AreApart(letter, o.line) && AreApart(arrow, o.letter) &&
             AreApart(line, o.letter) && AreApart(arrow, o.arrow);
    }
    bool IsWithin(const PaperBox& bounds) const {
      return letter.IsWithin(bounds) && arrow.IsWithin(bounds) && line.IsWithin(bounds);
    }
  };
  std::array<End, 2> ends;

  Marks(const Sheet& sheet, const MarkedPlane& plane) {
    const PlacedView& parent = sheet.views[plane.parent];
    const double letter = TextWidth(sheet.views[plane.section].lines.section->letter, kMarkLetter);
    ends = {EndAt(plane, sheet.OnPaper(parent, plane.From(sheet.perUnit)), plane.along, letter),
            EndAt(plane, sheet.OnPaper(parent, plane.To(sheet.perUnit)), plane.along * -1.0, letter)};
  }

  bool AreClearOf(const Marks& o) const {
    return std::all_of(ends.begin(), ends.end(),
                       [&](const End& end) { return end.IsClearOf(o.ends[0]) && end.IsClearOf(o.ends[1]); });
  }

 private:
  static End EndAt(const MarkedPlane& plane, const ZBR_PT& end, const ZBR_PT& inwards, double width) {
    const ZBR_PT letter = LetterAt(plane, end), half(width / 2, kMarkLetter / 2);
    return {{letter - half, letter + half},
            PaperBox::Around(end, end + plane.toViewer * kArrow),
            PaperBox::Around(end, end + inwards * (kThickEnd + plane.outwards))};
  }
};

// The foremost first, as said above.
void MoveApart(const Sheet& sheet, std::vector<MarkedPlane>& planes) {
  std::vector<MarkedPlane*> inOrder;
  for (MarkedPlane& plane : planes) inOrder.push_back(&plane);
  const auto height = [](const MarkedPlane* p) { return p->toViewer.InnerProduct(p->foot); };
  std::stable_sort(inOrder.begin(), inOrder.end(),
                   [&](const MarkedPlane* a, const MarkedPlane* b) { return height(a) > height(b); });
  std::vector<Marks> placed;
  for (MarkedPlane* const plane : inOrder) {
    const auto isClear = [&] {
      const Marks marks(sheet, *plane);
      return std::all_of(placed.begin(), placed.end(), [&](const Marks& o) { return marks.AreClearOf(o); });
    };
    const auto usual = static_cast<double>(planes.size() - 1) * kStep;
    while (!isClear() && plane->outwards < kMarkLength * usual) plane->outwards += kStep;
    if (!isClear()) plane->outwards = usual;
    placed.emplace_back(sheet, *plane);
  }
}

}  // namespace

ZBR_PT LetterAt(const MarkedPlane& plane, const ZBR_PT& end) {
  return end + plane.toViewer * (kArrow + kLetterGap + kMarkLetter / 2);
}

void KeepMarksWithin(const Sheet& sheet, const PaperBox& bounds, std::vector<MarkedPlane>& planes) {
  for (MarkedPlane& plane : planes) {
    const auto isWithin = [&] {
      const Marks marks(sheet, plane);
      return marks.ends[0].IsWithin(bounds) && marks.ends[1].IsWithin(bounds);
    };
    while (plane.outwards > 0 && !isWithin()) plane.outwards = std::max(plane.outwards - kStep, 0.0);
  }
}

std::vector<MarkedPlane> FindMarkedPlanes(const Sheet& sheet) {
  std::vector<MarkedPlane> planes;
  for (std::size_t i = 0; i < sheet.views.size(); ++i) {
    const auto& section = sheet.views[i].lines.section;
    const auto parent = section ? ParentOf(sheet, section->plane) : std::nullopt;
    if (parent) planes.push_back(LineOf(sheet, *parent, i));
  }
  PutBeside(sheet, planes);
  MoveApart(sheet, planes);
  return planes;
}

}  // namespace zbr::drawing
