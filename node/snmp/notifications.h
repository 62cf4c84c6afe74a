#pragma once
// What the agent tells managers by itself.

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "settings.h"

namespace msand {

class Notifications {
 public:
  // From any thread; it is sent by the next send().
  void add(std::string_view text);

  // The rest belongs to the thread that leads. Those who are told, once the library runs; with the first community, or
  // "public". Throws std::runtime_error.
  void open(const SnmpSettings& settings);
  // One msanNotice each.
  void send();

 private:
  std::mutex mutex_;
  std::vector<std::string> waiting_;
};

}  // namespace msand
