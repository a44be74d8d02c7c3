// Declares every command and option, parses arguments and runs the command they name.
#include "app/cli/command_line.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <limits>
#include <string_view>

#include "app/cli/help_format.h"
#include "app/cli/manual.h"
#include "app/libraries.h"

namespace tool {
namespace {

// Whether it is a negative number or starts a list of numbers: "-3", "-1,0,2.5".
bool StartsNegative(const std::string& argument) {
  return argument.size() > 1 && argument.front() == '-' && argument.find_first_of("0123456789.") == 1 &&
         argument.find_first_not_of("0123456789.,+-eE", 1) == std::string::npos;
}

// The parser takes "-3" for an option; behind a blank it is a value.
void Protect(std::vector<std::string>& arguments) {
  for (std::string& argument : arguments) {
    if (StartsNegative(argument)) argument.insert(0, 1, ' ');
  }
}

std::string Unprotected(const std::string& argument) {
  return argument.substr(argument.rfind(' ', 0) == 0 ? 1 : 0);
}

// What an option takes.
struct NumberKind {
  const char* typeName;
  const char* expected;  // "'x' is not ..."
  double low, high;
};
constexpr NumberKind kLength = {"LENGTH", "a length", 0, std::numeric_limits<double>::max()};
constexpr NumberKind kDegrees = {"DEGREES", "an angle from 0 to 180 degrees", 0, 180};
constexpr NumberKind kOpening = {"DEGREES", "an angle from 0 to 170 degrees", 0, 170};
constexpr NumberKind kTurn = {"DEGREES", "a number of degrees", -1e9, 1e9};
constexpr NumberKind kFactor = {"FACTOR", "a positive factor", std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::max()};
constexpr NumberKind kPart = {"PART", "a number from 0 to 0.1", 0, 0.1};

// Numbers are parsed by the tool's own routine: the parser's depends on the locale and takes "nan".
CLI::Option* AddNumber(CLI::App& command, const std::string& name, const NumberKind& kind, double& value,
                       const std::string& description) {
  return command
      .add_option_function<std::string>(
          name,
          [&value, &kind, name](const std::string& text) {
            const std::string number = Unprotected(text);
            const auto parsed = ParseNumber(number);
            if (!parsed || *parsed < kind.low || *parsed > kind.high)
              throw CLI::ValidationError(name, Quoted(number) + " is not " + kind.expected);
            value = *parsed;
          },
          description)
      ->type_name(kind.typeName);
}

CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values, const std::string& description,
                     const std::string& typeName) {
  return command.add_option(name, values, description)->delimiter(',')->allow_extra_args(false)->type_name(typeName);
}

CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value, const std::vector<std::string>& choices,
                       const std::string& description, const std::string& typeName) {
  return command.add_option(name, value, description)->check(CLI::IsMember(choices).description(""))->type_name(typeName);
}

void AddDxfVersion(CLI::App& command, DxfVersion& version) {
  command
      .add_option_function<std::string>(
          "--dxf-version", [&version](const std::string& name) { version = name == "R12" ? DxfVersion::kR12 : DxfVersion::kR2000; },
          "Of DXF files that are written: R2000 by default; R12, which has neither ellipses nor splines, for machines and old "
          "programs")
      ->check(CLI::IsMember({"R12", "R2000"}).description(""))
      ->type_name("VERSION");
}

void AddWeld(CLI::App& command, double& weld) {
  AddNumber(command, "--weld", kPart, weld,
            "Join points closer together than this part of the diagonal of the model's box; by default only equal ones");
}

void AddObjects(CLI::App& command, std::vector<std::string>& models, std::vector<std::string>& objects) {
  command.add_option("models", models, "Files of triangles: STL, OBJ, PLY, OFF, glTF. Several are objects that hide one another")
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
            "Format of models whose extension does not tell it, and of '-': stl, obj, ply, off, gltf or glb", "FORMAT");
}

void AddUnit(CLI::App& command, std::string& unit) {
  command.add_option("--unit", unit, "Unit of the model: mm (by default), cm, m, in, ft, ...")->type_name("UNIT");
}

void AddJobs(CLI::App& command, unsigned& jobs) {
  command.add_option("--jobs", jobs, "Threads to use; by default as many as there are processors")
      ->check(CLI::Range(1U, 256U).description(""))
      ->type_name("N");
}

void AddAxes(CLI::App& command, std::string& axes) {
  AddChoice(command, "--axes", axes, {"y", "z"}, "Axis of the model that points up; by default what the format says, else z",
            "AXIS");
}

void AddCurves(CLI::App& command, bool& curves) {
  command.add_flag("--curves", curves, "Write arcs of circles to WKT as such, in CURVEPOLYGONs; DXF and pictures have them anyway");
}

// Of commands that write regions.
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
      ->check(CLI::IsMember({"operation", "source"}).description(""))
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

}  // namespace

CommandLine::CommandLine()
    : app_("Combines, clips and examines planar drawings, and draws triangle models without their hidden lines.", "zbr") {
  app_.set_version_flag("--version", "zbr " ZBR_VERSION, "Print the version and exit");
  app_.set_help_flag("-h,--help", "Print help and exit");
  app_.allow_windows_style_options(false);  // there "/parts/a.dxf" is a file as well; commands declared below inherit this
  app_.require_subcommand(1);
  app_.formatter(std::make_shared<HelpFormat>());
  DeclareBool();
  DeclareClip();
  DeclareNest();
  DeclareTransform();
  DeclareInside();
  DeclareFile("info",
              "Print what a drawing holds: loops, vertices, area, box, depth of nesting; or a model, and what is wrong with it",
              info_);
  AddModelFormat(*app_.get_subcommand("info"), info_.modelFormat);
  app_.get_subcommand("info")->add_flag(
      "--json", info_.json, "Print a JSON object, with perimeter, centroid and second moments too; of models area and volume");
  DeclareCheck();
  DeclareDraw();
  DeclareOutline();
  DeclarePick();
  DeclareHelp();
  std::string topics;
  for (const Topic& topic : Topics()) topics += (topics.empty() ? "" : ", ") + topic.name;
  app_.footer("'zbr help COMMAND' tells the options of a command, 'zbr help TOPIC' more about: " + topics + ".");
}

void CommandLine::DeclareInput(CLI::App& command, InputOptions& input) {
  command
      .add_option("--format", input.format,
                  "Format of '-' and of files whose extension does not tell it: dxf, geojson, wkt, text or svg")
      ->check(CLI::IsMember({"dxf", "geojson", "wkt", "text", "svg"}).description(""))
      ->type_name("FORMAT");
  AddList(command, "--layer", input.layers, "Read only these layers of DXF files, or features of this name of GeoJSON files",
          "NAME,...");
  command.add_flag("--all-layers", input.allLayers, "Read layers of DXF files that are off or frozen, too");
  command.add_flag("--strict", input.strict, "Exit with 1 where anything is left out that may bear contours");
  AddChoice(command, "--fill", input.fill, {"evenodd", "nonzero", "positive", "negative"},
            "What is inside: within an odd number of loops (evenodd, by default, with a warning where loops cross), or where their "
            "turns do not cancel (nonzero), or add up to counter-clockwise (positive) or clockwise ones (negative)",
            "RULE");
  AddNumber(command, "--deviation", kLength, input.flatten.deviation,
            "Largest distance of a flattened arc from the true one; by default 1/10000 of the larger side of all drawings read");
  AddNumber(command, "--join", kLength, input.flatten.join,
            "Join ends of DXF lines and arcs that are at most this far apart; by default 1/1000000 of the larger side");
  command
      .add_option_function<std::string>(
          "--faces",
          [&input](const std::string& faces) {
            input.flatten.faces = faces == "all" ? LineFaces::kAll : (faces == "outer" ? LineFaces::kOuter : LineFaces::kRings);
          },
          "What open lines bound where more than two meet. Where an even number meets everywhere: what contours do that were cut "
          "there; elsewhere what they enclose together (rings, by default). That everywhere (outer). Or every cell into which all "
          "lines, closed and open ones, cut the plane (all)")
      ->check(CLI::IsMember({"rings", "outer", "all"}).description(""))
      ->type_name("FACES");
}

void CommandLine::DeclareBool() {
  CLI::App& command = *app_.add_subcommand("bool", "Combine drawings: union, intersection, differences, symmetric difference");
  AddList(command, "--op", bool_.operations,
          "One or several of union, intersection, xor, a-b (the first drawing without all others) and b-a (the others without the "
          "first)",
          "OP,...")
      ->required();
  constexpr int kAnyNumber = 1 << 20;
  command.add_option("files", bool_.files, "The drawings, A, B and so on; nothing is written to them unless -o names them")
      ->required()
      ->expected(1, kAnyNumber)
      ->type_name("A B ...");
  command
      .add_option("-o,--output", bool_.outputs,
                  "File for the results, the format by its extension; may be repeated. "
                  "Without it the table of --stats is printed. See 'zbr help outputs'")
      ->allow_extra_args(false)
      ->type_name("OUT");
  AddList(command, "--layer-a", bool_.layersA,
          "Read only these layers of the first drawing; with --layer-b one file may be both operands", "NAME,...");
  AddList(command, "--layer-b", bool_.layersB, "The same of the second drawing", "NAME,...");
  command.add_flag("--stats", bool_.stats, "Print edges, loops, areas and the milliseconds of each stage");
  DeclareInput(command, bool_.input);
  AddWriting(command, bool_.input);
  AddPlacements(command, bool_.placements);
}

void CommandLine::DeclareNest() {
  CLI::App& command = *app_.add_subcommand("nest", "Tell outer loops from holes; list them or write them oriented accordingly");
  command.add_option("file", nest_.file, "The drawing")->required()->type_name("FILE");
  command.add_option("-o,--output", nest_.outputs, "File for the nested loops; without it they are listed")
      ->allow_extra_args(false)
      ->type_name("OUT");
  DeclareInput(command, nest_.input);
  AddWriting(command, nest_.input);
}

void CommandLine::DeclareTransform() {
  CLI::App& command = *app_.add_subcommand(
      "transform", "Mirror, scale, turn and move a drawing, in this order; to DXF with all its layers and open lines");
  command.add_option("file", transform_.file, "The drawing")->required()->type_name("FILE");
  command
      .add_option("-o,--output", transform_.outputs, "File for the drawing; formats other than DXF get the region that it bounds")
      ->required()
      ->allow_extra_args(false)
      ->type_name("OUT");
  AddChoice(command, "--mirror", transform_.placement.mirror, {"x", "y"}, "Negate the x or the y coordinates", "AXIS");
  AddNumber(command, "--scale", kFactor, transform_.placement.scale, "Factor of all lengths");
  AddNumber(command, "--turn", kTurn, transform_.placement.turn, "Angle, counter-clockwise");
  command
      .add_option("--about", transform_.placement.about,
                  "The point that mirroring, scaling and turning leave in place; by default the origin")
      ->type_name("X,Y");
  command.add_option("--move", transform_.placement.move, "How far to move")->type_name("X,Y");
  AddCurves(command, transform_.input.writing.curves);
  AddDxfVersion(command, transform_.input.writing.dxf.version);
  DeclareInput(command, transform_.input);
}

void CommandLine::DeclareInside() {
  CLI::App& command = *app_.add_subcommand("inside", "Tell for points whether they are in or out, or on an edge or a vertex");
  command.add_option("file", inside_.file, "The drawing")->required()->type_name("FILE");
  command
      .add_option("points", inside_.coordinates,
                  "Coordinates, x and y in turn; without any, points are read from standard input, one a line")
      ->type_name("X Y ...");
  DeclareInput(command, inside_.input);
}

void CommandLine::DeclareCheck() {
  CLI::App& command = *app_.add_subcommand(
      "check", "Find open, degenerate, crossing and overlapping loops and repeated points; exit with 1 if there are any");
  command.add_option("file", check_.file, "The drawing")->required()->type_name("FILE");
  command.add_flag("--fix", check_.fix, "Write the region that the drawing is taken for, valid, to the files of -o; exit with 0");
  command.add_option("-o,--output", check_.outputs, "File for the repaired region; needs --fix")
      ->allow_extra_args(false)
      ->type_name("OUT");
  command.add_flag("--json", check_.json, "Print a JSON object with every place of every finding");
  DeclareInput(command, check_.input);
  AddWriting(command, check_.input);
}

void CommandLine::DeclareDraw() {
  CLI::App& command = *app_.add_subcommand("draw", "Draw models of triangles without their hidden lines, in one or several views");
  AddObjects(command, draw_.models, draw_.objects);
  AddModelFormat(command, draw_.modelFormat);
  command
      .add_option("-o,--output", draw_.outputs,
                  "File for the drawing, .svg, .pdf, .dxf or .json; may be repeated. Without it the table of --stats is printed")
      ->allow_extra_args(false)
      ->type_name("OUT");
  AddList(command, "--view", draw_.views,
          "One or several of front, back, left, right, top, bottom, iso and dimetric; by default iso. See 'zbr help views'",
          "VIEW,...");
  command.add_option("--look", draw_.look, "A view along this direction, beside those of --view")->type_name("X,Y,Z");
  command.add_option("--up", draw_.up, "With --look: the direction that is drawn upwards; by default that of --axes")
      ->type_name("X,Y,Z");
  command
      .add_option("--eye", draw_.eye,
                  "A perspective from this point beside the views of --view: to the middle of the model, or along --look")
      ->type_name("X,Y,Z");
  AddNumber(
      command, "--fov", kOpening, draw_.fov,
      "With --eye: cut the picture off at this angle, at most 170; by default all is drawn, and 60 if the eye is within the model");
  command
      .add_option("--section", draw_.sections,
                  "A section beside the other views: X=10, seen as the right view is; Y=5..20, what lies between two planes; or "
                  "1,0,1=7.5, a plane at that distance from the origin, seen from there. May be repeated")
      ->allow_extra_args(false)
      ->type_name("PLANE");
  AddAxes(command, draw_.axes);
  AddNumber(command, "--crease", kDegrees, draw_.crease, "Draw edges at which the surface bends by more than this; by default 30");
  AddWeld(command, draw_.weld);
  AddNumber(command, "--contact", kLength, draw_.contact,
            "Bodies at most this far apart stand face to face, and the edges that they share are drawn; by default four times what "
            "coordinates are rounded to, where they were rounded to single precision");
  AddChoice(command, "--intersections", draw_.intersections, {"on", "off"},
            "Draw the lines where bodies pass through each other, or a body through itself; on by default", "SWITCH");
  DeclareSheet(command);
  AddJobs(command, draw_.jobs);
  command.add_flag("--stats", draw_.stats, "Print triangles, edges, lines and the milliseconds of each stage");
  AddDxfVersion(command, draw_.dxf);
  AddChoice(command, "--format", draw_.format, {"svg", "pdf", "dxf", "json"},
            "Format of '-' and of outputs whose extension does not tell it: svg, pdf, dxf or json", "FORMAT");
}

// Options on how the views come to paper.
void CommandLine::DeclareSheet(CLI::App& command) {
  AddChoice(command, "--sheet", draw_.sheet, {"first", "third"},
            "Arrange the views in first- or third-angle projection on a sheet with frame and title; by default first for several "
            "views, and no sheet for one",
            "ANGLE");
  AddChoice(
      command, "--hidden", draw_.hidden, {"none", "dashed", "layer"},
      "Hidden lines: none, dashed or layer, on a layer that is switched off; by default dashed in views along an axis, none in "
      "others such as iso",
      "STYLE");
  AddChoice(
      command, "--tangent", draw_.tangent, {"none", "thin", "layer"},
      "Smooth edges at which fillets and other bent faces end: none (by default), thin, or layer, on a layer that is switched off",
      "STYLE");
  AddChoice(
      command, "--silhouettes", draw_.silhouettes, {"facets", "smooth"},
      "Where curved surfaces turn away: along edges of their facets, or on the smooth surface that they stand for; by default "
      "smooth for scans, whose creases are rough, else facets",
      "KIND");
  AddChoice(command, "--curves", draw_.curves, {"on", "off"},
            "Draw chains of edges that lie on a circle as circles, ellipses and arcs (on, by default), or as they are", "WHETHER");
  command
      .add_option("--scale", draw_.scale,
                  "Such as 1:2, 5:1 or 0.1; by default the largest of 1, 2, 2.5, 5, 10, ... that fits, with fit the largest of any")
      ->type_name("SCALE");
  command
      .add_option("--paper", draw_.paper,
                  "A4 to A0, lying or standing as it suits, or WIDTHxHEIGHT in mm; by default A4 for one view and A3 for several")
      ->type_name("SIZE");
  command.add_flag("--centre-lines", draw_.centreLines, "Draw the centres and axes of circles and cylinders as chain lines");
  command.add_flag(
      "--fill", draw_.fill,
      "Fill what each object covers and nearer ones leave visible: in SVG in a light shade, in DXF as closed polylines on "
      "layers FILL-name, in JSON as polygons");
  AddUnit(command, draw_.unit);
  command.add_option("--title", draw_.title, "Title of the sheet; by default the name of the model")->type_name("TEXT");
  command.add_option("--number", draw_.number, "Number of the drawing, for the sheet")->type_name("TEXT");
  command.add_option("--author", draw_.author, "Who drew it, for the sheet")->type_name("TEXT");
  command.add_option("--date", draw_.date, "Its date, for the sheet, as it is to be written")->type_name("TEXT");
}

void CommandLine::DeclarePick() {
  CLI::App& command =
      *app_.add_subcommand("pick", "Tell which triangle of a model is seen at points of a drawing, and how high it is");
  command.add_option("model", pick_.file, "The model")->required()->type_name("MODEL");
  command
      .add_option("points", pick_.coordinates,
                  "Coordinates in the drawing, x and y in turn, in the unit of the model; without any, points are read from "
                  "standard input, one a line")
      ->type_name("X Y ...");
  AddModelFormat(command, pick_.modelFormat);
  AddView(command, pick_.view);
  AddWeld(command, pick_.weld);
}

void CommandLine::DeclareOutline() {
  CLI::App& command = *app_.add_subcommand(
      "outline", "Find what models cover in a view: their silhouettes as regions, loops with holes, in the unit of the model");
  AddObjects(command, outline_.models, outline_.objects);
  AddModelFormat(command, outline_.modelFormat);
  command
      .add_option(
          "-o,--output", outline_.outputs,
          "File for the outlines of all objects, the format by its extension; may be repeated. {object} in a name stands for "
          "one file for each object. Without it the table of --stats is printed. See 'zbr help outlines'")
      ->allow_extra_args(false)
      ->type_name("OUT");
  AddView(command, outline_.view);
  command.add_flag("--whole", outline_.whole, "Whole outlines, even where nearer objects cover them");
  AddWeld(command, outline_.weld);
  AddUnit(command, outline_.unit);
  AddJobs(command, outline_.jobs);
  command.add_flag("--stats", outline_.stats, "Print edges, loops, holes, areas and the milliseconds of each stage");
  AddDxfVersion(command, outline_.dxf);
  AddChoice(command, "--format", outline_.format, {"dxf", "geojson", "wkt", "text", "svg"},
            "Format of '-' and of outputs whose extension does not tell it: dxf, geojson, wkt, text or svg", "FORMAT");
}

void CommandLine::DeclareClip() {
  CLI::App& command = *app_.add_subcommand("clip", "Cut lines where a region begins and ends, and keep those inside or outside");
  command.add_option("lines", clip_.lines, "The lines, open or closed, with heights if the file has any")
      ->required()
      ->type_name("LINES");
  command.add_option("region", clip_.region, "The drawing that bounds the region")->required()->type_name("REGION");
  command
      .add_option("-o,--output", clip_.outputs,
                  "File for the lines, the format by its extension; may be repeated. {side} in a name stands for one file for each "
                  "side. Without it the table of --stats is printed")
      ->allow_extra_args(false)
      ->type_name("OUT");
  command.add_flag("--outside", clip_.outside, "Keep what is outside of the region");
  command.add_flag("--both", clip_.both, "Keep both, on layers of their own; what is inside comes first");
  command.add_flag("--stats", clip_.stats, "Print numbers of lines, their lengths in space and the milliseconds of each stage");
  AddList(command, "--region-layer", clip_.regionLayers,
          "Read only these layers of the region's file; --layer chooses among those of the lines", "NAME,...");
  DeclareInput(command, clip_.input);
  AddChoice(command, "--layer-by", clip_.layerBy, {"side", "source"},
            "Colours and line types of DXF files that are written: by the side (by default), or those of the lines (source)",
            "WHAT");
  AddDxfVersion(command, clip_.input.writing.dxf.version);
}

void CommandLine::DeclareFile(const std::string& name, const std::string& description, FileOptions& options) {
  CLI::App& command = *app_.add_subcommand(name, description);
  command.add_option("file", options.file, "The drawing")->required()->type_name("FILE");
  DeclareInput(command, options.input);
}

void CommandLine::DeclareHelp() {
  CLI::App& command = *app_.add_subcommand("help", "Print help on a command or a topic");
  command.add_option("topic", topic_, "A command or a topic")->type_name("TOPIC");
  command.add_flag("--man", manual_, "Print the manual page, for man(1)");
}

int CommandLine::Run(std::vector<std::string> arguments) {
  const auto isCommand = [&](const CLI::App* c) { return !arguments.empty() && c->get_name() == arguments.front(); };
  if (!arguments.empty() && arguments.front().rfind('-', 0) != 0 && app_.get_subcommands(isCommand).empty()) {
    throw Failure(Quoted(arguments.front()) + " is no command; see 'zbr help'");
  }
  Protect(arguments);
  std::reverse(arguments.begin(), arguments.end());  // the parser takes them from the back
  try {
    app_.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    const auto chosen = app_.get_subcommands();
    return PrintHelp(chosen.empty() ? app_ : *chosen.front());
  } catch (const CLI::Success& request) {  // --version
    return app_.exit(request);
  } catch (const CLI::ParseError& error) {
    throw Failure(std::string(error.what()) + "; see 'zbr help'");
  }
  return RunChosen();
}

int CommandLine::RunChosen() {
  if (app_.got_subcommand("bool")) return RunBool(bool_);
  if (app_.got_subcommand("clip")) return RunClip(clip_);
  if (app_.got_subcommand("nest")) return RunNest(nest_);
  for (std::string* text : {&transform_.placement.move, &transform_.placement.about}) *text = Unprotected(*text);
  for (const char* const option : {"--turn", "--scale", "--mirror"})
    transform_.placement.turns = transform_.placement.turns || app_.get_subcommand("transform")->count(option) > 0;
  if (app_.got_subcommand("transform")) return RunTransform(transform_);
  for (auto* coordinates : {&inside_.coordinates, &pick_.coordinates}) {
    for (std::string& coordinate : *coordinates) coordinate = Unprotected(coordinate);
  }
  for (std::string& section : draw_.sections) section = Unprotected(section);
  for (std::string* text : {&draw_.look, &draw_.eye, &draw_.up, &draw_.scale, &draw_.paper, &draw_.title, &draw_.number,
                            &draw_.author, &draw_.date, &pick_.view.look, &pick_.view.up, &outline_.view.look, &outline_.view.up})
    *text = Unprotected(*text);
  if (app_.got_subcommand("inside")) return RunInside(inside_);
  if (app_.got_subcommand("info")) return RunInfo(info_);
  if (app_.got_subcommand("check")) return RunCheck(check_);
  if (app_.got_subcommand("draw")) return RunDraw(draw_);
  if (app_.got_subcommand("pick")) return RunPick(pick_);
  if (app_.got_subcommand("outline")) return RunOutline(outline_);
  return RunHelp();
}

int CommandLine::RunHelp() {
  const auto topic = std::find_if(Topics().begin(), Topics().end(), [&](const Topic& t) { return t.name == topic_; });
  const auto commands = app_.get_subcommands([&](const CLI::App* c) { return c->get_name() == topic_; });
  if (!manual_ && topic_.empty()) return PrintHelp(app_);
  if (!manual_ && !commands.empty()) return PrintHelp(*commands.front());
  if (!manual_ && topic == Topics().end()) throw Failure(Quoted(topic_) + " is neither a command nor a topic; see 'zbr help'");
  std::fputs((manual_ ? ManualPage(app_, Topics(), ZBR_VERSION) : Wrapped(Filled(topic->text))).c_str(), stdout);
  return kExitFine;
}

int CommandLine::PrintHelp(const CLI::App& app) const {
  std::fputs(Wrapped(app_.get_formatter()->make_help(&app, "zbr", CLI::AppFormatMode::Normal)).c_str(), stdout);
  return kExitFine;
}

}  // namespace tool
