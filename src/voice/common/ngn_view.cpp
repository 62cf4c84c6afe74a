#include "voice/common/ngn_view.h"

#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_packets.h"

static constexpr u32 kArea = 32;                // of a request
static constexpr u32 kReplyArea = 36;           // of a reply
static constexpr u32 kForm = 60;                // of a view of the node: behind a count and a label of 20 bytes
static constexpr u32 kLargestNodeRecord = 727;  // bytes
static constexpr u32 kMostAsked = 960;          // ports of a manager's list
static constexpr const char* kNoAnswer = "build MSC msg 0x%04X failed";

// Zeroed memory of the pool; null, and traced, without any.
static PoolBytes zeroed(u32 bytes, Where where) {
  u8* memory = nullptr;
  if (vMemAlloc(&memory, static_cast<i32>(bytes)) != 0) printTrace(where, "malloc failed");
  return PoolBytes(memory);
}

static int finishGet(const SnmpCall& call, u32 payload) { return answerSuccess(call, payload); }

void showHeading(Vty* vty, const ViewNames& names) {
  vty_out(vty, "\r\n %s", names.title);
  vty_out(vty, "\r\n ");
  for (u32 i = 0; i < names.dashes; ++i) vty_out(vty, "-");
}

static int finishView(Vty* vty, const ViewNames& names) {
  vty_out(vty, "\r\n get %s successfully. \r\n", names.words);
  return 0;
}

// --- The whole node ---

int snmpGet(const NodeView& view, const SnmpCall& call) {
  const Where where = view.names.at("snmp_get_*");
  if (beginRequest(view.id, call, Asks::nothing, where) != 0) return -1;
  PoolBytes record;
  if (view.build != nullptr && (record = zeroed(view.bytes, where)) == nullptr) return -1;
  putNumber(call.reply + kReplyArea, 4, 1);
  const WireOut form = WireOut(call.reply, kMaxPacket).subspan(kForm);
  const WireOut answer = record != nullptr ? WireOut(record.get(), view.bytes) : form.first(view.bytes);
  const auto answered = askNgn(view.id, {}, answer);
  u32 length = answered.value_or(0);
  if (!answered || (view.build != nullptr && view.build(answer, form, &length) != 0))
    return answerFailed(call, kNoAnswer, where);
  return finishGet(call, length + kForm - 4);
}

int showView(const NodeView& view, Vty* vty, int, char**) {
  u8 record[kLargestNodeRecord] = {};
  const WireOut answer(record, view.bytes);
  if (!askNgn(view.id, {}, answer)) {
    if (!view.showsSilence) {
      vty_out(vty, "\r\n get %s failed. \r\n", view.names.words);
      return -1;
    }
    printTrace({"cli_show_*_func", view.names.file, view.names.line, view.names.showStem}, kNoAnswer, view.id);
  }
  showHeading(vty, view.names);
  showFields(vty, view.fields, answer, ByteOrder::big);
  return finishView(vty, view.names);
}

// --- Ports, for a manager ---

static int tooMany(u32 total) {
  ulogPrintf(gModuleId_Msan, kLogError, "item_real = %d!\r\n", total);
  return -1;
}

static void putLocation(Writer& out, u16 slot, u16 port) {
  out.number(2, slot);
  out.number(2, port);
  out.zeros(kLocation - 4);
}

// All ports of the card that is configured in the slot. 0 or -1.
static int putAllPorts(Writer& out, u16 slot, u32* total) {
  const int card = get_config_card_type(slot);
  u16 amount = 0;
  if (ddGetBoardServePortAmountByType(static_cast<u16>(card), &amount) != 0) {
    ulogPrintf(gModuleId_Msan, kLogError, "input error CardType = %d!\r\n", card);
    return -1;
  }
  ulogPrintf(gModuleId_Msan, kLogDebug, "slot = %d port_num = %d!\r\n", slot, amount);
  *total += amount - 1u;
  if (*total > kMaxLocations) return tooMany(*total);
  for (u32 port = 1; port <= amount; ++port) putLocation(out, slot, static_cast<u16>(port));
  return 0;
}

int snmp_convert_msc(WireIn request, WireOut out, u32* count) {
  if (request.data() == nullptr || out.data() == nullptr || count == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "input error!\r\n");
    return -1;
  }
  Reader in(request);
  const u32 items = in.number(4);
  u32 total = items;
  Writer list(out);
  list.skip(4);
  for (u32 i = 0; i < items && !in.failed(); ++i) {
    const u16 slot = static_cast<u16>(in.number(2));
    const u16 port = static_cast<u16>(in.number(2));
    in.skip(kLocation - 4);
    if (port != kAllPorts)
      putLocation(list, slot, port);
    else if (putAllPorts(list, slot, &total) != 0)
      return -1;
  }
  if (in.failed() || list.failed()) return -1;
  putNumber(out.data(), 4, total);
  *count = total;
  return 0;
}

int build_snmp_cfm_packet(WireIn answer, u32 unit, u32 gap, WireOut out, u32* length) {
  const auto units = unitsOf(answer, unit, kMaxLocations);
  if (!units || length == nullptr || units->size() / unit * (unit + gap) + 4 > out.size()) return -1;
  Writer to(out);
  to.bytes(answer.first(4));
  for (WireIn rest = *units; !rest.empty(); rest = rest.subspan(unit)) {
    to.bytes(rest.first(unit));
    to.skip(gap);
  }
  *length = to.length();
  return 0;
}

// The answer for a widened list; the manager's form of it goes to the reply. 0, or the answered failure.
static int answerPorts(const PortView& view, const SnmpCall& call, WireIn list, u32 count, Where where) {
  const u32 room = view.unit * count + 4;
  const PoolBytes answer = zeroed(room, where);
  if (answer == nullptr) return -1;
  const auto answered = askNgn(view.id, list, WireOut(answer.get(), room));
  u32 length = 0;
  const WireOut out = WireOut(call.reply, replyRoom(view.mostReply)).subspan(kReplyArea);
  const WireIn units(answer.get(), answered.value_or(0));
  if (!answered || (view.build != nullptr ? view.build(units, out, &length)
                                          : build_snmp_cfm_packet(units, view.unit, view.gap, out, &length)) != 0)
    return answerFailed(call, kNoAnswer, where);
  return finishGet(call, length + kReplyArea - 4);
}

int snmpGet(const PortView& view, const SnmpCall& call) {
  const Where where = view.names.at("snmp_get_*");
  if (beginRequest(view.id, call, Asks::something, where) != 0) return -1;
  SnmpErrInfo err;
  const i32 length = call.length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(call.data + kArea, length, kLocation, 4, 0, kMostAsked, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  constexpr u32 kList = 4 + kMaxLocations * kLocation;
  const PoolBytes list = zeroed(kList, where);
  if (list == nullptr) return -1;
  u32 count = 0;
  const WireIn request(call.data + kArea, static_cast<u32>(length));
  if (snmp_convert_msc(request, WireOut(list.get(), kList), &count) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  return answerPorts(view, call, WireIn(list.get(), count * kLocation + 4), count, where);
}

// --- Ports, for an operator ---

int readPorts(Vty* vty, const char* ifStr, u32 attribute, u32 size, LIST* list) {
  ObjList addresses;
  if (CliInputConvertObjIndex(ifStr, addresses) != 0) {
    vty_out(vty, "\r\n parse interface string %s failed. \r\n", ifStr);
    return -1;
  }
  return nSetPortObjList(addresses, attribute, size, list) == 0 ? 0 : refuse(vty, "set port OBJM list failed");
}

// The question for the ports of a list. 0, or -1 with the code of the failure, if it has one.
static int encodeLocations(const PortView& view, LIST* list, PoolBytes& request, u32* length, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && nCheckPortLocationHandle(list, view.id, err) != 0) return -1;
  const u32 bytes = 4 + kLocation * static_cast<u32>(lstCount(list));
  request = zeroed(bytes, view.names.at("get_*"));
  if (request != nullptr && nEncodePortLocationHandle(list, WireOut(request.get(), bytes), length) == 0) return 0;
  vSetErrorInfo(kEncodeFailed, err);
  return -1;
}

// What the voice side answers for the ports; their units. 0, or -1.
static int askPorts(const PortView& view, LIST* list, PoolBytes& answer, WireIn* units, SnmpErrInfo* err) {
  PoolBytes request;
  u32 length = 0;
  if (encodeLocations(view, list, request, &length, err) != 0) return -1;
  const u32 count = static_cast<u32>(lstCount(list));
  const u32 room = view.unit * count + 4;
  answer = zeroed(room, view.names.at("get_*"));
  if (answer == nullptr) return -1;
  const auto answered = askNgn(view.id, WireIn(request.get(), length), WireOut(answer.get(), room));
  if (!answered) return -1;
  const auto all = unitsOf(WireIn(answer.get(), *answered), view.unit, count);
  if (!all || all->empty()) {
    vSetErrorInfo(kParseFailed, err);
    return -1;
  }
  *units = *all;
  return 0;
}

int showView(const PortView& view, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  constexpr u32 kLocationAttribute = 148;
  DataList list;
  if (readPorts(vty, argv[0], kLocationAttribute, 2, list) != 0) return -1;
  SnmpErrInfo err;
  PoolBytes answer;
  WireIn units;
  if (askPorts(view, list, answer, &units, &err) != 0) {
    vty_out(vty, "\r\n get %s failed(%d). \r\n", view.names.words, static_cast<i16>(err.errCode));
    return -1;
  }
  showHeading(vty, view.names);
  for (; !units.empty(); units = units.subspan(view.unit))
    showFields(vty, view.fields, units.first(view.unit), ByteOrder::big);
  return finishView(vty, view.names);
}
