// The type under zbr.Region.
#include "python/src/regions.h"

#include "python/src/calls.h"
#include "python/src/options.h"

#include <zbr/tolerance.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <new>

namespace zbr::python {
namespace {

using Objects = Holder<RegionData>;

const RegionPtr& DataOf(PyObject* self) {
  return Objects::Of(self);
}

// The union of the polygons, or what all rings bound where polygons are not given.
RegionPtr ValidRegion(const RingArrays& arrays, const ZBR_REGION_OPTIONS& options) {
  const auto data = std::make_shared<RegionData>();
  const ZBR_REGION_VIEW all = arrays.view();
  if (arrays.polygons.empty()) {
    CheckStatus(MakeValid(all, data->region, options));
    return data;
  }
  std::vector<ZBR_REGION_VIEW> polygons;
  for (std::size_t p = 0; p + 1 < arrays.polygons.size(); ++p) {
    ZBR_REGION_VIEW& one = polygons.emplace_back(all);
    one.ring_offsets += arrays.polygons[p];
    one.ring_count = static_cast<std::size_t>(arrays.polygons[p + 1] - arrays.polygons[p]);
    one.polygon_offsets = nullptr;
    one.polygon_count = 0;
    one.point_count = static_cast<std::size_t>(one.ring_offsets[one.ring_count]);
  }
  CheckStatus(polygons.size() == 1 ? MakeValid(polygons.front(), data->region, options)
                                   : zbrCoverRegions(polygons.data(), polygons.size(), 1, data->region, options));
  return data;
}

RegionPtr AsGiven(const RingArrays& arrays) {
  const auto data = std::make_shared<RegionData>();
  const bool isOne = arrays.polygons.empty();
  const auto begin = isOne ? 0 : static_cast<std::size_t>(arrays.polygons.front());
  const auto end = isOne ? arrays.rings.size() - 1 : static_cast<std::size_t>(arrays.polygons.back());
  std::size_t polygon = 0;
  for (std::size_t r = begin; r < end; ++r) {
    bool starts = isOne && r == 0;
    for (; polygon + 1 < arrays.polygons.size() && static_cast<std::size_t>(arrays.polygons[polygon]) <= r; ++polygon)
      starts = true;
    const auto first = static_cast<std::size_t>(arrays.rings[r]);
    data->region.AddRing(arrays.points.data() + first, static_cast<std::size_t>(arrays.rings[r + 1]) - first, starts);
  }
  return data;
}

PyObject* New(PyTypeObject* type, PyObject* args, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("Region", {"coords", "rings", "polygons", "fill", "valid", "tolerance", "progress"}, 3, args, keywords);
    if (given[0] == nullptr) return Objects::Make(std::make_shared<RegionData>(), type);
    ZBR_REGION_OPTIONS options;
    options.fill_a = FillRule(given.String(3, "evenodd"));
    const bool isValid = given.Truth(4, false);
    options.tolerance = given.Number(5, 0.0, 0.0);
    RingArrays arrays(given[0], given.OrNull(1), given.OrNull(2));
    if (arrays.rings.size() == 1 && !arrays.points.empty())
      throw BadArgument("rings", "offsets are one more than there are rings; one bounds none, and there are points");
    const std::size_t size = arrays.points.size();
    return Objects::Make(Run(size, given[6],
                             [arrays = std::move(arrays), options, isValid](Monitor& monitor) mutable {
                               options.progress = Monitor::Tell;
                               options.progress_data = &monitor;
                               return isValid ? AsGiven(arrays) : ValidRegion(arrays, options);
                             }),
                         type);
  });
}

PyObject* Coords(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const RegionPtr& data = DataOf(self);
    return MakeArray(data, reinterpret_cast<const double*>(data->region.points().data()), {data->region.point_count(), 2});
  });
}

Ref OffsetArray(const RegionPtr& data, const std::vector<std::int32_t>& offsets) {
  static const std::int32_t zero = 0;  // where there are no sources, there are no offsets of them
  return offsets.empty() ? MakeArray(data, &zero, {1}) : MakeArray(data, offsets.data(), {offsets.size()});
}

PyObject* Rings(PyObject* self, void*) noexcept {
  return Guarded([&] { return OffsetArray(DataOf(self), DataOf(self)->region.ring_offsets()); });
}

PyObject* Polygons(PyObject* self, void*) noexcept {
  return Guarded([&] { return OffsetArray(DataOf(self), DataOf(self)->region.polygon_offsets()); });
}

PyObject* SourceBytes(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const auto& sources = DataOf(self)->region.sources();
    return MakeArray(DataOf(self), reinterpret_cast<const std::uint8_t*>(sources.data()),
                     {sources.size() * sizeof(ZBR_EDGE_SOURCE)});
  });
}

PyObject* SourceOffsets(PyObject* self, void*) noexcept {
  return Guarded([&] { return OffsetArray(DataOf(self), DataOf(self)->region.source_offsets()); });
}

PyObject* Area(PyObject* self, void*) noexcept {
  return PyFloat_FromDouble(DataOf(self)->region.area());
}

PyObject* Perimeter(PyObject* self, void*) noexcept {
  return PyFloat_FromDouble(DataOf(self)->region.perimeter());
}

PyObject* Bounds(PyObject* self, void*) noexcept {
  if (DataOf(self)->region.empty()) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    return Py_BuildValue("(dddd)", none, none, none, none);
  }
  double xmin = 0.0, ymin = 0.0, xmax = 0.0, ymax = 0.0;
  DataOf(self)->region.GetBounds(xmin, ymin, xmax, ymax);
  return Py_BuildValue("(dddd)", xmin, ymin, xmax, ymax);
}

PyObject* Centroid(PyObject* self, void*) noexcept {
  const ZBR_REGION& region = DataOf(self)->region;
  const ZBR_PT centroid = CentroidOf(region.points().data(), region.ring_offsets().data(), region.ring_count());
  return Py_BuildValue("(dd)", centroid.x(), centroid.y());
}

Py_ssize_t Length(PyObject* self) noexcept {
  return static_cast<Py_ssize_t>(DataOf(self)->region.polygon_count());
}

int Truth(PyObject* self) noexcept {
  return DataOf(self)->region.empty() ? 0 : 1;
}

PyObject* Compare(PyObject* a, PyObject* b, int how) noexcept {
  if (!IsRegion(a) || !IsRegion(b) || (how != Py_EQ && how != Py_NE)) {
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
  }
  const bool same = DataOf(a) == DataOf(b) || DataOf(a)->region == DataOf(b)->region;
  return PyBool_FromLong(same == (how == Py_EQ) ? 1 : 0);
}

// Of what == compares, so without the sign of zeros.
Py_hash_t Hash(PyObject* self) noexcept {
  std::uint64_t hash = 0xcbf29ce484222325U;
  const auto mix = [&hash](std::uint64_t word) { hash = (hash ^ word) * 0x9e3779b97f4a7c15U ^ hash >> 29U; };
  const ZBR_REGION& region = DataOf(self)->region;
  for (const ZBR_PT& p : region.points()) {
    mix(std::bit_cast<std::uint64_t>(p.x() + 0.0));
    mix(std::bit_cast<std::uint64_t>(p.y() + 0.0));
  }
  for (const std::int32_t offset : region.ring_offsets()) mix(static_cast<std::uint64_t>(offset));
  const auto result = static_cast<Py_hash_t>(hash);
  return result == -1 ? -2 : result;
}

PyObject* Locate(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("locate", {"points", "progress"}, 1, args, count, keywords);
    const RegionPtr data = DataOf(self);
    return LocateAll(data->region.point_count(), PointsOf(given.Needed(0), given[1]), given[1],
                     [data](std::size_t, const ZBR_PT& p) { return data->TheLocator().Locate(p); });
  });
}

PyObject* Simplify(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("simplify", {"tolerance", "progress"}, 1, args, count, keywords);
    given.Needed(0);
    const double tolerance = given.Number(0, 0.0, 0.0);
    const RegionPtr data = DataOf(self);
    return NewRegion(Run(data->region.point_count(), given[1], [data, tolerance](Monitor& monitor) -> RegionPtr {
      ZBR_REGION_OPTIONS options;
      options.progress = Monitor::Tell;
      options.progress_data = &monitor;
      const auto result = std::make_shared<RegionData>();
      CheckStatus(zbrSimplifyRegion(data->region.view(), tolerance, result->region, options));
      return result;
    }));
  });
}

PyObject* Or(PyObject* a, PyObject* b) noexcept {
  return Operate(a, b, ZBR_BOOL_OR);
}
PyObject* And(PyObject* a, PyObject* b) noexcept {
  return Operate(a, b, ZBR_BOOL_AND);
}
PyObject* Subtract(PyObject* a, PyObject* b) noexcept {
  return Operate(a, b, ZBR_BOOL_A_MINUS_B);
}
PyObject* Xor(PyObject* a, PyObject* b) noexcept {
  return Operate(a, b, ZBR_BOOL_XOR);
}

}  // namespace

Locator::Locator(const ZBR_REGION& region)
    : frame_([&region] {
        drawing::Extent extent;
        for (const ZBR_PT& p : region.points()) extent.Add(p);
        return drawing::Frame::For(extent);
      }()),
      locator_([&] {
        const ZBR_TmpEps hold(drawing::kTolerance);
        return ZBR_LOOP_LOCATOR(frame_.In(region));
      }()) {}

std::int8_t Locator::Locate(const ZBR_PT& p) const {
  switch (locator_.IsInside(frame_.In(p))) {
    case ZBR_PI_IN:
      return 1;
    case ZBR_PI_ON_EDGE:
    case ZBR_PI_ON_VERTEX:
      return 0;
    default:
      return -1;
  }
}

const Locator& RegionData::TheLocator() const {
  std::call_once(once_, [this] { locator_.emplace(region); });
  return *locator_;
}

std::vector<ZBR_PT> PointsOf(PyObject* points, PyObject* progress) {
  CheckProgress(progress);
  const Doubles given(points, "points", 2);
  std::vector<ZBR_PT> copy;
  for (std::size_t i = 0; i < given.rows(); ++i) copy.emplace_back(given.data()[2 * i], given.data()[2 * i + 1]);
  return copy;
}

Ref LocateAll(std::size_t size, std::vector<ZBR_PT> points, PyObject* progress, Place place) {
  constexpr std::size_t kEvery = 4096;
  size += points.size();
  return MakeArray<std::int8_t>(Run(size, progress, [place = std::move(place), points = std::move(points)](Monitor& monitor) {
    std::vector<std::int8_t> places(points.size());
    const ZBR_TmpEps hold(drawing::kTolerance);
    for (std::size_t i = 0; i < points.size(); ++i) {
      if (i % kEvery == 0) monitor.TellOrThrow(static_cast<double>(i) / static_cast<double>(points.size()));
      places[i] = place(i, points[i]);
    }
    return places;
  }));
}

// Moments about the first point, where they lose no digits.
ZBR_PT CentroidOf(const ZBR_PT* points, const std::int32_t* rings, std::size_t ringCount) {
  double twice = 0.0, mx = 0.0, my = 0.0;
  const ZBR_PT origin = ringCount == 0 ? ZBR_PT() : points[rings[0]];
  for (std::size_t r = 0; r < ringCount; ++r) {
    const std::int32_t begin = rings[r], end = rings[r + 1];
    for (std::int32_t i = begin; i < end; ++i) {
      const ZBR_PT p = points[i] - origin, q = points[i + 1 < end ? i + 1 : begin] - origin;
      const double cross = p.x() * q.y() - p.y() * q.x();
      twice += cross;
      mx += (p.x() + q.x()) * cross;
      my += (p.y() + q.y()) * cross;
    }
  }
  return {origin.x() + mx / (3.0 * twice), origin.y() + my / (3.0 * twice)};
}

Ref NewRegion(RegionPtr data) {
  return Objects::Make(std::move(data));
}

bool IsRegion(PyObject* object) {
  return Objects::Is(object);
}

const RegionPtr& RegionOf(PyObject* object, const char* name) {
  return Objects::Of(object, name, "a Region is needed (Region.of() makes one of most things)");
}

void AddRegionType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"coords", Coords, nullptr, "(n, 2) float64: the points of all rings, one ring behind the other. A view; read-only.",
       nullptr},
      {"rings", Rings, nullptr,
       "(r + 1,) int32: ring i is coords[rings[i]:rings[i + 1]], not closed; outer ones counter-clockwise.", nullptr},
      {"polygons", Polygons, nullptr,
       "(p + 1,) int32: rings of polygon i are polygons[i] to polygons[i + 1] - 1, the outer one first.", nullptr},
      {"_source_bytes", SourceBytes, nullptr, nullptr, nullptr},
      {"source_offsets", SourceOffsets, nullptr, "(n + 1,) int32: offsets into sources, by point; (1,) where there are none.",
       nullptr},
      {"area", Area, nullptr, "The area, in squares of the unit.", nullptr},
      {"perimeter", Perimeter, nullptr, "The length of all rings.", nullptr},
      {"bounds", Bounds, nullptr, "(xmin, ymin, xmax, ymax); NaN when empty.", nullptr},
      {"centroid", Centroid, nullptr, "The centre of mass (x, y); NaN when empty.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("locate", Locate,
           "locate($self, /, points, *, progress=None)\n--\n\n"
           "(n,) int8: 1 for points in the interior, 0 on the boundary, -1 outside. Points that are not finite are outside."),
      Fast("simplify", Simplify,
           "simplify($self, /, tolerance, *, progress=None)\n--\n\n"
           "The region without points that lie straight between their neighbours within the tolerance, a length; valid."),
      {nullptr, nullptr, 0, nullptr},
  };
  static const PyType_Slot slots[] = {
      {Py_tp_new, reinterpret_cast<void*>(New)},
      {Py_tp_getset, properties},
      {Py_tp_methods, methods},
      {Py_tp_richcompare, reinterpret_cast<void*>(Compare)},
      {Py_tp_hash, reinterpret_cast<void*>(Hash)},
      {Py_mp_length, reinterpret_cast<void*>(Length)},
      {Py_nb_bool, reinterpret_cast<void*>(Truth)},
      {Py_nb_or, reinterpret_cast<void*>(Or)},
      {Py_nb_and, reinterpret_cast<void*>(And)},
      {Py_nb_subtract, reinterpret_cast<void*>(Subtract)},
      {Py_nb_xor, reinterpret_cast<void*>(Xor)},
      {0, nullptr},
  };
  Objects::AddType(module, "Region", "zbr._zbr.Region", slots);
}

}  // namespace zbr::python
