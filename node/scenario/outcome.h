#pragma once
// What a directive gave besides its events, and the record that is made of both.

#include <string>
#include <string_view>
#include <vector>

#include "host/agent.h"
#include "host/terminal.h"

namespace scenario {

struct Outcome {
  std::string terminal;
  std::string question;
  std::vector<std::string> lines;  // in the order of the record
  bool available = true;

  void result(int code);
  // What the directive is about does not exist in this node.
  void notAvailable(std::string_view why);
  // An operator's line ran, or did not.
  void ran(const Vty& vty, host::LineOutcome line);
  // A manager's request was answered.
  void setAnswered(const host::Answer& answer);
  void getAnswered(const host::Answer& answer);
};

// The record: the events, what the terminal shows, its question, the lines.
std::vector<std::string> recordOf(std::vector<std::string> events, const Outcome& outcome);

}  // namespace scenario
