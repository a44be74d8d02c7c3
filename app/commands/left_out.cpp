#include "app/commands/left_out.h"

#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <limits>
#include <set>

#include "app/commands/load.h"

namespace tool {
namespace {

constexpr double kWidestGap = 0.01;          // of the size of the largest contour; wider ones are not meant to be closed
constexpr std::size_t kMostContours = 1000;  // of which gaps are looked for, each against all

void HideLayers(Drawing& drawing, Progress& progress) {
  std::set<std::string> layers;
  const std::size_t count = std::erase_if(drawing.paths, [&](const Path& path) {
    if (path.hidden) layers.emplace(path.layer);
    return path.hidden;
  });
  if (count == 0) return;
  layers.erase("");
  const char* const what = count == 1 ? " contour that is not shown" : " contours that are not shown";
  progress.Note(drawing.file + ": note: left out " + std::to_string(count) + what + (layers.empty() ? "" : ", on ") +
                Listed(layers) + "; --all-layers takes what is off or frozen");
}

// The distance from an end of this contour to the nearest end of any that is not the same place; infinite without one.
double NearestEnd(const Contours& contours, const OpenEnds& open) {
  double nearest = std::numeric_limits<double>::infinity();
  const auto consider = [&](const ZBR_PT& p, const ZBR_PT& q) {
    const double distance = p.Distance(q);
    if (distance > 0) nearest = std::min(nearest, distance);
  };
  consider(open.from, open.to);
  for (const OpenEnds& other : contours.open) {
    if (&other == &open) continue;
    for (const ZBR_PT& p : {open.from, open.to}) {
      consider(p, other.from);
      consider(p, other.to);
    }
  }
  return nearest;
}

std::string TextOfGap(const Contours& contours, double gap) {
  double size = ExtentOf(contours.rings).Size();
  for (const OpenEnds& open : contours.open) size = std::max(size, open.size);
  if (!(gap <= kWidestGap * size)) return "";
  constexpr int kDigits = 3;
  return "; the nearest end is " + RoundedText(gap, kDigits) + " away, see --join";
}

}  // namespace

std::string LeftOutText(const std::string& what, const LeftOut& left) {
  return std::to_string(left.count) + " " + what;
}

void LeaveOut(Drawing& drawing, const InputOptions& options, Progress& progress) {
  for (const auto& [what, left] : drawing.leftOut) {
    if (left.bearsContours && options.strict)
      throw Incomplete(drawing.file, left.line, "left out " + LeftOutText(what, left) + ", which --strict does not allow");
    if (left.bearsContours && options.leftOutIsFound) continue;
    progress.Note(drawing.file + ":" + std::to_string(left.line) + ": note: left out " + LeftOutText(what, left));
  }
  if (!options.allLayers && options.layers.empty()) HideLayers(drawing, progress);
  if (const std::size_t count = DropFillings(drawing.paths); count > 0) {
    progress.Note(drawing.file + ": note: left out " + std::to_string(count) + (count == 1 ? " boundary" : " boundaries") +
                  " of HATCH, as other contours are drawn there");
  }
}

std::string GapText(const Contours& contours, const OpenEnds& open) {
  return contours.open.size() > kMostContours ? "" : TextOfGap(contours, NearestEnd(contours, open));
}

std::string NarrowestGapText(const Contours& contours) {
  if (contours.open.size() > kMostContours) return "";
  double gap = std::numeric_limits<double>::infinity();
  for (const OpenEnds& open : contours.open) gap = std::min(gap, NearestEnd(contours, open));
  return TextOfGap(contours, gap);
}

}  // namespace tool
