// Meshes, drawings and sheets as Python has them.
#pragma once

#include "python/src/arrays.h"
#include "python/src/calls.h"
#include "python/src/holder.h"
#include "python/src/regions.h"

#include <zbr-drawing/mesh.h>
#include <zbr-drawing/model.h>
#include <zbr-drawing/objects.h>
#include <zbr-drawing/picker.h>
#include <zbr-drawing/scene.h>
#include <zbr-drawing/sheet.h>
#include <zbr-drawing/views.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zbr::python {

using ModelPtr = std::shared_ptr<const drawing::Model>;

// As a part of the model's diagonal; more would leave little of it.
constexpr double kMostWeld = 0.1;

struct MeshData {
  drawing::Mesh mesh;
  std::string name;
  std::vector<drawing::ObjectSource> sources;  // one for each object

  // The Python object of this mesh, while there is one: borrowed, for drawings to show the mesh that they are of.
  mutable PyObject* shown = nullptr;

  // The model for these values. The last one is kept, as views of a mesh mostly have them in common. Any thread.
  ModelPtr ModelFor(double crease, double weld) const;

 private:
  struct Kept {
    double crease = 0.0, weld = 0.0;
    ModelPtr model;
  };
  mutable std::mutex mutex_;
  mutable Kept kept_;
};
using MeshPtr = std::shared_ptr<const MeshData>;

// Keeps the model that it picks from.
struct OwnPicker {
  ModelPtr model;
  drawing::Picker picker;

  OwnPicker(ModelPtr m, const drawing::View& view) : model(std::move(m)), picker(*model, view) {}
};

// The lines of a view as arrays.
struct LineArrays {
  std::vector<ZBR_PT> points;
  std::vector<std::int32_t> lines{0};  // into the points
  std::vector<std::uint8_t> kinds;     // by line
  std::vector<std::uint8_t> hidden;
  std::vector<std::int32_t> shells;
  std::vector<std::int32_t> edges;  // pairs of triangle and edge
  std::vector<std::int32_t> edgeOffsets{0};
};

struct DrawingData {
  MeshPtr mesh;
  double crease = 30.0, weld = 0.0;  // of the model
  ModelPtr model;                    // null in a drawing that another process made, until it is needed
  std::size_t shells = 0;
  drawing::ViewLines view;
  std::shared_ptr<const LineArrays> lines;
  std::vector<RegionPtr> outlines;

  const drawing::Picker& ThePicker() const;

 private:
  mutable std::once_flag once_;
  mutable std::optional<OwnPicker> picker_;
};
using DrawingPtr = std::shared_ptr<const DrawingData>;

struct SheetData {
  drawing::Sheet sheet;
  std::vector<drawing::ObjectSource> sources;
  std::size_t shells = 0;
};

// Where someone looks from; what is not given depends on the model.
struct Eye {
  ZBR_PT3 place;
  std::optional<ZBR_PT3> at, up;  // none: the middle of the model; what is usual
  double fieldOfView = 0.0;
};

// A view as the caller says it.
struct WantedView {
  drawing::NamedDirection direction;
  std::optional<Eye> eye = std::nullopt;  // then the direction has its name only

  drawing::NamedDirection Of(const drawing::Model& model, bool yUp) const;
};

// A name, a section ("X=10"), a direction of looking, that and what is up, or a mapping that says where the eye is.
WantedView ViewOf(PyObject* object, bool yUp);

// Hits at points of a view, which `shift` takes to the model's origin, as arrays (shell, triangle, height).
Ref PickAll(const std::shared_ptr<const drawing::Picker>& picker, std::vector<ZBR_PT> points, const ZBR_PT& shift,
            PyObject* progress);

// The object of a mesh, the one there is or a new one.
Ref ShowMesh(const MeshPtr& mesh);

// For pickle: all but the points and triangles of a mesh, all but the mesh of a drawing; throws for bytes that are not of this
// version. DrawingData::lines and outlines are to be made.
Ref PackMesh(const MeshData& data);
Ref PackDrawing(const DrawingData& data);
std::shared_ptr<MeshData> UnpackMesh(drawing::Mesh mesh, PyObject* rest);
std::shared_ptr<DrawingData> UnpackDrawing(MeshPtr mesh, PyObject* bytes);

// Throw unless what was unpacked is what could have been packed: nothing that it is put to later looks again.
void CheckRestored(const MeshData& data);
void CheckRestored(const DrawingData& data);

// Throws unless it is one; `name` is the argument's.
const DrawingPtr& DrawingOf(PyObject* object, const char* name);

// Method of Mesh: draws views.
PyObject* DrawMesh(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept;

void AddMeshType(PyObject* module);
void AddDrawingType(PyObject* module);
void AddSheetType(PyObject* module);

}  // namespace zbr::python
