// The file formats, by name and by extension, and one function for each that reads or writes one.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-drawing/lines.h>
#include <zbr-drawing/region.h>
#include <zbr-formats/types.h>

#include <string>
#include <vector>

namespace zbr::formats {

// What a drawing is read for. Lines may be open and may have heights; formats that tell regions from lines then give both.
enum class Content { kRegions, kLines };

enum class Format { kUnknown, kDxf, kGeoJson, kWkt, kText, kSvg };

// What a file is by its extension, else `fallback`.
Format FormatOf(const std::string& file, Format fallback);

Format FormatByName(const std::string& name);
std::string NameOf(Format format);

// Reads a drawing from memory: `text` is what the file would hold, `name` stands for it in messages and in the drawing. Fails with
// "name:line: cause" on malformed contents.
Drawing ParseDrawing(Format format, std::string text, const std::string& name, Content content = Content::kRegions);

// The same for a file, "-" being standard input; its name tells the format, else `fallback` does.
Drawing ReadDrawing(const std::string& file, Format fallback, Content content = Content::kRegions);

// The text of a file with one layer, feature or line for each result. Not for pictures.
std::string WriteDrawing(Format format, const std::vector<Layer>& layers, int units, const DxfStyle& style = {});

// The same for lines, with their heights or without.
std::string WriteLines(Format format, const std::vector<LineLayer>& layers, int units, bool heights, const DxfStyle& style = {});

// Each reads the text of one file; `file` is its name for messages.
Drawing ReadGeoJson(const std::string& text, const std::string& file, Content content);
Drawing ReadWkt(const std::string& text, const std::string& file, Content content);
Drawing ReadSvg(const std::string& text, const std::string& file, Content content = Content::kRegions);
Drawing ReadLoopText(const std::string& text, const std::string& file, Content content = Content::kRegions);

std::string WriteGeoJson(const std::vector<Layer>& layers, int units);
std::string WriteWkt(const std::vector<Layer>& layers);
// With arcs of circles as such (CURVEPOLYGON, MULTISURFACE), other curves as chords within the deviation; of 0, within 1/10000 of
// the larger side.
std::string WriteWktCurves(const std::vector<Layer>& layers, double deviation = 0.0);
std::string WriteLoopText(const std::vector<Layer>& layers);

std::string WriteGeoJsonLines(const std::vector<LineLayer>& layers, int units, bool heights);
std::string WriteWktLines(const std::vector<LineLayer>& layers, bool heights);
std::string WriteTextLines(const std::vector<LineLayer>& layers, bool heights);

}  // namespace zbr::formats
