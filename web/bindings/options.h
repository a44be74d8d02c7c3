// Options of a call, from the JSON that JavaScript made of an object.
#pragma once

#include <zbr-drawing/failure.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace zbr::web {

// Reads options by their names. A value of another type is refused with the option's name, and so is, by Finish, a name that
// nobody asked for: a misspelt option would otherwise do nothing, silently.
class Options {
 public:
  using Json = nlohmann::json;

  // By pointers, as glTF is parsed: for other iterators all of the parser would be compiled again.
  explicit Options(const std::string& text) : json_(Json::parse(text.data(), text.data() + text.size())) {}
  explicit Options(Json json) : json_(std::move(json)) {}

  // Null where it was not given.
  const Json& At(const std::string& name) {
    known_.insert(name);
    static const Json kNone;
    const auto found = json_.find(name);
    return found == json_.end() ? kNone : *found;
  }
  template <class T>
  T Get(const std::string& name, T otherwise) {
    const Json& value = At(name);
    if (value.is_null()) return otherwise;
    try {
      return value.get<T>();
    } catch (const Json::exception&) {
      Refuse(name, value.dump() + " is not what this option takes");
    }
  }
  // One of the words, whose place is the answer.
  std::size_t Choose(const std::string& name, std::initializer_list<const char*> words, std::size_t otherwise) {
    const Json& value = At(name);
    if (value.is_null()) return otherwise;
    std::size_t place = 0;
    std::string all;
    for (const char* word : words) {
      if (value == word) return place;
      all += (place++ == 0 ? "" : ", ") + std::string(word);
    }
    Refuse(name, value.dump() + " is none of " + all);
  }
  void Finish() const {
    for (const auto& [name, value] : json_.items()) {
      if (known_.find(name) == known_.end()) Refuse(name, "there is no such option");
    }
  }
  const Json& json() const { return json_; }

  [[noreturn]] static void Refuse(const std::string& name, const std::string& cause) { throw drawing::Failure(name, cause); }

 private:
  Json json_;
  std::set<std::string> known_;
};

}  // namespace zbr::web
