// What is seen at points of a view: shell, triangle and height.
//
//   const Picker picker(model, *NamedView("front"));
//   if (const auto hit = picker.At(ZBR_PT(12, 5))) Select(hit->triangle);
#pragma once

#include <zbr-drawing/scene.h>

#include <cstdint>
#include <optional>

namespace zbr::drawing {

// Prepared once, about n log n in the triangles; then it is only read, by any number of threads. The model is to outlive it.
class Picker {
 public:
  // Fails for perspectives, whose pictures leave out what is behind the eye.
  Picker(const Model& model, const View& view);

  struct Hit {
    std::uint32_t shell = 0;
    std::uint32_t triangle = 0;  // place in the mesh as read
    double height = 0.0;         // towards the viewer
  };

  // What is nearest to the viewer at a point, in the view's axes and from the model's origin, as heights are. Nothing for points
  // that are not finite. About log n.
  std::optional<Hit> At(const ZBR_PT& p) const;

 private:
  const Model* model_;
  Scene scene_;
};

}  // namespace zbr::drawing
