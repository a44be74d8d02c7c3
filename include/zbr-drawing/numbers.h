// Numbers as text, the same under every locale, and their powers of ten, the same with every C library.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zbr::drawing {

// The value of a token that is a finite decimal number as a whole, a leading sign allowed; nothing for everything else, "nan",
// "inf" and numbers beyond the range of a double included.
std::optional<double> ParseNumber(std::string_view token);
std::optional<long long> ParseInteger(std::string_view token);

// Appends the shortest text that reads back as exactly this number.
void AppendNumber(std::string& text, double value);
std::string NumberText(double value);

// For people: with at most `digits` significant digits, or with `decimals` decimals.
std::string RoundedText(double value, int digits);
std::string FixedText(double value, int decimals);

// Correctly rounded from -22 to 22, infinite or zero beyond what a double holds.
double PowerOfTen(int exponent);
// That of the largest power of ten which is not above a positive number; 309 for infinity.
int DecimalExponent(double value);

// The token, quoted and cut to a length that fits an error message, without control characters.
std::string Quoted(std::string_view token);

}  // namespace zbr::drawing
