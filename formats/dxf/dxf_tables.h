// What a DXF file holds besides its entities: header, tables, blocks and objects.
#pragma once

#include <zbr-drawing/drawing.h>

#include "formats/dxf/dxf_document.h"
#include "formats/dxf/dxf_output.h"

namespace zbr::formats {

inline constexpr DxfHandle kModelSpace = 0x1F;   // the block that all entities belong to
inline constexpr DxfHandle kFirstEntity = 0x30;  // handles below are those of the records that every file has

struct DxfBox {
  Extent extent;  // empty: that of an empty drawing
  double low = 0.0, high = 0.0;
};

// Everything up to the first entity. Names of layers and line types are as they are to be written; handles from `next` on are free.
void WriteDxfStart(DxfOutput& output, const DxfSetup& setup, const DxfBox& box, DxfHandle next);

// Everything behind the last entity.
void WriteDxfEnd(DxfOutput& output);

}  // namespace zbr::formats
