// Rings as callers give them, checked once; and how calls of the library failed.
#include "python/src/calls.h"
#include "python/src/regions.h"

#include <cmath>
#include <limits>
#include <new>
#include <string>

namespace zbr::python {
namespace {

constexpr double kLargest = 1e150;  // of coordinates, for the library

}  // namespace

RingArrays::RingArrays(PyObject* coords, PyObject* ringOffsets, PyObject* polygonOffsets, const char* ringArgument) {
  const Doubles xy(coords, "coords", 2);
  if (xy.rows() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
    throw BadArgument("coords", "more than 2^31 - 1 points");
  points.reserve(xy.rows());
  for (std::size_t i = 0; i < xy.rows(); ++i) {
    const ZBR_PT p(xy.data()[2 * i], xy.data()[2 * i + 1]);
    if (!(std::fabs(p.x()) <= kLargest && std::fabs(p.y()) <= kLargest))
      throw BadArgument("coords", "point " + std::to_string(i) + " is not finite, or beyond 1e150");
    points.push_back(p);
  }
  if (ringOffsets == nullptr || ringOffsets == Py_None) {
    rings = {0, static_cast<std::int32_t>(points.size())};
  } else {
    rings = ReadOffsets(ringOffsets, ringArgument, points.size(), "points");
  }
  if (polygonOffsets != nullptr && polygonOffsets != Py_None)
    polygons = ReadOffsets(polygonOffsets, "polygons", rings.size() - 1, "rings");
}

ZBR_REGION_VIEW RingArrays::view() const {
  ZBR_REGION_VIEW view;
  view.xy = reinterpret_cast<const double*>(points.data());
  view.point_count = points.size();
  view.ring_offsets = rings.data();
  view.ring_count = rings.size() - 1;
  return view;
}

ZBR_REGION_STATUS MakeValid(const ZBR_REGION_VIEW& rings, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options) {
  if (options.fill_a != ZBR_FILL_EVEN_ODD || options.tolerance > 0.0) return zbrMakeValidRegion(rings, result, options);
  constexpr ZBR_BOOLEAN_OPE kUnion = ZBR_BOOL_OR;  // with nothing: rings that keep apart are not arranged
  return zbrCombineRegions(rings, ZBR_REGION_VIEW(), &kUnion, &result, 1, options);
}

ZBR_FILL_RULE FillRule(const std::string& name) {
  if (name == "evenodd") return ZBR_FILL_EVEN_ODD;
  if (name == "nonzero") return ZBR_FILL_NON_ZERO;
  if (name == "positive") return ZBR_FILL_POSITIVE;
  if (name == "negative") return ZBR_FILL_NEGATIVE;
  throw BadArgument("fill", "one of evenodd, nonzero, positive and negative is needed");
}

void CheckStatus(const ZBR_REGION_STATUS& status) {
  switch (status.code) {
    case ZBR_REGION_OK:
      return;
    case ZBR_REGION_STOPPED:
      throw Stopped();
    case ZBR_REGION_TOO_LARGE:
      throw BadArgument("result", "more than 2^31 - 1 points");
    case ZBR_REGION_NOT_FINITE:
      throw BadArgument("coords", "point " + std::to_string(status.point) + " of ring " + std::to_string(status.ring) +
                                      " is not finite, or beyond 1e150");
    default:
      throw BadArgument("rings", "offsets descend, or lead beyond the points");
  }
}

}  // namespace zbr::python
