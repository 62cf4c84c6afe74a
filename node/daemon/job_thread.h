#pragma once
// The node's job task. A job may take long: neither the request that has left it nor any other waits for it.

#include <thread>

namespace msand {

// Runs jobs as long as it lives. One that is under way at the end is waited for, those that wait are dropped: the next
// start brings the voice side into the mode of the stored type anyway.
class JobThread {
 public:
  JobThread();
  ~JobThread();
  JobThread(const JobThread&) = delete;
  JobThread& operator=(const JobThread&) = delete;

 private:
  std::thread thread_;
};

}  // namespace msand
