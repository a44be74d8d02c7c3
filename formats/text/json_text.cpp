// JSON written as text.
#include "formats/text/json_text.h"

#include <nlohmann/json.hpp>
#include <utility>

namespace zbr::formats {
namespace {

std::string Dumped(const nlohmann::json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string JsonOf(const std::string& text) {
  return Dumped(text);
}

std::string JsonOf(double number) {
  return Dumped(number);
}

JsonObject& JsonObject::Add(const char* name, const std::string& value) {
  text_.append(text_.size() > 1 ? ",\"" : "\"").append(name).append("\":").append(value);
  return *this;
}

std::string JsonObject::OpenedAt(const char* name) {
  Add(name, "[");
  return std::move(text_);
}

}  // namespace zbr::formats
