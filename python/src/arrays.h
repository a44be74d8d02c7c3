// Arrays in and out, by the buffer protocol.
//
// In: an array of the right layout is read where it is; anything else goes through numpy.asarray. Out: an array is a view of memory
// that a C++ object owns, and shares the ownership, so that it may outlive the Python object it came from.
#pragma once

#include "python/src/refs.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace zbr::python {

// A contiguous (rows, columns) array of float64, held while this lives.
class Doubles {
 public:
  // `name` is the argument's, for messages. An empty list has no rows.
  Doubles(PyObject* object, const char* name, int columns);
  ~Doubles() { Release(); }
  Doubles(const Doubles&) = delete;
  Doubles& operator=(const Doubles&) = delete;

  const double* data() const { return static_cast<const double*>(buffer_.buf); }
  std::size_t rows() const { return rows_; }

 private:
  bool Hold(PyObject* object, int columns);
  void Release();

  Py_buffer buffer_{};
  bool isHeld_ = false;
  std::size_t rows_ = 0;
};

// A copy of an array of integers of any type, each from `least` to `most`. `columns` 0: one dimension.
std::vector<std::int32_t> ReadIntegers(PyObject* object, const char* name, int columns, std::int64_t least, std::int64_t most);

// The same of offsets: ascending, from 0 or more to at most `limit`. Throws when there are none.
std::vector<std::int32_t> ReadOffsets(PyObject* object, const char* name, std::size_t limit, const char* limitName);

// The format of an array's items, as the buffer protocol writes it.
template <class T>
constexpr const char* kFormat = "";
template <>
inline constexpr const char* kFormat<double> = "d";
template <>
inline constexpr const char* kFormat<std::int32_t> = "i";
template <>
inline constexpr const char* kFormat<std::int8_t> = "b";
template <>
inline constexpr const char* kFormat<std::uint8_t> = "B";
template <>
inline constexpr const char* kFormat<bool> = "?";

struct ArrayShape {
  std::size_t rows = 0;
  std::size_t columns = 0;  // 0: one dimension
  bool writable = false;
};

Ref MakeArray(std::shared_ptr<const void> owner, const void* data, const char* format, std::size_t itemSize,
              const ArrayShape& shape);

template <class T>
Ref MakeArray(std::shared_ptr<const void> owner, const T* data, const ArrayShape& shape) {
  return MakeArray(std::move(owner), data, kFormat<T>, sizeof(T), shape);
}

// A vector that becomes an array of one dimension of its own, which may be written to. Items of type Shown.
template <class Shown, class T>
Ref MakeArray(std::vector<T>&& items, std::size_t columns = 0) {
  static_assert(sizeof(T) % sizeof(Shown) == 0);
  const auto owner = std::make_shared<const std::vector<T>>(std::move(items));
  const std::size_t perRow = columns == 0 ? 1 : columns;
  return MakeArray(owner, reinterpret_cast<const Shown*>(owner->data()),
                   {owner->size() * (sizeof(T) / sizeof(Shown)) / perRow, columns, true});
}

// Adds the type of the objects that hold the memory of arrays.
void AddArrayType(PyObject* module);

}  // namespace zbr::python
