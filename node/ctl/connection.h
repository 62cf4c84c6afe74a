#pragma once
// A terminal's connection to msand.

#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "descriptor.h"
#include "protocol.h"

namespace ctl {

// There is no connection, or it is lost.
struct ConnectionError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

class Connection {
 public:
  // Tries until `seconds` have passed while nobody serves the path. Throws ConnectionError.
  Connection(const std::string& path, int seconds);

  // Queues a request for send(). At most wire::kAhead may be on their way. A line must fit into a request.
  void post(wire::Kind kind, std::string_view line);
  void send();
  void send(wire::Kind kind, std::string_view line) {
    post(kind, line);
    send();
  }

  // Hands over a file for the next line, which means it by this name.
  void sendFile(const std::string& name, std::string_view bytes);

  // Tells the node, ahead of the lines to come, what standard output is, if that has changed.
  void tellScreen();

  // The next frame, waited for; none once the node has ended the session. Its payload is good until the next call.
  // Throws ConnectionError.
  std::optional<wire::Frame> receive();

  // Waits for the node's greeting, up to the first prompt. Throws ConnectionError.
  void awaitPrompt();

  // The next frame if there is one already.
  std::optional<wire::Frame> receiveReady();

  // What is still to come of the line under way is nobody's business any more.
  void giveUp() { ++givenUp_; }

  const std::string& prompt() const { return prompt_; }
  bool ended() const { return ended_; }
  const std::string& farewell() const { return farewell_; }  // why the node ended the session, if it told
  int descriptor() const { return socket_.get(); }

 private:
  std::optional<wire::Frame> next();
  bool fill(bool wait);

  Descriptor socket_;
  wire::FrameReader reader_{wire::kMaxFrame};
  std::string posted_;
  std::string prompt_;
  wire::Screen screen_;
  std::string farewell_;
  bool ended_ = false;
  u32 givenUp_ = 0;  // lines whose results are still to come
};

}  // namespace ctl
