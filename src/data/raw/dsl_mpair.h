#pragma once
// Pairs of neighbouring DSL ports that a card bonds into one line, master and slave. A pair has a number that is the
// node's, not the card's.

#include "data/raw/raw_record.h"

struct Vty;

inline constexpr u16 kMpairs = 128;  // numbered from 1

struct MpairRecord {
  Le16 id = 0;
  Le16 slot = 0;
  Le16 mport = 0;
  Le16 slaveId = 1;  // always stored as 1
  Le16 sport = 0;
  u8 reserved[32] = {};
};
static_assert(sizeof(MpairRecord) == 42);

void snmp_reg_mpair();
void install_mpair();
void showrun_mpair(Vty* vty);
void hotplug_mpair(u16 slot);
void card_unauth_mpair(u16 slot);

// 0 or a code: the number, the card, two ports that go together.
int check_mpair(const MpairRecord& record);

// The store. 0; -1 for null; -900 for what fails, a pair that there is not among it.
int set_mpair_db(const MpairRecord* record);
int get_mpair_db(MpairRecord* record);  // by its number
int del_mpair_db(u16 id, u16* slot);    // gives its slot
