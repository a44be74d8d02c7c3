// How far the surfaces that facets stand for rise over the silhouettes of these: all that hidden lines of several shells need of a
// model's records, which may be given back then.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr-drawing/scene.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zbr::drawing {

class SilhouetteHeights {
 public:
  SilhouetteHeights() = default;
  SilhouetteHeights(const Model& model, const Scene& scene, unsigned threads);

  // In the unit of the model, along an edge of a triangle of the model that is a silhouette in the scene.
  double Over(std::size_t triangle, std::size_t edge) const;

 private:
  struct Side {
    std::uint32_t number;  // three times that of the triangle through all shells, and the edge
    double height;
    bool operator<(const Side& o) const { return number < o.number; }
  };

  std::vector<Side> sides_;  // sorted; without those over which nothing rises
};

}  // namespace zbr::drawing
