// Programs draw text with the fonts that they have. What is reckoned with is the widest of those that sheets name or that stand in
// for them: DejaVu Sans for pictures, and for drawings, where the height is that of capitals, Arial and the strokes of the standard
// font of LibreCAD, which has no others. Text that fits by these widths fits everywhere.
#include "drawing/sheets/lettering.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace zbr::drawing {
namespace {

// Of the characters from the blank to the tilde, in hundredths of the height of capitals.
constexpr std::array<int, 95> kWidths = {
    75, 56,  73,  116, 88,  132, 108, 45,  54,  54,  97, 116, 44,  78, 44,  78,  88,  88, 88, 88, 89, 88,  88,  88,
    88, 88,  47,  47,  116, 116, 116, 78,  142, 100, 95, 101, 107, 94, 86,  109, 104, 41, 70, 94, 78, 120, 104, 109,
    94, 109, 101, 94,  89,  102, 100, 137, 100, 100, 95, 54,  78,  54, 116, 156, 69,  85, 88, 76, 88, 85,  67,  88,
    88, 39,  56,  80,  45,  135, 88,  85,  88,  88,  67, 73,  67,  88, 82,  113, 82,  82, 78, 88, 47, 88,  116};
constexpr int kOtherWidth = 150;  // as wide as any letters of other alphabets, but for ligatures

constexpr std::string_view kEnDash = "\xe2\x80\x93";  // in the names of sections
constexpr double kEnDashWidth = 0.78;

constexpr std::array<double, 4> kHeights = {5.0, 3.5, 2.5, 1.8};  // ISO 3098, and what can still be read

bool StartsLetter(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;  // sequences of UTF-8 stay whole
}

// In heights of capitals; of the further bytes of a letter none.
double WidthAt(const std::string& text, std::size_t i) {
  if (!StartsLetter(text[i])) return 0.0;
  if (text.compare(i, kEnDash.size(), kEnDash) == 0) return kEnDashWidth;
  const auto code = static_cast<unsigned char>(text[i]);
  return (code >= ' ' && code <= '~' ? kWidths[code - ' '] : kOtherWidth) / 100.0;
}

// The end of as much of a text from `begin` on as a line of this width takes, by letters; one letter at least. Widths are counted
// in heights of capitals.
std::size_t EndOfRoom(const std::string& text, std::size_t begin, double width) {
  double taken = 0.0;
  for (std::size_t i = begin; i < text.size(); ++i) {
    taken += WidthAt(text, i);
    if (taken > width && i > begin && StartsLetter(text[i])) return i;
  }
  return text.size();
}

// Where lines may end: before blanks, and behind what joins the parts of numbers and of names. `begin` where that is nowhere.
std::size_t LastBreak(const std::string& text, std::size_t begin, std::size_t end) {
  constexpr std::string_view kJoints = "-/_,;";
  while (end > begin && text[end] != ' ' && kJoints.find(text[end - 1]) == std::string_view::npos) --end;
  return end;
}

// Line feeds as such or as blanks, other control characters as blanks; a carriage return belongs to the line feed behind it.
std::string WithFeeds(const std::string& text, bool feeds) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 2, "\r\n") == 0) continue;
    const bool isControl = static_cast<unsigned char>(text[i]) < ' ';
    plain += feeds && text[i] == '\n' ? '\n' : isControl ? ' ' : text[i];
  }
  return plain;
}

// Breaks a text into at most `count` lines, at line feeds, and within words only where these may be parted; what is left after
// these starts at the place that is returned.
std::size_t Break(const std::string& text, double width, std::size_t count, bool mayPart, std::vector<std::string>& lines) {
  constexpr const char* kBetween = " \n";
  std::size_t begin = std::min(text.find_first_not_of(kBetween), text.size());
  for (; begin < text.size() && lines.size() < count; begin = std::min(text.find_first_not_of(kBetween, begin), text.size())) {
    std::size_t end = EndOfRoom(text, begin, width);
    const std::size_t feed = text.find('\n', begin), last = end < text.size() ? LastBreak(text, begin, end) : end;
    if (feed > end && last == begin && !mayPart) break;
    if (feed <= end) {
      end = feed;
    } else if (last > begin) {
      end = last;
    }
    lines.push_back(text.substr(begin, end - begin));
    begin = end;
  }
  return begin;
}

}  // namespace

double TextWidth(const std::string& text, double height) {
  double width = 0.0;
  for (std::size_t i = 0; i < text.size(); ++i) width += WidthAt(text, i);
  return width * height;
}

PaperBox BoxOf(const SheetText& text) {
  constexpr double kBelowBase = 0.34;
  const bool isCapitals = std::all_of(text.text.begin(), text.text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
  return {text.at - ZBR_PT(0, isCapitals ? 0.0 : kBelowBase * text.height),
          text.at + ZBR_PT(TextWidth(text.text, text.height), text.height)};
}

// Clear when the boxes are, or when all corners lie on one side of the line.
bool PaperBox::IsClearOfLine(const ZBR_PT& a, const ZBR_PT& b) const {
  if (IsClearOf(Around(a, b))) return true;
  bool left = false, right = false;
  for (const ZBR_PT& corner : {low, high, ZBR_PT(low.x(), high.y()), ZBR_PT(high.x(), low.y())}) {
    const double side = (b - a).OuterProduct(corner - a);
    left = left || side >= 0;
    right = right || side <= 0;
  }
  return !(left && right);
}

Lettering FitText(const std::string& text, double largest, double width, double height) {
  struct Way {
    bool feeds, mayPart;
  };
  Lettering fitted;
  for (const Way way : {Way{true, false}, Way{false, false}, Way{false, true}}) {
    const std::string plain = WithFeeds(text, way.feeds);
    for (const double size : kHeights) {
      if (size > largest) continue;
      const auto most = static_cast<std::size_t>(std::max((height - size) / (size * kLineSpacing), 0.0)) + 1;
      for (std::size_t count = 1; count <= most; ++count) {
        fitted = {size, {}, true};
        if (Break(plain, width / size, count, way.mayPart, fitted.lines) == plain.size()) return fitted;
      }
    }
  }
  const std::string dots = "...";
  std::string& last = fitted.lines.back();
  last.replace(EndOfRoom(last, 0, width / fitted.height - TextWidth(dots, 1.0)), std::string::npos, dots);
  fitted.isWhole = false;
  return fitted;
}

}  // namespace zbr::drawing
