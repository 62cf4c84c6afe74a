#pragma once
// The objects of the chassis: handles of the system, a slot or a port, and what can be asked of a slot and its card.

#include "common/msan_snmp.h"
#include "platform/types.h"

struct Vty;
struct CliAddr;

inline constexpr u16 kPortsOfSlot = 64;   // a port number is 1 to 64 everywhere
inline constexpr u16 kControlUnit = 801;  // slot number of the control unit

enum ObjLevel : u16 { kSystemLevel = 1, kSlotLevel = 2, kPortLevel = 3 };

// The handle of an object.
struct ObjIndex {
  u16 type = 0;      // card type of a slot, port type of a port, 1 of the system
  u16 level = 0;     // of ObjLevel
  u16 addr[4] = {};  // 1, slot, port, and one free
};

// Codes of the conversions.
enum ObjError : int {
  kPortWithoutSlot = -1,
  kNullObject = -2,
  kNoSuchSlot = -3,
  kPortOutOfRange = -5,
  kNoCardConfigured = -18,
  kBadLevel = -45,
};

// The handle of slot and port: 0 and 0 are the system, port 0 is the slot. Type 0: it is looked up. 0, a code above, or
// the platform's code for a type that it does not find.
int SlotNoPortConvertObjIndex(u16 slot, u16 port, u16 type, ObjIndex* out);
// The reverse, for slots and ports.
int ObjIndexConvertSlotNoPort(u16* slot, u16* port, u16* type, const ObjIndex* object);
// Every type is taken.
int isObjTypeExist(u16 type);

// A port's father is its slot, a slot's the system. 0 or -1.
int GetFatherIndexForSonIndex(const ObjIndex* son, ObjIndex* father);
// An entry of an interface string as a handle. 0, or -1 with a line on the terminal.
int trans_cli_addr_2objlabel(Vty* vty, const CliAddr* address, ObjIndex* out);
// The same with the slot's card type for the object's: whether the card has the port is left to a later check.
int trans_cli_addr_to_obj_label(Vty* vty, const CliAddr* address, ObjIndex* out);

int isObjAuthed(const ObjIndex* object);                            // 1: the system, or its slot has a configured card
int isObjAndTypeMatch(const ObjIndex* object, u16 type);            // 0: authorised and of the type; else -1
int isSlotAuthed(u16 slot);                                         // 1 or 0
int sysGetSlotAuthedType(u16 slot, u16* cardType, u16* subtype);    // 0 or -1; the subtype is always 0
int sysGetSlotSwAliveStatus(u16 slot);                              // 1: the card's software is up
int sysGetSlotHwAliveStatus(u16 slot);                              // 1: a card is there
int IsPortNoValidForCardType(u16 cardType, u16 subtype, u16 port);  // 1 or 0
int getSysMaxSlotNum();                                             // -1 on failure

u16 configuredDataCard(u16 slot);  // the type of a data card that is configured; 0 for any other, and for none

// The slots of service cards, ascending. 0, or -1 when they can't be had or are more than the chassis has.
inline constexpr u32 kMostServeSlots = 100;
int getServeSlots(u32 (&slots)[kMostServeSlots], u32* count);

// The ports of a card type, all of which are of the type asked for. 0 or -1.
int getSlotPortNumberByType(u16 cardType, u16 subtype, u16 portType, u16* amount);
int getSnmpCardMaxPortNumberByType(u16 cardType, u16 portType, u16* amount);

// --- The check of an object in a request -----------------------------------------------------------------------

// Option bits: bit 30, the card must be there; bits 30 and 29, it must be up as well. Any other value: no test of the
// card. They are the flags of ForEachTargetTree too, which knows no other value than 0 and these.
inline constexpr u32 kAnyCard = 0x10000000;
inline constexpr u32 kCardPresent = 0x40000000;
inline constexpr u32 kCardUp = 0x60000000;

// 0 or -1 with `err` filled. The two ids are labels that no test reads.
int checkObjErr(u32 messageId, u32 operationId, const ObjIndex* object, u32 option, SnmpErrInfo* err);
int InCheckObjBaseErr(const ObjIndex* object, u32 option, SnmpErrInfo* err);  // -201 when the slot count can't be had
int InCheckObjExtErr(u32 messageId, u32 operationId, const ObjIndex* object, u32 option, SnmpErrInfo* err);
