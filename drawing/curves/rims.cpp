// Where a fillet ends in a flat wall its rim is a line, and which of its edges count as tangent lines hangs on how the faces beside
// them were divided into triangles: of four equal corners one may have all of its arc drawn, another a part, and another nothing.
// But a silhouette runs there in some view, and is to be an arc at each of the four.
//
// Idea: rims lie in a plane, and edges in a plane that the surface bends at are rare but for the rim. So a chain that is in a plane
// goes on along them. Edges within a flat face lie in a plane, too: there the surface does not bend.
#include "drawing/curves/rims.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "drawing/model/patches.h"

namespace zbr::drawing {
namespace {

constexpr double kLeastBend = 0.004;       // radians: less may be noise of slender facets
constexpr std::size_t kMostAtVertex = 64;  // triangles

class RimWalk {
 public:
  RimWalk(const Model& model, std::size_t shell, const std::vector<EdgeChain>& chains)
      : model_(model),
        index_(shell),
        shell_(model.Shell(shell)),
        tolerance_(2.0 * PlaneTolerance(model) / model.Diagonal()),
        isTaken_(static_cast<std::size_t>(shell_.GetEdgeCnt()), false) {
    for (const EdgeChain& chain : chains) {
      for (const std::uint32_t e : chain.edges) isTaken_[e] = true;
    }
  }

  void GoOn(EdgeChain& chain) {
    if (!SetPlane(chain)) return;
    for (int end = 0; end < 2 && !chain.isClosed; ++end) {
      while (!chain.isClosed && Step(chain)) continue;
      std::reverse(chain.edges.begin(), chain.edges.end());
      std::reverse(chain.points.begin(), chain.points.end());
      std::reverse(chain.isFree.begin(), chain.isFree.end());
    }
    if (chain.isClosed) StartWithLongest(chain);
  }

 private:
  const ZBR_ZBREPE& EdgeAt(std::uint32_t e) const { return *shell_.GetEdge(static_cast<int>(e)); }
  ZBR_PT3 PointOf(const ZBR_ZBREPV& vertex) const { return (vertex.GetPt() - model_.Centre()) * (1.0 / model_.Diagonal()); }

  // False for chains that are straight or in no plane.
  bool SetPlane(const EdgeChain& chain) {
    ZBR_PT3 sum;
    const ZBR_PT3& origin = chain.points.front();
    for (std::size_t i = 1; i + 1 < chain.points.size(); ++i)
      sum += (chain.points[i] - origin).OuterProduct(chain.points[i + 1] - origin);
    const double area = sum.Length(), reach = chain.points.back().Distance(origin);
    if (!(area > tolerance_ * std::max(reach, tolerance_))) return false;
    normal_ = sum * (1.0 / area);
    return std::all_of(chain.points.begin(), chain.points.end(), [&](const ZBR_PT3& p) { return IsInPlane(p - origin); });
  }

  bool IsInPlane(const ZBR_PT3& d) const { return std::abs(normal_.InnerProduct(d)) <= tolerance_; }

  // Adds the edge that the last one goes on as; false where there is none.
  bool Step(EdgeChain& chain) {
    const ZBR_ZBREPE& last = EdgeAt(chain.edges.back());
    const bool isSecond = PointOf(*last.GetVertex1()) == chain.points.back();
    const ZBR_ZBREPV& vertex = isSecond ? *last.GetVertex1() : *last.GetVertex0();
    std::uint32_t next = 0, drawn = 0;
    double most = kCosLargestTurn;
    FindAround(last, vertex);
    for (const std::uint32_t e : around_) {
      drawn += e != chain.edges.back() && model_.Class(index_, EdgeAt(e)) != EdgeClass::kSmooth ? 1 : 0;
      if (isTaken_[e] || !Bends(EdgeAt(e))) continue;
      const ZBR_PT3 ahead = Far(e, vertex) - chain.points.back(),
                    back = chain.points.back() - chain.points[chain.points.size() - 2];
      const double cosine = back.InnerProduct(ahead) / (back.Length() * ahead.Length());
      if (!IsInPlane(ahead) || !(cosine >= most)) continue;
      most = cosine;
      next = e + 1;
    }
    if (next == 0) return false;
    Add(next - 1, Far(next - 1, vertex), drawn - (model_.Class(index_, EdgeAt(next - 1)) != EdgeClass::kSmooth ? 1 : 0) == 0,
        chain);
    return true;
  }

  void Add(std::uint32_t edge, const ZBR_PT3& end, bool isFree, EdgeChain& chain) {
    isTaken_[edge] = true;
    chain.isFree.back() = isFree;
    chain.edges.push_back(edge);
    chain.points.push_back(end);
    chain.isClosed = end == chain.points.front();
    chain.isFree.push_back(chain.isClosed ? chain.isFree.front() : true);
  }

  ZBR_PT3 Far(std::uint32_t e, const ZBR_ZBREPV& vertex) const {
    const ZBR_ZBREPE& edge = EdgeAt(e);
    return PointOf(edge.GetVertex0() == &vertex ? *edge.GetVertex1() : *edge.GetVertex0());
  }

  bool Bends(const ZBR_ZBREPE& edge) const {
    if (edge.GetTriangle1() == nullptr) return false;
    const ZBR_PT3* const normals = model_.normals.data() + model_.shellBegin[index_];
    return normals[edge.GetTriangle0()->GetIndex()].OuterProduct(normals[edge.GetTriangle1()->GetIndex()]).Length() >= kLeastBend;
  }

  // The edges at a vertex of an edge, each once, and that edge.
  void FindAround(const ZBR_ZBREPE& edge, const ZBR_ZBREPV& vertex) {
    around_.clear();
    for (const ZBR_ZBREPT* first : {edge.GetTriangle0(), edge.GetTriangle1()}) {
      int from = edge.GetIndex();
      for (const ZBR_ZBREPT* t = first; t != nullptr && around_.size() < kMostAtVertex;) {
        std::size_t i = 0;
        while (i < 2 && (EdgeOf(*t, i).GetIndex() == from || !HasVertex(EdgeOf(*t, i), vertex))) ++i;
        ZBR_ZBREPE& next = EdgeOf(*t, i);
        from = next.GetIndex();
        const auto place = static_cast<std::uint32_t>(from);
        if (std::find(around_.begin(), around_.end(), place) != around_.end()) break;
        around_.push_back(place);
        t = model_.Across(index_, *t, next);
      }
    }
  }

  static bool HasVertex(const ZBR_ZBREPE& edge, const ZBR_ZBREPV& vertex) {
    return edge.GetVertex0() == &vertex || edge.GetVertex1() == &vertex;
  }

  const Model& model_;
  const std::size_t index_;
  const ZBR_ZBREPS& shell_;
  const double tolerance_;  // in diagonals
  ZBR_PT3 normal_;
  std::vector<bool> isTaken_;  // edges
  std::vector<std::uint32_t> around_;
};

}  // namespace

void GoOnInPlane(const Model& model, std::size_t shell, std::vector<EdgeChain>& chains) {
  const auto isOpen = [](const EdgeChain& chain) { return !chain.isClosed; };
  if (std::none_of(chains.begin(), chains.end(), isOpen)) return;
  RimWalk walk(model, shell, chains);
  for (EdgeChain& chain : chains) {
    if (isOpen(chain)) walk.GoOn(chain);
  }
}

}  // namespace zbr::drawing
