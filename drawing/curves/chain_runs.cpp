// Idea: segments that follow one another in a chain, are chords of one circle and go round it in one direction are a run.
// Difficulty: chaining leaves out points that lie straight between others, which the ends of a run may do, and closed chains may
// begin in the middle of one. So the chain is taken anew from its segments, with a mark at each point that stays.
#include "drawing/curves/chain_runs.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>

namespace zbr::drawing {
namespace {

// A segment as the chain runs along it.
struct Step {
  std::uint32_t circle = kNoCircle;
  double t0 = 0.0, turn = 0.0;  // from -pi to pi
  ZBR_PT end;

  Step(const EdgeSegment& s, bool forward)
      : circle(s.circle), t0(forward ? s.t0 : s.t1), end(forward ? s.segment.e() : s.segment.s()) {
    turn = std::remainder((forward ? s.t1 : s.t0) - t0, 2.0 * kPi);
  }
  bool GoesOnAs(const Step& next) const { return circle != kNoCircle && circle == next.circle && turn * next.turn >= 0; }
};

class RunFinder {
 public:
  RunFinder(const std::vector<EdgeSegment>& segments, const std::vector<int>& entered, Chain& chain)
      : segments_(segments), entered_(entered), chain_(chain) {
    steps_.reserve(entered.size());
    for (const int end : entered) steps_.emplace_back(SegmentAt(end), end % 2 == 0);
  }

  void Run(const SeenCircles& circles) {
    MarkKept();
    if (chain_.closed) Turn(FirstBreak());
    for (std::size_t k = 0; k < steps_.size();) {
      std::size_t end = k + 1;
      while (end < steps_.size() && steps_[end - 1].GoesOnAs(steps_[end])) ++end;
      if (steps_[k].circle != kNoCircle) {
        isKept_[k] = isKept_[end] = true;
        chain_.curves.push_back(RunOf(k, end, circles));
      }
      k = end;
    }
    SetPoints();
  }

 private:
  const EdgeSegment& SegmentAt(int end) const { return segments_[static_cast<std::size_t>(end) / 2]; }

  // Vertex k is where step k starts, the last one where the last step ends.
  void MarkKept() {
    const EdgeSegment& first = SegmentAt(entered_.front());
    vertices_ = {entered_.front() % 2 == 0 ? first.segment.s() : first.segment.e()};
    for (const Step& step : steps_) vertices_.push_back(step.end);
    std::size_t place = 0;
    for (const ZBR_PT& p : vertices_) {
      const bool isPoint = place < chain_.points.size() && p.x() == chain_.points[place].x() && p.y() == chain_.points[place].y();
      isKept_.push_back(isPoint);
      if (isPoint) ++place;
    }
  }

  // The step of a closed chain before which a run begins or ends; 0 when there is none.
  std::size_t FirstBreak() const {
    for (std::size_t k = 0; k < steps_.size(); ++k) {
      const Step& before = steps_[k > 0 ? k - 1 : steps_.size() - 1];
      if (before.circle != steps_[k].circle || (before.circle != kNoCircle && !before.GoesOnAs(steps_[k]))) return k;
    }
    return 0;
  }

  // Makes step k the first one.
  void Turn(std::size_t k) {
    const auto by = static_cast<std::ptrdiff_t>(k);
    vertices_.pop_back();
    isKept_.pop_back();
    std::rotate(steps_.begin(), steps_.begin() + by, steps_.end());
    std::rotate(vertices_.begin(), vertices_.begin() + by, vertices_.end());
    std::rotate(isKept_.begin(), isKept_.begin() + by, isKept_.end());
    vertices_.push_back(vertices_.front());
    isKept_.front() = true;
    isKept_.push_back(true);
    if (k == 0) return;
    std::vector<int> entered = entered_;
    std::rotate(entered.begin(), entered.begin() + by, entered.end());
    chain_.edges = EdgesOf(segments_, entered);
  }

  // Its places are those of vertices yet.
  CircleRun RunOf(std::size_t begin, std::size_t end, const SeenCircles& circles) const {
    CircleRun run = circles.Curve(steps_[begin].circle);
    double turn = 0.0;
    for (std::size_t k = begin; k < end; ++k) turn += steps_[k].turn;
    const bool isWhole = chain_.closed && end - begin == steps_.size();
    run.at = begin;
    run.last = end;
    run.t0 = steps_[begin].t0;
    run.t1 = run.t0 + (isWhole ? std::copysign(2.0 * kPi, turn) : turn);
    return run;
  }

  void SetPoints() {
    std::vector<std::size_t> place;  // of vertices among the points
    chain_.points.clear();
    for (std::size_t k = 0; k < vertices_.size(); ++k) {
      place.push_back(chain_.points.size());
      if (isKept_[k]) chain_.points.push_back(vertices_[k]);
    }
    for (CircleRun& run : chain_.curves) {
      run.at = place[run.at];
      run.last = place[run.last];
    }
  }

  const std::vector<EdgeSegment>& segments_;
  const std::vector<int>& entered_;
  Chain& chain_;
  std::vector<Step> steps_;
  std::vector<ZBR_PT> vertices_;
  std::vector<bool> isKept_;
};

}  // namespace

void NoteRuns(const std::vector<EdgeSegment>& segments, const std::vector<int>& entered, const SeenCircles& circles, Chain& chain) {
  const auto isOnCircle = [&](int end) { return segments[static_cast<std::size_t>(end) / 2].circle != kNoCircle; };
  if (std::any_of(entered.begin(), entered.end(), isOnCircle)) RunFinder(segments, entered, chain).Run(circles);
}

std::vector<EdgeRef> EdgesOf(const std::vector<EdgeSegment>& segments, const std::vector<int>& entered) {
  const auto edgeAt = [&](std::size_t k) -> const EdgeRef& { return segments[static_cast<std::size_t>(entered[k]) / 2].edge; };
  const auto isNew = [&](std::size_t k) { return k == 0 || !(edgeAt(k - 1) == edgeAt(k)); };
  std::size_t count = 0;
  for (std::size_t k = 0; k < entered.size(); ++k) count += isNew(k) ? 1 : 0;
  std::vector<EdgeRef> edges;
  edges.reserve(count);
  for (std::size_t k = 0; k < entered.size(); ++k) {
    if (isNew(k)) edges.push_back(edgeAt(k));
  }
  return edges;
}

}  // namespace zbr::drawing
