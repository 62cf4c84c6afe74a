#pragma once
// The points at which a scenario can fail, and the sites in the module that they belong to.

#include <set>
#include <string>
#include <vector>

#include "host/faults.h"
#include "reader.h"

namespace scenario {

// The N-th operation of a kind from the first directive on; N 0: none.
struct Order {
  host::Fault kind = host::Fault::alloc;
  u32 n = 0;
};

// Its site is the kind with the calls within the module that led to it.
struct FailurePoint {
  Order order;
  Order first;  // fails ahead of it: what comes only once something has failed
  u64 site = 0;
};

// Points in their order, and where in the module the calls return to that led to them.
struct FoundPoints {
  std::vector<FailurePoint> points;
  std::set<u64> calls;
};

// Notes the points that come from now on, counted from `begin` by kind; behind `first`, if there is one.
void watchPoints(const std::string& module, const u32 (&begin)[host::kFaults], Order first);

// Ends that.
FoundPoints watchedPoints();

// Hands points over between processes; a file is read once all have written to it. Throws when it can't.
class PointFile {
 public:
  PointFile();
  ~PointFile();
  PointFile(const PointFile&) = delete;
  PointFile& operator=(const PointFile&) = delete;
  void write(u32 scenario, const FoundPoints& found);
  // By scenario.
  std::vector<FoundPoints> read(std::size_t scenarios);

 private:
  int file_;
};

// Plays a file with nothing failing, in a process of its own, and writes its points. None if it crashes or breaks off:
// a sweep tells why.
void findPoints(const std::string& module, const Scenario& scenario, u32 number, PointFile& to);

}  // namespace scenario
