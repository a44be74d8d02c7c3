// Volumes of models as sums of tetrahedra that have a corner in common.
#include <zbr-drawing/measures.h>

#include "drawing/model/records.h"

namespace zbr::drawing {

ModelMeasures MeasuresOf(const Model& model, std::size_t shell) {
  const ZBR_ZBREPS& triangles = model.Shell(shell);
  const ZBR_PT3 origin = (model.low + model.high) * 0.5;  // near all corners: less is lost to rounding
  ModelMeasures measures;
  ZBR_PT3 first;  // the moment of the volume
  for (int k = 0; k < triangles.GetTriangleCnt(); ++k) {
    const ZBR_ZBREPT& t = *triangles.GetTriangle(k);
    const ZBR_PT3 a = VertexOf(t, 0).GetPt() - origin, b = VertexOf(t, 1).GetPt() - origin, c = VertexOf(t, 2).GetPt() - origin;
    measures.area += (b - a).OuterProduct(c - a).Length() / 2;
    const double volume = a.InnerProduct(b.OuterProduct(c)) / 6;
    measures.volume += volume;
    first += (a + b + c) * (volume / 4);
  }
  measures.centroid = measures.volume != 0 ? origin + first * (1 / measures.volume) : origin;
  return measures;
}

}  // namespace zbr::drawing
