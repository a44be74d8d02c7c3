// Lost and wrong length of drawings of assemblies whose coordinates are not exact: rounded to single precision, far from the
// origin, noisy. Looked up sample by sample in the exact bodies, without the library.
//
// usage: zbr-drawing-truth [MODEL]
// Prints for each model (or one) and disturbance, over four views, the share of the visible length of creases, borders and
// silhouettes that is not drawn, and the share of the drawn length that is of no visible edge. Exit code 1 when one is above the
// disturbance's bar.
#include <zbr-drawing/views.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "models/models.h"

namespace zbr::drawing {
namespace {

// In diagonals of the model. How far a line may be from where it belongs, how far beside an edge to look for what hides it, and
// how far above it that is.
constexpr double kNear = 1e-3, kBeside = 1e-5, kAbove = 2e-3;
constexpr double kCrease = 30.0;

struct Segment {
  ZBR_PT3 a, b;  // as seen
};

double DistanceOf(const ZBR_PT& p, const Segment& s, double& t) {
  const ZBR_PT along = s.b.xy() - s.a.xy();
  const double length2 = along.InnerProduct(along);
  t = length2 > 0 ? std::clamp(along.InnerProduct(p - s.a.xy()) / length2, 0.0, 1.0) : 0.0;
  return p.Distance(s.a.xy() + along * t);
}

// The exact bodies from one side.
class Truth {
 public:
  Truth(const Mesh& mesh, const View& view, const ZBR_PT3& middle, double size) : size_(size) {
    for (const ZBR_PT3& p : mesh.points) points_.push_back(view.In(p - middle));
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::vector<ZBR_PT3>> normals;
    for (const auto& t : mesh.triangles) {
      Face face{{points_[t[0]], points_[t[1]], points_[t[2]]}, {}};
      face.normal = (face.p[1] - face.p[0]).OuterProduct(face.p[2] - face.p[0]).Unit();
      for (std::size_t i = 0; i < 3; ++i) normals[std::minmax(t[i], t[(i + 1) % 3])].push_back(face.normal);
      if (std::abs(face.normal.z()) > kWall) faces_.push_back(face);
    }
    const double flat = std::cos(kCrease * 3.14159265358979 / 180);
    for (const auto& [edge, n] : normals) {
      const bool drawn = n.size() != 2 || n[0].InnerProduct(n[1]) < flat || (n[0].z() > 0) != (n[1].z() > 0);
      if (drawn) edges.push_back({points_[edge.first], points_[edge.second]});
    }
  }

  std::vector<Segment> edges;

  bool IsVisible(const Segment& edge, double t) const {
    const ZBR_PT3 at = edge.a + (edge.b - edge.a) * t;
    const ZBR_PT along = edge.b.xy() - edge.a.xy();
    const double length = along.Length();
    if (!(length > 0)) return true;
    const ZBR_PT aside = ZBR_PT(-along.y(), along.x()) * (kBeside * size_ / length);
    return !IsBelow(at, at.xy() + aside) || !IsBelow(at, at.xy() - aside);
  }

  bool IsVisibleAt(const ZBR_PT& p) const {
    return std::any_of(edges.begin(), edges.end(), [&](const Segment& edge) {
      double t = 0.0;
      return DistanceOf(p, edge, t) < kNear * size_ && IsVisible(edge, t);
    });
  }

 private:
  struct Face {
    ZBR_PT3 p[3];
    ZBR_PT3 normal;
  };
  static constexpr double kWall = 1e-6;

  bool IsBelow(const ZBR_PT3& at, const ZBR_PT& beside) const {
    return std::any_of(faces_.begin(), faces_.end(), [&](const Face& face) {
      const double turn = face.normal.z() > 0 ? 1.0 : -1.0;
      for (std::size_t i = 0; i < 3; ++i) {
        const ZBR_PT p = face.p[i].xy();
        if ((face.p[(i + 1) % 3].xy() - p).OuterProduct(beside - p) * turn < 0) return false;
      }
      const ZBR_PT d = beside - face.p[0].xy();
      const double height = face.p[0].z() - (face.normal.x() * d.x() + face.normal.y() * d.y()) / face.normal.z();
      return height > at.z() + kAbove * size_;
    });
  }

  double size_;
  std::vector<ZBR_PT3> points_;
  std::vector<Face> faces_;
};

// Places along segments, as far apart as makes about a thousand of them, with the length that each stands for.
void Sample(const std::vector<Segment>& segments, const std::function<void(const Segment&, double t, double length)>& visit) {
  double sum = 0.0;
  for (const Segment& s : segments) sum += s.a.xy().Distance(s.b.xy());
  for (const Segment& s : segments) {
    const double length = s.a.xy().Distance(s.b.xy());
    const int n = 1 + static_cast<int>(1000 * length / sum);
    for (int k = 0; k < n; ++k) visit(s, (k + 0.4142135) / n, length / n);
  }
}

struct Share {
  double all = 0.0, bad = 0.0;
  void Add(double length, bool isBad) {
    all += length;
    bad += isBad ? length : 0.0;
  }
  double PerCent() const { return 100 * bad / all; }
};

std::vector<Segment> SegmentsOf(const ViewLines& view, const ZBR_PT& shift, bool edgesOnly) {
  std::vector<Segment> segments;
  for (const Line& line : view.lines) {
    const bool isOther = line.edgeClass == EdgeClass::kIntersection || line.edgeClass == EdgeClass::kTangent;
    if (line.hidden || (edgesOnly && isOther)) continue;
    const auto& points = line.chain.points;
    for (std::size_t i = 1; i < points.size(); ++i) {
      const ZBR_PT a = points[i - 1] + shift, b = points[i] + shift;
      segments.push_back({ZBR_PT3(a.x(), a.y(), 0), ZBR_PT3(b.x(), b.y(), 0)});
    }
  }
  return segments;
}

// What is done to a model, and the contact tolerance it is drawn with: the usual one, none, or what the noise calls for.
enum class Contact { kUsual, kNone, kTold };

struct Disturbance {
  const char* name;
  double noise = 0.0;   // in diagonals
  double offset = 0.0;  // in units
  bool single = false;
  Contact contact = Contact::kUsual;
  double most = 0.01;  // per cent
};
constexpr double kAll = 100.0;  // what is lost without a contact tolerance is shown, and held against nothing
constexpr Disturbance kDisturbances[] = {{"exact"},
                                         {"float32, contact 0", 0, 0, true, Contact::kNone, kAll},
                                         {"float32", 0, 0, true},
                                         {"float32, 1000 from the origin, contact 0", 0, 1000, true, Contact::kNone, kAll},
                                         {"float32, 1000 from the origin", 0, 1000, true},
                                         {"noise 1e-7", 1e-7, 0, false, Contact::kUsual, 2.0},  // seams are lost
                                         {"noise 1e-7, contact told", 1e-7, 0, false, Contact::kTold},
                                         {"noise 1e-6, contact 0", 1e-6, 0, false, Contact::kNone, kAll},
                                         {"noise 1e-6, contact told", 1e-6, 0, false, Contact::kTold},
                                         {"noise 1e-5, contact 0", 1e-5, 0, false, Contact::kNone, kAll},
                                         {"noise 1e-5, contact told", 1e-5, 0, false, Contact::kTold},
                                         {"noise 1e-4, contact 0", 1e-4, 0, false, Contact::kNone, kAll},
                                         {"noise 1e-4, contact told", 1e-4, 0, false, Contact::kTold, 3.0}};  // facets turn

Mesh Disturbed(Mesh mesh, const Disturbance& how, double size) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> noise(-how.noise * size, how.noise * size);
  const auto disturb = [&](double v) {
    v += how.offset;
    if (how.noise > 0) v += noise(random);
    return how.single ? static_cast<double>(static_cast<float>(v)) : v;
  };
  for (ZBR_PT3& p : mesh.points) p.Set(disturb(p.x()), disturb(p.y()), disturb(p.z()));
  return mesh;
}

// Whether both shares are small enough.
bool Measure(const char* name, const Mesh& mesh, const Disturbance& how) {
  const Model exact = MakeModel(mesh, kCrease);
  const double size = exact.Diagonal();
  const Model model = MakeModel(Disturbed(mesh, how, size), kCrease);
  DrawingOptions options;
  options.hidden = HiddenLines::kNone;
  options.curves = false;
  if (how.contact == Contact::kNone) options.contact = 0.0;
  if (how.contact == Contact::kTold) options.contact = 8 * how.noise * size;
  const ZBR_PT3 up(0, 0, 1), away(how.offset, how.offset, how.offset);
  Share lost, wrong;
  for (const View& view : {*NamedView("front"), *NamedView("top"), *NamedView("iso"), LookAlong({1, 2, -0.7}, up)}) {
    const ViewLines lines = DrawViews(model, {{"", view}}, options).front();
    const ZBR_PT shift = view.In(model.Centre() - away - exact.Centre()).xy();
    const Truth truth(mesh, view, exact.Centre(), size);
    const std::vector<Segment> drawn = SegmentsOf(lines, shift, false);
    Sample(truth.edges, [&](const Segment& edge, double t, double length) {
      if (!truth.IsVisible(edge, t)) return;
      const ZBR_PT p = (edge.a + (edge.b - edge.a) * t).xy();
      double at = 0.0;
      lost.Add(length,
               std::none_of(drawn.begin(), drawn.end(), [&](const Segment& s) { return DistanceOf(p, s, at) < kNear * size; }));
    });
    Sample(SegmentsOf(lines, shift, true), [&](const Segment& line, double t, double length) {
      wrong.Add(length, !truth.IsVisibleAt((line.a + (line.b - line.a) * t).xy()));
    });
  }
  std::printf("| %s | %s | %.3f | %.3f |\n", name, how.name, lost.PerCent(), wrong.PerCent());
  std::fflush(stdout);
  return std::max(lost.PerCent(), wrong.PerCent()) <= how.most;
}

Mesh Turned(Mesh mesh) {
  example::Turn(mesh, {0.3, 0.5, 0.8}, 0.137);
  return mesh;
}

int Run(const std::string& wanted) {
  std::printf("| model | coordinates | lost, %% | wrong, %% |\n|---|---|---|---|\n");
  const std::pair<const char*, Mesh> models[] = {
      {"assembly", Turned(example::Assembly())}, {"cover", Turned(example::Cover())}, {"housing", Turned(example::Housing())}};
  bool good = true;
  for (const auto& [name, mesh] : models) {
    if (!wanted.empty() && wanted != name) continue;
    for (const Disturbance& how : kDisturbances) good = Measure(name, mesh, how) && good;
  }
  return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace
}  // namespace zbr::drawing

int main(int argc, char** argv) {
  return zbr::drawing::Run(argc > 1 ? argv[1] : "");
}
