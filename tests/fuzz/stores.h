#pragma once
// What the module has stored, in one number.

#include "platform/types.h"

namespace fuzz {

// Of rows of all tables and profiles of all kinds; equal contents give equal numbers. Where nothing was committed since
// the last call, the rows are not read again.
u64 storesDigest();

}  // namespace fuzz
