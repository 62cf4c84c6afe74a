#include "player.h"

#include <fmt/format.h>

#include "host/faults.h"
#include "host/jobs.h"
#include "host/links.h"
#include "host/pool.h"
#include "text.h"

namespace scenario {

void Outcome::result(int code) { lines.push_back(fmt::format("= {}", code)); }

void Outcome::notAvailable(std::string_view why) {
  lines.push_back(fmt::format("= not available: {}", why));
  available = false;
}

Player::Player(const std::string& module) : node_(module), stage_{node_, recorder_, {}, {}, host::poolInUse(), {}, {}} {
  host::runJobs();
  recorder_.take();
}

// What is still queued is not for the next file.
Player::~Player() {
  host::clearFaults();
  host::clearLinks();
  host::clearJobs();
}

Played Player::play(const Action& action) {
  Outcome outcome;
  action(stage_, outcome);
  host::runJobs();
  Played played{recorder_.take(), outcome.available};
  for (const std::string& line : terminalLines(outcome.terminal)) played.record.push_back(marked("|", line));
  if (!outcome.question.empty()) played.record.push_back(marked("?", outcome.question));
  for (std::string& line : outcome.lines) played.record.push_back(std::move(line));
  return played;
}

}  // namespace scenario
