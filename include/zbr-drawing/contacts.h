// Places where closed contours cross or run along each other or themselves.
#pragma once

#include <zbr/loop.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace zbr::drawing {

using LoopList = std::vector<std::shared_ptr<ZBR_LOOP>>;

enum class ContactKind {
  kCrossing,  // the boundaries pass through each other, at an edge or at a vertex
  kOverlap,   // they share a stretch
  kFold       // a boundary turns back on itself
};

// All contacts of one kind between two rings, or of one ring with itself.
struct Contact {
  ContactKind kind = ContactKind::kCrossing;
  std::size_t ringA = 0, ringB = 0;  // ringA <= ringB
  ZBR_PT at;                         // the first place found
  std::size_t count = 0;
};

struct Contacts {
  std::vector<Contact> list;
  bool complete = true;  // false when the search stopped because there are too many
};

// Contacts of the rings, ordered by rings, then kind; a touch from one side is none. Compares with the thread's tolerance, which is
// to be kTolerance. Children are not looked at. The search stops when `limit` entries, or a hundred times
// as many places, are found.
// Cost: n log n + pairs of edges with common boxes.
Contacts FindContacts(const LoopList& rings, std::size_t limit);

}  // namespace zbr::drawing
