#pragma once
// Messages to the node's voice (NGN) side, addressed by command id alone.

#include "platform/types.h"

// Hands over a configuration frame; 0 is success. The unnamed arguments are 0.
int writeNgnCmd(u16 id, i32, const void* data, u32 length, i32, i32, i32, i32);

// Asks and waits; 0 is success. `responseLen` goes in as the size of `response` and comes back as the answer's
// length; a longer answer is cut.
int readNgnCmd(u16 id, i32, const void* request, u32 requestLen, void* response, u32* responseLen, i32, i32);

// Lets the voice side send a card its RTP address, once the card is up. 0 or positive on success.
int send_ngn_voice_rtp_ip_by_slot(u16 slot);
