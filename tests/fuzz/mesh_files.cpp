// Mesh files: the first byte tells the format, the rest is the file. What is read can be modelled and surveyed.
#include <zbr-drawing/survey.h>

#include "formats/meshes/readers.h"
#include "fuzz/reading.h"

void Fuzz(Bytes& bytes) {
  constexpr zbr::drawing::Mesh (*kReaders[])(const std::string&, const std::string&) = {
      zbr::formats::ReadObj, zbr::formats::ReadOff, zbr::formats::ReadPly, zbr::formats::ReadStl};
  const int kind = bytes.Below(8);
  zbr::drawing::Mesh mesh;
  if (!IsTaken("file", [&] { mesh = kReaders[kind % 4](bytes.Rest(), "file"); })) return;
  for (const auto& corners : mesh.triangles) {
    for (const std::uint32_t corner : corners) Require(corner < mesh.points.size(), "triangles have points that are there");
  }
  bool canBeModelled = !mesh.triangles.empty();
  for (const ZBR_PT3& p : mesh.points) {
    const double size = std::max({std::abs(p.x()), std::abs(p.y()), std::abs(p.z())});
    Require(std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z()), "coordinates are finite");
    canBeModelled = canBeModelled && size <= 1e75;
  }
  if (!canBeModelled) return;
  const zbr::drawing::Model model = zbr::drawing::MakeModel(mesh, 30.0, kind < 4 ? 0.0 : 1e-3);
  Require(model.TriangleCount() + model.collapsed + model.repeated == mesh.triangles.size(), "no triangle is lost");
  Require(zbr::drawing::MakeSurvey(model).shells.size() == model.ShellCount(), "every shell is surveyed");
}
