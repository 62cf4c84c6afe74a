#pragma once
// The module's own facts, and its start.

#include "msan/entries.h"
#include "platform/types.h"

extern i32 gModuleId_Msan;   // as the platform gave it
extern i32 g_MsanMemPoolId;  // MsanPool: all dynamic memory of the module
extern const u32 gModuleVer_Msan;

inline constexpr u32 kMsanPoolSize = 0xA00000;

// 1 while the startup configuration is executed: checks are skipped then.
int inRecoverConfProcess();
