#pragma once
// The administrative switch of POTS ports: a field of their configuration with a message of its own.

#include "voice/common/port_units.h"

struct VoicePortEnable {
  u8 enable = 0;  // 1 enabled
};

// Writes the switches of a list into the ports' records. 0, or -1; ports ahead of the failed one stay changed.
int set_voice_port_enable_objdata(u32 offset, LIST* list);
int get_voice_port_enable_objdata(u32 offset, LIST* list);

// A command's way: check, store, report, send. -1 while not all is stored; behind that 0, and a failure shows in `err`.
int distrib_voice_port_enable(LIST* list, SnmpErrInfo* err);
// Tells the NGN side the switches of all ports, a message a slot; ends at the first failure.
void voice_port_enable_hotplug();

void msan_reg_vportenable_snmp();
int msan_init_vportenable_cmd();
