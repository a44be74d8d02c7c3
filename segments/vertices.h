// The vertices that the ends of segments share.
#pragma once

#include <cstddef>

#include <zbr/planar.h>

#include "core/small_array.h"

namespace zbr {

// Points merged within the thread's tolerance (of the time of construction). A point belongs to a vertex within eps of it; of
// several such to the one with the smallest x, and of those to the oldest. The vertices are filed in a grid of cells four times as
// wide as the tolerance, so that a look-up reads one to four cells, however the points are arranged.
class VertexGrid {
 public:
  // For so many points at most.
  explicit VertexGrid(std::size_t most);

  // The number of the vertex of p, which is made when there is none.
  int At(const ZBR_PT& p);
  int size() const { return size_; }

 private:
  static constexpr std::size_t kFew = 32;  // points that take no memory

  struct Vertex {
    ZBR_PT pt;
    int next = -1;  // in the same bucket
  };

  std::size_t Bucket(double cellX, double cellY) const;
  // The better of `best` and the vertices of one bucket.
  int BestInBucket(const ZBR_PT& p, std::size_t bucket, int best) const;

  double eps_;
  double eps2_;
  int size_ = 0;
  SmallArray<int, 2 * kFew> first_;
  SmallArray<Vertex, kFew> vertices_;
};

}  // namespace zbr
