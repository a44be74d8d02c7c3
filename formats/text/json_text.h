// JSON written as text, value by value.
#pragma once

#include <string>

namespace zbr::formats {

// A text in quotation marks; what is no UTF-8 in it is replaced.
std::string JsonOf(const std::string& text);
// The shortest decimal that reads back as the number, null for what is none.
std::string JsonOf(double number);

// An object to which members are added in the order in which they are to stand. Values are JSON already.
class JsonObject {
 public:
  JsonObject& Add(const char* name, const std::string& value);
  std::string Closed() const { return text_ + "}"; }
  // With one more member, a list, left open for its elements. Nothing is left here: the text is handed over.
  std::string OpenedAt(const char* name);

 private:
  std::string text_ = "{";
};

}  // namespace zbr::formats
