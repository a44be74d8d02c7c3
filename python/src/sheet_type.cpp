// The type under zbr.Sheet: views on paper, and the files they become.
#include "python/src/drawings.h"
#include "python/src/modules.h"
#include "python/src/options.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/paper.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/sheets.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace zbr::python {
namespace {

using Objects = Holder<SheetData>;

template <class Parse>
auto ForArgument(const char* argument, Parse parse) -> decltype(parse()) {
  try {
    return parse();
  } catch (const drawing::Failure& failure) {
    throw BadArgument(argument, failure.what());
  }
}

drawing::SheetOptions OptionsOf(const Arguments& given) {
  drawing::SheetOptions options;
  if (given.OrNull(1) != nullptr) options.paper = ForArgument("paper", [&] { return drawing::ParsePaper(given.String(1, "")); });
  if (given.OrNull(2) != nullptr && PyUnicode_Check(given[2]) == 0) {
    options.scale = ForArgument("scale", [&] { return drawing::ParseScale(drawing::NumberText(given.Number(2, 1.0))); });
  } else if (given.OrNull(2) != nullptr) {
    const std::string scale = given.String(2, "");
    options.anyScale = scale == "fit";
    if (!options.anyScale) options.scale = ForArgument("scale", [&] { return drawing::ParseScale(scale); });
  }
  options.projection = static_cast<drawing::Projection>(given.Choice(3, 0, {"none", "first", "third"}));
  options.number = given.String(5, "");
  options.author = given.String(6, "");
  options.date = given.String(7, "");
  options.unit = given.String(8, "mm");
  constexpr int kMillimetre = 4;
  options.millimetres = drawing::UnitFactor(static_cast<int>(UnitCodeOf(options.unit)), kMillimetre);
  options.hidden = static_cast<drawing::HiddenStyle>(given.Choice(9, 1, {"none", "dashed", "layer"}));
  options.tangent = static_cast<drawing::TangentStyle>(given.Choice(10, 0, {"thin", "layer"}));
  return options;
}

// The same, or a copy of it: drawings that other processes made have one each.
bool IsSameMesh(const MeshData& a, const MeshData& b) {
  const auto& p = a.mesh.points;
  const auto& q = b.mesh.points;
  return &a == &b ||
         (p.size() == q.size() && a.mesh.triangles == b.mesh.triangles && a.mesh.shells == b.mesh.shells &&
          a.sources.size() == b.sources.size() && (p.empty() || std::memcmp(p.data(), q.data(), p.size() * sizeof p.front()) == 0));
}

PyObject* MakeSheet(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given(
        "sheet",
        {"drawings", "paper", "scale", "projection", "title", "number", "author", "date", "unit", "hidden", "tangent", "progress"},
        1, args, count, keywords);
    drawing::SheetOptions options = OptionsOf(given);
    std::vector<DrawingPtr> drawings;
    ForEachItem(given.Needed(0), "drawings", [&](PyObject* item) { drawings.push_back(DrawingOf(item, "drawings")); });
    if (drawings.empty()) throw BadArgument("drawings", "there are none");
    const auto isOfAnother = [&](const DrawingPtr& drawing) { return !IsSameMesh(*drawing->mesh, *drawings.front()->mesh); };
    if (std::any_of(drawings.begin(), drawings.end(), isOfAnother))
      throw BadArgument("drawings", "views of one mesh are needed; Mesh.join() makes one of several");
    options.title = given.String(4, drawings.front()->mesh->name.c_str());
    if (options.projection == drawing::Projection::kNone && drawings.size() > 1)
      throw BadArgument("projection", "first or third is needed for several drawings");
    return Objects::Make(Run(kSmallCall, given[11], [drawings, options](Monitor&) -> std::shared_ptr<const SheetData> {
      const auto data = std::make_shared<SheetData>();
      std::vector<drawing::ViewLines> views;
      for (const DrawingPtr& drawing : drawings) views.push_back(drawing->view);
      const auto layOut = [&] { return drawing::LayOut(std::move(views), options); };
      data->sheet = options.scale ? ForArgument("scale", layOut) : layOut();
      data->sources = drawings.front()->mesh->sources;
      data->shells = drawings.front()->shells;
      return data;
    }));
  });
}

PyObject* Write(PyObject* self, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("_write", {"format", "version"}, 2, args, count, keywords);
    const std::string name = given.String(0, "");
    const auto format = formats::SheetFormatByName(name);
    if (!format) throw BadArgument("format", "one of svg, dxf, pdf and json is needed");
    const auto version = static_cast<formats::DxfVersion>(given.Choice(1, 1, {"R12", "R2000"}));
    const auto data = Objects::Of(self);
    const std::string text = Run(kSmallCall, nullptr, [=](Monitor&) {
      return formats::WriteSheet(*format, data->sheet, data->sources, data->shells, version);
    });
    return Ref::Own(PyBytes_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())));
  });
}

PyObject* Scale(PyObject* self, void*) noexcept {
  return PyFloat_FromDouble(Objects::Of(self)->sheet.scale);
}

PyObject* Paper(PyObject* self, void*) noexcept {
  const drawing::Paper& paper = Objects::Of(self)->sheet.paper;
  return Py_BuildValue("(dd)", paper.width, paper.height);
}

// The sections whose plane no other view shows. One alone on its sheet is known to the reader.
PyObject* Unmarked(PyObject* self, void*) noexcept {
  return Guarded([&] {
    Ref list = Ref::Own(PyList_New(0));
    const auto& views = Objects::Of(self)->sheet.views;
    for (const drawing::PlacedView& view : views) {
      if (views.size() < 2 || !view.lines.section || view.lines.section->isMarked) continue;
      const Ref name = Ref::Own(PyUnicode_FromString(view.lines.name.c_str()));
      if (PyList_Append(list.get(), name.get()) != 0) throw PythonError();
    }
    return list;
  });
}

PyObject* Shortened(PyObject* self, void*) noexcept {
  return Guarded([&] {
    const std::vector<std::string>& fields = Objects::Of(self)->sheet.shortened;
    Ref names = Ref::Own(PyTuple_New(static_cast<Py_ssize_t>(fields.size())));
    for (std::size_t i = 0; i < fields.size(); ++i)
      PyTuple_SetItem(names.get(), static_cast<Py_ssize_t>(i), Ref::Own(PyUnicode_FromString(fields[i].c_str())).release());
    return names;
  });
}

}  // namespace

void AddSheetType(PyObject* module) {
  static PyGetSetDef properties[] = {
      {"scale", Scale, nullptr, "Millimetres on paper for each of the model.", nullptr},
      {"paper", Paper, nullptr, "(width, height) in millimetres.", nullptr},
      {"shortened", Shortened, nullptr, "Fields of the title block that had no room for all of their text.", nullptr},
      {"_unmarked", Unmarked, nullptr, nullptr, nullptr},
      {nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  static PyMethodDef methods[] = {
      Fast("_write", Write, nullptr),
      {nullptr, nullptr, 0, nullptr},
  };
  static const PyType_Slot slots[] = {
      {Py_tp_getset, properties},
      {Py_tp_methods, methods},
      {0, nullptr},
  };
  Objects::AddType(module, "Sheet", "zbr._zbr.Sheet", slots);
  static PyMethodDef functions[] = {Fast("sheet", MakeSheet, nullptr), {nullptr, nullptr, 0, nullptr}};
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
