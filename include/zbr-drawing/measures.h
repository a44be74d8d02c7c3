// Sizes of regions and models, as engineers want them: area, perimeter, centroid, second moments; surface and volume.
//
//   const RegionMeasures plate = MeasuresOf(CurvedShape(region));
//   const double slenderness = plate.ix / plate.area;
//
// Curves count as what they are: circles, ellipses and splines, not their chords, to about 14 digits. Numbers that overflow become
// infinite.
#pragma once

#include <zbr-drawing/model.h>
#include <zbr-drawing/region.h>

#include <cstddef>

namespace zbr::drawing {

struct RegionMeasures {
  double area = 0.0;       // by the orientation of the rings; so are all others but the perimeter
  double perimeter = 0.0;  // of all rings, holes included
  ZBR_PT centroid;         // the middle of the box where there is no area
  double ix = 0.0;         // second moments about the axes through the centroid: of y y, which resists bending about the x axis,
  double iy = 0.0;         // of x x,
  double ixy = 0.0;        // and of x y
};

RegionMeasures MeasuresOf(const CurvedRegion& region);

// The smallest box that holds the path with its curves.
Extent TrueExtentOf(const Path& path);
// The same of all rings.
Extent TrueExtentOf(const CurvedRegion& region);

struct ModelMeasures {
  double area = 0.0;
  double volume = 0.0;  // by the orientation of the triangles; says nothing of a surface that is not closed
  ZBR_PT3 centroid;     // of the volume
};

// Of one shell of the model.
ModelMeasures MeasuresOf(const Model& model, std::size_t shell);

}  // namespace zbr::drawing
