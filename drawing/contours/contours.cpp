// From drawings to contours: joining, chords, faces.
//
// The chords of all drawings are drawn at once, so that what meets or coincides does so in all of them. Faces are traced of chords;
// the sources of their edges tell which curves these stand for.
#include <zbr-drawing/contours.h>

#include <zbr-drawing/failure.h>
#include <zbr/region.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

#include "drawing/contours/carriers.h"
#include "drawing/contours/chords.h"
#include "drawing/contours/short_ends.h"

namespace zbr::drawing {
namespace {

constexpr double kDefaultDeviation = 1e-4;  // of the extent: invisible in a picture, and a bolt hole gets some thirty edges
constexpr double kLeastPart = 1e-9;  // of a curve: closer to its ends no chord begins, where these are such places but for rounding
constexpr double kDefaultJoin = 1e-6;  // of the extent: above the noise of exported ends, far below any feature

void CheckFinite(const std::vector<ZBR_PT>& points, const std::string& file, std::size_t line) {
  for (const ZBR_PT& p : points) {
    if (!std::isfinite(p.x()) || !std::isfinite(p.y())) FailAt(file, line, "coordinates are out of range");
  }
}

// A contour that states its first point again at the end closes there.
void CloseExactly(Path& path) {
  if (path.closed || path.points.size() < 2) return;
  if (!AreIdentical(path.points.front(), path.points.back())) return;
  path.points.pop_back();
  path.closed = true;
}

// A drawing on its way to contours.
struct Work {
  std::vector<Path> contours;  // closed, or open
  std::vector<std::vector<Path>> pieces;
};

// The different pens of some drawings.
class PenList {
 public:
  // Gives every edge of the paths the place of its pen.
  void Add(std::vector<Path>& paths) {
    for (Path& path : paths) {
      Pen pen{std::string(path.layer), std::string(path.lineType), path.colour};
      const auto [at, isNew] = places_.try_emplace({pen.layer, pen.lineType, pen.colour}, static_cast<std::int32_t>(pens_.size()));
      if (isNew) pens_.push_back(std::move(pen));
      path.pens.assign(path.EdgeCount(), at->second);
    }
  }
  std::vector<Pen> Take() { return std::move(pens_); }

 private:
  std::vector<Pen> pens_;
  std::map<std::tuple<std::string, std::string, int>, std::int32_t> places_;
};

void CheckPath(const Path& path, const std::string& file) {
  for (const Curve& curve : path.curves) CheckFinite({curve.centre, curve.u, curve.v, curve.At(curve.t0)}, file, path.line);
  CheckFinite(path.points, file, path.line);
}

std::size_t EndsOnLines(const LineWork& joined, const FlattenOptions& options) {
  const std::vector<Path>& contours = joined.contours;
  if (std::all_of(contours.begin(), contours.end(), [](const Path& path) { return path.closed; })) return 0;
  std::vector<Path> all = contours;
  for (const std::vector<Path>& piece : joined.pieces) all.insert(all.end(), piece.begin(), piece.end());
  return CountEndsOnLines(std::move(all), options.join, options.deviation);
}

Work Joined(Drawing& drawing, const FlattenOptions& options, Contours& contours) {
  Work work;
  for (Path& path : drawing.paths) {
    CloseExactly(path);
    CheckPath(path, drawing.file);
  }
  if (options.faces == LineFaces::kAll) {
    // Ends that meet but for a gap still have to. All that is drawn is one piece.
    LineWork joined = JoinPaths(std::move(drawing.paths), options.join, options.faces);
    std::vector<Path>& all = work.pieces.emplace_back(std::move(joined.contours));
    for (std::vector<Path>& piece : joined.pieces) std::move(piece.begin(), piece.end(), std::back_inserter(all));
    LeadShortEnds(all, options.join, options.deviation);
    return work;
  }
  if (!drawing.joinsEnds) return {std::move(drawing.paths), {}};
  LineWork joined = JoinPaths(std::move(drawing.paths), options.join, options.faces);
  contours.forks = std::move(joined.forks);
  contours.endsOnLines = EndsOnLines(joined, options);
  return {std::move(joined.contours), std::move(joined.pieces)};
}

// The lines of a piece, by their places among all chords.
struct Piece {
  const std::vector<Path>& paths;
  std::size_t first;
};

void AddOpen(const Path& path, const ChordLine& chords, Contours& contours) {
  if (chords.points.empty()) return;
  Extent extent;
  for (const ZBR_PT& p : chords.points) extent.Add(p);
  contours.open.push_back({chords.points.front(), chords.points.back(), path.line, extent.Size()});
}

// The piece as lines for the tracing of faces.
ZBR_REGION LinesOf(const Piece& piece, const std::vector<ChordLine>& chords) {
  ZBR_REGION lines;
  for (std::size_t i = 0; i < piece.paths.size(); ++i) {
    std::vector<ZBR_PT> points = chords[piece.first + i].points;
    if (piece.paths[i].closed && !points.empty()) points.push_back(points.front());
    lines.AddRing(points);
  }
  return lines;
}

EdgeOrigin PartOf(const EdgeOrigin& origin, const ZBR_EDGE_SOURCE& source) {
  const double sweep = origin.t1 - origin.t0;
  return {origin.curve, origin.line, origin.t0 + sweep * source.t0, origin.t0 + sweep * source.t1, origin.pen};
}

// A ring of a region. originOf tells of a source what its edge stands for, lineOf where it stands in the file.
template <class OriginOf, class LineOf>
Ring RingOf(const ZBR_REGION& region, std::size_t r, bool hasCurves, OriginOf originOf, LineOf lineOf) {
  Ring ring;
  ring.line = std::numeric_limits<std::size_t>::max();
  const auto first = static_cast<std::size_t>(region.ring_offsets()[r]),
             end = static_cast<std::size_t>(region.ring_offsets()[r + 1]);
  for (std::size_t i = first; i < end; ++i) {
    ring.points.push_back(region.points()[i]);
    EdgeOrigin origin;
    const auto last = static_cast<std::size_t>(region.source_offsets()[i + 1]);
    for (auto s = static_cast<std::size_t>(region.source_offsets()[i]); s < last; ++s) {
      const ZBR_EDGE_SOURCE& source = region.sources()[s];
      ring.line = std::min(ring.line, lineOf(source));
      if (!hasCurves || origin.curve >= 0) continue;
      const std::int32_t pen = origin.pen;
      origin = PartOf(originOf(source), source);
      if (pen >= 0) origin.pen = pen;
    }
    if (hasCurves) ring.origins.push_back(origin);
  }
  return ring;
}

// What cells cover together: all that is bounded is a cell, so there are no holes.
std::vector<Ring> OutlinesOf(const std::vector<Ring>& cells, bool hasCurves) {
  ZBR_REGION outer;
  std::vector<const Ring*> cellOf;
  for (const Ring& ring : cells) {
    if (!cellOf.empty() && cellOf.back()->polygon == ring.polygon) continue;  // a hole
    outer.AddRing(ring.points);
    cellOf.push_back(&ring);
  }
  ZBR_REGION_OPTIONS options;
  options.fill_a = ZBR_FILL_NON_ZERO;
  options.sources = true;
  options.canonical = true;
  ZBR_REGION together;
  zbrMakeValidRegion(outer.view(), together, options);
  std::vector<Ring> rings;
  for (std::size_t p = 0; p < together.polygon_count(); ++p) {
    rings.push_back(RingOf(
        together, static_cast<std::size_t>(together.polygon_offsets()[p]), hasCurves,
        [&](const ZBR_EDGE_SOURCE& s) {
          return cellOf[static_cast<std::size_t>(s.ring)]->origins[static_cast<std::size_t>(s.edge)];
        },
        [&](const ZBR_EDGE_SOURCE& s) { return cellOf[static_cast<std::size_t>(s.ring)]->line; }));
  }
  return rings;
}

void TracePiece(const Piece& piece, const std::vector<ChordLine>& chords, LineFaces faces, Contours& contours) {
  ZBR_REGION_OPTIONS options;
  options.sources = true;
  options.canonical = true;
  ZBR_REGION cells;
  const ZBR_REGION lines = LinesOf(piece, chords);
  if (zbrTraceFaces(lines.view(), cells, options).code != ZBR_REGION_OK)
    throw Failure(contours.file, "coordinates are out of range");
  const auto chordsOf = [&](const ZBR_EDGE_SOURCE& s) -> const ChordLine& {
    return chords[piece.first + static_cast<std::size_t>(s.ring)];
  };
  const bool hasCurves = !piece.paths.empty() && !chords[piece.first].origins.empty();
  std::vector<Ring> rings;
  for (std::size_t p = 0; p < cells.polygon_count(); ++p) {
    const auto end = static_cast<std::size_t>(cells.polygon_offsets()[p + 1]);
    for (auto r = static_cast<std::size_t>(cells.polygon_offsets()[p]); r < end; ++r) {
      rings.push_back(RingOf(
          cells, r, hasCurves, [&](const ZBR_EDGE_SOURCE& s) { return chordsOf(s).origins[static_cast<std::size_t>(s.edge)]; },
          [&](const ZBR_EDGE_SOURCE& s) { return piece.paths[static_cast<std::size_t>(s.ring)].line; }));
      rings.back().polygon = static_cast<int>(p);
    }
  }
  if (faces != LineFaces::kAll) rings = OutlinesOf(rings, hasCurves);
  std::move(rings.begin(), rings.end(), std::back_inserter(contours.rings));
  std::vector<bool> isUsed(piece.paths.size(), false);
  for (const ZBR_EDGE_SOURCE& source : cells.sources()) isUsed[static_cast<std::size_t>(source.ring)] = true;
  for (std::size_t i = 0; i < piece.paths.size(); ++i) {
    if (!isUsed[i]) AddOpen(piece.paths[i], chords[piece.first + i], contours);
  }
}

}  // namespace

void FlattenPath(const Path& path, double deviation, const std::function<void(const ZBR_PT&, std::size_t, double)>& visit) {
  auto curve = path.curves.begin();
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    visit(path.points[i], i, 0);
    if (curve == path.curves.end() || curve->at != i) continue;
    for (const double t : ChordParameters(*curve, deviation)) {
      const double part = (t - curve->t0) / (curve->t1 - curve->t0);
      if (part > kLeastPart && part < 1 - kLeastPart) visit(curve->At(t), i, part);
    }
    ++curve;
  }
}

FlattenOptions WithDefaults(FlattenOptions options, const Extent& extent) {
  if (options.deviation < 0) options.deviation = kDefaultDeviation * extent.Size();
  if (options.join < 0) options.join = kDefaultJoin * extent.Size();
  return options;
}

std::vector<Contours> MakeContours(std::vector<Drawing> drawings, const FlattenOptions& options) {
  std::vector<ChordLine> none;
  return MakeContoursAnd({}, none, std::move(drawings), options);
}

std::vector<Contours> MakeContoursAnd(const std::vector<Path>& others, std::vector<ChordLine>& chordsOfOthers,
                                      std::vector<Drawing> drawings, const FlattenOptions& options) {
  std::vector<Contours> all(drawings.size());
  std::vector<Work> works;
  std::vector<const Path*> paths;
  PenList pens;
  for (std::size_t i = 0; i < drawings.size(); ++i) {
    all[i].file = drawings[i].file;
    if (options.pens) pens.Add(drawings[i].paths);
    works.push_back(Joined(drawings[i], options, all[i]));
  }
  for (const Work& work : works) {
    for (const Path& path : work.contours) paths.push_back(&path);
    for (const std::vector<Path>& piece : work.pieces) {
      for (const Path& path : piece) paths.push_back(&path);
    }
  }
  for (const Path& path : others) paths.push_back(&path);
  ChordDrawing chords = MakeChords(paths, options.deviation);
  const auto curves = std::make_shared<const std::vector<Curve>>(std::move(chords.curves));
  const auto kept = std::make_shared<const std::vector<Pen>>(pens.Take());
  std::size_t next = 0;
  for (std::size_t i = 0; i < drawings.size(); ++i) {
    all[i].curves = curves;
    all[i].pens = kept;
    for (const Path& path : works[i].contours) {
      ChordLine& line = chords.lines[next++];
      CheckFinite(line.points, drawings[i].file, path.line);
      if (path.closed) {
        all[i].rings.push_back({std::move(line.points), std::move(line.origins), path.line, path.polygon});
      } else {
        AddOpen(path, line, all[i]);
      }
    }
    for (const std::vector<Path>& piece : works[i].pieces) {
      TracePiece({piece, next}, chords.lines, options.faces, all[i]);
      next += piece.size();
    }
  }
  std::move(chords.lines.begin() + static_cast<std::ptrdiff_t>(next), chords.lines.end(), std::back_inserter(chordsOfOthers));
  return all;
}

Contours MakeContours(Drawing drawing, const FlattenOptions& options) {
  std::vector<Drawing> drawings;
  drawings.push_back(std::move(drawing));
  return std::move(MakeContours(std::move(drawings), options).front());
}

}  // namespace zbr::drawing
