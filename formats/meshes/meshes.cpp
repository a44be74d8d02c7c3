// Chooses the reader by the file's extension and checks what all meshes must be.
#include <zbr-formats/meshes.h>

#include <zbr-formats/files.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <utility>

#include "formats/meshes/readers.h"

namespace zbr::formats {
namespace {

using Reader = Mesh (*)(const std::string& text, const std::string& file);

constexpr std::array<std::pair<const char*, Reader>, 6> kReaders = {
    {{"stl", ReadStl}, {"obj", ReadObj}, {"ply", ReadPly}, {"off", ReadOff}, {"gltf", ReadGltf}, {"glb", ReadGltf}}};

// Null when there is none.
Reader ReaderOf(const std::string& format) {
  const auto* const found =
      std::find_if(kReaders.begin(), kReaders.end(), [&](const auto& entry) { return entry.first == format; });
  return found == kReaders.end() ? nullptr : found->second;
}

std::string ExtensionOf(const std::string& file) {
  const std::size_t dot = file.rfind('.');
  std::string extension = dot == std::string::npos ? "" : file.substr(dot + 1);
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension;
}

bool HasArea(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
  const ZBR_PT3 n = (b - a).OuterProduct(c - a);
  return n.x() != 0 || n.y() != 0 || n.z() != 0;
}

void Check(const Mesh& mesh, const std::string& file) {
  if (mesh.triangles.empty()) throw Failure(file + ": no triangles");
  if (mesh.triangles.size() > kMostMeshPoints || mesh.points.size() > kMostMeshPoints) throw Failure(file + ": too many triangles");
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    if (!IsMeshCoordinate(mesh.points[i]))
      throw Failure(file + ": a coordinate of point " + std::to_string(i + 1) + " is too large");
  }
  const auto hasArea = [&](const std::array<std::uint32_t, 3>& t) {
    return HasArea(mesh.points[t[0]], mesh.points[t[1]], mesh.points[t[2]]);
  };
  if (std::none_of(mesh.triangles.begin(), mesh.triangles.end(), hasArea)) throw Failure(file + ": no triangles with an area");
}

}  // namespace

bool IsMeshFile(const std::string& file) {
  return ReaderOf(ExtensionOf(file)) != nullptr;
}

const std::vector<std::string>& MeshFormats() {
  static const std::vector<std::string> kFormats = [] {
    std::vector<std::string> formats;
    for (const auto& [format, reader] : kReaders) formats.emplace_back(format);
    return formats;
  }();
  return kFormats;
}

Mesh ReadMesh(const std::string& file, const std::string& format) {
  const Reader reader = ReaderOf(IsMeshFile(file) ? ExtensionOf(file) : format);
  if (reader == nullptr)
    throw Failure(file + ": not known as a model; names end in .stl, .obj, .ply, .off, .gltf or .glb, else give --model-format");
  const std::string text = reader == ReadStl ? ReadFile(file) : ReadText(file);  // a binary STL may begin with anything
  if (text.empty()) throw Failure(file + ": the file is empty");
  Mesh mesh = reader(text, file);
  Check(mesh, file);
  mesh.yUp = reader == ReadGltf;
  return mesh;
}

}  // namespace zbr::formats
