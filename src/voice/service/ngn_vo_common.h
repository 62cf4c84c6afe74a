#pragma once
// The gate to the NGN side, and the slots with POTS cards.

#include "platform/lists.h"
#include "platform/types.h"

inline constexpr u16 kVoiceIpMessage = 3076, kVoiceVlanMessage = 3077;
inline constexpr int kGateClosed = -151;

// Sends the nodes that vBuildMscPacketI made. 0; -1 for null. The messages 3076 and 3077 alone are held back while no
// protocol type is set (kGateClosed), and end with the result of a send that fails.
int send_ngn_msc_packet(u32 id, const LIST* list);

// The slots with a configured POTS card, ascending. `amount` is the array's capacity, and becomes the count. 0; -1, or
// the platform's code.
int get_msan_card_slot_list(u16* slots, u16* amount);
