#include "data/raw/ces_service.h"

#include <algorithm>

#include "common/commands.h"
#include "common/report.h"
#include "common/store.h"
#include "data/common/terminal.h"
#include "platform/tables.h"

static constexpr u16 kMessage = 2866;
static constexpr u32 kMostRecords = 256;  // of a request
static constexpr u16 kLeastBuffer = 4, kMostBuffer = 64;
static constexpr int kOutOfRange = -9;

static bool isPort(u16 port) { return port >= 1 && port <= kCesPorts; }

int check_ces_service(const CesServiceRecord& record) {
  if (!isCesCard(record.slot)) return kRawOtherCard;
  const auto isGood = [](u16 port) { return isPort(port) || port == kAllCesPorts; };
  const bool buffer = record.jitterBuf >= kLeastBuffer && record.jitterBuf <= kMostBuffer;
  return isGood(record.port) && isGood(record.dstPort) && buffer ? 0 : kOutOfRange;
}

// --- Store ---

static int putPort(mco_trans_h transaction, u16 port, const CesServiceRecord& record) {
  CESSerCfg row;
  int code = CESSerCfg_portTree_find(transaction, record.slot, port, &row);
  if (code == DB_NOT_FOUND) code = CESSerCfg_new(transaction, &row);
  if (code == 0) code = CESSerCfg_slot_put(&row, record.slot);
  if (code == 0) code = CESSerCfg_port_put(&row, port);
  if (code == 0) code = CESSerCfg_dstMac_put(&row, record.dstMac, sizeof record.dstMac);
  if (code == 0) code = CESSerCfg_dstPort_put(&row, record.dstPort);
  return code == 0 ? CESSerCfg_jitterBuf_put(&row, record.jitterBuf) : code;
}

int set_ces_service_db(const CesServiceRecord* record) {
  const bool all = record->port == kAllCesPorts;
  const u16 last = all ? kCesPorts : u16{record->port};
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  for (u16 port = all ? u16{1} : last; port <= last; ++port) {
    if (putPort(transaction, port, *record) != 0) return kStoreFailed;
  }
  return transaction.commit();
}

int get_ces_service_db(CesServiceRecord* record) {
  CesServiceRecord found{.slot = record->slot, .port = record->port};
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  CESSerCfg row;
  int code = CESSerCfg_portTree_find(transaction, found.slot, found.port, &row);
  if (code == 0) {
    u16 dstPort = 0, jitterBuf = 0;
    code = CESSerCfg_dstMac_get(&row, found.dstMac, sizeof found.dstMac);
    if (code == 0) code = CESSerCfg_dstPort_get(&row, &dstPort);
    if (code == 0) code = CESSerCfg_jitterBuf_get(&row, &jitterBuf);
    found.dstPort = dstPort;
    found.jitterBuf = jitterBuf;
  }
  if (code != 0 && code != DB_NOT_FOUND) return kStoreFailed;
  const u32 place = translateslot_in(static_cast<u8>(found.slot));
  if (place < kCmSlots) std::ranges::copy(cm_slot[place].mac, found.srcMac);
  *record = found;
  return 0;
}

void del_ces_service_db(u16 slot) {
  Transaction transaction(Access::write);
  if (!transaction) return;
  for (u16 port = 1; port <= kCesPorts; ++port) {
    CESSerCfg row;
    int code = CESSerCfg_portTree_find(transaction, slot, port, &row);
    if (code == DB_NOT_FOUND) continue;
    if (code == 0) code = CESSerCfg_delete(&row);
    if (code != 0) return;
  }
  transaction.commit();
}

// Each port of a slot, as stored. 0, or the code of the first that can't be read.
template <class Visit>
static int forEachPort(u16 slot, u16 first, u16 last, Visit visit) {
  for (u16 port = first; port <= last; ++port) {
    CesServiceRecord record{.slot = slot, .port = port};
    if (const int code = get_ces_service_db(&record)) return code;
    visit(record);
  }
  return 0;
}

// --- Cards ---

static void send_ces_service(const CesServiceRecord& record) { tellRawRecord<Le32>(record.slot, kMessage, record); }

void hotplug_ces_service(u16 slot) {
  if (isCesCard(slot)) forEachPort(slot, 1, kCesPorts, send_ces_service);
}

void card_unauth_ces_service(u16 slot) { del_ces_service_db(slot); }

// --- Managers ---

static int checkRaw(const u8* at) { return check_ces_service(rawRecord<CesServiceRecord>(at)); }

static int setService(const u8* at) {
  const auto record = rawRecord<CesServiceRecord>(at);
  if (set_ces_service_db(&record) != 0) return -1;
  send_ces_service(record);
  reportChange(record.slot, kMessage, 1);
  return 0;
}

static constexpr RawSet set{kMessage, 4, sizeof(CesServiceRecord), kMostRecords, checkRaw, setService};

static SnmpSetHandler snmp_ces_service_set;
int snmp_ces_service_set(u16, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return setRawRecords(set, data, length, reply, replyLen);
}

static constexpr u32 kAskedSlot = 36;  // offset

static SnmpGetHandler snmp_ces_service_get;
int snmp_ces_service_get(u16, u8*, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  if (static_cast<u32>(length) < kAskedSlot + 2) return rejectRaw(kMessage, kRawTooShort, reply, replyLen);
  const auto slot = static_cast<u16>(getNumber(data + kAskedSlot, 2));
  if (!isCesCard(slot)) return rejectRaw(kMessage, kRawOtherCard, reply, replyLen);
  RawAnswer answer(reply, 4);
  if (forEachPort(slot, 1, kCesPorts, [&](const CesServiceRecord& record) { answer.add(record); }) != 0) {
    return rejectRaw(kMessage, kRawNotStored, reply, replyLen);
  }
  return answer.end(replyLen);
}

void snmp_reg_ces_service() {
  constexpr SnmpMsgReg message{
      kMessage, {0, 0}, snmp_ces_service_set, snmp_ces_service_get, 17448, "ces_service configuration"};
  SnmpMsgRegister(&message);
}

// --- Commands ---

static CommandHandler cli_ces_service_set_func;
int cli_ces_service_set_func(const CommandElement*, Vty* vty, int, char** argv) {
  CesServiceRecord record{.slot = cutNumber(argv[0]),
                          .port = cutNumber(argv[1]),
                          .dstPort = cutNumber(argv[3]),
                          .jitterBuf = cutNumber(argv[4])};
  if (const int code = check_ces_service(record)) {
    return refuse(vty, "check_ces_service =  %d\r\n", static_cast<u16>(code));
  }
  if (const int code = cli_gpon_judge_mac_format(argv[2], record.dstMac)) {
    return refuse(vty, "dstmac format err :%d\r\n", code);
  }
  if (const int code = set_ces_service_db(&record)) return refuse(vty, "set_ces_service_db err :%d\r\n", code);
  send_ces_service(record);
  return 0;
}

static CommandHandler cli_ces_service_show_func;
int cli_ces_service_show_func(const CommandElement*, Vty* vty, int, char** argv) {
  const u16 slot = cutNumber(argv[0]);
  if (!isCesCard(slot)) return refuse(vty, "not VENA CARD!\r\n");
  const bool all = bep_StrCmp(argv[1], "all") == 0;
  const u16 port = all ? u16{1} : cutNumber(argv[1]);
  if (!isPort(port)) return refuse(vty, "input port error!\r\n");
  vty_out(vty, "SLOT  PORT     SRCMAC        DSTMAC     DSTPORT  JITTERBUF.\r\n");
  vty_out(vty, "----  ----  ------------  ------------  -------  ---------.\r\n");
  return forEachPort(slot, port, all ? kCesPorts : port, [vty](const CesServiceRecord& record) {
    const u8* src = record.srcMac;
    const u8* dst = record.dstMac;
    vty_out(vty, "%-4d  %-4d  %02x%02x%02x%02x%02x%02x  %02x%02x%02x%02x%02x%02x  %-7d  %-9d\r\n", u16{record.slot},
            u16{record.port}, src[0], src[1], src[2], src[3], src[4], src[5], dst[0], dst[1], dst[2], dst[3], dst[4],
            dst[5], u16{record.dstPort}, u16{record.jitterBuf});
  });
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set ces service slot <slotno> port <portno> dstmac <value> dstport <portno> jitterbuf <value>",
            cli_ces_service_set_func, "dstmac must like this 12 bits:123456abcdef. jitterbuf 4-64"),
    command(CONFIG_NODE, "show ces service slot <slotno> port [<portno>|all]", cli_ces_service_show_func,
            "where the packets of a CES card's ports go"),
};

void install_ces_service() { installCommands(commands); }

// Of an address the first byte alone says that there is none.
static void printPort(Vty* vty, const CesServiceRecord& record) {
  const u8* dst = record.dstMac;
  if (record.dstPort == kAllCesPorts && record.jitterBuf == CesServiceRecord{}.jitterBuf && dst[0] == 0) return;
  vty_out(vty, "set ces service slot %d port %d dstmac %02x%02x%02x%02x%02x%02x dstport %d jitterbuf %d\r\n",
          u16{record.slot}, u16{record.port}, dst[0], dst[1], dst[2], dst[3], dst[4], dst[5], u16{record.dstPort},
          u16{record.jitterBuf});
}

void showrun_ces_service(Vty* vty) {
  forEachCesSlot([vty](u16 slot) {
    forEachPort(slot, 1, kCesPorts, [vty](const CesServiceRecord& record) { printPort(vty, record); });
  });
}
