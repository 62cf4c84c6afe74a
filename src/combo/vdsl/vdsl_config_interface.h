#pragma once
// What the node calls of the VDSL profiles.

#include "platform/types.h"

struct Vty;

void vdsl_init_cfg();  // types of the profile store, default profiles
void vdsl_init_cli_cmd();
void vdsl_reg_snmp_info();
void vdsl_showrun_info(Vty* vty);
void vdsl_hotplug(u16 slot);
