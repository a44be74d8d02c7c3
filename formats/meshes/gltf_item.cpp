#include "formats/meshes/gltf_item.h"

#include <zbr-formats/types.h>

#include <cmath>
#include <optional>

namespace zbr::formats {
namespace {

using Json = nlohmann::json;

// Nothing for what is no whole number, or too large for a size. Some programs write 3.0 for 3.
std::optional<std::size_t> ToWhole(const Json& json) {
  constexpr double kMost = 1e15;  // a double holds all whole numbers up to it
  if (!json.is_number()) return std::nullopt;
  const auto value = json.get<double>();
  if (!(value >= 0 && value <= kMost) || value != std::floor(value)) return std::nullopt;
  return static_cast<std::size_t>(value);
}

}  // namespace

void GltfItem::Fail(const std::string& cause) const {
  throw Failure(name_, cause);
}

const Json& GltfItem::Member(const char* key) const {
  const auto found = json_->find(key);
  if (found == json_->end()) Fail(std::string(key) + " is missing");
  return *found;
}

const Json& GltfItem::List(const char* key) const {
  static const Json kNone = Json::array();
  if (!Has(key)) return kNone;
  const Json& list = Member(key);
  if (!list.is_array()) Fail(std::string(key) + " is not a list");
  return list;
}

std::size_t GltfItem::Whole(const char* key) const {
  const auto value = ToWhole(Member(key));
  if (!value) Fail(std::string(key) + " is not a whole number");
  return *value;
}

std::string GltfItem::Text(const char* key) const {
  const Json& member = Member(key);
  if (!member.is_string()) Fail(std::string(key) + " is not a text");
  return member.get<std::string>();
}

bool GltfItem::Flag(const char* key) const {
  if (!Has(key)) return false;
  const Json& member = Member(key);
  if (!member.is_boolean()) Fail(std::string(key) + " is neither true nor false");
  return member.get<bool>();
}

std::vector<std::size_t> GltfItem::Wholes(const char* key) const {
  std::vector<std::size_t> numbers;
  for (const Json& element : List(key)) {
    const auto value = ToWhole(element);
    if (!value) Fail(std::string(key) + " is not a list of whole numbers");
    numbers.push_back(*value);
  }
  return numbers;
}

std::vector<std::string> GltfItem::Texts(const char* key) const {
  std::vector<std::string> texts;
  for (const Json& element : List(key)) {
    if (!element.is_string()) Fail(std::string(key) + " is not a list of texts");
    texts.push_back(element.get<std::string>());
  }
  return texts;
}

std::vector<double> GltfItem::Numbers(const char* key, std::vector<double> otherwise) const {
  if (!Has(key)) return otherwise;
  std::vector<double> numbers;
  for (const Json& element : List(key)) {
    if (element.is_number()) numbers.push_back(element.get<double>());
  }
  if (numbers.size() != otherwise.size() || numbers.size() != List(key).size())
    Fail(std::string(key) + " is not a list of " + std::to_string(otherwise.size()) + " numbers");
  return numbers;
}

GltfItem GltfItem::Child(const char* key) const {
  const Json& child = Member(key);
  if (!child.is_object()) Fail(std::string(key) + " is not an object");
  return {child, name_ + ": " + key};
}

std::size_t GltfItem::CountOf(const char* list) const {
  return List(list).size();
}

GltfItem GltfItem::Element(const char* list, std::size_t place) const {
  const std::string name = std::string(list) + "[" + std::to_string(place) + "]";
  const Json& all = List(list);
  if (place >= all.size()) Fail("there is no " + name);
  if (!all[place].is_object()) Fail(name + " is not an object");
  return {all[place], name_ + ": " + name};
}

}  // namespace zbr::formats
