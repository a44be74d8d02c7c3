// The thread's tolerance record and the exported comparisons and guards on it.
#include <zbr/tolerance.h>

#include "core/tolerance_state.h"

namespace zbr {
constinit thread_local Tolerance t_tolerance ZBR_TLS_INLINE = kDefaultTolerance;
}  // namespace zbr

using zbr::t_tolerance;
using zbr::WithinTol;

void zbrSetEps(double e) {
  t_tolerance = zbr::MakeTolerance(e);
}

bool zbr_EpsE(double a) {
  return WithinTol(a, t_tolerance.eps);
}
bool zbr_EpsE(double a, double b) {
  return WithinTol(a, b, t_tolerance.eps);
}
bool zbr_EpsE2(double a) {
  return WithinTol(a, t_tolerance.eps2);
}

bool zbr_EpsNE(double a) {
  return !WithinTol(a, t_tolerance.eps);
}
bool zbr_EpsNE(double a, double b) {
  return !WithinTol(a, b, t_tolerance.eps);
}
bool zbr_EpsNE2(double a) {
  return !WithinTol(a, t_tolerance.eps2);
}

bool zbr_EpsL(double a) {
  return a < -t_tolerance.eps;
}
bool zbr_EpsL(double a, double b) {
  return a < b - t_tolerance.eps;
}
bool zbr_EpsL2(double a) {
  return a < -t_tolerance.eps2;
}

bool zbr_EpsGE(double a) {
  return !(a < -t_tolerance.eps);
}
bool zbr_EpsGE(double a, double b) {
  return !(a < b - t_tolerance.eps);
}
bool zbr_EpsGE2(double a) {
  return !(a < -t_tolerance.eps2);
}

bool zbr_EpsG(double a) {
  return a > t_tolerance.eps;
}
bool zbr_EpsG(double a, double b) {
  return a > b + t_tolerance.eps;
}
bool zbr_EpsG2(double a) {
  return a > t_tolerance.eps2;
}

bool zbr_EpsLE(double a) {
  return !(a > t_tolerance.eps);
}
bool zbr_EpsLE(double a, double b) {
  return !(a > b + t_tolerance.eps);
}
bool zbr_EpsLE2(double a) {
  return !(a > t_tolerance.eps2);
}

ZBR_TmpEps::ZBR_TmpEps(double e) : saved_(t_tolerance.eps) {
  zbrSetEps(e);
}
ZBR_TmpEps::~ZBR_TmpEps() {
  zbrSetEps(saved_);
}

ZBR_ScaleEps::ZBR_ScaleEps(double s) : saved_(t_tolerance.eps) {
  zbrSetEps(saved_ * s);
}
ZBR_ScaleEps::~ZBR_ScaleEps() {
  zbrSetEps(saved_);
}
