#pragma once
// Messages to the service cards. Payloads are the sender's and are not kept.

#include "platform/types.h"

// Deliver a command to the card in a slot, without an answer. Negative on failure.
int dm_MakeCmdPkt_GPON(u16 slot, u16 id, const void* payload, u32 length);
int dm_MakeCmdPkt_GEPON(u16 slot, u16 id, const void* payload, u32 length);
int dm_MakeCmdPkt_EPON(u16 slot, u16 id, const void* payload, u32 length);

// Send a request and wait for the answer. `responseLen` goes in as the size of `response` and comes back as the
// answer's length; a longer answer is cut. Negative on failure. The unnamed arguments are 0.
int gpon_send_and_wait_for_response_copy(u16 slot, u16 id, i32, const void* request, u32 requestLen, void* response,
                                         u32* responseLen, i32);
int gepon_send_and_wait_for_response_copy(u16 slot, u16 id, i32, i32, const void* request, u32 requestLen,
                                          void* response, u32* responseLen, i32);
