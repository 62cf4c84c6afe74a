#pragma once
// The stored NGN protocol type, and the self-switch.

#include "platform/types.h"

enum NgnProtocol : u16 { kNoProtocol = 0, kSip = 1, kH248 = 2 };

// 0; -900 for a failure of the database, which a type that was never stored is to a read; -1 for null.
int db_get_ngn_protocol_type(u16* type);
int db_set_ngn_protocol_type(u16 type);

// The same for the self-switch: 1 enable, 2 disable.
int db_get_voice_self_switch(u16* value);
int db_set_voice_self_switch(u16 value);
