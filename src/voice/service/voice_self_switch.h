#pragma once
// Whether the node switches calls between its own ports: stored, and told the NGN side.

#include "platform/command_line.h"

int ninit_voice_self_switch();
int ndistrib_voice_self_switch();
int nshowrun_voice_self_switch(Vty* vty);
int registerVoiceSelfSwitch();
int installVoiceSelfSwitch();
