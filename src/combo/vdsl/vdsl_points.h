#pragma once
// Points of a line's spectrum, a tone and what holds there, in a table for each direction. Operators set one at a time,
// by its index from 1; there are no holes.

#include "combo/vdsl/vdsl_kinds.h"

struct PointCommand {
  const char* head;               // of the command and the line of the running configuration
  const char* word;               // ahead of the value
  const ProfileField* count;      // whose table it is; an entry has a tone and a value
  ValueRange typed = {};          // values that operators may give
  const char* refusal = nullptr;  // of others; null: left to the check of the profile
};

int editPoint(const ProfileKind& kind, const PointCommand& command, Vty* vty, int argc, char** argv);
void printPoints(const PointCommand& command, Vty* vty, const void* item);

template <const ProfileKind& kind, const PointCommand& points>
int pointCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return editPoint(kind, points, vty, argc, argv);
}
template <const PointCommand& up, const PointCommand& dn>
void printPointLines(Vty* vty, const void* item) {
  printPoints(up, vty, item);
  printPoints(dn, vty, item);
}
