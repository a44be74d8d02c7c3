// Wavefront OBJ: points and faces; everything else (texture, groups, curves, loose lines) is passed over.
#include <zbr-drawing/mesh.h>

#include "formats/meshes/readers.h"
#include "formats/meshes/text_lines.h"

namespace zbr::formats {
namespace {

class ObjReader {
 public:
  ObjReader(const std::string& text, const std::string& file) : lines_(text, file) {}

  Mesh Read() {
    while (lines_.NextLine()) {
      const std::string_view keyword = lines_.Word();
      if (keyword == "v") ReadPoint();
      if (keyword == "f") ReadFace();
    }
    return std::move(mesh_);
  }

 private:
  void ReadPoint() {
    const double x = lines_.Number(), y = lines_.Number(), z = lines_.Number();
    mesh_.points.emplace_back(x, y, z);
  }

  // Corners are "point/texture/normal", counted from 1, or from the last point backwards when negative.
  void ReadFace() {
    const long long count = static_cast<long long>(mesh_.points.size());
    corners_.clear();
    for (std::string_view word = lines_.Word(); !word.empty(); word = lines_.Word()) {
      const long long number = lines_.ToInteger(word.substr(0, word.find('/')));
      const long long place = number < 0 ? count + number : number - 1;
      if (number == 0 || place < 0 || place >= count)
        lines_.Fail("point " + std::to_string(number) + " of a face is not among the " + std::to_string(count) + " before it");
      corners_.push_back(static_cast<std::uint32_t>(place));
    }
    if (corners_.size() < 3) lines_.Fail("a face needs three points");
    AddPolygon(mesh_, corners_);
  }

  TextLines lines_;
  Mesh mesh_;
  std::vector<std::uint32_t> corners_;
};

}  // namespace

Mesh ReadObj(const std::string& text, const std::string& file) {
  return ObjReader(text, file).Read();
}

}  // namespace zbr::formats
