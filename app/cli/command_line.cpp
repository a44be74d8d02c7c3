// Declares every command and option, parses arguments and runs the command they name.
#include "cli/command_line.h"

#include <algorithm>
#include <cstdio>

#include "cli/help_format.h"
#include "cli/manual.h"
#include "io/failure.h"
#include "io/numbers.h"

namespace tool {
namespace {

// The parser takes "-3" for an option; behind a blank it is a value.
void Protect(std::vector<std::string>& arguments) {
  for (std::string& argument : arguments) {
    if (argument.size() > 1 && argument.front() == '-' && ParseNumber(argument)) argument.insert(0, 1, ' ');
  }
}

std::string Unprotected(const std::string& argument) {
  return argument.substr(argument.rfind(' ', 0) == 0 ? 1 : 0);
}

// Lengths are parsed by the tool's own routine: the parser's depends on the locale and takes "nan".
CLI::Option* AddLength(CLI::App& command, const std::string& name, double& value, const std::string& description) {
  return command
      .add_option_function<std::string>(
          name,
          [&value, name](const std::string& text) {
            const std::string number = Unprotected(text);
            const auto length = ParseNumber(number);
            if (!length || *length < 0) throw CLI::ValidationError(name, Quoted(number) + " is not a length");
            value = *length;
          },
          description)
      ->type_name("LENGTH");
}

}  // namespace

CommandLine::CommandLine() : app_("Combines, nests and examines planar drawings.", "zbr") {
  app_.set_version_flag("--version", "zbr " ZBR_VERSION, "Print the version and exit");
  app_.set_help_flag("-h,--help", "Print help and exit");
  app_.require_subcommand(1);
  app_.formatter(std::make_shared<HelpFormat>());
  DeclareBool();
  DeclareNest();
  DeclareInside();
  DeclareFile("info", "Print what a drawing holds: loops, vertices, area, box, depth of nesting", info_);
  DeclareFile("check", "Find open, degenerate, crossing and overlapping loops and repeated points; exit with 1 if there are any",
              check_);
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
  command.add_option("--layer", input.layers, "Read only these layers of DXF files, or features of this name of GeoJSON files")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("NAME,...");
  AddLength(command, "--deviation", input.flatten.deviation,
            "Largest distance of a flattened arc from the true one; by default 1/10000 of the larger side of all drawings read");
  AddLength(command, "--join", input.flatten.join,
            "Join ends of DXF lines and arcs that are at most this far apart; by default 1/1000000 of the larger side");
}

void CommandLine::DeclareBool() {
  CLI::App& command = *app_.add_subcommand("bool", "Combine two drawings: union, intersection, differences, symmetric difference");
  command.add_option("--op", bool_.operations, "One or several of union, intersection, a-b, b-a, xor")
      ->required()
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("OP,...");
  command.add_option("files", bool_.files, "The two drawings, A and B")->required()->expected(2, 100)->type_name("A B");
  command
      .add_option("-o,--output", bool_.outputs,
                  "File for the results, the format by its extension; may be repeated, and more may follow after A and B. "
                  "Without it the table of --stats is printed. See 'zbr help outputs'")
      ->allow_extra_args(false)
      ->type_name("OUT");
  command.add_flag("--stats", bool_.stats, "Print edges, loops, areas, crossings and the milliseconds of each stage");
  DeclareInput(command, bool_.input);
}

void CommandLine::DeclareNest() {
  CLI::App& command = *app_.add_subcommand("nest", "Tell outer loops from holes; list them or write them oriented accordingly");
  command.add_option("file", nest_.file, "The drawing")->required()->type_name("FILE");
  command.add_option("-o,--output", nest_.outputs, "File for the nested loops; without it they are listed")
      ->allow_extra_args(false)
      ->type_name("OUT");
  DeclareInput(command, nest_.input);
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
  if (app_.got_subcommand("nest")) return RunNest(nest_);
  for (std::string& coordinate : inside_.coordinates) coordinate = Unprotected(coordinate);
  if (app_.got_subcommand("inside")) return RunInside(inside_);
  if (app_.got_subcommand("info")) return RunInfo(info_);
  if (app_.got_subcommand("check")) return RunCheck(check_);
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
