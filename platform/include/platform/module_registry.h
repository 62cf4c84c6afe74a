#pragma once
// Registration of a module with the platform, and what the control card knows of itself.

#include "platform/types.h"

using LoadCallback = int (*)();

// Registers a module. The platform calls `load` (null: nothing) when the startup configuration has been
// executed. Returns the module's id, negative on failure. The other arguments are 0 and null.
i32 modInitRegister(const char* name, i32, LoadCallback load, const void*, i32, i32, i32);

// Records the module's version; negative on failure.
i32 setModVersion(i32 module, u32 version, const char* text);

// 1 on the master control card, else 0.
int hss_IsSmuMaster();
