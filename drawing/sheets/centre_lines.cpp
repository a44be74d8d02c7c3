#include "drawing/sheets/centre_lines.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zbr::drawing {
namespace {

// Millimetres beyond the circle or the body; of small circles as much as the circle has itself.
constexpr double kBeyond = 3.0;

using Ends = std::pair<ZBR_PT, ZBR_PT>;

// What of a line lies before and behind the line of a plane, or beside it.
std::vector<Ends> WithoutPlane(const Ends& line, const MarkedPlane& plane, const Sheet& sheet) {
  constexpr double kParallel = 1e-6;
  const double beside = 2 * sheet.thin / sheet.perUnit;  // closer than that there is less than a line's width between
  const ZBR_PT d = line.second - line.first;
  const double from = plane.along.InnerProduct(line.first), to = plane.along.InnerProduct(line.second),
               length = std::abs(to - from);
  const double off = plane.toViewer.InnerProduct(line.first - plane.foot);
  if (std::abs(plane.toViewer.InnerProduct(d)) > kParallel * length || std::abs(off) > beside) return {line};
  const double low = plane.along.InnerProduct(plane.From(sheet.perUnit)), high = plane.along.InnerProduct(plane.To(sheet.perUnit));
  const auto at = [&](double place) { return line.first + d * ((place - from) / (to - from)); };
  const auto [first, last] = from < to ? line : Ends(line.second, line.first);
  std::vector<Ends> rest;
  if (std::min(from, to) < low) rest.emplace_back(first, at(std::min(low, std::max(from, to))));
  if (std::max(from, to) > high) rest.emplace_back(at(std::max(high, std::min(from, to))), last);
  return rest;
}

// Centre lines on their own.
std::vector<Ends> CentreLinesOf(const Centres& centres, double beyond) {
  std::vector<Ends> lines;
  for (const CentreMark& mark : centres.marks) {
    const double arm = mark.radius + std::min(beyond, mark.radius);
    for (const ZBR_PT& along : {ZBR_PT(arm, 0), ZBR_PT(0, arm)}) lines.emplace_back(mark.centre - along, mark.centre + along);
  }
  for (const CentreAxis& axis : centres.axes) {
    const double length = axis.from.Distance(axis.to);
    if (!(length > 0)) continue;
    const ZBR_PT more = (axis.to - axis.from) * (std::min(beyond, axis.radius) / length);
    lines.emplace_back(axis.from - more, axis.to + more);
  }
  return lines;
}

}  // namespace

void AddCentreLines(Sheet& sheet, const std::vector<MarkedPlane>& planes) {
  for (std::size_t v = 0; v < sheet.views.size(); ++v) {
    ViewLines& view = sheet.views[v].lines;
    const Centres& centres = sheet.options.hidden == HiddenStyle::kDashed ? view.centres : view.seenCentres;
    std::vector<Ends> kept = CentreLinesOf(centres, kBeyond / sheet.perUnit);
    for (const MarkedPlane& plane : planes) {
      if (plane.parent != v) continue;
      std::vector<Ends> rest;
      for (const Ends& line : kept) {
        const std::vector<Ends> pieces = WithoutPlane(line, plane, sheet);
        rest.insert(rest.end(), pieces.begin(), pieces.end());
      }
      kept = std::move(rest);
    }
    std::vector<Line> lines;
    for (const Ends& ends : kept) {
      Line& line = lines.emplace_back();
      line.edgeClass = EdgeClass::kCentre;
      line.chain.points = {ends.first, ends.second};
    }
    AddVisible(view, std::move(lines));
  }
}

}  // namespace zbr::drawing
