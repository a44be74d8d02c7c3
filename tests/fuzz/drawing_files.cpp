// Drawing files: the first byte tells the format, the rest is the file. What is read can be made a region, and what is written of
// that reads back to the bit.
#include <zbr-drawing/region.h>
#include <zbr-formats/dxf.h>

#include "fuzz/reading.h"

namespace {

using zbr::formats::Content;
using zbr::formats::Format;

zbr::drawing::Drawing Read(Format format, const std::string& text, Content content) {
  if (format == Format::kDxf) return zbr::formats::ReadDxf(text, "file", content);
  if (format == Format::kGeoJson) return zbr::formats::ReadGeoJson(text, "file", content);
  if (format == Format::kSvg) return zbr::formats::ReadSvg(text, "file", content);
  return format == Format::kWkt ? zbr::formats::ReadWkt(text, "file", content) : zbr::formats::ReadLoopText(text, "file", content);
}

constexpr Format kFormats[] = {Format::kDxf, Format::kGeoJson, Format::kWkt, Format::kText};

void ReadBack(const zbr::drawing::Layer& layer) {
  for (const Format format : kFormats) {
    const std::string text = zbr::formats::WriteDrawing(format, {layer}, 4);
    const zbr::drawing::Contours contours = zbr::drawing::MakeContours(Read(format, text, Content::kRegions), {1.0, 0.0});
    auto read = contours.rings.begin();
    zbr::drawing::ForEachRing(layer.loops, [&](const ZBR_LOOP& ring) {
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
  constexpr int kKinds = 4, kSvgRegions = 8;
  const int kind = bytes.Below(kSvgRegions + 2);
  const Content content = kind < kKinds || kind == kSvgRegions ? Content::kRegions : Content::kLines;
  const Format format = kind < kSvgRegions ? kFormats[kind % kKinds] : Format::kSvg;
  IsTaken("file", [&] {
    const zbr::drawing::Drawing drawing = Read(format, bytes.Rest(), content);
    for (const zbr::drawing::Path& path : drawing.paths) {
      for (const ZBR_PT& p : path.points) Require(std::isfinite(p.x()) && std::isfinite(p.y()), "coordinates are finite");
    }
    if (content == Content::kLines) return;
    const zbr::drawing::FlattenOptions options = zbr::drawing::WithDefaults({-1.0, -1.0}, zbr::drawing::ExtentOf(drawing));
    const zbr::drawing::Contours contours = zbr::drawing::MakeContours(drawing, options);
    const zbr::drawing::Layer layer =
        zbr::drawing::MakeLayer("region", zbr::drawing::ValidShape(zbr::drawing::MakeRegion(contours)));
    if (!layer.loops.empty()) ReadBack(layer);
  });
}
