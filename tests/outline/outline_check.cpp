// Outlines of mesh files in twelve views against GEOS: a line for each file and view. Not part of the tests: run it by hand.
#include <cstdio>
#include <ctime>
#include <string>

#include "hiddenline/scenes.h"
#include "io/failure.h"
#include "model/mesh_reader.h"
#include "model/scene.h"
#include "outline/outline_geos.h"

namespace {

double Seconds() {
  return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Whether outline and union agree within 1e-6 of the area, by loops of the same number.
bool Check(const Geos& geos, const std::string& file, const tool::Model& model, const std::string& viewName, const View& view) {
  tool::Scene scene = tool::MakeScene(model, view);
  const ZBR_TmpEps tolerance(tool::kSceneTolerance);
  const double start = Seconds();
  ZBR_HiddenLine::OutLineObj(scene.shells.data(), scene.ShellCount());
  const double seconds = Seconds() - start;
  const OutlineComparison c = CompareOutline(geos, scene.shells, scene.shells[0].outline_all);
  const bool agrees = c.loops == c.expected && c.error <= 1e-6 * c.area && c.difference <= 1e-6 * c.area;
  std::printf("%-24s %-9s %7zu triangles  loops %d+%d, GEOS %d+%d  area %.1e  difference %.1e  %.3f s, GEOS %.2f s%s%s\n",
              file.substr(file.rfind('/') + 1).c_str(), viewName.c_str(), model.TriangleCount(), c.loops[0], c.loops[1],
              c.expected[0], c.expected[1], c.error / c.area, c.difference / c.area, seconds, Seconds() - start - seconds,
              c.rounded ? " on a grid" : "", agrees ? "" : "  DIFFERS");
  std::fflush(stdout);
  return agrees;
}

}  // namespace

int main(int count, char** arguments) {
  const Geos geos;
  bool agree = true;
  for (int i = 1; i < count; ++i) {
    try {
      const tool::Model model = tool::MakeModel(tool::ReadMesh(arguments[i]), 30.0);
      for (const auto& [name, view] : ViewsAround()) agree = Check(geos, arguments[i], model, name, view) && agree;
    } catch (const tool::Failure& failure) {
      std::fprintf(stderr, "%s\n", failure.what());
      return 2;
    }
  }
  return agree ? 0 : 1;
}
