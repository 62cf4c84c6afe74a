// A startup configuration, as it may come from a disk: truncated, binary, or of another age.

#include <cstdlib>
#include <string_view>

#include "fuzz_node.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  u32 last = 0;
  fuzz::theNode().executeStartup({reinterpret_cast<const char*>(data), size}, [&](const node::FailedLine& line) {
    if (line.line <= last) std::abort();  // lines are told once and in order
    last = line.line;
  });
  fuzz::checkAtRest();
  return 0;
}
