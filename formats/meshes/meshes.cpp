// Chooses the reader by the file's extension and checks what all meshes must be.
#include <zbr-formats/meshes.h>

#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "formats/file_access.h"
#include "formats/meshes/readers.h"
#include "formats/text/foreign.h"

namespace zbr::formats {
namespace {

using Reader = Mesh (*)(const std::string& text, const std::string& file, const FileSource& beside, unsigned threads);

// Most formats are whole in one file.
template <Mesh (*read)(const std::string&, const std::string&)>
Mesh Alone(const std::string& text, const std::string& file, const FileSource&, unsigned) {
  return read(text, file);
}

template <Mesh (*read)(const std::string&, const std::string&, unsigned)>
Mesh InRanges(const std::string& text, const std::string& file, const FileSource&, unsigned threads) {
  return read(text, file, threads);
}

Mesh WithOthers(const std::string& text, const std::string& file, const FileSource& beside, unsigned) {
  return ReadGltf(text, file, beside);
}

constexpr Reader kReadStl = InRanges<ReadStl>, kReadPly = Alone<ReadPly>, kRead3mf = Alone<Read3mf>;
constexpr std::array<std::pair<const char*, Reader>, 7> kReaders = {{{"stl", kReadStl},
                                                                     {"obj", InRanges<ReadObj>},
                                                                     {"ply", kReadPly},
                                                                     {"off", Alone<ReadOff>},
                                                                     {"gltf", WithOthers},
                                                                     {"glb", WithOthers},
                                                                     {"3mf", kRead3mf}}};

// Null when there is none.
Reader ReaderOf(const std::string& format) {
  const auto* const found =
      std::find_if(kReaders.begin(), kReaders.end(), [&](const auto& entry) { return entry.first == format; });
  return found == kReaders.end() ? nullptr : found->second;
}

// Lines of old programs for the Mac end with carriage returns alone.
void EndLines(Reader reader, bool isText, std::string& bytes) {
  if (bytes.find('\n') != std::string::npos || bytes.find('\r') == std::string::npos) return;
  const bool isTextOfTwoForms =
      (reader == kReadStl && !IsBinaryStl(bytes)) || (reader == kReadPly && bytes.find("format ascii") != std::string::npos);
  if (isText || isTextOfTwoForms) std::replace(bytes.begin(), bytes.end(), '\r', '\n');
}

bool HasArea(const ZBR_PT3& a, const ZBR_PT3& b, const ZBR_PT3& c) {
  const ZBR_PT3 n = (b - a).OuterProduct(c - a);
  return n.x() != 0 || n.y() != 0 || n.z() != 0;
}

void Check(const Mesh& mesh, const std::string& file) {
  if (mesh.triangles.empty()) throw Failure(file, "no triangles");
  if (mesh.triangles.size() > kMostMeshPoints || mesh.points.size() > kMostMeshPoints) throw Failure(file, "too many triangles");
  for (std::size_t i = 0; i < mesh.points.size(); ++i) {
    if (!IsMeshCoordinate(mesh.points[i])) throw Failure(file, "a coordinate of point " + std::to_string(i + 1) + " is too large");
  }
  const auto hasArea = [&](const std::array<std::uint32_t, 3>& t) {
    return HasArea(mesh.points[t[0]], mesh.points[t[1]], mesh.points[t[2]]);
  };
  if (std::none_of(mesh.triangles.begin(), mesh.triangles.end(), hasArea)) throw Failure(file, "no triangles with an area");
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

Mesh ParseMesh(const std::string& format, std::string bytes, const std::string& name, const FileSource& beside, unsigned threads) {
  const Reader reader = ReaderOf(format);
  if (reader == nullptr)
    throw UnknownFormat(name, "not known as a model; names end in .stl, .obj, .ply, .off, .gltf, .glb or .3mf");
  if (reader != kReadStl && reader != kRead3mf) DropByteOrderMark(bytes);  // a binary STL may begin with anything
  if (bytes.empty()) throw Failure(name, "the file is empty");
  if (reader != kRead3mf) RefuseForeign(bytes, name);
  const bool isText = format == "obj" || format == "off" || (reader == WithOthers && !bytes.starts_with("glTF"));
  if (isText) RefuseBinary(bytes, name);
  EndLines(reader, isText, bytes);
  Mesh mesh = reader(bytes, name, beside, threads);
  Check(mesh, name);
  mesh.yUp = reader == WithOthers;
  return mesh;
}

Mesh ReadMesh(const std::string& file, const std::string& format, unsigned threads) {
  const std::string chosen = IsMeshFile(file) ? ExtensionOf(file) : format;
  const FileSource beside = [&](const std::string& name) {
    const std::string path = NameOf((PathOf(file == "-" ? "" : file).parent_path() / PathOf(name)).make_preferred());
    // A device or a pipe would not end.
    if (!IsRegularFile(path)) throw Failure("there is no file " + Quoted(name));
    return ReadFile(path);
  };
  if (ReaderOf(chosen) == nullptr) RefuseForeignFile(file);  // what the name does not tell the contents may
  return ParseMesh(chosen, ReaderOf(chosen) == nullptr ? "" : ReadFile(file, std::string::npos, threads), file, beside, threads);
}

}  // namespace zbr::formats
