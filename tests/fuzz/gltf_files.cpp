// glTF files, which another library reads from disk: apart from the other formats, as its faults would end their runs.
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "fuzz/reading.h"
#include "model/readers.h"

namespace {

// Named after the process, and gone with it.
struct TemporaryFile {
  explicit TemporaryFile(const std::string& end)
      : name((std::filesystem::temp_directory_path() / ("zbr-fuzz-" + std::to_string(getpid()) + end)).string()) {}
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() { std::filesystem::remove(name); }

  std::string name;
};

}  // namespace

void Fuzz(Bytes& bytes) {
  static const TemporaryFile asText(".gltf");
  static const TemporaryFile asBinary(".glb");
  const std::string text = bytes.Rest();
  const std::string& file = (text.rfind("glTF", 0) == 0 ? asBinary : asText).name;
  std::ofstream(file, std::ios::binary) << text;
  tool::Mesh mesh;
  IsTaken(file, [&] { mesh = tool::ReadGltf(text, file); });
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
}
