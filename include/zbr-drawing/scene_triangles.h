// The triangles of a scene: of a vector what scenes need of one, made and given back on several threads. A million of them are 330
// MB.
#pragma once

#include <zbr/hidden_line_triangle.h>

#include <cstddef>
#include <utility>

namespace zbr::drawing {

// Can be moved, but not copied, like its triangles.
class SceneTriangles {
 public:
  SceneTriangles() = default;
  SceneTriangles(SceneTriangles&& o) noexcept { Swap(o); }
  SceneTriangles& operator=(SceneTriangles&& o) noexcept {
    SceneTriangles old(std::move(o));
    Swap(old);
    return *this;
  }
  SceneTriangles(const SceneTriangles&) = delete;
  SceneTriangles& operator=(const SceneTriangles&) = delete;
  ~SceneTriangles();

  // As those of a vector, on threads, of which the number stays for giving back; without one on as many as before.
  void resize(std::size_t count, unsigned threads);
  void resize(std::size_t count) { resize(count, threads_); }
  void reserve(std::size_t count);
  void clear() { *this = SceneTriangles(); }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  ZBR_HL_TRI* data() { return first_; }
  const ZBR_HL_TRI* data() const { return first_; }
  ZBR_HL_TRI* begin() { return first_; }
  const ZBR_HL_TRI* begin() const { return first_; }
  ZBR_HL_TRI* end() { return first_ + size_; }
  const ZBR_HL_TRI* end() const { return first_ + size_; }
  ZBR_HL_TRI& operator[](std::size_t i) { return first_[i]; }
  const ZBR_HL_TRI& operator[](std::size_t i) const { return first_[i]; }
  ZBR_HL_TRI& front() { return first_[0]; }
  const ZBR_HL_TRI& front() const { return first_[0]; }
  ZBR_HL_TRI& back() { return first_[size_ - 1]; }
  const ZBR_HL_TRI& back() const { return first_[size_ - 1]; }

 private:
  void Swap(SceneTriangles& o) noexcept {
    std::swap(first_, o.first_);
    std::swap(size_, o.size_);
    std::swap(capacity_, o.capacity_);
    std::swap(threads_, o.threads_);
  }
  void EndFrom(std::size_t count) noexcept;

  ZBR_HL_TRI* first_ = nullptr;
  std::size_t size_ = 0, capacity_ = 0;
  unsigned threads_ = 1;
};

}  // namespace zbr::drawing
