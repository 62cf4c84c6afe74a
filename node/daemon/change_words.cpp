#include "change_words.h"

#include <fmt/format.h>

#include <charconv>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "difference.h"
#include "files.h"
#include "host/terminal.h"
#include "note.h"
#include "operator.h"
#include "platform_words.h"

namespace msand {

namespace {

constexpr std::size_t kMaxFile = 16 << 20;
constexpr std::size_t kMostOpen = 8;  // shadows of terminals: each is a process with a node in it

int refuse(const PlatformCall& call, const std::string& why) {
  call.text += why + "\r\n";
  return -1;
}

// "3 messages"
std::string counted(u64 number, std::string_view what) {
  return fmt::format("{} {}{}", number, what, number == 1 ? "" : "s");
}

std::string withReturns(std::string_view text) {
  std::string all;
  for (const char letter : text) {
    if (letter == '\n') all += '\r';
    all += letter;
  }
  return all;
}

// --- check

// What would come of the lines, and go out. 0: all lines would be taken.
int tellOutcome(const PlatformCall& call, const Changes::Checked& checked, std::string_view what) {
  const int code = checked.refusedLines == 0 ? 0 : -1;
  if (what == "record") {
    call.text += withReturns(checked.record);
    return code;
  }
  if (what == "messages") {
    for (const std::string_view line : linesOf(std::string_view(checked.record))) {
      const std::string_view word = line.substr(0, line.find_first_of("? "));
      if (word == "gpon" || word == "gepon" || word == "epon" || word == "ngn")
        call.text += fmt::format("{}\r\n", line);
    }
  }
  call.text +=
      fmt::format("{}, {}\r\n", counted(checked.lines, "line"),
                  code == 0 ? "all would be taken" : fmt::format("{} would not be taken", checked.refusedLines));
  for (const Shadow::Sent& one : checked.sent)
    call.text += fmt::format("{}: {}, {}\r\n", one.slot == 0 ? "the voice side" : fmt::format("slot {}", one.slot),
                             counted(one.messages, "message"), counted(one.bytes, "byte"));
  if (checked.sent.empty()) call.text += "no message would be sent\r\n";
  return code;
}

int openShadow(const PlatformCall& call) {
  static std::vector<std::weak_ptr<Shadow>> open;
  std::erase_if(open, [](const auto& shadow) { return shadow.expired(); });
  if (open.size() >= kMostOpen)
    return refuse(call, fmt::format("{} terminals try lines in the dark already", kMostOpen));
  call.terminal.shadow = call.node.changes().shadow();
  open.push_back(call.terminal.shadow);
  call.text += "lines are tried in the dark from now on: \"check close\" ends it\r\n";
  return 0;
}

int closeShadow(const PlatformCall& call, std::string_view what) {
  const auto shadow = std::exchange(call.terminal.shadow, nullptr);
  if (shadow == nullptr) return refuse(call, "nothing is tried here: \"check open\" begins it");
  return tellOutcome(call, Changes::outcomeOf(*shadow), what);
}

std::string whyOf(const wire::Result& result, const std::string& printed) {
  if (result.outcome == wire::kAsks) return "asks, and gets no answer";
  if (result.outcome == 0) {
    const std::string text = printable(printed);
    return fmt::format("{} ({})", text.empty() ? "failed" : text, result.returned);
  }
  const std::string words(host::wordsOf(static_cast<host::LineResult>(result.outcome)));
  return words + (result.expected.empty() ? "" : ", " + result.expected + " expected");
}

// A file that the terminal has handed over, or one of the node's, seen from the folder of the startup configuration.
std::string readNamed(const PlatformCall& call, const std::string& name) {
  if (const auto told = call.terminal.files.find(name); told != call.terminal.files.end()) return told->second;
  const auto folder = std::filesystem::path(call.node.startup().path()).parent_path();
  return readFile((folder / name).string(), kMaxFile);
}

int checkFile(const PlatformCall& call, const std::string& name, std::string_view what) {
  const Changes::Checked checked = call.node.changes().check(readNamed(call, name));
  for (const Shadow::Refused& one : checked.refused) {
    if (what == "record") break;
    const std::string column = one.result.outcome == 0 ? "" : fmt::format(":{}", one.result.at + 1);
    call.text +=
        fmt::format("{}:{}{}: {}: {}\r\n", name, one.number, column, whyOf(one.result, one.text), printable(one.line));
  }
  return tellOutcome(call, checked, what);
}

int checkCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty,
               [name = std::string(argv[0]), what = std::string(argc > 1 ? argv[1] : "")](const PlatformCall& call) {
                 if (name == "open") return openShadow(call);
                 return name == "close" ? closeShadow(call, what) : checkFile(call, name, what);
               });
}

// --- compare

struct Sided {
  std::string name, text;
};

Sided readSide(const PlatformCall& call, const std::vector<std::string>& words, std::size_t& at) {
  const std::string& name = words[at++];
  if (name == "running") return {name, call.node.changes().printed(nullptr)};
  std::string text;
  std::string full = name;
  if (name == "rollback") {
    if (at == words.size()) throw std::invalid_argument("a number of the history is missing behind rollback");
    full += ' ' + words[at];
    text = call.node.startup().history().text(words[at++]);
  } else if (name == "startup") {
    text = readFile(call.node.startup().path(), kMaxFile);
  } else {
    text = readNamed(call, name);
  }
  return {full, call.node.changes().printed(&text)};
}

// 0 they are the same, 1 they differ, 2 that can't be told.
int compare(const PlatformCall& call, std::vector<std::string> words) try {
  const bool json = !words.empty() && words.back() == "json";
  if (json) words.pop_back();
  std::vector<Sided> sides;
  for (std::size_t at = 0; at < words.size();) sides.push_back(readSide(call, words, at));
  if (sides.size() != 2) throw std::invalid_argument("two of running, startup, rollback NUMBER and files are compared");
  const Difference difference = differenceOf(sides[0].name, sides[0].text, sides[1].name, sides[1].text);
  call.text += json ? jsonOf(difference) : difference.unified;
  return difference.unified.empty() ? 0 : 1;
} catch (const std::exception& error) {
  refuse(call, error.what());
  return 2;
}

int compareCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty, [words = std::vector<std::string>(argv, argv + argc)](const PlatformCall& call) {
    return compare(call, words);
  });
}

// --- history

int showHistory(const PlatformCall& call) {
  const auto all = call.node.startup().history().list();
  if (all.empty()) return refuse(call, "nothing has been written");
  call.text += fmt::format("{:<8} {:<20} {:<10} {}\r\n", "rollback", "written (UTC)", "by", "comment");
  for (std::size_t i = 0; i < all.size(); ++i)
    call.text += fmt::format("{:<8} {:<20} {:<10} {}\r\n", i == 0 ? "startup" : fmt::format("{}", i), all[i].time,
                             all[i].door, all[i].comment);
  return 0;
}

int historyCommand(const CommandElement*, Vty* vty, int, char**) { return leave(vty, showHistory); }

// --- back

int rollback(const PlatformCall& call, const std::string& to) try {
  Startup& startup = call.node.startup();
  Changes& changes = call.node.changes();
  if (to.empty() && !changes.waits()) return refuse(call, "rollback startup, or rollback NUMBER of show history");
  call.text += to.empty()
                   ? changes.takeBack()
                   : changes.takeOn(to == "startup" ? readFile(startup.path(), kMaxFile) : startup.history().text(to));
  note(fmt::format("the node has taken on the configuration {}", to.empty() ? "ahead of the change" : to));
  return 0;
} catch (const std::exception& error) {
  complain(fmt::format("rollback: {}", error.what()));
  return refuse(call, error.what());
}

int rollbackCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty,
               [to = std::string(argc == 0 ? "" : argv[0])](const PlatformCall& call) { return rollback(call, to); });
}

int confirmWithin(const PlatformCall& call, std::chrono::seconds time) try {
  call.node.changes().confirmWithin(time);
  call.text +=
      fmt::format("what changes from now on is taken back in {} s unless \"confirm\" follows\r\n", time.count());
  return 0;
} catch (const std::exception& error) {
  return refuse(call, error.what());
}

int confirm(const PlatformCall& call) try {
  if (!call.node.changes().confirm()) return refuse(call, "no change waits to be confirmed");
  call.text += "the change stays\r\n";
  note("a change is confirmed");
  return 0;
} catch (const std::exception& error) {
  return refuse(call, error.what());
}

int confirmCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc == 0) return leave(vty, confirm);
  std::chrono::seconds time{0};
  const std::string_view number = argv[0];
  long count = 0;
  std::from_chars(number.data(), number.data() + number.size(), count);
  time = argc > 1 ? std::chrono::seconds(count) : std::chrono::minutes(count);
  return leave(vty, [time](const PlatformCall& call) { return confirmWithin(call, time); });
}

// clang-format off
const CommandElement kElements[] = {
    {"check <checked> {[messages|record]}*1", checkCommand, "what the lines of a file would do: which would not be taken, what would go out. open: try the lines to come; close: what came of them"},
    {"compare {[running|startup|rollback|json|<side>]}*5", compareCommand, "how two configurations differ: running, startup, rollback NUMBER, a file"},
    {"confirm", confirmCommand, "what has changed since confirm within stays"},
    {"confirm within <1-86400> {[seconds]}*1", confirmCommand, "what changes from now on is taken back in so many minutes, unless confirm follows"},
    {"rollback {[startup|<kept>]}*1", rollbackCommand, "take on the startup configuration or one of the history, and send what differs; alone: what a change that waits to be confirmed has changed"},
    {"show history", historyCommand, "the startup configurations that were written"},
};
// clang-format on

}  // namespace

std::span<const CommandElement> changeWords() { return kElements; }

static void listHistory(const void* of, CommandOffers* to) {
  i32 number = 0;
  for (const History::Written& one : static_cast<const History*>(of)->list())
    offer_to_cli(to, number++, one.time.data(), static_cast<u32>(one.time.size()));
}

void offerHistory(const History& history) { install_offers("rollback", listHistory, &history); }

bool leavesShadow(std::string_view line) {
  const auto begin = line.find_first_not_of(" \t");
  return begin != line.npos && line.substr(begin).starts_with("check close");
}

}  // namespace msand
