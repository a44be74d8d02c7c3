// What the coordinates of a mesh are rounded to.
#include <zbr-drawing/mesh.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace zbr::drawing {

double RoundingOf(const std::vector<ZBR_PT3>& points) {
  double largest = 0.0;
  bool usesLastDigit = false;
  for (const ZBR_PT3& p : points) {
    for (const double value : {p.x(), p.y(), p.z()}) {
      if (!(std::abs(value) <= std::numeric_limits<float>::max())) return 0.0;
      const auto single = static_cast<float>(value);
      if (static_cast<double>(single) != value) return 0.0;
      usesLastDigit = usesLastDigit || (std::bit_cast<std::uint32_t>(single) & 1U) != 0;
      largest = std::max(largest, std::abs(value));
    }
  }
  return usesLastDigit ? std::ldexp(1.0, std::ilogb(largest) + 1 - std::numeric_limits<float>::digits) : 0.0;
}

}  // namespace zbr::drawing
