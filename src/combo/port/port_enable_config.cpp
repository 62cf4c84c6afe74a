#include "combo/port/port_enable_config.h"

#include <cstdio>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/port/port_blocks.h"
#include "combo/profile/profile_kind.h"
#include "common/obj_attributes.h"
#include "platform/command_line.h"
#include "platform/objects.h"

static constexpr u32 kFlagEnd = 16;  // bytes behind the flag
static constexpr u32 kBlock = kPortHead + 1 + kFlagEnd;
static constexpr u32 kArea = 32, kReplyArea = 36;  // where the counts of a request and of a reply stand
static constexpr u16 kPotsDataCard = 61;           // whose ports a manager's messages leave alone

enum PortEnableError : int { kNoDataCard = -2, kBadFlag = -120 };

SemaphoreId port_en_config_mux = 0;

void msan_init_data_port_enable_config() {
  get_sys_max_adsl_port_num();
  port_en_config_mux = bep_semBCreateEx(2, 1);
}

// The port's stored byte. 0, or the store's code.
static int readFlag(const ObjIndex* port, u8* flag) {
  return getObjAttrDataByCondition(port, kPortEnableAttribute, flag, 0, 1);
}

int is_data_port_enable(ObjIndex port) {
  u8 flag = 0;
  return readFlag(&port, &flag) == 0 ? flag : -1;
}

// --- Set ---

static int checkSlot(SnmpErrInfo* err, u16 slot) {
  return configuredDataCard(slot) != 0 ? 0 : reject(err, kNoDataCard, {slot});
}

// The flag as the last: a manager's has been looked at before, and a code of its own told.
static int checkPort(SnmpErrInfo* err, const AdslPortPrfNode& node) {
  u16 slot = 0, port = 0, type = 0;
  if (ObjIndexConvertSlotNoPort(&slot, &port, &type, &node.port) != 0) return -1;
  if (checkSlot(err, slot) != 0) return -1;
  if (checkObjErr(kPortEnableMessage, kPortEnableAttribute, &node.port, kAnyCard, err) != 0) return -1;
  return node.prfId <= 1 ? 0 : -1;
}

static int storePort(SnmpErrInfo* err, const AdslPortPrfNode& node) {
  if (checkSlot(err, node.port.addr[1]) != 0) return -1;
  const u8 flag = static_cast<u8>(node.prfId);
  return setObjAttrDataByCondition(&node.port, kPortEnableAttribute, &flag, 0, 1) == 0 ? 0 : -1;
}

int set_data_port_enable(SnmpErrInfo* err, LIST* list, u32 count) {
  if (err == nullptr) return -1;
  if (list == nullptr) return count == kNoCount ? 0 : -1;
  for (const auto step : {checkPort, storePort}) {
    for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
      if (step(err, *dataOf<const AdslPortPrfNode>(cell)) != 0) return -1;
    }
  }
  // What the cards did not get they get when they return.
  set_data_port_enable_adapt(list, count);
  return 0;
}

void set_data_port_enable_adapt(LIST* list, u32 count) {
  if (count == 0) {
    std::printf("set_data_port_enable_adapt entryNum is 0!\r\n ");
    return;
  }
  sendBySlot<AdslPortPrfNode>(
      list, count, kPortsFrame + kBlock * count,
      [](const AdslPortPrfNode& node, Writer& to) {
        putPortHead(to, node.port);
        to.number(1, node.prfId);
        to.zeros(kFlagEnd);
        return true;
      },
      [](u16) { return kPortEnableMessage; });
}

int get_data_port_enable(SnmpErrInfo* err, WireOut body, u32* length, LIST* list, u32 count) {
  if (err == nullptr || length == nullptr) return -1;
  if (list == nullptr) return count == kNoCount ? 0 : -1;
  Writer to(body);
  to.number(4, static_cast<u32>(lstCount(list)));
  for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u8 flag = 0;
    if (checkObjErr(kPortEnableMessage, kPortEnableAttribute, port, kAnyCard, err) != 0) return -1;
    if (readFlag(port, &flag) != 0) return -1;
    putPortHead(to, *port);
    to.number(1, flag);
    to.zeros(kFlagEnd);
  }
  if (to.failed()) return -1;
  *length = to.length();
  return 0;
}

// --- Cards ---

void hotplug_data_port_enable(u16 slot) {
  static constexpr u16 types[] = {kAdslPort, kDslPort, kVdslPort, kAdslPotsPort, kVdslPotsPort};
  ObjList ports, nodes;
  if (walkPorts(types, slot, ports) != 0) return;
  SnmpErrInfo err;
  // The ports ahead of one that can't be read are served.
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u8 flag = 0;
    if (readFlag(port, &flag) != 0 || addPortNode(nodes, &err, *port, flag) != 0) break;
  }
  set_data_port_enable_adapt(nodes, static_cast<u32>(lstCount(nodes)));
}

void data_port_enable_after_cardauth_db(u16 slot) {
  const u16 card = configuredDataCard(slot);
  u16 amount = 0;
  if (card == 0 || ddGetBoardServePortAmountByType(card, &amount) != 0) return;
  const u8 flag = 0;
  for (u16 port = 1; port <= amount; ++port) {
    ObjIndex object;
    if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0) return;
    if (setObjAttrDataByCondition(&object, kPortEnableAttribute, &flag, 0, 1) != 0) return;
  }
}

// --- Running configuration ---

static int printSlot(Vty* vty, u16 slot) {
  const u16 card = configuredDataCard(slot);
  if (card == 0) return 0;
  u16 amount = 0;
  if (ddGetBoardServePortAmountByType(card, &amount) != 0) return -1;
  for (u16 port = 1; port <= amount; ++port) {
    ObjIndex object;
    u8 flag = 0;
    if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 || readFlag(&object, &flag) != 0) return -1;
    if (flag != 0) vty_out(vty, "set interface %d/%d enable%s", slot, port, "\r\n");
  }
  return 0;
}

void msan_data_port_enable_showrun(Vty* vty) {
  u32 slots[kMostServeSlots];
  u32 count = 0;
  if (getServeSlots(slots, &count) != 0) return;
  for (u32 i = 0; i < count; ++i) {
    if (printSlot(vty, static_cast<u16>(slots[i])) != 0) return;
  }
}

// --- Messages ---

static int tooShort(SnmpErrInfo* err) {
  err->errCode = kRequestTooShort;
  return -1;
}

// An item of a write, or of a read, which ends behind the location. What is there of a cut one is checked ahead of its
// length.
static int parse_port_enable(LIST* list, SnmpErrInfo* err, u32 count, WireIn items, bool write) {
  Reader from(items);
  for (u32 i = 0; i < count; ++i) {
    ObjIndex port;
    if (get_adsl_obj_lable(err, &port, from.rest()) != 0) return -1;
    from.skip(kPortHead);
    const u16 flag = write ? static_cast<u16>(from.number(1)) : u16{0};
    if (flag > 1) return reject(err, kBadFlag);
    if (write) from.skip(kFlagEnd);
    if (from.failed()) return tooShort(err);
    if (addPortNode(list, err, port, flag) != 0) return -1;
  }
  return 0;
}

namespace {
// A request's count and what stands behind it.
struct Request {
  u32 count = 0;
  WireIn items;
  bool ignored = false;  // the first item's card is one that is left alone
};
}  // namespace

// 0, or -1 with the error of a request that is too short or asks for too much.
static int readRequest(const SnmpCall& call, SnmpErrInfo* err, Request& request) {
  Reader from(call.length >= static_cast<i32>(kArea) ? WireIn(call.data, static_cast<u32>(call.length)) : WireIn());
  from.skip(kArea);
  request.count = from.number(4);
  if (from.failed()) return tooShort(err);
  if (!is_item_legal(request.count)) return rejectLong(err, static_cast<i16>(kTooManyItems), request.count);
  request.items = from.rest();
  const u16 slot = static_cast<u16>(from.number(2));
  u16 card = 0, subtype = 0;
  request.ignored = !from.failed() && sysGetSlotAuthedType(slot, &card, &subtype) == 0 && card == kPotsDataCard;
  return 0;
}

static int snmp_set_port_enable(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (data == nullptr || reply == nullptr || replyLen == nullptr) return -1;
  Request request;
  SnmpErrInfo err;
  ObjList nodes;
  if (readRequest({id, nullptr, data, length, reply, replyLen}, &err, request) != 0)
    return answerError(id, err, reply, replyLen);
  if (request.count == 0 || request.ignored) return answerSuccess(reply, replyLen);
  if (parse_port_enable(nodes, &err, request.count, request.items, true) != 0)
    return answerError(id, err, reply, replyLen);
  const SemaphoreHold hold(&port_en_config_mux);
  if (set_data_port_enable(&err, nodes, request.count) != 0) return answerError(id, err, reply, replyLen);
  msan_cfg_sync_trigger(nodes, kPortEnableMessage, 1, kObjectList);
  return answerSuccess(reply, replyLen);
}

static int snmp_get_port_enable(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (last == nullptr || data == nullptr || reply == nullptr || replyLen == nullptr) return -1;
  Request request;
  SnmpErrInfo err;
  ObjList nodes;
  if (readRequest({id, last, data, length, reply, replyLen}, &err, request) != 0)
    return answerError(id, err, reply, replyLen);
  *replyLen = 0;
  if (request.count == 0) return 0;
  Writer to(WireOut(reply, kReplyArea));
  if (!request.ignored && parse_port_enable(nodes, &err, request.count, request.items, false) != 0)
    return answerError(id, err, reply, replyLen);
  u32 body = 0;
  if (!request.ignored) {
    const SemaphoreHold hold(&port_en_config_mux);
    const WireOut out(reply + kReplyArea, kMaxPacket - kReplyArea);
    if (get_data_port_enable(&err, out, &body, nodes, request.count) != 0) return answerError(id, err, reply, replyLen);
  }
  to.number(4, 1);
  to.zeros(kReplyArea - 4);
  *replyLen = kReplyArea + body;
  return 0;
}

void msan_reg_data_port_enable_snmp() {
  const SnmpMsgReg message{
      kPortEnableMessage,  {0, 0}, snmp_set_port_enable, snmp_get_port_enable, kBlock * maxAdPortNum + kReplyArea,
      "yara data port cfg"};
  if (SnmpMsgRegister(&message) == 0) return;
  std::printf("\r\n SnmpMsgRegister DATA_SERVICE_PORT_ENABLE failed! \r");
}
