#include "drawing/sheets/section_marks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <string>
#include <utility>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kBeyond = 7;  // the plane's line reaches beyond the view
constexpr double kThick = 6;   // its ends
constexpr double kArrow = 8, kHead = 3, kHalfHead = 0.6;
constexpr double kLetter = 5;
constexpr double kNameGap = 4;        // of a section's name above it
constexpr double kLetterWidth = 0.7;  // of its height, on the average

// Where a plane that a view sees edge-on runs in it.
struct Trace {
  ZBR_PT foot, along, toViewer;  // of length 1 the last two; the second the way the section's viewer is
  double from, to;               // along it, where it crosses the view
};

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

Trace TraceOf(const ViewLines& view, const SectionPlane& plane) {
  Trace trace;
  trace.toViewer = view.view.In(plane.normal).xy();
  trace.toViewer = trace.toViewer * (1.0 / trace.toViewer.Length());
  trace.along.Set(-trace.toViewer.y(), trace.toViewer.x());
  trace.foot = trace.toViewer * (plane.offset - plane.normal.InnerProduct(view.view.Out(view.middle)));
  trace.from = Reach(view.extent, trace.along, false);
  trace.to = Reach(view.extent, trace.along, true);
  return trace;
}

// The letter stands behind the arrow.
void AddEnd(Sheet& sheet, const ZBR_PT& end, const ZBR_PT& inwards, const ZBR_PT& toViewer, const std::string& letter) {
  const ZBR_PT tail = end + toViewer * kArrow, neck = end + toViewer * kHead, aside = inwards * kHalfHead;
  sheet.paths.push_back({{end, end + inwards * kThick}, false, true});
  sheet.paths.push_back({{tail, neck}, false, false});
  sheet.paths.push_back({{end, neck + aside, neck - aside, end, neck}, false, true});
  const double half = kLetter / 2, halfWidth = kLetter * kLetterWidth / 2;
  const ZBR_PT middle = tail + toViewer * (half + 1.5);
  sheet.texts.push_back({middle - ZBR_PT(halfWidth, half), kLetter, letter});
}

void AddPlane(Sheet& sheet, PlacedView& parent, const SectionOfView& section) {
  const Trace trace = TraceOf(parent.lines, section.plane);
  const double beyond = kBeyond / sheet.perUnit;
  const ZBR_PT from = trace.foot + trace.along * (trace.from - beyond), to = trace.foot + trace.along * (trace.to + beyond);
  Line line;
  line.edgeClass = EdgeClass::kCuttingPlane;
  line.chain.points = {from, to};
  AddVisible(parent.lines, {std::move(line)});
  AddEnd(sheet, sheet.OnPaper(parent, from), trace.along, trace.toViewer, section.letter);
  AddEnd(sheet, sheet.OnPaper(parent, to), trace.along * -1.0, trace.toViewer, section.letter);
}

// The first view of a side of the model that sees the plane edge-on.
PlacedView* ParentOf(Sheet& sheet, const SectionPlane& plane) {
  constexpr double kEdgeOn = 1e-6;
  const auto sees = [&](const PlacedView& view) {
    return !view.lines.section && IsSideView(view.lines.name) &&
           std::abs(view.lines.view.toViewer.InnerProduct(plane.normal)) < kEdgeOn;
  };
  const auto found = std::find_if(sheet.views.begin(), sheet.views.end(), sees);
  return found == sheet.views.end() ? nullptr : &*found;
}

// Of what is drawn: a section may be far smaller than the model.
Extent DrawnExtent(const ViewLines& view) {
  Extent drawn;
  for (const Line& line : view.lines) {
    for (const ZBR_PT& p : line.chain.points) drawn.Add(p);
  }
  return drawn.empty() ? view.extent : drawn;
}

void AddName(Sheet& sheet, const PlacedView& view) {
  const std::string& letter = view.lines.section->letter;
  const Extent e = DrawnExtent(view.lines);
  const ZBR_PT top = sheet.OnPaper(view, ZBR_PT((e.xmin + e.xmax) / 2, e.ymax));
  constexpr double kLetters = 3;
  sheet.texts.push_back(
      {top + ZBR_PT(-kLetters * kLetterWidth * kLetter / 2, kNameGap), kLetter, letter + "\xe2\x80\x93" + letter});  // an en dash
}

}  // namespace

void NameSections(std::vector<ViewLines>& views) {
  std::set<std::string> taken;
  std::vector<ViewLines*> others;
  for (ViewLines& view : views) {
    if (view.section && !taken.insert(view.section->letter).second) others.push_back(&view);
  }
  std::size_t next = 0;
  for (ViewLines* const view : others) {
    std::string& letter = view->section->letter;
    const bool isNamedByIt = view->name == letter + "-" + letter;
    std::string name = SectionName(next++);
    while (taken.contains(name.substr(0, 1))) name = SectionName(next++);
    letter = name.substr(0, 1);
    if (isNamedByIt) view->name = name;
  }
}

void AddSectionMarks(Sheet& sheet) {
  for (std::size_t v = 0; v < sheet.views.size(); ++v) {
    if (!sheet.views[v].lines.section) continue;
    SectionOfView& section = *sheet.views[v].lines.section;
    PlacedView* const parent = ParentOf(sheet, section.plane);
    section.isMarked = parent != nullptr;
    if (parent != nullptr) AddPlane(sheet, *parent, section);
    AddName(sheet, sheet.views[v]);
  }
}

}  // namespace zbr::drawing
