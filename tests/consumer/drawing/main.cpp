// Draws a tetrahedron with the installed zbr-drawing: seen from above, all its edges but those of the bottom's inside are in sight.
#include <zbr-drawing/views.h>

#include <cstdio>

int main() {
  using namespace zbr::drawing;
  using Face = std::vector<std::uint32_t>;
  Mesh mesh;
  mesh.points = {{0, 0, 0}, {4, 0, 0}, {2, 3, 0}, {2, 1, 2}};
  for (const auto& face : {Face{0, 2, 1}, Face{0, 1, 3}, Face{1, 2, 3}, Face{2, 0, 3}}) AddPolygon(mesh, face);
  const Model model = MakeModel(mesh, 30.0);
  const ViewLines view = DrawView(model, "top");
  std::size_t visible = 0;
  for (const Line& line : view.lines) visible += line.hidden ? 0 : 1;
  std::printf("visible polylines: %zu, length %.6f\n", visible, view.VisibleLength());
  return visible > 0 && visible == view.lines.size() ? 0 : 1;
}
