#pragma once
// The platform's own words on the command line. They are read by the same grammar as the module's commands, at nodes
// of their own. A line is the platform's when its first word is one of these, written out ("wr" will do for "write");
// then the module is not asked. "show running-config" ("show run" for short) and "show metrics" are the lines that
// begin with a word of both.

#include <functional>
#include <span>
#include <string>
#include <string_view>

#include "host/terminal.h"
#include "service.h"

namespace msand {

class Operator;

// What a line of the platform's asks for; run when the line has been read.
struct PlatformCall {
  Operator& node;
  Terminal& terminal;
  std::string& text;
};
using PlatformAction = std::function<int(const PlatformCall&)>;

// The terminal of a platform command: its handler leaves the action here.
struct PlatformVty : Vty {
  PlatformAction action;
};
int leave(Vty* vty, PlatformAction action);  // 0

inline constexpr int moduleNode(Level level) { return level == Level::debug ? DEBUG_NODE : CONFIG_NODE; }
inline constexpr int platformNode(Level level) { return 1000 + moduleNode(level); }

class History;
void installPlatformWords(const History& history);

// True if the line is the platform's.
bool isPlatformLine(std::string_view line);

// True if the first word is followed by a blank and is one whose lines are all the platform's.
bool isPlatformWord(std::string_view word);

}  // namespace msand
