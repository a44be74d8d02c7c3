// Regions to and from other programs' columns of polygons: GeoArrow's layouts, through the capsules of the Arrow C data interface.
//
// Out: multipolygons with interleaved coordinates, whose rings are closed, as GeoArrow wants them; so points are copied once. In:
// polygons and multipolygons, lists of either size, coordinates interleaved or in columns, of any slice of an array.
#include "python/src/modules.h"
#include "python/src/options.h"
#include "python/src/regions.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The interface's records, which are the same everywhere.
extern "C" {
struct ArrowSchema {
  const char* format;
  const char* name;
  const char* metadata;
  std::int64_t flags;
  std::int64_t n_children;
  ArrowSchema** children;
  ArrowSchema* dictionary;
  void (*release)(ArrowSchema*);
  void* private_data;
};
struct ArrowArray {
  std::int64_t length;
  std::int64_t null_count;
  std::int64_t offset;
  std::int64_t n_buffers;
  std::int64_t n_children;
  const void** buffers;
  ArrowArray** children;
  ArrowArray* dictionary;
  void (*release)(ArrowArray*);
  void* private_data;
};
}

namespace zbr::python {
namespace {

constexpr const char* kArgument = "regions";
constexpr const char* kSchemaCapsule = "arrow_schema";
constexpr const char* kArrayCapsule = "arrow_array";
constexpr const char* kExtension = "ARROW:extension:name";
constexpr const char* kPolygon = "geoarrow.polygon";
constexpr const char* kMultiPolygon = "geoarrow.multipolygon";

// From the outermost level to numbers.
struct Level {
  const char* name;
  const char* format;
};
constexpr std::array<Level, 5> kLevels = {{{"", "+l"}, {"polygons", "+l"}, {"rings", "+l"}, {"vertices", "+w:2"}, {"xy", "g"}}};

// Regions with closed rings.
struct Closed {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> rings{0};
  RegionListPtr list;  // whose other offsets serve as they are

  explicit Closed(RegionListPtr of) : list(std::move(of)) {
    points.reserve(list->points.size() + list->rings.size());
    for (std::size_t r = 0; r + 1 < list->rings.size(); ++r) {
      const auto begin = list->points.begin() + list->rings[r], end = list->points.begin() + list->rings[r + 1];
      points.insert(points.end(), begin, end);
      if (begin != end) points.push_back(*begin);
      if (points.size() > static_cast<std::size_t>(INT32_MAX)) throw BadArgument(kArgument, "too many points for Arrow's offsets");
      rings.push_back(static_cast<std::int32_t>(points.size()));
    }
  }

  // Of a level: how many items, and where its offsets or numbers are.
  std::int64_t Length(std::size_t level) const {
    const std::array<std::size_t, 5> lengths = {list->size(), list->polygons.size() - 1, rings.size() - 1, points.size(),
                                                2 * points.size()};
    return static_cast<std::int64_t>(lengths[level]);
  }
  const void* Buffer(std::size_t level) const {
    switch (level) {
      case 0:
        return list->regions.data();
      case 1:
        return list->polygons.data();
      case 2:
        return rings.data();
      case 3:
        return nullptr;  // points, which have children only
      default:
        return points.data();
    }
  }
};

// What a level of an exported record owns: the next one, which may be moved away and released on its own.
template <class Record>
struct Owned {
  Record child{};
  Record* children[1] = {&child};
  const void* buffers[2] = {nullptr, nullptr};
  std::string metadata;
  std::shared_ptr<const Closed> data;
};

template <class Record>
void Release(Record* record) {
  auto* const owned = static_cast<Owned<Record>*>(record->private_data);
  if (record->n_children > 0 && owned->child.release != nullptr) owned->child.release(&owned->child);
  delete owned;
  record->release = nullptr;
}

void Append(std::string& to, std::string_view text) {
  const auto size = static_cast<std::int32_t>(text.size());
  to.append(reinterpret_cast<const char*>(&size), sizeof size).append(text);
}

void Fill(ArrowSchema& schema, std::size_t level) {
  auto owned = std::make_unique<Owned<ArrowSchema>>();
  if (level == 0) {
    const std::int32_t count = 1;
    owned->metadata.assign(reinterpret_cast<const char*>(&count), sizeof count);
    Append(owned->metadata, kExtension);
    Append(owned->metadata, kMultiPolygon);
  }
  if (level + 1 < kLevels.size()) Fill(owned->child, level + 1);
  schema = {kLevels[level].format,
            kLevels[level].name,
            level == 0 ? owned->metadata.c_str() : nullptr,
            0,
            level + 1 < kLevels.size() ? 1 : 0,
            owned->children,
            nullptr,
            Release<ArrowSchema>,
            nullptr};
  schema.private_data = owned.release();
}

void Fill(ArrowArray& array, std::size_t level, const std::shared_ptr<const Closed>& data) {
  auto owned = std::make_unique<Owned<ArrowArray>>();
  owned->data = data;
  owned->buffers[1] = data->Buffer(level);
  if (level + 1 < kLevels.size()) Fill(owned->child, level + 1, data);
  const bool isFixed = kLevels[level].format[1] == 'w';  // has no offsets
  array = {
      data->Length(level), 0,      0, isFixed ? 1 : 2, level + 1 < kLevels.size() ? 1 : 0, owned->buffers, owned->children, nullptr,
      Release<ArrowArray>, nullptr};
  array.private_data = owned.release();
}

template <class Record>
void DropCapsule(PyObject* capsule) {
  auto* const record = static_cast<Record*>(PyCapsule_GetPointer(capsule, PyCapsule_GetName(capsule)));
  if (record->release != nullptr) record->release(record);
  delete record;
}

template <class Record, class... Rest>
Ref Capsule(const char* name, const Rest&... rest) {
  auto record = std::make_unique<Record>();
  Fill(*record, 0, rest...);
  PyObject* const capsule = PyCapsule_New(record.get(), name, DropCapsule<Record>);
  if (capsule == nullptr) record->release(record.get());
  Ref kept = Ref::Own(capsule);
  (void)record.release();
  return kept;
}

template <class Record>
const Record& Held(PyObject* capsule, const char* name) {
  const void* const record = PyCapsule_IsValid(capsule, name) != 0 ? PyCapsule_GetPointer(capsule, name) : nullptr;
  if (record == nullptr || static_cast<const Record*>(record)->release == nullptr)
    throw BadType(kArgument, std::string("a capsule ") + name + " is needed, not used before");
  return *static_cast<const Record*>(record);
}

// What a schema says its lists are; empty if it does not.
std::string ExtensionOf(const ArrowSchema& schema) {
  const char* at = schema.metadata;
  if (at == nullptr) return {};
  const auto number = [&at] {
    std::int32_t value = 0;
    std::memcpy(&value, at, sizeof value);
    at += sizeof value;
    return value;
  };
  const auto text = [&] {
    const std::int32_t size = number();
    at += size;
    return std::string(at - size, at);
  };
  for (std::int32_t left = number(); left > 0; --left) {
    const std::string key = text();
    std::string value = text();
    if (key == kExtension) return value;
  }
  return {};
}

// Reads an array level by level: the items that the level above refers to.
class Reading {
 public:
  Reading(const ArrowSchema& schema, const ArrowArray& array) : schema_(&schema), array_(&array) {
    for (const ArrowSchema* s = schema_; IsList(*s); s = s->children[0]) ++depth_;
    const std::string extension = ExtensionOf(schema);  // lists of lists of points may be lines, too
    const bool isKnown = extension.empty() || extension == (depth_ == 2 ? kPolygon : kMultiPolygon);
    if (depth_ < 2 || depth_ > 3 || !isKnown) throw BadArgument(kArgument, "an Arrow array of polygons or multipolygons is needed");
    end_ = array.length;
  }

  std::size_t depth() const { return depth_; }

  // The offsets of a level of lists, from 0; goes on to what they divide.
  std::vector<std::int32_t> Offsets() {
    CheckNulls(*array_, begin_, end_);
    const auto at = [this, isLarge = schema_->format[1] == 'L'](std::int64_t i) {
      const void* const offsets = array_->buffers[1];
      return isLarge ? static_cast<const std::int64_t*>(offsets)[i] : std::int64_t{static_cast<const std::int32_t*>(offsets)[i]};
    };
    std::vector<std::int32_t> result{0};
    const std::int64_t first = begin_ + array_->offset, last = end_ + array_->offset;
    const ArrowArray& child = *array_->children[0];
    const std::int64_t from = first == last ? 0 : at(first);
    std::int64_t before = from;
    for (std::int64_t i = first + 1; i <= last; ++i) {
      const std::int64_t next = at(i);
      if (from < 0 || next < before || next > child.length || next - from > INT32_MAX)
        throw BadArgument(kArgument, "offsets of the Arrow array descend, lead beyond its items, or are too large");
      result.push_back(static_cast<std::int32_t>(next - from));
      before = next;
    }
    begin_ = from;
    end_ = before;
    schema_ = schema_->children[0];
    array_ = &child;
    isInner_ = true;
    return result;
  }

  std::vector<double> Coordinates() const {
    CheckNulls(*array_, begin_, end_);
    const std::string_view format = schema_->format;
    std::vector<double> xy;
    if (format.size() == 4 && format.substr(0, 3) == "+w:" && std::string_view(schema_->children[0]->format) == "g") {
      const std::int64_t width = format[3] - '0';
      if (width < 2 || width > 9) throw BadArgument(kArgument, "coordinates of the Arrow array are no points");
      const double* const numbers = Numbers(*array_->children[0]);
      CheckNulls(*array_->children[0], width * (begin_ + array_->offset), width * (end_ + array_->offset));
      for (std::int64_t i = begin_ + array_->offset; i < end_ + array_->offset; ++i)
        xy.insert(xy.end(), {numbers[width * i], numbers[width * i + 1]});
      return xy;
    }
    const bool isStruct = format == "+s" && schema_->n_children >= 2 && std::string_view(schema_->children[0]->format) == "g" &&
                          std::string_view(schema_->children[1]->format) == "g";
    if (!isStruct) throw BadArgument(kArgument, "coordinates of the Arrow array are no points");
    const double *const x = Numbers(*array_->children[0]), *const y = Numbers(*array_->children[1]);
    for (int axis = 0; axis < 2; ++axis) CheckNulls(*array_->children[axis], begin_ + array_->offset, end_ + array_->offset);
    for (std::int64_t i = begin_ + array_->offset; i < end_ + array_->offset; ++i) xy.insert(xy.end(), {x[i], y[i]});
    return xy;
  }

 private:
  static bool IsList(const ArrowSchema& schema) {
    return schema.n_children == 1 && (std::string_view(schema.format) == "+l" || std::string_view(schema.format) == "+L");
  }
  static const double* Numbers(const ArrowArray& array) { return static_cast<const double*>(array.buffers[1]) + array.offset; }

  // Nothing says what a null would be, on any level.
  void CheckNulls(const ArrowArray& array, std::int64_t begin, std::int64_t end) const {
    const auto* const valid = static_cast<const std::uint8_t*>(array.buffers[0]);
    for (std::int64_t i = begin; valid != nullptr && array.null_count != 0 && i < end; ++i) {
      const std::int64_t bit = i + array.offset;
      if ((valid[bit / 8] >> (bit % 8) & 1) == 0)
        throw BadArgument(kArgument, (isInner_ ? "part " : "item ") + std::to_string(i) + " is null");
    }
  }

  const ArrowSchema* schema_;
  const ArrowArray* array_;
  std::size_t depth_ = 0;
  bool isInner_ = false;  // within the items
  std::int64_t begin_ = 0, end_ = 0;
};

// Regions as capsules (schema, array).
PyObject* Export(PyObject*, PyObject* regions) noexcept {
  return Guarded([&] {
    const auto data = std::make_shared<const Closed>(RegionsOf(regions, kArgument));
    const Ref schema = Capsule<ArrowSchema>(kSchemaCapsule), array = Capsule<ArrowArray>(kArrayCapsule, data);
    return Ref::Own(PyTuple_Pack(2, schema.get(), array.get()));
  });
}

PyObject* ExportSchema(PyObject*, PyObject*) noexcept {
  return Guarded([] { return Capsule<ArrowSchema>(kSchemaCapsule); });
}

// (coordinates, offsets of rings, of polygons, of regions) of capsules (schema, array).
PyObject* Import(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("arrays_of_arrow", {"schema", "array"}, 2, args, count, keywords);
    Reading reading(Held<ArrowSchema>(given.Needed(0), kSchemaCapsule), Held<ArrowArray>(given.Needed(1), kArrayCapsule));
    const bool isMulti = reading.depth() == 3;
    std::vector<std::int32_t> regions = isMulti ? reading.Offsets() : std::vector<std::int32_t>();
    std::vector<std::int32_t> polygons = reading.Offsets(), rings = reading.Offsets();
    for (std::size_t p = 0; !isMulti && p < polygons.size(); ++p) regions.push_back(static_cast<std::int32_t>(p));
    const Ref xy = MakeArray<double>(reading.Coordinates(), 2), r = MakeArray<std::int32_t>(std::move(rings)),
              p = MakeArray<std::int32_t>(std::move(polygons)), n = MakeArray<std::int32_t>(std::move(regions));
    return Ref::Own(PyTuple_Pack(4, xy.get(), r.get(), p.get(), n.get()));
  });
}

}  // namespace

void AddArrowFunctions(PyObject* module) {
  static PyMethodDef functions[] = {
      {"arrow_of", Export, METH_O, nullptr},
      {"arrow_schema", ExportSchema, METH_NOARGS, nullptr},
      Fast("arrays_of_arrow", Import, nullptr),
      {nullptr, nullptr, 0, nullptr},
  };
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
