// The vertices that the ends of segments share.
#pragma once

#include <vector>

#include <zbr/planar.h>

namespace zbr {

// Points merged within the thread's tolerance (of the time of construction). A point belongs to a vertex within eps of it; of
// several such to the one with the smallest x, and of those to the oldest. The vertices are filed in a grid of cells four times as
// wide as the tolerance, so that a look-up reads one to four cells, however the points are arranged.
class VertexGrid {
 public:
  explicit VertexGrid(std::size_t expected);

  // The number of the vertex of p, which is made when there is none.
  int At(const ZBR_PT& p);
  int size() const { return static_cast<int>(vertices_.size()); }

 private:
  struct Vertex {
    ZBR_PT pt;
    int next;  // in the same bucket
  };

  std::size_t Bucket(double cellX, double cellY) const;
  // The better of `best` and the vertices of one bucket.
  int BestInBucket(const ZBR_PT& p, std::size_t bucket, int best) const;

  double eps_;
  double eps2_;
  std::vector<int> first_;
  std::vector<Vertex> vertices_;
};

}  // namespace zbr
