#include "drawing/sheets/view_names.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kSectionName = 5, kViewName = 3.5;  // heights
constexpr double kAbove = 4;                         // the base line of a section's name over the section
constexpr double kBelow = 6;                         // that of another name under its view
constexpr double kClear = 1.5;
constexpr double kStep = 0.5, kFarthest = 40;  // outwards in search of room

// Of what is drawn: a section may be far smaller than the model.
Extent DrawnExtent(const ViewLines& view, bool centreLines) {
  Extent drawn;
  for (const Line& line : view.lines) {
    if (line.edgeClass == EdgeClass::kCuttingPlane || (line.edgeClass == EdgeClass::kCentre && !centreLines)) continue;
    for (const ZBR_PT& p : line.chain.points) drawn.Add(p);
  }
  return drawn.empty() ? view.extent : drawn;
}

// What is drawn on a sheet; the lines of views as a whole.
class Obstacles {
 public:
  explicit Obstacles(const Sheet& sheet) : bounds_(BoundsOf(sheet)) {
    for (const SheetPath& path : sheet.paths) {
      for (std::size_t i = 1; i < path.points.size(); ++i) lines_.push_back({path.points[i - 1], path.points[i]});
      if (path.closed) lines_.push_back({path.points.back(), path.points.front()});
    }
    for (const PlacedView& view : sheet.views) {
      const Extent e = DrawnExtent(view.lines, false);
      boxes_.push_back({sheet.OnPaper(view, ZBR_PT(e.xmin, e.ymin)), sheet.OnPaper(view, ZBR_PT(e.xmax, e.ymax))});
      for (const Line& line : view.lines.lines) {
        if (!IsChainLine(line.edgeClass)) continue;
        const std::vector<ZBR_PT>& points = line.chain.points;
        lines_.push_back({sheet.OnPaper(view, points.front()), sheet.OnPaper(view, points.back())});
      }
    }
    for (const SheetText& text : sheet.texts) boxes_.push_back(BoxOf(text));
  }

  bool AreClearOf(const PaperBox& box) const {
    const PaperBox wider = box.Wider(kClear);
    return wider.IsWithin(bounds_) &&
           std::all_of(boxes_.begin(), boxes_.end(), [&](const PaperBox& b) { return wider.IsClearOf(b); }) &&
           std::all_of(lines_.begin(), lines_.end(), [&](const Segment& s) { return wider.IsClearOfLine(s.a, s.b); });
  }

  void Add(const SheetText& text) { boxes_.push_back(BoxOf(text)); }

 private:
  struct Segment {
    ZBR_PT a, b;
  };

  PaperBox bounds_;
  std::vector<PaperBox> boxes_;
  std::vector<Segment> lines_;
};

// Adds a text at the first place outwards, in the direction `way`, that is free; or else to the side; or where it would have been.
void AddWhereFree(Sheet& sheet, Obstacles& obstacles, SheetText text, const ZBR_PT& way) {
  const auto firstFree = [&](const ZBR_PT& step) -> std::optional<ZBR_PT> {
    for (double k = 0; k * kStep <= kFarthest; ++k) {
      for (const double side : {1.0, -1.0}) {
        SheetText moved = text;
        moved.at += step * (k * kStep * side);
        if (obstacles.AreClearOf(BoxOf(moved))) return moved.at;
        if (step == way) break;  // not inwards
      }
    }
    return std::nullopt;
  };
  auto at = firstFree(way);
  if (!at) at = firstFree({1, 0});
  if (at) text.at = *at;
  obstacles.Add(text);
  sheet.texts.push_back(std::move(text));
}

// The place of a view beside the front view tells what it shows, and so does what a single pictorial view looks like.
bool NeedsName(const Sheet& sheet, const PlacedView& view) {
  if (sheet.options.projection == Projection::kNone) return false;
  const auto isPictorial = [](const PlacedView& v) { return !IsSideView(v.lines.name) && !v.lines.section; };
  if (isPictorial(view)) return std::count_if(sheet.views.begin(), sheet.views.end(), isPictorial) > 1;
  return std::none_of(sheet.views.begin(), sheet.views.end(), [](const PlacedView& v) { return v.lines.name == "front"; });
}

}  // namespace

PaperBox BoundsOf(const Sheet& sheet) {
  const Paper& paper = sheet.paper;
  if (sheet.options.projection == Projection::kNone) return {ZBR_PT(0, 0), ZBR_PT(paper.width, paper.height)};
  const DrawingArea area = AreaWithinFrame(paper, sheet.options);
  return PaperBox{ZBR_PT(area.left, area.bottom), ZBR_PT(area.left + area.width, area.bottom + area.height)}.Wider(kClearance);
}

void AddViewNames(Sheet& sheet) {
  Obstacles obstacles(sheet);
  for (const PlacedView& view : sheet.views) {
    const bool isSection = view.lines.section.has_value();
    if (!isSection && !NeedsName(sheet, view)) continue;
    SheetText name{{}, isSection ? kSectionName : kViewName, view.lines.name};
    if (isSection) name.text = view.lines.section->letter + "\xe2\x80\x93" + view.lines.section->letter;  // an en dash
    const Extent e = isSection ? DrawnExtent(view.lines, true) : view.lines.extent;
    name.at = sheet.OnPaper(view, ZBR_PT((e.xmin + e.xmax) / 2, isSection ? e.ymax : e.ymin));
    name.at += ZBR_PT(-TextWidth(name.text, name.height) / 2, isSection ? kAbove : -kBelow);
    AddWhereFree(sheet, obstacles, std::move(name), {0, isSection ? 1.0 : -1.0});
  }
}

}  // namespace zbr::drawing
