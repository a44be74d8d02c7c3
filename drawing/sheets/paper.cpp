// Names of paper sizes and scales.
#include <zbr-drawing/paper.h>

#include <zbr-drawing/failure.h>
#include <zbr-drawing/numbers.h>

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

constexpr double kSmallestSide = 50;
constexpr double kLargestSide = 10000;

// As it is called by most, whichever way it lies.
std::string NameOf(double width, double height, const std::string& text) {
  for (const Paper& paper : StandardPapers()) {
    if (paper.width == std::max(width, height) && paper.height == std::min(width, height)) return paper.name;
  }
  return text;
}

}  // namespace

const std::vector<Paper>& StandardPapers() {
  static const std::vector<Paper> kPapers = {
      {"A4", 297, 210, true}, {"A3", 420, 297, true}, {"A2", 594, 420, true}, {"A1", 841, 594, true}, {"A0", 1189, 841, true}};
  return kPapers;
}

Paper ParsePaper(const std::string& text) {
  for (const Paper& paper : StandardPapers()) {
    if (paper.name == text || (!text.empty() && text.front() == 'a' && paper.name.substr(1) == text.substr(1))) return paper;
  }
  const std::size_t cross = text.find('x');
  if (cross != std::string::npos) {
    const auto width = ParseNumber(text.substr(0, cross)), height = ParseNumber(text.substr(cross + 1));
    const auto fits = [](double side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (width && height && fits(*width) && fits(*height)) return {NameOf(*width, *height, text), *width, *height, false};
  }
  throw Failure(Quoted(text) + " is no paper size; there are A4 to A0 and sizes such as 420x297, 50 to 10000 mm");
}

Paper Turned(const Paper& paper) {
  return {paper.name, paper.height, paper.width, paper.mayTurn};
}

double ParseScale(const std::string& text) {
  const std::size_t colon = text.find(':');
  const auto first = ParseNumber(text.substr(0, colon));
  const auto second = colon == std::string::npos ? 1.0 : ParseNumber(text.substr(colon + 1));
  if (first && second && *first > 0 && *second > 0) {
    const double scale = *first / *second;
    if (std::isnormal(scale)) return scale;
  }
  throw Failure(Quoted(text) + " is no scale such as 1:2, 5:1 or 0.1");
}

double StandardScale(double limit) {
  constexpr double kSlack = 1 + 1e-9;  // a drawing that fits exactly may exceed its place by rounding
  const double power = PowerOfTen(DecimalExponent(limit * kSlack));
  for (const double factor : {5.0, power < 1 ? 4.0 : 2.5, 2.0}) {  // 4/10 is 1:2.5
    if (factor * power <= limit * kSlack) return factor * power;
  }
  return power;
}

double FittingScale(double limit) {
  constexpr double kDigits = 100;
  const double ratio = limit < 1 ? 1 / limit : limit;
  const double step = PowerOfTen(DecimalExponent(ratio)) / kDigits;
  return limit < 1 ? 1 / (std::ceil(ratio / step) * step) : std::floor(ratio / step) * step;
}

std::string ScaleText(double scale) {
  constexpr int kDigits = 6;
  return scale >= 1 ? RoundedText(scale, kDigits) + ":1" : "1:" + RoundedText(1 / scale, kDigits);
}

}  // namespace zbr::drawing
