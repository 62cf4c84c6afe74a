#pragma once
// The configuration file of msand: where its files are, and which cards the chassis holds.

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "capture_file.h"
#include "host/chassis.h"
#include "host/log.h"
#include "peer.h"
#include "settings.h"

namespace msand {

struct SlotConfiguration {
  u16 slot = 0;
  const host::CardType* card = nullptr;
  host::CardState state = host::CardState::up;
};

// A value whose worth is seen only when it is used, and what a complaint about it begins with: "FILE:LINE: ", or empty
// for one that nobody has given.
struct Told {
  std::string value;
  std::string at;
};

struct Configuration {
  Told socket = {"/run/msan/msand.socket", ""};
  Operators operators;
  std::string startup = "/var/lib/msan/startup.cfg";
  Told module;  // empty: ../lib/libmsan.so, seen from the program
  host::LogTo logTo = host::LogTo::standardError;
  Told logFile;
  Told metrics;                          // a file; empty: nothing is counted
  std::vector<SlotConfiguration> slots;  // ascending
  std::vector<Told> lines;               // behind DSL ports: what stands behind "chassis" at the terminal
  std::vector<Told> flow;                // flow rules and policies: what stands behind "flow" at the terminal
  FileSettings capture;                  // without a folder: beside the startup configuration
  SnmpSettings snmp;                     // it listens nowhere: no agent
};

// A file that can't be used; the text begins with "FILE:LINE: ", or "FILE: " where no line is to blame.
struct ConfigurationError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Paths in the file are seen from the file's own folder. Throws ConfigurationError, also if the file holds secrets and
// everybody may read it.
Configuration readConfiguration(const std::string& path);

// The same from the text of a file that stands at `path`.
Configuration parseConfiguration(std::string_view text, const std::string& path);

}  // namespace msand
