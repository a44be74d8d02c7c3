// The ends of a plane's line have an arrow each and behind it a letter, which would run into those of a plane close by. So ends
// step outwards until they are clear. A letter stands before its plane, where the line of another one may pass: the foremost plane
// stays innermost, and no line has to pass a letter. Only planes that are looked at from opposite sides can be in each other's way
// however far out they are.
#include "drawing/sheets/marked_planes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kLetterGap = 1.5;           // behind the arrow
constexpr double kStep = kMarkLetter + 1.5;  // from an end to the next one outwards
constexpr double kClear = 1.0;               // between marks

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

MarkedPlane LineOf(const Sheet& sheet, std::size_t parent, std::size_t section) {
  const ViewLines& view = sheet.views[parent].lines;
  const SectionPlane& plane = sheet.views[section].lines.section->plane;
  MarkedPlane line;
  line.section = section;
  line.parent = parent;
  line.toViewer = view.view.In(plane.normal).xy();
  line.toViewer = line.toViewer * (1.0 / line.toViewer.Length());
  line.along.Set(-line.toViewer.y(), line.toViewer.x());
  line.foot = line.toViewer * (plane.offset - plane.normal.InnerProduct(view.view.Out(view.middle)));
  line.low = Reach(view.extent, line.along, false);
  line.high = Reach(view.extent, line.along, true);
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

struct Room {
  ZBR_PT low, high;

  Room(const ZBR_PT& a, const ZBR_PT& b)
      : low(std::min(a.x(), b.x()), std::min(a.y(), b.y())), high(std::max(a.x(), b.x()), std::max(a.y(), b.y())) {}
  bool IsClearOf(const Room& o) const {
    return low.x() > o.high.x() + kClear || o.low.x() > high.x() + kClear || low.y() > o.high.y() + kClear ||
           o.low.y() > high.y() + kClear;
  }
};

// What the marks of a plane take on paper, at each of its ends.
struct Marks {
  struct End {
    Room letter, arrow, line;

    bool IsClearOf(const End& o) const {
      return letter.IsClearOf(o.letter) && letter.IsClearOf(o.arrow) && letter.IsClearOf(o.line) && arrow.IsClearOf(o.letter) &&
             line.IsClearOf(o.letter) && arrow.IsClearOf(o.arrow);
    }
  };
  std::array<End, 2> ends;

  Marks(const Sheet& sheet, const MarkedPlane& plane)
      : ends{EndAt(plane, sheet.OnPaper(sheet.views[plane.parent], plane.From(sheet.perUnit)), plane.along),
             EndAt(plane, sheet.OnPaper(sheet.views[plane.parent], plane.To(sheet.perUnit)), plane.along * -1.0)} {}

  bool AreClearOf(const Marks& o) const {
    return std::all_of(ends.begin(), ends.end(),
                       [&](const End& end) { return end.IsClearOf(o.ends[0]) && end.IsClearOf(o.ends[1]); });
  }

 private:
  static End EndAt(const MarkedPlane& plane, const ZBR_PT& end, const ZBR_PT& inwards) {
    const ZBR_PT letter = LetterAt(plane, end), half(kMarkLetter * kLetterWidth / 2, kMarkLetter / 2);
    return {
        {letter - half, letter + half}, {end, end + plane.toViewer * kArrow}, {end, end + inwards * (kThickEnd + plane.outwards)}};
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
    for (std::size_t k = 1; k < planes.size() && !isClear(); ++k) plane->outwards += kStep;
    placed.emplace_back(sheet, *plane);
  }
}

}  // namespace

ZBR_PT LetterAt(const MarkedPlane& plane, const ZBR_PT& end) {
  return end + plane.toViewer * (kArrow + kLetterGap + kMarkLetter / 2);
}

std::vector<MarkedPlane> FindMarkedPlanes(const Sheet& sheet) {
  std::vector<MarkedPlane> planes;
  for (std::size_t i = 0; i < sheet.views.size(); ++i) {
    const auto& section = sheet.views[i].lines.section;
    const auto parent = section ? ParentOf(sheet, section->plane) : std::nullopt;
    if (parent) planes.push_back(LineOf(sheet, *parent, i));
  }
  MoveApart(sheet, planes);
  return planes;
}

}  // namespace zbr::drawing
