// Text files taken apart into lines and words.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zbr::formats {

// Goes through the words of a text. Comments from '#' on are skipped; a backslash at the end of a line continues it. Failures name
// the file and the line.
class TextLines {
 public:
  TextLines(std::string_view text, const std::string& file) : text_(text), file_(file) {}

  // Goes to the next line that has words; false at the end of the text.
  bool NextLine();
  // The next word of this line; empty when there is none.
  std::string_view Word();
  // The next word of this line or the next one that has any.
  std::string_view WordOfAnyLine();

  // The next word as a finite number, or as a whole one.
  double Number();
  long long Integer();
  // A whole number from any line.
  long long IntegerOfAnyLine();
  double NumberOfAnyLine();

  long long ToInteger(std::string_view word) const;
  std::size_t Line() const { return line_; }
  [[noreturn]] void Fail(const std::string& cause) const;

 private:
  void SkipBlanks();
  double ToNumber(std::string_view word) const;

  std::string_view text_;
  const std::string& file_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
};

}  // namespace zbr::formats
