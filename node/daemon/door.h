#pragma once
// A door of the node: a thread that takes one request at a time.

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace msand {

class Door {
 public:
  Door();
  ~Door();
  Door(const Door&) = delete;
  Door& operator=(const Door&) = delete;

  // Queues a request. After stop() it is dropped.
  void post(std::function<void()> request);

  // Lets the request under way end and drops those that wait. Not to be called by a request.
  void stop();

 private:
  void serve();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> requests_;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace msand
