// Parsing and printing of numbers.
#include <zbr-drawing/numbers.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#if !defined(__cpp_lib_to_chars)
#include <locale.h>

#include <cerrno>
#endif

namespace zbr::drawing {
namespace {

// std::from_chars takes a minus sign but no plus sign.
std::string_view WithoutPlus(std::string_view token) {
  if (token.size() > 1 && token.front() == '+' && token[1] != '-') token.remove_prefix(1);
  return token;
}

// The first powers of ten, all of which a double holds.
constexpr std::array<double, 16> kPowers = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

// What has few digits and no exponent, as most numbers in files do, whose reading takes half of the time for it: a quotient of two
// doubles that are exact is the nearest one. Nothing for what is longer or no number.
std::optional<double> ParseShort(std::string_view token) {
  constexpr std::size_t kMostDigits = kPowers.size() - 1;  // whatever they are, they are a double
  const bool isNegative = !token.empty() && token.front() == '-';
  if (isNegative) token.remove_prefix(1);
  if (token.size() > kMostDigits + 1) return std::nullopt;
  std::int64_t number = 0;
  std::size_t digits = 0, point = std::string_view::npos;
  for (const char c : token) {
    if (c >= '0' && c <= '9') {
      number = 10 * number + (c - '0');
      ++digits;
    } else if (c == '.' && point == std::string_view::npos) {
      point = digits;
    } else {
      return std::nullopt;
    }
  }
  if (digits == 0 || digits > kMostDigits) return std::nullopt;
  const double value = static_cast<double>(number) / kPowers[point == std::string_view::npos ? 0 : digits - point];
  return isNegative ? -value : value;
}

template <class T>
std::optional<T> ParseWhole(std::string_view token) {
  token = WithoutPlus(token);
  T value{};
  const char* const end = token.data() + token.size();
  const auto [stop, error] = std::from_chars(token.data(), end, value);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

#if !defined(__cpp_lib_to_chars)
// Standard libraries that can't yet parse doubles: by the C library, in the "C" locale whatever the program's is, and without what
// std::from_chars does not take (blanks, a second sign, hexadecimal digits, numbers that round to zero).

template <>
std::optional<double> ParseWhole<double>(std::string_view token) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  const std::string text(WithoutPlus(token));
  if (text.empty() || text.find_first_of("+xX \t\n\v\f\r") < text.find_first_of("eE")) return std::nullopt;
  char* stop = nullptr;
  errno = 0;
  const double value = strtod_l(text.c_str(), &stop, plain);
  if (stop != text.c_str() + text.size() || (errno == ERANGE && value == 0.0)) return std::nullopt;
  return value;
}
#endif

std::string Formatted(double value, std::chars_format format, int precision) {
  std::array<char, 512> buffer;  // the longest double takes 309 digits before the point
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format, precision);
  return std::string(buffer.data(), result.ptr);
}

}  // namespace

std::optional<double> ParseNumber(std::string_view token) {
  if (const std::optional<double> value = ParseShort(WithoutPlus(token))) return value;
  const std::optional<double> value = ParseWhole<double>(token);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<long long> ParseInteger(std::string_view token) {
  constexpr std::size_t kMostDigits = 18;  // whatever they are, they are a long long
  long long number = 0;
  for (const char c : token) {
    if (c < '0' || c > '9' || token.size() > kMostDigits) return ParseWhole<long long>(token);
    number = 10 * number + (c - '0');
  }
  return token.empty() ? std::nullopt : std::optional(number);
}

void AppendNumber(std::string& text, double value) {
  std::array<char, 32> buffer;
  const double unsignedZero = value == 0.0 ? 0.0 : value;  // "-0" would read back as well, but puzzles people
  const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), unsignedZero);
  text.append(buffer.data(), result.ptr);
}

std::string NumberText(double value) {
  std::string text;
  AppendNumber(text, value);
  return text;
}

std::string RoundedText(double value, int digits) {
  return Formatted(value, std::chars_format::general, digits);
}
std::string FixedText(double value, int decimals) {
  return Formatted(value, std::chars_format::fixed, decimals);
}

double PowerOfTen(int exponent) {
  constexpr int kInvertible = 308;
  if (exponent < -kInvertible) return PowerOfTen(-kInvertible) / PowerOfTen(-kInvertible - exponent);
  double power = 1.0;
  for (int n = std::abs(exponent); n > 0; --n) power *= 10.0;
  return exponent < 0 ? 1.0 / power : power;
}

int DecimalExponent(double value) {
  if (!std::isfinite(value)) return std::numeric_limits<double>::max_exponent10 + 1;
  int exponent = static_cast<int>(std::floor(std::log10(value)));  // may be off by one beside a power
  while (PowerOfTen(exponent) > value) --exponent;
  while (PowerOfTen(exponent + 1) <= value) ++exponent;
  return exponent;
}

std::string Quoted(std::string_view token) {
  constexpr std::size_t kLongest = 40;
  std::string text = "'";
  for (const char c : token.substr(0, kLongest)) text += static_cast<unsigned char>(c) < 0x20 ? '?' : c;
  if (token.size() > kLongest) text += "...";
  return text + "'";
}

}  // namespace zbr::drawing
