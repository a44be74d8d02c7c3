// The numbers that an accessor of a glTF file describes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "formats/meshes/gltf_file.h"

namespace zbr::formats {

// Elements of equal size, each of one or more components, at equal distances in the bytes of the file.
class GltfAccessor {
 public:
  // `type` is what the elements have to be: "SCALAR" or "VEC3". Fails when the bytes do not hold what the accessor says.
  GltfAccessor(GltfFile& gltf, std::size_t place, const std::string& type);

  std::size_t Count() const { return count_; }
  // Of an accessor that is normalized the part of the greatest number: in [-1, 1].
  double At(std::size_t element, std::size_t component) const;

 private:
  // Elements that replace others: of sparse accessors.
  void Replace(GltfFile& gltf, const GltfItem& sparse);

  std::string_view bytes_;
  std::string own_;  // a copy, where some are replaced
  std::size_t count_ = 0, stride_ = 0;
  std::size_t code_ = 0;                             // of the kind of components, in the format
  std::size_t componentSize_ = 0, elementSize_ = 0;  // in bytes
  double greatest_ = 0;                              // of normalized components
};

}  // namespace zbr::formats
