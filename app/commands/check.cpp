// zbr check: everything about a drawing that keeps its loops from bounding a region, each with its place.

#include <zbr-drawing/numbers.h>

#include <cmath>

#include "app/commands/load.h"
#include "app/io/output_files.h"

namespace tool {
namespace {

constexpr std::size_t kMostContacts = 10000;

class Check {
 public:
  Check(const Contours& contours, const Frame& frame) : contours_(contours), frame_(frame) {}

  // One line for each finding.
  std::string Run() {
    for (const OpenEnds& open : contours_.open) {
      Report(open.line, "contour does not close, from " + PointText(open.from) + " to " + PointText(open.to));
    }
    for (const Ring& ring : contours_.rings) CheckRing(ring);
    const Contacts contacts = FindContacts(LoopsOf(contours_, frame_), kMostContacts);
    for (const Contact& contact : contacts.list) {
      const std::string more = contact.count > 1 ? " and " + std::to_string(contact.count - 1) + " more places" : "";
      Report(contours_.rings[contact.ringA].line, Describe(contact, contours_, frame_) + more);
    }
    if (!contacts.complete) text_ += contours_.file + ": the search for crossings stopped, there are too many\n";
    return std::move(text_);
  }

 private:
  void CheckRing(const Ring& ring) {
    ZBR_LOOP loop;
    std::size_t repeated = 0;
    ZBR_PT firstRepeated;
    for (std::size_t i = 0; i < ring.points.size(); ++i) {
      const ZBR_PT p = frame_.In(ring.points[i]);
      if (p != frame_.In(ring.points[(i + 1) % ring.points.size()])) {
        loop.pt().push_back(p);
      } else if (ring.points.size() > 1 && repeated++ == 0) {
        firstRepeated = ring.points[i];
      }
    }
    loop.Setup();
    if (repeated > 0) {
      const std::string more = repeated > 1 ? " and " + std::to_string(repeated - 1) + " more" : "";
      Report(ring.line, "loop repeats a point at " + PointText(firstRepeated) + more);
    }
    if (loop.pt().size() < 3 || !(std::abs(loop.area()) > kTolerance)) {
      const std::string place = ring.points.empty() ? "" : " at " + PointText(ring.points.front());
      Report(ring.line, "loop of " + std::to_string(loop.pt().size()) + " different points encloses no area" + place);
    }
  }

  void Report(std::size_t line, const std::string& finding) {
    text_ += contours_.file + ":" + std::to_string(line) + ": " + finding + "\n";
  }

  const Contours& contours_;
  const Frame& frame_;
  std::string text_;
};

}  // namespace

int RunCheck(const FileOptions& options) {
  Progress progress;
  const Loaded loaded = Load({options.file}, options.input, progress);
  const Contours& contours = loaded.contours.front();
  progress.Stage("checking " + options.file);
  std::string findings = Check(contours, loaded.frame).Run();
  progress.Stage("");
  const bool clean = findings.empty();
  if (clean) findings = options.file + ": clean, " + std::to_string(contours.rings.size()) + " loops\n";
  WriteToStandardOutput(std::move(findings));
  return clean ? kExitFine : kExitFound;
}

}  // namespace tool
