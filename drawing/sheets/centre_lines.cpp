#include "drawing/sheets/centre_lines.h"

#include <algorithm>
#include <initializer_list>
#include <utility>
#include <vector>

namespace zbr::drawing {
namespace {

// Millimetres beyond the circle or the body; of small circles as much as the circle has itself.
constexpr double kBeyond = 3.0;

void Add(std::vector<Line>& lines, const ZBR_PT& from, const ZBR_PT& to) {
  Line& line = lines.emplace_back();
  line.edgeClass = EdgeClass::kCentre;
  line.chain.points = {from, to};
}

}  // namespace

void AddCentreLines(Sheet& sheet) {
  const double beyond = kBeyond / sheet.perUnit;
  for (PlacedView& view : sheet.views) {
    std::vector<Line> lines;
    for (const CentreMark& mark : view.lines.centres.marks) {
      const double arm = mark.radius + std::min(beyond, mark.radius);
      for (const ZBR_PT& along : {ZBR_PT(arm, 0), ZBR_PT(0, arm)}) Add(lines, mark.centre - along, mark.centre + along);
    }
    for (const CentreAxis& axis : view.lines.centres.axes) {
      const double length = axis.from.Distance(axis.to);
      if (!(length > 0)) continue;
      const ZBR_PT more = (axis.to - axis.from) * (std::min(beyond, axis.radius) / length);
      Add(lines, axis.from - more, axis.to + more);
    }
    AddVisible(view.lines, std::move(lines));
  }
}

}  // namespace zbr::drawing
