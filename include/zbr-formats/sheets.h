// Sheets as files.
#pragma once

#include <zbr-drawing/objects.h>
#include <zbr-drawing/sheet.h>
#include <zbr-formats/types.h>

#include <optional>
#include <string>
#include <vector>

namespace zbr::formats {

// In millimetres, a group for each view, within it one for the hidden and one for the visible lines, each with a group for each
// class. Outlines are filled, below the lines, each object in a shade of its own. The same with any number of threads.
std::string WriteSheetSvg(const Sheet& sheet, const std::vector<ObjectSource>& objects, unsigned threads = 1);

// Every polyline with its points in the unit of the model and the edges it is part of; outlines as polygons.
std::string WriteSheetJson(const Sheet& sheet, const std::vector<ObjectSource>& objects, std::size_t shells);

// One page, with layers for fills, hidden lines, tangent edges, other visible lines and the frame; arcs are Bézier curves. The same
// sheet gives the same bytes.
std::string WriteSheetPdf(const Sheet& sheet);

enum class SheetFormat { kSvg, kDxf, kPdf, kJson };

// "svg", "dxf", "pdf" or "json", which are the extensions, too; nothing for any other name.
std::optional<SheetFormat> SheetFormatByName(const std::string& name);

// A sheet in any of the formats; `shells` is how many the model has.
std::string WriteSheet(SheetFormat format, const Sheet& sheet, const std::vector<ObjectSource>& objects, std::size_t shells,
                       DxfVersion version = DxfVersion::kR2000, unsigned threads = 1);

}  // namespace zbr::formats
