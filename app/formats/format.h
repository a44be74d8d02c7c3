// The file formats, by name and by extension, and one function for each that reads or writes one.
#pragma once

#include <string>
#include <vector>

#include "geometry/drawing.h"
#include "geometry/region.h"

namespace tool {

enum class Format { kUnknown, kDxf, kGeoJson, kWkt, kText, kSvg };

// What a file is by its extension, else `fallback`.
Format FormatOf(const std::string& file, Format fallback);

Format FormatByName(const std::string& name);
std::string NameOf(Format format);

// Reads a file whose format FormatOf tells. Fails with "file:line: cause" on malformed contents.
Drawing ReadDrawing(const std::string& file, Format fallback);

// The text of a file with one layer, feature or line for each result. Not for pictures.
std::string WriteDrawing(Format format, const std::vector<Layer>& layers, int units);

// Each reads the text of one file; `file` is its name for messages.
Drawing ReadDxf(const std::string& text, const std::string& file);
Drawing ReadGeoJson(const std::string& text, const std::string& file);
Drawing ReadWkt(const std::string& text, const std::string& file);
Drawing ReadLoopText(const std::string& text, const std::string& file);

std::string WriteDxf(const std::vector<Layer>& layers, int units);
std::string WriteGeoJson(const std::vector<Layer>& layers, int units);
std::string WriteWkt(const std::vector<Layer>& layers);
std::string WriteLoopText(const std::vector<Layer>& layers);

}  // namespace tool
