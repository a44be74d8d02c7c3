#include "hiddenline/ink.h"

#include <algorithm>
#include <cmath>

namespace {

// In sizes of the drawing. How near a line counts as passing over a place; how far beside an edge to look for faces, and how far
// above it they count.
constexpr double kNear = 1e-8;
constexpr double kBeside = 1e-8;
constexpr double kAbove = 1e-7;
// How far off a line may be drawn where walls are almost edge-on, and how far along it ends are looked past.
constexpr double kOff = 1e-6;
constexpr double kEnd = 3e-5;
// Faces steeper than this are walls seen edge-on, which cover nothing.
constexpr double kWall = 1e-5;

double Cross(const ZBR_PT& u, const ZBR_PT& v) {
  return u.x() * v.y() - u.y() * v.x();
}

// Whether s passes over p within the tolerance; t receives p's place on it.
bool PassesOver(const ZBR_PT& s, const ZBR_PT& e, const ZBR_PT& p, double tolerance, double& t) {
  if (p.x() < std::min(s.x(), e.x()) - tolerance || p.x() > std::max(s.x(), e.x()) + tolerance) return false;
  if (p.y() < std::min(s.y(), e.y()) - tolerance || p.y() > std::max(s.y(), e.y()) + tolerance) return false;
  const ZBR_PT d = e - s;
  const double length2 = d.InnerProduct(d);
  if (length2 <= tolerance * tolerance) return false;
  t = std::clamp(d.InnerProduct(p - s) / length2, 0.0, 1.0);
  return (s + d * t - p).Length() <= tolerance;
}

}  // namespace

Ink::Ink(const std::vector<ZBR_HL_SHELL>& shells) {
  double reach = 0.0;
  for (const ZBR_HL_SHELL& shell : shells) {
    for (unsigned k = 0; k < shell.count; ++k) {
      const ZBR_HL_TRI& t = shell.tris[k];
      if (!((t.pt[1] - t.pt[0]).OuterProduct(t.pt[2] - t.pt[0]).Length() >= 1e-9)) continue;  // no area or nowhere, draws nothing
      AddFace(t);
      for (int i = 0; i < 3; ++i) {
        const ZBR_PT3& p = t.pt[i];
        const ZBR_PT3& q = t.pt[(i + 1) % 3];
        reach = std::max({reach, std::abs(p.x()), std::abs(p.y()), std::abs(p.z())});
        if (!t.dispj[i]) continue;
        edges_.push_back({p, q, (q - p) * (1.0 / std::max(p.DistanceXY(q), 1e-100))});
        for (const ZBR_HL_INTERVAL& v : t.intvl_v[i]) visible_.push_back({v.s.pt, v.e.pt, {}});
      }
    }
  }
  size_ = 2.0 * reach;
}

void Ink::AddFace(const ZBR_HL_TRI& t) {
  Face face;
  std::copy(std::begin(t.pt), std::end(t.pt), std::begin(face.pt));
  face.normal = (face.pt[1] - face.pt[0]).OuterProduct(face.pt[2] - face.pt[0]).Unit();
  if (!(std::abs(face.normal.z()) > kWall)) return;
  if (face.normal.z() < 0.0) {
    std::swap(face.pt[1], face.pt[2]);
    face.normal = -face.normal;
  }
  for (int axis = 0; axis < 2; ++axis) {
    const auto c = [&](int i) { return axis == 0 ? face.pt[i].x() : face.pt[i].y(); };
    face.low[axis] = std::min({c(0), c(1), c(2)});
    face.high[axis] = std::max({c(0), c(1), c(2)});
  }
  faces_.push_back(face);
}

std::vector<InkSample> Ink::Samples(int total) const {
  std::vector<InkSample> samples;
  double sum = 0.0;
  for (const Edge& e : edges_) sum += e.p.DistanceXY(e.q);
  if (!std::isfinite(sum)) return samples;  // triangles too large to compute with: only what is expected by name is looked at
  for (const Edge& e : edges_) {
    const double length = e.p.DistanceXY(e.q);
    if (length <= 10.0 * kEnd * size_) continue;
    const int n = 1 + static_cast<int>(total * length / sum);
    // Off the middle and the simple fractions, at which gridded scenes have their corners.
    for (int k = 0; k < n; ++k) samples.push_back({e.p + (e.q - e.p) * ((k + 0.4142135) / n), e.along, length / n});
  }
  return samples;
}

bool Ink::IsDrawn(const ZBR_PT& p, bool beside) const {
  double t = 0.0;
  return std::any_of(visible_.begin(), visible_.end(),
                     [&](const Edge& e) { return PassesOver(e.p.xy(), e.q.xy(), p, (beside ? kOff : kNear) * size_, t); });
}

bool Ink::IsBehindFace(const ZBR_PT3& at, const ZBR_PT& beside) const {
  return std::any_of(faces_.begin(), faces_.end(), [&](const Face& f) {
    if (beside.x() < f.low[0] || beside.x() > f.high[0] || beside.y() < f.low[1] || beside.y() > f.high[1]) return false;
    for (int i = 0; i < 3; ++i) {
      if (Cross(f.pt[(i + 1) % 3].xy() - f.pt[i].xy(), beside - f.pt[i].xy()) < -1e-12 * size_ * size_) return false;
    }
    if (std::abs(f.normal.InnerProduct(at - f.pt[0])) <= kNear * size_) return false;  // a face the edge is part of
    const ZBR_PT d = beside - f.pt[0].xy();
    const double height = f.pt[0].z() - (f.normal.x() * d.x() + f.normal.y() * d.y()) / f.normal.z();
    return height > at.z() + kAbove * size_;
  });
}

bool Ink::IsHidden(const ZBR_PT3& at, const ZBR_PT3& along) const {
  const ZBR_PT step = ZBR_PT(-along.y(), along.x()) * (kBeside * size_);
  return IsBehindFace(at, at.xy() + step) && IsBehindFace(at, at.xy() - step);
}

bool Ink::ShouldBeDrawn(const InkSample& sample, bool beside) const {
  if (!IsHidden(sample.at, sample.along)) return true;
  return std::any_of(edges_.begin(), edges_.end(), [&](const Edge& e) {
    double t = 0.0;
    return PassesOver(e.p.xy(), e.q.xy(), sample.at.xy(), (beside ? kOff : kNear) * size_, t) &&
           !IsHidden(e.p + (e.q - e.p) * t, e.along);
  });
}

bool Ink::IsWrong(const InkSample& sample) const {
  for (const double step : {0.0, kEnd, -kEnd}) {
    InkSample s = sample;
    s.at += s.along * (step * size_);
    if (IsDrawn(s.at.xy()) ? ShouldBeDrawn(s, true) : !ShouldBeDrawn(s) || IsDrawn(s.at.xy(), true)) return false;
  }
  return true;
}
