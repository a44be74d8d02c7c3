// The calling thread's tolerance record, read inline by the library.
//
// The record is constant-initialised, so reading it needs neither a guard nor the wrapper function that dynamic initialisation of a
// thread_local brings. On glibc it lives in static thread storage (initial-exec): one load from the thread pointer, no call. glibc
// keeps some of that storage free for libraries loaded at run time; the 24 bytes here fit easily.
#pragma once

#include <cmath>  // also defines __GLIBC__ where it applies

#if defined(__GLIBC__)
#define ZBR_TLS_INLINE __attribute__((tls_model("initial-exec")))
#else
#define ZBR_TLS_INLINE
#endif

namespace zbr {

struct Tolerance {
  double eps;
  double eps2;  // always eps * eps
  double eps4;  // always eps2 * eps2
};

inline constexpr double kDefaultEps = 1e-5;
inline constexpr Tolerance kDefaultTolerance{kDefaultEps, kDefaultEps* kDefaultEps,
                                             (kDefaultEps * kDefaultEps) * (kDefaultEps * kDefaultEps)};

extern constinit thread_local Tolerance t_tolerance ZBR_TLS_INLINE;

// The record that belongs to the tolerance e: |e| and its powers.
inline Tolerance MakeTolerance(double e) {
  const double eps = std::fabs(e);
  const double eps2 = eps * eps;
  return {eps, eps2, eps2 * eps2};
}

// The comparisons of tolerance.h against a given bound. Complements are negations, so that NaN falls on their side.
inline bool WithinTol(double a, double tol) {
  return -tol <= a && a <= tol;
}
inline bool WithinTol(double a, double b, double tol) {
  return b - tol <= a && a <= b + tol;
}

// Holds the thread's tolerance at `e` for a block and restores |saved eps| on every way out.
class ToleranceScope {
 public:
  explicit ToleranceScope(double e) : saved_(t_tolerance.eps) { t_tolerance = MakeTolerance(e); }
  ~ToleranceScope() { t_tolerance = MakeTolerance(saved_); }
  ToleranceScope(const ToleranceScope&) = delete;
  ToleranceScope& operator=(const ToleranceScope&) = delete;

 private:
  double saved_;
};

}  // namespace zbr
