// The shapes of SVG as paths.
#pragma once

#include <zbr-drawing/drawing.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/text/xml.h"

namespace zbr::formats {

bool IsSvgShape(std::string_view name);

// What percentages are parts of.
struct SvgViewport {
  double width = 0.0, height = 0.0;
};

// Of a path, rectangle, circle, ellipse, line, polyline or polygon, in its own coordinates: none where it has no size, nothing
// where it is malformed.
std::optional<std::vector<drawing::Path>> SvgShapePaths(const XmlElement& element, const SvgViewport& viewport);

}  // namespace zbr::formats
