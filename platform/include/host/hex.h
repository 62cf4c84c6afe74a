#pragma once
// Bytes as text, in one form everywhere: lower-case digits without blanks, a run of 16 or more equal bytes as
// " bb*N " set off by single blanks, nothing as "-".

#include <string>

#include "host/observer.h"

namespace host {

std::string hexText(Bytes bytes);

}  // namespace host
