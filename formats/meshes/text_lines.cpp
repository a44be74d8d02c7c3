// Words and numbers of text files.
#include "formats/meshes/text_lines.h"

#include <zbr-drawing/numbers.h>
#include <zbr-formats/types.h>

#include <array>

namespace zbr::formats {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

// Whether a word goes on with each of the 256 characters: they are gone through one by one.
constexpr std::array<bool, 256> kIsOfWord = [] {
  std::array<bool, 256> isOfWord{};
  for (bool& is : isOfWord) is = true;
  for (const char c : {' ', '\t', '\r', '\v', '\f', '\n', '#'}) isOfWord[static_cast<unsigned char>(c)] = false;
  return isOfWord;
}();

}  // namespace

// Stands on a word, on the end of the line or on that of the text afterwards.
void TextLines::SkipBlanks() {
  while (at_ < text_.size()) {
    if (text_[at_] == '\\') {
      std::size_t end = at_ + 1;
      while (end < text_.size() && text_[end] == '\r') ++end;
      if (end >= text_.size() || text_[end] != '\n') return;
      at_ = end + 1;
      ++line_;
    } else if (text_[at_] == '#') {
      while (at_ < text_.size() && text_[at_] != '\n') ++at_;
    } else if (!IsBlank(text_[at_])) {
      return;
    } else {
      ++at_;
    }
  }
}

bool TextLines::NextLine() {
  if (at_ > 0) {
    while (!Word().empty()) {
    }
  }
  for (SkipBlanks(); at_ < text_.size() && text_[at_] == '\n'; SkipBlanks()) {
    ++at_;
    ++line_;
  }
  return at_ < text_.size();
}

std::string_view TextLines::Word() {
  SkipBlanks();
  const std::size_t begin = at_;
  std::size_t end = begin;
  while (end < text_.size() && kIsOfWord[static_cast<unsigned char>(text_[end])]) ++end;
  at_ = end;
  return text_.substr(begin, end - begin);
}

std::string_view TextLines::WordOfAnyLine() {
  const std::string_view word = Word();
  return !word.empty() || !NextLine() ? word : Word();
}

double TextLines::Number() {
  return ToNumber(Word());
}
long long TextLines::Integer() {
  return ToInteger(Word());
}
double TextLines::NumberOfAnyLine() {
  return ToNumber(WordOfAnyLine());
}
long long TextLines::IntegerOfAnyLine() {
  return ToInteger(WordOfAnyLine());
}

double TextLines::ToNumber(std::string_view word) const {
  if (word.empty()) Fail("a number is missing");
  const auto value = ParseNumber(word);
  if (!value) Fail(Quoted(word) + " is not a finite number");
  return *value;
}

long long TextLines::ToInteger(std::string_view word) const {
  if (word.empty()) Fail("a number is missing");
  const auto value = ParseInteger(word);
  if (!value) Fail(Quoted(word) + " is not a whole number");
  return *value;
}

void TextLines::Fail(const std::string& cause) const {
  FailAt(file_, line_, cause);
}

}  // namespace zbr::formats
