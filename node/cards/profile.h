#pragma once
// What a DSL card was told to train a port by, message by message.

#include "line/training.h"
#include "messages/view.h"

namespace cards {

class Profile {
 public:
  Profile() = default;
  explicit Profile(bool vdsl);

  // The body of an attachment of a profile of which something is heard.
  static bool hears(u16 id);
  void hear(u16 id, const messages::View& body);

  // The order for the next training.
  line::Order order() const;

 private:
  void hearAdsl(const messages::View& body);
  void hearVdslLine(const messages::View& body);
  void hearVdslService(const messages::View& body);
  void hearRetransmission(const messages::View& body);

  line::Order order_;
  struct Rates {
    u32 fixed = line::Limits::kNoRate;  // a rate that does not adapt is the least and the most
    u32 net = line::Limits::kNoRate;    // of a line with retransmission
  } up_, down_;
};

// Numbers by which the messages name a mode: of an ADSL one, and of a profile of VDSL2.
u16 adslNumber(line::Mode mode);
u16 vdslNumber(line::Mode mode);
std::optional<line::Mode> vdslMode(i64 number);

}  // namespace cards
