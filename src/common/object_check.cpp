// The check of an object in a request.

#include <cstdio>

#include "common/msan_obj.h"
#include "common/wire.h"
#include "platform/objects.h"

enum ObjCheckError : u16 { kNotValid = 65534, kNoObject = 65533, kNotAlive = 65532, kPortRange = 65529 };

// Appends a detail of 2 bytes to the record, as far as it has room.
static void append(SnmpErrInfo* err, u16 value) {
  if (err->errDataLen + 2 > sizeof err->errData) return;
  putNumber(err->errData + err->errDataLen, 2, value);
  err->errDataLen += 2;
}

static int refuse(SnmpErrInfo* err, u16 code, u16 detail) {
  err->errCode = code;
  append(err, detail);
  return -1;
}

int InCheckObjBaseErr(const ObjIndex* object, u32, SnmpErrInfo* err) {
  if (object == nullptr || err == nullptr) return -1;
  if (object->level == kSystemLevel && object->addr[0] != 1) return refuse(err, kNotValid, object->addr[0]);
  u32 slots = 0;
  if (ddGetMaxSlotNum(&slots) != 0) return -201;
  if (object->level == kSystemLevel) return 0;
  const u16 slot = object->addr[1];
  const u16 port = object->addr[2];
  if (slot == 0 || (slot >= slots && slot != kControlUnit)) return refuse(err, kNotValid, slot);
  const bool isPort = object->level == kPortLevel;
  if (isPort && (port == 0 || port > kPortsOfSlot)) {
    refuse(err, kPortRange, slot);
    append(err, port);
    return -1;
  }
  u32 id = 0;
  if ((isPort ? omOltport2ObjId(slot, port, &id) : omSlot2ObjId(slot, &id)) != 0) return refuse(err, kNoObject, slot);
  return 0;
}

int InCheckObjExtErr(u32, u32, const ObjIndex* object, u32 option, SnmpErrInfo* err) {
  if (object == nullptr || err == nullptr) return -1;
  if ((option & kCardPresent) == 0 || object->level == kSystemLevel) return 0;
  const u16 slot = object->addr[1];
  const bool up = (option & kCardUp) != kCardUp || sysGetSlotSwAliveStatus(slot) == 1;
  return up && sysGetSlotHwAliveStatus(slot) == 1 ? 0 : refuse(err, kNotAlive, slot);
}

int checkObjErr(u32 messageId, u32 operationId, const ObjIndex* object, u32 option, SnmpErrInfo* err) {
  if (object == nullptr || err == nullptr) return -1;
  if (object->level == 0 || object->level > kPortLevel) {
    if (giOmDebugPrint == 1) std::printf("Object level (%d)  is out range.\r\n", object->level);
    return -1;
  }
  if (InCheckObjBaseErr(object, option, err) != 0) return -1;
  return InCheckObjExtErr(messageId, operationId, object, option, err);
}
