#include "platform_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "capture_file.h"
#include "change_words.h"
#include "flow_words.h"
#include "get_words.h"
#include "host/chassis.h"
#include "host/links.h"
#include "line_words.h"
#include "note.h"
#include "operator.h"
#include "plot_words.h"
#include "port_words.h"
#include "running_configuration.h"
#include "session_record.h"

namespace msand {

namespace {

// --- what the words do

int failed(const PlatformCall& call, const std::string& why) {
  call.text += why + "\r\n";
  return -1;
}

int showRunning(const PlatformCall& call) {
  std::string missing;
  call.text += printRunning(call.node.node(), missing);
  return missing.empty() ? 0 : failed(call, fmt::format("incomplete: {}", missing));
}

int showMetrics(const PlatformCall& call) {
  if (call.node.metrics() == nullptr) return failed(call, "nothing is counted: the configuration names no file for it");
  for (const char letter : call.node.metrics()()) {
    if (letter == '\n') call.text += '\r';
    call.text += letter;
  }
  return 0;
}

struct WriteWords {
  bool force = false, check = true;
  std::string comment;
};

int write(const PlatformCall& call, const WriteWords& words) {
  Startup& startup = call.node.startup();
  try {
    std::string text;
    const std::string told = startup.write(call.node.node(), words.force, words.comment, text);
    call.text += fmt::format("written to {}\r\n", startup.path());
    if (!told.empty()) call.text += told + "\r\n";
    if (!words.check) return 0;
    const auto lost = call.node.changes().lost(text);
    for (const std::string& line : lost) call.text += fmt::format("will not come back: {}\r\n", printable(line));
    if (!lost.empty()) return -1;
  } catch (const ChannelError& error) {
    return failed(call, fmt::format("not checked: {}", error.what()));
  } catch (const std::exception& error) {
    complain(fmt::format("not written: {}", error.what()));
    return failed(call, fmt::format("not written: {}", error.what()));
  }
  return 0;
}

const char* word(host::CardState state) {
  if (state == host::CardState::up) return "up";
  return state == host::CardState::present ? "present" : "down";
}

int showChassis(const PlatformCall& call) {
  call.text += fmt::format("{:<5} {:<12} {:<8} {:>5}\r\n", "slot", "card", "state", "ports");
  for (u16 slot = 1; slot <= host::kSlots; ++slot) {
    if (!host::holdsServiceCard(slot)) continue;
    const host::CardType* type = host::authorisedType(slot);
    if (type == nullptr)
      call.text += fmt::format("{:<5} -\r\n", slot);
    else
      call.text +=
          fmt::format("{:<5} {:<12} {:<8} {:>5}\r\n", slot, type->name, word(host::cardState(slot)), type->ports);
  }
  return 0;
}

// The card stands in the slot without its software, or does not.
void putCard(u16 slot, host::CardState state) {
  const Turn turn(Turn::Gate::ofCall);
  const Doing doing([&] { return fmt::format("card {} {}", slot, word(state)); });
  host::setCardState(slot, state);
}

int takeCard(const PlatformCall& call, u16 slot) {
  putCard(slot, host::CardState::absent);
  if (host::authorisedType(slot) == nullptr) return 0;
  return doInTurn([&] { return fmt::format("card {} unauth", slot); },
                  [&] { return call.node.node().unauthorise(slot); });
}

int setCard(const PlatformCall& call, u16 slot, const std::string& name) {
  if (!host::holdsServiceCard(slot)) return failed(call, fmt::format("slot {} holds no service card", slot));
  if (name == "none") return takeCard(call, slot);
  const host::CardType* type = host::findCardType(name);
  if (type == nullptr) return failed(call, fmt::format("there is no card type {}", name));
  if (type == host::authorisedType(slot)) return 0;
  const int taken = takeCard(call, slot);
  if (taken != 0) return taken;
  return doInTurn([&] { return fmt::format("card {} auth {}", slot, type->name); },
                  [&] { return call.node.node().authorise(slot, *type); });
}

int setState(const PlatformCall& call, u16 slot, const std::string& state) {
  if (!host::holdsServiceCard(slot)) return failed(call, fmt::format("slot {} holds no service card", slot));
  if (state != "down" && host::authorisedType(slot) == nullptr)
    return failed(call, fmt::format("slot {} has no card type", slot));
  if (state == "up")
    return std::min(
        doInTurn([&] { return fmt::format("card {} up", slot); }, [&] { return call.node.node().cardUp(slot); }), 0);
  putCard(slot, state == "present" ? host::CardState::present : host::CardState::absent);
  return 0;
}

char small(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + ('a' - 'A')) : letter; }

bool has(std::string_view text, std::string_view word) {
  const auto same = [](char a, char b) { return small(a) == small(b); };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

bool speaksOf(const host::InstalledCommand& command, std::string_view word) {
  return has(command.syntax, word) || has(command.help, word) ||
         std::ranges::any_of(host::parameterHelp(command.syntax),
                             [&](const host::ParameterHelp& parameter) { return has(parameter.help, word); });
}

void list(const PlatformCall& call, const host::InstalledCommand& command) {
  call.text += fmt::format("  {:<40} {}\r\n", command.syntax, command.help);
}

int findCommands(const PlatformCall& call, const std::vector<std::string>& words) {
  const Level level = call.terminal.level;
  bool found = false;
  for (const host::InstalledCommand& command : host::installedCommands()) {
    if (command.node != platformNode(level) && command.node != moduleNode(level)) continue;
    if (!std::ranges::all_of(words, [&](const std::string& word) { return speaksOf(command, word); })) continue;
    list(call, command);
    found = true;
  }
  return found ? 0 : failed(call, "no command of this level, and no help text, has all of these words");
}

int listCommands(const PlatformCall& call, bool all) {
  const Level level = call.terminal.level;
  if (!all)
    call.text +=
        "? shows what may stand next, Tab completes. A keyword may be shortened as long as it is clear which one it "
        "is;\r\n"
        "the words below are written out. \"help all\" lists every command of this level, \"help WORD ...\" those "
        "that\r\n"
        "have all of the words in their syntax or their help.\r\n";
  for (const host::InstalledCommand& command : host::installedCommands())
    if (command.node == platformNode(level) || (all && command.node == moduleNode(level))) list(call, command);
  return 0;
}

// --- their handlers: read the arguments, leave the action

u16 slotOf(const char* digits) {
  const std::string_view text = digits;
  u16 slot = 0;
  std::from_chars(text.data(), text.data() + text.size(), slot);
  return slot;
}

int helpCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  const std::vector<std::string> words(argv, argv + argc);
  const bool all = argc == 1 && words.front() == "all";
  if (argc != 0 && !all) return leave(vty, [words](const PlatformCall& call) { return findCommands(call, words); });
  return leave(vty, [all](const PlatformCall& call) { return listCommands(call, all); });
}

int debugCommand(const CommandElement*, Vty* vty, int, char**) {
  return leave(vty, [](const PlatformCall& call) { return call.terminal.level = Level::debug, 0; });
}

int exitCommand(const CommandElement*, Vty* vty, int, char**) {
  return leave(vty, [](const PlatformCall& call) {
    call.terminal.ended = call.terminal.level == Level::configuration;
    call.terminal.level = Level::configuration;
    return 0;
  });
}

int showRunningCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, showRunning); }
int showMetricsCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, showMetrics); }
int writeCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  WriteWords words;
  for (int i = 0; i < argc; ++i) {
    const std::string_view word = argv[i];
    if (word == "comment") {
      words.comment = printable(fmt::format("{}", fmt::join(argv + i + 1, argv + argc, " ")));
      if (words.comment.size() > 1 && words.comment.front() == '"' && words.comment.back() == '"')
        words.comment = words.comment.substr(1, words.comment.size() - 2);
      break;
    }
    if (word == "force")
      words.force = true;
    else if (word == "no-check" || word == "--no-check")
      words.check = false;
    else
      return leave(vty,
                   [](const PlatformCall& call) { return failed(call, "force, no-check, or comment and a text"); });
  }
  return leave(vty, [words](const PlatformCall& call) { return write(call, words); });
}
int showChassisCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, showChassis); }

int answerCommand(const CommandElement*, Vty* vty, int, char** argv) {
  const std::string_view word = argv[0];
  const Answers answers = word == "yes" ? Answers::yes : word == "no" ? Answers::no : Answers::asked;
  return leave(vty, [answers](const PlatformCall& call) { return call.terminal.answers = answers, 0; });
}

int traceCommand(const CommandElement*, Vty* vty, int, char** argv) {
  const std::string_view word = argv[0];
  const TraceForm form = word == "on"     ? TraceForm::brief
                         : word == "full" ? TraceForm::full
                         : word == "hex"  ? TraceForm::hex
                                          : TraceForm::off;
  return leave(vty, [form](const PlatformCall& call) { return call.terminal.trace = form, 0; });
}

int traceFileCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty, [name = std::string(argc == 0 ? "" : argv[0])](const PlatformCall& call) {
    CaptureFile& file = captureFile();
    call.text += (name.empty() ? file.state() : name == "off" ? file.end() : file.begin(name)) + "\r\n";
    return 0;
  });
}

int recordCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty, [name = std::string(argc == 0 ? "" : argv[0])](const PlatformCall& call) {
    SessionRecord& record = sessionRecord();
    call.text += (name.empty()    ? record.state()
                  : name == "off" ? record.end()
                                  : record.begin(name, call.node.node())) +
                 "\r\n";
    return 0;
  });
}

int slotCardCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [slot = slotOf(argv[0]), name = std::string(argv[1])](const PlatformCall& call) {
    return setCard(call, slot, name);
  });
}

int delay(u16 slot, const char* milliseconds) {
  u32 number = 0;
  std::from_chars(milliseconds, milliseconds + std::char_traits<char>::length(milliseconds), number);
  host::delayAnswers(slot, number);
  return 0;
}

int slotDelayCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [slot = slotOf(argv[0]), time = std::string(argv[1])](const PlatformCall&) {
    return delay(slot, time.c_str());
  });
}

int voiceDelayCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [time = std::string(argv[0])](const PlatformCall&) { return delay(0, time.c_str()); });
}

int slotStateCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [slot = slotOf(argv[0]), state = std::string(argv[1])](const PlatformCall& call) {
    return setState(call, slot, state);
  });
}

// clang-format off
const CommandElement kEverywhere[] = {
    {"help {[all|<word>]}*8", helpCommand, "the platform's words, all commands of this level, or those with these words"},
    {"exit", exitCommand, "back to the level above; from the first level: end the session"},
    {"show running-config", showRunningCommand, "the running configuration, as commands"},
    {"show metrics", showMetricsCommand, "what the node counts, as it stands in its file of metrics"},
    {"write {[force|no-check|comment|<text>]}*40", writeCommand, "make the running configuration the startup configuration; force: also if that loses something; no-check: without a look at what a start would make of it"},
    {"answer [ask|yes|no]", answerCommand, "how questions of this session's commands are answered: by the next line, or so"},
    {"trace [on|full|hex|off]", traceCommand, "show every message that leaves the node: by name, with all fields, as bytes"},
    {"trace file {<capture>}*1", traceFileCommand, "capture every message for Wireshark, up to capture-size (64 MiB) of msand.toml; off ends it"},
    {"record {<recording>}*1", recordCommand, "record what is done at all doors, as a scenario to be played again; off ends it"},
    {"chassis show", showChassisCommand, "slots and cards"},
    {"chassis slot <1-20> card <type>", slotCardCommand, "give a slot a card type, or none"},
    {"chassis slot <1-20> delay <0-60000>", slotDelayCommand, "milliseconds that the card takes over each message"},
    {"chassis voice delay <0-60000>", voiceDelayCommand, "milliseconds that the voice side takes over each message"},
    {"chassis slot <1-20> [up|present|down]", slotStateCommand, "a card comes up, stands without its software, or goes"},
};
const CommandElement kDebug = {"debug", debugCommand, "go to the debug level"};

constexpr std::string_view kWords[] = {"help", "exit", "answer", "write", "trace", "record", "check", "compare", "confirm", "rollback", "chassis", "plot", "flow", "get", "debug"};
constexpr std::string_view kShown[] = {"running-config", "metrics", "history"};  // behind "show"
// clang-format on

bool equal(std::string_view typed, std::string_view word) {
  return std::ranges::equal(typed, word, [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
}

std::string_view takeWord(std::string_view& line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  const std::string_view taken = line.substr(0, line.find_first_of(" \t"));
  line.remove_prefix(taken.size());
  return taken;
}

}  // namespace

int leave(Vty* vty, PlatformAction action) {
  static_cast<PlatformVty*>(vty)->action = std::move(action);
  return 0;
}

void installPlatformWords(const History& history) {
  for (const Level level : {Level::configuration, Level::debug})
    for (const auto elements : {std::span<const CommandElement>(kEverywhere), lineWords(), portWords(), plotWords(),
                                flowWords(), getWords(), changeWords()})
      for (const CommandElement& element : elements) install_element(platformNode(level), &element);
  install_element(platformNode(Level::configuration), &kDebug);
  offerMessages();
  offerHistory(history);
}

bool isPlatformWord(std::string_view word) {
  constexpr std::string_view kWrite = "write";
  if (word.size() >= 2 && equal(word, kWrite.substr(0, word.size()))) return true;
  return std::ranges::any_of(kWords, [&](std::string_view ours) { return equal(word, ours); });
}

bool isPlatformLine(std::string_view line) {
  const std::string_view first = takeWord(line);
  if (isPlatformWord(first)) return true;
  const std::string_view second = takeWord(line);
  return equal(first, "show") && second.size() >= 3 && std::ranges::any_of(kShown, [&](std::string_view ours) {
           return equal(second, ours.substr(0, second.size()));
         });
}

}  // namespace msand
