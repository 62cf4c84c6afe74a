#pragma once
// What the voice side tells of POTS ports: the state of the line, counters of its voice stream and of its calls.

#include "voice/common/ngn_view.h"

extern const PortView userPortStatus, streamPortStats, portCallStats;

// The manager's form of stream counters: a u32 count, and 578 bytes for each port. 0 or -1.
BuildForm build_stream_port_stats_packet;

void registerPortViews();
void installPortViews();
