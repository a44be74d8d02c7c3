// Sharing results out among output files.
#include "app/commands/outputs.h"

#include <zbr-formats/picture.h>

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "app/libraries.h"

namespace tool {
namespace {

Format OutputFormat(const std::string& file, Format chosen, const std::string& input) {
  Format format = FormatOf(file, chosen);
  if (format == Format::kUnknown && file == "-") format = FormatOf(input, chosen);
  if (format == Format::kUnknown)
    throw Failure(
        file,
        "the name does not tell the format; names end in .dxf, .geojson, .json, .wkt, .loops, .txt or .svg, else give --format");
  return format;
}

bool IsSmallLetter(char c) {
  return c >= 'a' && c <= 'z';
}

}  // namespace

void CheckPlaceholders(const std::string& file, const std::string& placeholder) {
  for (std::size_t open = file.find('{'); open != std::string::npos; open = file.find('{', open + 1)) {
    const auto end = std::find_if_not(file.begin() + static_cast<std::ptrdiff_t>(open) + 1, file.end(), IsSmallLetter);
    const std::string word(file.begin() + static_cast<std::ptrdiff_t>(open), end);
    if (word.size() == 1 || end == file.end() || *end != '}' || word + "}" == placeholder) continue;
    std::string cause = file + ": ";
    cause.append(word).append("} stands for nothing here");
    if (!placeholder.empty()) cause.append("; there is ").append(placeholder);
    throw Failure(cause);
  }
}

std::vector<OutputPlan> PlanOutputs(const std::vector<std::string>& outputs, const Results& results, Format chosen,
                                    const std::string& input) {
  std::vector<std::size_t> all(results.names.size());
  std::iota(all.begin(), all.end(), std::size_t{0});
  const bool onePerResult = results.sharedOut && all.size() > 1 && outputs.size() == all.size();
  std::vector<OutputPlan> plans;
  for (std::size_t i = 0; i < outputs.size(); ++i) {
    const std::string& output = outputs[i];
    CheckPlaceholders(output, results.placeholder);
    const Format format = OutputFormat(output, chosen, input);
    const std::size_t place = results.placeholder.empty() ? std::string::npos : output.find(results.placeholder);
    if (place == std::string::npos) {
      plans.push_back({output, format, onePerResult ? std::vector<std::size_t>{i} : all, onePerResult});
      continue;
    }
    for (const std::size_t k : all) {
      std::string name = output;
      plans.push_back({name.replace(place, results.placeholder.size(), results.names[k]), format, {k}});
    }
  }
  return plans;
}

std::string WriteResults(Format format, const std::vector<Layer>& layers, int units, const Writing& writing) {
  return writing.curves && format == Format::kWkt ? WriteWktCurves(layers, writing.deviation)
                                                  : WriteDrawing(format, layers, units, writing.dxf);
}

std::string WriteRegion(Format format, const Layer& layer, int units, const Writing& writing) {
  if (format != Format::kSvg) return WriteResults(format, {layer}, units, writing);
  Picture picture;
  picture.title = layer.name;
  picture.units = units;
  picture.operands = {layer};
  picture.panels = {{std::to_string(layer.loops.size()) + " outer, " + std::to_string(CountHoles(layer.loops)) + " holes", layer}};
  return WriteSvg(picture);
}

void NoteUnused(const Writing& writing, const std::vector<OutputPlan>& plans, Progress& progress) {
  const auto note = [&](bool isAskedFor, Format format, const char* what) {
    const auto isOf = [&](const OutputPlan& plan) { return plan.format == format; };
    if (isAskedFor && std::none_of(plans.begin(), plans.end(), isOf))
      progress.Note(std::string("note: ") + what + ", and none is written");
  };
  note(writing.dxf.entities, Format::kDxf, "--entities says how DXF is written");
  note(writing.dxf.keepsPens, Format::kDxf, "--layer-by source says how DXF is written");
  note(writing.dxf.version == DxfVersion::kR12, Format::kDxf, "--dxf-version says how DXF is written");
  note(writing.curves, Format::kWkt, "--curves says how WKT is written");
}

void NoteSharedOut(const Results& results, const std::vector<OutputPlan>& plans, Progress& progress) {
  const auto isOther = [&](const OutputPlan& plan) { return plan.format != plans.front().format; };
  if (std::none_of(plans.begin(), plans.end(), isOther)) return;
  std::string text;
  for (const OutputPlan& plan : plans) {
    if (plan.isShare) text += (text.empty() ? "" : ", ") + (plan.file + " holds ") + results.names[plan.results.front()];
  }
  if (!text.empty()) progress.Note("note: as many outputs as operations: " + text);
}

bool UsesStandardOutput(const std::vector<OutputPlan>& plans) {
  return std::any_of(plans.begin(), plans.end(), [](const OutputPlan& plan) { return plan.file == "-"; });
}

}  // namespace tool
