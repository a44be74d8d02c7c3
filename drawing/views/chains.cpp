// Joining segments into polylines that remember their edges.
//
// Segments shorter than the tolerance are left out: crumbs, as the removal leaves them between other lines. But the rims of a very
// fine mesh, or of a small part of a large one, are made of nothing else. So those of them that follow one another for some way are
// joined into longer ones first.
#include "drawing/views/chains.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

#include "drawing/curves/chain_runs.h"

namespace zbr::drawing {

namespace {

// In tolerances. How far ends may lie apart that follow one another; how long what they make must be, less being nothing on paper;
// how long the segments made of it are.
constexpr double kApart = 1e-3;
constexpr double kRun = 20.0;
constexpr double kStep = 2.0;

double LengthOf(const EdgeSegment& s) {
  return s.segment.s().Distance(s.segment.e());
}

double LengthOf(const std::vector<EdgeSegment>& segments) {
  double length = 0.0;
  for (const EdgeSegment& s : segments) length += LengthOf(s);
  return length;
}

EdgeSegment Turned(const EdgeSegment& s, bool forwards) {
  return forwards ? s : EdgeSegment{ZBR_SEG(s.segment.e(), s.segment.s()), s.edge, s.circle, s.t1, s.t0};
}

// One segment from the start of the first to the end of the other.
EdgeSegment Joined(const EdgeSegment& first, const EdgeSegment& last) {
  EdgeSegment joined = first;
  joined.segment = ZBR_SEG(first.segment.s(), last.segment.e());
  joined.t1 = last.t1;
  if (last.circle != first.circle) joined.circle = kNoCircle;
  return joined;
}

// What is left over at the end lengthens the last one. Each keeps the first of its edges.
void AddSteps(const std::vector<EdgeSegment>& run, double least, std::vector<EdgeSegment>& segments) {
  const std::size_t before = segments.size();
  std::size_t first = 0;
  for (std::size_t i = 0; i < run.size(); ++i) {
    const EdgeSegment step = Joined(run[first], run[i]);
    const bool isLong = LengthOf(step) >= least;
    if (!isLong && (i + 1 < run.size() || segments.size() == before)) continue;
    if (isLong) {
      segments.push_back(step);
    } else {
      segments.back() = Joined(segments.back(), run[i]);
    }
    first = i + 1;
  }
}

}  // namespace

// Fills in polylines and the ends at which they enter segments. Returns how many are open.
std::size_t SegmentChainer::Join(const std::vector<EdgeSegment>& segments, double apart) {
  ends_.resize(2 * segments.size());
  for (std::size_t i = 0; i < segments.size(); ++i) {
    ends_[2 * i].pt = segments[i].segment.s();
    ends_[2 * i + 1].pt = segments[i].segment.e();
  }
  return static_cast<std::size_t>(zbrOptimizeSegs(ends_, polylines_, entered_, apart));
}

// Adds segments for runs of those that are too short by themselves.
void SegmentChainer::JoinShort(std::vector<EdgeSegment>& segments) {
  shorts_.clear();
  std::copy_if(segments.begin(), segments.end(), std::back_inserter(shorts_),
               [&](const EdgeSegment& s) { return LengthOf(s) <= tolerance_; });
  if (LengthOf(shorts_) < kRun * tolerance_) return;
  Join(shorts_, kApart * tolerance_);
  for (const std::vector<int>& way : entered_) {
    std::vector<EdgeSegment> run;
    for (const int end : way) run.push_back(Turned(shorts_[static_cast<std::size_t>(end) / 2], end % 2 == 0));
    if (LengthOf(run) >= kRun * tolerance_) AddSteps(run, kStep * tolerance_, segments);
  }
}

std::vector<Chain>& SegmentChainer::ChainsOf(std::vector<EdgeSegment>& segments) {
  JoinShort(segments);
  const std::size_t open = Join(segments, tolerance_);
  chains_.clear();
  chains_.resize(polylines_.size());
  for (std::size_t i = 0; i < chains_.size(); ++i) {
    chains_[i].closed = i >= open;
    chains_[i].points = std::move(polylines_[i]);
    chains_[i].edges = EdgesOf(segments, entered_[i]);
    NoteRuns(segments, entered_[i], circles_, chains_[i]);
  }
  return chains_;
}

double LengthOf(const Chain& chain) {
  double length = 0.0;
  for (std::size_t i = 1; i < chain.points.size(); ++i) length += chain.points[i].Distance(chain.points[i - 1]);
  return length;
}

}  // namespace zbr::drawing
