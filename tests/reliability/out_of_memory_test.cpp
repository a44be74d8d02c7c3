// Memory that runs out: every allocation of a call fails in turn, alone or with all that follow it.
//
// Whatever fails, the call must end in std::bad_alloc or in the right result (some standard algorithms do with less), the tolerance
// must be as it was, nothing may leak, and the objects that the call was filling must be good for another try, which gives
// what an undisturbed call gives.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <new>

#include "hiddenline/scenes.h"
#include "reliability/digest.h"
#include "support/expect.h"

namespace {

constexpr long kNever = std::numeric_limits<long>::max();
long g_left = kNever;  // allocations that succeed before one fails
bool g_lasting = false;
bool g_failed = false;
long g_live = 0;

bool Fails() {
  if (g_left == kNever || g_left-- > 0) return false;
  g_failed = true;
  g_left = g_lasting ? 0 : kNever;
  return true;
}

[[gnu::noinline]] void* Allocate(std::size_t size) {
  void* const memory = Fails() ? nullptr : std::malloc(std::max<std::size_t>(size, 1));
  if (memory == nullptr) throw std::bad_alloc();
  ++g_live;
  return memory;
}

[[gnu::noinline]] void Release(void* memory) {
  if (memory != nullptr) --g_live;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  return Allocate(size);
}
// Both forms, as sanitizers bring one that does not call the other.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return Allocate(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory) noexcept {
  Release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  Release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  Release(memory);
}

namespace {

// Runs work on a fresh state with each allocation failing in turn. What make() gives is made before and released after; work(state)
// gives the digest of its results, and is run on the same state again after a failure.
template <class Make, class Work>
void ExpectSurvives(const Make& make, const Work& work) {
  constexpr double kEps = 0x1p-17;
  const ZBR_TmpEps guard(kEps);
  const std::uint64_t expected = [&] {
    auto state = make();
    return work(state);
  }();
  for (const bool lasting : {false, true}) {
    long n = 0;
    for (g_failed = true; g_failed; ++n) {
      const long before = g_live;
      {
        auto state = make();
        std::uint64_t got = expected;
        g_lasting = lasting;
        g_failed = false;
        g_left = n;
        try {
          got = work(state);
        } catch (const std::bad_alloc&) {
        }
        g_left = kNever;
        ASSERT_EQ(got, expected) << "allocation " << n;
        ASSERT_TRUE(zbr_EpsE(kEps) && !zbr_EpsE(kEps * 1.0000001)) << "allocation " << n;
        ASSERT_EQ(work(state), expected) << "again after allocation " << n;
      }
      ASSERT_EQ(g_live, before) << "allocation " << n;
    }
    EXPECT_GT(n, 10);
  }
}

template <class... T>
std::uint64_t DigestOf(const T&... values) {
  Digest digest;
  digest.Add(values...);
  return digest.value();
}

OperandPair PairOf(const Family& family) {
  Random random(7);
  return family.draw(random);
}

TEST(OutOfMemory, Booleans) {
  struct State {
    LoopList a, b;
    std::array<ZBR_REGION, 2> regions;
    BooleanResults results;
    std::array<ZBR_REGION, 5> flat;
  };
  for (const Family& family : Families()) {
    SCOPED_TRACE(family.name);
    const OperandPair pair = PairOf(family);
    ExpectSurvives(
        [&] {
          return State{Nest(pair.a), Nest(pair.b), {RegionOf(pair.a), RegionOf(pair.b)}, {}, {}};
        },
        [](State& s) {
          auto ops = kOps;
          auto& r = s.results.loops;
          zbrBooleanLoops(s.a, s.b, ops.data(), r.data(), 5, s.results.crosses);
          zbrCombineRegions(s.regions[0].view(), s.regions[1].view(), ops.data(), s.flat.data(), 5);
          return DigestOf(s.results.crosses, r[0], r[1], r[2], r[3], r[4], s.flat[0].points(), s.flat[4].points());
        });
  }
}

// Nesting works in place, so another try gets the rings anew.
TEST(OutOfMemory, NestingAndLocating) {
  ExpectSurvives([] { return LoopList(); },
                 [rings = PairOf(FamilyNamed("tiles")).a](LoopList& loops) {
                   loops = MakeLoops(rings);
                   zbrMakeLoopTree(loops);
                   const ZBR_LOOP_LOCATOR locator(loops);
                   return DigestOf(loops, static_cast<int>(locator.IsInside({1.5, 1.5})));
                 });
}

TEST(OutOfMemory, DeepTrees) {
  // Four levels of four loops each.
  const std::function<LoopList(int)> grow = [&](int depth) {
    LoopList loops;
    for (int k = 0; k < 4 && depth > 0; ++k) {
      loops.push_back(MakeLoop(Square(0, 0, depth)));
      loops.back()->children() = grow(depth - 1);
    }
    return loops;
  };
  ExpectSurvives([&] { return std::make_pair(grow(4), LoopList()); },
                 [](auto& state) {
                   ZBR_LOOP::DeepCopyLoops(state.second, state.first);
                   ZBR_LOOP::Offset(state.second, {1.0, 0.0});
                   const std::uint64_t digest = DigestOf(state.second);
                   LoopList().swap(state.second);  // released while memory may be short
                   return digest;
                 });
}

// Two objects, each by itself, then behind one another.
TEST(OutOfMemory, HiddenLinesAndOutlines) {
  struct State {
    Drawing drawing = Draw({example::Torus(240), Moved(example::LSolid(1.5), {1, 1, 1})}, *zbr::drawing::NamedView("iso"));
    std::vector<ZBR_HL_SHELL> shells = drawing.Shells();
  };
  ExpectSurvives([] { return State(); },
                 [](State& s) {
                   std::vector<std::vector<ZBR_PT>> lines;
                   std::vector<ZBR_SEG> hidden;
                   std::vector<ZBR_HL_TRI_SAVE> saved;
                   for (ZBR_HL_SHELL& shell : s.shells) {
                     shell.Init();
                     ZBR_HiddenLine::HiddenLineObj(&shell, &lines, 1);
                   }
                   ZBR_HiddenLine::HiddenLineObjByObj(&s.shells[0], &s.shells[1], 1, 1, true);
                   ZBR_HiddenLine::GetHiddenLineObj(s.shells.data(), hidden, 3, 2);
                   const ZBR_HL_SHELL copy = s.shells[0];
                   s.shells[0].SaveInfo(saved, ZBR_HL_TRI_SAVE());
                   s.shells[0].RestoreInfo(saved);
                   return DigestOf(s.shells, lines, hidden, copy.outline_all, copy.outline, s.shells[1].outline);
                 });
}

TEST(OutOfMemory, SegmentsClippedChainedAndClosed) {
  struct State {
    LoopList region = Nest(PairOf(FamilyNamed("tiles")).a);
    std::vector<Ring> rings = PairOf(FamilyNamed("tiles")).b;
  };
  ExpectSurvives([] { return State(); },
                 [](State& s) {
                   Digest digest;
                   AddSegmentWork(digest, s.region, s.rings, 0.0, 1.0);
                   return digest.value();
                 });
}

TEST(OutOfMemory, MeshRecordsAndAllocator) {
  struct State {
    ZBR_ZBREPB body;
    ZBR_CSimpleAlloc alloc{64};
  };
  ExpectSurvives([] { return std::make_unique<State>(); },
                 [](std::unique_ptr<State>& s) {
                   s->alloc.clear();
                   const char* const text = s->alloc.PushString("a string");
                   for (int k = 0; k < 20; ++k) s->alloc.GetBuffer(k % 5 == 0 ? 100U : 30U);
                   s->body = ZBR_ZBREPB();
                   s->body.SetShellCnt(1);
                   ZBR_ZBREPS& shell = *s->body.GetShell(0);
                   shell.SetVertexCnt(50);
                   shell.SetTriangleCnt(48);
                   for (int k = 0; k < 48; ++k) shell.SetTriangleWithEdge(k, 0, k + 1, k + 2);
                   return DigestOf(shell.GetEdgeCnt(), static_cast<int>(text[7]));
                 });
}

}  // namespace
