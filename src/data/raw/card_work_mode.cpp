#include "data/raw/card_work_mode.h"

#include "common/commands.h"
#include "common/report.h"
#include "common/store.h"
#include "data/common/terminal.h"
#include "platform/tables.h"

static constexpr u16 kMessage = 2874;
static constexpr u32 kMostSlots = 16;  // of a request
static constexpr int kNoSuchMode = -9;

int check_card_work_mode(const CardWorkModeRecord& record) {
  if (!isCesCard(record.slot)) return kRawOtherCard;
  return record.mode >= kLocalMode && record.mode <= kCesMode ? 0 : kNoSuchMode;
}

// --- Store ---

int set_card_work_mode_db(u32 objectId, u16 mode) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  CardWorkMode row;
  int code = CardWorkMode_idTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) code = CardWorkMode_new(transaction, &row);
  if (code == 0) code = CardWorkMode_id_put(&row, objectId);
  if (code == 0) code = CardWorkMode_mode_put(&row, mode);
  return code == 0 ? transaction.commit() : kStoreFailed;
}

int get_card_work_mode_db(u32 objectId, u16* mode) {
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  CardWorkMode row;
  const int code = CardWorkMode_idTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) {
    *mode = kLocalMode;
    return 0;
  }
  return code == 0 && CardWorkMode_mode_get(&row, mode) == 0 ? 0 : kStoreFailed;
}

void del_card_work_mode_db(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return;
  CardWorkMode row;
  if (CardWorkMode_idTree_find(transaction, objectId, &row) == 0 && CardWorkMode_delete(&row) == 0)
    transaction.commit();
}

// A slot's record as stored. 0 or -1.
static int readSlot(u16 slot, CardWorkModeRecord* record) {
  u32 id = 0;
  u16 mode = 0;
  if (omSlot2ObjId(slot, &id) != 0 || get_card_work_mode_db(id, &mode) != 0) return -1;
  *record = {.slot = slot, .mode = mode};
  return 0;
}

// --- Cards ---

static void send_card_work_mode(const CardWorkModeRecord& record) {
  tellRawRecord<Le32>(record.slot, kMessage, record);
}

void hotplug_card_work_mode(u16 slot) {
  CardWorkModeRecord record;
  if (!isCesCard(slot) || readSlot(slot, &record) != 0) return;
  send_card_work_mode(record);
}

void card_unauth_card_work_mode(u16 slot) {
  u32 id = 0;
  if (omSlot2ObjId(slot, &id) == 0) del_card_work_mode_db(id);
}

// --- Managers ---

static int checkRaw(const u8* at) { return check_card_work_mode(rawRecord<CardWorkModeRecord>(at)); }

static int setMode(const u8* at) {
  const auto record = rawRecord<CardWorkModeRecord>(at);
  u32 id = 0;
  if (omSlot2ObjId(record.slot, &id) != 0 || set_card_work_mode_db(id, record.mode) != 0) return -1;
  send_card_work_mode(record);
  reportChange(record.slot, kMessage, 1);
  return 0;
}

static constexpr RawSet set{kMessage, 4, sizeof(CardWorkModeRecord), kMostSlots, checkRaw, setMode};

static SnmpSetHandler snmp_card_work_mode_set;
int snmp_card_work_mode_set(u16, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return setRawRecords(set, data, length, reply, replyLen);
}

static constexpr u32 kNodeFrame = 36, kSelector = 20;  // bytes

// A frame of at most 36 bytes asks for the whole node.
static SnmpGetHandler snmp_card_work_mode_get;
int snmp_card_work_mode_get(u16, u8*, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  RawAnswer answer(reply, 4);
  CardWorkModeRecord record;
  const WireIn frame(data, static_cast<u32>(length));
  if (frame.size() <= kNodeFrame) {
    forEachCesSlot([&](u16 slot) {
      if (readSlot(slot, &record) == 0) answer.add(record);
    });
    return answer.end(replyLen);
  }
  const u32 count = getNumber(frame.data() + kNodeFrame - 4, 4);
  SnmpErrInfo err;
  if (count > kMostSlots) {
    reject(&err, kRawCount, {static_cast<u16>(count)});
    return answerError(kMessage, err, reply, replyLen);
  }
  Reader in(frame.subspan(kNodeFrame));
  if (in.rest().size() / kSelector < count) return rejectRaw(kMessage, kRawTooShort, reply, replyLen);
  for (u32 i = 0; i < count; ++i) {
    const auto slot = static_cast<u16>(in.number(2));
    in.skip(kSelector - 2);
    u32 id = 0;
    if (omSlot2ObjId(slot, &id) != 0) return rejectRaw(kMessage, kRawNotStored, reply, replyLen);
    if (readSlot(slot, &record) == 0) answer.add(record);
  }
  return answer.end(replyLen);
}

void snmp_reg_card_work_mode() {
  constexpr SnmpMsgReg message{
      kMessage, {0, 0}, snmp_card_work_mode_set, snmp_card_work_mode_get, 904, "card_work_mode configuration"};
  SnmpMsgRegister(&message);
}

// --- Commands ---

static constexpr Word modeWords[] = {{"local", kLocalMode}, {"remote", kRemoteMode}, {"ces", kCesMode}};

// The object of a slot whose card has the mode. 0, or -1 with a line.
static int findSlot(Vty* vty, const CardWorkModeRecord& record, u32* id) {
  if (const int code = check_card_work_mode(record)) {
    return refuse(vty, "check_card_work_mode =  %d\r\n", static_cast<u16>(code));
  }
  if (omSlot2ObjId(record.slot, id) == 0) return 0;
  return refuse(vty, "file %s func %s omSlot2ObjId error.\r\n", __FILE__, __func__);
}

static CommandHandler cli_card_work_mode_set_func;
int cli_card_work_mode_set_func(const CommandElement*, Vty* vty, int, char** argv) {
  const CardWorkModeRecord record{.slot = cutNumber(argv[0]),
                                  .mode = static_cast<u16>(valueOf(modeWords, argv[1]).value_or(0))};
  u32 id = 0;
  if (findSlot(vty, record, &id) != 0) return -1;
  if (set_card_work_mode_db(id, record.mode) != 0) {
    return refuse(vty, "file %s func %s set_card_work_mode_db error.\r\n", __FILE__, __func__);
  }
  send_card_work_mode(record);
  return 0;
}

static CommandHandler cli_card_work_mode_show_func;
int cli_card_work_mode_show_func(const CommandElement*, Vty* vty, int, char** argv) {
  u32 id = 0;
  u16 mode = 0;
  if (findSlot(vty, {.slot = cutNumber(argv[0])}, &id) != 0) return -1;
  if (get_card_work_mode_db(id, &mode) != 0) {
    return refuse(vty, "file %s func %s get_card_work_mode_db error.\r\n", __FILE__, __func__);
  }
  switch (mode) {
    case kLocalMode:
      vty_out(vty, "card work mode:local.\r\n");
      break;
    case kRemoteMode:
      vty_out(vty, "card work mode:remote.\r\n");
      break;
    case kCesMode:
      vty_out(vty, "card work mode:CES.\r\n");
      break;
    default:
      vty_out(vty, "card work mode:unknown mode = %d.\r\n", mode);
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set card work_mode slot <slotno> mode [local|remote|ces]", cli_card_work_mode_set_func,
            "what a CES card works for"),
    command(CONFIG_NODE, "show card work_mode slot <slotno>", cli_card_work_mode_show_func,
            "what a CES card works for"),
};

void install_card_work_mode() { installCommands(commands); }

void showrun_card_work_mode(Vty* vty) {
  forEachCesSlot([vty](u16 slot) {
    CardWorkModeRecord record;
    if (readSlot(slot, &record) != 0 || (record.mode != kRemoteMode && record.mode != kCesMode)) return;
    vty_out(vty, "set card work_mode slot %d mode %s\r\n", slot, textOf(modeWords, record.mode, ""));
  });
}
