#include "app/commands/json.h"

#include <cmath>

namespace tool {
namespace {

// File names may hold any bytes.
std::string Compact(const Json& value) {
  return value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace

std::string TextOf(const Json& object) {
  std::string text = "{";
  for (const auto& [name, value] : object.items()) {
    text += (text.size() > 1 ? ",\n" : "\n") + Compact(name) + ": ";
    if (!value.is_array() || value.empty() || !value.front().is_object()) {
      text += Compact(value);
      continue;
    }
    const char* separator = "[\n";
    for (const Json& element : value) {
      text += separator + Compact(element);
      separator = ",\n";
    }
    text += "\n]";
  }
  return text + "\n}\n";
}

Json JsonOf(const ZBR_PT& p) {
  return {p.x() + 0.0, p.y() + 0.0};  // without the sign of a zero
}

Json JsonOf(const ZBR_PT3& p) {
  return {p.x() + 0.0, p.y() + 0.0, p.z() + 0.0};
}

}  // namespace tool
