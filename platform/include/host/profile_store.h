#pragma once
// A look into the profile store.

#include <string>
#include <vector>

#include "platform/types.h"

namespace host {

struct StoredProfile {
  i16 id = 0;
  std::string name;
  std::vector<u8> item;  // empty while it has none
};

// The profiles of a kind by id. False if there is no such kind.
bool listProfiles(i16 type, std::vector<StoredProfile>& profiles);

// Grows with each profile that is made, changed or removed.
u64 profileChanges();

// Forgets all kinds, for the unloading of a module.
void clearProfiles();

}  // namespace host
