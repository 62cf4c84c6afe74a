#pragma once
// What is done to a node at all its doors, drawn from what the scenarios do and changed at random. Equal seeds give
// equal steps.

#include <map>
#include <span>
#include <string>
#include <vector>

#include "requests.h"

namespace fuzz {

struct Step {
  enum Kind : u8 { frame, line, debugLine, directive, restart };
  Kind kind = frame;
  Verb verb = Verb::set;
  u16 id = 0;
  std::string text = {};  // the frame's bytes; the line; the directive
};

// As a scenario has it.
std::string directiveOf(const Step& step);

struct Pool {
  std::vector<Step> frames, lines, directives;
  std::map<u16, std::vector<std::size_t>> byId;  // of frames
};

// Adds what a scenario file does; false if it is none.
bool addScenario(Pool& pool, const std::string& file);

std::vector<Step> drawSteps(const Pool& pool, u64 seed, std::size_t count);

}  // namespace fuzz
