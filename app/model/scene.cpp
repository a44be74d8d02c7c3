// Turns a model into view coordinates and finds its silhouettes.
#include "model/scene.h"

#include <cstdint>

namespace tool {
namespace {

bool IsSmallerSide(std::size_t t, std::int32_t u) {
  return u < 0 || t < static_cast<std::size_t>(u);
}

// Whether an edge between triangles whose normals have these z components is a silhouette.
//
// Between a triangle seen from the front and one that is not. On a wall seen edge-on that is the upper edge alone: the lower one
// lies under it in the drawing. Where no side is the outer one, both edges of a wall count; the removal drops what is covered.
bool IsSilhouette(double a, double b, Facing facing) {
  constexpr double kFlat = kSceneTolerance;
  if (facing == Facing::kOutward) return (a > kFlat) != (b > kFlat);
  if (facing == Facing::kInward) return (a < -kFlat) != (b < -kFlat);
  return (a > kFlat) != (b > kFlat) || (a < -kFlat) != (b < -kFlat);
}

class SceneMaker {
 public:
  SceneMaker(const Model& model, Scene& scene) : model_(model), scene_(scene) {
    const ZBR_PT3 centre = model.Centre();
    points_.reserve(model.points.size());
    for (const ZBR_PT3& p : model.points) points_.push_back(scene.view.In(p - centre) * scene.scale);
    towards_.reserve(model.normals.size());
    for (const ZBR_PT3& n : model.normals) towards_.push_back(n.InnerProduct(scene.view.toViewer));
  }

  void Fill(std::size_t t, std::size_t first, Facing facing) {
    ZBR_HL_TRI& triangle = scene_.triangles[t];
    triangle.idx = static_cast<int>(t - first);
    triangle.skip = false;
    for (std::size_t i = 0; i < 3; ++i) {
      const std::int32_t u = model_.adjacent[t][i];
      const EdgeClass edge = Class(t, i, facing);
      scene_.classes[t][i] = edge;
      triangle.pt[i] = points_[model_.triangles[t][i]];
      triangle.adj[i] = u < 0 ? -1 : u - static_cast<int>(first);
      triangle.adj_edge[i] = model_.adjacentEdge[t][i];
      triangle.dispj[i] = edge != EdgeClass::kSmooth;
      triangle.profile[i] = -1;
      if (triangle.dispj[i] && IsSmallerSide(t, u)) ++scene_.drawable;
    }
  }

 private:
  EdgeClass Class(std::size_t t, std::size_t i, Facing facing) const {
    const EdgeClass edge = model_.classes[t][i];
    if (edge != EdgeClass::kSmooth) return edge;
    const double other = towards_[static_cast<std::size_t>(model_.adjacent[t][i])];
    const bool sameWay = facing == Facing::kUnknown && model_.SameWay(t, static_cast<int>(i));
    return IsSilhouette(towards_[t], sameWay ? -other : other, facing) ? EdgeClass::kSilhouette : edge;
  }

  const Model& model_;
  Scene& scene_;
  std::vector<ZBR_PT3> points_;
  std::vector<double> towards_;  // z components of the normals
};

}  // namespace

void MakeScene(const Model& model, const View& view, Scene& scene) {
  const double diagonal = model.Diagonal();
  scene.view = view;
  scene.scale = diagonal > 0 ? kSceneDiagonal / diagonal : 1.0;
  scene.offset = view.In(model.Centre());
  scene.drawable = 0;
  scene.triangles.resize(model.triangles.size());
  scene.classes.resize(model.triangles.size());
  scene.shells.clear();
  scene.shells.reserve(model.ShellCount());
  SceneMaker maker(model, scene);
  for (std::size_t s = 0; s < model.ShellCount(); ++s) {
    const std::size_t begin = model.shellBegin[s], end = model.shellBegin[s + 1];
    for (std::size_t t = begin; t < end; ++t) maker.Fill(t, begin, model.facing[s]);
    scene.shells.emplace_back(scene.triangles.data() + begin, static_cast<unsigned>(end - begin));
  }
  scene.drawable -= model.junctionCopies;
}

Scene MakeScene(const Model& model, const View& view) {
  Scene scene;
  MakeScene(model, view, scene);
  return scene;
}

}  // namespace tool
