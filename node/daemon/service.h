#pragma once
// What stands behind the operator's socket.

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "host/terminal.h"
#include "protocol.h"

namespace msand {

enum class Level : u8 { configuration, debug };

// How a terminal is shown messages: by name on few lines, with every field, as bytes.
enum class TraceForm : u8 { off, brief, full, hex };

enum class Answers : u8 { asked, yes, no };

class Shadow;

// A terminal, as its commands see it.
struct Terminal {
  Level level = Level::configuration;
  TraceForm trace = TraceForm::off;  // of the live trace
  bool ended = false;                // the session ends behind this line
  Answers answers = Answers::asked;  // how questions of commands are answered
  std::string question;              // that a command has left open; the next line answers it
  std::string asking;                // that command's line, while a session is recorded
  int (*yes)(Vty* vty) = nullptr;
  u32 askedBy = 0;  // the module of this load
  wire::Screen screen{};
  std::map<std::string, std::string> files = {};  // that came ahead of a line, which may mean them, by name
  std::shared_ptr<Shadow> shadow = nullptr;       // lines are tried there
};

class Service {
 public:
  virtual ~Service() = default;
  virtual std::string prompt(const Terminal& terminal) const = 0;  // from any thread
  // The other calls come on the thread of the operator's door, one at a time.
  // Runs a line; what it prints is appended to `text`.
  virtual wire::Result run(Terminal& terminal, std::string_view line, std::string& text) = 0;
  // The rows of S in the protocol.
  virtual std::string suggest(const Terminal& terminal, std::string_view line) = 0;
};

// Where the live trace goes. Called on any thread.
class TraceSink {
 public:
  virtual ~TraceSink() = default;
  virtual bool wanted() const = 0;  // false: nobody would see a line
  virtual bool wanted(TraceForm form) const = 0;
  virtual void show(std::string_view line) = 0;                  // to all
  virtual void show(std::string_view line, TraceForm form) = 0;  // to those who see messages so
};

}  // namespace msand
