#pragma once

#include <algorithm>
#include <initializer_list>

#include "host/log.h"
#include "platform/types.h"

namespace host {

// Some arguments have one value only, until there is a platform that takes another one. A caller with another value
// today would be misread then: told, and to be refused. Inline: the compiler forgets the list where the values are
// known.
inline bool constantsDiffer(const char* function, i32 wanted, std::initializer_list<i32> given) {
  if (std::ranges::all_of(given, [wanted](i32 one) { return one == wanted; })) return false;
  platformError("%s: an argument that has to be %d is not", function, wanted);
  return true;
}

}  // namespace host
