// zbr inside: where points lie relative to the region of a drawing.

#include <zbr-drawing/frame.h>
#include <zbr-drawing/numbers.h>

#include <cmath>

#include "app/commands/load.h"
#include "app/commands/points.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

const char* Word(ZBR_POLY_INSIDE place) {
  switch (place) {
    case ZBR_PI_ON_VERTEX:
      return "vertex";
    case ZBR_PI_ON_EDGE:
      return "edge";
    case ZBR_PI_IN:
      return "in";
    case ZBR_PI_OUT:
      return "out";
    case ZBR_PI_UNKNOWN:
      break;
  }
  return "unknown";
}

}  // namespace

int RunInside(const InsideOptions& options) {
  Progress progress;
  const std::vector<ZBR_PT> points = ReadPoints(options.coordinates, options.file);
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Region region = LoadRegion(loaded.contours.front(), options.input, progress);
  progress.Stage("locating points");
  const Frame frame = Frame::For(ExtentOf(loaded.contours.front().rings));
  const ZBR_LOOP_LOCATOR locator(frame.In(ValidShape(region)));
  std::string text;
  for (const ZBR_PT& point : points) {
    const ZBR_PT p = frame.In(point);
    const bool far = !std::isfinite(p.x()) || !std::isfinite(p.y());
    AppendNumber(text, point.x());
    text += ' ';
    AppendNumber(text, point.y());
    text += std::string(" ") + Word(far ? ZBR_PI_OUT : locator.IsInside(p)) + "\n";
  }
  progress.Stage("");
  WriteToStandardOutput(std::move(text));
  return kExitFine;
}

}  // namespace tool
