// Cases kept as text, in tests/data: a block of lines "key text" for each, begun by its name. Every file is a suite, every block a
// test of its own, so adding a case is adding a block. "why" is the reason for which a case is there, and must not be missing.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <zbr/spatial.h>

#include "support/shapes.h"

struct Entry {
  std::string suite, name;
  int line = 0;
  std::vector<std::pair<std::string, std::string>> keys;

  // The text behind a key; all texts, where a key may stand several times.
  const std::string& At(const std::string& key) const;
  std::string Or(const std::string& key, const std::string& otherwise) const;
  std::vector<std::string> All(const std::string& key) const;
};

std::vector<Entry> ReadEntries(const std::string& folder);

std::vector<double> Numbers(std::string text);
// Points, as in "0 0 0, 4 0 0.5".
std::vector<ZBR_PT3> Points(const std::string& text);
ZBR_PT PlanarPoint(const std::string& text);
std::string Text(const std::vector<std::vector<ZBR_PT>>& lines);

// One for each suite; a new suite is a new file of data, and a function in the table of entries_test.cpp.
void RunBoolean(const Entry& entry);
void RunChain(const Entry& entry);
void RunClip(const Entry& entry);
void RunCrossings(const Entry& entry);
void RunEdge(const Entry& entry);
void RunLocate(const Entry& entry);
void RunLoops(const Entry& entry);
void RunNest(const Entry& entry);
void RunOrders(const Entry& entry);
void RunOutline(const Entry& entry);
void RunPick(const Entry& entry);
void RunPredicate(const Entry& entry);
void RunRelation(const Entry& entry);
void RunScene(const Entry& entry);
