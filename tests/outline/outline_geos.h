// An outline beside the union of the projected triangles as GEOS forms it.
#pragma once

#include <array>
#include <vector>

#include <zbr/hidden_line.h>

#include "geos/geos_region.h"

struct OutlineComparison {
  std::array<int, 2> loops = {0, 0};     // outer ones and holes
  std::array<int, 2> expected = {0, 0};  // of the union, without what is narrower than 1e-8 of the extent
  double area = 0.0;                     // of the union
  double error = 0.0;                    // difference of the areas
  double difference = 0.0;               // area of the symmetric difference
  double extent = 0.0;                   // the largest coordinate
  // GEOS joined triangles within 1e-11 of the extent: where a vertex lies on an edge but for rounding errors it sees a gap else.
  bool rounded = false;
};

// The outline of processed shells. Fails (area is not a number) when GEOS cannot form the union.
OutlineComparison CompareOutline(const Geos& geos, const std::vector<ZBR_HL_SHELL>& shells, const LoopList& outline);
