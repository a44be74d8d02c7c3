// Points from arguments or from standard input.
#include "app/commands/points.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/files.h>

#include "app/libraries.h"

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
  for (std::size_t i = 0; i < coordinates.size(); i += 2) {
    const double x = Coordinate(coordinates[i]);  // the first wrong number is the one that is told
    points.emplace_back(x, Coordinate(coordinates[i + 1]));
  }
  return points;
}

std::vector<ZBR_PT> PointsFromStandardInput() {
  std::vector<ZBR_PT> points;
  for (const Path& path : ReadLoopText(ReadText("-"), "-", Content::kLines).paths) {
    if (!path.heights.empty()) FailAt("-", path.line, "a point from here on has three numbers");
    points.insert(points.end(), path.points.begin(), path.points.end());
  }
  return points;
}

}  // namespace

std::vector<ZBR_PT> ReadPoints(const std::vector<std::string>& coordinates, const std::string& file) {
  if (!coordinates.empty()) return PointsFromArguments(coordinates);
  if (file == "-") throw Failure("-: standard input cannot hold both the file and the points");
  return PointsFromStandardInput();
}

}  // namespace tool
