// Functions of the module that combine, unite and check regions.
#include "python/src/calls.h"
#include "python/src/options.h"
#include "python/src/regions.h"
#include "python/src/share_out.h"

#include <zbr-drawing/region.h>

#include <array>
#include <cstring>
#include <string>

namespace zbr::python {
namespace {

ZBR_BOOLEAN_OPE OpOf(PyObject* object) {
  static const struct {
    const char* name;
    ZBR_BOOLEAN_OPE op;
  } kOps[] = {
      {"union", ZBR_BOOL_OR},      {"intersection", ZBR_BOOL_AND}, {"difference", ZBR_BOOL_A_MINUS_B},
      {"a-b", ZBR_BOOL_A_MINUS_B}, {"b-a", ZBR_BOOL_B_MINUS_A},    {"xor", ZBR_BOOL_XOR},
  };
  for (const auto& known : kOps) {
    if (PyUnicode_Check(object) != 0 && PyUnicode_CompareWithASCIIString(object, known.name) == 0) return known.op;
  }
  throw BadArgument("op", "one of union, intersection, difference, b-a and xor is needed");
}

ZBR_REGION_OPTIONS Telling(ZBR_REGION_OPTIONS options, Monitor& monitor) {
  options.progress = Monitor::Tell;
  options.progress_data = &monitor;
  return options;
}

Ref CombineTwo(const RegionPtr& a, const RegionPtr& b, ZBR_BOOLEAN_OPE op, const ZBR_REGION_OPTIONS& options, PyObject* progress) {
  const auto result = std::make_shared<RegionData>();
  return NewRegion(
      Run(a->region.point_count() + b->region.point_count(), progress, [a, b, op, options, result](Monitor& monitor) -> RegionPtr {
        CheckStatus(zbrCombineRegions(a->region.view(), b->region.view(), &op, &result->region, 1, Telling(options, monitor)));
        return result;
      }));
}

// One side of a batch: regions of a list, or the same one again and again.
class Side {
 public:
  Side(PyObject* object, const char* name) {
    if (IsRegions(object)) {
      list_ = RegionsOf(object, name);
    } else {
      one_ = RegionOf(object, name);
    }
  }

  bool IsList() const { return list_ != nullptr; }
  std::size_t Size() const { return list_->size(); }
  std::size_t PointCount() const { return list_ ? list_->points.size() : one_->region.point_count(); }
  // Views of regions begin to end, valid as long as `offsets` is not touched.
  std::vector<ZBR_REGION_VIEW> Views(std::size_t begin, std::size_t end, std::vector<std::int32_t>& offsets) const {
    if (!list_) return std::vector<ZBR_REGION_VIEW>(end - begin, one_->region.view());
    std::vector<ZBR_REGION_VIEW> views(end - begin);
    offsets.clear();
    offsets.reserve(list_->FirstRing(end) - list_->FirstRing(begin) + (end - begin));
    for (std::size_t i = begin; i < end; ++i) {
      ZBR_REGION_VIEW& view = views[i - begin];
      const std::size_t ring = list_->FirstRing(i), point = list_->FirstPoint(i);
      view.ring_count = list_->FirstRing(i + 1) - ring;
      view.xy = reinterpret_cast<const double*>(list_->points.data() + point);
      view.ring_offsets = offsets.data() + offsets.size();
      for (std::size_t r = 0; r <= view.ring_count; ++r) offsets.push_back(list_->rings[ring + r] - list_->rings[ring]);
      view.point_count = static_cast<std::size_t>(offsets.back());
    }
    return views;
  }

 private:
  RegionListPtr list_;
  RegionPtr one_;
};

Ref CombineMany(PyObject* first, PyObject* second, ZBR_BOOLEAN_OPE op, ZBR_REGION_OPTIONS options, unsigned threads,
                PyObject* progress) {
  const Side a(first, "a"), b(second, "b");
  if (a.IsList() && b.IsList() && a.Size() != b.Size())
    throw BadArgument("b", std::to_string(b.Size()) + " regions, but " + std::to_string(a.Size()) + " in a");
  const std::size_t count = a.IsList() ? a.Size() : b.Size();
  return NewRegions(
      Run(a.PointCount() + b.PointCount(), progress, [a, b, op, options, threads, count](Monitor& monitor) -> RegionListPtr {
        const auto work = [&](std::size_t begin, std::size_t end, RegionList& part) {
          std::vector<std::int32_t> offsetsA, offsetsB;
          const auto viewsA = a.Views(begin, end, offsetsA), viewsB = b.Views(begin, end, offsetsB);
          std::vector<ZBR_REGION> results(end - begin);
          ZBR_REGION_OPTIONS asking = options;
          asking.progress = [](double, void* m) { return !static_cast<Monitor*>(m)->IsStopped(); };
          asking.progress_data = &monitor;
          CheckStatus(zbrCombineRegionPairs(viewsA.data(), viewsB.data(), end - begin, op, results.data(), asking));
          for (const ZBR_REGION& result : results) part.Add(result);
        };
        return std::make_shared<RegionList>(ShareOut(count, threads, monitor, work));
      }));
}

PyObject* Combine(const char* function, ZBR_BOOLEAN_OPE op, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    if (count == 2 && keywords == nullptr && IsRegion(args[0]) && IsRegion(args[1]))
      return CombineTwo(RegionOf(args[0], "a"), RegionOf(args[1], "b"), op, {}, nullptr);
    const Arguments given(function, {"a", "b", "tolerance", "sources", "canonical", "threads", "progress"}, 2, args, count,
                          keywords);
    ZBR_REGION_OPTIONS options;
    options.tolerance = given.Number(2, 0.0, 0.0);
    options.sources = given.Truth(3, false);
    options.canonical = given.Truth(4, false);
    const unsigned threads = given.Threads(5);
    if (!IsRegions(given.Needed(0)) && !IsRegions(given.Needed(1)))
      return CombineTwo(RegionOf(given[0], "a"), RegionOf(given[1], "b"), op, options, given[6]);
    if (options.sources) throw BadArgument("sources", "only for two single regions");
    return CombineMany(given[0], given[1], op, options, threads, given[6]);
  });
}

PyObject* Union(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Combine("union", ZBR_BOOL_OR, args, count, keywords);
}
PyObject* Intersection(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Combine("intersection", ZBR_BOOL_AND, args, count, keywords);
}
PyObject* Difference(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Combine("difference", ZBR_BOOL_A_MINUS_B, args, count, keywords);
}
PyObject* SymmetricDifference(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Combine("xor", ZBR_BOOL_XOR, args, count, keywords);
}

// Several operations by one search.
PyObject* CombineAll(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("combine", {"a", "b", "ops", "tolerance", "sources", "canonical", "progress"}, 3, args, count, keywords);
    const RegionPtr a = RegionOf(given.Needed(0), "a"), b = RegionOf(given.Needed(1), "b");
    std::vector<ZBR_BOOLEAN_OPE> ops;
    ForEachItem(given.Needed(2), "ops", [&ops](PyObject* op) { ops.push_back(OpOf(op)); });
    ZBR_REGION_OPTIONS options;
    options.tolerance = given.Number(3, 0.0, 0.0);
    options.sources = given.Truth(4, false);
    options.canonical = given.Truth(5, false);
    using Results = std::vector<RegionPtr>;
    const auto work = [a, b, ops, options](Monitor& monitor) {
      std::vector<ZBR_REGION> formed(ops.size());
      CheckStatus(zbrCombineRegions(a->region.view(), b->region.view(), ops.data(), formed.data(), static_cast<int>(ops.size()),
                                    Telling(options, monitor)));
      Results results;
      for (ZBR_REGION& region : formed) {
        const auto data = std::make_shared<RegionData>();
        data->region = std::move(region);
        results.push_back(data);
      }
      return results;
    };
    const Results results = Run(a->region.point_count() + b->region.point_count(), given[6], work);
    Ref tuple = Ref::Own(PyTuple_New(static_cast<Py_ssize_t>(results.size())));
    for (std::size_t i = 0; i < results.size(); ++i) {
      if (PyTuple_SetItem(tuple.get(), static_cast<Py_ssize_t>(i), NewRegion(results[i]).release()) != 0) throw PythonError();
    }
    return tuple;
  });
}

// What at least `times` of many regions cover.
PyObject* Cover(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("coverage", {"regions", "times", "tolerance", "canonical", "progress"}, 2, args, count, keywords);
    const Side many(given.Needed(0), "regions");
    if (!many.IsList()) throw BadType("regions", "Regions are needed");
    const auto times = static_cast<int>(given.Integer(1, 1, 1, 2147483647));
    ZBR_REGION_OPTIONS options;
    options.tolerance = given.Number(2, 0.0, 0.0);
    options.canonical = given.Truth(3, false);
    return NewRegion(Run(many.PointCount(), given[4], [many, times, options](Monitor& monitor) -> RegionPtr {
      const auto data = std::make_shared<RegionData>();
      std::vector<std::int32_t> offsets;
      const auto views = many.Views(0, many.Size(), offsets);
      CheckStatus(zbrCoverRegions(views.data(), views.size(), times, data->region, Telling(options, monitor)));
      return data;
    }));
  });
}

// The cells that lines cut the plane into.
PyObject* Faces(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("faces", {"coords", "lines", "tolerance", "progress"}, 2, args, count, keywords);
    RingArrays arrays(given.Needed(0), given[1], nullptr, "lines");
    ZBR_REGION_OPTIONS options;
    options.tolerance = given.Number(2, 0.0, 0.0);
    options.canonical = true;
    const std::size_t size = arrays.points.size();
    return NewRegions(Run(size, given[3], [arrays = std::move(arrays), options](Monitor& monitor) -> RegionListPtr {
      ZBR_REGION cells;
      CheckStatus(zbrTraceFaces(arrays.view(), cells, Telling(options, monitor)));
      RegionList list;
      list.Add(cells);
      list.regions.clear();  // each cell is a region
      for (std::size_t p = 0; p <= cells.polygon_count(); ++p) list.regions.push_back(static_cast<std::int32_t>(p));
      return std::make_shared<RegionList>(std::move(list));
    }));
  });
}

// Faults as tuples (kind, x, y, ring_a, edge_a, ring_b, edge_b).
PyObject* Check(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("check", {"coords", "rings", "most"}, 2, args, count, keywords);
    RingArrays arrays(given.Needed(0), given[1], nullptr);
    const auto most = static_cast<std::size_t>(given.Integer(2, 1000000, 1, 2147483647));
    const std::size_t size = arrays.points.size();
    const auto faults = Run(size, nullptr, [arrays = std::move(arrays), most](Monitor&) {
      std::vector<ZBR_REGION_FAULT> found;
      CheckStatus(zbrCheckRegion(arrays.view(), found, most));
      return found;
    });
    Ref list = Ref::Own(PyList_New(0));
    for (const ZBR_REGION_FAULT& f : faults) {
      const Ref item = Ref::Own(
          Py_BuildValue("(sddiiii)", drawing::NameOf(f.kind), f.place.x(), f.place.y(), f.ring_a, f.edge_a, f.ring_b, f.edge_b));
      if (PyList_Append(list.get(), item.get()) != 0) throw PythonError();
    }
    return list;
  });
}

}  // namespace

PyObject* Operate(PyObject* a, PyObject* b, ZBR_BOOLEAN_OPE op) noexcept {
  if ((!IsRegion(a) && !IsRegions(a)) || (!IsRegion(b) && !IsRegions(b))) {
    Py_INCREF(Py_NotImplemented);
    return Py_NotImplemented;
  }
  return Guarded([&] {
    if (IsRegion(a) && IsRegion(b)) return CombineTwo(RegionOf(a, "a"), RegionOf(b, "b"), op, {}, nullptr);
    return CombineMany(a, b, op, {}, 1, nullptr);
  });
}

// What the options of all four operations are.
#define ZBR_DOC_OF_OPTIONS                                                                                                         \
  " Of two Region, or pair by pair of Regions, or of Regions and one Region.\n\n"                                                  \
  "tolerance: what is closer is one place, a length; 0: about 1e-12 of the extent. sources: tell where edges come from, for two "  \
  "single regions. canonical: rings start at their lowest leftmost points and are ordered by these. threads: for Regions; 0: one " \
  "for each processor. progress(share): called now and then; False ends the call. Raises ValueError, TypeError, Cancelled."

void AddRegionFunctions(PyObject* module) {
  static PyMethodDef functions[] = {
      Fast("union", Union,
           "union(a, b, /, *, tolerance=0.0, sources=False, canonical=False, threads=1, progress=None)\n--\n\nWhat lies in a or "
           "b." ZBR_DOC_OF_OPTIONS),
      Fast("intersection", Intersection,
           "intersection(a, b, /, *, tolerance=0.0, sources=False, canonical=False, threads=1, progress=None)\n--\n\nWhat lies in "
           "both a and b." ZBR_DOC_OF_OPTIONS),
      Fast("difference", Difference,
           "difference(a, b, /, *, tolerance=0.0, sources=False, canonical=False, threads=1, progress=None)\n--\n\nWhat lies in a "
           "and not in b." ZBR_DOC_OF_OPTIONS),
      Fast("xor", SymmetricDifference,
           "xor(a, b, /, *, tolerance=0.0, sources=False, canonical=False, threads=1, progress=None)\n--\n\nWhat lies in one of a "
           "and b, not in both." ZBR_DOC_OF_OPTIONS),
      Fast("combine", CombineAll,
           "combine(a, b, ops, *, tolerance=0.0, sources=False, canonical=False, progress=None)\n--\n\n"
           "A tuple of results, one for each of ops (union, intersection, difference, b-a, xor), by one search. Options are those "
           "of "
           "union()."),
      Fast("coverage", Cover, nullptr),
      Fast("faces", Faces,
           "faces(coords, lines=None, *, tolerance=0.0, progress=None)\n--\n\n"
           "The cells that lines cut the plane into, as Regions. coords (n, 2), lines: offsets into them; lines may cross, touch "
           "and "
           "overlap, and are open unless the last point repeats the first."),
      Fast("check", Check, nullptr),
      {nullptr, nullptr, 0, nullptr},
  };
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
