#pragma once
// Whether a CES card works locally, remotely or for circuit emulation.

#include "data/raw/raw_record.h"

struct Vty;

enum WorkMode : u16 { kLocalMode = 1, kRemoteMode = 2, kCesMode = 3 };

struct CardWorkModeRecord {
  Le16 slot = 0;
  u8 reserved[18] = {};
  Le16 mode = kLocalMode;
  u8 reserved2[32] = {};
};
static_assert(sizeof(CardWorkModeRecord) == 54);

void snmp_reg_card_work_mode();
void install_card_work_mode();
void showrun_card_work_mode(Vty* vty);
void hotplug_card_work_mode(u16 slot);
void card_unauth_card_work_mode(u16 slot);

// 0 or a code: the card, the mode.
int check_card_work_mode(const CardWorkModeRecord& record);

// The store, by the slot's object. A slot without a row works locally, and has none to delete. 0 or -900.
int set_card_work_mode_db(u32 objectId, u16 mode);
int get_card_work_mode_db(u32 objectId, u16* mode);
void del_card_work_mode_db(u32 objectId);
