// zbr check: everything about a drawing that keeps its loops from bounding a region, each with its place; and the region that it is
// taken for.

#include <zbr-formats/files.h>

#include <cstdio>
#include <filesystem>
#include <map>
#include <set>

#include "app/commands/left_out.h"
#include "app/commands/load.h"
#include "app/commands/outputs.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

constexpr std::size_t kMostFaults = 1000000;

// One line for each kind of fault that a loop has, or that two loops have with each other, with its first place.
class Findings {
 public:
  Findings(const Contours& contours, const std::map<std::string, LeftOut>& leftOut) : contours_(contours), leftOut_(leftOut) {}

  std::string Text() {
    for (const auto& [what, left] : leftOut_) {
      if (left.bearsContours) Report(left.line, "left out " + LeftOutText(what, left));
    }
    for (const OpenEnds& open : contours_.open) {
      Report(open.line,
             "contour does not close, from " + PointText(open.from) + " to " + PointText(open.to) + GapText(contours_, open));
    }
    for (const Fork& fork : contours_.forks) {
      Report(fork.line, std::to_string(fork.ends) + " lines meet at " + PointText(fork.at) +
                            ", so that they bound no single contour; what they enclose together is taken, see --faces");
    }
    std::vector<ZBR_REGION_FAULT> faults;
    zbrCheckRegion(RingsOf(contours_).view(), faults, kMostFaults);
    // The turns of a loop that crosses itself may cancel in its area.
    std::set<std::int32_t> crossed;
    for (const ZBR_REGION_FAULT& fault : faults) {
      if (fault.kind == ZBR_FAULT_CROSSING && fault.ring_a == fault.ring_b) crossed.insert(fault.ring_a);
    }
    for (std::size_t i = 0, next = 0; i < faults.size(); i = next) {
      while (next < faults.size() && AreAlike(faults[i], faults[next])) ++next;
      if (faults[i].kind == ZBR_FAULT_NO_AREA && crossed.contains(faults[i].ring_a)) continue;
      const Ring& ring = contours_.rings[static_cast<std::size_t>(faults[i].ring_a)];
      Report(ring.line, TextOf(faults[i], ring) + More(next - i - 1));
    }
    if (faults.size() >= kMostFaults) text_ += contours_.file + ": the search for crossings stopped, there are too many\n";
    return std::move(text_);
  }

 private:
  static bool AreAlike(const ZBR_REGION_FAULT& a, const ZBR_REGION_FAULT& b) {
    return a.kind == b.kind && a.ring_a == b.ring_a && a.ring_b == b.ring_b;
  }

  static std::string More(std::size_t count) {
    return count == 0 ? "" : " and " + std::to_string(count) + (count == 1 ? " more place" : " more places");
  }

  std::string TextOf(const ZBR_REGION_FAULT& fault, const Ring& ring) const {
    switch (fault.kind) {
      case ZBR_FAULT_REPEATED_POINT:
        return "loop repeats a point at " + PointText(fault.place);
      case ZBR_FAULT_NO_AREA:
        return "loop of " + std::to_string(ring.points.size()) + " points encloses no area" +
               (ring.points.empty() ? "" : " at " + PointText(fault.place));
      case ZBR_FAULT_NOT_FINITE:
        return "loop has coordinates out of range";
      default:
        return Describe(fault, contours_);
    }
  }

  void Report(std::size_t line, const std::string& finding) {
    text_ += contours_.file + ":" + std::to_string(line) + ": " + finding + "\n";
  }

  const Contours& contours_;
  const std::map<std::string, LeftOut>& leftOut_;
  std::string text_;
};

void WriteFixed(const Loaded& loaded, ZBR_FILL_RULE rule, const Writing& writing, const std::vector<OutputPlan>& plans,
                const std::string& name, Progress& progress) {
  OutputFiles files;
  const Layer layer = MakeLayer(name, CurvedShape(MakeRegion(loaded.contours.front(), rule)));
  NoteBeside({layer}, progress);
  for (const OutputPlan& plan : plans) files.Add(plan.file, WriteRegion(plan.format, layer, loaded.units, writing));
  files.Commit();
}

}  // namespace

int RunCheck(const CheckOptions& options) {
  if (options.fix != !options.outputs.empty()) throw Failure("--fix and -o need each other");
  Progress progress;
  const std::string name = StemOf(options.file);
  const auto plans = PlanOutputs(options.outputs, {{name}, "", false}, FormatOption(options.input), options.file);
  InputOptions input = options.input;
  input.leftOutIsFound = true;
  const Loaded loaded = Load({options.file}, input, progress);
  const Contours& contours = loaded.contours.front();
  progress.Stage("checking " + options.file);
  std::string findings = Findings(contours, loaded.leftOut.front()).Text();
  const bool isClean = findings.empty();
  if (isClean) findings = options.file + ": clean, " + std::to_string(contours.rings.size()) + " loops\n";
  if (options.fix) WriteFixed(loaded, FillRule(options.input.fill), options.input.writing, plans, name, progress);
  progress.Stage("");
  if (UsesStandardOutput(plans)) {
    std::fputs(findings.c_str(), stderr);
  } else {
    WriteToStandardOutput(std::move(findings));
  }
  return isClean || options.fix ? kExitFine : kExitFound;
}

}  // namespace tool
