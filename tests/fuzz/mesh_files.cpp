// Mesh files: the first byte tells the format, the rest is the file. What is read can be modelled and surveyed.
#include <zbr-drawing/survey.h>
#include <zbr-formats/meshes.h>

#include "fuzz/reading.h"

using namespace zbr::formats;

void Fuzz(Bytes& bytes) {
  constexpr const char* kFormats[] = {"obj", "off", "ply", "stl"};
  const int kind = bytes.Below(8);
  Mesh mesh;
  if (!IsTaken("file", [&] { mesh = ParseMesh(kFormats[kind % 4], bytes.Rest(), "file"); })) return;
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
  for (const ZBR_PT3& p : mesh.points) Require(IsMeshCoordinate(p), "coordinates are finite");
  const Model model = MakeModel(mesh, 30.0, kind < 4 ? 0.0 : 1e-3);
  Require(model.TriangleCount() + model.collapsed + model.repeated == mesh.triangles.size(), "no triangle is lost");
  Require(MakeSurvey(model).shells.size() == model.ShellCount(), "every shell is surveyed");
}
