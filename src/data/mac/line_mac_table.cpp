#include "data/mac/line_mac_table.h"

#include <algorithm>

#include "common/card_exchange.h"
#include "common/commands.h"
#include "common/interface_list.h"
#include "common/memory.h"
#include "common/msan_init.h"
#include "common/wire.h"
#include "data/common/data_item.h"
#include "data/port_rows.h"
#include "platform/cards.h"
#include "platform/objects.h"

static constexpr u16 kWholeCard = 65535;    // port of a selector, and of what a card is asked
static constexpr u32 kMostReply = 9536000;  // to a manager: 16 of them
static constexpr u32 kCountBytes = 4;
static constexpr u32 kReplyCount = 36;  // offset in a reply
static constexpr u32 kReserved = 16;

enum MacTableError : int { kTableMemory = -22, kTableCount = -32, kTableNoSlot = -101 };

// --- Cards ---

// The answers of cards behind each other, as one card's: u32 entries, the entries.
struct MacTable {
  WireOut buffer;
  u32 length = kCountBytes;
  u32 items = 0;
};

static u16 slotOf(NODE* cell) { return dataOf<const ObjIndex>(cell)->addr[1]; }

// The ports of the slot that the list goes on with, as its card is asked for them; `cell` moves behind them.
static u32 build_linemac_mscpkt(NODE*& cell, u8* request) {
  const u16 slot = slotOf(cell);
  u32 ports = 0;
  for (; cell != nullptr && slotOf(cell) == slot; cell = lstNext(cell)) {
    const u16 port = dataOf<const ObjIndex>(cell)->addr[2];
    u8* at = request + kCountBytes + kAskedPort * ports++;
    std::fill_n(at, kAskedPort, u8{0});
    putNumber(at, 2, slot);
    putNumber(at + 2, 2, port == 0 ? kWholeCard : port);
  }
  putNumber(request, kCountBytes, ports);
  return kCountBytes + kAskedPort * ports;
}

static void writeEmpty(u16 slot, u16 port, Writer& out) {
  out.number(2, slot);
  out.number(2, port);
  out.zeros(kReserved);
  out.number(2, kPvcRows);
  for (u16 pvc = 0; pvc < kPvcRows; ++pvc) {
    out.number(2, pvc);
    out.number(4, 0);
  }
}

// What stands for the answer of a card that gave none: no addresses on the ports that were asked for, or on all ports
// if the card was asked for itself.
static void build_linemactbl_pktnull(WireIn request, MacTable& table) {
  Reader in(request);
  Writer out(table.buffer.subspan(table.length));
  u32 items = in.number(kCountBytes);
  const auto slot = static_cast<u16>(getNumber(request.data() + kCountBytes, 2));
  const auto portAt = [&](u32 i) {
    return static_cast<u16>(getNumber(request.data() + kCountBytes + kAskedPort * i + 2, 2));
  };
  bool whole = false;
  for (u32 i = 0; i < items; ++i) whole = whole || portAt(i) == kWholeCard;
  if (whole) items = static_cast<u32>(std::max(0, get_slot_port_num_by_slotno(slot)));
  for (u32 i = 0; i < items; ++i) writeEmpty(slot, whole ? static_cast<u16>(i + 1) : portAt(i), out);
  if (out.failed()) return;
  table.length += out.length();
  table.items += items;
}

// Asks the card and puts its entries behind the others. Its count lands on the four bytes ahead of them, which are put
// back.
static bool appendAnswer(u16 slot, WireIn request, MacTable& table) {
  u8* at = table.buffer.data() + table.length - kCountBytes;
  u8 ahead[kCountBytes];
  std::copy_n(at, kCountBytes, ahead);
  const u32 room = std::min(kMostLearned, static_cast<u32>(table.buffer.size()) - table.length + kCountBytes);
  u32 answered = room;
  const int result = gpon_send_and_wait_for_response_copy(slot, kLineMacMessage, 0, request.data(),
                                                          static_cast<u32>(request.size()), at, &answered, 0);
  const bool good = result >= 0 && answered >= kCountBytes && answered <= room;
  if (good) {
    table.length += answered - kCountBytes;
    table.items += getNumber(at, kCountBytes);
  }
  std::copy_n(ahead, kCountBytes, at);
  return good;
}

// The sorted ports, asked for slot by slot. 0, or -1 with `err` filled.
static int get_build_linemac_table(SnmpErrInfo* err, LIST* ports, MacTable& table) {
  const u32 most = kCountBytes + kAskedPort * static_cast<u32>(lstCount(ports));
  PoolBytes request(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, most, __FILE__, __LINE__)));
  if (request == nullptr) return reject(err, kTableMemory);
  for (NODE* cell = lstFirst(ports); cell != nullptr;) {
    const u16 slot = slotOf(cell);
    const WireIn asked(request.get(), build_linemac_mscpkt(cell, request.get()));
    if (!appendAnswer(slot, asked, table)) build_linemactbl_pktnull(asked, table);
  }
  return 0;
}

// A port that can be asked for, into the list; port 0 is the slot. 0, or -1 with `err` filled.
static int addPort(u16 slot, u16 port, LIST* ports, SnmpErrInfo* err) {
  auto* object = newRecord<ObjIndex>();
  if (object == nullptr) return reject(err, kTableMemory);
  int result = 0;
  if (const int code = findObject(slot, port, object)) {
    result = reject(err, code);
  } else if (checkObjErr(kLineMacMessage, 0x100000a, object, kCardUp, err) != 0) {
    result = -1;
  } else if (insert_sort_list_by_index(object, ports) != 0) {
    result = reject(err, kTableMemory);
  }
  if (result != 0) mpuFree(object);
  return result;
}

// --- Message ---

static int readPorts(WireIn frame, LIST* ports, SnmpErrInfo* err) {
  const auto tooShort = [&] { return rejectLong(err, kShortFrame, static_cast<u32>(frame.size())); };
  if (frame.size() < kObjects) return tooShort();
  const u32 count = getNumber(frame.data() + kObjects - kCountBytes, kCountBytes);
  if (count == 0 || count > kMostRecords) return rejectLong(err, kTableCount, count);
  Reader in(frame.subspan(kObjects));
  if (in.rest().size() / kAskedPort < count) return tooShort();
  for (u32 i = 0; i < count; ++i) {
    const auto slot = static_cast<u16>(in.number(2));
    const auto port = static_cast<u16>(in.number(2));
    in.skip(kReserved);
    if (get_config_card_type(slot) <= 0) return reject(err, kTableNoSlot, {slot});
    if (addPort(slot, port == kWholeCard ? u16{0} : port, ports, err) != 0) return -1;
  }
  return 0;
}

static SnmpGetHandler get_linemac_table_snmp;
int get_linemac_table_snmp(u16 id, u8*, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  SnmpErrInfo err;
  ObjList ports;
  MacTable table{WireOut(reply + kReplyCount, kMostReply)};
  if (readPorts(WireIn(data, static_cast<u32>(length)), ports, &err) != 0 ||
      get_build_linemac_table(&err, ports, table) != 0) {
    return answerError(id, err, reply, replyLen);
  }
  putNumber(reply, 4, 1);
  putNumber(reply + kReplyCount, kCountBytes, table.items);
  *replyLen = kReplyCount + table.length;
  return 0;
}

void register_linemactbl_msg_snmp() {
  static constexpr SnmpMsgReg message{kLineMacMessage,        {0, 0},     nullptr,
                                      get_linemac_table_snmp, kMostReply, "line id format msg."};
  SnmpMsgRegister(&message);
}

// --- Command ---

static void showAddress(Vty* vty, Reader& in) {
  u8 mac[6] = {};
  char text[32] = {};
  in.bytes(mac, sizeof mac);
  const u32 vlan = in.number(2);
  in.skip(8);
  if (in.failed()) return;
  cli_gpon_get_mac_str(mac, text);
  vty_out(vty, "MAC %s VLAN %d\r\n", text, vlan);
}

static void showPvc(Vty* vty, Reader& in) {
  const u32 index = in.number(2);
  const u32 all = in.number(2);
  const u32 here = in.number(2);
  if (in.failed()) return;
  vty_out(vty, "PVC_INDEX %d : total_mac_item = %d, report_mac_item = %d\r\n", index, all, here);
  for (u32 i = 0; i < here && !in.failed(); ++i) showAddress(vty, in);
}

// True if the entry was there as a whole.
static bool showEntry(Vty* vty, Reader& in) {
  const u32 slot = in.number(2);
  const u32 port = in.number(2);
  in.skip(kReserved);
  const u32 pvcs = in.number(2);
  if (in.failed()) return false;
  vty_out(vty, "SLOT %d PON %d PVC_ITEM = %d\r\n", slot, port, pvcs);
  for (u32 i = 0; i < pvcs && !in.failed(); ++i) showPvc(vty, in);
  return !in.failed();
}

// 0, or -1001 where there are not as many entries as are told.
static int show_msan_mac_print(Vty* vty, const MacTable& table) {
  constexpr int kOtherCount = -1001;
  vty_out(vty, "-----  PON MAC ADDRESS, ITEM=%d -----\n\r", table.items);
  Reader in(table.buffer.subspan(kCountBytes, table.length - kCountBytes));
  u32 shown = 0;
  while (!in.rest().empty() && showEntry(vty, in)) ++shown;
  return shown == table.items ? 0 : kOtherCount;
}

static CommandHandler show_msan_mac_fun;
int show_msan_mac_fun(const CommandElement*, Vty* vty, int, char** argv) {
  const u16 slot = cutNumber(argv[0]);
  const u16 port = cutNumber(argv[1]);
  if (!isDataCard(slot)) {
    return refuse(vty, "card %d , type %d not surpport this cmd!\r\n", slot, get_config_card_type(slot));
  }
  ObjList ports;
  SnmpErrInfo err;
  PoolBytes buffer(static_cast<u8*>(mpuAlloc_(g_MsanMemPoolId, kMostLearned, __FILE__, __LINE__)));
  MacTable table{WireOut(buffer.get(), kMostLearned)};
  int result = buffer == nullptr ? reject(&err, kTableMemory) : addPort(slot, port, ports, &err);
  if (result == 0) result = get_build_linemac_table(&err, ports, table);
  if (result != 0) {
    return refuse(vty, "get mac address failed, ret = %d.\r\n", err.errCode != 0 ? static_cast<i16>(err.errCode) : -1);
  }
  return show_msan_mac_print(vty, table);
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show msan_mac slot <slotno> link <linkNo> ", show_msan_mac_fun,
            "the addresses that a line has learned"),
};

void install_gepon_msan_port_mactable_element() { installCommands(commands); }
