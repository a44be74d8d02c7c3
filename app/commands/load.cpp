// From file names to contours in one frame, with notes about what was left out or looks wrong.
#include "app/commands/load.h"

#include <zbr-drawing/affine.h>
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>
#include <zbr-formats/meshes.h>

#include <algorithm>

#include "app/commands/format_hint.h"
#include "app/commands/left_out.h"
#include "app/libraries.h"

namespace tool {
namespace {

void KeepLayers(Drawing& drawing, const InputOptions& options, Progress& progress) {
  const std::vector<std::string>& layers = options.layers;
  if (layers.empty()) return;
  std::set<std::string> known;
  for (const Path& path : drawing.paths) {
    if (!path.layer.empty()) known.emplace(path.layer);
  }
  std::erase_if(drawing.paths,
                [&](const Path& path) { return std::find(layers.begin(), layers.end(), path.layer) == layers.end(); });
  if (drawing.paths.empty())
    throw Failure(drawing.file, "nothing on what " + options.layersFrom + " names, " + Listed({layers.begin(), layers.end()}) +
                                    "; " + (known.empty() ? "it has no layers" : "there are " + Listed(known)));
  for (const std::string& layer : layers) {
    if (!known.contains(layer))
      progress.Note(drawing.file + ": note: nothing on layer " + Quoted(layer) + "; there are " + Listed(known));
  }
}

void LeaveOutRepeats(Drawing& drawing, Progress& progress) {
  const std::size_t count = DropRepeats(drawing.paths);
  if (count == 0) return;
  const std::string what =
      count == 1 ? " line, arc or contour that repeats another one" : " lines, arcs and contours that repeat others";
  progress.Note(drawing.file + ": note: left out " + std::to_string(count) + what);
}

void NoteForks(const Contours& contours, Progress& progress) {
  if (contours.forks.empty()) return;
  const Fork& fork = contours.forks.front();
  std::string places = " at " + PointText(fork.at);
  if (contours.forks.size() > 1) places += " and " + std::to_string(contours.forks.size() - 1) + " more";
  progress.Note(contours.file + ":" + std::to_string(fork.line) + ": note: lines fork" + places +
                "; what they enclose together is taken, see --faces");
}

// Of a name that several files describe the first description counts.
template <class Entry>
void AddNew(std::vector<Entry>&& entries, std::vector<Entry>& all) {
  for (Entry& entry : entries) {
    const auto isSame = [&](const Entry& other) { return other.name == entry.name; };
    if (std::none_of(all.begin(), all.end(), isSame)) all.push_back(std::move(entry));
  }
}

const char* VerbFor(ZBR_REGION_FAULT_KIND kind) {
  return kind == ZBR_FAULT_CROSSING ? "crosses" : (kind == ZBR_FAULT_OVERLAP ? "runs along" : "turns back on");
}

}  // namespace

Drawing ReadInput(const std::string& file, Content content, const InputOptions& options, Progress& progress) {
  progress.Stage("reading " + file);
  if (FormatOf(file, FormatOption(options)) == Format::kUnknown && IsMeshFile(file))
    throw Failure(file, "is a model, no drawing; 'zbr info' examines it, 'zbr draw' and 'zbr outline' make drawings of it");
  Drawing drawing = OrHint("--format", [&] { return ReadDrawing(file, FormatOption(options), content); });
  KeepLayers(drawing, options, progress);
  LeaveOut(drawing, options, progress);
  if (content == Content::kRegions && drawing.joinsEnds) LeaveOutRepeats(drawing, progress);
  return drawing;
}

void ConvertUnits(Drawing& drawing, int units, Progress& progress) {
  const double factor = UnitFactor(drawing.units, units);
  if (factor == 0 || factor == 1) return;
  for (Path& path : drawing.paths) {
    Map(path, Affine::Scale(factor, factor));
    for (double& z : path.heights) z *= factor;
  }
  progress.Note(drawing.file + ": note: converted from " + UnitName(drawing.units) + " to " + UnitName(units));
}

Loaded Load(const std::vector<std::string>& files, const InputOptions& options, Progress& progress,
            const std::vector<OperandOptions>& operands) {
  const Format fallback = FormatOption(options);
  if (std::count(files.begin(), files.end(), "-") > 1) throw Failure("-: standard input can be read only once");
  Loaded loaded;
  std::vector<Drawing> drawings;
  Extent extent;
  for (const std::string& file : files) {
    const std::size_t place = drawings.size();
    const bool isOwn = place < operands.size() && !operands[place].layers.empty();
    InputOptions ofFile = options;
    if (isOwn) {
      ofFile.layers = operands[place].layers;
      ofFile.layersFrom = operands[place].layersFrom;
    }
    Drawing& drawing = drawings.emplace_back(ReadInput(file, Content::kRegions, ofFile, progress));
    ConvertUnits(drawing, drawings.front().units, progress);
    for (Path& path : drawing.paths) {
      if (place < operands.size() && operands[place].map) Map(path, *operands[place].map);
    }
    for (const Path& path : drawing.paths) {
      if (!path.layer.empty()) loaded.layers.emplace(path.layer);
    }
    loaded.leftOut.push_back(drawing.leftOut);
    extent.Add(ExtentOf(drawing));
  }
  loaded.units = drawings.front().units;
  loaded.format = FormatOf(files.front(), fallback);
  const FlattenOptions flatten = WithDefaults(options.flatten, extent);
  loaded.writing = options.writing;
  loaded.writing.deviation = flatten.deviation;
  for (Drawing& drawing : drawings) {
    if (!options.flatten.pens) break;
    AddNew(std::move(drawing.layers), loaded.writing.dxf.layers);
    AddNew(std::move(drawing.lineTypes), loaded.writing.dxf.lineTypes);
  }
  loaded.contours = MakeContours(std::move(drawings), flatten);
  return loaded;
}

Layer ResultLayer(const std::string& name, const CurvedRegion& shape, const Writing& writing) {
  return MakeLayer(name, writing.simplify < 0 ? shape : Simplified(shape, writing.simplify));
}

// Lines that divide others into cells are wanted, or stray ones.
std::string OnLinesText(const Contours& contours) {
  if (contours.endsOnLines == 0) return "";
  return "; " + std::to_string(contours.endsOnLines) +
         (contours.endsOnLines == 1 ? " end lies on another line" : " ends lie on other lines") + ", see --faces all";
}

void NoteOpen(const Contours& contours, const InputOptions& options, Progress& progress) {
  if (contours.open.empty()) return;
  const std::string what = OpenText(contours.open.size()) + NarrowestGapText(contours) + OnLinesText(contours);
  const std::size_t line = contours.open.front().line;
  if (options.strict) throw Incomplete(contours.file, line, "left out " + what + ", which --strict does not allow");
  progress.Note(contours.file + ":" + std::to_string(line) + ": warning: left out " + what);
}

void NoteBeside(const std::vector<Layer>& layers, Progress& progress) {
  std::size_t count = 0;
  for (const Layer& layer : layers) count += layer.beside;
  if (count == 0) return;
  progress.Note("note: " + std::to_string(count) + (count == 1 ? " chord stays a line" : " chords stay lines") +
                " where curves come too close to each other");
}

Region LoadRegion(const Contours& contours, const InputOptions& options, Progress& progress) {
  progress.Stage("nesting " + contours.file);
  Region region = MakeRegion(contours, FillRule(options.fill));
  NoteForks(contours, progress);
  NoteOpen(contours, options, progress);
  if (!region.faults.empty() && options.fill.empty()) {
    const ZBR_REGION_FAULT& fault = region.faults.front();
    const std::size_t line = contours.rings[static_cast<std::size_t>(fault.ring_a)].line;
    progress.Note(contours.file + ":" + std::to_string(line) + ": warning: " + Describe(fault, contours) +
                  "; what lies within an odd number of loops is taken, see 'zbr check' and --fill");
  }
  return region;
}

std::string Listed(const std::set<std::string>& names) {
  constexpr std::size_t kMost = 20;
  std::string text;
  std::size_t count = 0;
  for (const std::string& name : names) {
    if (count++ == kMost) return text + " and " + std::to_string(names.size() - kMost) + " more";
    text += (text.empty() ? "" : ", ") + name;
  }
  return text;
}

std::string OpenText(std::size_t count) {
  return std::to_string(count) + (count == 1 ? " contour that does not close" : " contours that do not close");
}

std::string PointText(const ZBR_PT& p) {
  std::string text = "(";
  AppendNumber(text, p.x());
  text += ", ";
  AppendNumber(text, p.y());
  text += ')';
  return text;
}

std::string Describe(const ZBR_REGION_FAULT& fault, const Contours& contours) {
  std::string text = std::string("loop ") + VerbFor(fault.kind) + " ";
  if (fault.ring_a == fault.ring_b) {
    text += "itself";
  } else {
    text += "the loop of line " + std::to_string(contours.rings[static_cast<std::size_t>(fault.ring_b)].line);
  }
  return text + " at " + PointText(fault.place);
}

ZBR_FILL_RULE FillRule(const std::string& name) {
  if (name == "nonzero") return ZBR_FILL_NON_ZERO;
  if (name == "positive") return ZBR_FILL_POSITIVE;
  return name == "negative" ? ZBR_FILL_NEGATIVE : ZBR_FILL_EVEN_ODD;
}

Format FormatOption(const InputOptions& options) {
  return options.format.empty() ? Format::kUnknown : FormatByName(options.format);
}

}  // namespace tool
