#pragma once
// The record of this process: while "record" asks for it, what operators, managers and cards do is written down as a
// scenario, which msan-scenario plays to the same end. Requests are then taken one at a time, over all doors, and a job
// is run behind the request that has queued it.

#include <atomic>
#include <functional>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "files.h"
#include "node.h"
#include "scenario/outcome.h"
#include "scenario/recorder.h"

namespace msand {

class SessionRecord {
 public:
  void configure(FileSettings settings) { settings_ = std::move(settings); }

  // Begins with a file of this name, which replaces an older one; ends the one before. What stands at its head brings
  // the player to where the node is now. What to tell the operator. Throws FileError, and std::invalid_argument for a
  // name that is none. Outside of a request.
  std::string begin(const std::string& name, node::Node& node);
  std::string end();
  std::string state();
  // The same into the caller's hands, without a head and without an end; false ends it.
  using Sink = std::function<bool(std::string_view text)>;
  void beginInto(Sink sink);

  // The operator's line that was recorded last. In a turn.
  const std::string& lastLine() const { return lastLine_; }

  // From any thread:
  bool wanted() const { return wanted_; }
  // Hears what leaves the module; what it is told while there is no record is lost.
  host::Observer& observer() { return recorder_; }
  // A card or the voice side answers what it was asked.
  void answered(host::Link link, u16 slot, u16 id, host::Bytes answer);

 private:
  friend class Turn;
  friend class Doing;

  void note(std::string_view directive, const scenario::Outcome& outcome);
  bool append(std::string_view text);
  void close(const std::string& why);
  void want(Sink sink);
  std::string told() const;

  FileSettings settings_;
  std::atomic<bool> wanted_{false};
  std::recursive_mutex turn_;  // of the one request that is under way while it is wanted; what follows is its own
  std::string path_;
  Sink sink_;
  std::size_t bytes_ = 0, directives_ = 0;
  std::string ended_;  // why, if it was not the operator
  std::string lastLine_;
  scenario::Recorder recorder_;
  std::mutex answersMutex_;
  std::string answers_;  // that the request under way got
};

SessionRecord& sessionRecord();

// A request of a door, as long as it lives: it shares the node's gate with others, or is alone while a session is
// recorded. A call that takes the gate itself leaves it out.
class Turn {
 public:
  enum class Gate { shared, ofCall };
  explicit Turn(Gate gate = Gate::shared);

 private:
  std::unique_lock<std::recursive_mutex> alone_;
  std::shared_lock<std::shared_mutex> gate_;
};

// One thing that is done in a turn. `directive` gives the line by which a scenario does it, and is asked while a
// session is recorded only; an empty one is told later. The record is written when it ends.
class Doing {
 public:
  template <class Directive>
  explicit Doing(Directive directive) : recorded_(sessionRecord().wanted()) {
    if (recorded_) directive_ = directive();
  }
  ~Doing() {
    if (recorded_) sessionRecord().note(directive_, outcome_);
  }
  Doing(const Doing&) = delete;
  Doing& operator=(const Doing&) = delete;

  // Hands the outcome to `tell`, while a session is recorded.
  template <class Tell>
  void outcome(Tell tell) {
    if (recorded_) tell(outcome_);
  }
  void told(std::string directive) { directive_ = std::move(directive); }

 private:
  bool recorded_;
  std::string directive_;
  scenario::Outcome outcome_;
};

// A call that takes the gate itself, in a turn of its own; what it gives.
template <class Directive, class Call>
int doInTurn(Directive directive, Call call) {
  const Turn turn(Turn::Gate::ofCall);
  Doing doing(directive);
  const int result = call();
  doing.outcome([&](scenario::Outcome& outcome) { outcome.result(result); });
  return result;
}

}  // namespace msand
