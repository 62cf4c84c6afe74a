#pragma once
// Who counts what goes through the platform: requests to the module, and messages with what became of them. Unlike an
// observer it is told behind the fact, without a lock, and for good measure only what can be counted.

#include <chrono>
#include <vector>

#include "host/observer.h"

namespace host {

struct WatchedRequest {
  u16 id = 0;
  bool isSet = false;
  int result = 0;
  Bytes reply;
  std::chrono::nanoseconds took{};
};

struct WatchedMessage {
  Link link = Link::ngn;
  u16 slot = 0;  // 0: the voice side
  u16 id = 0;
  bool asks = false;
  u32 bytes = 0;
  int result = 0;  // below 0: it failed
  Bytes answer;    // to one that asks
};

// Called on any thread, on several at once.
class Watcher {
 public:
  virtual ~Watcher() = default;
  virtual void request(const WatchedRequest& request) = 0;
  virtual void message(const WatchedMessage& message) = 0;
};

// Set before requests run, and taken away (null) when none does.
void watch(Watcher* watcher);
Watcher* watcher();

}  // namespace host
