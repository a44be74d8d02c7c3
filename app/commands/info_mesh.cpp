// zbr info of a model: its size and shells, and what keeps them from being closed surfaces that face outwards.
#include "app/commands/info_mesh.h"

#include <zbr-drawing/measures.h>
#include <zbr-drawing/numbers.h>
#include <zbr-drawing/survey.h>
#include <zbr-formats/files.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "app/commands/json.h"
#include "app/commands/model_files.h"
#include "app/commands/report.h"
#include "app/io/output_files.h"
#include "app/io/progress.h"
#include "app/libraries.h"

namespace tool {
namespace {

constexpr std::size_t kMostShells = 10;

// Nothing for a count of 0. The noun comes in its two forms.
void AddFinding(Report& report, const std::string& label, std::size_t count, const std::string& singular, const std::string& plural,
                const std::string& more) {
  if (count > 0) report.Line(label, std::to_string(count) + " " + (count == 1 ? singular : plural) + more);
}

std::string FormatName(const FileOptions& options) {
  std::string name = IsMeshFile(options.file) ? ExtensionOf(options.file) : options.modelFormat;
  for (char& c : name) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return name;
}

std::string PointText(const ZBR_PT3& p) {
  return NumberText(p.x()) + " " + NumberText(p.y()) + " " + NumberText(p.z());
}

std::string ShellText(const ShellSurvey& shell) {
  std::string text = std::to_string(shell.triangles) + (shell.triangles == 1 ? " triangle, " : " triangles, ");
  text += std::string(shell.isClosed      ? "closed"
                      : shell.borders > 0 ? "open"
                                          : "ends at junctions") +
          ", Euler number " + std::to_string(shell.euler);
  if (shell.genus >= 0) text += ", genus " + std::to_string(shell.genus);
  return text + (shell.isInward ? ", facing inwards" : "");
}

void AddShells(const Survey& survey, Report& report) {
  const std::size_t count = survey.shells.size(), shown = std::min(count, kMostShells);
  report.Line("shells", std::to_string(count));
  for (std::size_t s = 0; s < shown; ++s) report.Line("shell " + std::to_string(s), ShellText(survey.shells[s]));
  if (shown < count) report.Line("shell ...", "and " + std::to_string(count - shown) + " more");
}

void AddFindings(const Survey& survey, Report& report) {
  AddFinding(report, "open", survey.borders, "edge", "edges", " of one triangle");
  AddFinding(report, "junction", survey.junctions, "edge", "edges", " of more than two triangles");
  AddFinding(report, "turned", survey.turned, "edge", "edges", " along which both triangles run the same way");
  AddFinding(report, "pinched", survey.pinches, "place", "places", " where a surface touches itself at a point");
  AddFinding(report, "repeated", survey.repeated, "triangle", "triangles", " with the corners of another one");
  AddFinding(report, "flat", survey.flat, "triangle", "triangles", " without area but for rounding");
  AddFinding(report, "inward", survey.inward, "shell", "shells", " facing inwards, as only those of cavities should");
  if (survey.IsClean()) report.Line("clean", "closed surfaces that face outwards");
}

std::string TextReport(const FileOptions& options, const Mesh& mesh, const Model& model, const Survey& survey) {
  Report report;
  report.Line("file", BaseName(options.file));
  report.Line("format", FormatName(options));
  report.Line("triangles", std::to_string(mesh.triangles.size()));
  report.Line("points", std::to_string(model.pointCount));
  report.Line("box", PointText(model.low) + " to " + PointText(model.high));
  AddShells(survey, report);
  AddFindings(survey, report);
  return report.Listed(kReportColumn);
}

bool BoundsVolume(const ShellSurvey& shell) {
  return shell.isClosed && shell.turned == 0;
}

Json ShellsJson(const Model& model, const Survey& survey) {
  Json shells = Json::array();
  for (std::size_t s = 0; s < survey.shells.size(); ++s) {
    const ShellSurvey& shell = survey.shells[s];
    const ModelMeasures measures = MeasuresOf(model, s);
    shells.push_back({{"triangles", shell.triangles},
                      {"closed", shell.isClosed},
                      {"facing", model.facing[s] == Facing::kUnknown ? Json() : Json(shell.isInward ? "inwards" : "outwards")},
                      {"euler", shell.euler},
                      {"genus", shell.genus < 0 ? Json() : Json(shell.genus)},
                      {"area", measures.area},
                      {"volume", BoundsVolume(shell) ? Json(measures.volume) : Json()}});
  }
  return shells;
}

// Of all shells together: those that face inwards are cavities.
Json VolumeJson(const Model& model, const Survey& survey, Json& centroid) {
  double volume = 0.0;
  ZBR_PT3 moment;
  for (std::size_t s = 0; s < survey.shells.size(); ++s) {
    if (!BoundsVolume(survey.shells[s])) return {};
    const ModelMeasures measures = MeasuresOf(model, s);
    volume += measures.volume;
    moment += (measures.centroid - model.low) * measures.volume;
  }
  if (volume != 0) centroid = JsonOf(model.low + moment / volume);
  return volume;
}

std::string JsonReport(const FileOptions& options, const Mesh& mesh, const Model& model, const Survey& survey) {
  double area = 0.0;
  for (std::size_t s = 0; s < survey.shells.size(); ++s) area += MeasuresOf(model, s).area;
  Json centroid;
  const Json volume = VolumeJson(model, survey, centroid);
  const Json json = {{"file", BaseName(options.file)},
                     {"format", FormatName(options)},
                     {"triangles", mesh.triangles.size()},
                     {"points", model.pointCount},
                     {"box", {{"low", JsonOf(model.low)}, {"high", JsonOf(model.high)}}},
                     {"area", area},
                     {"volume", volume},
                     {"centroid", centroid},
                     {"clean", survey.IsClean()},
                     {"faults",
                      {{"open", survey.borders},
                       {"junction", survey.junctions},
                       {"turned", survey.turned},
                       {"pinched", survey.pinches},
                       {"repeated", survey.repeated},
                       {"flat", survey.flat},
                       {"inward", survey.inward}}},
                     {"shells", ShellsJson(model, survey)}};
  return TextOf(json);
}

}  // namespace

int RunMeshInfo(const FileOptions& options) {
  if (!options.input.layers.empty()) throw Failure(options.file, "a model has no layers to choose");
  Progress progress;
  progress.Stage("reading " + options.file);
  const Mesh mesh = ReadModel(options.file, options.modelFormat);
  progress.Stage("examining");
  constexpr double kAnyCrease = 180;  // no lines are drawn
  const Model model = MakeModel(mesh, kAnyCrease);
  const Survey survey = MakeSurvey(model);
  progress.Stage("");
  WriteToStandardOutput((options.json ? JsonReport : TextReport)(options, mesh, model, survey));
  return kExitFine;
}

}  // namespace tool
