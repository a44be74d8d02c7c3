// Region and Regions as Python has them: objects that share what they hold, and never change it.
#pragma once

#include "python/src/arrays.h"
#include "python/src/holder.h"
#include "python/src/refs.h"

#include <zbr-drawing/frame.h>
#include <zbr/loop.h>
#include <zbr/region.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace zbr::python {

// Points of one region, located in a frame that suits the region.
class Locator {
 public:
  explicit Locator(const ZBR_REGION& region);
  // 1 inside, 0 on the boundary, -1 outside.
  std::int8_t Locate(const ZBR_PT& p) const;

 private:
  drawing::Frame frame_;
  ZBR_LOOP_LOCATOR locator_;
};

struct RegionData {
  ZBR_REGION region;

  // Made when first needed. Any thread.
  const Locator& TheLocator() const;

 private:
  mutable std::once_flag once_;
  mutable std::optional<Locator> locator_;
};
using RegionPtr = std::shared_ptr<const RegionData>;

// Many regions one behind the other. Offsets start with 0.
struct RegionList {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> rings{0};     // into the points
  std::vector<std::int32_t> polygons{0};  // into the rings
  std::vector<std::int32_t> regions{0};   // into the polygons

  std::size_t size() const { return regions.size() - 1; }
  std::size_t FirstRing(std::size_t region) const {
    return static_cast<std::size_t>(polygons[static_cast<std::size_t>(regions[region])]);
  }
  std::size_t FirstPoint(std::size_t region) const { return static_cast<std::size_t>(rings[FirstRing(region)]); }
  // Throws, as for lack of memory, when there is no room for more points or rings.
  void Add(const ZBR_REGION& region);
  void Add(const RegionList& more);
  ZBR_REGION At(std::size_t region) const;
};
using RegionListPtr = std::shared_ptr<const RegionList>;

// New references. Objects are of the classes that the package made of the types here.
Ref NewRegion(RegionPtr data);
Ref NewRegions(RegionListPtr list);

bool IsRegion(PyObject* object);
bool IsRegions(PyObject* object);
// Throws unless it is one; `name` is the argument's.
const RegionPtr& RegionOf(PyObject* object, const char* name);
const RegionListPtr& RegionsOf(PyObject* object, const char* name);

// Throws when the call failed for another reason than that it was stopped.
void CheckStatus(const ZBR_REGION_STATUS& status);

// Arrays as given by the caller, checked: offsets ascend and stay within, coordinates are finite and below 1e150.
struct RingArrays {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> rings;
  std::vector<std::int32_t> polygons;  // empty: none given

  RingArrays(PyObject* coords, PyObject* ringOffsets, PyObject* polygonOffsets, const char* ringArgument = "rings");
  ZBR_REGION_VIEW view() const;
};

// What the rings bound by options.fill_a, valid; what is so already stays as it is, and takes a search only.
ZBR_REGION_STATUS MakeValid(const ZBR_REGION_VIEW& rings, ZBR_REGION& result, const ZBR_REGION_OPTIONS& options);

ZBR_FILL_RULE FillRule(const std::string& name);

// The centre of mass of some rings, given by their offsets, one more than there are; NaN where there are none.
ZBR_PT CentroidOf(const ZBR_PT* points, const std::int32_t* rings, std::size_t ringCount);

// Points that the caller gives, copied as the work may outlast the call; looked at, with `progress`, before work that takes long.
std::vector<ZBR_PT> PointsOf(PyObject* points, PyObject* progress);

// What place(i, p) tells of each point, an int8 array. `size` is that of the call, in points.
using Place = std::function<std::int8_t(std::size_t i, const ZBR_PT& p)>;
Ref LocateAll(std::size_t size, std::vector<ZBR_PT> points, PyObject* progress, Place place);

void AddRegionType(PyObject* module);
void AddRegionsType(PyObject* module);
void AddRegionFunctions(PyObject* module);

// The number protocol of both types: | & - ^ for operands that are both Region, or either a Regions.
PyObject* Operate(PyObject* a, PyObject* b, ZBR_BOOLEAN_OPE op) noexcept;

}  // namespace zbr::python
