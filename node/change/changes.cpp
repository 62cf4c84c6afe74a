#include "changes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <unordered_set>
#include <utility>

#include "host/jobs.h"
#include "host/links.h"
#include "host/terminal.h"
#include "messages/changed.h"
#include "note.h"
#include "platform/cards.h"
#include "platform/ngn.h"
#include "platform/voice_mode.h"
#include "running_configuration.h"
#include "session_record.h"

namespace msand {

namespace {

// A line that fails and is printed again, as those of profiles that can't be changed, is no loss.
void refuseLoss(const Shadow& shadow, const std::string& printed) {
  std::unordered_set<std::string_view> kept;
  for (const std::string_view line : linesOf(printed)) kept.insert(line);
  std::size_t lost = 0;
  const Shadow::Failed* first = nullptr;
  for (const Shadow::Failed& one : shadow.failed()) {
    if (const auto lines = linesOf(std::string_view(one.line)); lines.empty() || kept.contains(lines.front())) continue;
    if (first == nullptr) first = &one;
    ++lost;
  }
  if (first == nullptr) return;
  throw RollbackError(fmt::format("{} of its lines would be refused, the first is {}; the node is as it was", lost,
                                  printable(first->told)));
}

void send(const messages::StateMessage& message) {
  const void* const bytes = message.bytes.data();
  const auto length = static_cast<u32>(message.bytes.size());
  switch (message.road) {
    case messages::Road::gpon:
      dm_MakeCmdPkt_GPON(message.slot, message.id, bytes, length);
      return;
    case messages::Road::gepon:
      dm_MakeCmdPkt_GEPON(message.slot, message.id, bytes, length);
      return;
    case messages::Road::epon:
      dm_MakeCmdPkt_EPON(message.slot, message.id, bytes, length);
      return;
    default:
      writeNgnCmd(message.id, 0, bytes, length, 0, 0, 0, 0);
  }
}

// What a change of the module asks of the platform, held back as long as it lives.
struct Held {
  Held() {
    host::holdJobs(true);
    host::runJobs();
    host::holdLinks(true);
  }
  ~Held() {
    host::holdLinks(false);
    host::holdJobs(false);
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
};

std::string told(const std::vector<messages::StateMessage>& sent, const std::vector<messages::Forgotten>& forgotten) {
  std::map<u16, u32> slots;
  for (const messages::StateMessage& message : sent) ++slots[message.slot];
  std::string text;
  for (const auto& [slot, count] : slots)
    text += fmt::format("{}: {} message{}\r\n", slot == 0 ? "the voice side" : fmt::format("slot {}", slot), count,
                        count == 1 ? "" : "s");
  if (sent.empty()) text += "no message was to be sent\r\n";
  for (const messages::Forgotten& one : forgotten)
    text += fmt::format(
        "slot {}: of what message {} has told the card, something is gone; the card learns so when it comes up "
        "again\r\n",
        one.slot, one.id);
  return text;
}

}  // namespace

std::shared_ptr<Shadow> Changes::shadow() const {
  return std::make_shared<Shadow>(snapshotOf(node_, &cards_), node_.modulePath());
}

Changes::Checked Changes::outcomeOf(Shadow& shadow) {
  return {.lines = shadow.lines(),
          .refusedLines = shadow.refused(),
          .refused = {},
          .sent = shadow.sent(),
          .record = shadow.record()};
}

Changes::Checked Changes::check(std::string_view text) const {
  std::vector<Shadow::Line> lines;
  for (u32 number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (!line.starts_with('!') && line.find_first_not_of(" \t") != line.npos) lines.push_back({number, line});
  }
  const auto dark = shadow();
  auto refused = dark->runAll(lines);
  Checked checked = outcomeOf(*dark);
  checked.refused = std::move(refused);
  return checked;
}

std::string Changes::printed(const std::string* configuration) const {
  Snapshot snapshot = snapshotOf(node_, nullptr);
  if (configuration != nullptr) snapshot.configuration = *configuration;
  return Shadow(snapshot, node_.modulePath()).configuration();
}

std::vector<std::string> Changes::lost(const std::string& configuration) const {
  const std::string back = printed(&configuration);
  std::unordered_multiset<std::string_view> there;
  for (const std::string_view line : linesOf(back)) there.insert(line);
  std::vector<std::string> lost;
  for (const std::string_view line : linesOf(std::string_view(configuration))) {
    if (const auto found = there.find(line); found != there.end())
      there.erase(found);
    else
      lost.emplace_back(line);
  }
  return lost;
}

// True if the module prints then what it should; `behind` is done in that case. All under the gate.
template <class Behind>
bool Changes::load(const std::string& configuration, const std::string& expected, Behind behind) {
  bool good = false;
  try {
    node_.restart(
        configuration, [](const node::FailedLine&) {},
        [&] {
          loaded_();
          Vty vty;
          good = host::runShowrun(vty) == 0 && vty.text == expected;
          if (good) behind();
        });
  } catch (const std::exception& error) {
    // There is no module any more. The next start has the startup configuration.
    complain(fmt::format("the module can't be loaded any more, msand ends: {}", error.what()));
    std::_Exit(1);
  }
  return good;
}

std::string Changes::takeOn(const std::string& configuration) {
  const Turn turn(Turn::Gate::ofCall);
  const Snapshot old = snapshotOf(node_, nullptr);
  Snapshot next = old;
  next.configuration = configuration;
  Shadow before(old, node_.modulePath());
  Shadow after(next, node_.modulePath());
  const std::string expected = after.configuration();
  refuseLoss(after, expected);
  const auto changed = messages::changedMessages(before.state(), after.state());
  if (sessionRecord().wanted()) msand::note("a rollback ends the record: " + sessionRecord().end());

  const Held held;
  const bool done = load(configuration, expected, [&] {
    host::holdLinks(false);
    const auto [mode, flag] = after.voiceMode();
    if (before.voiceMode()[0] != mode) set_voice_module_mode(before.voiceMode()[0], mode, flag);
    for (const messages::StateMessage& message : changed) send(message);
  });
  if (done) return told(changed, messages::forgottenBy(before.state(), after.state()));
  const bool back = load(old.configuration, before.configuration(), [] {});
  throw RollbackError(back ? "it has failed on the way; the node has the old configuration again"
                           : "it has failed on the way, and so has the way back: look at show running-config");
}

void Changes::confirmWithin(std::chrono::seconds time) {
  if (later_.post == nullptr) throw std::invalid_argument("a change can't wait here");
  std::string missing;
  const std::string configuration = printRunning(node_, missing);
  if (!missing.empty()) throw std::runtime_error("incomplete: " + missing);
  Snapshot back = snapshotOf(node_, nullptr);
  back.configuration = configuration;
  Shadow shadow(back, node_.modulePath());
  try {
    refuseLoss(shadow, shadow.configuration());
  } catch (const RollbackError& error) {
    throw std::runtime_error(fmt::format("there would be no way back: {}", error.what()));
  }
  pending_.begin(configuration, time, [this] { later_.post([this] { expire(); }); });
  msand::note(fmt::format("a change waits {} s to be confirmed", time.count()));
}

std::string Changes::takeBack() {
  const std::string configuration = pending_.configuration();
  if (configuration.empty()) throw std::invalid_argument("no change waits to be confirmed");
  std::string text = takeOn(configuration);
  pending_.done();
  return text;
}

// The time to confirm a change is over.
void Changes::expire() {
  if (!waits()) return;
  std::string outcome = "a change was not confirmed: the node has the configuration ahead of it again";
  try {
    takeBack();
  } catch (const std::exception& error) {
    outcome = fmt::format("a change was not confirmed, and can't be taken back: {}", error.what());
  }
  complain(outcome);
  later_.announce(outcome);
}

}  // namespace msand
