// zbr inside: where points lie relative to the region of a drawing.

#include <unistd.h>

#include <cmath>

#include "commands/load.h"
#include "io/failure.h"
#include "io/files.h"
#include "io/numbers.h"

namespace tool {
namespace {

double Coordinate(const std::string& text) {
  const auto value = ParseNumber(text);
  if (!value) throw Failure(Quoted(text) + " is not a finite number");
  return *value;
}

std::vector<ZBR_PT> PointsFromArguments(const std::vector<std::string>& coordinates) {
  if (coordinates.size() % 2 != 0) throw Failure("a point needs two numbers, but there are " + std::to_string(coordinates.size()));
  std::vector<ZBR_PT> points;
  for (std::size_t i = 0; i < coordinates.size(); i += 2)
    points.emplace_back(Coordinate(coordinates[i]), Coordinate(coordinates[i + 1]));
  return points;
}

std::vector<ZBR_PT> PointsFromStandardInput(const std::string& file) {
  if (file == "-") throw Failure("-: standard input cannot hold both the drawing and the points");
  std::vector<ZBR_PT> points;
  for (const Path& path : ReadLoopText(ReadFile("-"), "-").paths)
    points.insert(points.end(), path.points.begin(), path.points.end());
  return points;
}

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
  const bool fromArguments = !options.coordinates.empty();
  const std::vector<ZBR_PT> points =
      fromArguments ? PointsFromArguments(options.coordinates) : PointsFromStandardInput(options.file);
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Region region = LoadRegion(loaded.contours.front(), loaded.frame, progress);
  progress.Stage("locating points");
  const ZBR_LOOP_LOCATOR locator(region.loops);
  std::string text;
  for (const ZBR_PT& point : points) {
    const ZBR_PT p = loaded.frame.In(point);
    const bool far = !std::isfinite(p.x()) || !std::isfinite(p.y());
    AppendNumber(text, point.x());
    text += ' ';
    AppendNumber(text, point.y());
    text += std::string(" ") + Word(far ? ZBR_PI_OUT : locator.IsInside(p)) + "\n";
  }
  progress.Stage("");
  OutputFiles output;
  output.Add("-", std::move(text));
  output.Commit();
  return kExitFine;
}

}  // namespace tool
