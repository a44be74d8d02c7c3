// zbr info of models: what is told of a sound one, and that each fault is found and counted.
#include "tool.h"

namespace {

// A box of two triangles a side, facing outwards; `tail` is appended to its faces.
std::string Box(const std::string& tail = "", bool isInward = false) {
  std::string text;
  for (const char* z : {"0", "3"}) {
    for (const char* xy : {"0 0 ", "1 0 ", "1 2 ", "0 2 "}) text += "v " + (xy + std::string(z)) + "\n";
  }
  text += "v 0.5 0 0\nv 9 9 9\n";  // one on an edge, one away
  const char* const kFaces[] = {"1 3 2", "1 4 3", "5 6 7", "5 7 8", "1 2 6", "1 6 5",
                                "2 3 7", "2 7 6", "3 4 8", "3 8 7", "4 1 5", "4 5 8"};
  for (const std::string face : kFaces) {
    const std::string turned = {face[0], ' ', face[4], ' ', face[2]};
    text += "f " + (isInward ? turned : face) + "\n";
  }
  return text + tail;
}

TEST_F(Tool, InfoTellsWhatAModelHolds) {
  Write("box.obj", Box());
  const Outcome outcome = Run("info box.obj");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.out,
            "file      box.obj\nformat    OBJ\ntriangles 12\npoints    8\nbox       0 0 0 to 1 2 3\nshells    1\n"
            "shell 0   12 triangles, closed, Euler number 2, genus 0\nclean     closed surfaces that face outwards\n");
  EXPECT_EQ(Info("$EX/house.obj", "shell 0"), "284 triangles, closed, Euler number -18, genus 10");
  EXPECT_EQ(Info("$EX/house.obj", "shell ..."), "and 13 more");
}

TEST_F(Tool, InfoFindsFaultsOfModels) {
  struct Case {
    const char* tail;
    const char* label;
    const char* text;
  };
  const Case kCases[] = {
      {"f 6 7 10\n", "junction", "1 edge of more than two triangles"},
      {"f 6 7 10\n", "open", "2 edges of one triangle"},
      {"f 3 1 2\n", "repeated", "1 triangle with the corners of another one"},
      {"f 1 9 2\nf 3 3 4\n", "flat", "2 triangles without area but for rounding"},
      {"v 9 9 8\nv 9 8 8\nv 8 8 8\nf 10 11 12\nf 10 11 13\n", "turned", "1 edge along which both triangles run the same way"},
  };
  for (const Case& c : kCases) {
    Write("faulty.obj", Box(c.tail));
    EXPECT_EQ(Info("faulty.obj", c.label), c.text);
    EXPECT_EQ(Info("faulty.obj", "clean"), "");
  }
  Write("inward.obj", Box("", true));
  EXPECT_EQ(Info("inward.obj", "inward"), "1 shell facing inwards, as only those of cavities should");
}

TEST_F(Tool, InfoOfBadModelsFails) {
  Write("broken.obj", "v 0 0 0\nf 1 2 3\n");
  const Outcome broken = Run("info broken.obj");
  EXPECT_EQ(broken.code, 2);
  EXPECT_EQ(broken.out, "");
  EXPECT_EQ(broken.err.rfind("broken.obj:2: ", 0), 0U) << broken.err;
  Write("box.obj", Box());
  EXPECT_EQ(Run("info --layer cut box.obj").err, "box.obj: a model has no layers to choose\n");
}

}  // namespace
