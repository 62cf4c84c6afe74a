#include "line_reader.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>

namespace ctl {

constexpr std::size_t kBlock = 65536;

// Moves bytes to the line up to its end; false if the end is not there.
bool LineReader::takeLine() {
  if (!begun_) {
    line_.clear();
    tooLong_ = false;
  }
  const std::size_t end = std::min(bytes_.find('\n', taken_), bytes_.size());
  const std::size_t room = longest_ - line_.size();
  begun_ = begun_ || end > taken_;
  tooLong_ = tooLong_ || end - taken_ > room;
  line_.append(bytes_, taken_, std::min(end - taken_, room));
  taken_ = end;
  if (end == bytes_.size()) return false;
  ++taken_;
  begun_ = false;
  if (line_.ends_with('\r')) line_.pop_back();
  return true;
}

LineReader::Got LineReader::next(bool wait) {
  while (!takeLine()) {
    if (ended_) {
      if (!begun_) return Got::end;
      begun_ = false;
      return Got::line;
    }
    pollfd input{descriptor_, POLLIN, 0};
    if (!wait && poll(&input, 1, 0) == 0) return Got::nothing;
    bytes_.resize(kBlock);
    const ssize_t got = read(descriptor_, bytes_.data(), bytes_.size());
    if (got < 0 && errno != EINTR) throw std::runtime_error(std::string("can't be read: ") + std::strerror(errno));
    bytes_.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    taken_ = 0;
    bytesRead_ += bytes_.size();
    ended_ = got == 0;
  }
  return Got::line;
}

}  // namespace ctl
