// glTF files, of both forms. They may name other files, of which there are none beside them.
#include <zbr-formats/meshes.h>

#include "fuzz/reading.h"

void Fuzz(Bytes& bytes) {
  zbr::formats::Mesh mesh;
  const std::string file = "nowhere/file";
  IsTaken(file, [&] { mesh = zbr::formats::ParseMesh("gltf", bytes.Rest(), file); });
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
  for (const ZBR_PT3& p : mesh.points) Require(zbr::formats::IsMeshCoordinate(p), "coordinates are finite");
}
