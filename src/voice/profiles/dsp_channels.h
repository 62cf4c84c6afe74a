#pragma once
// The state of the DSP channels, read from all voice cards.

#include "common/msan_snmp.h"
#include "common/wire.h"

// Room for the status of 16 slots of 256 channels.
inline constexpr u32 kDspStatus = 40 + 16 * (22 + 19 * 256);

// The reply of a GET: 00 00 00 01, 32 zeros, u32 slots; for each slot that answered u16 slot, 18 zeros, u16 channels,
// and for each channel u16 channel, u8 status, 16 zeros; numbers behind the head as the processor keeps them. A card
// that does not answer, or badly, is left out. 0, or -1 with `err` filled.
int get_dsp_channel_status(WireOut out, u32* length, SnmpErrInfo* err);

void registerDspChannels();
void installDspChannels();
