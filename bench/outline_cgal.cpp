// The union of triangles by CGAL, in exact numbers.

#include <CGAL/Boolean_set_operations_2.h>
#include <CGAL/Exact_predicates_exact_constructions_kernel.h>
#include <CGAL/Polygon_2.h>
#include <CGAL/Polygon_set_2.h>

#include <iterator>

#include "outline_peer.h"

namespace bench {
namespace {

using Kernel = CGAL::Exact_predicates_exact_constructions_kernel;
using CgalPolygon = CGAL::Polygon_2<Kernel>;
using CgalHoled = CGAL::Polygon_with_holes_2<Kernel>;

double SignedArea(const CgalPolygon& polygon) {
  return CGAL::to_double(polygon.area());
}

class CgalOutline final : public OutlinePeer {
 public:
  void Load(const std::vector<Ring>& triangles) override {
    for (const Ring& triangle : triangles) {
      CgalPolygon polygon;
      for (const ZBR_PT& p : triangle) polygon.push_back(Kernel::Point_2(p.x(), p.y()));
      triangles_.push_back(std::move(polygon));
    }
  }
  void Run() override {
    union_.clear();
    CGAL::Polygon_set_2<Kernel> set;
    set.join(triangles_.begin(), triangles_.end());
    set.polygons_with_holes(std::back_inserter(union_));
  }
  Summary Describe() const override {
    Summary summary;
    for (const CgalHoled& part : union_) {
      summary.Add(SignedArea(part.outer_boundary()));
      for (auto hole = part.holes_begin(); hole != part.holes_end(); ++hole) summary.Add(SignedArea(*hole));
    }
    return summary;
  }

 private:
  std::vector<CgalPolygon> triangles_;
  std::vector<CgalHoled> union_;
};

}  // namespace

std::unique_ptr<OutlinePeer> MakeCgalOutline() {
  return std::make_unique<CgalOutline>();
}

}  // namespace bench
