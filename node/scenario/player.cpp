#include "player.h"

#include "host/faults.h"
#include "host/jobs.h"
#include "host/links.h"
#include "host/pool.h"

namespace scenario {

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
  return {recordOf(recorder_.take(), outcome), outcome.available};
}

}  // namespace scenario
