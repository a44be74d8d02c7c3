// Path data of SVG for what lies on a sheet.
#pragma once

#include <zbr-drawing/drawing.h>
#include <zbr-formats/types.h>
#include <zbr/planar.h>

#include <string>
#include <vector>

namespace zbr::formats {

// Where points of the paper are on the page, whose y points down.
class SheetPage {
 public:
  explicit SheetPage(double height) : height_(height) {}

  // Points too close to the one before are left out, the last one kept. Curves are arcs, no splines.
  std::string PathData(const Path& path) const;
  std::string PathData(const std::vector<ZBR_PT>& points, bool closed) const;
  double Down(double y) const { return height_ - y; }

 private:
  double height_;
};

}  // namespace zbr::formats
