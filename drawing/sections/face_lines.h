// The outlines of cut faces as lines that know the triangles they cross.
#pragma once

#include <zbr-drawing/section.h>

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "drawing/sections/join_contours.h"

namespace zbr::drawing {

class FaceLines {
 public:
  // Points less than a billionth of `size` off a straight line are left out of it.
  explicit FaceLines(double size) : straight_(1e-9 * size) {}

  // Forgets the contours noted: bodies in the same place may have the same cut.
  void StartObject() { crossed_.clear(); }
  // The edges of a contour, closed or open, by which those of the object's faces find their triangles again.
  void Note(const SeenContour& contour);
  // A cut that bounds nothing.
  void AddOpen(const SeenContour& contour);
  // One that has the same body on both sides.
  void AddWall(const SeenContour& contour);
  // The rings of the face, and what the cover of its body has beside them: the borders of faces that lie in the plane. Where the
  // face is not the whole cover it knows its sources there.
  void AddFace(const SectionFace& face, const ZBR_REGION& cover);

  void CountBridge() { ++bridged_; }

  std::size_t OpenCount() const { return open_; }
  std::size_t BridgeCount() const { return bridged_; }
  // Everything added, by shell. With a contact, what outlines of several bodies have in common is one line.
  std::vector<SectionLine> Take(std::optional<double> contact);

 private:
  using Points = std::vector<ZBR_PT>;
  struct Crossed {
    ZBR_PT a, b;
    std::uint32_t shell, triangle;
  };

  void AddRing(const ZBR_REGION& region, std::size_t ring, std::uint32_t shell);
  void AddRest(const SectionFace& face, const ZBR_REGION& cover);
  bool IsStraight(const ZBR_PT& from, const ZBR_PT& p, const ZBR_PT& to) const;
  void Rotate(SectionLine& line) const;
  void Straighten(SectionLine& line) const;
  // That of the shell or, as the edges of its hollows are of others, of any.
  std::uint32_t TriangleAt(const ZBR_PT& a, const ZBR_PT& b, std::uint32_t shell);

  double straight_;
  std::vector<Crossed> crossed_;
  bool isSorted_ = false;
  std::vector<SectionLine> lines_;  // with a triangle for each edge
  std::size_t open_ = 0, bridged_ = 0;
};

}  // namespace zbr::drawing
