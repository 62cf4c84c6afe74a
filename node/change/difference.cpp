#include "difference.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "descriptor.h"
#include "files.h"

namespace msand {

// The text without carriage returns in a file of memory alone, from its beginning.
static Descriptor inMemory(std::string_view text) {
  Descriptor file(memfd_create("configuration", 0));
  std::string plain;
  for (const char letter : text)
    if (letter != '\r') plain += letter;
  if (!file || !writeAll(file, plain)) throw FileError("configuration", "can't be handed to diff", errno);
  return file;
}

static std::string readAll(int descriptor) {
  std::string text;
  char bytes[4096];
  while (true) {
    const ssize_t got = read(descriptor, bytes, sizeof bytes);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return text;
    text.append(bytes, static_cast<std::size_t>(got));
  }
}

Difference differenceOf(const std::string& nameA, std::string_view a, const std::string& nameB, std::string_view b) {
  const Descriptor first = inMemory(a), second = inMemory(b);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) throw FileError("diff", "can't be run", errno);
  const Descriptor out(ends[0]);
  Descriptor in(ends[1]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, in.get(), STDOUT_FILENO);
  std::string words[] = {"diff",
                         "-u",
                         "--label",
                         nameA,
                         "--label",
                         nameB,
                         "/proc/self/fd/" + std::to_string(first.get()),
                         "/proc/self/fd/" + std::to_string(second.get())};
  char* arguments[std::size(words) + 1] = {};
  for (std::size_t i = 0; i < std::size(words); ++i) arguments[i] = words[i].data();
  pid_t process = 0;
  const int code = posix_spawnp(&process, "diff", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  in.reset();
  if (code != 0) throw FileError("diff", "can't be run", code);
  Difference difference;
  for (const char letter : readAll(out.get())) {
    if (letter == '\n') difference.unified += '\r';
    difference.unified += letter;
  }
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) > 1) throw std::runtime_error("diff: has failed");
  return difference;
}

std::string jsonOf(const Difference& difference) {
  nlohmann::ordered_json told = {{"same", difference.unified.empty()},
                                 {"removed", nlohmann::ordered_json::array()},
                                 {"added", nlohmann::ordered_json::array()}};
  std::string_view rest = difference.unified;
  for (int number = 0; !rest.empty(); ++number) {
    const std::string_view line = rest.substr(0, rest.find("\r\n"));
    rest.remove_prefix(line.size() + 2);
    if (number < 2) continue;  // the names
    if (line.starts_with('-')) told["removed"].push_back(line.substr(1));
    if (line.starts_with('+')) told["added"].push_back(line.substr(1));
  }
  return told.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\r\n";
}

}  // namespace msand
