#include "drawing/model/connectivity.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "drawing/model/shell_ranges.h"
#include "drawing/touched.h"

namespace zbr::drawing {
namespace {

std::optional<PatchedConnectivity> TakeKept(const Model& model) {
  if (model.connectivity == nullptr) return std::nullopt;
  const std::lock_guard lock(model.connectivity->mutex);
  return std::exchange(model.connectivity->made, std::nullopt);
}

// Of the points of shells; one more than shells.
std::vector<std::uint32_t> PointBegins(const Model& model) {
  std::vector<std::uint32_t> begins{0};
  begins.reserve(model.ShellCount() + 1);
  for (std::size_t s = 0; s < model.ShellCount(); ++s)
    begins.push_back(begins.back() + static_cast<std::uint32_t>(model.Shell(s).GetVertexCnt()));
  return begins;
}

}  // namespace

Connectivity ConnectivityOf(const Model& model, unsigned threads) {
  Connectivity all;
  all.pointBegin = PointBegins(model);
  const std::vector<std::uint32_t>& pointBegin = all.pointBegin;
  ResizeTouched(all.points, pointBegin.back(), threads);
  all.corners = Unfilled<std::array<std::uint32_t, 3>>(model.TriangleCount());
  all.edges = Unfilled<std::array<std::uint32_t, 3>>(model.TriangleCount());
  all.sides = Unfilled<std::array<std::uint32_t, 2>>(model.edgeBegin.back());
  all.shows = Unfilled<std::uint8_t>(model.edgeBegin.back());
  ForEachPart(pointBegin, threads, [&](std::size_t, std::size_t s, std::size_t begin, std::size_t end) {
    for (std::size_t v = begin; v < end; ++v)
      all.points[pointBegin[s] + v] = model.Shell(s).GetVertex(static_cast<int>(v))->GetPt();
  });
  ForEachPart(model.shellBegin, threads, [&](std::size_t, std::size_t s, std::size_t begin, std::size_t end) {
    for (std::size_t t = begin; t < end; ++t) {
      const ZBR_ZBREPT& record = *model.Shell(s).GetTriangle(static_cast<int>(t));
      for (std::size_t i = 0; i < 3; ++i) {
        all.corners[model.shellBegin[s] + t][i] = pointBegin[s] + static_cast<std::uint32_t>(VertexOf(record, i).GetIndex());
        all.edges[model.shellBegin[s] + t][i] = model.edgeBegin[s] + static_cast<std::uint32_t>(EdgeOf(record, i).GetIndex());
      }
    }
  });
  ForEachPart(model.edgeBegin, threads, [&](std::size_t, std::size_t s, std::size_t begin, std::size_t end) {
    const auto number = [&](const ZBR_ZBREPT* t) {
      return t == nullptr ? Connectivity::kNone : model.shellBegin[s] + static_cast<std::uint32_t>(t->GetIndex());
    };
    for (std::size_t e = begin; e < end; ++e) {
      const ZBR_ZBREPE& edge = *model.Shell(s).GetEdge(static_cast<int>(e));
      const bool isJunction = model.Note(s, edge).isJunction;
      all.sides[model.edgeBegin[s] + e] = {number(edge.GetTriangle0()),
                                           isJunction ? Connectivity::kNone : number(edge.GetTriangle1())};
      all.shows[model.edgeBegin[s] + e] = edge.GetShow() ? 1 : 0;
    }
  });
  return all;
}

void KeepConnectivity(PatchedConnectivity&& made, Model& model) {
  model.connectivity = std::make_shared<KeptConnectivity>();
  model.connectivity->made = std::move(made);
}

PatchedConnectivity TakeConnectivity(const Model& model, unsigned threads) {
  if (auto kept = TakeKept(model)) return std::move(*kept);
  return {ConnectivityOf(model, threads), {}};
}

void DropConnectivity(const Model& model) {
  TakeKept(model);
}

}  // namespace zbr::drawing
