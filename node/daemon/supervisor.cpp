#include "supervisor.h"

#include <systemd/sd-daemon.h>

#include <algorithm>
#include <cstdint>

namespace msand {

using std::chrono::milliseconds;

Supervisor::Supervisor() {
  uint64_t patience = 0;
  if (sd_watchdog_enabled(0, &patience) <= 0) return;
  const auto half = std::chrono::duration_cast<milliseconds>(std::chrono::microseconds(patience / 2));
  interval_ = std::clamp(half, milliseconds(1), milliseconds(std::chrono::hours(1)));
}

void Supervisor::status(const std::string& line) const { sd_notify(0, ("STATUS=" + line).c_str()); }

void Supervisor::ready() const { sd_notify(0, "READY=1"); }

void Supervisor::alive() const { sd_notify(0, "WATCHDOG=1"); }

void Supervisor::stopping() const { sd_notify(0, "STOPPING=1\nSTATUS=stops"); }

}  // namespace msand
