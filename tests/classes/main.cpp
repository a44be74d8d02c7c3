// Puts classes of input to engines and prints a table: how often the region was wrong, how often invalid.
//
//   zbr-region-classes [--pairs N] [--class TEXT,...] [--engine NAME,...] [--seed N] [--faults FOLDER] [--dump FOLDER]
//   [--expect-right]
//
// --class takes those whose name contains one of the texts. --dump writes wrong pairs, shrunk while they stay wrong: as files like
// those of --faults, and as entries for tests/data/regressions.txt. --expect-right makes wrong or invalid results a failure.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "classes/classes.h"

namespace {

// A difference that reaches this far from any boundary, in parts of the extent, is visible.
constexpr double kGrossDepth = 1e-4;
// Rounding and merging that any engine may do, in parts of the extent.
constexpr double kTolerance = 1e-9;
constexpr int kMostDumps = 4;  // per class and engine

struct Options {
  int pairs = 1000;
  std::uint64_t seed = 1;
  std::vector<std::string> classes = {""};
  std::vector<std::string> engines = {"loops"};
  std::string faults;
  std::string dump;
  bool expectRight = false;
};

struct Tally {
  int drawn = 0, results = 0, wrong = 0, gross = 0, invalid = 0, invalidXor = 0, failed = 0, fellBack = 0;
  double worstRight = 0.0;  // difference over perimeter and extent, of results that pass
};

struct Outcome {
  Answer answer;
  Verdict verdict;
  bool wrong = false;
  double extent = 0.0;
  double error = 0.0;
};

Outcome Try(const Engine& engine, const RegionJudge& judge, const Pair& pair, ZBR_BOOLEAN_OPE op, double noise) {
  Outcome outcome;
  outcome.answer = engine.combine(pair.a, pair.b, op);
  outcome.verdict = judge.Judge(op, outcome.answer.region.rings);
  outcome.wrong = outcome.answer.failed || judge.IsWrong(outcome.verdict, noise + kTolerance * judge.Extent());
  outcome.extent = judge.Extent();
  outcome.error = outcome.verdict.area / (judge.Perimeter() * judge.Extent());
  return outcome;
}

RegionJudge JudgeOf(const Pair& pair) {
  return {pair.a.rings, pair.b.rings, pair.a.fill, pair.b.fill};
}

// Leaves out rings, then points, as long as the answer stays wrong.
Pair Shrunk(Pair pair, const std::function<bool(const Pair&)>& isWrong) {
  pair.a.ends.clear();
  pair.b.ends.clear();
  if (!isWrong(pair)) return pair;
  const auto shrink = [&](auto& items, std::size_t least) {
    bool any = false;
    for (std::size_t i = items.size(); i-- > 0 && items.size() > least;) {
      const auto item = items[i];
      items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
      if (isWrong(pair)) {
        any = true;
      } else {
        items.insert(items.begin() + static_cast<std::ptrdiff_t>(i), item);
      }
    }
    return any;
  };
  for (bool again = true; again;) {
    again = false;
    for (Region* region : {&pair.a, &pair.b}) {
      again |= shrink(region->rings, 1);
      for (Ring& ring : region->rings) again |= shrink(ring, 3);
    }
  }
  return pair;
}

void Write(std::ostream& out, const char* name, const std::vector<Ring>& rings) {
  out << name << ' ' << rings.size() << '\n';
  for (const Ring& ring : rings) {
    out << ring.size() << '\n';
    for (const ZBR_PT& p : ring) out << p.x() << ' ' << p.y() << '\n';
  }
}

class Trial {
 public:
  Trial(const Engine& engine, const InputClass& input, const Options& options)
      : engine_(engine), input_(input), options_(options) {}

  Tally Run() {
    const int count = std::max(1, options_.pairs / input_.cost);
    for (draw_ = 0; draw_ < count; ++draw_) {
      Random random(options_.seed * 1000003 + static_cast<std::uint64_t>(draw_));
      wrong_ = gross_ = false;
      input_.draw(random, [&](const Pair& pair, const std::vector<ZBR_BOOLEAN_OPE>& ops) { return Visit(pair, ops); });
      tally_.drawn += 1;
      tally_.wrong += wrong_ ? 1 : 0;
      tally_.gross += gross_ ? 1 : 0;
    }
    return tally_;
  }

 private:
  std::optional<Region> Visit(const Pair& pair, const std::vector<ZBR_BOOLEAN_OPE>& ops) {
    const RegionJudge judge = JudgeOf(pair);
    std::optional<Region> region;
    bool right = true;
    for (const ZBR_BOOLEAN_OPE op : ops) {
      Outcome outcome = Try(engine_, judge, pair, op, input_.noise);
      Count(op, outcome);
      if (outcome.wrong && right) Dump(pair, op);
      right = right && !outcome.wrong;
      region = std::move(outcome.answer.region);
    }
    return right ? region : std::nullopt;
  }

  void Count(ZBR_BOOLEAN_OPE op, const Outcome& outcome) {
    const Region& region = outcome.answer.region;
    tally_.results += 1;
    tally_.failed += outcome.answer.failed ? 1 : 0;
    tally_.fellBack += outcome.answer.fellBack ? 1 : 0;
    const bool shared = op == ZBR_BOOL_XOR && engine_.xorSharesEdges;
    if (!IsValidRegion(region)) ++(shared && HasValidPolygons(region) ? tally_.invalidXor : tally_.invalid);
    wrong_ |= outcome.wrong;
    gross_ |= outcome.verdict.depth > kGrossDepth * outcome.extent;
    if (!outcome.wrong && outcome.error > tally_.worstRight) tally_.worstRight = outcome.error;
  }

  void Dump(const Pair& pair, ZBR_BOOLEAN_OPE op) {
    if (options_.dump.empty() || dumps_++ >= kMostDumps) return;
    const Pair small = Shrunk(pair, [&](const Pair& p) { return Try(engine_, JudgeOf(p), p, op, input_.noise).wrong; });
    const std::string name = input_.name + '_' + engine_.name + '_' + std::to_string(draw_) + "_op" + std::to_string(op);
    std::filesystem::create_directories(options_.dump);
    std::ofstream file(options_.dump + '/' + name + ".txt");
    file.precision(17);
    Write(file, "A", small.a.rings);
    Write(file, "B", small.b.rings);
    std::ofstream entries(options_.dump + "/regressions.txt", std::ios::app);
    entries.precision(16);
    entries << "case " << name << "\nwhy \nareas";
    for (const ZBR_BOOLEAN_OPE each : kOps) entries << ' ' << JudgeOf(small).Judge(each, {}).expected;
    entries << "\nA " << ToText(MakeLoops(small.a.rings)) << "\nB " << ToText(MakeLoops(small.b.rings)) << "\n\n";
  }

  const Engine& engine_;
  const InputClass& input_;
  const Options& options_;
  Tally tally_;
  int draw_ = 0;
  int dumps_ = 0;
  bool wrong_ = false;
  bool gross_ = false;
};

std::vector<std::string> SplitAtCommas(const char* text) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, ',');) parts.push_back(part);
  return parts;
}

bool Parse(int argc, char** argv, Options& options) {
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    if (option == "--expect-right") {
      options.expectRight = true;
      continue;
    }
    if (++i == argc) return false;
    const char* const value = argv[i];
    if (option == "--pairs") {
      options.pairs = std::atoi(value);
    } else if (option == "--seed") {
      options.seed = std::strtoull(value, nullptr, 10);
    } else if (option == "--class") {
      options.classes = SplitAtCommas(value);
    } else if (option == "--engine") {
      options.engines = SplitAtCommas(value);
    } else if (option == "--faults") {
      options.faults = value;
    } else if (option == "--dump") {
      options.dump = value;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!Parse(argc, argv, options)) {
    std::fprintf(stderr, "see the head of this program's source for its options\n");
    return 2;
  }
  const auto isAsked = [&](const std::string& name) {
    return std::any_of(options.classes.begin(), options.classes.end(),
                       [&](const std::string& part) { return name.find(part) != std::string::npos; });
  };
  int bad = 0;
  std::printf("%-15s %-8s %7s %8s %7s %7s %8s %8s %7s %8s %9s %7s\n", "class", "engine", "pairs", "results", "wrong", "gross",
              "invalid", "xor-inv", "failed", "fallback", "rounding", "s");
  for (const InputClass& input : InputClasses(options.faults)) {
    for (const Engine& engine : Engines()) {
      const bool fills = input.name.starts_with("dirty") && !input.name.ends_with("even-odd");
      if (!isAsked(input.name) || (fills && !engine.takesFills)) continue;
      if (std::find(options.engines.begin(), options.engines.end(), engine.name) == options.engines.end()) continue;
      const auto start = std::chrono::steady_clock::now();
      const Tally t = Trial(engine, input, options).Run();
      const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
      std::printf("%-15s %-8s %7d %8d %7d %7d %8d %8d %7d %8d %9.1e %7.1f\n", input.name.c_str(), engine.name.c_str(), t.drawn,
                  t.results, t.wrong, t.gross, t.invalid, t.invalidXor, t.failed, t.fellBack, t.worstRight, seconds.count());
      std::fflush(stdout);
      bad += t.wrong + t.invalid;
    }
  }
  return options.expectRight && bad > 0 ? 1 : 0;
}
