#pragma once
// What the voice area calls of the alarm profiles. All give 0 or -1.

#include "platform/types.h"

struct Vty;

void init_alarm_prf();  // stores the default profile
void reg_ngn_alarm_prf_cmd_handle();
void init_alram_prf_cmd();
void alarm_prf_showrun(Vty* vty);

// The ports that use them.
void registerAlarmAttachment();
void installAlarmAttachment();
void showrun_adsl_alarm_attach(Vty* vty);
void hotplug_alarm_prf_attach(u16 slot);  // those of a returned card that have another profile than the default one
