// The layout of help texts: usage lines, names of arguments, breaking of long lines.
#include "app/cli/help_format.h"

#include <sstream>

namespace tool {
namespace {

constexpr std::size_t kColumn = 24;
constexpr std::size_t kWidth = 96;

}  // namespace

HelpFormat::HelpFormat() {
  column_width(kColumn);
}

std::string HelpFormat::make_usage(const CLI::App* app, std::string name) const {
  std::string usage = "Usage: " + (app->get_parent() != nullptr ? "zbr " + app->get_name() : name);
  usage += app->get_parent() != nullptr ? " [OPTION]..." : " COMMAND ...";
  for (const CLI::Option* option : app->get_options([](const CLI::Option* o) { return o->get_positional(); })) {
    const std::string argument = option->get_type_name();
    usage += option->get_required() ? " " + argument : " [" + argument + "]";
  }
  return usage + "\n";
}

std::string HelpFormat::make_option_name(const CLI::Option* option, bool isPositional) const {
  return isPositional ? option->get_type_name() : option->get_name(false, true);
}

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  return option->get_positional() || option->get_type_name().empty() ? "" : " " + option->get_type_name();
}

std::string Filled(const std::string& text) {
  std::string filled;
  std::istringstream lines(text);
  bool open = false;  // the last line may go on
  for (std::string line; std::getline(lines, line);) {
    const bool prose = !line.empty() && line.front() != ' ';
    if (open) filled += prose ? " " : "\n";
    filled += line;
    if (!prose) filled += "\n";
    open = prose;
  }
  return filled + (open ? "\n" : "");
}

std::string Wrapped(const std::string& text) {
  std::string wrapped;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t indent = line.rfind("  ", 0) == 0 ? kColumn : 0;
    while (line.size() > kWidth) {
      const std::size_t space = line.rfind(' ', kWidth);
      if (space == std::string::npos || space <= indent) break;
      wrapped += line.substr(0, space) + "\n";
      line = std::string(indent, ' ') + line.substr(space + 1);
    }
    wrapped += line + "\n";
  }
  return wrapped;
}

}  // namespace tool
