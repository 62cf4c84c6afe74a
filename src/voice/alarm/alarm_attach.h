#pragma once
// Which port uses which alarm profile, and the thresholds' way to the card that counts: a message for each port.

#include "platform/lists.h"
#include "platform/types.h"

// Sends the ports of a list of AdslPortPrfNode their thresholds. -1 at a profile that can't be read.
int attach_alarm_prf_adapt(LIST* nodes, u32 count);

// Attribute 269. 0; DB_NOT_FOUND without a row, with an id of 0; kStoreFailed.
int set_alarm_prf_banding_db_api(u32 objectId, const void* id, u32 offset, u32 length);
int get_alarm_prf_banding_db_api(u32 objectId, void* id, u32 offset, u32 length);
int del_alarm_prf_banding_db_api(u32 objectId);
// 1 if a port of whatever kind has a row with the id, 0 if none has, kStoreFailed.
int isAlarmProfileBound(u16 id);
