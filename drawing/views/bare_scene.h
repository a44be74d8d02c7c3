// A scene of which only the triangles matter.
#pragma once

#include <zbr-drawing/scene.h>

namespace zbr::drawing {

// Without lines there is nothing left to hide, and the comparison of two objects is one of their outlines alone.
inline void GiveUpLines(Scene& scene) {
  for (ZBR_HL_TRI& triangle : scene.triangles) {
    triangle.ClearEdgeAll();
    for (bool& drawn : triangle.dispj) drawn = false;
  }
}

}  // namespace zbr::drawing
