// What attributes of SVG hold.
#pragma once

#include <zbr-drawing/affine.h>

#include <optional>
#include <string_view>
#include <vector>

namespace zbr::formats {

// Numbers and flags one after another, with blanks and a comma between them or nothing where a sign or a point shows where the next
// one starts.
class SvgNumbers {
 public:
  explicit SvgNumbers(std::string_view text) : rest_(text) {}

  bool IsAtEnd();
  std::optional<char> NextLetter();  // where the next is no number
  std::optional<double> Next();
  std::optional<bool> NextFlag();

 private:
  void SkipBlanks();
  void SkipSeparator();

  std::string_view rest_;
};

// All numbers of a list, nothing where anything else is in it.
std::optional<std::vector<double>> SvgNumberList(std::string_view text);

// A number with its unit.
struct SvgLength {
  enum class Unit { kNone, kPixel, kPercent, kPhysical };

  double value = 0.0;  // millimetres where the unit is physical
  Unit unit = Unit::kNone;

  // In user units, of which 96 are an inch; percentages are those of `whole`.
  double InUserUnits(double whole) const;
};
inline constexpr double kMillimetresPerPixel = 25.4 / 96.0;

// Nothing for what is no length, or hangs on the size of letters.
std::optional<SvgLength> ParseSvgLength(std::string_view text);

// What a transform attribute says; nothing where it is malformed.
std::optional<drawing::Affine> ParseSvgTransform(std::string_view text);

}  // namespace zbr::formats
