// Regions from and to files of drawings, by the readers and writers of the tool.
#include "python/src/calls.h"
#include "python/src/modules.h"
#include "python/src/options.h"
#include "python/src/regions.h"

#include <zbr-drawing/contours.h>
#include <zbr-drawing/region.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/drawings.h>
#include <zbr-formats/dxf.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace zbr::python {
namespace {

namespace formats = zbr::formats;

// The options of a reading.
struct Reading {
  std::string file;    // or what stands for it in messages
  std::string format;  // empty: the file's name tells
  std::string bytes;
  bool isFromMemory = false;
  drawing::FlattenOptions flatten{-1.0, -1.0};
  ZBR_FILL_RULE fill = ZBR_FILL_EVEN_ODD;
  std::vector<std::string> layers;
};

struct Read {
  RegionPtr region;
  std::string unit;
  std::size_t open = 0;  // contours that do not close
};

Read ReadRegion(const Reading& reading, Monitor& monitor) {
  const formats::Format format = reading.format.empty() ? formats::Format::kUnknown : formats::FormatByName(reading.format);
  drawing::Drawing drawing = reading.isFromMemory ? formats::ParseDrawing(format, reading.bytes, reading.file)
                                                  : formats::ReadDrawing(reading.file, format);
  monitor.TellOrThrow(0.4);
  if (reading.layers.empty()) {
    std::erase_if(drawing.paths, [](const drawing::Path& path) { return path.hidden; });
  } else {
    std::erase_if(drawing.paths, [&](const drawing::Path& path) {
      return std::find(reading.layers.begin(), reading.layers.end(), path.layer) == reading.layers.end();
    });
  }
  if (drawing.joinsEnds) drawing::DropRepeats(drawing.paths);
  drawing::DropFillings(drawing.paths);
  Read read;
  read.unit = drawing::UnitName(drawing.units);
  const drawing::FlattenOptions flatten = drawing::WithDefaults(reading.flatten, drawing::ExtentOf(drawing));
  const drawing::Contours contours = drawing::MakeContours(std::move(drawing), flatten);
  read.open = contours.open.size();
  monitor.TellOrThrow(0.7);
  const auto data = std::make_shared<RegionData>();
  data->region = drawing::ValidShape(drawing::MakeRegion(contours, reading.fill));
  read.region = data;
  return read;
}

std::vector<std::string> StringsOf(PyObject* object, const char* name) {
  std::vector<std::string> strings;
  if (object == nullptr) return strings;
  ForEachItem(object, name, [&](PyObject* item) {
    if (PyUnicode_Check(item) == 0) throw BadType(name, "a list of strings is needed");
    strings.push_back(Arguments::Text(item, name));
  });
  return strings;
}

void CheckFormat(const std::string& format) {
  if (!format.empty() && formats::FormatByName(format) == formats::Format::kUnknown)
    throw BadArgument("format", "one of dxf, geojson, wkt, svg and text is needed");
}

// (region, unit, number of contours that do not close)
PyObject* ReadRegions(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("read_region", {"file", "data", "format", "deviation", "join", "fill", "layers", "progress"}, 1, args,
                          count, keywords);
    Reading reading;
    reading.file = FileName(given.Needed(0));
    reading.format = given.OrNull(2) == nullptr ? "" : given.String(2, "");
    CheckFormat(reading.format);
    reading.isFromMemory = given.OrNull(1) != nullptr;
    if (reading.isFromMemory) reading.bytes = BytesOf(given[1], "data");
    if (given.OrNull(3) != nullptr) reading.flatten.deviation = given.Number(3, -1.0, 0.0);
    if (given.OrNull(4) != nullptr) reading.flatten.join = given.Number(4, -1.0, 0.0);
    reading.fill = FillRule(given.String(5, "evenodd"));
    reading.layers = StringsOf(given.OrNull(6), "layers");
    constexpr std::size_t kAnySize = kSmallCall;  // a file's is not known
    const std::size_t size = reading.isFromMemory ? reading.bytes.size() / 16 : kAnySize;
    const Read read =
        Run(size, given[7], [reading = std::move(reading)](Monitor& monitor) { return ReadRegion(reading, monitor); });
    const Ref region = NewRegion(read.region);
    return Ref::Own(Py_BuildValue("(Osn)", region.get(), read.unit.c_str(), static_cast<Py_ssize_t>(read.open)));
  });
}

// The text of a file with a layer for each region.
PyObject* WriteRegions(PyObject*, PyObject* const* args, Py_ssize_t count, PyObject* keywords) noexcept {
  return Guarded([&] {
    const Arguments given("write_regions", {"format", "regions", "names", "unit"}, 4, args, count, keywords);
    const formats::Format format = formats::FormatByName(given.String(0, ""));
    if (format == formats::Format::kUnknown || format == formats::Format::kSvg)
      throw BadArgument("format", "one of dxf, geojson, wkt and text is needed");
    const std::vector<std::string> names = StringsOf(given.OrNull(2), "names");
    std::vector<RegionPtr> regions;
    for (std::size_t i = 0; i < names.size(); ++i) {
      const Ref item = Ref::Own(PySequence_GetItem(given.Needed(1), static_cast<Py_ssize_t>(i)));
      regions.push_back(RegionOf(item.get(), "regions"));
    }
    const auto unit = static_cast<int>(given.Integer(3, 0, 0, 1000));
    const std::string text = Run(kSmallCall, nullptr, [=](Monitor&) {
      std::vector<drawing::Layer> layers;
      for (std::size_t i = 0; i < names.size(); ++i) layers.push_back(drawing::MakeLayer(names[i], regions[i]->region));
      return formats::WriteDrawing(format, layers, unit);
    });
    return Ref::Own(PyBytes_FromStringAndSize(text.data(), static_cast<Py_ssize_t>(text.size())));
  });
}

PyObject* UnitCode(PyObject*, PyObject* name) noexcept {
  return Guarded([&] {
    if (PyUnicode_Check(name) == 0) throw BadType("unit", "a string is needed");
    return Ref::Own(PyLong_FromLong(UnitCodeOf(Arguments::Text(name, "unit"))));
  });
}

}  // namespace

std::string BytesOf(PyObject* object, const char* name) {
  Py_buffer buffer{};
  if (PyObject_CheckBuffer(object) == 0 || PyObject_GetBuffer(object, &buffer, PyBUF_SIMPLE) != 0) {
    DropError();
    throw BadType(name, "bytes are needed");
  }
  std::string bytes(static_cast<const char*>(buffer.buf), static_cast<std::size_t>(buffer.len));
  PyBuffer_Release(&buffer);
  return bytes;
}

long UnitCodeOf(const std::string& name) {
  constexpr int kMostUnits = 32;
  for (int code = 1; code < kMostUnits; ++code) {
    if (!name.empty() && drawing::UnitName(code) == name) return code;
  }
  throw BadArgument("unit", "mm, cm, m, in, ft or another unit of length is needed");
}

std::string FileName(PyObject* object) {
  PyObject* const path = PyOS_FSPath(object);
  if (path == nullptr) {
    DropError();
    throw BadType("file", "a string or a path is needed");
  }
  Ref bytes = Ref::Own(path);
#ifdef _WIN32  // file names of the library are UTF-8 there
  if (PyUnicode_Check(path) != 0) bytes = Ref::Own(PyUnicode_AsUTF8String(path));
#else
  if (PyUnicode_Check(path) != 0) bytes = Ref::Own(PyUnicode_EncodeFSDefault(path));
#endif
  std::string name(PyBytes_AsString(bytes.get()), static_cast<std::size_t>(PyBytes_Size(bytes.get())));
  if (name.find('\0') != std::string::npos) throw BadArgument("file", "a name without null characters is needed");
  return name;
}

void AddFileFunctions(PyObject* module) {
  static PyMethodDef functions[] = {
      Fast("read_region", ReadRegions, nullptr),
      Fast("write_regions", WriteRegions, nullptr),
      {"unit_code", UnitCode, METH_O, nullptr},
      {nullptr, nullptr, 0, nullptr},
  };
  if (PyModule_AddFunctions(module, functions) != 0) throw PythonError();
}

}  // namespace zbr::python
