#pragma once
// systemd, where it has started this process: what it is told. Elsewhere nobody is.

#include <chrono>
#include <string>

namespace msand {

class Supervisor {
 public:
  Supervisor();

  // How often it is to hear alive(), so that one that comes late does not end the node; zero: it does not listen.
  std::chrono::milliseconds interval() const { return interval_; }

  void status(const std::string& line) const;  // what "systemctl status" shows
  void ready() const;
  void alive() const;
  void stopping() const;

 private:
  std::chrono::milliseconds interval_{0};
};

}  // namespace msand
