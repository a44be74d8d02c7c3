// Chains of a view as paths on paper.
#include <zbr-drawing/sheet.h>

namespace zbr::drawing {

// Points where arcs begin and end are those of the arcs, so that nothing gapes.
Path Sheet::OnPaper(const PlacedView& view, const Chain& chain) const {
  Path path;
  path.closed = chain.closed;
  const std::size_t end = chain.points.size() - (chain.closed ? 1 : 0);
  std::size_t next = 0;
  for (auto run = chain.curves.begin(); run != chain.curves.end(); ++run) {
    for (; next < run->at; ++next) path.points.push_back(OnPaper(view, chain.points[next]));
    Curve arc;
    arc.at = path.points.size();
    arc.centre = OnPaper(view, run->centre);
    arc.u = run->u * perUnit;
    arc.v = run->v * perUnit;
    arc.t0 = run->t0;
    arc.t1 = run->t1;
    path.points.push_back(arc.At(arc.t0));
    path.curves.push_back(arc);
    next = run->last;
    const auto following = run + 1;
    if (following != chain.curves.end() && following->at == next) continue;
    if (next < end) {
      path.points.push_back(arc.At(arc.t1));
    } else if (chain.curves.front().at > 0) {
      path.points.front() = arc.At(arc.t1);
    }
    ++next;
  }
  for (; next < end; ++next) path.points.push_back(OnPaper(view, chain.points[next]));
  return path;
}

}  // namespace zbr::drawing
