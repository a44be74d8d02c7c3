// One object of a glTF document.
#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace zbr::formats {

// Members are checked on the way out: whatever is missing or of another kind than asked for ends in a Failure that names the file
// and the way to the place, as in "a.gltf: accessors[3]: count is missing". Refers to the document.
class GltfItem {
 public:
  GltfItem(const nlohmann::json& json, std::string name) : json_(&json), name_(std::move(name)) {}

  bool Has(const char* key) const { return json_->contains(key); }

  // A whole number that is not negative; `otherwise` where there is none.
  std::size_t Whole(const char* key) const;
  std::size_t Whole(const char* key, std::size_t otherwise) const { return Has(key) ? Whole(key) : otherwise; }
  std::string Text(const char* key) const;
  bool Flag(const char* key) const;  // false where there is none

  // Lists; empty where there is none.
  std::vector<std::size_t> Wholes(const char* key) const;
  std::vector<std::string> Texts(const char* key) const;
  // As many numbers as `otherwise` has.
  std::vector<double> Numbers(const char* key, std::vector<double> otherwise) const;

  GltfItem Child(const char* key) const;
  std::size_t CountOf(const char* list) const;
  GltfItem Element(const char* list, std::size_t place) const;

  [[noreturn]] void Fail(const std::string& cause) const;

 private:
  const nlohmann::json& Member(const char* key) const;
  // The elements of a list; none where there is no list.
  const nlohmann::json& List(const char* key) const;

  const nlohmann::json* json_;  // an object
  std::string name_;
};

}  // namespace zbr::formats
