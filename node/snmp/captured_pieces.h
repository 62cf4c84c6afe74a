#pragma once
// What managers and the module say to each other is captured whole, whatever pieces it comes in.

#include <map>
#include <vector>

#include "frame_table.h"

namespace msand {

class CapturedPieces {
 public:
  // Ahead of the module, which writes to a request's bytes, and behind it.
  void addRequest(const ModuleRequest& request);
  void addAnswer(const ModuleRequest& request, const host::Answer& answer);
  void forget(u16 id);

 private:
  using Pieces = std::map<u16, std::vector<u8>>;  // by message

  Pieces requests_, replies_;
};

}  // namespace msand
