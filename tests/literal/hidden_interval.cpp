// Lists of stretches.
#include <utility>

#include "literal/hidden_line.h"

namespace literal {

void Optimize(Stretches& a, double eps) {
  Stretches kept;
  for (const Stretch& s : a) {
    if (!Within(s.e - s.s, eps)) kept.push_back(s);
  }
  for (int i = static_cast<int>(kept.size()) - 2; i >= 0; --i) {
    Stretch& here = kept[static_cast<std::size_t>(i)];
    const Stretch next = kept[static_cast<std::size_t>(i) + 1];
    if (!(here.e + eps >= next.s)) continue;
    here.e = next.e;
    here.pe = next.pe;
    kept.erase(kept.begin() + i + 1);
  }
  a = std::move(kept);
}

void Intersect(Stretches& a, const Stretches& b, double eps) {
  const auto whole = [](const Stretches& list) { return list.size() == 1 && list[0].s == 0.0 && list[0].e == 1.0; };
  if (a.empty() || b.empty()) return a.clear();
  if (whole(b)) return;
  if (whole(a)) {
    a = b;
    return;
  }
  Stretches common;
  for (std::size_t i = 0, j = 0; i < a.size() && j < b.size();) {
    const Stretch& A = a[i];
    const Stretch& B = b[j];
    if (A.s >= B.e) {
      ++j;
    } else if (A.e >= B.e) {
      if (A.s < B.s) {
        common.push_back(B);
      } else if (!Within(B.e - A.s, eps)) {
        common.push_back({A.ps, B.pe, A.s, B.e});
      }
      ++j;
    } else {
      if (A.s >= B.s) {
        common.push_back(A);
      } else if (A.e >= B.s && !Within(A.e - B.s, eps)) {
        common.push_back({B.ps, A.pe, B.s, A.e});
      }
      ++i;
    }
  }
  a = std::move(common);
  Optimize(a, eps);
}

int Difference(double a0, double a1, double b0, double b1, double& r0, double& r1, double eps) {
  if (a0 > a1) return Difference(a1, a0, b0, b1, r1, r0, eps);
  if (b0 > b1) std::swap(b0, b1);
  // The piece that is left, unless it is as good as nothing.
  const auto piece = [&](double from, double to) {
    if (Near(from, to, eps)) return 0;
    r0 = from;
    r1 = to;
    return 1;
  };
  if (a0 + eps >= b0) {
    if (a1 + eps < b1) return 0;
    return b1 > a0 ? piece(b1, a1) : piece(a0, a1);
  }
  if (a1 + eps < b0) {
    r0 = a0;
    r1 = a1;
    return 1;
  }
  if (a1 + eps >= b1) {
    if (Near(a1, b1, eps)) {
      r0 = a0;
      r1 = b0;
      return 1;
    }
    r0 = b0;
    r1 = b1;
    return 2;
  }
  return a1 <= b0 ? piece(a0, a1) : piece(a0, b0);
}

}  // namespace literal
