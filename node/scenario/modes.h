#pragma once
// What the program does with its files. Results are exit codes: 0 good, 1 something differs or breaks a rule.

#include <string>
#include <vector>

#include "reader.h"

namespace scenario {

inline constexpr int kGood = 0;
inline constexpr int kDiffers = 1;
inline constexpr int kBadFile = 2;
inline constexpr int kNoNode = 3;      // the node can't be started
inline constexpr int kOutputLost = 3;  // standard output can't be written

// Reads files; "-" is standard input. What is bad is told on standard error, and `bad` is set.
std::vector<Scenario> loadScenarios(const std::vector<std::string>& files, bool& bad);

// Plays a file against a fresh node; standard output is captured meanwhile. Throws std::runtime_error, with the line,
// when the node can't be started.
std::vector<Played> playAll(const std::string& module, const Scenario& scenario);

// Plays files against fresh nodes and compares.
int playFiles(const std::string& module, const std::vector<Scenario>& scenarios);

// Plays a file and prints its record.
int recordFile(const std::string& module, const Scenario& scenario);

// The same, with the fields of each message below its line.
int explainFile(const std::string& module, const Scenario& scenario);

// Plays files and holds each message against its description: all that the module lets out, and what it takes from a
// manager.
int holdFiles(const std::string& module, const std::vector<Scenario>& scenarios);

// Plays files and writes their messages into a file for Wireshark, with what cards and voice side are told to answer
// where it is told. A second is a directive.
int captureFiles(const std::string& module, const std::vector<Scenario>& scenarios, const std::string& file);

// Plays files and writes the records into them, where there are expectations that are not met; `all`: behind the
// directives without expectations, too. Prints what it changed. Standard input goes to standard output.
int rewriteFiles(const std::string& module, const std::vector<Scenario>& scenarios, bool all);

// Plays files with each failing site failing once, over all files together.
struct SweepOptions {
  bool all = false;   // every failure point
  std::string calls;  // file for where in the module the calls return to that led to a failure point, hexadecimal
};
int sweepFiles(const std::string& module, const std::vector<Scenario>& scenarios, const SweepOptions& options);

// Plays files and holds the running configuration against the one that it gives behind a restart; `all`: also what the
// cards are told when they come up.
int replayFiles(const std::string& module, const std::vector<Scenario>& scenarios, bool all);

// The lines of a file with the records of its directives as expectations; comments stay. Expectations that are met stay
// as they are; directives without any get theirs when `all` is set.
std::vector<std::string> rewriteLines(const Scenario& scenario, const std::vector<Played>& played, bool all);

// The closing line.
void printCount(std::size_t passed, std::size_t failed);

}  // namespace scenario
