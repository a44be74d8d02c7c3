// Frame, title block and projection symbol of a sheet.
#include <zbr-drawing/sheet.h>

#include <algorithm>
#include <array>
#include <utility>

namespace zbr::drawing {
namespace {

// Millimetres.
constexpr double kBinding = 20;  // free at the left edge
constexpr double kBorder = 10;   // free at the others
constexpr double kTitleHeight = 16;
constexpr double kUpperHeight = 13;
constexpr double kTitleWidth = 180;
constexpr double kClearance = 8;  // between views and frame
constexpr double kLabel = 2.5;    // heights of text
constexpr double kValue = 3.5;
constexpr double kName = 5;
constexpr double kSmallest = 1.8;
constexpr double kInset = 2;

void AddRectangle(Sheet& sheet, double left, double bottom, double right, double top, bool wide) {
  sheet.paths.push_back({{ZBR_PT(left, bottom), ZBR_PT(right, bottom), ZBR_PT(right, top), ZBR_PT(left, top)}, true, wide});
}

bool StartsLetter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;  // sequences of UTF-8 stay whole
}

std::size_t LetterCount(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), StartsLetter));
}

// Letters are nearly as wide as they are high.
std::size_t Room(double height, double width) {
  return static_cast<std::size_t>(width / (height * 0.85));
}

// As much of a text as fits.
std::string Fitting(const std::string& text, double height, double width) {
  const std::size_t room = Room(height, width);
  if (LetterCount(text) <= room) return text;
  std::size_t end = 0;
  for (std::size_t letters = 0; end < text.size(); ++end) {
    if (StartsLetter(text[end]) && ++letters + 2 > room) break;
  }
  return text.substr(0, end) + "...";
}

// Where to break a text so that what comes before fits: at the last blank that does, else at the last letter.
std::size_t BreakOf(const std::string& text, std::size_t room) {
  std::size_t letters = 0, blank = 0, end = 0;
  for (; end < text.size(); ++end) {
    if (StartsLetter(text[end]) && ++letters > room) break;
    if (text[end] == ' ') blank = end;
  }
  return end == text.size() || blank == 0 ? end : blank;
}

// A value as large as it fits, in two lines where it has to be small.
void AddValue(Sheet& sheet, const ZBR_PT& at, const std::string& value, double height, double width) {
  for (const double size : {height, kValue, kLabel}) {
    if (size <= height && LetterCount(value) <= Room(size, width)) return sheet.texts.push_back({at, size, value});
  }
  if (height <= kValue) return sheet.texts.push_back({at, kLabel, Fitting(value, kLabel, width)});
  const double size = LetterCount(value) <= 2 * Room(kLabel, width) ? kLabel : kSmallest;
  const std::size_t end = BreakOf(value, Room(size, width));
  const std::size_t rest = std::min(value.find_first_not_of(' ', end), value.size());
  constexpr double kAbove = 3.3, kBelow = 0.5;
  sheet.texts.push_back({at + ZBR_PT(0, kAbove), size, value.substr(0, end)});
  sheet.texts.push_back({at - ZBR_PT(0, kBelow), size, Fitting(value.substr(rest), size, width)});
}

void AddField(Sheet& sheet, const ZBR_PT& low, const ZBR_PT& high, const char* label, const std::string& value, double height) {
  AddRectangle(sheet, low.x(), low.y(), high.x(), high.y(), false);
  sheet.texts.push_back({ZBR_PT(low.x() + kInset, high.y() - kInset - kLabel), kLabel, label});
  AddValue(sheet, ZBR_PT(low.x() + kInset, low.y() + kInset + 0.5), value, height, high.x() - low.x() - 2 * kInset);
}

// Who drew it, when, and its number, above the title, where given.
void AddUpperRow(Sheet& sheet, double left, double right) {
  const std::array<std::pair<const char*, const std::string*>, 3> fields = {
      {{"Author", &sheet.options.author}, {"Date", &sheet.options.date}, {"Number", &sheet.options.number}}};
  const auto given =
      static_cast<double>(std::count_if(fields.begin(), fields.end(), [](const auto& f) { return !f.second->empty(); }));
  const double bottom = kBorder + kTitleHeight;
  double at = left;
  for (const auto& [label, value] : fields) {
    if (value->empty()) continue;
    const double end = at + (right - left) / given;
    AddField(sheet, ZBR_PT(at, bottom), ZBR_PT(end, bottom + kUpperHeight), label, *value, kValue);
    at = end;
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

// The place of a view beside the front view tells what it shows, and so does what a single pictorial view looks like.
void AddViewNames(Sheet& sheet) {
  const auto isPictorial = [](const PlacedView& v) { return !IsSideView(v.lines.name) && !v.lines.section; };
  const bool hasFront =
      std::any_of(sheet.views.begin(), sheet.views.end(), [](const PlacedView& v) { return v.lines.name == "front"; });
  const bool severalPictorial = std::count_if(sheet.views.begin(), sheet.views.end(), isPictorial) > 1;
  constexpr double kBelow = 6, kLetterWidth = 0.6;
  for (const PlacedView& view : sheet.views) {
    if (view.lines.section) continue;  // have their names above
    if (isPictorial(view) ? !severalPictorial : hasFront) continue;
    const Extent& e = view.lines.extent;
    const ZBR_PT low = sheet.OnPaper(view, ZBR_PT((e.xmin + e.xmax) / 2, e.ymin));
    const double half = static_cast<double>(LetterCount(view.lines.name)) * kLetterWidth * kValue / 2;
    sheet.texts.push_back({low - ZBR_PT(half, kBelow), kValue, view.lines.name});
  }
}

}  // namespace

DrawingArea AreaWithinFrame(const Paper& paper, const SheetOptions& options) {
  const bool hasUpper = !(options.author.empty() && options.date.empty() && options.number.empty());
  const double title = kTitleHeight + (hasUpper ? kUpperHeight : 0);
  return {kBinding + kClearance, kBorder + title + kClearance, paper.width - kBinding - kBorder - 2 * kClearance,
          paper.height - 2 * kBorder - title - 2 * kClearance};
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
    AddField(sheet, ZBR_PT(at - width, kBorder), ZBR_PT(at, kBorder + kTitleHeight), label, value, height);
    at -= width;
  };
  add(kScaleField, "Scale", ScaleText(sheet.scale), kValue);
  add(kUnitField, "Unit", sheet.options.unit, kValue);
  if (!sheet.paper.name.empty()) add(kPaperField, "Paper", sheet.paper.name, kValue);
  add(std::max(at - left, kPaperField), "Title", sheet.options.title, kName);
  AddUpperRow(sheet, at, right);
  AddViewNames(sheet);
}

}  // namespace zbr::drawing
