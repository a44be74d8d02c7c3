#include "drawing/model/named_shells.h"

#include <cstddef>
#include <limits>
#include <unordered_map>

namespace zbr::drawing {
namespace {

std::vector<std::uint32_t> NumberShells(const Mesh& mesh, std::span<const std::uint32_t> source) {
  std::vector<std::uint32_t> numbers;
  numbers.reserve(source.size());
  std::unordered_map<std::uint32_t, std::uint32_t> found;  // in the object
  std::uint32_t count = 0;
  std::size_t object = 1;
  for (const std::uint32_t triangle : source) {
    for (; object < mesh.objects.size() && mesh.objects[object].firstTriangle <= triangle; ++object) found.clear();
    const auto [place, isNew] = found.try_emplace(mesh.shells[triangle], count);
    if (isNew) ++count;
    numbers.push_back(place->second);
  }
  return numbers;
}

}  // namespace

std::vector<std::uint32_t> SeparateShells(const Mesh& mesh, std::span<const std::uint32_t> source, std::vector<Corners>& triangles,
                                          std::vector<ZBR_PT3>& points) {
  constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> numbers = NumberShells(mesh, source);
  std::vector<std::uint32_t> owner(points.size(), kNone);
  std::unordered_map<std::uint64_t, std::uint32_t> copies;  // of a point for a shell
  for (std::size_t t = 0; t < triangles.size(); ++t) {
    for (std::uint32_t& corner : triangles[t]) {
      if (owner[corner] == kNone) owner[corner] = numbers[t];
      if (owner[corner] == numbers[t]) continue;
      const std::uint64_t key = static_cast<std::uint64_t>(numbers[t]) << 32U | corner;
      const auto [copy, isNew] = copies.try_emplace(key, static_cast<std::uint32_t>(points.size()));
      if (isNew) {
        const ZBR_PT3 p = points[corner];
        points.push_back(p);
      }
      corner = copy->second;
    }
  }
  return numbers;
}

}  // namespace zbr::drawing
