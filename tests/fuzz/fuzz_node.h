#pragma once
// The node that a fuzz target feeds.

#include <filesystem>
#include <functional>
#include <string>

#include "messages/decode.h"
#include "node.h"

namespace fuzz {

struct Card {
  u16 slot;
  const char* type;
};
inline constexpr Card kCards[] = {{1, "adsl64"}, {2, "vdsl32-pots"}, {3, "pots32"}, {11, "eth8"}, {18, "adsl16"}};

// It is started ahead of the first input, with a card of every family up; what it prints, logs and sends goes nowhere.
node::Node& theNode();

// Aborts, with what differs, if a message is not as it is described.
void holdMessage(messages::Road road, u16 id, messages::Bytes bytes, messages::Fault worst);

// Ends an input: whatever it was, no transaction, connection or pool block may be left. Aborts with what there is.
void checkAtRest();
bool isAtRest();

// Tells why, not through stderr, which is captured, and aborts.
[[noreturn]] void fail(const std::string& why);
extern void (*onFailure)(const std::string& why);  // is told ahead of that

// The directives that bring a scenario's node to where this one begins.
std::string setUp();

// Restarts the node, pieces forgotten; its running configuration then.
std::string restartNode(const std::string& startup, const std::function<void(const node::FailedLine&)>& failed);

// --- for targets with threads of the daemon's own

// A folder for what an input makes the daemon write; it goes when the process ends as it should.
struct Folder {
  Folder();
  ~Folder() { std::filesystem::remove_all(path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string path;
};

// Waits for what other threads bring about, for 5 s at most.
bool comesTrue(const std::function<bool()>& what);

}  // namespace fuzz
