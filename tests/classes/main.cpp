// Puts classes of input to engines and prints a table: how often the region was wrong, how often invalid.
//
//   zbr-region-classes [--pairs N] [--seed N] [--class TEXT,...] [--engine NAME,...] [--cases FILE] [--dump FILE] [--expect
//   right|valid]
//
// --class takes those whose name contains one of the texts. --cases adds a class: the entries of a file like
// tests/data/regressions.txt, in other units, moved and turned. --expect right makes a wrong result a failure, --expect valid an
// invalid one as well. --dump appends pairs that failed to such a file, shrunk while they fail.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

#include "classes/classes.h"

namespace {

// A difference that reaches this far from any boundary, in parts of the extent, is visible.
constexpr double kGrossDepth = 1e-4;
// Rounding and merging that any engine may do, in parts of the extent.
constexpr double kTolerance = 1e-9;
constexpr int kMostDumps = 4;  // per class and engine

// `worst`: difference over perimeter and extent, of results that pass.
struct Tally {
  int drawn = 0, results = 0, wrong = 0, gross = 0, invalid = 0, invalidXor = 0, failed = 0, fellBack = 0;
  double worst = 0.0;
};

struct Outcome {
  Answer answer;
  bool wrong = false;
  bool invalid = false;
  bool gross = false;
  double error = 0.0;
};

RegionJudge JudgeOf(const Pair& pair) {
  return {pair.a.rings, pair.b.rings, pair.a.fill, pair.b.fill};
}

Outcome Try(const Engine& engine, const RegionJudge& judge, const Pair& pair, ZBR_BOOLEAN_OPE op, double noise) {
  Outcome outcome{engine.combine(pair.a, pair.b, op)};
  const Verdict verdict = judge.Judge(op, outcome.answer.region.rings);
  outcome.wrong = outcome.answer.failed || judge.IsWrong(verdict, noise + kTolerance * judge.Extent());
  outcome.invalid = !IsValid(outcome.answer.region, op == ZBR_BOOL_XOR && engine.xorSharesEdges);
  outcome.gross = verdict.depth > kGrossDepth * judge.Extent();
  outcome.error = verdict.area / (judge.Perimeter() * judge.Extent());
  return outcome;
}

// Leaves out one of the items after the other, as long as the answer stays wrong.
template <typename Items>
bool Shrink(Items& items, std::size_t least, const std::function<bool()>& isWrong) {
  const std::size_t before = items.size();
  for (std::size_t i = items.size(); i-- > 0 && items.size() > least;) {
    Items whole = items;
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(i));
    if (!isWrong()) items = std::move(whole);
  }
  return items.size() < before;
}

// Whether an operand is no wider than rounding makes it; a fault of its own kind, to which others must not shrink.
bool HasSliverOperand(const Pair& pair) {
  for (const Region* region : {&pair.a, &pair.b}) {
    const RegionJudge judge(region->rings, {}, region->fill);
    if (!judge.IsWrong(judge.Judge(ZBR_BOOL_OR, {}), kTolerance * judge.Extent())) return true;
  }
  return false;
}

Pair Shrunk(Pair pair, const std::function<bool(const Pair&)>& isWrong) {
  pair.a.ends.clear();
  pair.b.ends.clear();
  const bool mayBeSliver = HasSliverOperand(pair);
  const auto stillWrong = [&] { return isWrong(pair) && (mayBeSliver || !HasSliverOperand(pair)); };
  for (bool again = stillWrong(); again;) {
    again = false;
    for (Region* region : {&pair.a, &pair.b}) {
      again |= Shrink(region->rings, 1, stillWrong);
      for (Ring& ring : region->rings) again |= Shrink(ring, 3, stillWrong);
    }
  }
  return pair;
}

class Trial {
 public:
  Trial(const Engine& engine, const InputClass& input, const std::string& dump, bool mustBeValid)
      : engine_(engine), input_(input), dump_(dump), mustBeValid_(mustBeValid) {}

  Tally Run(int count, std::uint64_t seed) {
    for (int i = 0; i < count; ++i) {
      name_ = input_.name + '-' + engine_.name + '-' + std::to_string(i);
      Random random(seed * 1000003 + static_cast<std::uint64_t>(i));
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
      if (Fails(outcome) && right) Dump(pair, op);
      right = right && !outcome.wrong;
      region = std::move(outcome.answer.region);
    }
    return right ? region : std::nullopt;
  }

  bool Fails(const Outcome& outcome) const { return outcome.wrong || (mustBeValid_ && outcome.invalid); }

  void Count(ZBR_BOOLEAN_OPE op, const Outcome& outcome) {
    const bool sharesEdges = op == ZBR_BOOL_XOR && engine_.xorSharesEdges;
    tally_.results += 1;
    tally_.failed += outcome.answer.failed ? 1 : 0;
    tally_.fellBack += outcome.answer.fellBack ? 1 : 0;
    tally_.invalid += outcome.invalid ? 1 : 0;
    tally_.invalidXor += sharesEdges && !IsValid(outcome.answer.region, false) ? 1 : 0;
    wrong_ |= outcome.wrong;
    gross_ |= outcome.gross;
    if (!outcome.wrong) tally_.worst = std::max(tally_.worst, outcome.error);
  }

  void Dump(const Pair& pair, ZBR_BOOLEAN_OPE op) {
    if (dump_.empty() || dumps_++ >= kMostDumps) return;
    const Pair small = Shrunk(pair, [&](const Pair& p) { return Fails(Try(engine_, JudgeOf(p), p, op, input_.noise)); });
    std::ofstream out(dump_, std::ios::app);
    out.precision(16);
    out << "case " << name_ << "\nwhy Operation " << op << " was wrong or invalid.\nareas";
    for (const ZBR_BOOLEAN_OPE each : kOps) out << ' ' << JudgeOf(small).Judge(each, {}).expected;
    out << "\nA " << ToText(MakeLoops(small.a.rings)) << "\nB " << ToText(MakeLoops(small.b.rings)) << "\n\n";
  }

  const Engine& engine_;
  const InputClass& input_;
  const std::string& dump_;
  const bool mustBeValid_;
  std::string name_;
  Tally tally_;
  int dumps_ = 0;
  bool wrong_ = false;
  bool gross_ = false;
};

// Whether the name contains one of the texts, which are separated by commas.
bool IsAsked(const std::string& name, const std::string& texts) {
  std::istringstream in(texts);
  for (std::string text; std::getline(in, text, ',');) {
    if (name.find(text) != std::string::npos) return true;
  }
  return texts.empty();
}

}  // namespace

int main(int argc, char** argv) {
  std::map<std::string, std::string> options = {{"--pairs", "1000"}, {"--seed", "1"}, {"--class", ""}, {"--engine", "loops"},
                                                {"--cases", ""},     {"--dump", ""},  {"--expect", ""}};
  for (int i = 1; i < argc; i += 2) {
    if (i + 1 == argc || !options.contains(argv[i])) {
      std::fprintf(stderr, "the head of classes/main.cpp tells the options\n");
      return 2;
    }
    options[argv[i]] = argv[i + 1];
  }
  int wrong = 0;
  int invalid = 0;
  const bool expectValid = options["--expect"] == "valid";
  std::printf("%-15s %-8s %7s %8s %7s %7s %8s %8s %7s %8s %9s %7s\n", "class", "engine", "pairs", "results", "wrong", "gross",
              "invalid", "xor-inv", "failed", "fallback", "rounding", "s");
  for (const InputClass& input : InputClasses(options["--cases"])) {
    for (const Engine& engine : Engines()) {
      if (!IsAsked(input.name, options["--class"]) || !IsAsked(engine.name, options["--engine"])) continue;
      if (input.needsFills && !engine.takesFills) continue;
      const auto start = std::chrono::steady_clock::now();
      const int count = std::max(1, std::stoi(options["--pairs"]) / input.cost);
      const Tally t = Trial(engine, input, options["--dump"], expectValid).Run(count, std::stoull(options["--seed"]));
      const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
      std::printf("%-15s %-8s %7d %8d %7d %7d %8d %8d %7d %8d %9.1e %7.1f\n", input.name.c_str(), engine.name.c_str(), t.drawn,
                  t.results, t.wrong, t.gross, t.invalid, t.invalidXor, t.failed, t.fellBack, t.worst, seconds.count());
      std::fflush(stdout);
      wrong += t.wrong;
      invalid += t.invalid;
    }
  }
  return (wrong > 0 && (expectValid || options["--expect"] == "right")) || (invalid > 0 && expectValid) ? 1 : 0;
}
