#include "app/commands/report.h"

#include <zbr-drawing/numbers.h>

#include <algorithm>

#include "app/libraries.h"

namespace tool {

void Report::Time(const std::string& label, double milliseconds) {
  Line(label, FixedText(milliseconds, 2) + " ms");
}

std::string Report::Listed(std::size_t column) const {
  std::string text;
  for (const auto& [label, value] : rows_)
    text.append(label).append(label.size() < column ? column - label.size() : 1, ' ').append(value).append("\n");
  return text;
}

std::string Report::Table() const {
  std::size_t widest = 0, longest = 0;
  for (const auto& [label, value] : rows_) {
    widest = std::max(widest, label.size());
    longest = std::max(longest, value.size());
  }
  std::string text;
  for (const auto& [label, value] : rows_)
    text.append(label).append(widest - label.size() + 2 + longest - value.size(), ' ').append(value).append("\n");
  return text;
}

}  // namespace tool
