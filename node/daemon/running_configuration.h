#pragma once
// The startup configuration: the running configuration in a file, as commands.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "history.h"
#include "node.h"
#include "pending.h"

namespace msand {

// What the node's module prints. `missing` says why something may be missing from it; empty: nothing.
std::string printRunning(node::Node& node, std::string& missing);

// "LINE: COMMAND: why", with the column of what is not understood "LINE:COLUMN: ...".
std::string failedText(const node::FailedLine& line);

class Startup {
 public:
  explicit Startup(std::string path) : path_(std::move(path)), history_(path_), pending_(path_) {}

  const std::string& path() const { return path_; }
  const History& history() const { return history_; }
  Pending& pending() { return pending_; }

  // Executes the file, or what a change that nobody has confirmed is to be taken back to. A node without one starts
  // empty, one whose file can't be read, too; both are told in the log, as is each line that fails. False: `stopped`,
  // which is asked ahead of each line, has become true.
  bool execute(node::Node& node, const std::function<bool()>& stopped);

  // Replaces the file by the running configuration. Refused, unless by force, if that would lose what the file holds
  // and the node does not, or if the configuration may be incomplete. A file that was not read is kept beside the new
  // one. It is kept in the history, too, and so is an old file that is not. Throws std::runtime_error; then the old
  // file is as it was. What it has to tell beyond success is returned. `text` is what the file has now.
  std::string write(node::Node& node, bool force, const std::string& comment, std::string& text);

 private:
  bool readBack(std::string& text);
  bool read(std::string& text);
  void checkLoss(std::string_view text) const;
  std::string keepInHistory(std::string_view text, const History::Written& written);

  std::string path_;
  History history_;
  Pending pending_;
  std::string unread_;               // why the file was not read at start; empty: it was, or is not there
  std::vector<std::string> failed_;  // lines of it that failed at start
};

}  // namespace msand
