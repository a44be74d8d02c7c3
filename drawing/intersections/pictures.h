// Pictures of a mesh in which points on the grid have whole coordinates, so that nothing is rounded but products: along the axes
// and half-way between them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "drawing/intersections/border_winding.h"
#include "drawing/intersections/exact_sign.h"

namespace zbr::drawing {

// What is seen of points from far along a direction: the products with two vectors, of which the direction is the cross product.
struct Picture {
  GridPoint right, up;

  PicturePoint Of(const GridPoint& p) const { return {Dot(right, p), Dot(up, p)}; }
  static double Dot(const GridPoint& a, const GridPoint& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
};

// Along (1, 0, 0), (0, 1, 0), (0, 0, 1), (0, 1, 1), (0, 1, -1), (1, 0, 1), (-1, 0, 1), (1, 1, 0) and (1, -1, 0). Each stands for
// its opposite, too.
inline constexpr std::array<Picture, 9> kPictures = {{{{0, 1, 0}, {0, 0, 1}},
                                                      {{0, 0, 1}, {1, 0, 0}},
                                                      {{1, 0, 0}, {0, 1, 0}},
                                                      {{0, 1, -1}, {-1, 0, 0}},
                                                      {{0, 1, 1}, {1, 0, 0}},
                                                      {{-1, 0, 1}, {0, -1, 0}},
                                                      {{1, 0, 1}, {0, 1, 0}},
                                                      {{1, -1, 0}, {0, 0, -1}},
                                                      {{1, 1, 0}, {0, 0, 1}}}};

// Sets of turns, two bits for each direction and its opposite.
using Turns = std::uint32_t;
inline constexpr Turns kAllTurns = (1U << 2 * kPictures.size()) - 1;

// The pictures in which the plane is clearly seen from its front.
inline Turns TurnsOf(const PlaneThrough& plane) {
  const auto [n, e] = std::pair(plane.Normal(), plane.NormalError());
  const std::array<double, kPictures.size()> along = {n.x,       n.y,       n.z,       n.y + n.z, n.y - n.z,
                                                      n.x + n.z, n.z - n.x, n.x + n.y, n.x - n.y};
  const std::array<double, kPictures.size()> error = {e.x,       e.y,       e.z,       e.y + e.z, e.y + e.z,
                                                      e.x + e.z, e.x + e.z, e.x + e.y, e.x + e.y};
  Turns turns = 0;
  for (std::size_t k = 0; k < kPictures.size(); ++k) {
    turns |= static_cast<Turns>(along[k] > error[k]) << (2 * k);
    turns |= static_cast<Turns>(along[k] < -error[k]) << (2 * k + 1);
  }
  return turns;
}

// A point as it is seen in one of the turns.
inline PicturePoint See(unsigned turn, const GridPoint& p) {
  const PicturePoint seen = kPictures[turn / 2].Of(p);
  return turn % 2 == 0 ? seen : PicturePoint{seen.y, seen.x};  // from behind
}

}  // namespace zbr::drawing
