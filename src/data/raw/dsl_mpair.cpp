#include "data/raw/dsl_mpair.h"

#include <algorithm>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "common/store.h"
#include "data/common/cards.h"
#include "data/common/terminal.h"
#include "platform/tables.h"

static constexpr u16 kMessage = 2864, kDeletion = 2865;
static constexpr u16 kOneSlave = 1;
static constexpr int kNotAPair = -7;

// --- Check ---

int check_mpair(const MpairRecord& record) {
  const u16 slot = record.slot;
  if (record.id == 0 || record.id > kMpairs) return kRawCount;
  if (get_config_card_type(slot) == 0) return kRawNoCard;
  if (!isDataCard(slot)) return kRawOtherCard;
  const u16 low = std::min<u16>(record.mport, record.sport);
  const u16 high = std::max<u16>(record.mport, record.sport);
  return high == low + 1 && high % 2 == 0 && high <= dataPorts(slot) ? 0 : kNotAPair;
}

// --- Store ---

static int putPair(mco_trans_h transaction, const MpairRecord& record) {
  DSLmPair row;
  int code = DSLmPair_slaveIdTree_find(transaction, record.id, kOneSlave, &row);
  if (code == DB_NOT_FOUND) code = DSLmPair_new(transaction, &row);
  if (code == 0) code = DSLmPair_id_put(&row, record.id);
  if (code == 0) code = DSLmPair_slot_put(&row, record.slot);
  if (code == 0) code = DSLmPair_mport_put(&row, record.mport);
  if (code == 0) code = DSLmPair_slaveId_put(&row, kOneSlave);
  return code == 0 ? DSLmPair_sport_put(&row, record.sport) : code;
}

int set_mpair_db(const MpairRecord* record) {
  if (record == nullptr) return -1;
  Transaction transaction(Access::write);
  if (!transaction || putPair(transaction, *record) != 0) return kStoreFailed;
  return transaction.commit();
}

int get_mpair_db(MpairRecord* record) {
  if (record == nullptr) return -1;
  Transaction transaction(Access::read);
  DSLmPair row;
  if (!transaction || DSLmPair_slaveIdTree_find(transaction, record->id, kOneSlave, &row) != 0) return kStoreFailed;
  u16 slot = 0, mport = 0, slaveId = 0, sport = 0;
  int code = DSLmPair_slot_get(&row, &slot);
  if (code == 0) code = DSLmPair_mport_get(&row, &mport);
  if (code == 0) code = DSLmPair_slaveId_get(&row, &slaveId);
  if (code == 0) code = DSLmPair_sport_get(&row, &sport);
  if (code != 0) return kStoreFailed;
  *record = {record->id, slot, mport, slaveId, sport, {}};
  return 0;
}

int del_mpair_db(u16 id, u16* slot) {
  Transaction transaction(Access::write);
  DSLmPair row;
  if (!transaction || DSLmPair_slaveIdTree_find(transaction, id, kOneSlave, &row) != 0) return kStoreFailed;
  if (DSLmPair_slot_get(&row, slot) != 0 || DSLmPair_delete(&row) != 0) return kStoreFailed;
  return transaction.commit();
}

// Each pair that there is, in the order of their numbers.
template <class Visit>
static void forEachPair(Visit visit) {
  for (u16 id = 1; id <= kMpairs; ++id) {
    MpairRecord pair{.id = id};
    if (get_mpair_db(&pair) == 0) visit(pair);
  }
}

// --- Cards ---

static void send_mpair_buff(const MpairRecord& pair) { tellRawRecord<Le16>(pair.slot, kMessage, pair); }
static void send_del_mpair_buff(u16 slot, u16 id) { tellRawRecord<Le16>(slot, kDeletion, Le16(id)); }

void hotplug_mpair(u16 slot) {
  if (!isDataCard(slot)) return;
  forEachPair([slot](const MpairRecord& pair) {
    if (pair.slot == slot) send_mpair_buff(pair);
  });
}

void card_unauth_mpair(u16 slot) {
  if (!isDataCard(slot)) return;
  forEachPair([slot](const MpairRecord& pair) {
    u16 of = 0;
    if (pair.slot == slot) del_mpair_db(pair.id, &of);
  });
}

// --- Managers ---

static int checkRaw(const u8* at) { return check_mpair(rawRecord<MpairRecord>(at)); }

static int setPair(const u8* at) {
  const auto pair = rawRecord<MpairRecord>(at);
  if (set_mpair_db(&pair) != 0) return -1;
  send_mpair_buff(pair);
  return 0;
}

static int deletePair(const u8* at) {
  const auto id = static_cast<u16>(getNumber(at, 2));
  u16 slot = 0;
  if (del_mpair_db(id, &slot) != 0) return -1;
  send_del_mpair_buff(slot, id);
  return 0;
}

// A deletion is a change of the pairs, too.
static void report() { reportChange(kNode, kMessage, 1); }

static constexpr RawSet set{kMessage, 2, sizeof(MpairRecord), kMpairs, checkRaw, setPair, report};
static constexpr RawSet deletion{kDeletion, 2, 2, kMpairs, nullptr, deletePair, report};

static SnmpSetHandler snmp_mpair_set;
int snmp_mpair_set(u16, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return setRawRecords(set, data, length, reply, replyLen);
}

static SnmpSetHandler snmp_mpair_del;
int snmp_mpair_del(u16, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return setRawRecords(deletion, data, length, reply, replyLen);
}

static SnmpGetHandler snmp_mpair_get;
int snmp_mpair_get(u16, u8*, u8*, i32, u8* reply, u32* replyLen, void*, void*) {
  RawAnswer answer(reply, 2);
  forEachPair([&](const MpairRecord& pair) { answer.add(pair); });
  return answer.end(replyLen);
}

void snmp_reg_mpair() {
  constexpr SnmpMsgReg messages[] = {
      {kMessage, {0, 0}, snmp_mpair_set, snmp_mpair_get, 5414, "dsl mpair configuration"},
      {kDeletion, {0, 0}, snmp_mpair_del, snmp_mpair_get, 5414, "del dsl mpair configuration"},
  };
  for (const SnmpMsgReg& message : messages) SnmpMsgRegister(&message);
}

// --- Commands ---

static CommandHandler cli_mpair_set_func;
int cli_mpair_set_func(const CommandElement*, Vty* vty, int, char** argv) {
  const MpairRecord pair{
      .id = cutNumber(argv[0]), .slot = cutNumber(argv[1]), .mport = cutNumber(argv[2]), .sport = cutNumber(argv[3])};
  if (const int code = check_mpair(pair)) return refuse(vty, "check_mpair =  %d\r\n", static_cast<u16>(code));
  if (const int code = set_mpair_db(&pair)) return refuse(vty, "set_mpair_db =  %d\r\n", code);
  if (inRecoverConfProcess() != 1) send_mpair_buff(pair);
  return 0;
}

static void showPair(Vty* vty, const MpairRecord& pair) {
  vty_out(vty, "%-5d   %-5d   %-5d   %-5d\r\n", u16{pair.id}, u16{pair.slot}, u16{pair.mport}, u16{pair.sport});
}

static CommandHandler cli_mpair_show_func;
int cli_mpair_show_func(const CommandElement*, Vty* vty, int, char** argv) {
  vty_out(vty, "\r\n-----   -----   -----   -----\r\n");
  vty_out(vty, "id      slot    mport   sport\r\n");
  if (bep_StrCmp(argv[0], "all") != 0) {
    MpairRecord pair{.id = cutNumber(argv[0])};
    if (get_mpair_db(&pair) != 0) return refuse(vty, "not find\r\n");
    showPair(vty, pair);
    return 0;
  }
  int count = 0;
  forEachPair([&](const MpairRecord& pair) {
    showPair(vty, pair);
    ++count;
  });
  vty_out(vty, "total item:%d\r\n", count);
  return 0;
}

static CommandHandler cli_mpair_del_func;
int cli_mpair_del_func(const CommandElement*, Vty* vty, int, char** argv) {
  const u16 id = cutNumber(argv[0]);
  u16 slot = 0;
  if (del_mpair_db(id, &slot) != 0) return refuse(vty, "not find\r\n");
  send_del_mpair_buff(slot, id);
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set dsl mpair id <id> slot <slotno> mport <portno> sport <portno>", cli_mpair_set_func,
            "id<1-128> if id exist means modify if not means add."),
    command(CONFIG_NODE, "show dsl mpair id [<id>|all]", cli_mpair_show_func, "pairs of bonded ports"),
    command(CONFIG_NODE, "no dsl mpair id <id>", cli_mpair_del_func, "a pair of bonded ports goes"),
};

void install_mpair() { installCommands(commands); }

void showrun_mpair(Vty* vty) {
  forEachPair([vty](const MpairRecord& pair) {
    vty_out(vty, "set dsl mpair id %d slot %d mport %d sport %d\r\n", u16{pair.id}, u16{pair.slot}, u16{pair.mport},
            u16{pair.sport});
  });
}
