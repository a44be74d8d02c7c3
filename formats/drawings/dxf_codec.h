// The way to the DXF part, which may not be there.
#pragma once

#include <zbr-formats/drawings.h>
#include <zbr-formats/sheets.h>

namespace zbr::formats {

// What the DXF part can do.
struct DxfCodec {
  Drawing (*read)(const std::string& text, const std::string& file, Content content);
  std::string (*write)(const std::vector<Layer>& layers, int units);
  std::string (*writeLines)(const std::vector<LineLayer>& layers, int units);
  std::string (*writeSheet)(const Sheet& sheet, const std::vector<ObjectSource>& objects);
};

// Makes the part known; it lasts as long as the program.
void SetDxfCodec(const DxfCodec& codec);

// Fails, naming the file, where the program has no such part.
const DxfCodec& DxfCodecFor(const std::string& file);

}  // namespace zbr::formats
