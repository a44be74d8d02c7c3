// A scene's triangles written over by what becomes of them.
//
// Of a million triangles those that stay are not written anew beside the others, but moved forward: their memory is there already,
// and what lies before the first that goes need not be moved at all. What has been written may catch up with what is still to be
// read; then the rest moves back, by as much as is likely to be needed.
#pragma once

#include <zbr-drawing/scene.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

namespace zbr::drawing {

class RefilledScene {
 public:
  explicit RefilledScene(Scene& scene) : scene_(scene), before_(scene.triangles.size()) {
    classes_.reserve(before_);  // what is not used costs nothing
    parts_.reserve(before_);
  }

  // Before it is read: those are to be read in their order, and none after a later one was.
  ZBR_HL_TRI& Read(std::size_t t) {
    read_ = t;
    return scene_.triangles[t + shift_];
  }
  const std::array<EdgeClass, 3>& ClassesRead(std::size_t t) const { return scene_.classes[t]; }

  std::size_t Count() const { return classes_.size(); }
  ZBR_HL_TRI& Triangle(std::size_t i) { return scene_.triangles[i]; }
  std::array<EdgeClass, 3>& Classes(std::size_t i) { return classes_[i]; }

  // The triangle that was read comes next as it is.
  ZBR_HL_TRI& Keep(const ScenePart& part) {
    const std::size_t from = read_ + shift_, to = Count();
    if (from != to) scene_.triangles[to] = std::move(scene_.triangles[from]);
    classes_.push_back(scene_.classes[read_]);
    parts_.push_back(part);
    return scene_.triangles[to];
  }
  // A new one comes next. What was read is lost.
  ZBR_HL_TRI& Add(const ScenePart& part) {
    if (Count() > read_ + shift_) MakeRoom();
    ZBR_HL_TRI& triangle = scene_.triangles[Count()];
    triangle = ZBR_HL_TRI();
    classes_.push_back({EdgeClass::kSmooth, EdgeClass::kSmooth, EdgeClass::kSmooth});
    parts_.push_back(part);
    return triangle;
  }

  void Finish() {
    scene_.triangles.resize(Count());
    scene_.classes = std::move(classes_);
    scene_.parts = std::move(parts_);
  }

 private:
  // For as many more as there have been so far, and a part of them, as what is added at the end of a shell tells nothing of the
  // rest.
  void MakeRoom() {
    constexpr std::size_t kLeast = 1024;
    const double perTriangle = static_cast<double>(Count()) / static_cast<double>(read_ + 1);
    const auto rest = static_cast<double>(before_ - std::min(before_, read_ + 1));
    const std::size_t room = std::max(kLeast, Count() / 4) + static_cast<std::size_t>(std::max(perTriangle - 1.0, 0.0) * rest),
                      end = before_ + shift_;
    scene_.triangles.resize(end + room);
    std::move_backward(scene_.triangles.begin() + static_cast<std::ptrdiff_t>(std::min(end, read_ + 1 + shift_)),
                       scene_.triangles.begin() + static_cast<std::ptrdiff_t>(end), scene_.triangles.end());
    shift_ += room;
  }

  Scene& scene_;
  const std::size_t before_;          // triangles
  std::size_t read_ = 0, shift_ = 0;  // the last one read, and how far those after it were moved back
  std::vector<std::array<EdgeClass, 3>> classes_;
  std::vector<ScenePart> parts_;
};

}  // namespace zbr::drawing
