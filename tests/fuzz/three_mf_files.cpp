// 3MF files as they are, and documents put into archives with the right check sum, which no flipped bit would get past.
#include <zbr-formats/meshes.h>

#include "fuzz/reading.h"
#include "support/zip_file.h"

void Fuzz(Bytes& bytes) {
  const bool isArchive = bytes.Flag();
  const std::string text = bytes.Rest();
  zbr::formats::Mesh mesh;
  IsTaken("file", [&] {
    mesh = zbr::formats::ParseMesh("3mf", isArchive ? text : ZipFile({{"3D/3dmodel.model", text}, {"other", text}}), "file");
  });
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
  for (const ZBR_PT3& p : mesh.points) Require(zbr::formats::IsMeshCoordinate(p), "coordinates are finite");
}
