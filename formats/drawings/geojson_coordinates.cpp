// Positions, rings and polygons from nested arrays, built from the inside.
#include "formats/drawings/geojson_coordinates.h"

namespace zbr::formats {
namespace {

constexpr std::size_t kDeepest = 4;
constexpr const char* kUneven = "coordinates are nested unevenly";

}  // namespace

const char* GeoJsonCoordinates::OpenArray(std::size_t line) {
  if (open_.size() == kDeepest) return "coordinates are nested too deeply";
  if (!open_.empty() && open_.back().numbers > 0) return kUneven;
  open_.push_back({line});
  return nullptr;
}

const char* GeoJsonCoordinates::AddNumber(double value) {
  Level& level = open_.back();
  if (level.childHeight > 0) return kUneven;
  if (level.numbers == 0) level.x = value;
  if (level.numbers == 1) level.y = value;
  if (level.numbers == 2) level.z = value;
  ++level.numbers;
  return nullptr;
}

const char* GeoJsonCoordinates::CloseArray() {
  const Level level = open_.back();
  open_.pop_back();
  if (level.numbers == 1) return "a position needs two numbers";
  const bool empty = level.numbers == 0 && level.childHeight == 0;
  const int height = empty ? 0 : level.childHeight + 1;
  if (height == 1) AddPoint(level);
  if (height == 2) rings_.push_back({points_.size(), level.line});
  if (height == 3) polygonEnds_.push_back(rings_.size());
  if (open_.empty()) {
    height_ = height;
    return nullptr;
  }
  int& expected = open_.back().childHeight;
  if (!empty && expected != 0 && expected != height) return kUneven;
  if (!empty) expected = height;
  return nullptr;
}

void GeoJsonCoordinates::AddPoint(const Level& position) {
  if (keepHeights_ && position.numbers > 2 && heights_.empty()) heights_.resize(points_.size());  // those before are at 0
  points_.emplace_back(position.x, position.y);
  if (keepHeights_ && (position.numbers > 2 || !heights_.empty())) heights_.push_back(position.z);
}

}  // namespace zbr::formats
