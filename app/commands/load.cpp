// From file names to contours in one frame, with notes about what was left out or looks wrong.
#include "app/commands/load.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>

#include <algorithm>

#include "app/libraries.h"

namespace tool {
namespace {

void KeepLayers(Drawing& drawing, const std::vector<std::string>& layers) {
  if (layers.empty()) return;
  std::erase_if(drawing.paths,
                [&](const Path& path) { return std::find(layers.begin(), layers.end(), path.layer) == layers.end(); });
  if (drawing.paths.empty()) throw Failure(drawing.file, "nothing on the chosen layers");
}

void NoteIgnored(const Drawing& drawing, Progress& progress) {
  std::string list;
  for (const auto& [what, count] : drawing.ignored) list += (list.empty() ? "" : ", ") + std::to_string(count) + " " + what;
  if (!list.empty()) progress.Note(drawing.file + ": note: left out " + list);
}

void LeaveOutRepeats(Drawing& drawing, Progress& progress) {
  const std::size_t count = DropRepeats(drawing.paths);
  if (count == 0) return;
  const std::string what = count == 1 ? " line or arc that repeats another one" : " lines and arcs that repeat others";
  progress.Note(drawing.file + ": note: left out " + std::to_string(count) + what);
}

const char* VerbFor(ContactKind kind) {
  return kind == ContactKind::kCrossing ? "crosses" : (kind == ContactKind::kOverlap ? "runs along" : "turns back on");
}

}  // namespace

Drawing ReadInput(const std::string& file, Format format, Content content, const std::vector<std::string>& layers,
                  Progress& progress) {
  progress.Stage("reading " + file);
  Drawing drawing = ReadDrawing(file, format, content);
  NoteIgnored(drawing, progress);
  KeepLayers(drawing, layers);
  if (content == Content::kRegions && drawing.joinsEnds) LeaveOutRepeats(drawing, progress);
  return drawing;
}

void ConvertUnits(Drawing& drawing, int units, Progress& progress) {
  const double factor = UnitFactor(drawing.units, units);
  if (factor == 0 || factor == 1) return;
  for (Path& path : drawing.paths) {
    for (ZBR_PT& p : path.points) p *= factor;
    for (double& z : path.heights) z *= factor;
    for (Curve& curve : path.curves) {
      curve.centre *= factor;
      curve.u *= factor;
      curve.v *= factor;
    }
  }
  progress.Note(drawing.file + ": note: converted from " + UnitName(drawing.units) + " to " + UnitName(units));
}

Loaded Load(const std::vector<std::string>& files, const InputOptions& options, Progress& progress) {
  const Format fallback = FormatOption(options);
  if (std::count(files.begin(), files.end(), "-") > 1) throw Failure("-: standard input can be read only once");
  Loaded loaded;
  std::vector<Drawing> drawings;
  Extent extent;
  for (const std::string& file : files) {
    Drawing& drawing = drawings.emplace_back(ReadInput(file, fallback, Content::kRegions, options.layers, progress));
    ConvertUnits(drawing, drawings.front().units, progress);
    for (const Path& path : drawing.paths) {
      if (!path.layer.empty()) loaded.layers.emplace(path.layer);
    }
    extent.Add(ExtentOf(drawing));
  }
  loaded.units = drawings.front().units;
  loaded.format = FormatOf(files.front(), fallback);
  const FlattenOptions flatten = WithDefaults(options.flatten, extent);
  Extent ringExtent;
  for (Drawing& drawing : drawings) {
    loaded.contours.push_back(MakeContours(std::move(drawing), flatten));
    ringExtent.Add(ExtentOf(loaded.contours.back().rings));
  }
  loaded.frame = Frame::For(ringExtent);
  return loaded;
}

Region LoadRegion(const Contours& contours, const Frame& frame, Progress& progress) {
  progress.Stage("nesting " + contours.file);
  Region region = MakeRegion(contours, frame);
  if (!contours.open.empty()) {
    progress.Note(contours.file + ":" + std::to_string(contours.open.front().line) + ": warning: left out " +
                  OpenText(contours.open.size()));
  }
  if (!region.contacts.empty()) {
    const Contact& contact = region.contacts.front();
    progress.Note(contours.file + ":" + std::to_string(contours.rings[contact.ringA].line) +
                  ": warning: " + Describe(contact, contours, frame) + "; results may be wrong there, see 'zbr check'");
  }
  return region;
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

std::string Describe(const Contact& contact, const Contours& contours, const Frame& frame) {
  std::string text = std::string("loop ") + VerbFor(contact.kind) + " ";
  if (contact.ringA == contact.ringB) {
    text += "itself";
  } else {
    text += "the loop of line " + std::to_string(contours.rings[contact.ringB].line);
  }
  return text + " at " + PointText(frame.Out(contact.at));
}

Format FormatOption(const InputOptions& options) {
  return options.format.empty() ? Format::kUnknown : FormatByName(options.format);
}

}  // namespace tool
