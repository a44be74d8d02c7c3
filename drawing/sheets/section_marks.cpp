#include "drawing/sheets/section_marks.h"

#include <algorithm>
#include <set>
#include <string>
#include <utility>

#include "drawing/sheets/lettering.h"

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kHead = 3, kHalfHead = 0.6;  // of arrows

// The letter stands behind the arrow.
void AddEnd(Sheet& sheet, const MarkedPlane& plane, const ZBR_PT& end, const ZBR_PT& inwards, const std::string& letter) {
  const ZBR_PT tail = end + plane.toViewer * kArrow, neck = end + plane.toViewer * kHead, aside = inwards * kHalfHead;
  sheet.paths.push_back({{end, end + inwards * kThickEnd}, false, true});
  sheet.paths.push_back({{tail, neck}, false, false});
  sheet.paths.push_back({{end, neck + aside, neck - aside, end, neck}, false, true});
  sheet.texts.push_back({LetterAt(plane, end) - ZBR_PT(TextWidth(letter, kMarkLetter), kMarkLetter) * 0.5, kMarkLetter, letter});
}

void AddPlane(Sheet& sheet, const MarkedPlane& plane) {
  PlacedView& parent = sheet.views[plane.parent];
  const SectionOfView& section = *sheet.views[plane.section].lines.section;
  Line line;
  line.edgeClass = EdgeClass::kCuttingPlane;
  const ZBR_PT from = plane.From(sheet.perUnit), to = plane.To(sheet.perUnit);
  line.chain.points = {from, to};
  AddVisible(parent.lines, {std::move(line)});
  AddEnd(sheet, plane, sheet.OnPaper(parent, from), plane.along, section.letter);
  AddEnd(sheet, plane, sheet.OnPaper(parent, to), plane.along * -1.0, section.letter);
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

void AddSectionMarks(Sheet& sheet, const std::vector<MarkedPlane>& planes) {
  for (std::size_t v = 0; v < sheet.views.size(); ++v) {
    if (!sheet.views[v].lines.section) continue;
    const auto plane = std::find_if(planes.begin(), planes.end(), [v](const MarkedPlane& p) { return p.section == v; });
    sheet.views[v].lines.section->isMarked = plane != planes.end();
    if (plane != planes.end()) AddPlane(sheet, *plane);
  }
}

}  // namespace zbr::drawing
