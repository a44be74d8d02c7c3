// Object File Format, as text: counts, points, faces. Normals and colours at the ends of lines are passed over.
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/numbers.h>

#include "formats/meshes/readers.h"
#include "formats/meshes/text_lines.h"

namespace zbr::formats {
namespace {

// "OFF" with letters in front that announce what follows each point. Points with other than three coordinates have 4 or n there.
bool IsHeader(std::string_view word) {
  if (word.size() < 3 || word.substr(word.size() - 3) != "OFF") return false;
  return word.find_first_not_of("STCN") == word.size() - 3;
}

void ReadFace(TextLines& lines, Mesh& mesh, std::vector<std::uint32_t>& corners) {
  const long long size = lines.IntegerOfAnyLine();
  corners.clear();
  for (long long i = 0; i < size; ++i) {
    const long long place = lines.IntegerOfAnyLine();
    if (place < 0 || place >= static_cast<long long>(mesh.points.size()))
      lines.Fail("point " + std::to_string(place) + " of a face is not among the " + std::to_string(mesh.points.size()));
    corners.push_back(static_cast<std::uint32_t>(place));
  }
  while (!lines.Word().empty()) {
  }
  if (size < 0) lines.Fail("a face of " + std::to_string(size) + " points");
  if (size >= 3) AddPolygon(mesh, corners);
}

}  // namespace

Mesh ReadOff(const std::string& text, const std::string& file) {
  TextLines lines(text, file);
  const std::string_view header = lines.WordOfAnyLine();
  if (!IsHeader(header)) lines.Fail("OFF expected, but found " + Quoted(header));
  const bool isPlain = header == "OFF";
  const long long points = lines.IntegerOfAnyLine(), faces = lines.IntegerOfAnyLine();
  lines.IntegerOfAnyLine();  // edges
  Mesh mesh;
  for (long long i = 0; i < points; ++i) {
    const double x = lines.NumberOfAnyLine(), y = lines.NumberOfAnyLine(), z = lines.NumberOfAnyLine();
    mesh.points.emplace_back(x, y, z);
    while (!isPlain && !lines.Word().empty()) {
    }
  }
  std::vector<std::uint32_t> corners;
  for (long long i = 0; i < faces; ++i) ReadFace(lines, mesh, corners);
  return mesh;
}

}  // namespace zbr::formats
