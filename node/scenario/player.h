#pragma once
// A fresh node, and the directives that are played against it.

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "node.h"
#include "outcome.h"
#include "recorder.h"

namespace scenario {

// What the directives of a file act on.
struct Stage {
  node::Node& node;
  Recorder& recorder;
  std::string startup;  // the startup configuration that `save` keeps
  Vty terminal;         // the operator's, with the question that its last command left open
  u64 poolMark = 0;
  std::set<u16> setIds, getIds;  // messages of which a SET or a GET in pieces may be unfinished
};

using Action = std::function<void(Stage&, Outcome&)>;

struct Played {
  std::vector<std::string> record;
  bool available = true;
};

// There is one at a time. Its node is fresh, what its start causes is not recorded. Throws std::runtime_error when the
// node can't be started.
class Player {
 public:
  explicit Player(const std::string& module);
  ~Player();
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;

  Played play(const Action& action);

  Stage& stage() { return stage_; }

 private:
  // Sets the observer and lets it go when node and capture are gone.
  struct Observed {
    explicit Observed(Recorder& recorder) { host::observe(&recorder); }
    ~Observed() { host::observe(nullptr); }
  };

  Recorder recorder_;
  Observed observed_{recorder_};
  host::CaptureOutput capture_;
  node::Node node_;
  Stage stage_;
};

}  // namespace scenario
