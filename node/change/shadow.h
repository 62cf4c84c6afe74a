#pragma once
// A node in the dark: a process of its own with the same module, chassis, flow store and configuration, in which
// something can be tried. What it would send reaches nobody.

#include <sys/types.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "channel.h"
#include "descriptor.h"
#include "messages/changed.h"
#include "service.h"
#include "snapshot.h"

namespace msand {

// All functions throw ChannelError; then nothing more can be asked of the shadow.
class Shadow {
 public:
  // Starts one with the module of this path, which executes the configuration as at a start.
  Shadow(const Snapshot& snapshot, const std::string& module);
  Shadow(const Shadow&) = delete;
  Shadow& operator=(const Shadow&) = delete;

  // Lines of the configuration that failed, and what is told of each: "NUMBER: LINE: why".
  struct Failed {
    std::string line, told;
  };
  const std::vector<Failed>& failed() const { return failed_; }

  // An operator's line, as a service runs it. Lines that reach out of the node, such as write, do nothing.
  wire::Result run(std::string_view line, std::string& text);
  // Many of them, each with its number; those that did not do well. A last one that asks is among them.
  struct Line {
    u32 number = 0;
    std::string_view line;
  };
  struct Refused {
    u32 number = 0;
    std::string line;
    wire::Result result;
    std::string text;
  };
  std::vector<Refused> runAll(const std::vector<Line>& lines);

  u32 lines() const { return lines_; }      // that were run,
  u32 refused() const { return refused_; }  // and did not do well
  const std::string& prompt() const { return prompt_; }
  bool ended() const { return ended_; }  // a line has asked for the session's end

  std::string configuration();  // as printRunning

  // What cards and the voice side were told at its start, which is all that they have to know; the mode that the voice
  // side was brought into, with its flag.
  const std::vector<messages::StateMessage>& state() const { return state_; }
  std::array<u32, 2> voiceMode() const { return voiceMode_; }

  // What has left it since it was started: by slot (0: the voice side), and as the directives and records of a
  // scenario.
  struct Sent {
    u16 slot = 0;
    u32 messages = 0;
    u64 bytes = 0;
  };
  std::vector<Sent> sent();
  std::string record();

 private:
  Value ask(const Value& request);
  wire::Result take(const Value& ran);

  // Ends with it, also if the shadow can't be set up.
  struct Process {
    pid_t id = 0;
    ~Process();
  };

  Process process_;
  Descriptor socket_;
  std::vector<Failed> failed_;
  std::vector<messages::StateMessage> state_;
  std::array<u32, 2> voiceMode_{};
  u32 lines_ = 0, refused_ = 0;
  std::string prompt_ = "msan# ";
  bool ended_ = false;
};

// Serves as the shadow at the other end of a socket, with the module of this path; the exit code.
int serveShadow(int socket, const std::string& module);

}  // namespace msand
