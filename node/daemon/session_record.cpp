#include "session_record.h"

#include <fcntl.h>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>

#include "files.h"
#include "host/chassis.h"
#include "host/hex.h"
#include "host/jobs.h"
#include "note.h"
#include "scenario/reader.h"
#include "snapshot.h"

namespace msand {

static constexpr std::string_view kEnding = ".scn";

SessionRecord& sessionRecord() {
  static SessionRecord one;
  return one;
}

Turn::Turn(Gate gate) {
  const auto& wanted = sessionRecord().wanted_;
  // A record that begins waits for those who are at the gate.
  while (true) {
    if (wanted) alone_ = std::unique_lock(sessionRecord().turn_);
    if (gate == Gate::shared) gate_ = std::shared_lock(host::requestGate());
    if (!wanted || alone_.owns_lock()) return;
    if (gate_.owns_lock()) gate_.unlock();
  }
}

// What brings a player to where the node is, the configuration as at a start.
static std::string headOf(node::Node& node) {
  const auto now = std::chrono::time_point_cast<std::chrono::seconds>(std::chrono::system_clock::now());
  const Snapshot snapshot = snapshotOf(node, nullptr);
  std::string text = fmt::format("# Recorded by msand {}, {:%Y-%m-%d %H:%M:%S} UTC.\n\n# The node at that time.\n",
                                 MSAN_VERSION, fmt::gmtime(std::chrono::system_clock::to_time_t(now)));
  for (const std::string& directive : snapshot.chassis) text += directive + '\n';
  for (const Snapshot::Flow& flow : snapshot.flows) text += flowDirective(flow) + '\n';
  text += "recover on\n";
  for (const std::string_view line : linesOf(snapshot.configuration))
    if (!line.starts_with('!')) text += fmt::format("cli {}\n", line);
  text += "recover off\nsave\nrestart\n";
  for (const std::string& directive : snapshot.cards) text += directive + '\n';
  return text + "\n# What was done.\n";
}

// --- the record

// In a turn that is nobody's.
void SessionRecord::want(Sink sink) {
  sink_ = std::move(sink);
  {
    const std::unique_lock alone(host::requestGate());
    wanted_ = true;
  }
  host::holdJobs(true);
  host::runJobs();
  bytes_ = directives_ = 0;
  ended_.clear();
  lastLine_.clear();
  recorder_.take();
  const std::lock_guard lock(answersMutex_);
  answers_.clear();
}

void SessionRecord::beginInto(Sink sink) {
  const std::lock_guard turn(turn_);
  settings_.most = std::numeric_limits<std::size_t>::max();
  want(std::move(sink));
}

std::string SessionRecord::begin(const std::string& name, node::Node& node) {
  checkFileName(name, kEnding, "a record");
  const std::lock_guard turn(turn_);
  end();
  const auto file = std::make_shared<Descriptor>();
  path_ = newFile(settings_.folder, name, *file);
  want([file](std::string_view text) { return writeAll(*file, text); });
  const bool written = append(headOf(node));
  recorder_.take();
  if (!written) throw FileError(path_, "can't be written", errno);
  return fmt::format("what is done is recorded in {}, up to {} MiB", path_, settings_.most >> 20);
}

std::string SessionRecord::told() const {
  return fmt::format("{}: {} directive{}, {} bytes{}", path_, directives_, directives_ == 1 ? "" : "s", bytes_, ended_);
}

std::string SessionRecord::end() {
  const std::lock_guard turn(turn_);
  if (path_.empty()) return "nothing is recorded";
  const std::string text = told();
  close("");
  path_.clear();
  return text;
}

std::string SessionRecord::state() {
  const std::lock_guard turn(turn_);
  return path_.empty() ? "nothing is recorded" : told();
}

void SessionRecord::close(const std::string& why) {
  if (!wanted_.exchange(false)) return;
  host::holdJobs(false);
  sink_ = nullptr;
  ended_ = why;
}

// False: it is not written whole, and the record has ended.
bool SessionRecord::append(std::string_view text) {
  std::string why;
  if (bytes_ + text.size() > settings_.most)
    why = ", full";
  else if (!sink_(text))
    why = ", can't be written: " + std::generic_category().message(errno);
  bytes_ += why.empty() ? text.size() : 0;
  if (why.empty()) return true;
  close(why);
  msand::note("the record has ended: " + told());
  return false;
}

void SessionRecord::answered(host::Link link, u16 slot, u16 id, host::Bytes answer) {
  if (!wanted_) return;
  const std::string bytes = answer.empty() ? "-" : host::hexText(answer);
  const std::lock_guard lock(answersMutex_);
  answers_ += link == host::Link::ngn
                  ? fmt::format("answer ngn {} {}\n", id, bytes)
                  : fmt::format("answer {} {} {} {}\n", link == host::Link::gpon ? "gpon" : "gepon", slot, id, bytes);
}

// An answer may stand behind the line that asked: that is the one line end.
static bool isTold(std::string_view directive) {
  const std::size_t confirm = directive.rfind("\nconfirm ");
  return std::ranges::none_of(directive.substr(0, confirm), [](char letter) { return static_cast<u8>(letter) < ' '; });
}

// A player's answers are there ahead of the directive that asks for them.
void SessionRecord::note(std::string_view directive, const scenario::Outcome& outcome) {
  host::runJobs();
  std::vector<std::string> events;
  host::told([&](host::Observer&) { events = recorder_.take(); });
  std::string text;
  {
    const std::lock_guard lock(answersMutex_);
    text.swap(answers_);
  }
  if (!wanted_) return;
  // A line of a file can't hold it, and what came of it would be read as the one's ahead.
  if (directive.starts_with('#')) {
    append(fmt::format("{}\n", directive));
    return;
  }
  if (!isTold(directive)) {
    append(fmt::format("# What can't be told in a scenario: {}\n", printable(directive)));
    return;
  }
  text += fmt::format("{}\n", directive);
  const std::vector<std::string> record = scenario::recordOf(std::move(events), outcome);
  for (const std::string& line : record) text += line + '\n';
  if (record.empty()) text += fmt::format("{}\n", scenario::kNothing);
  if (append(text)) ++directives_;
  if (directive.starts_with("cli")) lastLine_ = directive;
}

}  // namespace msand
