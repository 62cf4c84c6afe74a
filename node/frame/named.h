#pragma once
// Requests of a manager by the names of a message's fields.

#include <string>
#include <vector>

#include "client.h"
#include "messages/words.h"

namespace frame {

struct Request {
  const messages::Message* message = nullptr;
  u16 id = 0;
  std::vector<std::string> words;  // NAME=VALUE, SLOT/PORT
  std::string from;                // a JSON text whose members go ahead of the words; empty: none
  bool fresh = false;              // a SET: what is not told has its default, not what the node has
  bool json = false;
};

// True if the node did it; what there is to say, or what it refused, is in `text`. Throw ClientError, and
// messages::BadValue.
bool getNamed(Client& client, const Request& request, std::string& text);
bool setNamed(Client& client, const Request& request, std::string& text);

}  // namespace frame
