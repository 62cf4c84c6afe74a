#pragma once
// What the commands of the data items have in common.

#include "common/interface_list.h"
#include "common/msan_obj.h"
#include "common/trace.h"
#include "common/words.h"
#include "platform/command_line.h"

inline constexpr Word kSwitchWords[] = {{"enable", 1}, {"disable", 0}};

// Says why a command ends, for its handler to hand back: -1.
template <class... Arguments>
int refuse(Vty* vty, Text<std::type_identity_t<Arguments>...> text, Arguments... arguments) {
  if constexpr (sizeof...(Arguments) == 0) {
    vty_out(vty, "%s", text.format);
  } else {
    vty_out(vty, text.format, arguments...);
  }
  return -1;
}

// A number of a command: decimal, cut to 16 bits.
u16 cutNumber(const char* text);

// "errCode:N": of what a failed step has to tell, the code.
void vty_err_info(Vty* vty, const SnmpErrInfo& err);

// An entry of an interface string, of one to three levels, as the slot or port that it names. 0, or -1 with a line.
int transCliAddr2ObjIndex(Vty* vty, const CliAddr* address, ObjIndex* object);

// The entries of an interface string. 0, or -1 with "invalid interface ...".
int readInterfaces(Vty* vty, const char* text, LIST* addresses);
