#include "app/commands/placement.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/picture.h>

#include <cctype>
#include <optional>

namespace tool {
namespace {

// "X,Y", the origin where nothing is given.
ZBR_PT PointOf(const std::string& text, const char* option) {
  if (text.empty()) return {};
  const std::size_t comma = text.find(',');
  const auto x = ParseNumber(text.substr(0, comma));
  const auto y = comma == std::string::npos ? std::nullopt : ParseNumber(text.substr(comma + 1));
  if (!x || !y) throw Failure(std::string(option) + ": " + Quoted(text) + " is not X,Y");
  return {*x, *y};
}

double NumberOf(const std::string& text, const char* option) {
  const auto number = ParseNumber(text);
  if (!number) throw Failure(std::string(option) + ": " + Quoted(text) + " is not a number");
  return *number;
}

// Splits "B=10,5".
class Assignment {
 public:
  Assignment(const std::string& text, const char* option, std::size_t operands) : value(text.substr(text.find('=') + 1)) {
    std::string label = text.substr(0, text.find('='));
    for (char& c : label) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    while (operand < operands && OperandLabel(operand) != label) ++operand;
    if (text.find('=') != std::string::npos && operand < operands) return;
    throw Failure(std::string(option) + ": " + Quoted(text) + " does not name an operand, as in " + OperandLabel(operands - 1) +
                  "=...; there are A to " + OperandLabel(operands - 1));
  }

  std::size_t operand = 0;
  std::string value;
};

}  // namespace

Affine MapOf(const Placement& placement) {
  if (!placement.about.empty() && !placement.turns)
    throw Failure("--about is the point that --turn, --scale and --mirror leave in place, and needs one of them");
  const ZBR_PT about = PointOf(placement.about, "--about"), move = PointOf(placement.move, "--move");
  const double x = placement.mirror == "x" ? -placement.scale : placement.scale;
  const double y = placement.mirror == "y" ? -placement.scale : placement.scale;
  const Affine inPlace = Affine::Turn(placement.turn).After(Affine::Scale(x, y));
  return Affine::Move(move + about).After(inPlace.After(Affine::Move(about * -1.0)));
}

std::vector<std::optional<Affine>> MapsOf(const Placements& placements, std::size_t operands) {
  std::vector<std::optional<Placement>> places(operands);
  const auto assign = [&](const std::vector<std::string>& texts, const char* option, const auto& set) {
    for (const std::string& text : texts) {
      const Assignment assignment(text, option, operands);
      std::optional<Placement>& place = places[assignment.operand];
      if (!place) place.emplace();
      set(*place, assignment.value);
    }
  };
  assign(placements.move, "--move", [](Placement& place, const std::string& value) { place.move = value; });
  assign(placements.about, "--about", [](Placement& place, const std::string& value) { place.about = value; });
  assign(placements.turn, "--turn", [](Placement& place, const std::string& value) {
    place.turn = NumberOf(value, "--turn");
    place.turns = true;
  });
  assign(placements.scale, "--scale", [](Placement& place, const std::string& value) {
    place.scale = NumberOf(value, "--scale");
    place.turns = true;
    if (!(place.scale > 0)) throw Failure("--scale: " + Quoted(value) + " is not a positive factor");
  });
  assign(placements.mirror, "--mirror", [](Placement& place, const std::string& value) {
    if (value != "x" && value != "y") throw Failure("--mirror: " + Quoted(value) + " is neither x nor y");
    place.mirror = value;
    place.turns = true;
  });
  std::vector<std::optional<Affine>> maps;
  for (const std::optional<Placement>& place : places) maps.push_back(place ? std::optional(MapOf(*place)) : std::nullopt);
  return maps;
}

}  // namespace tool
