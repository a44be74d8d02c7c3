// Sets of segments: removing repeats, clipping by a planar region.
//
// Two segments coincide when their ends do, in either direction, each within the calling thread's eps (tolerance.h). Everything
// here runs in n log n, keeps the order of what stays, and may be called from any number of threads on different vectors. Segments
// with a coordinate that is not finite coincide with nothing.
#pragma once

#include <memory>
#include <vector>

#include <zbr/export.h>
#include <zbr/loop.h>
#include <zbr/planar.h>
#include <zbr/spatial.h>

// Of segments that coincide the first stays. Coincidence is not transitive: a segment goes exactly when it coincides with an
// earlier one that stays.
ZBR_API void zbrRemoveDupSeg(std::vector<ZBR_SEG>& segs);
ZBR_API void zbrRemoveDupSeg(std::vector<ZBR_SEG3>& segs);

// Removes from segs what coincides with a segment of ref. The two may be the same vector, which then becomes empty of all segments
// that coincide with themselves.
ZBR_API void zbrRemoveSameSeg(const std::vector<ZBR_SEG>& ref, std::vector<ZBR_SEG>& segs);
ZBR_API void zbrRemoveSameSeg(const std::vector<ZBR_SEG3>& ref, std::vector<ZBR_SEG3>& segs);

// Clipping of spatial segments by a planar region, seen along z.
//
// A region is a loop with its children as holes, or a list of such loops as zbrMakeLoopTree leaves it; loops that overlap count
// even and odd. Orientation does not matter.
// The pieces of a segment follow one another from its start to its end, share their end points exactly, and begin and end with the
// segment's own points; the points between are those at the parameter of the crossing, x, y and z alike. So the inside and the
// outside pieces together are the segment.
//   - A run along the boundary, within eps, belongs to the inside.
//   - Pieces at most eps long in projection are not cut off: touching the boundary from outside leaves an outside piece whole,
//     touching it from inside an inside one.
//   - A segment at most eps long in projection is not cut: it is inside when its middle is, or when it is on the boundary.
//   - A segment with a coordinate that is not finite is outside, as is everything when the region is empty or null.
// Pieces are appended to `inside` and, unless it is null, to `outside`, in the order of the segments; neither may be the input. The
// result is the number of inside pieces appended. A loop with fewer than three points is left out. Coordinates up to about 1e75.
//
// The region is only read, so threads may share it. For one segment linear in the region; for n segments n log n in segments and
// region, and linear in the pieces (of which those that touch vertices or run along the boundary cost some for each ring around).
ZBR_API int zbrClipSeg(const ZBR_SEG3& seg, const std::shared_ptr<ZBR_LOOP>& region, std::vector<ZBR_SEG3>& inside,
                       std::vector<ZBR_SEG3>* outside);
ZBR_API int zbrClipSeg(const ZBR_SEG3& seg, const std::vector<std::shared_ptr<ZBR_LOOP>>& region, std::vector<ZBR_SEG3>& inside,
                       std::vector<ZBR_SEG3>* outside);
ZBR_API int zbrClipSegs(const std::vector<ZBR_SEG3>& segs, const std::shared_ptr<ZBR_LOOP>& region, std::vector<ZBR_SEG3>& inside,
                        std::vector<ZBR_SEG3>* outside);
ZBR_API int zbrClipSegs(const std::vector<ZBR_SEG3>& segs, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                        std::vector<ZBR_SEG3>& inside, std::vector<ZBR_SEG3>* outside);

// The same for a polyline: pieces that follow one another on the same side form one polyline, which keeps the given points. A
// polyline whose last point is its first is not joined there. One with fewer than two points has no pieces.
ZBR_API int zbrClipPolyline(const std::vector<ZBR_PT3>& line, const std::shared_ptr<ZBR_LOOP>& region,
                            std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside);
ZBR_API int zbrClipPolyline(const std::vector<ZBR_PT3>& line, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                            std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside);

// The same for many polylines. inside_of and outside_of, which may be null, receive for each piece the place of its polyline in
// `lines`; they run along with `inside` and `outside` and are resized with them, so start with all of them empty.
ZBR_API int zbrClipPolylines(const std::vector<std::vector<ZBR_PT3>>& lines, const std::vector<std::shared_ptr<ZBR_LOOP>>& region,
                             std::vector<std::vector<ZBR_PT3>>& inside, std::vector<std::vector<ZBR_PT3>>* outside,
                             std::vector<int>* inside_of, std::vector<int>* outside_of);
