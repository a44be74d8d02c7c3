// Three ways to the same intervals: the library's driver, the triangle-by-triangle walk over its quadtree, and all pairs in the
// literal form. Equal to the last bit, chained polylines included.
#include <gtest/gtest.h>

#include <cstdio>

#include "differential/compare.h"
#include "hiddenline/scenes.h"
#include "literal/hidden_line.h"

namespace {

using ::SameBits;

bool SameBits(const ZBR_PT3& a, const ZBR_PT3& b) {
  return SameBits(a.xy(), b.xy()) && SameBits(a.z(), b.z());
}

bool SameList(const std::vector<ZBR_HL_INTERVAL>& got, const literal::Stretches& expected) {
  return std::equal(got.begin(), got.end(), expected.begin(), expected.end(),
                    [](const ZBR_HL_INTERVAL& g, const literal::Stretch& e) {
                      return SameBits(g.s.t, e.s) && SameBits(g.e.t, e.e) && SameBits(g.s.pt, e.ps) && SameBits(g.e.pt, e.pe);
                    });
}

std::string ListText(const std::vector<ZBR_HL_INTERVAL>& list) {
  std::string text;
  char buffer[256];
  for (const ZBR_HL_INTERVAL& v : list) {
    std::snprintf(buffer, sizeof buffer, " [%.17g (%.17g %.17g %.17g), %.17g (%.17g %.17g %.17g)]", v.s.t, v.s.pt.x(), v.s.pt.y(),
                  v.s.pt.z(), v.e.t, v.e.pt.x(), v.e.pt.y(), v.e.pt.z());
    text += buffer;
  }
  return text;
}
std::string ListText(const literal::Stretches& list) {
  std::vector<ZBR_HL_INTERVAL> copy;
  for (const literal::Stretch& s : list) copy.emplace_back(s.ps, s.pe, s.s, s.e);
  return ListText(copy);
}

std::string TriangleText(const ZBR_HL_TRI& t) {
  std::string text;
  char buffer[128];
  for (int i = 0; i < 3; ++i) {
    std::snprintf(buffer, sizeof buffer, "(%.17g, %.17g, %.17g) adj %d draw %d; ", t.pt[i].x(), t.pt[i].y(), t.pt[i].z(), t.adj[i],
                  static_cast<int>(t.dispj[i]));
    text += buffer;
  }
  return text + "idx " + std::to_string(t.idx);
}

testing::AssertionResult SameState(const std::vector<ZBR_HL_SHELL>& got, const std::vector<literal::Shell>& expected) {
  for (std::size_t s = 0; s < expected.size(); ++s) {
    for (unsigned k = 0; k < got[s].count; ++k) {
      const ZBR_HL_TRI& g = got[s].tris[k];
      const literal::Triangle& e = expected[s].tris[k];
      bool same =
          g.tri_state == e.state && g.idx == e.idx && g.clockwise == e.clockwise && g.any_edge_visible == e.visible && !g.skip;
      if (e.state == literal::kVertical)
        same = same && g.vert_edge == e.longEdge && g.vert_upper == e.upper && g.vert_ratio == e.ratio;
      for (int i = 0; i < 3; ++i) same = same && g.edge_state[i] == e.edgeState[i] && SameList(g.intvl_v[i], e.seen[i]);
      if (same) continue;
      auto failure = testing::AssertionFailure() << "shell " << s << " triangle " << k << ": " << TriangleText(g);
      for (int i = 0; i < 3; ++i) {
        failure << "\n  edge " << i << " state " << g.edge_state[i] << ListText(g.intvl_v[i]) << ", not " << e.edgeState[i]
                << ListText(e.seen[i]);
      }
      return failure << "\n  state " << g.tri_state << " not " << e.state;
    }
  }
  return testing::AssertionSuccess();
}

// The shell's own pass, told triangle by triangle. Triangles that are invalid are filed nowhere, but one may draw an edge.
void WalkSelf(ZBR_HL_SHELL& shell) {
  shell.HiddenLineSelf();
  shell.CheckTriangle();
  ZBR_HiddenLine::HiddenLine_ShellByChildQuad(shell, shell.root, true);
  for (unsigned k = 0; k < shell.count; ++k) {
    if (shell.tris[k].IsTriInvalid()) ZBR_HiddenLine::HiddenLine_TriByShell(shell.tris[k], shell);
  }
}

void Walk(std::vector<ZBR_HL_SHELL>& shells) {
  for (ZBR_HL_SHELL& shell : shells) WalkSelf(shell);
  for (ZBR_HL_SHELL& a : shells) {
    for (const ZBR_HL_SHELL& b : shells) {
      for (unsigned k = 0; &a != &b && k < a.count; ++k) {
        if (a.tris[k].any_edge_visible) ZBR_HiddenLine::HiddenLine_TriByShell(a.tris[k], b);
      }
    }
  }
}

std::vector<literal::Shell> AllPairs(const std::vector<ZBR_HL_SHELL>& shells, const literal::Tol& tol) {
  std::vector<literal::Shell> out = literal::FromZbr(shells.data(), static_cast<unsigned>(shells.size()));
  literal::HideAll(out, tol);
  return out;
}

testing::AssertionResult SameLines(const std::vector<ZBR_HL_SHELL>& shells, const std::vector<literal::Shell>& expected) {
  std::vector<std::vector<ZBR_PT>> lines;
  std::vector<std::vector<ZBR_PT>> expectedLines;
  std::vector<ZBR_HL_OPT_PT> ends = literal::SeenEnds(expected);
  const int open = zbrOptimizeHiddenLine(shells.data(), lines, static_cast<unsigned>(shells.size()));
  if (open != literal::Chain(ends, expectedLines, literal::Tol(0.001)))
    return testing::AssertionFailure() << open << " open polylines";
  if (lines.size() != expectedLines.size()) return testing::AssertionFailure() << lines.size() << " polylines";
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const bool same = std::equal(lines[k].begin(), lines[k].end(), expectedLines[k].begin(), expectedLines[k].end(),
                                 [](const ZBR_PT& a, const ZBR_PT& b) { return SameBits(a, b); });
    if (!same) return testing::AssertionFailure() << "polyline " << k;
  }
  return testing::AssertionSuccess();
}

long EdgesSeenInPart(const std::vector<literal::Shell>& shells) {
  long count = 0;
  for (const literal::Shell& shell : shells) {
    for (const literal::Triangle& t : shell.tris) {
      for (const literal::Stretches& list : t.seen) count += !list.empty() && (list[0].s != 0.0 || list.back().e != 1.0) ? 1 : 0;
    }
  }
  return count;
}

class HiddenDifferential : public testing::TestWithParam<SceneFamily> {};

TEST_P(HiddenDifferential, DriverWalkAndAllPairsAgree) {
  const int cases = Scaled(60);
  long triangles = 0;
  long cut = 0;
  for (int seed = 0; seed < cases; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const literal::Tol tol(seed % 5 == 0 ? 1e-6 : 1e-5);
    const ZBR_TmpEps guard(tol.eps);
    Drawing driven = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    Drawing walked = DrawHard(GetParam(), static_cast<std::uint64_t>(seed));
    std::vector<ZBR_HL_SHELL> shells = driven.Shells();
    std::vector<ZBR_HL_SHELL> walkedShells = walked.Shells();
    const std::vector<literal::Shell> expected = AllPairs(shells, tol);
    Walk(walkedShells);
    ASSERT_TRUE(SameState(walkedShells, expected)) << "the walk";
    ASSERT_TRUE(SameLines(walkedShells, expected));
    ZBR_HiddenLine::HiddenLine_Shells(shells.data(), static_cast<unsigned>(shells.size()));
    ASSERT_TRUE(SameState(shells, expected)) << "the driver";
    triangles += static_cast<long>(driven.TriangleCount());
    cut += EdgesSeenInPart(expected);
  }
  std::printf("[ compared ] %-9s %d scenes, %ld triangles, %ld edges seen in part\n", GetParam().name, cases, triangles, cut);
  EXPECT_GE(cut, cases / 2);  // a run without edges cut by occluders proves nothing
}

INSTANTIATE_TEST_SUITE_P(Families, HiddenDifferential, testing::ValuesIn(SceneFamilies()),
                         [](const auto& family) { return std::string(family.param.name); });

}  // namespace
