// Objects of several shells: hidden by themselves, and by one another.
#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <zbr/hidden_line.h>
#include <zbr/outline.h>

#include "core/tolerance_state.h"
#include "hiddenline/driver.h"

namespace {

using Loops = std::vector<std::shared_ptr<ZBR_LOOP>>;

// Hides shells by themselves, and tells what is left of them.
template <class HideAlone>
std::vector<zbr::Extents> Process(ZBR_HL_SHELL* shells, unsigned count, HideAlone hideAlone) {
  std::vector<zbr::Extents> visible;
  visible.reserve(count);
  for (unsigned i = 0; i < count; ++i) {
    hideAlone(shells[i]);
    visible.push_back(zbr::VisibleExtents(shells[i]));
  }
  return visible;
}

// What is visible of each shell of a is given, so that those that nothing is near to are not looked at again.
void HideBehind(ZBR_HL_SHELL* a, const std::vector<zbr::Extents>& visible, const ZBR_HL_SHELL* b, unsigned nb) {
  const zbr::ShellSearch search({b, nb});
  zbr::Occluding others;
  for (std::size_t i = 0; i < visible.size(); ++i) {
    zbr::FindOthersNear(a[i], visible[i], search, others);
    if (others.areOthers()) zbr::HideShell(a[i], others);
  }
}

// Counts places at which one of two objects is nearer.
class Comparison {
 public:
  Comparison(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb) : a_(a), b_(b), na_(na), nb_(nb) {}

  void Sample(const ZBR_PT& at) {
    double za = std::numeric_limits<double>::lowest();
    double zb = za;
    const bool hit =
        ZBR_HiddenLine::PickShells(at.x(), at.y(), a_, na_, za) && ZBR_HiddenLine::PickShells(at.x(), at.y(), b_, nb_, zb);
    if (!hit) return;
    if (za > zb + zbr::t_tolerance.eps) ++nearerA_;
    if (zb > za + zbr::t_tolerance.eps) ++nearerB_;
  }
  int Result() const { return nearerA_ > nearerB_ ? 1 : nearerB_ > nearerA_ ? 2 : 0; }

 private:
  const ZBR_HL_SHELL* a_;
  const ZBR_HL_SHELL* b_;
  unsigned na_;
  unsigned nb_;
  long nearerA_ = 0;
  long nearerB_ = 0;
};

// With a tolerance no larger than `most`, so that a place so far from the boundary does not count as on it.
bool IsInside(const ZBR_PT& at, const ZBR_LOOP_LOCATOR& region, double most) {
  const zbr::ToleranceScope scope(std::min(zbr::t_tolerance.eps, most));
  return region.IsInside(at) == ZBR_PI_IN;
}

// How far inside a loop samples lie, in lengths of the edge or widths of the loop; and the share of that distance within which a
// place counts as on the boundary.
constexpr double kInside = 1e-3;
constexpr double kBoundaryShare = 1.0 / 8.0;

// Samples beside the middle of every edge, a little way inside, where both objects are likely to lie.
void SampleAlong(ZBR_LOOP& outer, const ZBR_LOOP_LOCATOR& region, Comparison& comparison) {
  outer.Setup();
  const auto& pts = outer.pt();
  const double width = std::sqrt(std::fabs(outer.area()));
  for (std::size_t i = 0; i < pts.size(); ++i) {
    const ZBR_PT& s = pts[i];
    const ZBR_PT& e = pts[i + 1 < pts.size() ? i + 1 : 0];
    const ZBR_PT along = e - s;
    const double length = along.Length();
    if (!(length > 0.0)) continue;
    const double in = kInside * std::min(length, width) / length * (outer.area() < 0.0 ? -1.0 : 1.0);
    const ZBR_PT at = (s + e) / 2.0 + ZBR_PT(-along.y(), along.x()) * in;
    if (IsInside(at, region, std::fabs(in) * length * kBoundaryShare)) comparison.Sample(at);
  }
}

double HighestOf(const ZBR_HL_SHELL* shells, unsigned count) {
  double z = std::numeric_limits<double>::lowest();
  for (unsigned i = 0; i < count; ++i) {
    if (shells[i].count != 0) z = std::max(z, shells[i].max_z);
  }
  return z;
}

// Whether object a counts as nearer where the outlines of the two overlap.
bool IsNearer(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb, const Loops& overlap,
              const std::vector<ZBR_CROSS>& crosses) {
  const int closer =
      crosses.empty() ? ZBR_HiddenLine::CheckCloser(a, b, na, nb, overlap) : ZBR_HiddenLine::CheckCloser(a, b, na, nb, crosses);
  if (closer == 1 || closer == 2) return closer == 1;
  return HighestOf(b, nb) <= HighestOf(a, na);
}

}  // namespace

void ZBR_HiddenLine::GetMaxMin(ZBR_HL_SHELL* shells, unsigned count) {
  for (unsigned i = 0; i < count; ++i) {
    if (!shells[i].maxmin_valid) shells[i].GetMaxMin();
  }
}

void ZBR_HiddenLine::HiddenLine_Shells(ZBR_HL_SHELL* shells, unsigned count) {
  zbr::NumberInOrder(shells, count);
  const std::vector<zbr::Extents> visible = Process(shells, count, zbr::HideInItself);
  if (count > 1) HideBehind(shells, visible, shells, count);
}

void ZBR_HiddenLine::HiddenLineObj(ZBR_HL_SHELL* shells, std::vector<std::vector<ZBR_PT>>* out, unsigned count) {
  if (count == 0) return;
  HiddenLine_Shells(shells, count);
  OutLineObj(shells, count);
  if (out != nullptr) zbrOptimizeHiddenLine(shells, *out, count);
}

void ZBR_HiddenLine::HiddenLineObjByObjMain(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb) {
  if (na == 0 || nb == 0) return;
  const auto hideAlone = [](ZBR_HL_SHELL& shell) { shell.HiddenLineSelf(); };
  const std::vector<zbr::Extents> visible = Process(a, na, hideAlone);
  Process(b, nb, hideAlone);
  HideBehind(a, visible, b, nb);
}

void ZBR_HiddenLine::HiddenLineObjByObj(ZBR_HL_SHELL* a, ZBR_HL_SHELL* b, unsigned na, unsigned nb, bool both) {
  if (na == 0 || nb == 0) return;
  HiddenLineObjByObjMain(a, b, na, nb);
  if (both) HiddenLineObjByObjMain(b, a, nb, na);

  ZBR_BOOLEAN_OPE operations[] = {ZBR_BOOL_AND, ZBR_BOOL_A_MINUS_B, ZBR_BOOL_B_MINUS_A};
  Loops results[3];
  std::vector<ZBR_CROSS> crosses;
  zbrBooleanLoops(a[0].outline, b[0].outline, operations, results, both ? 3 : 2, crosses);
  if (zbr::WithinTol(ZBR_LOOP::get_area(results[0]), zbr::t_tolerance.eps)) return;  // apart in plan
  if (!IsNearer(a, b, na, nb, results[0], crosses)) {
    ZBR_LOOP::DeepCopyLoops(a[0].outline, results[1]);
  } else if (both) {
    ZBR_LOOP::DeepCopyLoops(b[0].outline, results[2]);
  }
}

int ZBR_HiddenLine::CheckCloser(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb, const Loops& overlap) {
  Comparison comparison(a, b, na, nb);
  const ZBR_LOOP_LOCATOR region(overlap);
  for (const auto& outer : overlap) SampleAlong(*outer, region, comparison);
  return comparison.Result();
}

int ZBR_HiddenLine::CheckCloser(const ZBR_HL_SHELL* a, const ZBR_HL_SHELL* b, unsigned na, unsigned nb,
                                const std::vector<ZBR_CROSS>& crosses) {
  Comparison comparison(a, b, na, nb);
  for (const ZBR_CROSS& cross : crosses) comparison.Sample(cross.pt);
  return comparison.Result();
}
