// Wavefront OBJ: points and faces; everything else (texture, groups, curves, loose lines) is passed over.
//
// A face names points by their numbers in the file, so the points of a long file's ranges are counted before any of them is read.
#include <zbr-drawing/mesh.h>
#include <zbr-drawing/threads.h>

#include <algorithm>
#include <utility>

#include "formats/meshes/line_ranges.h"
#include "formats/meshes/readers.h"
#include "formats/meshes/text_lines.h"

namespace zbr::formats {
namespace {

// Points and faces of a part of the file, as far as the beginnings of its lines tell.
struct Counts {
  std::size_t points = 0, faces = 0;
};

// Lines that go on may hold points elsewhere.
Counts CountLines(std::string_view text) {
  Counts counts;
  for (std::size_t line = 0; line < text.size();) {
    const std::size_t word = std::min(text.find_first_not_of(" \t", line), text.size() - 1);
    const bool isWhole = word + 1 < text.size() && (text[word + 1] == ' ' || text[word + 1] == '\t');
    if (isWhole && text[word] == 'v') ++counts.points;
    if (isWhole && text[word] == 'f') ++counts.faces;
    line = std::min(text.find('\n', word), text.size() - 1) + 1;
  }
  return counts;
}

// What a part of the file holds. Mostly all faces are triangles; from the first one on that is none, faces wait until all points
// are known.
class ObjPart {
 public:
  ObjPart(std::size_t pointsBefore, const Counts& expected) : before_(pointsBefore) {
    points.reserve(expected.points);
    triangles.reserve(expected.faces);
  }

  void Read(TextLines lines) {
    while (lines.NextLine()) {
      const std::string_view keyword = lines.Word();
      if (keyword == "v") ReadPoint(lines);
      if (keyword == "f") ReadFace(lines);
    }
  }

  void MakeTriangles(const std::vector<ZBR_PT3>& all) {
    auto corner = polygons_.begin();
    for (const std::uint32_t size : polygonSizes_) {
      face_.assign(corner, corner + size);
      AddPolygon(all, face_, triangles);
      corner += size;
    }
    polygons_ = {};
    polygonSizes_ = {};
  }

  std::vector<ZBR_PT3> points;
  std::vector<std::array<std::uint32_t, 3>> triangles;

 private:
  void ReadPoint(TextLines& lines) {
    const double x = lines.Number(), y = lines.Number(), z = lines.Number();
    points.emplace_back(x, y, z);
  }

  // Corners are "point/texture/normal", counted from 1, or from the last point backwards when negative.
  void ReadFace(TextLines& lines) {
    const auto count = static_cast<long long>(before_) + static_cast<long long>(points.size());
    face_.clear();
    for (std::string_view word = lines.Word(); !word.empty(); word = lines.Word()) {
      const long long number = lines.ToInteger(word.substr(0, word.find('/')));
      const long long place = number < 0 ? count + number : number - 1;
      if (number == 0 || place < 0 || place >= count)
        lines.Fail("point " + std::to_string(number) + " of a face is not among the " + std::to_string(count) + " before it");
      face_.push_back(static_cast<std::uint32_t>(place));
    }
    if (face_.size() < 3) lines.Fail("a face needs three points");
    if (face_.size() == 3 && polygonSizes_.empty()) {
      triangles.push_back({face_[0], face_[1], face_[2]});
    } else {
      polygons_.insert(polygons_.end(), face_.begin(), face_.end());
      polygonSizes_.push_back(static_cast<std::uint32_t>(face_.size()));
    }
  }

  std::size_t before_;
  std::vector<std::uint32_t> face_;      // at hand
  std::vector<std::uint32_t> polygons_;  // waiting: the corners of all
  std::vector<std::uint32_t> polygonSizes_;
};

using Ranges = std::vector<std::string_view>;

// Nothing where a part is out of the ordinary.
std::vector<ObjPart> ReadInRanges(const Ranges& ranges, const std::string& file, unsigned threads) {
  std::vector<Counts> counts(ranges.size());
  RunParallel(ranges.size(), threads, [&](std::size_t k) { counts[k] = CountLines(ranges[k]); });
  std::vector<ObjPart> parts;
  parts.reserve(ranges.size());
  std::size_t before = 0;
  for (const Counts& count : counts) {
    parts.emplace_back(before, count);
    before += count.points;
  }
  const auto read = [&](std::size_t k) { parts[k].Read(TextLines(ranges[k], file)); };
  const auto isAsCounted = [&](const ObjPart& part) {
    return part.points.size() == counts[static_cast<std::size_t>(&part - parts.data())].points;
  };
  if (!AllRead(ranges.size(), threads, read) || !std::all_of(parts.begin(), parts.end(), isAsCounted)) parts.clear();
  return parts;
}

Mesh Join(std::vector<ObjPart>& parts, unsigned threads) {
  Mesh mesh;
  mesh.points = Joined(
      parts.size(), threads, [&](std::size_t k) -> auto& { return parts[k].points; });
  RunParallel(parts.size(), threads, [&](std::size_t k) { parts[k].MakeTriangles(mesh.points); });
  mesh.triangles = Joined(
      parts.size(), threads, [&](std::size_t k) -> auto& { return parts[k].triangles; });
  return mesh;
}

}  // namespace

Mesh ReadObj(const std::string& text, const std::string& file, unsigned threads) {
  const auto anywhere = [](std::string_view) { return true; };
  std::vector<ObjPart> parts;
  if (threads > 1) parts = ReadInRanges(LineRanges(text, anywhere), file, threads);
  if (parts.empty()) parts.emplace_back(0, CountLines(text)).Read(TextLines(text, file));
  return Join(parts, threads);
}

}  // namespace zbr::formats
