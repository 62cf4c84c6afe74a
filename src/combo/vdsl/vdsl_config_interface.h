#pragma once
// What the node calls of the VDSL profiles.

#include "platform/types.h"

struct Vty;

int vdsl_init_cfg();  // types of the profile store, default profiles
int vdsl_init_cli_cmd();
int vdsl_reg_snmp_info();
int vdsl_showrun_info(Vty* vty);
int vdsl_hotplug(u16 slot);
