// What operators type: lines for the configuration level, or for the debug level behind a '@'. For each one help is
// asked for ahead of it, as the terminal does for Tab and '?'.

#include <string_view>

#include "fuzz_node.h"
#include "host/terminal.h"

extern "C" int LLVMFuzzerTestOneInput(const u8* data, std::size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    std::string_view line = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 1);

    const bool debug = line.starts_with('@');
    if (debug) line.remove_prefix(1);
    const int level = debug ? DEBUG_NODE : CONFIG_NODE;
    host::suggestions(level, line);
    Vty vty;
    host::runLine(vty, level, line);
  }
  fuzz::checkAtRest();
  return 0;
}
