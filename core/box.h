// Axis-aligned boxes.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <zbr/planar.h>

namespace zbr {

struct Box {
  double xmin = std::numeric_limits<double>::infinity();
  double ymin = std::numeric_limits<double>::infinity();
  double xmax = -std::numeric_limits<double>::infinity();
  double ymax = -std::numeric_limits<double>::infinity();

  // Both axes at once, where the processor can: boxes that are stored number by number and compared as a whole have to wait for the
  // memory. Equal numbers and NaN are treated alike in both forms.
#if defined(__SSE2__)
  void Add(const ZBR_PT& p) {
    const __m128d at = _mm_set_pd(p.y(), p.x());
    _mm_storeu_pd(&xmin, _mm_min_pd(at, _mm_loadu_pd(&xmin)));
    _mm_storeu_pd(&xmax, _mm_max_pd(at, _mm_loadu_pd(&xmax)));
  }
  void Add(const Box& o) {
    _mm_storeu_pd(&xmin, _mm_min_pd(_mm_loadu_pd(&o.xmin), _mm_loadu_pd(&xmin)));
    _mm_storeu_pd(&xmax, _mm_max_pd(_mm_loadu_pd(&o.xmax), _mm_loadu_pd(&xmax)));
  }
  // The box widened by d on every side.
  Box Widened(double d) const {
    Box box;
    _mm_storeu_pd(&box.xmin, _mm_sub_pd(_mm_loadu_pd(&xmin), _mm_set1_pd(d)));
    _mm_storeu_pd(&box.xmax, _mm_add_pd(_mm_loadu_pd(&xmax), _mm_set1_pd(d)));
    return box;
  }
#else
  void Add(const ZBR_PT& p) {
    Add(Box{p.x(), p.y(), p.x(), p.y()});
  }
  void Add(const Box& o) {
    xmin = std::min(xmin, o.xmin);
    ymin = std::min(ymin, o.ymin);
    xmax = std::max(xmax, o.xmax);
    ymax = std::max(ymax, o.ymax);
  }
  Box Widened(double d) const {
    return {xmin - d, ymin - d, xmax + d, ymax + d};
  }
#endif
  ZBR_PT Center() const {
    return ZBR_PT((xmin + xmax) / 2.0, (ymin + ymax) / 2.0);
  }
  bool Contains(const ZBR_PT& p) const {
    return xmin <= p.x() && p.x() <= xmax && ymin <= p.y() && p.y() <= ymax;
  }
};

// The two tests below sit in the innermost loops of every search and have irregular outcomes, so they are computed without
// branches, both axes at once where the processor has two-wide doubles. The plain forms say the same.

// Closed boxes: touching counts.
inline bool Overlap(const Box& a, const Box& b) {
#if defined(__SSE2__)
  const __m128d below = _mm_cmple_pd(_mm_loadu_pd(&a.xmin), _mm_loadu_pd(&b.xmax));
  const __m128d above = _mm_cmple_pd(_mm_loadu_pd(&b.xmin), _mm_loadu_pd(&a.xmax));
  return _mm_movemask_pd(_mm_and_pd(below, above)) == 3;
#else
  return (a.xmin <= b.xmax) & (b.xmin <= a.xmax) & (a.ymin <= b.ymax) & (b.ymin <= a.ymax);
#endif
}

// Whether the boxes are farther apart than d on some axis.
inline bool AreApart(const Box& a, const Box& b, double d) {
  return b.xmin > a.xmax + d || b.ymin > a.ymax + d || a.xmin > b.xmax + d || a.ymin > b.ymax + d;
}

// The sides of the box beyond which p lies, a bit each (Cohen and Sutherland's outcode). Two points with a bit in common span a box
// that misses this one.
inline unsigned SidesBeyond(const ZBR_PT& p, const Box& box) {
#if defined(__SSE2__)
  const __m128d at = _mm_set_pd(p.y(), p.x());
  const int greater = _mm_movemask_pd(_mm_cmpgt_pd(at, _mm_loadu_pd(&box.xmax)));
  const int less = _mm_movemask_pd(_mm_cmplt_pd(at, _mm_loadu_pd(&box.xmin)));
  return static_cast<unsigned>(greater | less << 2);
#else
  return static_cast<unsigned>(p.x() > box.xmax) | static_cast<unsigned>(p.y() > box.ymax) << 1U |
         static_cast<unsigned>(p.x() < box.xmin) << 2U | static_cast<unsigned>(p.y() < box.ymin) << 3U;
#endif
}

inline Box BoxOfSegment(const ZBR_PT& p, const ZBR_PT& q) {
#if defined(__SSE2__)
  const __m128d from = _mm_set_pd(p.y(), p.x());
  const __m128d to = _mm_set_pd(q.y(), q.x());
  Box box;
  _mm_storeu_pd(&box.xmin, _mm_min_pd(to, from));
  _mm_storeu_pd(&box.xmax, _mm_max_pd(to, from));
  return box;
#else
  return {std::min(p.x(), q.x()), std::min(p.y(), q.y()), std::max(p.x(), q.x()), std::max(p.y(), q.y())};
#endif
}

// What lies within a margin of a segment, for searching boxes: the box of a slanting segment holds much that is far from it.
class SegmentBand {
 public:
  SegmentBand(const ZBR_PT& a, const ZBR_PT& b, double margin)
      : box_(BoxOfSegment(a, b).Widened(margin)),
        a_(a),
        d_(b - a),
        reach_(2.0 * margin * (std::fabs(d_.x()) + std::fabs(d_.y()))) {}  // at least margin * |d|, and room for rounding

  // False only for boxes that are farther away than the margin.
  bool Meets(const Box& box) const {
    if (!Overlap(box, box_)) return false;
    const ZBR_PT off = box.Center() - a_;
    const double extent = std::fabs(d_.x()) * (box.ymax - box.ymin) + std::fabs(d_.y()) * (box.xmax - box.xmin);
    return std::fabs(d_.x() * off.y() - d_.y() * off.x()) <= 0.5 * extent + reach_;
  }

 private:
  Box box_;
  ZBR_PT a_;
  ZBR_PT d_;
  double reach_;
};

}  // namespace zbr
