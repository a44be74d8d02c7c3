// Idea: seen along a bore its rims are one circle, and their polygons, divided each in its own way, lie now inside, now outside of
// each other: the nearer rim is seen as a whole, and crumbs of the other beside it. As they stand for one circle, what of a rim
// lies in directions from the axis in which another one is drawn says nothing. The first rim, and then the next, keeps its
// directions.
#include "drawing/views/wall_rims.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <tuple>
#include <utility>

#include "drawing/curves/angle_ranges.h"

namespace zbr::drawing {
namespace {

constexpr double kOnePlace = 1e-3;  // in scene units: what is closer together is chained

class WallRims {
 public:
  explicit WallRims(const DrawnSegments& drawn) : drawn_(drawn) {}

  // What was left of segments before goes before these.
  void Leave(std::vector<DrawnSegment>& segments) {
    std::map<WallOfShell, std::vector<Piece>> pieces;
    for (std::size_t i = 0; i < segments.size(); ++i) Collect(segments[i], i, pieces);
    std::vector<std::pair<std::size_t, PartOfStretch>> left;  // with their places
    for (auto& [wall, ofWall] : pieces) Settle(wall, ofWall, left);
    std::sort(left.begin(), left.end(),
              [](const auto& a, const auto& b) { return std::tie(a.first, a.second.from) < std::tie(b.first, b.second.from); });
    std::vector<std::size_t> places;
    std::vector<PartOfStretch> parts;
    for (auto& [place, part] : left) {
      if (places.empty() || places.back() != place) places.push_back(place);
      part.stretch = places.size() - 1;
      if (part.from < part.to) parts.push_back(part);
    }
    if (!places.empty()) drawn_.KeepParts(places, parts, segments);
  }

 private:
  using WallOfShell = std::pair<std::uint32_t, std::uint32_t>;

  // Lines of one kind: edges between rims are silhouettes of their own.
  struct Rim {
    bool isSilhouette, isOnWall;  // isOnWall: none that is a circle in space
    std::uint32_t circle;
    auto operator<=>(const Rim&) const = default;
  };

  struct Piece {
    Rim rim;
    std::size_t place;
    ZBR_PT start, end;  // from the centre
    double low = 0.0, high = 0.0;
    double drawn = 0.0;  // of the whole rim, in steps
  };

  void Collect(const DrawnSegment& segment, std::size_t place, std::map<WallOfShell, std::vector<Piece>>& pieces) const {
    if (kDrawnClasses[segment.edgeClass] == EdgeClass::kTangent || segment.segment.circle == kNoCircle) return;
    const ChordSides::Side* const chord = drawn_.ChordOf(segment);
    if (chord == nullptr || drawn_.Walls()->ofRims[chord->circle] == RoundWalls::kNone) return;
    const std::uint32_t wall = drawn_.Walls()->ofRims[chord->circle];
    const ZBR_PT centre = drawn_.GetScene().FromModel(drawn_.KnownCircles()->all[wall].centre).xy();
    const bool isSilhouette = kDrawnClasses[segment.edgeClass] == EdgeClass::kSilhouette;
    Piece piece{{isSilhouette, !drawn_.IsOwnChord(segment), chord->circle},
                place,
                segment.segment.segment.s() - centre,
                segment.segment.segment.e() - centre};
    const double a = Atan2(piece.start.y(), piece.start.x()),
                 turn = std::remainder(Atan2(piece.end.y(), piece.end.x()) - a, kFullTurn);
    piece.low = turn > 0 ? a : std::remainder(a + turn, kFullTurn);
    piece.high = piece.low + std::abs(turn);
    pieces[{wall, segment.shell}].push_back(piece);
  }

  // First the rims of which more is drawn, of these those that are circles in space: they are drawn in one piece.
  static void Rank(std::vector<Piece>& pieces) {
    constexpr double kSteps = 16.0;  // what differs by less is alike
    std::map<Rim, double> turns;
    for (const Piece& piece : pieces) turns[piece.rim] += piece.high - piece.low;
    for (Piece& piece : pieces) piece.drawn = std::round(std::min(turns[piece.rim] / kFullTurn, 1.0) * kSteps);
    std::stable_sort(pieces.begin(), pieces.end(),
                     [](const Piece& a, const Piece& b) { return std::tie(b.drawn, a.rim) < std::tie(a.drawn, b.rim); });
  }

  void Settle(const WallOfShell& wall, std::vector<Piece>& pieces, std::vector<std::pair<std::size_t, PartOfStretch>>& left) {
    Rank(pieces);
    AngleRanges& taken = taken_[wall];
    const double slack = kOnePlace / pieces.front().start.Length();
    for (std::size_t k = 0; k < pieces.size();) {
      std::size_t end = k;
      for (; end < pieces.size() && pieces[end].rim == pieces[k].rim; ++end) AddRest(pieces[end], taken, slack, left);
      for (; k < end; ++k) taken.Add(pieces[k].low, pieces[k].high);
      taken.Join(slack);
    }
  }

  // Nothing where all of it stays; a part without length where nothing does.
  static void AddRest(const Piece& piece, const AngleRanges& taken, double slack,
                      std::vector<std::pair<std::size_t, PartOfStretch>>& left) {
    const std::vector<AngleRanges::Range> rest = taken.Rest(piece.low, piece.high, slack);
    if (rest.size() == 1 && rest.front() == AngleRanges::Range(piece.low, piece.high)) return;
    if (rest.empty()) left.push_back({piece.place, {0, 0.0, 0.0}});
    for (const auto& [low, high] : rest) {
      const double a = low > piece.low ? PlaceAt(piece, low) : -1.0, b = high < piece.high ? PlaceAt(piece, high) : -1.0;
      const bool isAhead = piece.start.OuterProduct(piece.end) > 0;
      const double from = isAhead ? std::max(a, 0.0) : std::max(b, 0.0), to = isAhead ? (b < 0 ? 1.0 : b) : (a < 0 ? 1.0 : a);
      left.push_back({piece.place, {0, from, to}});
    }
  }

  // Of the chord, where a direction meets it.
  static double PlaceAt(const Piece& piece, double angle) {
    const ZBR_PT direction(Cos(angle), Sin(angle));
    const double s = piece.start.OuterProduct(direction), e = piece.end.OuterProduct(direction);
    return std::clamp(s / (s - e), 0.0, 1.0);
  }

  const DrawnSegments& drawn_;
  std::map<WallOfShell, AngleRanges> taken_;
};

}  // namespace

void LeaveOutRimsOfOneWall(const DrawnSegments& drawn, std::vector<DrawnSegment>& visible, std::vector<DrawnSegment>& hidden) {
  if (drawn.Walls() == nullptr) return;
  WallRims rims(drawn);
  rims.Leave(visible);
  rims.Leave(hidden);
}

}  // namespace zbr::drawing
