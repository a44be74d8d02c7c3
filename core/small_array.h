// Arrays for a moment, of a size that is known beforehand.
#pragma once

#include <cstddef>
#include <vector>

namespace zbr {

// On the stack where it is small: what is called for each of many small things would spend its time getting memory.
template <class T, std::size_t kOwn>
class SmallArray {
 public:
  explicit SmallArray(std::size_t size, const T& value = T())
      : many_(size > kOwn ? size : 0, value), data_(size > kOwn ? many_.data() : own_), size_(size) {
    for (std::size_t i = 0; i < size && size <= kOwn; ++i) own_[i] = value;
  }
  SmallArray(const SmallArray&) = delete;
  SmallArray& operator=(const SmallArray&) = delete;

  T& operator[](std::size_t i) { return data_[i]; }
  const T& operator[](std::size_t i) const { return data_[i]; }
  std::size_t size() const { return size_; }
  T* begin() { return data_; }
  T* end() { return data_ + size_; }
  const T* begin() const { return data_; }
  const T* end() const { return data_ + size_; }

 private:
  T own_[kOwn];
  std::vector<T> many_;
  T* const data_;
  const std::size_t size_;
};

}  // namespace zbr
