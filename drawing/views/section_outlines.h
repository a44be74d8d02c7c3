// Outlines of a scene that a section has cut.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/section.h>

#include <cstdint>
#include <vector>

namespace zbr::drawing {

// What of an object lies in the section's plane, where nothing is nearer; in the scene.
struct CutFace {
  std::uint32_t object = 0;
  LoopList loops;
};

// Where bodies of different objects pass through each other the earlier one has the common part.
std::vector<CutFace> CutFacesOf(const SectionCut& section, const Scene& scene);

// As FindOutlines, narrowed, with each face in the outline of its own object and of no other. Without faces it is the same.
void FindSectionOutlines(const Model& model, Scene& scene, std::vector<CutFace>& faces, unsigned threads);

}  // namespace zbr::drawing
