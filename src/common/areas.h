#pragma once
// The areas of the module. Each has the same entries; an entry is a list of functions that are called in their order,
// and a call goes on when one of them fails. An item adds itself to the lists of its area.

#include <cstddef>
#include <type_traits>

#include "platform/types.h"

struct Vty;

using Step = void (*)();
using PrintStep = void (*)(Vty* vty);
using SlotStep = void (*)(u16 slot);

template <std::size_t N, class... Arguments>
void callAll(void (*const (&steps)[N])(Arguments...), std::type_identity_t<Arguments>... arguments) {
  for (const auto step : steps) step(arguments...);
}

// DSL lines and data ports.
void msan_combo_init();
void msan_combo_snmp_register();
void msan_combo_cli_install();
void msan_combo_showrun(Vty* vty);
void msan_combo_hotplug(u16 slot);

// POTS feed voltage and current.
void msan_ppda_init();
void msan_ppda_snmp_register();
void msan_ppda_cmd_install();
void msan_ppda_showrun(Vty* vty);
void msan_ppda_hotplug(u16 slot);

// Layer-2 port services.
void msan_data_init();
void msan_data_snmp_register();
void msan_data_cli_install();
void msan_data_showrun(Vty* vty);
void msan_data_hotplug(u16 slot);
void msan_data_clear_before_cardauth_db(u16 slot);  // of a slot that is given a card type: what the old card had

// Multicast: a frame without items.
void msan_mcast_init();
void msan_mcast_snmp_register();
void msan_mcast_cmd_install();
void msan_mcast_showrun(Vty* vty);
void msan_mcast_hotplug(u16 slot);

// Voice.
void msanVoice_Init();
void msanVoice_Init_Snmp();
int msanVoice_Init_Cmd();
void msanVoice_Showrun(Vty* vty);
void msan_voice_hotplug(u16 slot);
void msan_voice_init_after_cfgexecute();
