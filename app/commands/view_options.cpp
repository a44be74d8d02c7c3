// From options to a view, a unit, a number of threads.
#include "app/commands/view_options.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/units.h>

#include <algorithm>
#include <optional>
#include <thread>
#include <vector>

#include "app/libraries.h"

namespace tool {
namespace {

std::string NamesText() {
  std::string text;
  for (const std::string& name : ViewNames()) text += (text.empty() ? "" : ", ") + name;
  return text;
}

}  // namespace

bool YUp(const std::string& axes, bool yUpInFile) {
  if (axes.empty()) return yUpInFile;
  if (axes != "y" && axes != "z") throw Failure("--axes: " + Quoted(axes) + " is neither y nor z");
  return axes == "y";
}

int UnitOption(const std::string& name) {
  constexpr int kLastCode = 20;
  std::string names;
  for (int code = 1; code <= kLastCode; ++code) {
    if (UnitName(code) == name) return code;
    names += (code > 1 ? ", " : "") + UnitName(code);
  }
  throw Failure("--unit: " + Quoted(name) + " is no unit; there are " + names);
}

unsigned ThreadCount(unsigned jobs) {
  return jobs > 0 ? jobs : std::max(std::thread::hardware_concurrency(), 1U);
}

ZBR_PT3 ParseVector(const std::string& text, const std::string& option) {
  std::vector<double> parts;
  std::size_t begin = 0;
  while (begin <= text.size()) {
    const std::size_t end = std::min(text.find(',', begin), text.size());
    const auto value = ParseNumber(std::string_view(text).substr(begin, end - begin));
    if (!value) break;
    parts.push_back(*value);
    begin = end + 1;
  }
  if (begin <= text.size() || parts.size() != 3)
    throw Failure(option, Quoted(text) + " is no vector; three finite numbers are needed, as in 1,0,-0.5");
  return ZBR_PT3(parts[0], parts[1], parts[2]);
}

View LookView(const std::string& look, const std::string& up, bool yUp) {
  const ZBR_PT3 direction = ParseVector(look, "--look");
  const auto upward = up.empty() ? std::nullopt : std::optional(ParseVector(up, "--up"));
  return ForOption("--look", [&] { return LookAlong(direction, upward ? *upward : UsualUp(direction, yUp)); });
}

View ViewByName(const std::string& name, bool yUp) {
  const auto view = NamedView(name, yUp);
  if (!view) throw Failure("--view: " + Quoted(name) + " is none of " + NamesText());
  return *view;
}

View ChooseView(const ViewOptions& options, bool yUpInFile) {
  const bool yUp = YUp(options.axes, yUpInFile);
  if (options.look.empty()) {
    if (!options.up.empty()) throw Failure("--up needs --look");
    return ViewByName(options.view.empty() ? "iso" : options.view, yUp);
  }
  if (!options.view.empty()) throw Failure("--view and --look exclude each other");
  return LookView(options.look, options.up, yUp);
}

}  // namespace tool
