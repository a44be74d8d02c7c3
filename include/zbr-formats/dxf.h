// DXF, in a library of its own: zbr::formats-dxf. It is made with dxflib, so that programs which link it come under the GPL.
#pragma once

#include <zbr-formats/drawings.h>
#include <zbr-formats/sheets.h>

#include <string>
#include <vector>

namespace zbr::formats {

// Makes ReadDrawing, WriteDrawing, WriteLines and WriteSheet take DXF; without it they refuse such files. Call it once, at the
// start.
void UseDxf();

// The functions themselves. `file` is the name for messages.
Drawing ReadDxf(const std::string& text, const std::string& file, Content content);
std::string WriteDxf(const std::vector<Layer>& layers, int units);
std::string WriteDxfLines(const std::vector<LineLayer>& layers, int units);

// In millimetres, lines on the layers VISIBLE, OUTLINE (silhouettes) and HIDDEN. Outlines are closed polylines on a layer for each
// object: FILL-name.
std::string WriteSheetDxf(const Sheet& sheet, const std::vector<ObjectSource>& objects);

}  // namespace zbr::formats
