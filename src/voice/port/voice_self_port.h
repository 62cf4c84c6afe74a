#pragma once
// A second number of POTS ports, for calls that the node switches itself. It stands at one port only; the ports' own
// numbers are not looked at.

#include "platform/command_line.h"
#include "platform/types.h"

inline constexpr u32 kSelfNumber = 32;

// The store of attribute 296: 32 bytes. 0; -1 for null or a part; -900 when the database fails. A read of a port
// without a row gives an empty number, the delete of one is 0.
int set_voiceselfportcfg_dbapi(u32 objectId, const void* number, u32 offset, u32 length);
int get_voiceselfportcfg_dbapi(u32 objectId, void* number, u32 offset, u32 length);
int del_voiceselfportcfg_dbapi(u32 objectId);

// 0 if no other port has the number, else -900 with the port that has it; -1 for a port that does not exist.
int check_voice_self_port_phone(u16 slot, u16 port, const char* number, u16* holderSlot, u16* holderPort);

void ndistrib_voice_self_port(u16 slot, u16 port);
void distrib_voice_self_port();  // a message for each POTS port of the node
void nshowrun_voice_self_port(Vty* vty);
void registerVoiceSelfPort();
void installVoiceSelfPort();
