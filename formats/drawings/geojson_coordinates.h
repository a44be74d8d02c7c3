// Collects the nested arrays of a GeoJSON "coordinates" member.
#pragma once

#include <zbr/planar.h>

#include <cstddef>
#include <vector>

namespace zbr::formats {

// Positions are the innermost arrays, rings hold positions, polygons hold rings. How deep the arrays go is known only when all are
// closed, so the heights are counted from the inside: a position has height 1, a ring 2, a polygon 3, a list of polygons 4.
class GeoJsonCoordinates {
 public:
  explicit GeoJsonCoordinates(bool keepHeights = false) : keepHeights_(keepHeights) {}

  struct RingRange {
    std::size_t end = 0;  // behind its last point
    std::size_t line = 0;
  };

  // Each returns what is wrong, or null.
  const char* OpenArray(std::size_t line);
  const char* AddNumber(double value);
  const char* CloseArray();

  bool IsOpen() const { return !open_.empty(); }
  int height() const { return height_; }  // of the outermost array; 0 when it holds no position at all
  const std::vector<ZBR_PT>& points() const { return points_; }
  const std::vector<double>& heights() const { return heights_; }  // of the points; empty when none has a third number
  const std::vector<RingRange>& rings() const { return rings_; }
  const std::vector<std::size_t>& polygonEnds() const { return polygonEnds_; }  // behind the last ring of each polygon

 private:
  struct Level {
    std::size_t line = 0;
    int numbers = 0;
    int childHeight = 0;
    double x = 0.0, y = 0.0, z = 0.0;
  };
  void AddPoint(const Level& position);

  bool keepHeights_;
  std::vector<Level> open_;
  int height_ = 0;
  std::vector<ZBR_PT> points_;
  std::vector<double> heights_;
  std::vector<RingRange> rings_;
  std::vector<std::size_t> polygonEnds_;
};

}  // namespace zbr::formats
