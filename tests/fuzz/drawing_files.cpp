// Drawing files: the first byte tells the format, the rest is the file. What is read can be made a region, and what is written of
// that reads back to the bit.
#include <zbr/tolerance.h>

#include "formats/format.h"
#include "fuzz/reading.h"
#include "geometry/contours.h"
#include "geometry/frame.h"

namespace {

using tool::Content;
using tool::Format;

tool::Drawing Read(Format format, const std::string& text, Content content) {
  if (format == Format::kDxf) return tool::ReadDxf(text, "file", content);
  if (format == Format::kGeoJson) return tool::ReadGeoJson(text, "file", content);
  return format == Format::kWkt ? tool::ReadWkt(text, "file", content) : tool::ReadLoopText(text, "file", content);
}

constexpr Format kFormats[] = {Format::kDxf, Format::kGeoJson, Format::kWkt, Format::kText};

void ReadBack(const tool::Layer& layer) {
  for (const Format format : kFormats) {
    const std::string text = tool::WriteDrawing(format, {layer}, 4);
    const tool::Contours contours = tool::MakeContours(Read(format, text, Content::kRegions), {1.0, 0.0});
    auto read = contours.rings.begin();
    tool::ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) {
      const auto same = [](const ZBR_PT& a, const ZBR_PT& b) { return a.x() == b.x() && a.y() == b.y(); };
      const bool isSame = read != contours.rings.end() &&
                          std::equal(read->points.begin(), read->points.end(), ring.pt().begin(), ring.pt().end(), same);
      Require(isSame, "what is written reads back", [&] { return text; });
      ++read;
    });
    Require(read == contours.rings.end(), "nothing else reads back", [&] { return text; });
  }
}

}  // namespace

void Fuzz(Bytes& bytes) {
  const int kind = bytes.Below(8);
  const Content content = kind < 4 ? Content::kRegions : Content::kLines;
  IsTaken("file", [&] {
    const tool::Drawing drawing = Read(kFormats[kind % 4], bytes.Rest(), content);
    for (const tool::Path& path : drawing.paths) {
      for (const ZBR_PT& p : path.points) Require(std::isfinite(p.x()) && std::isfinite(p.y()), "coordinates are finite");
    }
    if (content == Content::kLines) return;
    const tool::FlattenOptions options = tool::WithDefaults({-1.0, -1.0}, tool::ExtentOf(drawing));
    const tool::Contours contours = tool::MakeContours(drawing, options);
    const ZBR_TmpEps tolerance(tool::kTolerance);
    const tool::Frame frame = tool::Frame::For(tool::ExtentOf(contours.rings));
    const tool::Layer layer = tool::MakeLayer("region", tool::MakeRegion(contours, frame).loops, frame);
    if (!layer.loops.empty()) ReadBack(layer);
  });
}
