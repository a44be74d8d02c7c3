// Pieces of SVG text.
#pragma once

#include <zbr-drawing/region.h>
#include <zbr-formats/types.h>
#include <zbr/planar.h>

#include <string>
#include <vector>

namespace zbr::formats {

// What the root element of a picture with panels and a legend says, and that of a sheet of views, by which readers know them from
// drawings.
inline constexpr const char* kContentAttribute = "data-content";
inline constexpr const char* kPictureContent = "picture";
inline constexpr const char* kSheetContent = "sheet";

// Maps a drawing into a box that starts at the origin, y up becoming y down, centred and with equal scale on both axes.
class PageMap {
 public:
  PageMap(const Extent& extent, double width, double height);
  ZBR_PT operator()(const ZBR_PT& p) const;
  double PixelsPerUnit() const { return scale_; }

 private:
  ZBR_PT middle_, boxMiddle_;
  double scale_ = 1.0;
};

// Attributes and text content with the characters that mean something to XML replaced; line feeds become blanks, bytes
// that are not valid UTF-8 and other control characters '?'.
std::string Escaped(const std::string& text);

// A coordinate of the page, to a hundredth of a pixel.
std::string Px(double value);

// Path data for all rings of nested loops.
std::string PathData(const LoopList& loops, const PageMap& map);

// The same of a layer, with arcs where it has any.
std::string PathData(const Layer& layer, const PageMap& map);

// Path data for paths, open or closed, with arcs and splines as such.
std::string PathData(const std::vector<Path>& paths, const PageMap& map);

// Path data for an open line, or a closed one whose last point repeats the first.
std::string PathData(const std::vector<ZBR_PT>& line, const PageMap& map);

// <text>; style holds attributes.
std::string TextElement(double x, double y, const std::string& style, const std::string& text);

}  // namespace zbr::formats
