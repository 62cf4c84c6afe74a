#pragma once
// The areas of the module. Each has the same entries; an entry is a list of functions that are called in their order,
// and a call goes on when one of them fails. An item adds itself to the lists of its area.

#include <cstddef>
#include <type_traits>

#include "platform/types.h"

struct Vty;

using Step = int (*)();
using PrintStep = int (*)(Vty* vty);
using SlotStep = int (*)(u16 slot);

// Calls all in order; the last one's result.
template <std::size_t N, class... Arguments>
int callAll(int (*const (&steps)[N])(Arguments...), std::type_identity_t<Arguments>... arguments) {
  int result = 0;
  for (const auto step : steps) result = step(arguments...);
  return result;
}

// DSL lines and data ports.
int msan_combo_init();
int msan_combo_snmp_register();
int msan_combo_cli_install();
int msan_combo_showrun(Vty* vty);
int msan_combo_hotplug(u16 slot);

// POTS feed voltage and current.
int msan_ppda_init();
int msan_ppda_snmp_register();
int msan_ppda_cmd_install();
int msan_ppda_showrun(Vty* vty);
int msan_ppda_hotplug(u16 slot);

// Layer-2 port services.
int msan_data_init();
int msan_data_snmp_register();
int msan_data_cli_install();
int msan_data_showrun(Vty* vty);
int msan_data_hotplug(u16 slot);
int msan_data_clear_before_cardauth_db(u16 slot);  // of a slot that is given a card type: what the old card had

// Multicast: a frame without items.
int msan_mcast_init();
int msan_mcast_snmp_register();
int msan_mcast_cmd_install();
int msan_mcast_showrun(Vty* vty);
int msan_mcast_hotplug(u16 slot);

// Voice.
int msanVoice_Init();
int msanVoice_Init_Snmp();
int msanVoice_Init_Cmd();
int msanVoice_Showrun(Vty* vty);
int msan_voice_hotplug(u16 slot);
int msan_voice_init_after_cfgexecute();
