#pragma once
// Lines that are run without a person in front of them.

#include <functional>
#include <string>

#include "connection.h"
#include "line_reader.h"

namespace ctl {

struct BatchOutcome {
  u64 lines = 0;
  u64 failed = 0;
  i32 returned = 0;    // by the last line that failed
  bool asks = false;   // a question is open
  bool ended = false;  // by "exit"; the lines behind it were not run
};

// Runs all lines of a reader, in order. What they print goes to standard output; a line that failed is told on standard
// error with `name` and its number, and does not stop the rest. `size`: of the file in bytes, for the progress line; 0
// if it is not known. Throws ConnectionError.
BatchOutcome runLines(Connection& connection, LineReader& reader, const std::string& name, u64 size);

// Runs one line, which is told of as `number`. `quiet`: what it prints tells enough where it fails.
BatchOutcome runCommand(Connection& connection, const std::string& line, u64 number, bool quiet = false);

}  // namespace ctl
