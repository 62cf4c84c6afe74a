#pragma once
// The addresses that the lines of a data card have learned. Nothing is kept of them: the card is asked, and where it
// does not answer, its ports have none.
//
// A card's answer: u32 entries, and for each u16 slot, u16 port, 16 bytes, u16 PVCs; for each PVC u16 index, u16
// addresses in all, u16 of those here, and for each of these 6 bytes of address, u16 VLAN, 8 bytes.

#include "platform/types.h"

inline constexpr u16 kLineMacMessage = 2818;
inline constexpr u32 kMostLearned = 596000;  // of a card's answer
inline constexpr u32 kLearnedAddress = 16;   // bytes

void register_linemactbl_msg_snmp();
void install_gepon_msan_port_mactable_element();
