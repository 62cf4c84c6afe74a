#pragma once
// What the module tells a manager, asked on the platform's behalf.

#include <optional>
#include <string>
#include <vector>

#include "messages/view.h"

namespace msand {

// All pieces of the module's answer to a GET, one behind the other; empty: there is none.
std::vector<u8> readModule(u16 id, const std::vector<u8>& question);

class ModuleReply {
 public:
  // Asks for a port with a message's GET, or for all that there is with slot 0.
  ModuleReply(u16 id, u16 slot, u16 port);
  ModuleReply(const ModuleReply&) = delete;
  ModuleReply& operator=(const ModuleReply&) = delete;

  // Empty if there is an answer that reads as described.
  const std::string& why() const { return why_; }
  bool good() const { return why_.empty(); }

  messages::View whole() const { return messages::View(decoded_); }
  // The port's own: the first item of a list. Nothing stands in it if there is none.
  messages::View first(std::string_view list) const;

 private:
  std::vector<u8> bytes_;
  messages::Decoded decoded_;
  std::string why_;
};

}  // namespace msand
