// The frames of profile messages. Behind the envelope of 32 bytes stands a count, of 2 bytes for profiles and of 4 for
// ports, and that many items.

#include <cstring>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/profile/profile_kind.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "platform/log.h"

static constexpr u32 kArea = 32;       // where a request's count stands
static constexpr u32 kReplyArea = 36;  // and a reply's
static constexpr u32 kReadItem = 20;

static int answerError(const SnmpCall& call, const SnmpErrInfo& err) {
  return answerError(call.id, err, call.reply, call.replyLen);
}

static int answerCode(const SnmpCall& call, u16 code) { return answerError(call, {code, {}, 0}); }

// The count is told in as many bytes as it was read from: 2 of profiles, 4 of ports.
static int answerProfileCount(const SnmpCall& call, u32 count) {
  SnmpErrInfo err;
  reject(&err, kTooManyProfiles, {static_cast<u16>(count)});
  return answerError(call, err);
}

static int answerPortCount(const SnmpCall& call, u32 count) {
  SnmpErrInfo err;
  rejectLong(&err, kTooManyItems, count);
  return answerError(call, err);
}

static int answerSuccess(const SnmpCall& call) { return answerSuccess(call.reply, call.replyLen); }

static WireIn areaOf(const SnmpCall& call) {
  if (call.data == nullptr || call.length < static_cast<i32>(kArea)) return {};
  return {call.data + kArea, static_cast<u32>(call.length) - kArea};
}

Writer beginReply(const SnmpCall& call) {
  Writer to(WireOut(call.reply, kMaxPacket));
  to.number(4, 1);
  to.zeros(kReplyArea - 4);
  return to;
}

int endReply(const SnmpCall& call, const Writer& to) {
  *call.replyLen = to.length();
  return 0;
}

void registerProfileMessages(std::span<const ProfileMessage> messages) {
  for (const ProfileMessage& message : messages) {
    const SnmpMsgReg row{message.id, {1, 1}, message.set, message.get, message.mostReply, message.description};
    if (SnmpMsgRegister(&row) != 0) ulogPrintf(gModuleId_Msan, kLogDebug, "register %s failed!\r\n", message.name);
  }
}

// --- Profiles ---

// Decodes all items behind the count.
static int decodeAll(const ProfileKind& kind, const SnmpCall& call, SnmpErrInfo* err, Reader& from, u8* records,
                     u32 count) {
  for (u32 i = 0; i < count; ++i) {
    u32 length = 0;
    auto* record = reinterpret_cast<ProfileHead*>(records + i * kind.recordSize());
    if (decodeProfile(kind, err, record, &length, from.rest()) != 0) {
      if (err->errCode == kRequestTooShort) {
        ulogPrintf(gModuleId_Msan, kLogDebug, "%s error,iInDataLen = %d!", kind.texts.writeName, call.length);
      }
      return -1;
    }
    from.skip(length);
  }
  return 0;
}

int snmpWriteProfiles(const ProfileKind& kind, const SnmpCall& call) {
  Reader from(areaOf(call));
  const u32 count = from.number(2);
  if (from.failed()) return answerCode(call, kRequestTooShort);
  if (count == 0) return answerSuccess(call);
  if (count > kind.count()) return answerProfileCount(call, count);
  const PoolBytes records(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kind.recordSize() * count, __FILE__, __LINE__)));
  if (records == nullptr) return answerCode(call, kNoMemory);
  SnmpErrInfo err;
  if (decodeAll(kind, call, &err, from, records.get(), count) != 0) return answerError(call, err);
  const ProfileLock lock(kind);
  const int result = kind.write(kind, &err, reinterpret_cast<ProfileHead*>(records.get()), static_cast<u16>(count));
  if (result == 0 || kind.reportsFailure) reportChange(kNode, kind.writeId, 1);
  return result == 0 ? answerSuccess(call) : answerError(call, err);
}

int snmpDeleteProfiles(const ProfileKind& kind, const SnmpCall& call) {
  Reader from(areaOf(call));
  const u32 count = from.number(2);
  if (from.failed()) return answerCode(call, kRequestTooShort);
  if (count == 0) return answerSuccess(call);
  if (count > kind.count()) return answerProfileCount(call, count);
  const PoolBytes memory(
      static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, count * static_cast<u32>(sizeof(u16)), __FILE__, __LINE__)));
  if (memory == nullptr) return answerCode(call, kNoMemory);
  auto* ids = reinterpret_cast<u16*>(memory.get());
  SnmpErrInfo err;
  for (u32 i = 0; i < count; ++i) {
    ids[i] = static_cast<u16>(from.number(2));
    if (from.failed()) return answerCode(call, kRequestTooShort);
    if (checkIdLegalExp0(kind, &err, ids[i]) != 0) return answerError(call, err);
  }
  const ProfileLock lock(kind);
  const int result = deleteBatch(kind, &err, ids, static_cast<u16>(count));
  if (result == 0 || kind.reportsFailure) reportChange(kNode, kind.writeId, 1);
  return result == 0 ? answerSuccess(call) : answerError(call, err);
}

int snmpReadProfiles(const ProfileKind& kind, const SnmpCall& call) {
  Writer to = beginReply(call);
  const ProfileLock lock(kind);
  if (encodeAll(kind, to) != 0) return answerCode(call, kNoMemory);
  return endReply(call, to);
}

int snmpReadProfilesBare(const ProfileKind& kind, const SnmpCall& call) {
  if (call.length != static_cast<i32>(kArea)) return answerCode(call, kRequestTooShort);
  return snmpReadProfiles(kind, call);
}

// --- Ports ---

bool is_item_legal(u32 count) { return count <= maxAdPortNum; }

// A port of 0xFFFF names the slot itself in a write, and all its ports in a read.
static constexpr u32 kNoPort = 65535;

int get_adsl_obj_lable(SnmpErrInfo* err, ObjIndex* object, WireIn item) {
  Reader from(item);
  const u32 slot = from.number(2);
  const u32 port = from.number(2);
  if (from.failed()) {
    err->errCode = kRequestTooShort;
    return -1;
  }
  if (isSlotAuthed(static_cast<u16>(slot)) != 1) return reject(err, kSlotNotAuthorised, {static_cast<u16>(slot)});
  const u32 portNo = port == kNoPort ? 0 : port;
  return SlotNoPortConvertObjIndex(static_cast<u16>(slot), static_cast<u16>(portNo), 0, object) == 0 ? 0 : -1;
}

u32 attachmentReply(const ProfileKind& kind) { return (kReadItem + 2 + kind.attachTail) * maxAdPortNum + kReplyArea; }

// Decodes one item and puts it into the list. What is there of a cut item is checked ahead of its length.
static int decodePort(const ProfileKind& kind, SnmpErrInfo* err, LIST* list, Reader& from) {
  ObjIndex port;
  if (get_adsl_obj_lable(err, &port, from.rest()) != 0) return -1;
  from.skip(kReadItem);
  const u16 id = static_cast<u16>(from.number(2));
  if (!from.failed() && checkIdLegal(kind, err, id) != 0) return -1;
  from.skip(kind.attachTail);
  if (from.failed()) {
    err->errCode = kRequestTooShort;
    return -1;
  }
  return addPortNode(list, err, port, id);
}

int snmpAttachPorts(const ProfileKind& kind, const SnmpCall& call) {
  Reader from(areaOf(call));
  const u32 count = from.number(4);
  if (from.failed()) return answerCode(call, kRequestTooShort);
  if (count == 0) return answerSuccess(call);
  if (!is_item_legal(count)) return answerPortCount(call, count);
  ObjList nodes;
  SnmpErrInfo err;
  for (u32 i = 0; i < count; ++i) {
    if (decodePort(kind, &err, nodes, from) != 0) return answerError(call, err);
  }
  const ProfileLock lock(kind);
  return attachPorts(kind, &err, nodes, static_cast<u16>(count)) == 0 ? answerSuccess(call) : answerError(call, err);
}

int encodePorts(const ProfileKind& kind, LIST* list, Writer& to) {
  to.number(4, static_cast<u32>(lstCount(list)));
  for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u16 slot = 0, portNo = 0, type = 0, id = 0;
    if (ObjIndexConvertSlotNoPort(&slot, &portNo, &type, port) != 0) return -1;
    if (attachedProfile(kind, port, &id) < 0) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "%s: attribute %d of %d/%d can't be read!\r\n", __func__,
                 static_cast<int>(kind.attribute), slot, portNo);
      id = kDefaultProfile;
    }
    to.number(2, slot);
    to.number(2, portNo);
    to.zeros(kReadItem - 4);
    to.number(2, id);
    to.zeros(kind.attachTail);
  }
  return to.failed() ? -1 : 0;
}

// Moves what is in one list into another as long as there is no more than a reply takes. What is beyond is counted.
static int moveCells(LIST* from, LIST* to, u32& total) {
  total += static_cast<u32>(lstCount(from));
  if (!is_item_legal(total)) return 0;
  for (NODE* cell = lstFirst(from); cell != nullptr; cell = lstNext(cell)) {
    auto* port = dataOf<ObjIndex>(cell);
    if (insert_sort_list_by_index(port, to) != 0) return -1;
    static_cast<ObjListCell*>(cell)->data = nullptr;
  }
  return 0;
}

// The ports that an item names.
static int widen(std::span<const u16> types, SnmpErrInfo* err, WireIn item, LIST* ports, u32& total) {
  Reader from(item);
  const u32 slot = from.number(2);
  if (!from.failed() && isSlotAuthed(static_cast<u16>(slot)) != 1)
    return reject(err, kSlotNotAuthorised, {static_cast<u16>(slot)});
  const u32 port = from.number(2);
  if (item.size() < kReadItem) {
    err->errCode = kRequestTooShort;
    return -1;
  }
  ObjList some;
  if (port == kNoPort) {
    if (walkPorts(types, static_cast<u16>(slot), some) != 0) return -1;
    return moveCells(some, ports, total);
  }
  ObjIndex object;
  if (SlotNoPortConvertObjIndex(static_cast<u16>(slot), static_cast<u16>(port), 0, &object) != 0) return -1;
  void* memory = mpuAlloc_(g_MsanMemPoolId, sizeof(ObjIndex), __FILE__, __LINE__);
  if (memory != nullptr && insert_sort_list_by_index(new (memory) ObjIndex(object), some) != 0) {
    mpuFree(memory);
    memory = nullptr;
  }
  if (memory == nullptr) {
    err->errCode = kNoMemory;
    return -1;
  }
  return moveCells(some, ports, total);
}

int askedPorts(std::span<const u16> types, const SnmpCall& call, SnmpErrInfo* err, LIST* ports) {
  Reader from(areaOf(call));
  const u32 count = from.number(4);
  if (from.failed()) return reject(err, kRequestTooShort);
  if (!is_item_legal(count)) return rejectLong(err, kTooManyItems, count);
  u32 total = 0;
  if (count == 0 && walkPorts(types, 0, ports) != 0) return -1;
  for (u32 i = 0; i < count; ++i) {
    if (widen(types, err, from.rest(), ports, total) != 0) return -1;
    from.skip(kReadItem);
  }
  return is_item_legal(total) ? 0 : rejectLong(err, kTooManyItems, total);
}

int snmpReadPorts(const ProfileKind& kind, const SnmpCall& call) {
  ObjList ports;
  SnmpErrInfo err;
  if (askedPorts(kind.portTypes, call, &err, ports) != 0) return answerError(call, err);
  const ProfileLock lock(kind);
  Writer to = beginReply(call);
  if (encodePorts(kind, ports, to) != 0) return answerError(call, err);
  return endReply(call, to);
}
