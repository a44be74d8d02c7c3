// Frame, title block and projection symbol of a sheet.
#include <zbr-drawing/sheet.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "drawing/sheets/lettering.h"

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kBinding = 20;  // free at the left edge
constexpr double kBorder = 10;   // free at the others
constexpr double kTitleHeight = 16;
constexpr double kUpperHeight = 13;
constexpr double kTitleWidth = 180;
constexpr double kLabel = 2.5;  // heights of text
constexpr double kValue = 3.5;
constexpr double kName = 5;
constexpr double kInset = 2;
constexpr double kBase = 2.5;        // of the lowest line above the lower edge of its field
constexpr double kLowest = 1.5;      // of several lines
constexpr double kBelowLabel = 0.9;  // which has letters that reach below its base line
constexpr double kNarrowest = 24.0;  // field, which its label fits into

void AddRectangle(Sheet& sheet, double left, double bottom, double right, double top, bool wide) {
  sheet.paths.push_back({{ZBR_PT(left, bottom), ZBR_PT(right, bottom), ZBR_PT(right, top), ZBR_PT(left, top)}, true, wide});
}

// A value as large as it fits beneath the label of its field.
void AddField(Sheet& sheet, const ZBR_PT& low, const ZBR_PT& high, const char* label, const std::string& value, double height) {
  AddRectangle(sheet, low.x(), low.y(), high.x(), high.y(), false);
  const double left = low.x() + kInset, labelBase = high.y() - kInset - kLabel;
  sheet.texts.push_back({ZBR_PT(left, labelBase), kLabel, label});
  const double room = labelBase - kBelowLabel - low.y() - kLowest;
  const Lettering fitted = FitText(value, height, high.x() - low.x() - 2 * kInset, room);
  if (!fitted.isWhole) sheet.shortened.emplace_back(label);
  ZBR_PT at(left, low.y() + std::min(kBase, kLowest + room - fitted.Height()) + fitted.Height() - fitted.height);
  for (const std::string& line : fitted.lines) {
    sheet.texts.push_back({at, fitted.height, line});
    at -= ZBR_PT(0, fitted.height * kLineSpacing);
  }
}

// Who drew it, when, and its number, above the title, where given; on narrow paper as many as there is room for.
void AddUpperRow(Sheet& sheet, double left, double right) {
  std::vector<std::pair<const char*, const std::string*>> fields;
  const SheetOptions& o = sheet.options;
  for (const auto& field : {std::pair("Number", &o.number), std::pair("Author", &o.author), std::pair("Date", &o.date)}) {
    if (field.second->empty()) continue;
    if (static_cast<double>(fields.size() + 1) * kNarrowest <= right - left) {
      fields.push_back(field);
    } else {
      sheet.shortened.emplace_back(field.first);
    }
  }
  if (!fields.empty() && fields.front().second == &o.number) std::rotate(fields.begin(), fields.begin() + 1, fields.end());
  const double bottom = kBorder + kTitleHeight, width = (right - left) / static_cast<double>(fields.size());
  double at = left;
  for (const auto& [label, value] : fields) {
    AddField(sheet, ZBR_PT(at, bottom), ZBR_PT(at + width, bottom + kUpperHeight), label, *value, kValue);
    at += width;
  }
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

DrawingArea AreaWithinFrame(const Paper& paper, const SheetOptions& options) {
  const bool hasUpper = !(options.author.empty() && options.date.empty() && options.number.empty());
  const double title = kTitleHeight + (hasUpper ? kUpperHeight : 0);
  return {kBinding + kClearance, kBorder + title + kClearance, paper.width - kBinding - kBorder - 2 * kClearance,
          paper.height - 2 * kBorder - title - 2 * kClearance};
}

void AddFrame(Sheet& sheet) {
  const double right = sheet.paper.width - kBorder, left = std::max(kBinding, right - kTitleWidth);
  AddRectangle(sheet, kBinding, kBorder, right, sheet.paper.height - kBorder, true);
  constexpr double kSymbolField = 28, kScaleField = 28, kUnitField = 20, kPaperField = 24;
  double at = right;
  // On narrow paper what there is room for beside the title.
  const auto takes = [&](double width) { return at - width >= left + kNarrowest - 0.1; };
  if (takes(kSymbolField)) {
    at -= kSymbolField;
    AddRectangle(sheet, at, kBorder, right, kBorder + kTitleHeight, false);
    AddSymbol(sheet, ZBR_PT((at + right) / 2, kBorder + kTitleHeight / 2));
  }
  const auto add = [&](double width, const char* label, const std::string& value, double height) {
    AddField(sheet, ZBR_PT(at - width, kBorder), ZBR_PT(at, kBorder + kTitleHeight), label, value, height);
    at -= width;
  };
  if (takes(kScaleField)) add(kScaleField, "Scale", ScaleText(sheet.scale), kValue);
  if (takes(kUnitField)) add(kUnitField, "Unit", sheet.options.unit, kValue);
  if (!sheet.paper.name.empty() && takes(kPaperField)) add(kPaperField, "Paper", sheet.paper.name, kValue);
  if (at - left >= kNarrowest) {
    add(at - left, "Title", sheet.options.title, kName);
  } else if (!sheet.options.title.empty()) {
    sheet.shortened.emplace_back("Title");
  }
  AddUpperRow(sheet, left, right);
}

}  // namespace zbr::drawing
