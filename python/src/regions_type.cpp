// The type under zbr.Regions: many regions as one ragged array.
#include "python/src/regions.h"

#include "python/src/calls.h"
#include "python/src/options.h"
#include "python/src/share_out.h"

#include <algorithm>
#include <limits>
#include <new>

namespace zbr::python {
namespace {

using Objects = Holder<RegionList>;

const RegionListPtr& ListOf(PyObject* self) {
  return Objects::Of(self);
}

// Regions `begin` to `end` of the arrays, whose offsets may start anywhere.
RegionList Part(const RingArrays& arrays, const std::vector<std::int32_t>& regions, std::size_t begin, std::size_t end) {
  RegionList list;
  const auto p0 = static_cast<std::size_t>(regions[begin]), p1 = static_cast<std::size_t>(regions[end]);
  const auto r0 = static_cast<std::size_t>(arrays.polygons[p0]), r1 = static_cast<std::size_t>(arrays.polygons[p1]);
  const auto shifted = [](const std::vector<std::int32_t>& from, std::size_t first, std::size_t last,
                          std::vector<std::int32_t>& to) {
    to.clear();
    for (std::size_t i = first; i <= last; ++i) to.push_back(from[i] - from[first]);
  };
  shifted(regions, begin, end, list.regions);
  shifted(arrays.polygons, p0, p1, list.polygons);
  shifted(arrays.rings, r0, r1, list.rings);
  list.points.assign(arrays.points.begin() + arrays.rings[r0], arrays.points.begin() + arrays.rings[r1]);
  return list;
}

// What the rings of each region bound, whatever they do to each other.
RegionList MadeValid(const RegionList& given, ZBR_FILL_RULE fill, unsigned threads, Monitor& monitor) {
  return ShareOut(given.size(), threads, monitor, [&given, fill, &monitor](std::size_t begin, std::size_t end, RegionList& part) {
    ZBR_REGION_OPTIONS options;
    options.fill_a = fill;
    options.progress = [](double, void* m) { return !static_cast<Monitor*>(m)->IsStopped(); };
    options.progress_data = &monitor;
    ZBR_REGION valid;
    for (std::size_t i = begin; i < end; ++i) {
      CheckStatus(MakeValid(given.At(i).view(), valid, options));
      part.Add(valid);
    }
  });
}

PyObject* New(PyTypeObject* type, PyObject* args, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("Regions", {"coords", "rings", "polygons", "regions", "fill", "valid", "threads", "progress"}, 4, args,
                          keywords);
    const ZBR_FILL_RULE rule = FillRule(given.String(4, "evenodd"));
    const bool isValid = given.Truth(5, false);
    const unsigned threads = given.Threads(6);
    if (given.Needed(2) == Py_None) throw BadArgument("polygons", "offsets are needed");
    const RingArrays arrays(given.Needed(0), given.Needed(1), given[2]);
    std::vector<std::int32_t> offsets;
    if (given.OrNull(3) != nullptr) {
      offsets = ReadOffsets(given[3], "regions", arrays.polygons.size() - 1, "polygons");
    } else {  // a polygon is a region
      for (std::size_t p = 0; p < arrays.polygons.size(); ++p) offsets.push_back(static_cast<std::int32_t>(p));
    }
    RegionList list = Part(arrays, offsets, 0, offsets.size() - 1);
    const std::size_t size = list.points.size();
    return Objects::Make(Run(size, given[7],
                             [list = std::move(list), rule, isValid, threads](Monitor& monitor) mutable -> RegionListPtr {
                               if (isValid) return std::make_shared<RegionList>(std::move(list));
                               return std::make_shared<RegionList>(MadeValid(list, rule, threads, monitor));
                             }),
                         type);
  });
}

PyObject* Coords(PyObject* self, void*) noexcept {
  return Guarded([&] {
    return MakeArray(ListOf(self), reinterpret_cast<const double*>(ListOf(self)->points.data()), {ListOf(self)->points.size(), 2});
  });
}

template <std::vector<std::int32_t> RegionList::*Member>
PyObject* Offsets(PyObject* self, void*) noexcept {
  return Guarded([&] { return MakeArray(ListOf(self), ((*ListOf(self)).*Member).data(), {((*ListOf(self)).*Member).size()}); });
}

// Numbers for each region, by function(list, region, row); a single one makes an array of one dimension.
template <class Function>
Ref ForEach(PyObject* self, std::size_t columns, Function function) {
  const RegionListPtr& list = ListOf(self);
  std::vector<double> numbers(list->size() * columns);
  {
    const WithoutGil others;
    for (std::size_t i = 0; i < list->size(); ++i) function(*list, i, numbers.data() + i * columns);
  }
  return MakeArray<double>(std::move(numbers), columns == 1 ? 0 : columns);
}

// The sum of what the function says of each ring.
template <class Function>
Ref SumOfRings(PyObject* self, Function function) {
  return ForEach(self, 1, [function](const RegionList& list, std::size_t i, double* sum) {
    const std::size_t end = list.FirstRing(i + 1);
    for (std::size_t r = list.FirstRing(i); r < end; ++r) {
      const auto first = static_cast<std::size_t>(list.rings[r]);
      *sum += function(list.points.data() + first, static_cast<std::size_t>(list.rings[r + 1]) - first);
    }
  });
}

PyObject* Areas(PyObject* self, void*) noexcept {
  return Guarded([&] {
    return SumOfRings(self, [](const ZBR_PT* p, std::size_t n) {
      double twice = 0.0;
      for (std::size_t i = 1; i + 1 < n; ++i) {
        const ZBR_PT u = p[i] - p[0], v = p[i + 1] - p[0];
        twice += u.x() * v.y() - u.y() * v.x();
      }
      return twice / 2.0;
    });
  });
}

PyObject* Perimeters(PyObject* self, void*) noexcept {
  return Guarded([&] {
    return SumOfRings(self, [](const ZBR_PT* p, std::size_t n) {
      double sum = 0.0;
      for (std::size_t i = 0; i < n; ++i) sum += p[i].Distance(p[i + 1 < n ? i + 1 : 0]);
      return sum;
    });
  });
}

PyObject* Bounds(PyObject* self, void*) noexcept {
  return Guarded([&] {
    return ForEach(self, 4, [](const RegionList& list, std::size_t i, double* box) {
      drawing::Extent extent;
      for (std::size_t k = list.FirstPoint(i); k < list.FirstPoint(i + 1); ++k) extent.Add(list.points[k]);
      const bool isEmpty = list.FirstPoint(i) == list.FirstPoint(i + 1);
      const double bounds[] = {extent.xmin, extent.ymin, extent.xmax, extent.ymax};
      for (int k = 0; k < 4; ++k) box[k] = isEmpty ? std::numeric_limits<double>::quiet_NaN() : bounds[k];
    });
  });
}

PyObject* Centroids(PyObject* self, void*) noexcept {
  return Guarded([&] {
    return ForEach(self, 2, [](const RegionList& list, std::size_t i, double* xy) {
      const std::size_t ring = list.FirstRing(i);
      const ZBR_PT centroid = CentroidOf(list.points.data(), list.rings.data() + ring, list.FirstRing(i + 1) - ring);
      xy[0] = centroid.x();
      xy[1] = centroid.y();
    });
  });
}

// Of one point for each region, or of one for all.
PyObject* Locate(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("locate", {"points", "progress"}, 1, args, count, keywords);
    const RegionListPtr list = ListOf(self);
    std::vector<ZBR_PT> points = PointsOf(given.Needed(0), given[1]);
    if (points.size() == 1) points.resize(list->size(), points.front());
    if (points.size() != list->size())
      throw BadArgument("points", "one for each of " + std::to_string(list->size()) + " regions is needed, or one for all, not " +
                                      std::to_string(points.size()));
    return LocateAll(list->points.size(), std::move(points), given[1],
                     [list](std::size_t i, const ZBR_PT& p) { return Locator(list->At(i)).Locate(p); });
  });
}

Py_ssize_t Length(PyObject* self) noexcept {
  return static_cast<Py_ssize_t>(ListOf(self)->size());
}

PyObject* Item(PyObject* self, Py_ssize_t index) noexcept {
  return Guarded([&] {
    if (index < 0 || index >= Length(self)) {
      PyErr_SetString(PyExc_IndexError, "there are fewer regions");
      throw PythonError();
    }
    const auto data = std::make_shared<RegionData>();
    data->region = ListOf(self)->At(static_cast<std::size_t>(index));
    return NewRegion(data);
  });
}

PyObject* Concatenate(PyObject*, PyObject* regions) noexcept {
  return Guarded([&] {
    const auto list = std::make_shared<RegionList>();
    ForEachItem(regions, "regions", [&](PyObject* item) {
      if (IsRegions(item)) {
        list->Add(*ListOf(item));
      } else {
        list->Add(RegionOf(item, "regions")->region);
      }
    });
    return NewRegions(list);
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

void AppendShifted(std::vector<std::int32_t>& to, const std::vector<std::int32_t>& from, std::size_t by) {
  constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
  if (from.empty()) return;
  if (by + static_cast<std::size_t>(from.back()) > kMost)
    throw BadArgument("result", "more than 2^31 - 1 points; take parts of the regions");
  for (std::size_t i = 1; i < from.size(); ++i) to.push_back(static_cast<std::int32_t>(by) + from[i]);
}

}  // namespace

void RegionList::Add(const ZBR_REGION& region) {
  AppendShifted(rings, region.ring_offsets(), points.size());
  AppendShifted(polygons, region.polygon_offsets(), static_cast<std::size_t>(polygons.back()));
  regions.push_back(static_cast<std::int32_t>(polygons.size() - 1));
  points.insert(points.end(), region.points().begin(), region.points().end());
}

void RegionList::Add(const RegionList& more) {
  AppendShifted(rings, more.rings, points.size());
  AppendShifted(regions, more.regions, polygons.size() - 1);
  AppendShifted(polygons, more.polygons, static_cast<std::size_t>(polygons.back()));
  points.insert(points.end(), more.points.begin(), more.points.end());
}

ZBR_REGION RegionList::At(std::size_t region) const {
  ZBR_REGION result;
  for (auto p = static_cast<std::size_t>(regions[region]); p < static_cast<std::size_t>(regions[region + 1]); ++p) {
    for (std::int32_t r = polygons[p]; r < polygons[p + 1]; ++r) {
      const auto first = static_cast<std::size_t>(rings[static_cast<std::size_t>(r)]);
      result.AddRing(points.data() + first, static_cast<std::size_t>(rings[static_cast<std::size_t>(r) + 1]) - first,
                     r == polygons[p]);
    }
  }
  return result;
}

Ref NewRegions(RegionListPtr list) {
  return Objects::Make(std::move(list));
}

bool IsRegions(PyObject* object) {
  return Objects::Is(object);
}

const RegionListPtr& RegionsOf(PyObject* object, const char* name) {
  return Objects::Of(object, name, "Regions are needed (Regions.of() makes them of a list)");
}

void AddRegionsType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"coords", Coords, nullptr, "(n, 2) float64: the points of all rings. A view; read-only.", nullptr},
      {"rings", Offsets<&RegionList::rings>, nullptr, "int32: offsets of rings into coords, from 0.", nullptr},
      {"polygons", Offsets<&RegionList::polygons>, nullptr, "int32: offsets of polygons into rings, from 0.", nullptr},
      {"regions", Offsets<&RegionList::regions>, nullptr, "int32: offsets of regions into polygons, from 0.", nullptr},
      {"area", Areas, nullptr, "(m,) float64: the area of each region.", nullptr},
      {"perimeter", Perimeters, nullptr, "(m,) float64: the length of the rings of each region.", nullptr},
      {"bounds", Bounds, nullptr, "(m, 4) float64: xmin, ymin, xmax, ymax of each region; NaN of empty ones.", nullptr},
      {"centroid", Centroids, nullptr, "(m, 2) float64: the centre of mass of each region; NaN of empty ones.", nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("locate", Locate,
           "locate($self, /, points, *, progress=None)\n--\n\n"
           "(m,) int8: 1 where point i of points (m, 2) lies in the interior of region i, 0 on its boundary, -1 outside; a single "
           "point (1, 2) is looked for in each."),
      {"_concatenate", Concatenate, METH_O | METH_STATIC, nullptr},
      {nullptr, nullptr, 0, nullptr},
  };
  static const PyType_Slot slots[] = {
      {Py_tp_new, reinterpret_cast<void*>(New)},
      {Py_tp_getset, properties},
      {Py_tp_methods, methods},
      {Py_sq_length, reinterpret_cast<void*>(Length)},
      {Py_sq_item, reinterpret_cast<void*>(Item)},
      {Py_nb_or, reinterpret_cast<void*>(Or)},
      {Py_nb_and, reinterpret_cast<void*>(And)},
      {Py_nb_subtract, reinterpret_cast<void*>(Subtract)},
      {Py_nb_xor, reinterpret_cast<void*>(Xor)},
      {0, nullptr},
  };
  Objects::AddType(module, "Regions", "zbr._zbr.Regions", slots);
}

}  // namespace zbr::python
