#pragma once
// How many rows of settings a data port has: one for each of its eight PVCs, or one if it has no PVCs.

#include "common/msan_obj.h"
#include "data/common/cards.h"
#include "platform/types.h"

inline constexpr u16 kPvcRows = 8;
inline constexpr u16 kNoPvc = 65535;  // PVC index of a one-row table on the wire, and of a command without "pvc"

// The types of the ports that have such rows, if their card is a DSL card.
inline constexpr u16 kRowPortTypes[] = {116, 56, 621, 264, 817, 818};

// 8 or 1. 0, or -1 for a port without rows.
int get_pvcnum(u16 slot, u16 port, u16* rows);
bool hasRows(const ObjIndex* object);

// The form of a check: on an ADSL card `rows` has to be 8, on a VDSL card it is set. `multiPvc`: whether the rows are
// those of PVCs. 0, or -1 with `err` filled; a port without rows has no code.
enum : int { kRowCount = -119 };
int check_pvcnum(u16 slot, u16 port, u16* rows, bool* multiPvc, SnmpErrInfo* err);

// A row's index on the wire.
inline u16 wireIndex(u16 rows, u16 row) { return rows == 1 ? kNoPvc : row; }
