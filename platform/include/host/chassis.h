#pragma once
// The chassis: 20 slots, of which 1 to 8 and 11 to 18 hold service cards, 9 and 10 are the control cards; 801 is the
// control unit.

#include <shared_mutex>
#include <span>
#include <string_view>

#include "platform/objects.h"

namespace host {

inline constexpr u16 kSlots = 20;
inline constexpr u16 kControlUnit = 801;
inline constexpr u16 kPorts = 64;  // of a slot at most

enum Family : u8 { ADSL = 1, VDSL = 2, DATA = 4, POTS = 8 };

struct CardType {
  std::string_view name;
  u16 number = 0;
  u8 families = 0;  // of Family
  u16 portType = 0;
  u16 ports = 0;
};

// All card types, by name of the catalogue.
std::span<const CardType> cardTypes();
// By name or by number in digits; null if the catalogue has none.
const CardType* findCardType(std::string_view nameOrNumber);

enum class CardState { absent, present /* its software does not run */, up };

bool holdsServiceCard(u16 slot);
const CardType* authorisedType(u16 slot);  // null: none
CardState cardState(u16 slot);
u32 cardStarts(u16 slot);  // how often one has come up there: what starts anew knows nothing

// Gives a slot a card type and builds its tree, or removes both. The caller calls the module.
void authorise(u16 slot, const CardType& type);
void unauthorise(u16 slot);
void setCardState(u16 slot, CardState state);  // a card that is there is of the type that is authorised

// Takes all types and cards away.
void clearChassis();

// The module walks the object tree without a lock. A door holds this gate shared while it serves a request; what
// changes the tree or exchanges the module (authorise, unauthorise, clearChassis, a restart) holds it alone. Reading
// from this header and cardState changes need no gate. Nodes of the tree are never freed.
std::shared_mutex& requestGate();

// A database object id is slot * 65536 + port, port 0 for the slot itself.
inline constexpr u32 objectId(u16 slot, u16 port) { return u32{slot} << 16 | port; }

}  // namespace host
