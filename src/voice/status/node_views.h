#pragma once
// What the voice side tells of the node as a whole: its registration, its addresses, its signalling and its calls.

#include "voice/common/ngn_view.h"

extern const NodeView deviceStatus, voiceIpStatus, signallingStats, callStats;

// The manager's form of a record: its addresses in general form, the byte counters in ten bytes, 512 bytes that are
// left as they are. 0, or -1 for null or a record that is too short.
BuildForm build_voice_ip_status_packet, build_sgn_packet_stats_packet;

void registerNodeViews();
void installNodeViews();
