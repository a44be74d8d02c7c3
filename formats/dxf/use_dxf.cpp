// The table of what the DXF part can do.
#include <zbr-formats/dxf.h>

#include "formats/drawings/dxf_codec.h"

namespace zbr::formats {

void UseDxf() {
  static constexpr DxfCodec kCodec = {ReadDxf, WriteDxf, WriteDxfLines, WriteSheetDxf};
  SetDxfCodec(kCodec);
}

}  // namespace zbr::formats
