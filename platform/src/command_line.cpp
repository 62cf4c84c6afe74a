#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>

#include "command_line_misunderstanding.h"
#include "command_line_suggestions.h"
#include "command_line_table.h"
#include "host/terminal.h"

namespace {

using command_line::Command;
using command_line::Node;
using command_line::Reading;

struct InstalledModule {
  i32 id = 0;
  int (*showrun)(Vty*) = nullptr;
};

// What the modules have installed. Lines are read under the shared lock; handlers run without it.
struct Installed {
  std::shared_mutex mutex;
  std::map<int, Node> nodes;
  std::vector<std::pair<int, u32>> order;  // node and number of each command, as they came
  std::vector<InstalledModule> modules;
  std::vector<command_line::OfferSource> offers;

  const Node* find(int node) const {
    const auto found = nodes.find(node);
    return found == nodes.end() ? nullptr : &found->second;
  }
};

Installed& installed() {
  static Installed commands;
  return commands;
}

std::atomic<bool> fastMode = false;

// The terminal of the handler that runs on this thread, as long as it lives.
class Running {
 public:
  explicit Running(Vty& vty) : outer_(std::exchange(innermost(), &vty)) {}
  ~Running() { innermost() = outer_; }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  static Vty*& innermost() {
    thread_local Vty* vty = nullptr;
    return vty;
  }

 private:
  Vty* outer_;
};

// The thread's memory for reading lines. A handler may run a line in its turn, whose reading then has its own.
class BorrowedReading {
 public:
  BorrowedReading() : reading_(spare() ? std::move(spare()) : std::make_unique<Reading>()) {}
  ~BorrowedReading() { spare() = std::move(reading_); }
  BorrowedReading(const BorrowedReading&) = delete;
  BorrowedReading& operator=(const BorrowedReading&) = delete;
  Reading& operator*() { return *reading_; }

 private:
  static std::unique_ptr<Reading>& spare() {
    thread_local std::unique_ptr<Reading> kept;
    return kept;
  }
  std::unique_ptr<Reading> reading_;
};

bool runsNothing(std::string_view line) {
  const auto begin = std::ranges::find_if_not(line, command_line::isBlank);
  return begin == line.end() || *begin == '!';
}

}  // namespace

int install_element(int node, const CommandElement* element) {
  if (!element || !element->syntax || !element->handler) return -1;
  auto syntax = command_line::readSyntax(element->syntax);
  if (!syntax) return -1;
  Installed& commands = installed();
  const std::unique_lock lock(commands.mutex);
  Node& at = commands.nodes[node];
  if (!at.add({element, element->help ? element->help : "", std::move(*syntax)})) return -1;
  commands.order.emplace_back(node, static_cast<u32>(at.size() - 1));
  return 0;
}

void install_offers(const char* keyword, CommandOfferList* list, const void* context) {
  Installed& commands = installed();
  const std::unique_lock lock(commands.mutex);
  commands.offers.push_back({keyword, list, context});
}

void offer_to_cli(CommandOffers* to, i32 id, const char* name, u32 length) {
  to->things.push_back({id, std::string(name, length)});
}

void vty_out(Vty* vty, const char* format, ...) {
  if (!vty) return;
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  if (length >= 0 && static_cast<std::size_t>(length) < sizeof text) {
    vty->text.append(text, static_cast<std::size_t>(length));
  } else if (length >= 0) {
    const std::size_t before = vty->text.size();
    const std::size_t size = static_cast<std::size_t>(length);
    vty->text.resize(before + size);  // the NUL goes to the string's own
    std::vsnprintf(vty->text.data() + before, size + 1, format, again);
  }
  va_end(again);
}

// The text up to its last line end is print like any other; the rest waits for an answer.
void vty_direct_out(Vty* vty, const char* text) {
  const std::string_view all = text;
  const std::size_t asks = all.rfind('\n') == all.npos ? 0 : all.rfind('\n') + 1;
  vty->text += all.substr(0, asks);
  vty->question += all.substr(asks);
}

void vty_confirm(Vty* vty, int (*yes)(Vty*)) { vty->yes = yes; }

void vty_set_node(Vty* vty, int node) { vty->node = node; }

int cli_run_one_defun_func(const char* text, u32 length) {
  std::string_view line(text, length);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == ' ')) line.remove_suffix(1);
  Vty* outer = Running::innermost();
  Vty inner;
  const host::LineOutcome outcome = host::runLine(inner, CONFIG_NODE, line);
  if (outer != nullptr) outer->text += inner.text;
  return outcome.result == host::LineResult::ran ? outcome.returned : -1;
}

int cl_install_module_by_mod_id(i32 module, int (*install)(), int (*showrun)(Vty*)) {
  Installed& commands = installed();
  {
    const std::unique_lock lock(commands.mutex);
    const auto isModule = [module](const InstalledModule& known) { return known.id == module; };
    const auto known = std::ranges::find_if(commands.modules, isModule);
    if (known == commands.modules.end()) {
      commands.modules.push_back({module, showrun});
    } else {
      known->showrun = showrun;
    }
  }
  return install ? install() : 0;
}

int is_cliFastMode() { return fastMode ? 1 : 0; }

namespace host {

std::string_view wordsOf(LineResult result) {
  switch (result) {
    case LineResult::unknown:
      return "unknown command";
    case LineResult::incomplete:
      return "incomplete command";
    case LineResult::ambiguous:
      return "ambiguous command";
    case LineResult::ran:
      break;
  }
  return "";
}

LineOutcome runLine(Vty& vty, int node, std::string_view line) {
  if (line.size() > command_line::kMaxLine) return {LineResult::unknown};
  if (runsNothing(line)) return {};
  BorrowedReading borrowed;
  Reading& reading = *borrowed;
  const CommandElement* element = nullptr;
  std::span<char*> arguments;
  {
    Installed& commands = installed();
    const std::shared_lock lock(commands.mutex);
    const Node* at = commands.find(node);
    if (!at || !reading.split(line, at->longestLine())) return {LineResult::unknown};
    reading.take(*at, reading.words().size());
    const command_line::Step* chosen = nullptr;
    const LineResult result = reading.decide(*at, chosen);
    if (result != LineResult::ran) return {result};
    element = at->command(chosen->command).element;
    arguments = reading.arguments(*at, *chosen);
  }
  const Running running(vty);
  vty.node = node;
  return {LineResult::ran, element->handler(element, &vty, static_cast<int>(arguments.size()), arguments.data())};
}

Misunderstanding misunderstanding(int node, std::string_view line) {
  BorrowedReading reading;
  Installed& commands = installed();
  const std::shared_lock lock(commands.mutex);
  const Node* at = commands.find(node);
  return at ? command_line::explain(*at, *reading, line) : Misunderstanding{};
}

int answerQuestion(Vty& vty, bool yes) {
  const auto action = std::exchange(vty.yes, nullptr);
  vty.question.clear();
  if (!yes || action == nullptr) return 0;
  const Running running(vty);
  return action(&vty);
}

std::vector<Suggestion> suggestions(int node, std::string_view line) {
  BorrowedReading reading;
  Installed& commands = installed();
  const std::shared_lock lock(commands.mutex);
  const Node* at = commands.find(node);
  return at ? command_line::suggest(*at, *reading, line, commands.offers) : std::vector<Suggestion>{};
}

std::vector<InstalledCommand> installedCommands() {
  Installed& commands = installed();
  const std::shared_lock lock(commands.mutex);
  std::vector<InstalledCommand> list;
  list.reserve(commands.order.size());
  for (const auto& [node, number] : commands.order) {
    const Command& command = commands.find(node)->command(number);
    list.push_back({node, command.syntax.text, command.help, command.element->handler});
  }
  return list;
}

bool addToHelp(std::string_view syntax, std::string_view text) {
  Installed& commands = installed();
  const std::unique_lock lock(commands.mutex);
  bool added = false;
  for (auto& [number, node] : commands.nodes) added = node.addToHelp(syntax, text) || added;
  return added;
}

int runShowrun(Vty& vty) {
  std::vector<InstalledModule> modules;
  {
    Installed& commands = installed();
    const std::shared_lock lock(commands.mutex);
    modules = commands.modules;
  }
  int result = 0;
  for (const InstalledModule& module : modules) {
    if (module.showrun) result = module.showrun(&vty);
  }
  return result;
}

void setFastMode(bool on) { fastMode = on; }

void forgetCommands() {
  Installed& commands = installed();
  const std::unique_lock lock(commands.mutex);
  commands.nodes.clear();
  commands.order.clear();
  commands.modules.clear();
  commands.offers.clear();
}

}  // namespace host
