// The members of ZBR_PT that decide under the thread's tolerance.
#include <zbr/planar.h>

#include "core/constants.h"
#include "core/planar_inline.h"

using zbr::t_tolerance;

ZBR_PT& ZBR_PT::Normalize() {
  return *this = zbr::Unit(*this, zbr::kMinNormalizeLength);
}

bool ZBR_PT::operator==(const ZBR_PT& p) const {
  return zbr::SamePoint(*this, p, t_tolerance.eps2);
}

bool ZBR_PT::operator!=(const ZBR_PT& p) const {
  return !(*this == p);
}

int ZBR_PT::CheckPos(const ZBR_PT& a, const ZBR_PT& b) const {
  return zbr::SideOfLine(*this, a, b, t_tolerance.eps2);
}

int ZBR_PT::CheckPos(const ZBR_PT& a, const ZBR_PT& b, double invLen2) const {
  return zbr::SideOfLine(*this, a, b, invLen2, t_tolerance.eps2);
}

double ZBR_PT::LinFrom(const ZBR_PT& a, const ZBR_PT& b) const {
  return zbr::ParamOnLine(*this, a, b);
}
