#pragma once
// Whether a card looks for loops behind a data port, and whether it takes the port back into service by itself. The
// rows are laid down when a card is authorised; a port without one can't be read.

#include "common/msan_obj.h"
#include "data/common/data_item.h"

// The value of the attribute, as a card is authorised with it.
struct LoopDetectValue {
  u8 detectEnable = 1;
  u8 recoveryEnable = 1;

  bool operator==(const LoopDetectValue&) const = default;
};

// A record of a work list.
struct LoopDetectRecord {
  ObjIndex object;
  LoopDetectValue value;
};

extern const DataItem loopDetect;

void loopdetect_callback_after_cardauth_db(u16 slot);  // of a data card: both on for all ports
void loop_detect_cfg_recover(u16 slot);
void show_run_loopdetect(Vty* vty);  // of all slots; ends at the first port that can't be read

// Attribute 286. 0; -1 for a null value, -2 for a part, -900 for all else, a port without a row among it. On a control
// card that is not the master nothing is written, which is fine.
int set_loopdetect_db_api(u32 objectId, const void* value, u32 offset, u32 length);
int get_loopdetect_db_api(u32 objectId, void* value, u32 offset, u32 length);
int del_loopdetect_db_api(u32 objectId);
