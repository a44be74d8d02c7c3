// Large arrays of which everything is written before it is read.
//
// Vectors clear their values first, which for a million of them takes half as long as what fills them.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>

namespace zbr::drawing {

template <class T>
class Unfilled {
  static_assert(std::is_trivially_default_constructible_v<T>);

 public:
  Unfilled() = default;
  explicit Unfilled(std::size_t count) : values_(new T[count]), size_(count) {}

  std::size_t size() const { return size_; }
  T& operator[](std::size_t i) { return values_[i]; }
  const T& operator[](std::size_t i) const { return values_[i]; }
  const T* begin() const { return values_.get(); }
  const T* end() const { return values_.get() + size_; }

 private:
  std::unique_ptr<T[]> values_;
  std::size_t size_ = 0;
};

}  // namespace zbr::drawing
