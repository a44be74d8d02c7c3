// DXF, the format in which CAD programs exchange drawings.
#pragma once

#include <zbr-formats/drawings.h>
#include <zbr-formats/sheets.h>

#include <string>
#include <vector>

namespace zbr::formats {

// `file` is the name for messages.
Drawing ReadDxf(const std::string& text, const std::string& file, Content content);

// Closed polylines on a layer for each result, in a colour of its own; or as the style has it. A polyline of edges with different
// pens has the one that most of its length is drawn with.
std::string WriteDxf(const std::vector<Layer>& layers, int units, const DxfStyle& style = {});
// A drawing as it is: every path as an entity on its layer, or as a few that are exact. Paths with curves lie flat, whatever
// heights they have.
std::string WriteDxf(const Drawing& drawing, DxfVersion version = DxfVersion::kR2000);
// Every layer in a colour of its own, or, where the style keeps pens, as the layer of its first line is described.
std::string WriteDxfLines(const std::vector<LineLayer>& layers, int units, const DxfStyle& style = {});

// In millimetres, lines on the layers VISIBLE, OUTLINE (silhouettes) and HIDDEN. Outlines are closed polylines on a layer for each
// object: FILL-name.
std::string WriteSheetDxf(const Sheet& sheet, const std::vector<ObjectSource>& objects, DxfVersion version = DxfVersion::kR2000);

}  // namespace zbr::formats
