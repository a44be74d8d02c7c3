// The section of a drawing.
#pragma once

#include <zbr-drawing/section.h>

namespace zbr::drawing {

// What FindSection finds, but where outlines of bodies run within `contact` of each other there is one line.
SectionCut FindDrawnSection(const Model& model, const View& view, const SectionPlane& plane, double contact);

}  // namespace zbr::drawing
