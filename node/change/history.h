#pragma once
// The startup configurations that were written: the one that is there and 50 before it, in a folder beside its file.

#include <string>
#include <string_view>
#include <vector>

namespace msand {

class History {
 public:
  // Of the startup configuration of this path; the folder is "PATH.history".
  explicit History(const std::string& startup);

  struct Written {
    std::string time;  // "2026-11-26 10:20:00", UTC
    std::string door;
    std::string comment;
  };

  // One more, the newest. Throws FileError.
  void keep(std::string_view text, const Written& written);
  // The text that was kept last is this one; none was kept: false.
  bool endsWith(std::string_view text) const;

  std::vector<Written> list() const;  // the newest first; those that can't be read say so
  // By its place in the list, as digits. Throws std::invalid_argument if there is none, FileError if it can't be read.
  std::string text(std::string_view number) const;

 private:
  std::vector<std::string> files() const;  // the newest first

  std::string folder_;
};

// The time as a history tells it.
std::string timeNow();

}  // namespace msand
