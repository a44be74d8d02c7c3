// zbr clip: the parts of lines inside and outside of a region.

#include <zbr-drawing/frame.h>
#include <zbr-drawing/lines.h>
#include <zbr-drawing/numbers.h>
#include <zbr-formats/files.h>
#include <zbr-formats/plot.h>
#include <zbr/segments.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <utility>

#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/commands/stats.h"
#include "app/io/output_files.h"
#include "app/libraries.h"

namespace tool {
namespace {

enum class Side { kInside, kOutside };

const char* NameOf(Side side) {
  return side == Side::kInside ? "inside" : "outside";
}

// The lines on one side of the region.
struct Part {
  Side side = Side::kInside;
  std::vector<SpaceLine> lines;
};

// What the run works with, filled stage by stage.
struct Run {
  std::string linesName, regionName;
  int units = 0;
  Drawing drawing;  // keeps the names of layers
  bool hasHeights = false;
  std::vector<SpaceLine> lines;
  Frame frame;
  Contours contours;
  Layer region;             // in the drawing's coordinates
  std::vector<Part> parts;  // those asked for
};

using Points = std::vector<ZBR_PT3>;

Points In(const Frame& frame, const Points& points) {
  Points moved;
  moved.reserve(points.size());
  for (const ZBR_PT3& p : points) {
    const ZBR_PT q = frame.In(p.xy());
    moved.emplace_back(q.x(), q.y(), p.z());
  }
  return moved;
}

Points Out(const Frame& frame, Points points) {
  for (ZBR_PT3& p : points) p.xy() = frame.Out(p.xy());
  return points;
}

bool SamePoint(const ZBR_PT3& p, const ZBR_PT3& q) {
  return p.x() == q.x() && p.y() == q.y() && p.z() == q.z();
}

// A piece of a line in the frame, and what its edges stand for.
struct PieceOfLine {
  Points points;
  std::vector<EdgeOrigin> origins;
};

// A closed line is cut where it starts: of its pieces, first to last, the last one goes on in the first.
void JoinAtSeam(const Points& line, PieceOfLine& first, PieceOfLine& last) {
  const bool isClosed = line.size() > 2 && SamePoint(line.front(), line.back());
  if (!isClosed || !SamePoint(first.points.front(), line.front()) || !SamePoint(last.points.back(), line.back())) return;
  last.points.insert(last.points.end(), first.points.begin() + 1, first.points.end());
  last.origins.insert(last.origins.end(), first.origins.begin(), first.origins.end());
  first = std::move(last);
  last = {};
}

// What the edges of pieces stand for, which come in the order of the line they are of.
class OriginsAlong {
 public:
  OriginsAlong(const Points& line, const std::vector<EdgeOrigin>& origins) : line_(line), origins_(origins) {}

  std::vector<EdgeOrigin> Next(const Points& piece) {
    std::vector<EdgeOrigin> found;
    for (std::size_t i = 1; i < piece.size() && !origins_.empty(); ++i) {
      const ZBR_PT from = piece[i - 1].xy(), to = piece[i].xy();
      while (edge_ + 1 < origins_.size() && !IsOn((from + to) * 0.5)) ++edge_;
      const EdgeOrigin& origin = origins_[edge_];
      const double sweep = origin.t1 - origin.t0;
      found.push_back({origin.curve, origin.line, Part(from) == 0 ? origin.t0 : origin.t0 + sweep * Part(from),
                       Part(to) == 1 ? origin.t1 : origin.t0 + sweep * Part(to)});
    }
    return found;
  }

 private:
  static constexpr double kNear = 1e-7;  // in the frame

  ZBR_PT Start() const { return line_[edge_].xy(); }
  ZBR_PT Along() const { return line_[edge_ + 1].xy() - line_[edge_].xy(); }
  double Part(const ZBR_PT& p) const {
    constexpr double kRounding = 1e-9;
    const double length2 = Along().Length2();
    const double part = length2 > 0 ? (p - Start()).InnerProduct(Along()) / length2 : 0.0;
    return std::abs(part) < kRounding ? 0.0 : (std::abs(part - 1) < kRounding ? 1.0 : part);
  }
  bool IsOn(const ZBR_PT& p) const {
    const double part = Part(p);
    return part >= 0 && part <= 1 && p.Distance(Start() + Along() * part) <= kNear;
  }

  const Points& line_;
  const std::vector<EdgeOrigin>& origins_;
  std::size_t edge_ = 0;
};

SpaceLine LineOf(PieceOfLine&& piece, const SpaceLine& line, const Run& run) {
  SpaceLine placed{Out(run.frame, std::move(piece.points)), line.layer, std::move(piece.origins), {}, line.lineType, line.colour};
  const auto isRaised = [](const ZBR_PT3& p) { return p.z() != 0; };
  if (placed.origins.empty() || std::any_of(placed.points.begin(), placed.points.end(), isRaised)) return placed;
  std::vector<ZBR_PT> points;
  for (const ZBR_PT3& p : placed.points) points.push_back(p.xy());
  placed.outline = OutlineOf(points, placed.origins, *run.contours.curves);
  return placed;
}

// Pieces in the frame, each with its line, become lines of the drawing. The pieces are used up.
std::vector<SpaceLine> Placed(std::vector<Points>& pieces, const std::vector<int>& lineOf, const std::vector<Points>& framed,
                              const Run& run) {
  std::vector<SpaceLine> placed;
  for (std::size_t i = 0, next = 0; i < pieces.size(); i = next) {
    const auto line = static_cast<std::size_t>(lineOf[i]);
    OriginsAlong along(framed[line], run.lines[line].origins);
    std::vector<PieceOfLine> ofLine;
    for (; next < pieces.size() && lineOf[next] == lineOf[i]; ++next) {
      std::vector<EdgeOrigin> origins = along.Next(pieces[next]);
      ofLine.push_back({std::move(pieces[next]), std::move(origins)});
    }
    if (ofLine.size() > 1) JoinAtSeam(framed[line], ofLine.front(), ofLine.back());
    for (PieceOfLine& piece : ofLine) {
      if (!piece.points.empty()) placed.push_back(LineOf(std::move(piece), run.lines[line], run));
    }
  }
  return placed;
}

// The frame suits the region and what is around it. Lines may go on far beyond: one stray point must not make the region vanish.
Frame FrameAround(const Extent& region, const Extent& lines) {
  if (region.empty() || lines.empty()) return Frame::For(lines);
  constexpr double kAround = 1000;
  const double reach = kAround * region.Size();
  Extent near = region;
  near.Add({std::clamp(lines.xmin, region.xmin - reach, region.xmax + reach),
            std::clamp(lines.ymin, region.ymin - reach, region.ymax + reach)});
  near.Add({std::clamp(lines.xmax, region.xmin - reach, region.xmax + reach),
            std::clamp(lines.ymax, region.ymin - reach, region.ymax + reach)});
  return Frame::For(near);
}

void Read(const ClipOptions& options, Run& run, Progress& progress) {
  InputOptions ofRegion = options.input;
  ofRegion.layers = options.regionLayers;
  ofRegion.layersFrom = "--region-layer";
  run.drawing = ReadInput(options.lines, Content::kLines, options.input, progress);
  Drawing region = ReadInput(options.region, Content::kRegions, ofRegion, progress);
  run.units = run.drawing.units != 0 ? run.drawing.units : region.units;
  ConvertUnits(region, run.units, progress);
  Extent extent = ExtentOf(run.drawing);
  extent.Add(ExtentOf(region));
  const FlattenOptions flatten = WithDefaults(options.input.flatten, extent);
  run.lines = MakeLines(run.drawing, std::move(region), flatten, run.contours);
  run.hasHeights = HasHeights(run.drawing);
  run.frame = FrameAround(ExtentOf(run.contours.rings), ExtentOf(run.lines));
}

void Clip(Run& run, const LoopList& region) {
  std::vector<Points> framed;
  for (const SpaceLine& line : run.lines) framed.push_back(In(run.frame, line.points));
  std::vector<Points> inside, outside;
  std::vector<int> insideOf, outsideOf;
  zbrClipPolylines(framed, region, inside, &outside, &insideOf, &outsideOf);
  for (Part& part : run.parts) {
    const bool isInside = part.side == Side::kInside;
    part.lines = Placed(isInside ? inside : outside, isInside ? insideOf : outsideOf, framed, run);
  }
}

// What one file holds.
using Parts = std::vector<const Part*>;

// Lines stay on their layers. Where both parts are written the layers tell them apart.
std::string LayerName(const Part& part, const SpaceLine& line, bool isAlone) {
  std::string side = NameOf(part.side);
  if (line.layer.empty() || line.layer == "0") return side;
  return isAlone ? std::string(line.layer) : std::string(line.layer) + "-" + side;
}

std::vector<LineLayer> LayersOf(const Parts& parts) {
  std::vector<LineLayer> layers;
  std::map<std::string, std::size_t> known;
  const auto layerOf = [&](const std::string& name, const std::string& side) -> LineLayer& {
    const auto [at, isNew] = known.try_emplace(name, layers.size());
    if (isNew) layers.push_back({name, side, {}});
    return layers[at->second];
  };
  for (const Part* const part : parts) {
    const std::string side = NameOf(part->side);
    if (part->lines.empty()) layerOf(side, side);
    for (const SpaceLine& line : part->lines) layerOf(LayerName(*part, line, parts.size() == 1), side).lines.push_back(line);
  }
  return layers;
}

double LengthOf(const std::vector<SpaceLine>& lines) {
  double length = 0.0;
  for (const SpaceLine& line : lines) length += line.Length();
  return length;
}

std::string PictureOf(const Run& run, const Parts& parts) {
  Plot plot;
  plot.title = run.linesName + " and " + run.regionName;
  plot.caption = parts.size() == 2 ? "Lines inside and outside" : std::string("Lines ") + NameOf(parts[0]->side);
  plot.units = run.units;
  plot.items.push_back({run.regionName, run.region.area, run.region.loops, {}, "#e8edf3", "#94a3b8", 1.0, run.region.outlines});
  for (const Part* const part : parts) {
    const bool isInside = part->side == Side::kInside;
    PlotItem item{NameOf(part->side), LengthOf(part->lines), {}, {}, "", isInside ? "#0f766e" : "#d97706", 1.5};
    for (const SpaceLine& line : part->lines) {
      if (!line.outline.points.empty()) {
        item.paths.push_back(line.outline);
        continue;
      }
      std::vector<ZBR_PT>& points = item.lines.emplace_back();
      for (const ZBR_PT3& p : line.points) points.push_back(p.xy());
    }
    plot.items.push_back(std::move(item));
  }
  return WriteSvg(plot);
}

void WriteOutputs(const Run& run, const std::vector<OutputPlan>& plans, DxfStyle style) {
  style.layers = run.drawing.layers;
  style.lineTypes = run.drawing.lineTypes;
  OutputFiles files;
  for (const OutputPlan& plan : plans) {
    Parts parts;
    for (const std::size_t i : plan.results) parts.push_back(&run.parts[i]);
    files.Add(plan.file, plan.format == Format::kSvg ? PictureOf(run, parts)
                                                     : WriteLines(plan.format, LayersOf(parts), run.units, run.hasHeights, style));
  }
  files.Commit();
}

// Rows of names and numbers, aligned.
std::string Report(const Run& run, const std::vector<std::pair<std::string, double>>& stages) {
  const auto row = [](const std::string& name, std::size_t lines, const std::string& length) {
    std::string text = name + std::string(11 - std::min<std::size_t>(name.size(), 10), ' ');
    const std::string count = std::to_string(lines);
    return text + std::string(8 - std::min<std::size_t>(count.size(), 8), ' ') + count + "  " + length + "\n";
  };
  std::string text = "              lines  length\n" + row("read", run.lines.size(), NumberText(LengthOf(run.lines)));
  for (const Part& part : run.parts) text += row(NameOf(part.side), part.lines.size(), NumberText(LengthOf(part.lines)));
  return text + "region     area " + NumberText(run.region.area) + "\n" + StageTable(stages);
}

}  // namespace

int RunClip(const ClipOptions& options) {
  Progress progress;
  if (options.lines == "-" && options.region == "-") throw Failure("-: standard input can be read only once");
  if (options.outside && options.both) throw Failure("--outside and --both exclude each other");
  Run run;
  run.linesName = BaseName(options.lines);
  run.regionName = BaseName(options.region);
  if (!options.outside) run.parts.push_back({Side::kInside, {}});
  if (options.outside || options.both || options.outputs.empty()) run.parts.push_back({Side::kOutside, {}});
  Results results{{}, "{side}", false};
  for (const Part& part : run.parts) results.names.emplace_back(NameOf(part.side));
  const auto plans = PlanOutputs(options.outputs, results, FormatOption(options.input), options.lines);
  Writing writing = options.input.writing;
  writing.dxf.keepsPens = options.layerBy == "source";
  NoteUnused(writing, plans, progress);
  std::vector<std::pair<std::string, double>> stages;
  Stopwatch watch;
  Read(options, run, progress);
  stages.emplace_back("read", watch.Lap());
  const CurvedRegion shape = CurvedShape(LoadRegion(run.contours, options.input, progress));
  const ZBR_REGION& region = shape.rings;
  stages.emplace_back("nest", watch.Lap());
  if (region.empty()) progress.Note(options.region + ": note: holds no region; everything is outside");
  progress.Stage("clipping");
  Clip(run, run.frame.In(region));
  stages.emplace_back("clip", watch.Lap());
  progress.Stage("writing");
  run.region = MakeLayer(run.regionName, shape);
  WriteOutputs(run, plans, writing.dxf);
  stages.emplace_back("write", watch.Lap());
  progress.Stage("");
  if (options.stats || plans.empty()) std::fputs(Report(run, stages).c_str(), UsesStandardOutput(plans) ? stderr : stdout);
  return kExitFine;
}

}  // namespace tool
