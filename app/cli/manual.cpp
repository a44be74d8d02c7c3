// Builds the manual page from the declared commands and options.
#include "app/cli/manual.h"

#include <cctype>
#include <sstream>

namespace tool {
namespace {

// Backslashes and hyphens mean something to roff, and so do dots and quotes that start a line.
std::string Roff(const std::string& text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\\') {
      escaped += "\\e";
    } else if (c == '-') {
      escaped += "\\-";
    } else {
      escaped += c;
    }
  }
  if (!escaped.empty() && (escaped.front() == '.' || escaped.front() == '\'')) escaped.insert(0, "\\&");
  return escaped;
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string Prose(const std::string& text) {
  std::string page;
  std::istringstream lines(text);
  bool literal = false;
  for (std::string line; std::getline(lines, line);) {
    const bool isLiteral = line.rfind("  ", 0) == 0;
    if (line.empty() && !literal) page += ".PP\n";
    if (isLiteral && !literal) page += ".RS\n.nf\n";
    if (!isLiteral && !line.empty() && literal) page += ".fi\n.RE\n.PP\n";
    if (isLiteral || !line.empty()) literal = isLiteral;
    if (line.empty() && literal) page += "\n";
    if (!line.empty()) page += Roff(isLiteral ? line.substr(2) : line) + "\n";
  }
  return page + (literal ? ".fi\n.RE\n" : "");
}

std::string OptionEntry(const CLI::Option& option) {
  std::string entry = ".TP\n";
  if (option.get_positional()) {
    entry += "\\fI" + Roff(option.get_type_name()) + "\\fR";
  } else {
    entry += "\\fB" + Roff(option.get_name(false, true)) + "\\fR";
    if (!option.get_type_name().empty()) entry += " \\fI" + Roff(option.get_type_name()) + "\\fR";
  }
  return entry + "\n" + Roff(option.get_description()) + ".\n";
}

std::string CommandEntry(const CLI::App& command) {
  std::string entry = ".SS zbr " + command.get_name();
  for (const CLI::Option* option : command.get_options([](const CLI::Option* o) { return o->get_positional(); })) {
    entry += " " + Roff(option->get_type_name());
  }
  entry += "\n" + Roff(command.get_description()) + ".\n";
  for (const CLI::Option* option : command.get_options()) entry += OptionEntry(*option);
  return entry;
}

}  // namespace

std::string ManualPage(const CLI::App& app, const std::vector<Topic>& topics, const std::string& version) {
  std::string page = ".TH ZBR 1 \"\" \"zbr " + version + "\" \"User Commands\"\n";
  page += ".SH NAME\nzbr \\- combine, clip and examine planar drawings, draw models and their outlines\n";
  page += ".SH SYNOPSIS\n\\fBzbr\\fR \\fICOMMAND\\fR [\\fIOPTION\\fR]... [\\fIFILE\\fR]...\n";
  page += ".SH DESCRIPTION\n" + Roff(app.get_description()) + "\n";
  for (const CLI::Option* option : app.get_options()) page += OptionEntry(*option);
  page += ".SH COMMANDS\n";
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) page += CommandEntry(*command);
  for (const Topic& topic : topics)
    page += ".SH " + (topic.name == "exit" ? "EXIT STATUS" : Upper(topic.name)) + "\n" + Prose(topic.text);
  return page;
}

}  // namespace tool
