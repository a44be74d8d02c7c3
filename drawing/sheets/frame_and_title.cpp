// Frame, title block and projection symbol of a sheet.
#include <zbr-drawing/sheet.h>

#include <algorithm>
#include <array>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kBinding = 20;  // free at the left edge
constexpr double kBorder = 10;   // free at the others
constexpr double kTitleHeight = 16;
constexpr double kTitleWidth = 180;
constexpr double kClearance = 8;  // between views and frame
constexpr double kLabel = 2.5;    // heights of text
constexpr double kValue = 3.5;
constexpr double kName = 5;
constexpr double kInset = 2;

void AddRectangle(Sheet& sheet, double left, double bottom, double right, double top, bool wide) {
  sheet.paths.push_back({{ZBR_PT(left, bottom), ZBR_PT(right, bottom), ZBR_PT(right, top), ZBR_PT(left, top)}, true, wide});
}

// As much of a text as fits: letters are nearly as wide as they are high. Sequences of UTF-8 stay whole.
std::string Fitting(const std::string& text, double height, double width) {
  const auto room = static_cast<std::size_t>(width / (height * 0.85));
  const auto startsLetter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; };
  if (static_cast<std::size_t>(std::count_if(text.begin(), text.end(), startsLetter)) <= room) return text;
  std::size_t end = 0;
  for (std::size_t letters = 0; end < text.size(); ++end) {
    if (startsLetter(text[end]) && ++letters + 2 > room) break;
  }
  return text.substr(0, end) + "...";
}

void AddField(Sheet& sheet, double left, double right, double bottom, const char* label, const std::string& value, double height) {
  AddRectangle(sheet, left, bottom, right, bottom + kTitleHeight, false);
  sheet.texts.push_back({ZBR_PT(left + kInset, bottom + kTitleHeight - kInset - kLabel), kLabel, label});
  sheet.texts.push_back({ZBR_PT(left + kInset, bottom + kInset + 0.5), height, Fitting(value, height, right - left - 2 * kInset)});
}

// A blunt cone lying with its thin end to the left, and what is seen of it from the left: in first-angle projection that stands on
// the right, in third-angle projection on the left.
void AddSymbol(Sheet& sheet, const ZBR_PT& middle) {
  constexpr double kRadius = 3.5, kThinRadius = 1.75, kHalfLength = 3.5, kAside = 6;
  const bool first = sheet.options.projection == Projection::kFirst;
  const ZBR_PT cone(middle.x() + (first ? -kAside : kAside), middle.y());
  const ZBR_PT end(middle.x() + (first ? kAside : -kAside), middle.y());
  sheet.paths.push_back({{cone + ZBR_PT(-kHalfLength, -kThinRadius), cone + ZBR_PT(kHalfLength, -kRadius),
                          cone + ZBR_PT(kHalfLength, kRadius), cone + ZBR_PT(-kHalfLength, kThinRadius)},
                         true,
                         false});
  for (const double radius : {kRadius, kThinRadius}) sheet.circles.push_back({end, radius});
}

}  // namespace

DrawingArea AreaWithinFrame(const Paper& paper) {
  return {kBinding + kClearance, kBorder + kTitleHeight + kClearance, paper.width - kBinding - kBorder - 2 * kClearance,
          paper.height - 2 * kBorder - kTitleHeight - 2 * kClearance};
}

void AddFrame(Sheet& sheet) {
  const double right = sheet.paper.width - kBorder;
  AddRectangle(sheet, kBinding, kBorder, right, sheet.paper.height - kBorder, true);
  constexpr double kSymbolField = 28, kScaleField = 28, kUnitField = 20, kPaperField = 24;
  double at = right - kSymbolField;
  AddRectangle(sheet, at, kBorder, right, kBorder + kTitleHeight, false);
  AddSymbol(sheet, ZBR_PT((at + right) / 2, kBorder + kTitleHeight / 2));
  const double left = std::max(kBinding, right - kTitleWidth);
  const auto add = [&](double width, const char* label, const std::string& value, double height) {
    if (at - width < left - 0.1) return;  // narrow paper
    AddField(sheet, at - width, at, kBorder, label, value, height);
    at -= width;
  };
  add(kScaleField, "Scale", ScaleText(sheet.scale), kValue);
  add(kUnitField, "Unit", sheet.options.unit, kValue);
  if (!sheet.paper.name.empty()) add(kPaperField, "Paper", sheet.paper.name, kValue);
  add(std::max(at - left, kPaperField), "Title", sheet.options.title, kName);
}

}  // namespace zbr::drawing
