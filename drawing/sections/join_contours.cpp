// Ends of open contours in the order of x, each compared with those within the gap; the pairs are taken by distance.
#include "drawing/sections/join_contours.h"

#include <algorithm>
#include <map>
#include <tuple>
#include <utility>

namespace zbr::drawing {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// Ends are numbered: twice the contour's number, and 1 for its last point.
const ZBR_PT& PlaceOf(const std::vector<SeenContour>& open, std::size_t end) {
  return end % 2 == 0 ? open[end / 2].points.front() : open[end / 2].points.back();
}

std::vector<std::size_t> Partners(const std::vector<SeenContour>& open, double gap) {
  std::vector<std::size_t> ends(2 * open.size());
  for (std::size_t e = 0; e < ends.size(); ++e) ends[e] = e;
  std::sort(ends.begin(), ends.end(), [&](std::size_t a, std::size_t b) {
    const ZBR_PT &p = PlaceOf(open, a), &q = PlaceOf(open, b);
    return std::tuple(p.x(), p.y(), a) < std::tuple(q.x(), q.y(), b);
  });
  constexpr std::size_t kMostLooks = 64;  // where thousands of ends crowd, which of them are joined says nothing
  std::vector<std::tuple<double, std::size_t, std::size_t>> pairs;
  for (std::size_t i = 0; i < ends.size(); ++i) {
    for (std::size_t j = i + 1; j < std::min(ends.size(), i + kMostLooks); ++j) {
      const ZBR_PT &p = PlaceOf(open, ends[i]), &q = PlaceOf(open, ends[j]);
      if (q.x() - p.x() > gap) break;
      if (p.Distance(q) <= gap) pairs.emplace_back(p.Distance(q), std::min(ends[i], ends[j]), std::max(ends[i], ends[j]));
    }
  }
  std::sort(pairs.begin(), pairs.end());
  std::vector<std::size_t> partner(ends.size(), kNone);
  for (const auto& [distance, a, b] : pairs) {
    const bool isDot = a / 2 == b / 2 && open[a / 2].points.size() < 4;  // nothing is between its ends
    if (partner[a] != kNone || partner[b] != kNone || isDot) continue;
    partner[a] = b;
    partner[b] = a;
  }
  return partner;
}

// The opening that may be bridged, as a part of the contour's length: of a half circle it is two thirds.
constexpr double kOpening = 0.1;

double LengthOf(const SeenContour& contour) {
  double length = 0.0;
  for (std::size_t i = 1; i < contour.points.size(); ++i) length += contour.points[i].Distance(contour.points[i - 1]);
  return length;
}

void BridgeIfSmall(SeenContour& contour) {
  if (contour.points.front().Distance(contour.points.back()) > kOpening * LengthOf(contour)) return;
  contour.closed = contour.bridged = true;
  contour.triangles.push_back(kNoTriangle);
}

void Append(SeenContour& joined, SeenContour&& piece, bool backwards) {
  joined.along += backwards ? -piece.along : piece.along;
  if (backwards) {
    std::reverse(piece.points.begin(), piece.points.end());
    std::reverse(piece.triangles.begin(), piece.triangles.end());
  }
  if (!joined.points.empty()) {
    if (joined.points.back() == piece.points.front()) {
      joined.points.pop_back();
    } else {
      joined.triangles.push_back(kNoTriangle);
    }
  }
  joined.points.insert(joined.points.end(), piece.points.begin(), piece.points.end());
  joined.triangles.insert(joined.triangles.end(), piece.triangles.begin(), piece.triangles.end());
}

// Contours that follow one another across openings.
struct Round {
  std::vector<std::size_t> entered;  // ends
  double openings = 0.0, length = 0.0;
  bool isClosed = false;
};

Round RoundFrom(std::size_t contour, const std::vector<SeenContour>& open, const std::vector<std::size_t>& partner,
                std::vector<bool>& done) {
  Round round;
  for (std::size_t end = 2 * contour; !done[end / 2]; end = partner[end ^ 1U]) {
    done[end / 2] = true;
    round.entered.push_back(end);
    round.length += LengthOf(open[end / 2]);
    const std::size_t next = partner[end ^ 1U];
    if (next == kNone) return round;
    round.openings += PlaceOf(open, end ^ 1U).Distance(PlaceOf(open, next));
    round.isClosed = next == 2 * contour;
  }
  return round;
}

// A contour that a mesh has several openings along is in pieces, none of which nearly comes back to itself. The rings stand at the
// places of their first pieces, and nothing at those of others. Of one shell.
void BridgeTogether(const std::vector<std::size_t>& places, std::vector<SeenContour>& joined) {
  std::vector<SeenContour> open;
  double length = 0.0;
  for (const std::size_t k : places) {
    open.push_back(joined[k]);
    length += LengthOf(joined[k]);
  }
  if (open.size() < 2) return;
  const std::vector<std::size_t> partner = Partners(open, kOpening * length);
  std::vector<bool> done(open.size());
  for (std::size_t k = 0; k < open.size(); ++k) {
    const Round round = RoundFrom(k, open, partner, done);
    if (!round.isClosed || round.entered.size() < 2 || round.openings > kOpening * round.length) continue;
    SeenContour ring;
    ring.shell = open[k].shell;
    for (const std::size_t end : round.entered) {
      Append(ring, std::move(open[end / 2]), end % 2 == 1);
      joined[places[end / 2]].points.clear();
    }
    ring.closed = ring.bridged = true;
    ring.triangles.push_back(kNoTriangle);
    joined[places[k]] = std::move(ring);
  }
}

void BridgeShells(std::vector<SeenContour>& joined) {
  std::map<std::uint32_t, std::vector<std::size_t>> ofShell;
  for (std::size_t k = 0; k < joined.size(); ++k) {
    if (!joined[k].closed) ofShell[joined[k].shell].push_back(k);
  }
  for (const auto& [shell, places] : ofShell) BridgeTogether(places, joined);
  std::erase_if(joined, [](const SeenContour& contour) { return contour.points.empty(); });
}

}  // namespace

std::vector<SeenContour> JoinContours(std::vector<SeenContour> open, double gap) {
  const std::vector<std::size_t> partner = Partners(open, gap);
  std::vector<SeenContour> joined;
  std::vector<bool> done(open.size());
  const auto follow = [&](std::size_t start) {
    SeenContour& contour = joined.emplace_back();
    contour.shell = open[start / 2].shell;
    std::size_t end = start;
    for (; end != kNone && !done[end / 2]; end = partner[end ^ 1U]) {
      done[end / 2] = true;
      Append(contour, std::move(open[end / 2]), end % 2 == 1);
    }
    if (end == kNone) return BridgeIfSmall(contour);
    contour.closed = true;
    if (contour.points.back() == contour.points.front()) {
      contour.points.pop_back();
    } else {
      contour.triangles.push_back(kNoTriangle);
    }
  };
  for (std::size_t end = 0; end < partner.size(); ++end) {
    if (partner[end] == kNone && !done[end / 2]) follow(end);
  }
  for (std::size_t end = 0; end < partner.size(); end += 2) {
    if (!done[end / 2]) follow(end);
  }
  BridgeShells(joined);
  return joined;
}

}  // namespace zbr::drawing
