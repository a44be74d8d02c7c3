// Lines at 45 degrees, a few millimetres apart, clipped by the faces.
//
// Bodies that come close to each other get different styles; a style whose lines run along much of the body's outline is passed
// over. A face is cut by each line at an even number of places, because whether an edge reaches a line is decided at its ends
// alone, the same for both edges of a point.
#include "drawing/sheets/hatching.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

namespace zbr::drawing {
namespace {

struct Style {
  double degrees, spacing;  // the second as a part of the usual one
};
constexpr std::array<Style, 8> kStyles = {
    {{45, 1.0}, {135, 1.0}, {45, 0.6}, {135, 0.6}, {30, 0.8}, {120, 0.8}, {60, 1.2}, {150, 1.2}}};

constexpr double kNarrowest = 1.0, kWidest = 4.0;  // mm between lines
constexpr double kPerWidth = 0.35;                 // of the mean width of what is hatched
constexpr double kNear = 2.0;                      // mm: bodies closer than this are told apart by their styles

struct Box {
  double xmin, ymin, xmax, ymax;
  bool IsNear(const Box& o, double gap) const {
    return xmin - gap <= o.xmax && o.xmin - gap <= xmax && ymin - gap <= o.ymax && o.ymin - gap <= ymax;
  }
};

Box BoxOf(const ZBR_REGION& region) {
  Box box{};
  region.GetBounds(box.xmin, box.ymin, box.xmax, box.ymax);
  return box;
}

// Calls f(p, q) for each edge.
template <class F>
void ForEachEdge(const ZBR_REGION& region, F f) {
  for (std::size_t r = 0; r < region.ring_count(); ++r) {
    const auto begin = static_cast<std::size_t>(region.ring_offsets()[r]),
               end = static_cast<std::size_t>(region.ring_offsets()[r + 1]);
    for (std::size_t i = begin; i < end; ++i) f(region.points()[i], region.points()[i + 1 < end ? i + 1 : begin]);
  }
}

// One body in all section views.
struct Body {
  std::vector<std::pair<std::size_t, const SectionFace*>> faces;  // with the view's place
  std::size_t style = 0;

  double Spacing(double perUnit) const {
    double area = 0.0, perimeter = 0.0;
    for (const auto& [view, face] : faces) {
      area += face->region.area();
      perimeter += face->region.perimeter();
    }
    const double width = perimeter > 0 ? 2 * area / perimeter * perUnit : 0.0;
    return std::clamp(kPerWidth * width, kNarrowest, kWidest);
  }

  // Whether much of the outline runs along the lines of the style.
  bool RunsAlong(std::size_t k) const {
    constexpr double kAlong = 0.17, kMuch = 0.3;  // sine of 10 degrees
    const double angle = kStyles[k].degrees * kPi / 180;
    const ZBR_PT along(Cos(angle), Sin(angle));
    double all = 0.0, parallel = 0.0;
    for (const auto& [view, face] : faces) {
      ForEachEdge(face->region, [&](const ZBR_PT& p, const ZBR_PT& q) {
        const double length = q.Distance(p);
        all += length;
        if (std::abs(along.OuterProduct(q - p)) < kAlong * length) parallel += length;
      });
    }
    return parallel > kMuch * all;
  }
};

using Bodies = std::map<std::uint32_t, Body>;  // by shell

Bodies BodiesOf(const Sheet& sheet) {
  Bodies bodies;
  for (std::size_t v = 0; v < sheet.views.size(); ++v) {
    if (!sheet.views[v].lines.section) continue;
    for (const SectionFace& face : sheet.views[v].lines.section->faces) {
      if (!face.region.empty()) bodies[face.shell].faces.emplace_back(v, &face);
    }
  }
  return bodies;
}

// The styles of what is placed near a box, by square cells.
class PlacedStyles {
 public:
  using Styles = std::array<bool, kStyles.size()>;

  // Cells are as large as the boxes are on the average, and so large that none covers very many.
  PlacedStyles(const Bodies& bodies, double gap) : gap_(gap) {
    constexpr double kMostCells = 256;  // along a box
    double sum = 0.0, largest = 0.0, count = 0.0;
    for (const auto& entry : bodies) {
      for (const auto& face : entry.second.faces) {
        const Box box = BoxOf(face.second->region);
        const double size = std::max(box.xmax - box.xmin, box.ymax - box.ymin);
        sum += size;
        largest = std::max(largest, size);
        ++count;
      }
    }
    cell_ = std::max({gap, sum / std::max(count, 1.0), largest / kMostCells});
  }

  void Add(std::size_t view, const Box& box, std::size_t style) {
    const auto k = static_cast<std::uint32_t>(placed_.size());
    placed_.push_back({box, style});
    ForEachCell(view, box, 0.0, [&](const Key& key) { cells_[key].push_back(k); });
  }

  void Mark(std::size_t view, const Box& box, Styles& taken) const {
    ForEachCell(view, box, gap_, [&](const Key& key) {
      const auto cell = cells_.find(key);
      if (cell == cells_.end()) return;
      for (const std::uint32_t k : cell->second) {
        if (!taken[placed_[k].style] && box.IsNear(placed_[k].box, gap_)) taken[placed_[k].style] = true;
        if (std::find(taken.begin(), taken.end(), false) == taken.end()) return;
      }
    });
  }

 private:
  struct Placed {
    Box box;
    std::size_t style;
  };
  using Key = std::tuple<std::size_t, std::int64_t, std::int64_t>;

  template <class Use>
  void ForEachCell(std::size_t view, const Box& box, double gap, const Use& use) const {
    const auto cell = [&](double x) { return static_cast<std::int64_t>(cell_ > 0 ? std::floor(x / cell_) : 0.0); };
    for (std::int64_t x = cell(box.xmin - gap); x <= cell(box.xmax + gap); ++x) {
      for (std::int64_t y = cell(box.ymin - gap); y <= cell(box.ymax + gap); ++y) use(Key(view, x, y));
    }
  }

  double gap_, cell_ = 0.0;
  std::vector<Placed> placed_;
  std::map<Key, std::vector<std::uint32_t>> cells_;
};

// Each body takes the first style that suits and no body near it took before.
void ChooseStyles(Bodies& bodies, double gap) {
  PlacedStyles placed(bodies, gap);
  for (auto& entry : bodies) {
    auto& body = entry.second;  // a name that lambdas may use with clang before 16
    PlacedStyles::Styles taken{};
    for (const auto& [view, face] : body.faces) placed.Mark(view, BoxOf(face->region), taken);
    const auto first = [&](bool anyAngle) {
      for (std::size_t k = 0; k < kStyles.size(); ++k) {
        if (!taken[k] && (anyAngle || !body.RunsAlong(k))) return k;
      }
      return kStyles.size();
    };
    body.style = first(false) < kStyles.size() ? first(false) : first(true) % kStyles.size();
    for (const auto& [view, face] : body.faces) placed.Add(view, BoxOf(face->region), body.style);
  }
}

// Where a line of the hatching meets an edge: the line's number, how far along it.
struct Meeting {
  double line, along;
  ZBR_PT place;
};

std::vector<Meeting> MeetingsOf(const ZBR_REGION& region, const Style& style, double spacing) {
  const double angle = style.degrees * kPi / 180;
  const ZBR_PT along(Cos(angle), Sin(angle)), across(-along.y(), along.x());
  std::vector<Meeting> meetings;
  ForEachEdge(region, [&](const ZBR_PT& p, const ZBR_PT& q) {
    const double a = across.InnerProduct(p) / spacing, b = across.InnerProduct(q) / spacing;
    const double low = std::min(a, b), high = std::max(a, b);
    const double first = std::ceil(low);
    for (std::size_t k = 0; first + static_cast<double>(k) < high; ++k) {
      const double line = first + static_cast<double>(k);
      const ZBR_PT place = p + (q - p) * std::clamp((line - a) / (b - a), 0.0, 1.0);
      meetings.push_back({line, along.InnerProduct(place), place});
    }
  });
  std::stable_sort(meetings.begin(), meetings.end(),
                   [](const Meeting& m, const Meeting& n) { return std::tie(m.line, m.along) < std::tie(n.line, n.along); });
  return meetings;
}

void Hatch(const SectionFace& face, const Style& style, double spacing, std::vector<Line>& lines) {
  const std::vector<Meeting> meetings = MeetingsOf(face.region, style, spacing);
  for (std::size_t i = 0; i + 1 < meetings.size(); i += 2) {
    if (meetings[i].place == meetings[i + 1].place) continue;
    Line& line = lines.emplace_back();
    line.edgeClass = EdgeClass::kHatching;
    line.shell = line.other = face.shell;
    line.chain.points = {meetings[i].place, meetings[i + 1].place};
  }
}

}  // namespace

void AddHatching(Sheet& sheet) {
  Bodies bodies = BodiesOf(sheet);
  ChooseStyles(bodies, kNear / sheet.perUnit);
  std::vector<std::vector<Line>> hatching(sheet.views.size());
  for (const auto& [shell, body] : bodies) {
    const Style& style = kStyles[body.style];
    const double spacing = body.Spacing(sheet.perUnit) * style.spacing / sheet.perUnit;
    for (const auto& [view, face] : body.faces) Hatch(*face, style, spacing, hatching[view]);
  }
  for (std::size_t v = 0; v < sheet.views.size(); ++v) AddVisible(sheet.views[v].lines, std::move(hatching[v]));
}

}  // namespace zbr::drawing
