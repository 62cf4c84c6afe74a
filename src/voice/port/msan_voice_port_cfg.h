#pragma once
// The configuration of POTS ports: subscriber, profiles, credentials. A number stands at one port of the node only.

#include "platform/command_line.h"
#include "voice/common/port_units.h"
#include "voice/port/voice_port_record.h"

extern const PortUnits voicePorts;

// 1 with the place and number of the first port whose number is there twice, in the list or at a port that is not in
// it; 0; -1 when the stored numbers can't be read.
int nis_port_usernumber_duplicate(LIST* list, u16* slot, u16* port, char* number);

CommandOfferList offerPortNumbers;  // for install_offers

// Fill the records of a list. 0, or -1 for a number that its field does not hold.
int nset_voiceport_datalista(const VoicePort* from, LIST* list);                    // profiles, protocol
int nset_voiceport_datalistb(const char* prefix, u32 start, u32 step, LIST* list);  // prefix and number
int nset_voiceport_datalistbx(u32 start, u32 step, LIST* list);                     // number alone
int nset_voiceport_datalistc(const VoicePort* from, LIST* list);                    // credentials

// A command's way: check, store, send. -1 while not all is stored; behind that 0, and a failure shows in `err` alone.
int ndistrib_voiceportx(LIST* list, SnmpErrInfo* err);
int ndistrib_voiceport(u16 slot);  // sends what is stored; 0 without a POTS card
void distrib_voiceport();          // of all slots
int nerase_voiceport(u16 slot);    // all but the enabling
int showrun_voiceport(Vty* vty);

// Numbers over a list of ports, for the commands that count them up. The ports of an interface string with records of a
// voice port: 0, or -1 behind a line. A number in their records, counted up in its last digits; of a long one the first
// 9, 18 or 27 stay as they are: 0, or -1 for one that its field does not hold.
bool numberIsTooLong(Vty* vty, const char* number);  // with a line
int listCounted(Vty* vty, const char* ifStr, u32 attribute, u32 step, LIST* list);
int setNumbers(const char* number, u32 step, LIST* list);

void voiceportcfg_regsnmpcmdhandle();
void ninstall_voiceportcfg_cmdline();
