// Options that several commands have, and how numbers and lists are taken.
#pragma once

#include <CLI/CLI.hpp>

#include <limits>
#include <string>
#include <vector>

#include "app/commands/commands.h"
#include "app/libraries.h"

namespace tool {

// A negative number as the caller wrote it: the parser would take "-3" for an option, so a blank is put before it.
std::string Unprotected(const std::string& argument);

// What an option takes.
struct NumberKind {
  const char* typeName;
  const char* expected;  // "'x' is not ..."
  double low, high;
  bool isWhole = false;
};
inline constexpr NumberKind kLength = {"LENGTH", "a length", 0, std::numeric_limits<double>::max()};
inline constexpr NumberKind kDegrees = {"DEGREES", "an angle from 0 to 180 degrees", 0, 180};
inline constexpr NumberKind kOpening = {"DEGREES", "an angle from 0 to 170 degrees", 0, 170};
inline constexpr NumberKind kTurn = {"DEGREES", "a number of degrees", -1e9, 1e9};
inline constexpr NumberKind kFactor = {"FACTOR", "a positive factor", std::numeric_limits<double>::min(),
                                       std::numeric_limits<double>::max()};
inline constexpr NumberKind kPart = {"PART", "a number from 0 to 0.1", 0, 0.1};

// Numbers are parsed by the tool's own routine: the parser's depends on the locale and takes "nan".
CLI::Option* AddNumber(CLI::App& command, const std::string& name, const NumberKind& kind, double& value,
                       const std::string& description);

CLI::Option* AddList(CLI::App& command, const std::string& name, std::vector<std::string>& values, const std::string& description,
                     const std::string& typeName);
// Words that an option takes, and no others.
CLI::Validator OneOf(const std::vector<std::string>& choices);
CLI::Option* AddChoice(CLI::App& command, const std::string& name, std::string& value, const std::vector<std::string>& choices,
                       const std::string& description, const std::string& typeName);
// -o, which may be repeated. An empty name, as of a variable that is not set, is refused.
CLI::Option* AddOutputs(CLI::App& command, std::vector<std::string>& outputs, const std::string& description);
void AddDxfVersion(CLI::App& command, DxfVersion& version);
void AddWeld(CLI::App& command, double& weld);
void AddObjects(CLI::App& command, std::vector<std::string>& models, std::vector<std::string>& objects);
void AddModelFormat(CLI::App& command, std::string& format);
void AddUnit(CLI::App& command, std::string& unit);
void AddJobs(CLI::App& command, unsigned& jobs);
void AddAxes(CLI::App& command, std::string& axes);
void AddCurves(CLI::App& command, bool& curves);

// Of commands that write regions.
void AddWriting(CLI::App& command, InputOptions& input);

void AddPlacements(CLI::App& command, Placements& placements);
void AddView(CLI::App& command, ViewOptions& view);

}  // namespace tool
