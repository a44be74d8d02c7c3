// What stays until the process ends, when the system takes all of its memory at once: to give back what a model of a hundred
// thousand bodies and its lines are made of takes as long as writing them.
#pragma once

#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace tool {

template <class T>
T& Kept(T&& value) {
  static_assert(!std::is_reference_v<T>);
  static auto& all = *new std::vector<std::shared_ptr<T>>;  // known to those who look for leaks
  return *all.emplace_back(std::make_shared<T>(std::forward<T>(value)));
}

}  // namespace tool
