// Leaves out contours that are drawn twice. Joined end to end, a line and its repetition would make a path to and fro, and what is
// left of their contour would not close; closed contours that repeat each other bound nothing.
//
// Contours are the same whose edges are, whatever their first vertices and directions. Only those with the same box are compared.
// Whole contours on different layers may well be the hole in one thing and the other thing in it; lines and arcs are shared anyway.

#include <zbr-drawing/contours.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "drawing/points.h"

namespace zbr::drawing {
namespace {

using EdgeKey = std::array<double, 13>;
using ContourKey = std::vector<EdgeKey>;

// The same in either direction. Of arcs and splines three places on the way tell them from others between the same ends.
EdgeKey KeyOf(const Path& path, std::size_t edge, const Curve* curve) {
  const ZBR_PT& from = path.points[edge];
  const ZBR_PT& to = path.points[(edge + 1) % path.points.size()];
  std::array<ZBR_PT, 5> places = {from, from, from, from, to};
  EdgeKey key{};
  if (curve != nullptr) {
    for (std::size_t k = 1; k < 4; ++k) places[k] = curve->At(curve->t0 + 0.25 * static_cast<double>(k) * (curve->t1 - curve->t0));
    key[10] = curve->centre.x();
    key[11] = curve->centre.y();
    key[12] = std::abs(curve->t1 - curve->t0);
  }
  const bool isBack = IsLess(to, from) || (!IsLess(from, to) && IsLess(places[3], places[1]));
  if (isBack) std::reverse(places.begin(), places.end());
  if (curve == nullptr) places[1] = places[2] = places[3] = places[0];
  for (std::size_t k = 0; k < places.size(); ++k) {
    key[2 * k] = places[k].x();
    key[2 * k + 1] = places[k].y();
  }
  return key;
}

// Empty if not all of it is finite.
ContourKey KeyOf(const Path& path) {
  ContourKey key;
  auto curve = path.curves.begin();
  for (std::size_t edge = 0; edge < path.EdgeCount(); ++edge) {
    const bool isCurved = curve != path.curves.end() && curve->at == edge;
    key.push_back(KeyOf(path, edge, isCurved ? &*curve : nullptr));
    if (isCurved) ++curve;
    if (!std::all_of(key.back().begin(), key.back().end(), [](double number) { return std::isfinite(number); })) return {};
  }
  std::sort(key.begin(), key.end());
  return key;
}

// What contours that are the same have in common, and which it is.
struct Summary {
  std::array<double, 4> box;
  std::size_t edges;
  bool fills;
  std::string_view layer;  // of more than one edge
  std::size_t path;

  auto Common() const { return std::tie(box, edges, fills, layer); }
};

std::vector<Summary> SummariesOf(const std::vector<Path>& paths) {
  std::vector<Summary> summaries;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const std::vector<ZBR_PT>& points = paths[i].points;
    if (paths[i].EdgeCount() == 0) continue;
    std::array<double, 4> box = {points[0].x(), points[0].y(), points[0].x(), points[0].y()};
    bool isFinite = true;
    for (const ZBR_PT& p : points) {
      box = {std::min(box[0], p.x()), std::min(box[1], p.y()), std::max(box[2], p.x()), std::max(box[3], p.y())};
      isFinite = isFinite && std::isfinite(p.x()) && std::isfinite(p.y());
    }
    const bool isSingle = !paths[i].closed && points.size() == 2;
    if (isFinite) summaries.push_back({box, paths[i].EdgeCount(), paths[i].fills, isSingle ? "" : paths[i].layer, i});
  }
  std::sort(summaries.begin(), summaries.end(), [](const Summary& a, const Summary& b) {
    return a.Common() != b.Common() ? a.Common() < b.Common() : a.path < b.path;
  });
  return summaries;
}

}  // namespace

std::size_t DropRepeats(std::vector<Path>& paths) {
  const std::vector<Summary> summaries = SummariesOf(paths);
  std::vector<bool> isRepeat(paths.size(), false);
  std::vector<std::pair<ContourKey, std::size_t>> alike;
  for (std::size_t begin = 0, end = 0; begin < summaries.size(); begin = end) {
    for (end = begin + 1; end < summaries.size() && summaries[end].Common() == summaries[begin].Common();) ++end;
    if (end - begin == 1) continue;
    alike.clear();
    for (std::size_t k = begin; k < end; ++k) alike.emplace_back(KeyOf(paths[summaries[k].path]), summaries[k].path);
    std::sort(alike.begin(), alike.end());
    for (std::size_t k = 1; k < alike.size(); ++k)
      isRepeat[alike[k].second] = !alike[k].first.empty() && alike[k].first == alike[k - 1].first;
  }
  std::size_t kept = 0;
  for (std::size_t i = 0; i < paths.size(); ++i) {
    if (!isRepeat[i] && kept++ != i) paths[kept - 1] = std::move(paths[i]);
  }
  const std::size_t dropped = paths.size() - kept;
  paths.resize(kept);
  return dropped;
}

}  // namespace zbr::drawing
