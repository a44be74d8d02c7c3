// The document of a glTF file and the bytes that it describes.
#pragma once

#include <zbr-formats/meshes.h>

#include <nlohmann/json.hpp>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "formats/meshes/gltf_item.h"

namespace zbr::formats {

// Both forms: JSON, and the binary one, which holds the JSON and a buffer. Other buffers are part of the JSON as text, or files
// beside it; they are read when they are asked for.
class GltfFile {
 public:
  // Refers to all of them as long as it lives. Fails when this is not glTF 2.
  GltfFile(const std::string& text, const std::string& file, const FileSource& beside);
  GltfFile(const GltfFile&) = delete;
  GltfFile& operator=(const GltfFile&) = delete;

  GltfItem Root() const { return {document_, file_}; }

  // The bytes from `byteOffset` on of the buffer view that `user` names, as far as they belong to it.
  std::string_view BytesOf(const GltfItem& user);

 private:
  std::string_view Buffer(std::size_t place);

  const std::string& file_;
  const FileSource& beside_;
  std::string_view binary_;  // the buffer within the file
  nlohmann::json document_;
  std::map<std::size_t, std::string> buffers_;  // those that were read
};

}  // namespace zbr::formats
