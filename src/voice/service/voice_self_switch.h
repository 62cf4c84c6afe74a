#pragma once
// Whether the node switches calls between its own ports: stored, and told the NGN side.

#include "platform/command_line.h"

void ninit_voice_self_switch();
void ndistrib_voice_self_switch();
void nshowrun_voice_self_switch(Vty* vty);
void registerVoiceSelfSwitch();
void installVoiceSelfSwitch();
