#include "common/msan_obj.h"

#include <cstdio>

#include "common/debug_control.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/objects.h"

// Tells a failure under the object model's debug flag.
static int failed(int code, u16 slot, u16 port, u16 type) {
  if (giOmDebugPrint == 1) {
    std::printf("\r\nSlotNoPortConvertObjIndex err! usSlotOut = %d, usPort = %d, usType = %d", slot, port, type);
  }
  return code;
}

// The type of a slot or port by its slot's configured card. 0, or a code.
static int lookUpType(u16 slot, u16 port, u16& type) {
  const int card = get_config_card_type(slot);
  if (card <= 0) return kNoCardConfigured;
  type = static_cast<u16>(card);
  return port == 0 ? 0 : ddGetPortTypeByBoardType(type, port, &type);
}

int SlotNoPortConvertObjIndex(u16 slot, u16 port, u16 type, ObjIndex* out) {
  if (out == nullptr) return failed(kNullObject, slot, port, type);
  if (slot == 0 && port == 0) {
    *out = {1, kSystemLevel, {1}};
    return 0;
  }
  if (slot == 0) return failed(kPortWithoutSlot, slot, port, type);
  u32 number = 0;
  if (ddIsRealSlot(slot, &number) != 0) return failed(kNoSuchSlot, slot, port, type);
  if (port > kPortsOfSlot) return failed(kPortOutOfRange, slot, port, type);
  if (type == 0) {
    if (const int code = lookUpType(slot, port, type)) return failed(code, slot, port, type);
  }
  *out = {type, port == 0 ? kSlotLevel : kPortLevel, {1, slot, port}};
  return 0;
}

int ObjIndexConvertSlotNoPort(u16* slot, u16* port, u16* type, const ObjIndex* object) {
  if (slot == nullptr || port == nullptr || type == nullptr || object == nullptr) return kNullObject;
  if (object->level != kSlotLevel && object->level != kPortLevel) return kBadLevel;
  u32 number = 0;
  if (ddIsRealSlot(object->addr[1], &number) != 0) return kNoSuchSlot;
  if (object->level == kPortLevel && (object->addr[2] == 0 || object->addr[2] > kPortsOfSlot)) return kPortOutOfRange;
  *slot = object->addr[1];
  *port = object->addr[2];
  *type = object->type;
  return 0;
}

int isObjTypeExist(u16) { return 1; }

int GetFatherIndexForSonIndex(const ObjIndex* son, ObjIndex* father) {
  if (son == nullptr || father == nullptr) return -1;
  switch (son->level) {
    case kPortLevel:
      return SlotNoPortConvertObjIndex(son->addr[1], 0, 0, father) == 0 ? 0 : -1;
    case kSlotLevel:
      return SlotNoPortConvertObjIndex(0, 0, 0, father) == 0 ? 0 : -1;
    default:
      if (giOmDebugPrint == 1) std::printf("system obj no father");
      return -1;
  }
}

// `type` 0: it is looked up. Lines name the function that was called.
static int objectOf(Vty* vty, const CliAddr* address, u16 type, ObjIndex* out, const char* function) {
  if (address->level != 1 && address->level != 2) {
    vty_out(vty, "level %d err.\r\n", address->level);
    return -1;
  }
  if (SlotNoPortConvertObjIndex(address->slot, address->port, type, out) != 0) {
    vty_out(vty, "func %s SlotNoPortConvertObjIndex err.\r\n", function);
    return -1;
  }
  return 0;
}

static int nullAddress(Vty* vty) {
  vty_out(vty, "data or objIndex is NULL.\r\n");
  return -1;
}

int trans_cli_addr_2objlabel(Vty* vty, const CliAddr* address, ObjIndex* out) {
  if (address == nullptr || out == nullptr) return nullAddress(vty);
  return objectOf(vty, address, 0, out, __func__);
}

int trans_cli_addr_to_obj_label(Vty* vty, const CliAddr* address, ObjIndex* out) {
  if (address == nullptr || out == nullptr) return nullAddress(vty);
  const int card = get_config_card_type(address->slot);
  return objectOf(vty, address, static_cast<u16>(card > 0 ? card : 0), out, __func__);
}

int isObjAuthed(const ObjIndex* object) {
  if (object == nullptr) return 0;
  if (object->level == kSystemLevel) return 1;
  return (object->level == kSlotLevel || object->level == kPortLevel) && isSlotAuthed(object->addr[1]) ? 1 : 0;
}

int isObjAndTypeMatch(const ObjIndex* object, u16 type) {
  return isObjAuthed(object) == 1 && object->type == type ? 0 : -1;
}

int isSlotAuthed(u16 slot) { return get_config_card_type(slot) > 0 ? 1 : 0; }

int sysGetSlotAuthedType(u16 slot, u16* cardType, u16* subtype) {
  const int type = get_config_card_type(slot);
  if (cardType == nullptr || subtype == nullptr || type <= 0) return -1;
  *cardType = static_cast<u16>(type);
  *subtype = 0;
  return 0;
}

int sysGetSlotSwAliveStatus(u16 slot) {
  u32 out[2] = {};
  const int status = get_card_type_status(slot, &out[0], &out[1]);
  return status == 0 || status == 2 ? 1 : 0;
}

int sysGetSlotHwAliveStatus(u16 slot) { return card_exist(slot) == 1 ? 1 : 0; }

int IsPortNoValidForCardType(u16 cardType, u16 subtype, u16 port) {
  if (subtype != 0) ulogPrintf(gModuleId_Msan, kLogDebug, "cardsubtype %d error.\r\n", subtype);
  u16 amount = 0;
  if (const int code = ddGetBoardServePortAmountByType(cardType, &amount)) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "ddGetBoardServePortAmountByType error!,ret= %d\n", code);
    return 0;
  }
  if (port == 0 || port > amount) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "port %d is out range\n", port);
    return 0;
  }
  return 1;
}

u16 configuredDataCard(u16 slot) {
  const int card = get_config_card_type(slot);
  return card > 0 && caCheckCardTypeIsMsanDataCard(static_cast<u16>(card)) == 0 ? static_cast<u16>(card) : u16{0};
}

int getServeSlots(u32 (&slots)[kMostServeSlots], u32* count) {
  u32 maximum = 0;
  if (ddGetServeSlotList(slots, kMostServeSlots, count) != 0 || ddGetMaxSlotNum(&maximum) != 0) return -1;
  return *count <= maximum && *count <= kMostServeSlots ? 0 : -1;
}

int getSysMaxSlotNum() {
  u32 count = 0;
  return ddGetMaxSlotNum(&count) == 0 ? static_cast<int>(count) : -1;
}

// True while everything of the common area is traced.
static bool allTraced() { return debugWord(Area::common, DebugWord::func) == 65535; }

int getSlotPortNumberByType(u16 cardType, u16 subtype, u16 portType, u16* amount) {
  if (amount == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "Function:%s, Line:%d the pointer is NULL", __func__, __LINE__);
    return -1;
  }
  if (subtype != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "cardsubtype %d error\n", subtype);
    return -1;
  }
  u16 type = 0;
  if (const int code = ddGetPortTypeByBoardType(cardType, 1, &type)) {
    if (allTraced())
      ulogPrintf(gModuleId_Msan, kLogDebug, "%s, %d: port_type error (%d)!\n\r", __func__, __LINE__, code);
    return -1;
  }
  if (type != portType) {
    if (allTraced())
      ulogPrintf(gModuleId_Msan, kLogDebug, "%s, %d: objType error(%d)!\n\r", __func__, __LINE__, portType);
    return -1;
  }
  if (ddGetBoardServePortAmountByType(cardType, amount) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "cardtype %d or cardsubtype %d  or porttype %d is not exist\n", cardType,
               subtype, portType);
    return -1;
  }
  return 0;
}

int getSnmpCardMaxPortNumberByType(u16 cardType, u16 portType, u16* amount) {
  if (amount == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "Function:%s, Line:%d the pointer is NULL", __func__, __LINE__);
    return -1;
  }
  u16 type = 0;
  if (ddGetPortTypeByBoardType(cardType, 1, &type) != 0 || ddGetBoardServePortAmountByType(cardType, amount) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d  the input para snmpType = %d error!", __func__,
               __LINE__, cardType);
    return -1;
  }
  if (type != portType) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "Function:%s, Line:%d  the portType  = %d error!", __func__, __LINE__,
               portType);
    return -1;
  }
  return 0;
}
