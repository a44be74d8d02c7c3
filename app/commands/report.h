// Labels with values, a line each.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tool {

class Report {
 public:
  void Line(const std::string& label, const std::string& value) { rows_.emplace_back(label, value); }
  void Count(const std::string& label, std::size_t count) { Line(label, std::to_string(count)); }
  void Time(const std::string& label, double milliseconds);

  // Values begin in this column; behind a longer label after a blank.
  std::string Listed(std::size_t column) const;
  // Values are aligned to the right.
  std::string Table() const;

 private:
  std::vector<std::pair<std::string, std::string>> rows_;
};

}  // namespace tool
