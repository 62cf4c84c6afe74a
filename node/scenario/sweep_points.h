#pragma once
// The points at which a scenario can fail, and the sites in the module that they belong to.

#include <set>
#include <string>
#include <vector>

#include "host/faults.h"
#include "reader.h"

namespace scenario {

// The N-th operation of a kind from the first directive on. Its site is the kind with the calls within the module that
// led to it.
struct FailurePoint {
  host::Fault kind = host::Fault::alloc;
  u32 n = 0;
  u64 site = 0;
};

// Plays a file with nothing failing, in a process of its own; its points in their order. None if that crashes or breaks
// off: a sweep tells why.
std::vector<FailurePoint> findPoints(const std::string& module, const Scenario& scenario);

// Leaves the first point of each site that is not in `sites` yet, and puts it there.
void keepNewSites(std::vector<FailurePoint>& points, std::set<u64>& sites);

}  // namespace scenario
