// STL, binary and as text: loose triangles.
//
// A binary file may start with the word that text files start with; what tells them apart for certain is the length.
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/threads.h>
#include <zbr-formats/types.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstring>

#include "formats/meshes/line_ranges.h"
#include "formats/meshes/readers.h"
#include "formats/meshes/text_lines.h"

namespace zbr::formats {
namespace {

constexpr std::size_t kHeader = 80, kCount = 4, kRecord = 50;

std::uint32_t Number32(const char* bytes) {
  std::array<unsigned char, 4> b{};
  std::memcpy(b.data(), bytes, 4);
  return b[0] | static_cast<std::uint32_t>(b[1]) << 8U | static_cast<std::uint32_t>(b[2]) << 16U |
         static_cast<std::uint32_t>(b[3]) << 24U;
}

std::size_t BinarySize(const std::string& text) {
  return kHeader + kCount + kRecord * static_cast<std::size_t>(Number32(text.data() + kHeader));
}

std::string Lower(std::string_view word) {
  std::string lower(word);
  for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return lower;
}

bool StartsAsText(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  return first != std::string::npos && text.compare(first, 5, "solid") == 0;
}

bool StartsFacet(std::string_view text) {
  constexpr std::string_view kFacet = "facet";
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  return Lower(text.substr(0, kFacet.size())) == kFacet;
}

// No text, but a binary file that was cut off or has a wrong count.
bool IsBrokenBinary(const std::string& text) {
  return text.find('\0') != std::string::npos && (!StartsAsText(text) || Lower(text).find("facet") == std::string::npos);
}

// Every three points are one.
void AddTriangles(Mesh& mesh, unsigned threads) {
  const std::size_t count = mesh.points.size() / 3;
  mesh.triangles.reserve(count);
  TouchPages(mesh.triangles.data(), count * sizeof(mesh.triangles[0]), threads);
  for (std::size_t t = 0; t < count; ++t) {
    const auto p = static_cast<std::uint32_t>(3 * t);
    mesh.triangles.push_back({p, p + 1, p + 2});
  }
}

// A record: normal, three points, two bytes of anything. False where a coordinate is not finite.
bool ReadRecord(const char* record, ZBR_PT3* points) {
  for (std::size_t i = 0; i < 3; ++i) {
    std::array<float, 3> p{};
    for (std::size_t k = 0; k < 3; ++k) {
      p[k] = std::bit_cast<float>(Number32(record + 12 + 12 * i + 4 * k));
      if (!std::isfinite(p[k])) return false;
    }
    points[i].Set(p[0], p[1], p[2]);
  }
  return true;
}

Mesh ReadBinary(const std::string& text, const std::string& file, unsigned threads) {
  const std::uint32_t count = Number32(text.data() + kHeader);
  if (text.size() < BinarySize(text))
    throw Failure(file, "the file ends before the last of its " + std::to_string(count) + " triangles");
  Mesh mesh;
  const std::size_t points = 3 * static_cast<std::size_t>(count);
  mesh.points.reserve(points);
  TouchPages(mesh.points.data(), points * sizeof(ZBR_PT3), threads);
  mesh.points.resize(points);
  constexpr std::size_t kTriangles = 16384;  // of a range
  const std::size_t ranges = (count + kTriangles - 1) / kTriangles;
  std::vector<std::size_t> good(ranges);  // triangles before the first that has a coordinate which is no number
  RunParallel(ranges, threads, [&](std::size_t range) {
    std::size_t t = range * kTriangles;
    const std::size_t end = std::min<std::size_t>(t + kTriangles, count);
    while (t < end && ReadRecord(text.data() + kHeader + kCount + t * kRecord, &mesh.points[3 * t])) ++t;
    good[range] = t;
  });
  for (std::size_t range = 0; range < ranges; ++range) {
    if (good[range] < std::min<std::size_t>((range + 1) * kTriangles, count))
      throw Failure(file, "a coordinate of triangle " + std::to_string(good[range] + 1) + " is not a finite number");
  }
  AddTriangles(mesh, threads);
  return mesh;
}

// Of a part that starts between triangles and ends there.
void ReadLines(TextLines lines, std::vector<ZBR_PT3>& points) {
  static const std::array<const char*, 5> kOthers = {"solid", "facet", "outer", "endfacet", "endsolid"};
  std::size_t corners = 0;  // of the open triangle
  while (lines.NextLine()) {
    const std::string keyword = Lower(lines.Word());
    if (keyword == "vertex") {
      const double x = lines.Number(), y = lines.Number(), z = lines.Number();
      points.emplace_back(x, y, z);
      ++corners;
    } else if (keyword == "endloop") {
      if (corners != 3) lines.Fail("a triangle of " + std::to_string(corners) + " points");
      corners = 0;
    } else if (std::find(kOthers.begin(), kOthers.end(), keyword) == kOthers.end()) {
      lines.Fail("unexpected " + Quoted(keyword));
    }
  }
  if (corners != 0) lines.Fail("the file ends within a triangle");
}

Mesh ReadText(const std::string& text, const std::string& file, unsigned threads) {
  std::vector<std::string_view> ranges = {text};
  if (threads > 1) ranges = LineRanges(text, StartsFacet);
  std::vector<std::vector<ZBR_PT3>> parts(ranges.size());
  const auto read = [&](std::size_t k) { ReadLines(TextLines(ranges[k], file), parts[k]); };
  Mesh mesh;
  if (ranges.size() < 2 || !AllRead(ranges.size(), threads, read)) {
    ReadLines(TextLines(text, file), mesh.points);
  } else {
    mesh.points = Joined(
        parts.size(), threads, [&](std::size_t k) -> auto& { return parts[k]; });
  }
  AddTriangles(mesh, threads);
  return mesh;
}

}  // namespace

bool IsBinaryStl(const std::string& text) {
  if (text.size() < kHeader + kCount) return false;
  return text.size() == BinarySize(text) || IsBrokenBinary(text);
}

Mesh ReadStl(const std::string& text, const std::string& file, unsigned threads) {
  return IsBinaryStl(text) ? ReadBinary(text, file, threads) : ReadText(text, file, threads);
}

}  // namespace zbr::formats
