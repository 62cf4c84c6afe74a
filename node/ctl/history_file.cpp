#include "history_file.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace ctl {

std::string historyFile() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  std::filesystem::path folder;
  if (state != nullptr && state[0] == '/')
    folder = state;
  else if (home != nullptr && home[0] == '/')
    folder = std::filesystem::path(home) / ".local" / "state";
  else
    return {};
  folder /= "msan";
  std::error_code failed;
  std::filesystem::create_directories(folder, failed);  // the mode: see the process's umask
  return failed ? std::string() : (folder / "history").string();
}

}  // namespace ctl
