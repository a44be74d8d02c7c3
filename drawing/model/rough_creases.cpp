// Creases with hysteresis: they begin where the surface bends by more than the angle of creases, and from their loose ends go on,
// as straight as they can, along edges at which it bends by a part of that, until they meet another crease. What stays short and
// joins nothing is roughness.
//
// Models whose creases end at each other, as those of machined parts, are left as they are.
#include "drawing/model/rough_creases.h"

#include <zbr-drawing/trigonometry.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "drawing/model/disjoint_sets.h"
#include "drawing/model/shell_ranges.h"
#include "drawing/points.h"

namespace zbr::drawing {
namespace {

constexpr double kGoOn = 0.6;      // of the angle of creases
constexpr double kStraight = 0.5;  // cosine of the largest turn
// As parts of the model's diagonal: the box of lines that hang together, and side lines of such.
constexpr double kShort = 0.05;
constexpr double kShortSide = 0.015;

class ShellTidier {
 public:
  ShellTidier(Model& model, std::size_t s, double degrees)
      : model_(model), shell_(*model.body.GetShell(static_cast<int>(s))), s_(s), size_(model.Diagonal()) {
    const double limit = Cos(std::min(degrees * kGoOn, 180.0) * kPi / 180.0);
    lines_.resize(static_cast<std::size_t>(shell_.GetVertexCnt()));
    candidates_.resize(lines_.size());
    for (int e = 0; e < shell_.GetEdgeCnt(); ++e) {
      const ZBR_ZBREPE& edge = *shell_.GetEdge(e);
      auto& lists = edge.GetShow() ? lines_ : candidates_;
      if (!edge.GetShow() && CosineAt(edge) > limit) continue;
      lists[End(edge, 0)].push_back(static_cast<std::uint32_t>(e));
      lists[End(edge, 1)].push_back(static_cast<std::uint32_t>(e));
    }
  }

  void Run() {
    for (std::size_t v = 0; v < lines_.size(); ++v) {
      if (lines_[v].size() == 1) GoOn(v);
    }
    DropSideLines();
    DropShort();
  }

 private:
  static std::size_t End(const ZBR_ZBREPE& edge, int k) { return static_cast<std::size_t>(k == 0 ? edge.GetV0() : edge.GetV1()); }
  const ZBR_ZBREPE& Edge(std::uint32_t e) const { return *shell_.GetEdge(static_cast<int>(e)); }
  const ZBR_PT3& Place(std::size_t v) const { return shell_.GetVertex(static_cast<int>(v))->GetPt(); }
  std::size_t Other(std::uint32_t e, std::size_t v) const { return End(Edge(e), 0) == v ? End(Edge(e), 1) : End(Edge(e), 0); }
  double LengthOf(std::uint32_t e) const { return Place(End(Edge(e), 0)).Distance(Place(End(Edge(e), 1))); }
  bool IsCrease(std::uint32_t e) const { return model_.Class(s_, Edge(e)) == EdgeClass::kCrease; }

  double CosineAt(const ZBR_ZBREPE& edge) const {
    if (edge.GetTriangle1() == nullptr) return 1.0;
    const ZBR_PT3* const normals = model_.normals.data() + model_.shellBegin[s_];
    const double cosine = normals[edge.GetTriangle0()->GetIndex()].InnerProduct(normals[edge.GetTriangle1()->GetIndex()]);
    return model_.Note(s_, edge).isSameWay ? -cosine : cosine;
  }

  ZBR_PT3 Direction(std::uint32_t e, std::size_t from) const {
    const ZBR_PT3 d = Place(Other(e, from)) - Place(from);
    const double length = d.Length();
    return length > 0 ? d * (1.0 / length) : d;
  }

  // What ends nowhere else is taken back: noise goes on anywhere.
  void GoOn(std::size_t v) {
    std::vector<std::uint32_t> shown;
    while (lines_[v].size() == 1) {
      const ZBR_PT3 along = -Direction(lines_[v].front(), v);
      double best = kStraight;
      std::uint32_t next = 0;
      bool found = false;
      for (const std::uint32_t e : candidates_[v]) {
        const double cosine = along.InnerProduct(Direction(e, v));
        if (Edge(e).GetShow() || cosine <= best) continue;
        best = cosine;
        next = e;
        found = true;
      }
      if (!found) {
        for (const std::uint32_t e : shown) Show(e, false);
        return;
      }
      Show(next, true);
      shown.push_back(next);
      v = Other(next, v);
    }
  }

  void Show(std::uint32_t e, bool show) {
    shell_.GetEdge(static_cast<int>(e))->SetShow(show);
    for (const int k : {0, 1}) {
      auto& list = lines_[End(Edge(e), k)];
      if (show) {
        list.push_back(e);
      } else {
        std::erase(list, e);
      }
    }
  }

  // From loose ends to where lines fork.
  void DropSideLines() {
    std::vector<std::uint32_t> line;
    for (std::size_t v = 0; v < lines_.size(); ++v) {
      if (lines_[v].size() != 1) continue;
      line.clear();
      double length = 0.0;
      std::size_t at = v;
      std::uint32_t next = lines_[v].front();
      for (;;) {
        line.push_back(next);
        length += LengthOf(next);
        at = Other(next, at);
        if (lines_[at].size() != 2 || length >= kShortSide * size_) break;
        next = NextOf(at, next);
      }
      if (lines_[at].size() < 3 || length >= kShortSide * size_) continue;
      for (const std::uint32_t e : line) {
        if (IsCrease(e)) Show(e, false);
      }
    }
  }
  std::uint32_t NextOf(std::size_t v, std::uint32_t e) const { return lines_[v][0] == e ? lines_[v][1] : lines_[v][0]; }

  // What hangs together and has no borders and junctions.
  void DropShort() {
    struct Box {
      ZBR_PT3 low, high;
      bool isEmpty = true, isKept = false;
    };
    DisjointSets sets(lines_.size());
    for (const auto& list : lines_) {
      for (const std::uint32_t e : list)
        sets.Unite(static_cast<std::uint32_t>(End(Edge(e), 0)), static_cast<std::uint32_t>(End(Edge(e), 1)));
    }
    std::vector<Box> boxes(lines_.size());
    for (std::uint32_t v = 0; v < lines_.size(); ++v) {
      if (lines_[v].empty()) continue;
      Box& box = boxes[sets.Find(v)];
      const ZBR_PT3& p = Place(v);
      if (box.isEmpty) box.low = box.high = p;
      box.isEmpty = false;
      Enclose(p, box.low, box.high);
      for (const std::uint32_t e : lines_[v]) box.isKept = box.isKept || !IsCrease(e);
    }
    for (std::uint32_t v = 0; v < lines_.size(); ++v) {
      const Box& box = boxes[sets.Find(v)];
      if (box.isEmpty || box.isKept || box.low.Distance(box.high) >= kShort * size_) continue;
      for (const std::uint32_t e : lines_[v]) shell_.GetEdge(static_cast<int>(e))->SetShow(false);
    }
  }

  Model& model_;
  ZBR_ZBREPS& shell_;
  std::size_t s_;
  double size_;
  std::vector<std::vector<std::uint32_t>> lines_, candidates_;  // edges at each vertex: that show, and that may
};

}  // namespace

bool AreCreasesRough(const Model& model, unsigned threads) {
  constexpr std::size_t kFewest = 200, kCreasesPerEnd = 12;
  std::atomic<std::size_t> creases{0}, loose{0};
  ForEachShell(model.shellBegin, threads, [&](std::size_t s) {
    const ZBR_ZBREPS& shell = model.Shell(s);
    std::vector<std::uint8_t> lines(static_cast<std::size_t>(shell.GetVertexCnt()));  // that end there, two standing for more
    std::size_t own = 0;
    for (int e = 0; e < shell.GetEdgeCnt(); ++e) {
      const ZBR_ZBREPE& edge = *shell.GetEdge(e);
      const EdgeClass edgeClass = model.Class(s, edge);
      if (edgeClass == EdgeClass::kSmooth) continue;
      if (edgeClass == EdgeClass::kCrease) ++own;
      for (const int v : {edge.GetV0(), edge.GetV1()}) {
        std::uint8_t& count = lines[static_cast<std::size_t>(v)];
        count = count == 0 ? 1 : 2;
      }
    }
    creases += own;
    loose += static_cast<std::size_t>(std::count(lines.begin(), lines.end(), 1));
  });
  return creases >= kFewest && loose * kCreasesPerEnd >= creases;
}

void TidyRoughCreases(Model& model, double creaseDegrees) {
  for (std::size_t s = 0; s < model.ShellCount(); ++s) ShellTidier(model, s, creaseDegrees).Run();
}

}  // namespace zbr::drawing
