// Mesh files: the first byte tells the format, the rest is the file. What is read can be modelled and surveyed.
#include "fuzz/reading.h"
#include "model/readers.h"
#include "model/survey.h"

void Fuzz(Bytes& bytes) {
  constexpr tool::Mesh (*kReaders[])(const std::string&, const std::string&) = {tool::ReadObj, tool::ReadOff, tool::ReadPly,
                                                                                tool::ReadStl};
  const int kind = bytes.Below(8);
  tool::Mesh mesh;
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
  const tool::Model model = tool::MakeModel(mesh, 30.0, kind < 4 ? 0.0 : 1e-3);
  Require(model.TriangleCount() + model.collapsed + model.repeated == mesh.triangles.size(), "no triangle is lost");
  Require(tool::MakeSurvey(model).shells.size() == model.ShellCount(), "every shell is surveyed");
}
