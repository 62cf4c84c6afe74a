#include "interactive.h"

#include <histedit.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <memory>

#include "display.h"
#include "history_file.h"

namespace ctl {

namespace {

constexpr int kHistoryLines = 1000;

// --- signals: they are let in only while a key is waited for, so none is lost and none interrupts anything else

volatile std::sig_atomic_t interrupted = 0;
volatile std::sig_atomic_t resized = 0;
volatile std::sig_atomic_t continued = 0;
volatile std::sig_atomic_t terminated = 0;

void noteSignal(int signal) {
  if (signal == SIGINT) interrupted = 1;
  if (signal == SIGWINCH) resized = 1;
  if (signal == SIGCONT) continued = 1;
  if (signal == SIGTERM || signal == SIGHUP) terminated = 1;
}

constexpr std::array kSignals = {SIGINT, SIGWINCH, SIGCONT, SIGTERM, SIGHUP};

class EditingSignals {
 public:
  EditingSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    struct sigaction action {};
    action.sa_handler = noteSignal;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
      sigaddset(&signals, kSignals[i]);
      sigaction(kSignals[i], &action, &old_[i]);
    }
    sigprocmask(SIG_BLOCK, &signals, &oldMask_);
  }
  ~EditingSignals() {
    for (std::size_t i = 0; i < kSignals.size(); ++i) sigaction(kSignals[i], &old_[i], nullptr);
    sigprocmask(SIG_SETMASK, &oldMask_, nullptr);
  }
  const sigset_t& outside() const { return oldMask_; }

 private:
  std::array<struct sigaction, kSignals.size()> old_{};
  sigset_t oldMask_{};
};

// --- the terminal

class Editor {
 public:
  explicit Editor(Connection& connection);
  ~Editor();
  Editor(const Editor&) = delete;
  Editor& operator=(const Editor&) = delete;

  // The next line, without its end; none at the end of the session. An interrupted line comes as an empty one.
  bool readLine(std::string& line);

 private:
  static Editor& of(EditLine* edit);
  static char* promptOf(EditLine* edit);
  static int readKey(EditLine* edit, wchar_t* key);
  static unsigned char assist(EditLine* edit, int key);

  int waitForKey(wchar_t* key);
  int takeKey(wchar_t* key);
  void handleSignals();
  bool showTraces();
  std::string suggestions(std::string_view line);
  unsigned char help(std::string_view line);
  unsigned char complete(std::string_view line);

  Connection& connection_;
  std::unique_ptr<EditingSignals> signals_;
  std::string historyFile_ = historyFile();
  EditLine* edit_;
  History* history_;
  HistEvent event_{};
  std::mbstate_t decoding_{};
  std::string prompt_;
};

Editor::Editor(Connection& connection)
    : connection_(connection), edit_(el_init("msanctl", stdin, stdout, stderr)), history_(history_init()) {
  history(history_, &event_, H_SETSIZE, kHistoryLines);
  history(history_, &event_, H_SETUNIQUE, 1);
  if (!historyFile_.empty()) history(history_, &event_, H_LOAD, historyFile_.c_str());
  el_set(edit_, EL_CLIENTDATA, this);
  el_set(edit_, EL_EDITOR, "emacs");
  el_set(edit_, EL_HIST, history, history_);
  el_set(edit_, EL_PROMPT, promptOf);
  el_set(edit_, EL_GETCFN, readKey);
  // The wide form keeps these texts; the other one copies them and never gives the copies back.
  el_wset(edit_, EL_ADDFN, L"msan-assist", L"complete the word, or show what may stand next", assist);
  el_set(edit_, EL_BIND, "^I", "msan-assist", nullptr);
  el_set(edit_, EL_BIND, "?", "msan-assist", nullptr);
  el_set(edit_, EL_BIND, "^R", "em-inc-search-prev", nullptr);
}

Editor::~Editor() {
  if (!historyFile_.empty()) history(history_, &event_, H_SAVE, historyFile_.c_str());
  history_end(history_);
  el_end(edit_);
}

Editor& Editor::of(EditLine* edit) {
  Editor* editor = nullptr;
  el_get(edit, EL_CLIENTDATA, &editor);
  return *editor;
}

char* Editor::promptOf(EditLine* edit) {
  Editor& editor = of(edit);
  editor.prompt_ = editor.connection_.prompt();
  return editor.prompt_.data();
}

bool Editor::readLine(std::string& line) {
  signals_ = std::make_unique<EditingSignals>();
  int length = 0;
  const char* typed = el_gets(edit_, &length);
  signals_.reset();
  line.clear();
  if (interrupted != 0) {
    interrupted = 0;
    el_reset(edit_);
    std::fputs("^C\n", stdout);
    return true;
  }
  if (typed == nullptr || length <= 0) {
    std::fputc('\n', stdout);
    return false;
  }
  line.assign(typed, static_cast<std::size_t>(length));
  while (line.ends_with('\n') || line.ends_with('\r')) line.pop_back();
  if (line.find_first_not_of(" \t") != line.npos) history(history_, &event_, H_ENTER, line.c_str());
  return true;
}

// --- keys

int Editor::readKey(EditLine* edit, wchar_t* key) { return of(edit).waitForKey(key); }

// 1 a key, 0 the end, -1 interrupted.
int Editor::waitForKey(wchar_t* key) {
  while (true) {
    std::array<pollfd, 2> waiting = {{{STDIN_FILENO, POLLIN, 0}, {connection_.descriptor(), POLLIN, 0}}};
    const int ready = ppoll(waiting.data(), waiting.size(), nullptr, &signals_->outside());
    if (ready < 0 && errno != EINTR) return 0;
    handleSignals();
    if (interrupted != 0) return -1;
    if (terminated != 0) return 0;
    if (ready < 0) continue;
    if (waiting[1].revents != 0 && !showTraces()) return 0;
    if (waiting[0].revents == 0) continue;
    const int taken = takeKey(key);
    if (taken != -1) return taken;
  }
}

// Reads a byte: 1 with it a key is complete, 0 the end, -1 more are needed.
int Editor::takeKey(wchar_t* key) {
  char byte = 0;
  const ssize_t got = read(STDIN_FILENO, &byte, 1);
  if (got < 0 && (errno == EINTR || errno == EAGAIN)) return -1;
  if (got <= 0) return 0;
  const std::size_t used = std::mbrtowc(key, &byte, 1, &decoding_);
  if (used == static_cast<std::size_t>(-2)) return -1;
  if (used == static_cast<std::size_t>(-1)) {
    decoding_ = {};
    return -1;
  }
  return 1;
}

void Editor::handleSignals() {
  if (std::exchange(resized, 0) != 0) el_resize(edit_);
  if (std::exchange(continued, 0) == 0) return;
  el_set(edit_, EL_PREP_TERM, 1);
  el_set(edit_, EL_REFRESH);
}

// Shows what the node sent on its own, above the line that is being typed. False if it has ended the session.
bool Editor::showTraces() try {
  std::string lines;
  while (const auto frame = connection_.receiveReady())
    if (frame->kind == wire::Kind::trace) lines += forDisplay(frame->payload, true) + "\r\n";
  if (!lines.empty()) {
    std::printf("\r\033[K%s", lines.c_str());
    std::fflush(stdout);
    el_set(edit_, EL_REFRESH);
  }
  return !connection_.ended();
} catch (const ConnectionError&) {
  return false;
}

// --- Tab and ?

unsigned char Editor::assist(EditLine* edit, int key) {
  Editor& editor = of(edit);
  const LineInfo* info = el_line(edit);
  const std::string line(info->buffer, info->cursor);
  if (key == '?' && insideQuotes(line)) return el_insertstr(edit, "?") == 0 ? CC_REFRESH : CC_ERROR;
  try {
    return key == '?' ? editor.help(line) : editor.complete(line);
  } catch (const ConnectionError&) {
    return CC_EOF;
  }
}

std::string Editor::suggestions(std::string_view line) {
  if (line.size() + 1 >= wire::kMaxRequest) return {};
  connection_.send(wire::Kind::ask, line);
  while (const auto frame = connection_.receive()) {
    if (frame->kind == wire::Kind::suggestions) return std::string(frame->payload);
    if (frame->kind == wire::Kind::trace) std::printf("\r\n%s", forDisplay(frame->payload, true).c_str());
  }
  throw ConnectionError("the node has ended the session: " + connection_.farewell());
}

unsigned char Editor::help(std::string_view line) {
  const std::string rows = suggestions(line);
  const std::string table = helpTable(readSuggestions(rows));
  std::printf("?\r\n%s", table.empty() ? "  nothing that is known\r\n" : table.c_str());
  std::fflush(stdout);
  return CC_REDISPLAY;
}

unsigned char Editor::complete(std::string_view line) {
  const std::string rows = suggestions(line);
  const auto all = readSuggestions(rows);
  const std::string added = completion(line, all);
  if (!added.empty()) return el_insertstr(edit_, added.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
  if (all.empty()) return CC_ERROR;
  std::printf("\r\n%s", helpTable(all).c_str());
  std::fflush(stdout);
  return CC_REDISPLAY;
}

// --- lines

// Waits for what the node says next, and shows behind a second that it does. False: the user waits no longer.
bool waitForNode(const Connection& connection) {
  const EditingSignals signals;
  pollfd waiting{connection.descriptor(), POLLIN, 0};
  for (int seconds = 0;; ++seconds) {
    const timespec second{1, 0};
    const int ready = ppoll(&waiting, 1, &second, &signals.outside());
    const bool stops = std::exchange(interrupted, 0) != 0;
    if (seconds != 0 || stops) std::fputs("\r\033[K", stdout);
    if (stops || ready > 0 || terminated != 0) return !stops;
    std::printf("... %d s; Control-C waits no longer", seconds + 1);
    std::fflush(stdout);
  }
}

std::size_t terminalWidth() {
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

// Runs a line and shows what comes of it. False at the end of the session.
bool runLine(Connection& connection, const std::string& line) {
  if (line.size() >= wire::kMaxRequest) {
    std::puts("% line too long");
    return true;
  }
  connection.tellScreen();
  connection.send(wire::Kind::line, line);
  char last = '\0';  // of what was shown
  while (true) {
    const auto frame = connection.receiveReady();
    if (!frame && (connection.ended() || terminated != 0)) return false;
    if (!frame && waitForNode(connection)) continue;
    if (!frame) {
      connection.giveUp();
      std::puts("% no longer waited for; the node finishes it");
      return true;
    }
    if (frame->kind == wire::Kind::trace) std::printf("%s\n", forDisplay(frame->payload, true).c_str());
    if (frame->kind == wire::Kind::text) {
      const std::string shown = forDisplay(frame->payload, true);
      std::fputs(shown.c_str(), stdout);
      if (!shown.empty()) last = shown.back();
    }
    if (frame->kind != wire::Kind::result) continue;
    if (last != '\0' && last != '\n') std::fputc('\n', stdout);
    const auto result = wire::readResult(frame->payload);
    if (!result) throw ConnectionError("what answers is no msand");
    if (notUnderstood(*result)) std::puts(pointer(connection.prompt(), line, *result, terminalWidth()).c_str());
    const bool asks = result->outcome == wire::kAsks;  // the prompt is the question
    if (!result->good() && !asks && (last == '\0' || result->outcome != 0))
      std::printf("%% %s\n", reasonOf(*result).c_str());
    return true;
  }
}

}  // namespace

bool runInteractive(Connection& connection) {
  umask(077);  // for the history and its folders
  std::puts("? shows what may stand next, Tab completes, \"help\" lists the node's own words, \"exit\" leaves.");
  connection.awaitPrompt();
  Editor editor(connection);
  std::string line;
  while (!connection.ended() && editor.readLine(line))
    if (line.find_first_not_of(" \t") != line.npos && !runLine(connection, line)) break;
  if (connection.farewell().empty()) return true;
  std::printf("The node has ended the session: %s.\n", connection.farewell().c_str());
  return false;
}

}  // namespace ctl
