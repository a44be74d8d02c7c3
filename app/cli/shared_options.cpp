#include "app/cli/shared_options.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cmath>

namespace tool {

std::string Unprotected(const std::string& argument) {
  return argument.substr(argument.rfind(' ', 0) == 0 ? 1 : 0);
}

namespace {

constexpr NumberKind kJobs = {"N", "a whole number from 1 to 256", 1, 256, true};

template <class Number>
CLI::Option* AddNumberOf(CLI::App& command, const std::string& name, const NumberKind& kind, Number& value,
                         const std::string& description) {
  return command
      .add_option_function<std::string>(
          name,
          [&value, &kind, name](const std::string& text) {
            const std::string number = Unprotected(text);
            const auto parsed = ParseNumber(number);
            if (!parsed || *parsed < kind.low || *parsed > kind.high || (kind.isWhole && *parsed != std::floor(*parsed)))
              throw CLI::ValidationError(name, Quoted(number) + " is not " + kind.expected);
            value = static_cast<Number>(*parsed);
          },
          description)
      ->type_name(kind.typeName);
}

}  // namespace

CLI::Option* AddNumber(CLI::App& command, const std::string& name, const NumberKind& kind, double& value,
                       const std::string& description) {
  return AddNumberOf(command, name, kind, value, description);
}

CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values, const std::string& description,
                     const std::string& typeName) {
  return command.add_option(name, values, description)->delimiter(',')->allow_extra_args(false)->type_name(typeName);
}

CLI::Validator OneOf(const std::vector<std::string>& choices) {
  const auto check = [choices](const std::string& word) -> std::string {
    if (std::find(choices.begin(), choices.end(), word) != choices.end()) return "";
    std::string text = Quoted(word) + " is none of ";
    for (const std::string& choice : choices) text += (&choice == choices.data() ? "" : ", ") + choice;
    return text;
  };
  return {check, ""};
}

CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value, const std::vector<std::string>& choices,
                       const std::string& description, const std::string& typeName) {
  return command.add_option(name, value, description)->check(OneOf(choices))->type_name(typeName);
}

CLI::Option* AddOutputs(CLI::App& command, std::vector<std::string>& outputs, const std::string& description) {
  const auto refuseEmpty = [](const std::string& name) -> std::string {
    if (name.empty()) throw Failure("-o: no name of a file");
    return "";
  };
  return command.add_option("-o,--output", outputs, description)
      ->check(CLI::Validator(refuseEmpty, ""))
      ->allow_extra_args(false)
      ->type_name("OUT");
}

void AddDxfVersion(CLI::App& command, DxfVersion& version) {
  command
      .add_option_function<std::string>(
          "--dxf-version", [&version](const std::string& name) { version = name == "R12" ? DxfVersion::kR12 : DxfVersion::kR2000; },
          "Of DXF files that are written: R2000 by default; R12, which has neither ellipses nor splines, for machines and old "
          "programs")
      ->check(OneOf({"R12", "R2000"}))
      ->type_name("VERSION");
}

void AddWeld(CLI::App& command, double& weld) {
  AddNumber(command, "--weld", kPart, weld,
            "Join points closer together than this part of the diagonal of the model's box; by default only equal ones");
}

void AddObjects(CLI::App& command, std::vector<std::string>& models, std::vector<std::string>& objects) {
  command
      .add_option("models", models, "Files of triangles: STL, OBJ, PLY, OFF, glTF, 3MF. Several are objects that hide one another")
      ->type_name("MODEL ...");
  command
      .add_option(
          "--object", objects,
          "One more object, moved by DX, DY, DZ in the coordinates of the models; may be repeated, and may name a file again")
      ->allow_extra_args(false)
      ->type_name("MODEL[,DX,DY,DZ]");
}

void AddModelFormat(CLI::App& command, std::string& format) {
  AddChoice(command, "--model-format", format, MeshFormats(),
            "Format of models whose extension does not tell it, and of '-': stl, obj, ply, off, gltf, glb or 3mf", "FORMAT");
}

void AddUnit(CLI::App& command, std::string& unit) {
  command.add_option("--unit", unit, "Unit of the model: mm (by default), cm, m, in, ft, ...")->type_name("UNIT");
}

void AddJobs(CLI::App& command, unsigned& jobs) {
  AddNumberOf(command, "--jobs", kJobs, jobs, "Threads to use; by default as many as there are processors");
}

void AddAxes(CLI::App& command, std::string& axes) {
  AddChoice(command, "--axes", axes, {"y", "z"}, "Axis of the model that points up; by default what the format says, else z",
            "AXIS");
}

void AddCurves(CLI::App& command, bool& curves) {
  command.add_flag("--curves", curves, "Write arcs of circles to WKT as such, in CURVEPOLYGONs; DXF and pictures have them anyway");
}

void AddWriting(CLI::App& command, InputOptions& input) {
  Writing& writing = input.writing;
  AddCurves(command, writing.curves);
  AddNumber(command, "--simplify", kLength, writing.simplify,
            "Leave out points of results that are at most this far from the straight edges without them; curves stay");
  command.add_flag("--entities", writing.dxf.entities,
                   "Write a LINE, ARC, CIRCLE, ELLIPSE or SPLINE to DXF for each piece, in place of polylines");
  command
      .add_option_function<std::string>(
          "--layer-by", [&input](const std::string& by) { input.flatten.pens = input.writing.dxf.keepsPens = by == "source"; },
          "Layers of DXF files that are written: one for each operation (by default), or those of the drawings that edges come "
          "from (source), with their colours and line types")
      ->check(OneOf({"operation", "source"}))
      ->type_name("WHAT");
  AddDxfVersion(command, writing.dxf.version);
}

void AddPlacements(CLI::App& command, Placements& placements) {
  const auto add = [&](const char* name, std::vector<std::string>& values, const char* typeName, const char* description) {
    command.add_option(name, values, description)->allow_extra_args(false)->type_name(typeName);
  };
  add("--move", placements.move, "OPERAND=X,Y", "Move an operand, told by its letter, as in B=10,5; may be repeated for others");
  add("--turn", placements.turn, "OPERAND=DEGREES", "Turn an operand counter-clockwise, before it is moved");
  add("--scale", placements.scale, "OPERAND=FACTOR", "Scale an operand, before it is turned");
  add("--mirror", placements.mirror, "OPERAND=AXIS", "Negate the x or the y coordinates of an operand, first of all");
  add("--about", placements.about, "OPERAND=X,Y",
      "The point that turning, scaling and mirroring leave in place; by default the origin");
}

void AddView(CLI::App& command, ViewOptions& view) {
  command.add_option("--view", view.view, "The view, by its name; by default iso. See 'zbr help views'")->type_name("VIEW");
  command.add_option("--look", view.look, "The view along this direction, in place of --view")->type_name("X,Y,Z");
  command.add_option("--up", view.up, "With --look: the direction that is drawn upwards; by default that of --axes")
      ->type_name("X,Y,Z");
  AddAxes(command, view.axes);
}

}  // namespace tool
