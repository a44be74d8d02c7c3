// Dividing by the distance from the eye keeps lines and planes what they are, if heights become inverse distances as well; so
// hidden lines are removed as in parallel views. What is not in front of the eye has to go first.
#include "drawing/views/perspective.h"

#include <zbr-drawing/failure.h>
#include <zbr-drawing/trigonometry.h>
#include <zbr-drawing/view_lines.h>

#include <cmath>

#include "drawing/sections/cut_scene.h"

namespace zbr::drawing {
namespace {

constexpr double kUsualField = 60.0;

// Whether a corner of the model's box is behind the eye or next to it.
bool IsAround(const Model& model, const View& view) {
  for (const double x : {model.low.x(), model.high.x()}) {
    for (const double y : {model.low.y(), model.high.y()}) {
      for (const double z : {model.low.z(), model.high.z()}) {
        const ZBR_PT3 p = ZBR_PT3(x, y, z) - view.perspective->eye;
        if (-view.toViewer.InnerProduct(p) < view.perspective->Nearest()) return true;
      }
    }
  }
  return false;
}

std::vector<CuttingPlane> PlanesOf(const Model& model, const View& view) {
  const Perspective& from = *view.perspective;
  std::vector<CuttingPlane> planes;
  const auto add = [&](const ZBR_PT3& normal, double beyond) {
    planes.push_back({{normal, normal.InnerProduct(from.eye) + beyond}, false});
  };
  const bool isAround = IsAround(model, view);
  if (isAround) add(view.toViewer, -from.Nearest());
  if (!isAround && from.fieldOfView == 0) return planes;
  const double half = (from.fieldOfView > 0 ? from.fieldOfView : kUsualField) / 2 * kPi / 180;
  for (const ZBR_PT3& side : {view.right, -view.right, view.up, -view.up}) add(side * Cos(half) + view.toViewer * Sin(half), 0.0);
  return planes;
}

void Scale(Scene& scene, double factor) {
  for (ZBR_HL_TRI& triangle : scene.triangles) {
    for (ZBR_PT3& p : triangle.pt) p = p * factor;
  }
  scene.scale *= factor;
  scene.contact *= factor;
}

}  // namespace

void FitPicture(const Model& model, const std::vector<IntersectionLine>& lines, Scene& scene) {
  const std::vector<CuttingPlane> planes = PlanesOf(model, scene.view);
  if (!planes.empty()) CutScene(model, lines, planes, {}, scene);
  const Extent extent = ExtentOf(scene);
  const double size = extent.empty() ? 0.0 : Hypot(extent.xmax - extent.xmin, extent.ymax - extent.ymin);
  if (!std::isnormal(size)) throw Failure("nothing of the model is in front of the eye");
  Scale(scene, kSceneDiagonal / (size * scene.scale));
}

}  // namespace zbr::drawing
