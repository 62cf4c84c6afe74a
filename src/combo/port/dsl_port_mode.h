#pragma once
// Whether a DSL line carries ATM cells or packets, which decides how many PVCs its port has.

#include "common/msan_obj.h"

enum DslPortMode : u16 { kAtmMode = 1, kPtmMode = 2 };

// 0 with the mode set, or -1 for what is no DSL line or whose profile can't be read.
int get_dsl_obj_mode(const ObjIndex* object, u16* mode);
int get_dsl_port_mode(u16 slot, u16 port, u16* mode);
