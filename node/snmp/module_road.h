#pragma once
// A manager's request for the module waits here while a thread of its own has the module do it, one request after the
// other. Meanwhile the agent goes on; when it is done, the request goes the library's ordinary road. All functions
// belong to the agent's thread.

#include <list>
#include <memory>
#include <mutex>
#include <vector>

#include "descriptor.h"
#include "door.h"
#include "frame_table.h"

namespace msand {

class ModuleRoad {
 public:
  explicit ModuleRoad(FrameTable& table);
  ~ModuleRoad();
  ModuleRoad(const ModuleRoad&) = delete;
  ModuleRoad& operator=(const ModuleRoad&) = delete;

  // A session's request; what the library's callback returns.
  int receive(netsnmp_session* session, int id, netsnmp_pdu* pdu);
  // A session has ended.
  void leave(const netsnmp_session* session);

  // Readable when something is done; then call finish().
  int descriptor() const { return done_.get(); }
  void finish();
  // Wakes the agent, from any thread.
  void wake();

 private:
  struct Waiting;
  using WaitingPtr = std::shared_ptr<Waiting>;

  bool isRepeated(netsnmp_session* session, netsnmp_pdu* pdu);
  void work(const WaitingPtr& waiting);

  FrameTable& table_;
  Descriptor done_;
  std::list<WaitingPtr> waiting_;
  std::size_t bytes_ = 0;  // of all that wait
  std::mutex mutex_;
  std::vector<WaitingPtr> ready_;  // under the lock
  Door door_;                      // last: its thread uses the others
};

}  // namespace msand
