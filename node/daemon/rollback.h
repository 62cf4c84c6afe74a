#pragma once
// A node that runs takes on another configuration.

#include <stdexcept>
#include <string>

namespace msand {

class Operator;

// It was refused, or has failed on the way: what() says why, and which configuration the node has.
struct RollbackError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Loads the module afresh with this configuration, and sends what differs from what cards and the voice side know; the
// doors wait meanwhile. What there is to tell of it, in lines. Throws RollbackError, and ChannelError; then the node is
// as it was. On the operator's door, outside of a turn.
std::string takeOn(Operator& commands, const std::string& configuration);

}  // namespace msand
