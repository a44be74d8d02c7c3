// What the drawing itself, or a block of it, holds before blocks are put in their places.
#pragma once

#include <zbr-drawing/affine.h>
#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>
#include <zbr/spatial.h>

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zbr::formats {

// Blocks put in their places, in columns and rows.
struct DxfInsert {
  std::string_view block;
  std::size_t before = 0;  // how many paths of the same contents stand before it
  std::size_t line = 0;
  Affine place;        // of the first copy
  ZBR_PT column, row;  // from one copy to the next
  long long columns = 1, rows = 1;
  double heightScale = 1.0, height = 0.0;
  std::string_view layer, lineType;
  int colour = kColourByLayer;
  bool hidden = false;
};

struct DxfContents {
  std::vector<Path> paths;
  std::vector<DxfInsert> inserts;
  std::map<std::string, LeftOut> leftOut;
};

struct DxfBlock {
  DxfContents contents;
  ZBR_PT3 base;
  bool isElsewhere = false;  // in another file
};

// By name in capital letters.
using DxfBlocks = std::map<std::string, DxfBlock, std::less<>>;

std::string DxfCapitals(std::string_view name);

// Puts blocks in their places, within each other too, and moves all paths into the drawing. What a block left out counts once for
// each copy. Entities of layer 0 come to the layer of their insert, colours and line types "by block" become those of the insert.
// Fails when that would make more than ten million points.
void UnfoldBlocks(DxfContents contents, const DxfBlocks& blocks, bool keepHeights, Drawing& drawing);

}  // namespace zbr::formats
