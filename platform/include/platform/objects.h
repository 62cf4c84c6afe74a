#pragma once
// The chassis as the module sees it: slots, cards, ports and their objects.

#include <array>

#include "platform/types.h"

// Slots. 0 is success, or yes.
int ddIsRealSlot(u32 slot, u32* out);
int ddIsServeBoardSlot(u32 slot, u32* out);
int ddGetMaxSlotNum(u32* count);
int ddGetServeSlotList(u32* slots, u32 capacity, u32* count);  // ascending, whether or not they have a card

// Card types. 0 is success; negative for a type that the catalogue does not have.
int ddGetBoardServePortAmountByType(u16 cardType, u16* amount);
int ddGetPortTypeByBoardType(u16 cardType, u16 port, u16* portType);
int dm_get_port_type(u16 cardType, i32, i32, u16 port, u16* portType);

int get_slot_port_num_by_slotno(u16 slot);  // ports of the authorised card, 0 without one

// 0: the card type is of the family.
int caCheckCardTypeIsADSLCard(u16 cardType);
int caCheckCardTypeIsVDSLCard(u16 cardType);
int caCheckCardTypeIsMsanCard(u16 cardType);
int caCheckCardTypeIsMsanDataCard(u16 cardType);
int caCheckCardTypeIsMsanPotsCard(u16 cardType);

// The card of a slot. The types are 0 when there is none.
int card_exist(u16 slot);                        // 1: present
int get_config_card_type(u16 slot);              // authorised
int get_card_type(u16 slot);                     // running
int get_exist_card_type(u16 slot);               // present
int get_valid_servicecard_type(u16 slot);        // present, and of the type that is authorised
int get_card_type_status(u16 slot, u32*, u32*);  // 0 or 2: the card's software is up

// Negative unless the port can be asked for something: its card is there and up. The last argument is 0.
int gpon_slot_online_port_common_examine(i32 moduleId, u16 slot, u16 port, i32);
// Whether a port of a service card can be used: its slot must be authorised and its card have the port, there or not.
// Negative if not.
int service_slot_author_port_common_examine(i32 module, u16 slot, u16 port, i32);

// Object ids, the keys of what is stored for a slot or a port. 0 is success.
int omSlot2ObjId(u16 slot, u32* id);
int omOltport2ObjId(u16 slot, u16 port, u32* id);

// An object's place: level 1 system, 2 slot, 3 port; addr[0] is 1, addr[1] the slot, addr[2] the port.
struct OmLevelId {
  u16 level = 0;
  u16 addr[4] = {};
};
int omObjId2LevelId(u32 id, OmLevelId* place);

// The object tree: the frame's children are its authorised slots, a slot's children its ports.
struct OmObject {
  u16 number = 0;  // slot or port
  u16 type = 0;    // card type or port type
  u32 childCount = 0;
  OmObject** m_pChildObjList = nullptr;  // an entry may be null
};
extern OmObject* gpOmFrameObj;
int omGetChildAddr(const OmObject* parent, i32 level, u16 number, OmObject** child);  // level 2: a slot of the frame

// The table of cards, by the place that a slot has in it.
struct CmSlot {
  u8 ahead[32];
  u8 mac[6];
  u8 behind[46];
};
static_assert(sizeof(CmSlot) == 84);
inline constexpr u32 kCmSlots = 21;
extern std::array<CmSlot, kCmSlots> cm_slot;
u32 translateslot_in(u8 slot);  // may be outside the table

// 1: traces of objects go to standard output.
extern i32 giOmDebugPrint;
extern i32 giOmRunPrint;
