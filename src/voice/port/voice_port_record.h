#pragma once
// What is kept of a POTS port: its subscriber and the profiles that it uses. Each port of an authorised POTS card has a
// row, from the card's authorisation on.

#include "common/record.h"

// 228 bytes, as attribute 267 hands it over, in host order.
struct VoicePort {
  u8 enable = 0;             // 1 enabled; the messages of the configuration leave it alone
  u8 protocolType = 0;       // passed on unchecked
  char userNumber[32] = {};  // user name or telephone number; empty: no subscriber
  u16 DSPProfileID = 0;      // 0 to 9
  char SIPAuthUserName[64] = {};
  char SIPAuthPassword[64] = {};
  u16 SIPUserCallProfileID = 0;  // 0 to 9
  u8 reserved[62] = {};
};
static_assert(sizeof(VoicePort) == 228);

// The store of attribute 267. 0; -1 for null, a write of a part, or an offset; -900 when the database fails, or a read
// finds no row. A read gives as many bytes as are asked for. The delete of a row that is not there is 0.
int set_voiceportcfg_dbapi(u32 objectId, const void* data, u32 offset, u32 length);
int get_voiceportcfg_dbapi(u32 objectId, void* data, u32 offset, u32 length);
int del_voiceportcfg_dbapi(u32 objectId);

// Gives each port of a POTS card that was authorised an empty row; ends at the first that fails.
void init_voiceport_cfg(u16 slot);
