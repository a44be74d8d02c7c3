// The thread's length tolerance, the comparisons that use it, and guards that change it for a block.
//
// Every thread has its own record (eps, eps2 = eps*eps, eps4 = eps2*eps2). It starts with eps = 1e-5 and is never seen by
// another thread, so nothing here locks. Lengths and positions are compared with eps, squared lengths and cross products with
// eps2; nothing is relative to the size of the compared values, so choose eps to suit the unit of the data.
// All functions: no failure, no allocation, a handful of instructions.
#pragma once

#include <zbr/export.h>

// Sets the calling thread's tolerance to |e|. Zero makes every comparison exact; infinity and NaN are stored as given.
ZBR_API void zbrSetEps(double e);

// Tolerant comparisons. One argument compares `a` with 0, two compare `a` with `b`; names ending in 2 take eps2 for eps and are
// meant for squared quantities. The band of equality is closed: a value exactly eps away is equal.
//
//   E   -eps <= a <= eps   (with b: b - eps <= a <= b + eps)    NaN gives false
//   NE  not E                                                   NaN gives true
//   L   a < -eps           (with b: a < b - eps)                NaN gives false
//   GE  not L                                                   NaN gives true
//   G   a > eps            (with b: a > b + eps)                NaN gives false
//   LE  not G                                                   NaN gives true
ZBR_API bool zbr_EpsE(double a);
ZBR_API bool zbr_EpsE(double a, double b);
ZBR_API bool zbr_EpsE2(double a);
ZBR_API bool zbr_EpsNE(double a);
ZBR_API bool zbr_EpsNE(double a, double b);
ZBR_API bool zbr_EpsNE2(double a);
ZBR_API bool zbr_EpsL(double a);
ZBR_API bool zbr_EpsL(double a, double b);
ZBR_API bool zbr_EpsL2(double a);
ZBR_API bool zbr_EpsGE(double a);
ZBR_API bool zbr_EpsGE(double a, double b);
ZBR_API bool zbr_EpsGE2(double a);
ZBR_API bool zbr_EpsG(double a);
ZBR_API bool zbr_EpsG(double a, double b);
ZBR_API bool zbr_EpsG2(double a);
ZBR_API bool zbr_EpsLE(double a);
ZBR_API bool zbr_EpsLE(double a, double b);
ZBR_API bool zbr_EpsLE2(double a);

// Sets the tolerance to |e| until the end of the block, then restores what was in force before.
//
// Guards nest as blocks do. A guard acts on the thread that constructs it and on the thread that destroys it. Assignment copies
// the saved value, so that the left guard restores what the right one would.
class ZBR_TmpEps {
 public:
  ZBR_API explicit ZBR_TmpEps(double e);
  ZBR_API ~ZBR_TmpEps();
  ZBR_TmpEps(const ZBR_TmpEps&) = default;
  ZBR_TmpEps& operator=(const ZBR_TmpEps&) = default;

 private:
  double saved_;
};

// Multiplies the tolerance by |s| until the end of the block, then restores it. Otherwise like ZBR_TmpEps.
class ZBR_ScaleEps {
 public:
  ZBR_API explicit ZBR_ScaleEps(double s);
  ZBR_API ~ZBR_ScaleEps();
  ZBR_ScaleEps(const ZBR_ScaleEps&) = default;
  ZBR_ScaleEps& operator=(const ZBR_ScaleEps&) = default;

 private:
  double saved_;
};
