#pragma once
// Lines from a file, a pipe or a terminal.

#include <string>

#include "platform/types.h"

namespace ctl {

class LineReader {
 public:
  // Reads from a descriptor that stays the caller's. Of a longer line, `longest` bytes are kept.
  LineReader(int descriptor, std::size_t longest) : descriptor_(descriptor), longest_(longest) {}

  enum class Got { line, nothing, end };
  // The next line without its line end. `wait` false: `nothing` when its end has not arrived yet. Throws
  // std::runtime_error.
  Got next(bool wait);

  const std::string& line() const { return line_; }
  bool tooLong() const { return tooLong_; }  // the line was cut
  u64 bytesRead() const { return bytesRead_; }

 private:
  bool takeLine();

  int descriptor_;
  std::size_t longest_;
  std::string bytes_;
  std::size_t taken_ = 0;
  u64 bytesRead_ = 0;
  std::string line_;
  bool begun_ = false;
  bool tooLong_ = false;
  bool ended_ = false;
};

}  // namespace ctl
