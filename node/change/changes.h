#pragma once
// A change of a live node: what it would do, how configurations differ, another one taken on while the node runs, and a
// change that is taken back unless somebody confirms it. Whoever lets somebody change the node asks this; the
// terminal's words are one of them.

#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "cards/dsl_cards.h"
#include "difference.h"
#include "node.h"
#include "pending.h"
#include "shadow.h"

namespace msand {

// It was refused, or has failed on the way: what() says why, and which configuration the node has.
struct RollbackError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// All functions that start a shadow may throw ChannelError, too. None is called in a turn; those that change the node
// are called on one thread, that of the operator's door.
class Changes {
 public:
  // `pending` is where a change waits; `loaded` is called under the gate when the module was loaded afresh.
  Changes(node::Node& node, const cards::DslCards& cards, Pending& pending, std::function<void()> loaded)
      : node_(node), cards_(cards), pending_(pending), loaded_(std::move(loaded)) {}

  // A node in the dark that is as this one is now.
  std::shared_ptr<Shadow> shadow() const;

  // What would come of the lines of a text; empty ones and those that begin with '!' are passed over.
  struct Checked {
    u32 lines = 0;
    u32 refusedLines = 0;
    std::vector<Shadow::Refused> refused;
    std::vector<Shadow::Sent> sent;  // by slot, 0: the voice side
    std::string record;              // as directives of a scenario with their records
  };
  Checked check(std::string_view text) const;
  // The same of lines that were run one by one.
  static Checked outcomeOf(Shadow& shadow);

  // A configuration as this node would print it, so that order, spelling and defaults don't count; none: the running
  // one.
  std::string printed(const std::string* configuration) const;
  // Its lines that a start would not bring back as they stand.
  std::vector<std::string> lost(const std::string& configuration) const;

  // Loads the module afresh with a configuration, and sends what differs from what cards and the voice side know; the
  // doors wait meanwhile. What there is to tell of it, in lines. Throws RollbackError.
  std::string takeOn(const std::string& configuration);

  // What changes from now on is taken back after a time, unless it is confirmed. How that is done later on the thread
  // that changes the node, and told; without it a change can't wait.
  struct Later {
    std::function<void(std::function<void()>)> post;
    std::function<void(std::string_view)> announce;
  };
  void setLater(Later later) { later_ = std::move(later); }
  void confirmWithin(std::chrono::seconds time);  // throws std::runtime_error, std::invalid_argument
  bool confirm() { return pending_.confirm(); }   // false: no change waits
  bool waits() const { return pending_.waits(); }
  // Takes back what waits, at once. Throws RollbackError, std::invalid_argument if nothing does.
  std::string takeBack();

 private:
  template <class Behind>
  bool load(const std::string& configuration, const std::string& expected, Behind behind);
  void expire();

  node::Node& node_;
  const cards::DslCards& cards_;
  Pending& pending_;
  std::function<void()> loaded_;
  Later later_;
};

}  // namespace msand
