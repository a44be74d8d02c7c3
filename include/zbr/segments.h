// Sets of segments: removing repeats.
//
// Two segments coincide when their ends do, in either direction, each within the calling thread's eps (tolerance.h). Everything
// here runs in n log n, keeps the order of what stays, and may be called from any number of threads on different vectors. Segments
// with a coordinate that is not finite coincide with nothing.
#pragma once

#include <vector>

#include <zbr/export.h>
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
