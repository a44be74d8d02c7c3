// What a call tells beside arrays, as JSON: written as text, as trees of values take far more code. The sheet's own writer of such
// texts is no public header of zbr-formats.
#pragma once

#include <zbr-drawing/numbers.h>

#include <cmath>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace zbr::web {

class Facts {
 public:
  Facts& Add(const char* name, const std::string& text) {  // what is no UTF-8 is replaced
    return AddJson(name, nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
  }
  Facts& Add(const char* name, const char* text) { return Add(name, std::string(text)); }
  Facts& Add(const char* name, std::size_t count) { return AddJson(name, std::to_string(count)); }
  Facts& Add(const char* name, double number) { return AddJson(name, Text(number)); }
  Facts& Add(const char* name, bool value) { return AddJson(name, value ? "true" : "false"); }
  Facts& Add(const char* name, std::initializer_list<double> numbers) {
    std::string list;
    for (const double number : numbers) list += (list.empty() ? "" : ",") + Text(number);
    return AddJson(name, "[" + list + "]");
  }
  Facts& Add(const char* name, const std::vector<Facts>& objects) { return AddJson(name, ListOf(objects)); }

  std::string Text() const { return "{" + members_ + "}"; }
  static std::string ListOf(const std::vector<Facts>& objects) {
    std::string list;
    for (const Facts& object : objects) list += (list.empty() ? "" : ",") + object.Text();
    return "[" + list + "]";
  }

 private:
  static std::string Text(double number) {
    std::string text;
    if (std::isfinite(number)) drawing::AppendNumber(text, number);
    return text.empty() ? "null" : text;
  }
  [[gnu::noinline]] Facts& AddJson(const char* name, const std::string& value) {
    members_.append(members_.empty() ? "\"" : ",\"").append(name).append("\":").append(value);
    return *this;
  }

  std::string members_;
};

}  // namespace zbr::web
