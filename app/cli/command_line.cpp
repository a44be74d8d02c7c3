// Declares the commands and the options of those on drawings, parses arguments and runs the command they name.
#include "app/cli/command_line.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/meshes.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string_view>

#include "app/cli/help_format.h"
#include "app/cli/manual.h"
#include "app/cli/shared_options.h"
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

// Models have an option of their own.
std::string CheckModelFormat(std::string& format) {
  const auto& models = zbr::formats::MeshFormats();
  if (std::find(models.begin(), models.end(), format) == models.end()) return "";
  return format + " is a format of models, which --model-format tells";
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
      ->check(CLI::Validator(CheckModelFormat, ""))
      ->check(OneOf({"dxf", "geojson", "wkt", "text", "svg"}))
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
            "Join ends of DXF lines and arcs that are at most this far apart, and with --faces all draw those on that stop so far "
            "short of "
            "another line; by default 1/1000000 of the larger side");
  command
      .add_option_function<std::string>(
          "--faces",
          [&input](const std::string& faces) {
            input.flatten.faces = faces == "all" ? LineFaces::kAll : (faces == "outer" ? LineFaces::kOuter : LineFaces::kRings);
          },
          "What open lines bound where more than two meet. Where an even number meets everywhere: what contours do that were cut "
          "there; elsewhere what they enclose together (rings, by default). That everywhere (outer). Or every cell into which all "
          "lines, closed and open ones, cut the plane (all)")
      ->check(OneOf({"rings", "outer", "all"}))
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
  AddOutputs(command, bool_.outputs,
             "File for the results, the format by its extension; may be repeated. "
             "Without it the table of --stats is printed. See 'zbr help outputs'");
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
  AddOutputs(command, nest_.outputs, "File for the nested loops; without it they are listed");
  DeclareInput(command, nest_.input);
  AddWriting(command, nest_.input);
}

void CommandLine::DeclareTransform() {
  CLI::App& command = *app_.add_subcommand(
      "transform", "Mirror, scale, turn and move a drawing, in this order; to DXF with all its layers and open lines");
  command.add_option("file", transform_.file, "The drawing")->required()->type_name("FILE");
  AddOutputs(command, transform_.outputs, "File for the drawing; formats other than DXF get the region that it bounds")->required();
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
  AddOutputs(command, check_.outputs, "File for the repaired region; needs --fix");
  command.add_flag("--json", check_.json, "Print a JSON object with every place of every finding");
  DeclareInput(command, check_.input);
  AddWriting(command, check_.input);
}

void CommandLine::DeclareClip() {
  CLI::App& command = *app_.add_subcommand("clip", "Cut lines where a region begins and ends, and keep those inside or outside");
  command.add_option("lines", clip_.lines, "The lines, open or closed, with heights if the file has any")
      ->required()
      ->type_name("LINES");
  command.add_option("region", clip_.region, "The drawing that bounds the region")->required()->type_name("REGION");
  AddOutputs(command, clip_.outputs,
             "File for the lines, the format by its extension; may be repeated. {side} in a name stands for one file for each "
             "side. Without it the table of --stats is printed");
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
  command.add_option("file", options.file, "The drawing, or the model")->required()->type_name("FILE");
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
