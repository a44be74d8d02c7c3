#include "formats/text/foreign.h"

#include <zbr-formats/types.h>

#include <algorithm>

namespace zbr::formats {
namespace {

struct Foreign {
  std::string_view start;
  const char* cause;
};

constexpr Foreign kForeign[] = {
    {"AC10", "is a DWG file; save it as DXF"},
    {"AC2.", "is a DWG file; save it as DXF"},
    {"AC1.", "is a DWG file; save it as DXF"},
    {"ISO-10303-21;", "is a STEP file; export a drawing as DXF, a model as STL, OBJ, PLY, OFF or glTF"},
    {"%PDF-", "is a PDF file; export the drawing as DXF"},
    {"%!PS", "is a PostScript file; export the drawing as DXF"},
    {"\xC5\xD0\xD3\xC6", "is a PostScript file; export the drawing as DXF"},
    {std::string_view("PK\x03\x04", 4), "is a ZIP archive, as 3MF files are; export a model as STL, OBJ, PLY, OFF or glTF"},
};

}  // namespace

void RefuseForeign(std::string_view bytes, const std::string& name) {
  const std::size_t first = std::min(bytes.find_first_not_of(" \t\r\n"), bytes.size());
  for (const Foreign& foreign : kForeign) {
    if (bytes.substr(first).starts_with(foreign.start)) throw Failure(name, foreign.cause);
  }
}

}  // namespace zbr::formats
