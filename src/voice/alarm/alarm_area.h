#pragma once
// What the voice area calls of the alarm profiles. All give 0 or -1.

#include "platform/types.h"

struct Vty;

int init_alarm_prf();  // stores the default profile
int reg_ngn_alarm_prf_cmd_handle();
int init_alram_prf_cmd();
int alarm_prf_showrun(Vty* vty);

// The ports that use them.
int registerAlarmAttachment();
int installAlarmAttachment();
int showrun_adsl_alarm_attach(Vty* vty);
int hotplug_alarm_prf_attach(u16 slot);  // those of a returned card that have another profile than the default one
