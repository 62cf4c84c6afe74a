#pragma once
// A manager's request for the module is kept here until the library is through with what it does now; then the module
// does it, one request after the other, and the request goes the library's ordinary road. All functions belong to the
// thread that leads.

#include <atomic>
#include <list>

#include "collections.h"
#include "descriptor.h"
#include "frame_table.h"
#include "standard_functions.h"
#include "turns.h"

namespace msand {

class ModuleRoad {
 public:
  explicit ModuleRoad(FrameTable& table);
  ~ModuleRoad();
  ModuleRoad(const ModuleRoad&) = delete;
  ModuleRoad& operator=(const ModuleRoad&) = delete;

  // The objects of standard MIBs are served, too. Ahead of the first request.
  void useFunctions(const StandardFunctions& functions) { functions_ = &functions; }

  // A session's request; what the library's callback returns.
  int receive(netsnmp_session* session, int id, netsnmp_pdu* pdu);
  // A session has ended.
  void leave(const netsnmp_session* session);

  // There is something to do; no need to wait for more.
  bool hasWork() const { return underWay_ ? done_.load() : !waiting_.empty(); }
  // Has the module do one request, if it has none, and answers it. Outside the library. False: it took long, another
  // thread has the lead now and will answer.
  bool work(Turns& turns, int thread);

  // Readable when there may be something to do; wake() makes it so, from any thread.
  int descriptor() const { return event_.get(); }
  void wake();
  void awake();

 private:
  struct Waiting;

  int keepSet(netsnmp_session* session, int id, netsnmp_pdu* pdu);
  Waiting* keep(netsnmp_session* session, int id, netsnmp_pdu* pdu);
  bool isRepeated(netsnmp_session* session, netsnmp_pdu* pdu);
  void answerFirst();
  void noteCollection(const Waiting& done);
  void endCollections();
  static void askModule(Waiting& one);

  FrameTable& table_;
  const StandardFunctions* functions_ = nullptr;
  Descriptor event_;
  std::list<Waiting> waiting_;
  Collections collections_;
  u32 alarm_ = 0;                  // looks for collections that are due, while there are any
  std::size_t bytes_ = 0;          // of all that wait
  bool underWay_ = false;          // the first of them is the module's,
  std::atomic<bool> done_{false};  // which has answered it, to a thread that does not lead
};

}  // namespace msand
