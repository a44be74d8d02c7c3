// Silhouettes of the smooth surfaces that facets stand for.
#pragma once

#include <zbr-drawing/intersections.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/view_lines.h>

#include <cstdint>
#include <vector>

#include "drawing/silhouettes/contour.h"
#include "drawing/silhouettes/smooth_normals.h"
#include "drawing/silhouettes/visible_runs.h"

namespace zbr::drawing {

class SmoothSilhouettes {
 public:
  // Finds them for a view that is no perspective, from the normals of each shell. Linear, but for the chaining.
  SmoothSilhouettes(const Model& model, const std::vector<SmoothNormals>& normals, const View& view);

  // Puts them behind the lines of a scene that is to be made.
  void AddTo(std::vector<IntersectionLine>& lines);
  // They take the place of the silhouettes along edges in the scene made with these lines.
  void PutInto(const Model& model, Scene& scene);
  // Takes them from the scene after the removal as lines, hidden ones where wanted.
  std::vector<Line> TakeFrom(const Model& model, Scene& scene, bool hidden) const;
  // Where contours are open that the view, as it is by then, has lines of.
  void CloseContours(const Model& model, const Scene& scene, ViewLines& view) const {
    drawing::CloseContours(model, scene, edges_, view);
  }

 private:
  // Lines in a row.
  struct Curve {
    std::uint32_t shell = 0, begin = 0, end = 0;
    bool closed = false;
  };
  void FindIn(const Model& model, std::size_t shell, const SmoothNormals& normals, const View& view);

  // Leaves out what other bodies hide where the curve is and not where it was looked for.
  void LimitRuns(const Model& model, const Scene& scene, const Curve& curve, SeenCurve& seen) const;

  std::vector<IntersectionLine> lines_;
  std::vector<bool> isHollow_;  // of lines: where the surface bends towards the viewer
  std::vector<double> nearer_;  // of lines: by how much they are looked for nearer to the viewer, in the scene
  std::vector<Curve> curves_;
  std::vector<bool> isCoarse_;  // shells whose silhouettes stay along edges
  std::size_t first_ = 0;       // of them among the scene's lines
  std::vector<EdgeRef> edges_;  // silhouettes along edges, by their triangles in the scene
};

}  // namespace zbr::drawing
