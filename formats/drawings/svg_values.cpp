#include "formats/drawings/svg_values.h"

#include <zbr-drawing/numbers.h>
#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <string>

#include "formats/text/blanks.h"

namespace zbr::formats {
namespace {

using drawing::Affine;

constexpr std::string_view kBlanks = " \t\r\n\f";

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::size_t DigitsFrom(std::string_view text, std::size_t at) {
  while (at < text.size() && IsDigit(text[at])) ++at;
  return at;
}

// How many characters at the start are a number; 0 where none is.
std::size_t NumberLength(std::string_view text) {
  const auto at = [&](std::size_t i) { return i < text.size() ? text[i] : '\0'; };
  const std::size_t sign = at(0) == '+' || at(0) == '-' ? 1 : 0;
  std::size_t end = DigitsFrom(text, sign);
  std::size_t digits = end - sign;
  if (at(end) == '.') {
    const std::size_t fraction = DigitsFrom(text, end + 1);
    digits += fraction - end - 1;
    if (digits > 0) end = fraction;
  }
  if (digits == 0) return 0;
  if (at(end) != 'e' && at(end) != 'E') return end;
  const std::size_t power = end + (at(end + 1) == '+' || at(end + 1) == '-' ? 2 : 1);
  return IsDigit(at(power)) ? DigitsFrom(text, power) : end;
}

// One function of a transform with its numbers.
std::optional<Affine> TransformOf(std::string_view name, const std::vector<double>& n) {
  const std::size_t count = n.size();
  if (name == "matrix" && count == 6) return Affine{n[0], n[2], n[4], n[1], n[3], n[5]};
  if (name == "translate" && (count == 1 || count == 2)) return Affine::Move(ZBR_PT(n[0], count == 2 ? n[1] : 0.0));
  if (name == "scale" && (count == 1 || count == 2)) return Affine::Scale(n[0], n[count - 1]);
  if (name == "rotate" && count == 1) return Affine::Turn(n[0]);
  if (name == "rotate" && count == 3) {
    const ZBR_PT centre(n[1], n[2]);
    return Affine::Move(centre).After(Affine::Turn(n[0])).After(Affine::Move(centre * -1.0));
  }
  if (name == "skewX" && count == 1) return Affine{1.0, drawing::Tan(n[0] * drawing::kDegree), 0.0, 0.0, 1.0, 0.0};
  if (name == "skewY" && count == 1) return Affine{1.0, 0.0, 0.0, drawing::Tan(n[0] * drawing::kDegree), 1.0, 0.0};
  return std::nullopt;
}

}  // namespace

void SvgNumbers::SkipBlanks() {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(kBlanks), rest_.size()));
}

void SvgNumbers::SkipSeparator() {
  SkipBlanks();
  if (!rest_.starts_with(',')) return;
  rest_.remove_prefix(1);
  SkipBlanks();
}

bool SvgNumbers::IsAtEnd() {
  SkipBlanks();
  return rest_.empty();
}

std::optional<char> SvgNumbers::NextLetter() {
  SkipBlanks();
  if (rest_.empty() || NumberLength(rest_) > 0) return std::nullopt;
  const char letter = rest_.front();
  rest_.remove_prefix(1);
  return letter;
}

std::optional<double> SvgNumbers::Next() {
  SkipBlanks();
  const std::size_t length = NumberLength(rest_);
  const std::optional<double> number = drawing::ParseNumber(rest_.substr(0, length));
  rest_.remove_prefix(length);
  SkipSeparator();
  return number;
}

std::optional<bool> SvgNumbers::NextFlag() {
  SkipBlanks();
  if (!rest_.starts_with('0') && !rest_.starts_with('1')) return std::nullopt;
  const bool flag = rest_.front() == '1';
  rest_.remove_prefix(1);
  SkipSeparator();
  return flag;
}

std::optional<std::vector<double>> SvgNumberList(std::string_view text) {
  SvgNumbers numbers(text);
  std::vector<double> list;
  while (!numbers.IsAtEnd()) {
    const std::optional<double> number = numbers.Next();
    if (!number) return std::nullopt;
    list.push_back(*number);
  }
  return list;
}

double SvgLength::InUserUnits(double whole) const {
  constexpr double kPercent = 100.0;
  if (unit == Unit::kPercent) return value / kPercent * whole;
  return unit == Unit::kPhysical ? value / kMillimetresPerPixel : value;
}

std::optional<SvgLength> ParseSvgLength(std::string_view text) {
  struct Unit {
    std::string_view name;
    SvgLength::Unit kind;
    double factor;
  };
  using Kind = SvgLength::Unit;
  static constexpr std::array<Unit, 9> kUnits = {{{"", Kind::kNone, 1.0},
                                                  {"px", Kind::kPixel, 1.0},
                                                  {"%", Kind::kPercent, 1.0},
                                                  {"mm", Kind::kPhysical, 1.0},
                                                  {"cm", Kind::kPhysical, 10.0},
                                                  {"in", Kind::kPhysical, 25.4},
                                                  {"pt", Kind::kPhysical, 25.4 / 72.0},
                                                  {"pc", Kind::kPhysical, 25.4 / 6.0},
                                                  {"Q", Kind::kPhysical, 0.25}}};
  text = Trimmed(text, kBlanks);
  const std::size_t length = NumberLength(text);
  const std::optional<double> number = drawing::ParseNumber(text.substr(0, length));
  if (!number) return std::nullopt;
  for (const Unit& unit : kUnits) {
    if (text.substr(length) == unit.name) return SvgLength{*number * unit.factor, unit.kind};
  }
  return std::nullopt;
}

std::optional<Affine> ParseSvgTransform(std::string_view text) {
  Affine map;
  for (text = Trimmed(text, kBlanks); !text.empty() && text != "none"; text = Trimmed(text, kBlanks)) {
    if (text.front() == ',') text.remove_prefix(1);
    const std::size_t open = text.find('('), close = text.find(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
    const std::optional<std::vector<double>> numbers = SvgNumberList(text.substr(open + 1, close - open - 1));
    const std::optional<Affine> next = numbers ? TransformOf(Trimmed(text.substr(0, open), kBlanks), *numbers) : std::nullopt;
    if (!next) return std::nullopt;
    map = map.After(*next);
    text.remove_prefix(close + 1);
  }
  return map;
}

}  // namespace zbr::formats
