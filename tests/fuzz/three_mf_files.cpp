// 3MF files as they are, and documents put into archives with the right check sum, which no flipped bit would get past; and, for
// the same reason, packed bytes by themselves.
#include <zbr-formats/meshes.h>

#include "formats/archive/inflate.h"
#include "fuzz/reading.h"
#include "support/zip_file.h"

namespace {

void TryToUnpack(const std::string& packed) {
  constexpr std::size_t kSize = 1 << 16;
  try {
    Require(zbr::formats::Inflate(packed, kSize).size() == kSize, "as many bytes come out as were announced");
  } catch (const zbr::drawing::Failure&) {
  }
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const bool isArchive = bytes.Flag();
  const std::string text = bytes.Rest();
  if (isArchive) TryToUnpack(text);
  zbr::formats::Mesh mesh;
  IsTaken("file", [&] {
    mesh = zbr::formats::ParseMesh("3mf", isArchive ? text : ZipFile({{"3D/3dmodel.model", text}, {"other", text}}), "file");
  });
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
  for (const ZBR_PT3& p : mesh.points) Require(zbr::formats::IsMeshCoordinate(p), "coordinates are finite");
}
