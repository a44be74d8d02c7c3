// The table of formats, and the way from a file name to its reader or writer.
#include <zbr-formats/drawings.h>

#include <zbr-formats/dxf.h>
#include <zbr-formats/files.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "formats/text/foreign.h"

namespace zbr::formats {
namespace {

struct NamedFormat {
  std::string_view name;
  Format format;
};

constexpr std::array<NamedFormat, 5> kNames = {
    {{"dxf", Format::kDxf}, {"geojson", Format::kGeoJson}, {"wkt", Format::kWkt}, {"text", Format::kText}, {"svg", Format::kSvg}}};

constexpr std::array<NamedFormat, 7> kExtensions = {{{"dxf", Format::kDxf},
                                                     {"geojson", Format::kGeoJson},
                                                     {"json", Format::kGeoJson},
                                                     {"wkt", Format::kWkt},
                                                     {"loops", Format::kText},
                                                     {"txt", Format::kText},
                                                     {"svg", Format::kSvg}}};

template <class Table>
Format Find(const Table& table, std::string_view name) {
  for (const NamedFormat& entry : table) {
    if (entry.name == name) return entry.format;
  }
  return Format::kUnknown;
}

}  // namespace

Format FormatOf(const std::string& file, Format fallback) {
  const Format format = Find(kExtensions, ExtensionOf(file));
  return format != Format::kUnknown ? format : fallback;
}

Format FormatByName(const std::string& name) {
  return Find(kNames, name);
}

std::string NameOf(Format format) {
  for (const NamedFormat& entry : kNames) {
    if (entry.format == format) return std::string(entry.name);
  }
  return "unknown";
}

Drawing ParseDrawing(Format format, std::string text, const std::string& name, Content content) {
  if (format == Format::kUnknown)
    throw UnknownFormat(name, "not known as a drawing; names end in .dxf, .geojson, .json, .wkt, .svg, .loops or .txt");
  RefuseForeign(text, name);
  DropByteOrderMark(text);
  if (text.empty() && format != Format::kWkt && format != Format::kText) throw Failure(name, "the file is empty");
  if (format != Format::kDxf) RefuseBinary(text, name);  // which has a binary form
  if (format == Format::kDxf) return ReadDxf(text, name, content);
  if (format == Format::kGeoJson) return ReadGeoJson(text, name, content);
  if (format == Format::kWkt) return ReadWkt(text, name, content);
  if (format == Format::kSvg) return ReadSvg(text, name, content);
  return ReadLoopText(text, name, content);
}

Drawing ReadDrawing(const std::string& file, Format fallback, Content content) {
  const Format format = FormatOf(file, fallback);
  if (format == Format::kUnknown) RefuseForeignFile(file);  // what the name does not tell the contents may
  return ParseDrawing(format, format == Format::kUnknown ? "" : ReadFile(file), file, content);
}

std::string WriteDrawing(Format format, const std::vector<Layer>& layers, int units, const DxfStyle& style) {
  if (format == Format::kDxf) return WriteDxf(layers, units, style);
  if (format == Format::kGeoJson) return WriteGeoJson(layers, units);
  if (format == Format::kWkt) return WriteWkt(layers);
  return WriteLoopText(layers);
}

std::string WriteLines(Format format, const std::vector<LineLayer>& layers, int units, bool heights, const DxfStyle& style) {
  if (format == Format::kDxf) return WriteDxfLines(layers, units, style);
  if (format == Format::kGeoJson) return WriteGeoJsonLines(layers, units, heights);
  if (format == Format::kWkt) return WriteWktLines(layers, heights);
  return WriteTextLines(layers, heights);
}

}  // namespace zbr::formats
