#include "host/chassis.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <mutex>

#include "constants.h"
#include "host/log.h"

namespace host {

namespace {

// clang-format off
constexpr CardType kCatalogue[] = {
    {"adsl16",      548, ADSL | DATA,        116, 16},
    {"adsl32",      542, ADSL | DATA,        116, 32},
    {"adsl64",      579, ADSL | DATA,        116, 64},
    {"vdsl16",      510, VDSL | DATA,         56, 16},
    {"vdsl32",      580, VDSL | DATA,         56, 32},
    {"vdsl64",      583, VDSL | DATA,         56, 64},
    {"dsl16",       556, DATA,               621, 16},
    {"eth8",        569, DATA,               264,  8},
    {"eth16",       584, DATA,               622, 16},
    {"eth24",       585, DATA,               699, 24},
    {"adsl32-pots",  12, ADSL | DATA | POTS, 817, 32},
    {"vdsl32-pots",  13, VDSL | DATA | POTS, 818, 32},
    {"pots32",       62, POTS,               600, 32},
    {"pots64",       63, POTS,               600, 64},
    {"pots32-data",  61, POTS | DATA,        600, 32},
    {"ces32",       587, DATA,               700, 32},
    {"foreign8",    900, 0,                  901,  8},
};
// clang-format on

// A slot object whose type were a port type would be taken for a port by a walk over the tree.
consteval bool catalogueIsSound() {
  for (const CardType& a : kCatalogue) {
    if (a.ports == 0 || a.ports > kPorts) return false;
    for (const CardType& b : kCatalogue) {
      if (a.number == b.portType) return false;
      if (&a != &b && (a.name == b.name || a.number == b.number)) return false;
    }
  }
  return true;
}
static_assert(catalogueIsSound());

// A slot with its part of the object tree. What it is asked from any thread is atomic, the tree is behind the gate.
struct Slot {
  std::atomic<const CardType*> authorised{nullptr};
  std::atomic<CardState> state{CardState::absent};
  std::atomic<u32> starts{0};
  OmObject object;
  std::array<OmObject, kPorts> ports;
  std::array<OmObject*, kPorts> children{};
};

std::array<Slot, kSlots> slots;
std::array<OmObject*, kSlots> frameChildren{};
OmObject frame;
std::mutex treeMutex;

Slot* findSlot(u32 slot) { return slot >= 1 && slot <= kSlots ? &slots[slot - 1] : nullptr; }

void buildSlot(Slot& slot, u16 number, const CardType& type) {
  slot.object = {number, type.number, type.ports, slot.children.data()};
  for (u16 i = 0; i < type.ports; ++i) {
    slot.ports[i] = {static_cast<u16>(i + 1), type.portType, 0, nullptr};
    slot.children[i] = &slot.ports[i];
  }
}

// The frame's children are its authorised slots, without gaps.
void buildFrame() {
  frameChildren.fill(nullptr);
  u32 count = 0;
  for (Slot& slot : slots)
    if (slot.authorised != nullptr) frameChildren[count++] = &slot.object;
  frame = {1, 1, count, frameChildren.data()};
}

const CardType* typeByNumber(u32 number) {
  const auto* found = std::find_if(std::begin(kCatalogue), std::end(kCatalogue),
                                   [number](const CardType& type) { return type.number == number; });
  return found != std::end(kCatalogue) ? found : nullptr;
}

int familyAnswer(u16 cardType, int families) {
  const CardType* type = typeByNumber(cardType);
  return type != nullptr && (type->families & families) != 0 ? 0 : -1;
}

int numberIf(bool condition, u16 slot) {
  const CardType* type = authorisedType(slot);
  return condition && type != nullptr ? type->number : 0;
}

}  // namespace

std::span<const CardType> cardTypes() { return kCatalogue; }

const CardType* findCardType(std::string_view nameOrNumber) {
  for (const CardType& type : kCatalogue)
    if (type.name == nameOrNumber) return &type;
  u32 number = 0;
  const char* const end = nameOrNumber.data() + nameOrNumber.size();
  const auto [stop, error] = std::from_chars(nameOrNumber.data(), end, number);
  return error == std::errc() && stop == end ? typeByNumber(number) : nullptr;
}

bool holdsServiceCard(u16 slot) { return (slot >= 1 && slot <= 8) || (slot >= 11 && slot <= 18); }

const CardType* authorisedType(u16 slot) {
  const Slot* found = findSlot(slot);
  return found != nullptr ? found->authorised.load() : nullptr;
}

CardState cardState(u16 slot) {
  const Slot* found = findSlot(slot);
  return found != nullptr ? found->state.load() : CardState::absent;
}

u32 cardStarts(u16 slot) {
  const Slot* found = findSlot(slot);
  return found != nullptr ? found->starts.load() : 0;
}

void authorise(u16 number, const CardType& type) {
  if (!holdsServiceCard(number)) {
    platformError("slot %u holds no service card", number);
    return;
  }
  const std::lock_guard lock(treeMutex);
  Slot& slot = *findSlot(number);
  buildSlot(slot, number, type);
  slot.authorised = &type;
  buildFrame();
}

void unauthorise(u16 number) {
  const std::lock_guard lock(treeMutex);
  Slot* slot = findSlot(number);
  if (slot == nullptr) return;
  slot->authorised = nullptr;
  slot->object = {};
  buildFrame();
}

void setCardState(u16 number, CardState state) {
  Slot* slot = findSlot(number);
  if (slot != nullptr && slot->state.exchange(state) != CardState::up && state == CardState::up) ++slot->starts;
}

void clearChassis() {
  for (u16 number = 1; number <= kSlots; ++number) {
    unauthorise(number);
    setCardState(number, CardState::absent);
  }
}

std::shared_mutex& requestGate() {
  static std::shared_mutex gate;
  return gate;
}

}  // namespace host

using host::CardState;
using host::CardType;

OmObject* gpOmFrameObj = &host::frame;

// A slot's place is its number; its address 02-00-00-00-00-SLOT.
std::array<CmSlot, kCmSlots> cm_slot = [] {
  std::array<CmSlot, kCmSlots> cards{};
  for (u8 slot = 0; slot < kCmSlots; ++slot) {
    cards[slot].mac[0] = 2;
    cards[slot].mac[5] = slot;
  }
  return cards;
}();
u32 translateslot_in(u8 slot) { return slot; }
i32 giOmDebugPrint = 0;
i32 giOmRunPrint = 0;

namespace {

int answer(bool yes, u32* out) {
  if (out != nullptr) *out = yes ? 1 : 0;
  return yes ? 0 : -1;
}

bool isReal(u32 slot) { return (slot >= 1 && slot <= host::kSlots) || slot == host::kControlUnit; }

// All ports of a card are of one type.
int portTypeOf(u16 cardType, u16 port, u16* portType) {
  const CardType* type = host::typeByNumber(cardType);
  if (type == nullptr || port == 0 || portType == nullptr) return -1;
  *portType = type->portType;
  return 0;
}

}  // namespace

int ddIsRealSlot(u32 slot, u32* out) { return answer(isReal(slot), out); }

int ddIsServeBoardSlot(u32 slot, u32* out) {
  return answer(slot <= host::kSlots && host::holdsServiceCard(static_cast<u16>(slot)), out);
}

int ddGetMaxSlotNum(u32* count) {
  if (count == nullptr) return -1;
  *count = host::kSlots;
  return 0;
}

int ddGetServeSlotList(u32* list, u32 capacity, u32* count) {
  if (list == nullptr || count == nullptr) return -1;
  *count = 0;
  for (u16 slot = 1; slot <= host::kSlots && *count < capacity; ++slot)
    if (host::holdsServiceCard(slot)) list[(*count)++] = slot;
  return 0;
}

int ddGetBoardServePortAmountByType(u16 cardType, u16* amount) {
  const CardType* type = host::typeByNumber(cardType);
  if (type == nullptr || amount == nullptr) return -1;
  *amount = type->ports;
  return 0;
}

int get_slot_port_num_by_slotno(u16 slot) {
  u16 amount = 0;
  return ddGetBoardServePortAmountByType(static_cast<u16>(get_config_card_type(slot)), &amount) == 0 ? amount : 0;
}

int gpon_slot_online_port_common_examine(i32, u16 slot, u16 port, i32 constant) {
  if (host::constantsDiffer(__func__, 0, {constant})) return -1;
  const bool online = get_card_type(slot) > 0 && port >= 1 && port <= get_slot_port_num_by_slotno(slot);
  return online ? 0 : -1;
}

int ddGetPortTypeByBoardType(u16 cardType, u16 port, u16* portType) { return portTypeOf(cardType, port, portType); }
int dm_get_port_type(u16 cardType, i32 c0, i32 c1, u16 port, u16* portType) {
  return host::constantsDiffer(__func__, 0, {c0, c1}) ? -1 : portTypeOf(cardType, port, portType);
}

int caCheckCardTypeIsADSLCard(u16 cardType) { return host::familyAnswer(cardType, host::ADSL); }
int caCheckCardTypeIsVDSLCard(u16 cardType) { return host::familyAnswer(cardType, host::VDSL); }
int caCheckCardTypeIsMsanCard(u16 cardType) { return host::familyAnswer(cardType, ~0); }
int caCheckCardTypeIsMsanDataCard(u16 cardType) { return host::familyAnswer(cardType, host::DATA); }
int caCheckCardTypeIsMsanPotsCard(u16 cardType) { return host::familyAnswer(cardType, host::POTS); }

int card_exist(u16 slot) { return host::cardState(slot) != CardState::absent ? 1 : 0; }
int get_config_card_type(u16 slot) { return host::numberIf(true, slot); }
int get_card_type(u16 slot) { return host::numberIf(host::cardState(slot) == CardState::up, slot); }
int get_exist_card_type(u16 slot) { return host::numberIf(host::cardState(slot) != CardState::absent, slot); }
int get_valid_servicecard_type(u16 slot) { return get_exist_card_type(slot); }

int get_card_type_status(u16 slot, u32* type, u32* subtype) {
  if (type != nullptr) *type = static_cast<u32>(get_exist_card_type(slot));
  if (subtype != nullptr) *subtype = 0;
  return host::cardState(slot) == CardState::up ? 0 : 1;
}

int service_slot_author_port_common_examine(i32, u16 slot, u16 port, i32 constant) {
  if (host::constantsDiffer(__func__, 0, {constant})) return -1;
  constexpr int kNoSlot = -3, kNoPort = -5;
  const int card = get_config_card_type(slot);
  u16 ports = 0;
  if (card <= 0 || ddGetBoardServePortAmountByType(static_cast<u16>(card), &ports) != 0) return kNoSlot;
  return port >= 1 && port <= ports ? 0 : kNoPort;
}

int omSlot2ObjId(u16 slot, u32* id) {
  if (id == nullptr || !isReal(slot)) return -1;
  *id = host::objectId(slot, 0);
  return 0;
}

int omOltport2ObjId(u16 slot, u16 port, u32* id) {
  const CardType* type = host::authorisedType(slot);
  const u16 ports = slot == host::kControlUnit ? host::kPorts : type != nullptr ? type->ports : u16{0};
  if (id == nullptr || port == 0 || port > ports) return -1;
  *id = host::objectId(slot, port);
  return 0;
}

int omObjId2LevelId(u32 id, OmLevelId* place) {
  const auto slot = static_cast<u16>(id >> 16);
  const auto port = static_cast<u16>(id & 0xFFFF);
  if (place == nullptr || port > host::kPorts || (!isReal(slot) && id != 0)) return -1;
  *place = {static_cast<u16>(id == 0 ? 1 : port == 0 ? 2 : 3), {1, slot, port, 0}};
  return 0;
}

int omGetChildAddr(const OmObject* parent, i32 level, u16 number, OmObject** child) {
  if (child == nullptr) return -1;
  *child = nullptr;
  if (parent == nullptr || (level != 2 && level != 3)) return -1;
  for (u32 i = 0; i < parent->childCount && *child == nullptr; ++i)
    if (OmObject* one = parent->m_pChildObjList[i]; one != nullptr && one->number == number) *child = one;
  return *child != nullptr ? 0 : -1;
}
