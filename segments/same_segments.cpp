// Removing segments that repeat others.
#include <zbr/segments.h>

#include "segments/segment_set.h"

void zbrRemoveDupSeg(std::vector<ZBR_SEG>& segs) {
  zbr::KeepMarked(segs, zbr::FirstOfEach(segs));
}

void zbrRemoveDupSeg(std::vector<ZBR_SEG3>& segs) {
  zbr::KeepMarked(segs, zbr::FirstOfEach(segs));
}

void zbrRemoveSameSeg(const std::vector<ZBR_SEG>& ref, std::vector<ZBR_SEG>& segs) {
  zbr::KeepMarked(segs, zbr::NotIn(ref, segs));
}

void zbrRemoveSameSeg(const std::vector<ZBR_SEG3>& ref, std::vector<ZBR_SEG3>& segs) {
  zbr::KeepMarked(segs, zbr::NotIn(ref, segs));
}
