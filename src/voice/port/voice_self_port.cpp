#include "voice/port/voice_self_port.h"

#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <unordered_map>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/ngn.h"
#include "platform/objects.h"
#include "platform/tables.h"
#include "voice/common/ngn_view.h"
#include "voice/common/number_message.h"
#include "voice/common/port_units.h"
#include "voice/port/msan_voice_port_cfg.h"
#include "voice/service/ngn_vo_common.h"

static constexpr u16 kMessage = 3110;
static constexpr u32 kItem = 116;
static constexpr u32 kMostItems = 1024;
static constexpr u32 kArea = 32, kItems = 36;  // of a request

// --- Store ---

static constexpr const char* kTable = "VoiceSelfPortCfg";

int set_voiceselfportcfg_dbapi(u32 objectId, const void* number, u32 offset, u32 length) {
  if (number == nullptr || offset != 0 || length < kSelfNumber) return -1;
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  VoiceSelfPortCfg row;
  int code = VoiceSelfPortCfg_objTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) {
    code = VoiceSelfPortCfg_new(transaction, &row);
    if (code != 0) logNew(Where::here(), kTable, code);
  } else if (code != 0) {
    logFind(Where::here(), kTable, "objTree", code);
  }
  if (code != 0) return kStoreFailed;
  VoiceSelfPortCfg_fixed fixed{};
  fixed.objid = objectId;
  std::memcpy(fixed.phoneNum, number, sizeof fixed.phoneNum);
  VoiceSelfPortCfg_fixed_put(&row, &fixed);
  return transaction.commit();
}

int get_voiceselfportcfg_dbapi(u32 objectId, void* number, u32 offset, u32 length) {
  if (number == nullptr || offset != 0 || length < kSelfNumber) return -1;
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  VoiceSelfPortCfg row;
  const int code = VoiceSelfPortCfg_objTree_find(transaction, objectId, &row);
  std::memset(number, 0, kSelfNumber);
  if (code == 0) {
    VoiceSelfPortCfg_phoneNum_get(&row, static_cast<char*>(number), kSelfNumber);
  } else if (code != DB_NOT_FOUND) {
    logRead(Where::here(), code);
    return kStoreFailed;
  }
  return transaction.commit();
}

int del_voiceselfportcfg_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  VoiceSelfPortCfg row;
  const int code = VoiceSelfPortCfg_objTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) return 0;
  if (code != 0) return kStoreFailed;
  VoiceSelfPortCfg_delete(&row);
  return transaction.commit();
}

// Each stored number with the objects that have it, in one walk. 0 or kStoreFailed.
using Holders = std::unordered_multimap<std::string, u32>;
static int readHolders(Holders& holders) {
  Transaction transaction(Access::read);
  if (!transaction) return kStoreFailed;
  mco_cursor_t cursor;
  int code = VoiceSelfPortCfg_objTree_index_cursor(transaction, &cursor);
  for (; code == 0; code = mco_cursor_next(transaction, &cursor)) {
    VoiceSelfPortCfg row;
    VoiceSelfPortCfg_fixed fixed;
    if ((code = VoiceSelfPortCfg_from_cursor(transaction, &cursor, &row)) != 0) break;
    VoiceSelfPortCfg_fixed_get(&row, &fixed);
    if (fixed.phoneNum[0] != '\0') holders.emplace(std::string(fixed.phoneNum, kSelfNumber), fixed.objid);
  }
  return code == DB_END ? transaction.commit() : kStoreFailed;
}

static int checkHolder(const Holders& holders, u16 slot, u16 port, const char* number, OmLevelId* holder) {
  u32 own = 0;
  if (omOltport2ObjId(slot, port, &own) != 0) return -1;
  const auto [first, last] = holders.equal_range(std::string(number, kSelfNumber));
  for (auto at = first; at != last; ++at) {
    if (at->second == own) continue;
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: phone %.32s is exsit.\r\n", "check_voice_self_port_phone", number);
    omObjId2LevelId(at->second, holder);
    return kStoreFailed;
  }
  return 0;
}

int check_voice_self_port_phone(u16 slot, u16 port, const char* number, u16* holderSlot, u16* holderPort) {
  Holders holders;
  if (readHolders(holders) != 0) return kStoreFailed;
  OmLevelId holder;
  const int result = checkHolder(holders, slot, port, number, &holder);
  *holderSlot = holder.addr[1];
  *holderPort = holder.addr[2];
  return result;
}

static int storeNumber(u16 slot, u16 port, const char* number) {
  ObjIndex object;
  if (const int code = SlotNoPortConvertObjIndex(slot, port, 0, &object)) return code;
  return setObjAttrDataByCondition(&object, kSelfPortAttribute, number, 0, kSelfNumber);
}

static int loadNumber(u16 slot, u16 port, char* number) {
  ObjIndex object;
  if (const int code = SlotNoPortConvertObjIndex(slot, port, 0, &object)) return code;
  return getObjAttrDataByCondition(&object, kSelfPortAttribute, number, 0, kSelfNumber);
}

// --- Send ---

static void putItem(u8* item, u16 slot, u16 port, const char* number) {
  std::memset(item, 0, kItem);
  putNumber(item, 2, slot);
  putNumber(item + 2, 2, port);
  std::memcpy(item + kLocation, number, kSelfNumber);
}

void ndistrib_voice_self_port(u16 slot, u16 port) {
  char number[kSelfNumber];
  if (loadNumber(slot, port, number) != 0) return;
  u8 message[4 + kItem];
  putNumber(message, 4, 1);
  putItem(message + 4, slot, port, number);
  writeNgnCmd(kMessage, 0, message, sizeof message, 0, 0, 0, 0);
}

// The ports of all POTS cards.
template <class Each>
static void forEachPort(Each each) {
  constexpr u16 kMostPorts = 128;
  u16 slots[100];
  u16 count = 100;
  if (get_msan_card_slot_list(slots, &count) != 0) return;
  for (u16 i = 0; i < count; ++i) {
    const int card = get_config_card_type(slots[i]);
    u16 amount = 0;
    if (card <= 0 || ddGetBoardServePortAmountByType(static_cast<u16>(card), &amount) != 0 || amount > kMostPorts)
      continue;
    for (u16 port = 1; port <= amount; ++port) each(slots[i], port);
  }
}

void distrib_voice_self_port() {
  forEachPort([](u16 slot, u16 port) { ndistrib_voice_self_port(slot, port); });
}

void nshowrun_voice_self_port(Vty* vty) {
  forEachPort([vty](u16 slot, u16 port) {
    char number[kSelfNumber];
    if (loadNumber(slot, port, number) == 0 && number[0] != '\0')
      vty_out(vty, "set voice_self_port_cfg slot %d  port %d phone %.32s\r\n", slot, port, number);
  });
}

// --- SNMP ---

// A frame of so many bytes for each item. The count; none behind an answer, or without one for a count that is too
// high.
static bool acceptCount(const SnmpCall& call, u32 unit, u32* count, Where where) {
  if (call.length >= static_cast<i32>(kItems)) {
    *count = getNumber(call.data + kArea, 4);
    if (*count > kMostItems) return false;
    if (u64{*count} * unit <= static_cast<u32>(call.length) - kItems) return true;
  }
  SnmpErrInfo err;
  vSetErrorInfo(kTooShort, &call.length, sizeof call.length, &err);
  answerError(call, err, "invalid SNMP command para", where);
  return false;
}

static const char* numberAt(const u8* item) { return reinterpret_cast<const char*>(item) + kLocation; }
static u16 slotAt(const u8* item) { return static_cast<u16>(getNumber(item, 2)); }
static u16 portAt(const u8* item) { return static_cast<u16>(getNumber(item + 2, 2)); }

// No number is at another port: with what the check gave, slot and port of the holder. 0 or -1.
static int checkHolders(const u8* items, u32 count, SnmpErrInfo* err) {
  Holders holders;
  std::optional<int> read;  // by the first number
  for (const u8* item = items; item != items + count * kItem; item += kItem) {
    if (*numberAt(item) == '\0') continue;
    OmLevelId holder;
    if (!read) read = readHolders(holders);
    const int code = *read != 0 ? *read : checkHolder(holders, slotAt(item), portAt(item), numberAt(item), &holder);
    if (code == 0) continue;
    u8 detail[8];
    putNumber(detail, 4, static_cast<u32>(code));
    putNumber(detail + 4, 2, holder.addr[1]);
    putNumber(detail + 6, 2, holder.addr[2]);
    vSetErrorInfo(65414, detail, sizeof detail, err);
    return -1;
  }
  return 0;
}

static int checkTwice(const u8* items, u32 count, SnmpErrInfo* err) {
  std::unordered_map<std::string_view, u32> seen;
  u32 first = count;
  for (u32 i = 0; i < count; ++i) {
    const std::string_view number(numberAt(items + i * kItem), kSelfNumber);
    if (number.front() == '\0') continue;
    const auto [known, fresh] = seen.try_emplace(number, i);
    if (!fresh && known->second < first) first = known->second;
  }
  if (first == count) return 0;
  vSetErrorInfo(65415, numberAt(items + first * kItem), kSelfNumber, err);
  return -1;
}

static int nsnmp_set_voice_self_port(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  u32 count = 0;
  if (beginRequest(kMessage, call, Asks::orders, where) != 0 || !acceptCount(call, kItem, &count, where)) return -1;
  SnmpErrInfo err;
  const u8* items = data + kItems;
  if (checkHolders(items, count, &err) != 0 || checkTwice(items, count, &err) != 0)
    return answerError(call, err, "check configuration failed", where);
  u16 slot = 0;
  for (const u8* item = items; item != items + count * kItem; item += kItem) {
    slot = slotAt(item);
    if (const int code = storeNumber(slot, portAt(item), numberAt(item)))
      return answerCode(call, kNotStored, code, where);
  }
  writeNgnCmd(kMessage, 0, data + kArea, static_cast<u32>(length) - kArea, 0, 0, 0, 0);
  answerSuccess(call, 0);
  if (count != 0) reportChange(slot, kMessage, 1);
  return 0;
}

static int nsnmp_get_voice_self_port(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  constexpr u32 kPair = 4, kReplyArea = 36;
  const SnmpCall call{id, last, data, length, reply, replyLen};
  const Where where = Where::here();
  u32 count = 0;
  if (beginRequest(kMessage, call, Asks::something, where) != 0 || !acceptCount(call, kPair, &count, where)) return -1;
  u8* item = reply + kReplyArea + 4;
  for (u32 i = 0; i < count; ++i, item += kItem) {
    const u8* pair = data + kItems + i * kPair;
    char number[kSelfNumber];
    if (const int code = loadNumber(slotAt(pair), portAt(pair), number)) return answerCode(call, kNotRead, code, where);
    putItem(item, slotAt(pair), portAt(pair), number);
  }
  putNumber(reply + kReplyArea, 4, count);
  return answerSuccess(call, kReplyArea + count * kItem);
}

static constexpr SnmpMsgReg message{
    kMessage, {0, 0}, nsnmp_set_voice_self_port, nsnmp_get_voice_self_port, 118788, "voice self port cfg"};
void registerVoiceSelfPort() { registerMessage(message); }

// --- Commands ---

// A refusal with its place ahead.
static int refuseSlot(Vty* vty, u16 slot, const char* why, Where where = Where::here()) {
  vty_out(vty, "\r\n %s, %s %d,  slot (%d) %s \r\n", where.function, fileName(where), where.line, slot, why);
  return -1;
}

static int failedStep(Vty* vty, const char* step, int code) {
  vty_out(vty, "\r\n%s = %d error.\r\n", step, code);
  return -1;
}

static int cli_set_voice_self_port_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return refuse(vty, "invalid parameter quantity");
  const u16 slot = static_cast<u16>(bep_atoiEx(argv[0]));
  const u16 port = static_cast<u16>(bep_atoiEx(argv[1]));
  const int card = get_config_card_type(slot);
  if (card <= 0) return refuseSlot(vty, slot, "not auth");
  if (caCheckCardTypeIsMsanPotsCard(static_cast<u16>(card)) != 0) return refuseSlot(vty, slot, "not ngn card");
  const std::size_t length = std::strlen(argv[2]);
  if (length > kSelfNumber) {
    vty_out(vty, "\r\nstrlen(argv[2]) = %d > 32\r\n", static_cast<int>(length));
    return -1;
  }
  char number[kSelfNumber] = {};
  std::memcpy(number, argv[2], length);
  u16 holderSlot = 0, holderPort = 0;
  if (is_cliFastMode() != 1 && check_voice_self_port_phone(slot, port, number, &holderSlot, &holderPort) != 0)
    return -1;
  ObjIndex object;
  if (const int code = SlotNoPortConvertObjIndex(slot, port, 0, &object))
    return failedStep(vty, "SlotNoPortConvertObjIndex", code);
  if (const int code = setObjAttrDataByCondition(&object, kSelfPortAttribute, number, 0, kSelfNumber))
    return failedStep(vty, "setObjAttrDataByCondition", code);
  ndistrib_voice_self_port(slot, port);
  reportChange(slot, kMessage, 3);
  return 0;
}

static int cli_show_voice_self_port_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  ObjIndex object;
  const u16 slot = static_cast<u16>(bep_atoiEx(argv[0]));
  if (const int code = SlotNoPortConvertObjIndex(slot, static_cast<u16>(bep_atoiEx(argv[1])), 0, &object))
    return failedStep(vty, "SlotNoPortConvertObjIndex", code);
  char number[kSelfNumber] = {};
  if (const int code = getObjAttrDataByCondition(&object, kSelfPortAttribute, number, 0, kSelfNumber))
    return failedStep(vty, "getObjAttrDataByCondition", code);
  vty_out(vty, "\r\nphoneNum = %.32s .\r\n", number);
  return 0;
}

// Each port's number is set by its own command, with all its checks; what one refuses does not hold up the others.
static int cli_batch_set_voice_self_port_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return refuse(vty, "invalid parameter quantity");
  DataList list;
  const u32 step = static_cast<u32>(bep_atoiEx(argv[1]));
  if (numberIsTooLong(vty, argv[0]) || listCounted(vty, argv[2], kSelfPortAttribute, step, list) != 0) return -1;
  if (setNumbers(argv[0], step, list) != 0) return refuse(vty, "set voice port configuration list failed");
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const auto* node = static_cast<const DataNode*>(at);
    char line[120];
    const int length = std::snprintf(line, sizeof line, "set voice_self_port_cfg slot %d  port %d phone %.32s \r\n",
                                     node->slot, node->port, recordOf<VoicePort>(at)->userNumber);
    cli_run_one_defun_func(line, static_cast<u32>(length));
  }
  msan_cfg_sync_trigger(list, kMessage, 3, kDataNodeList);
  vty_out(vty, "\r\n set voice port configuration successfully(%d). \r\n", 0);
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set voice_self_port_cfg slot <slotno>  port <portno> phone <phonenum>",
            cli_set_voice_self_port_func, "number of a POTS port for calls that the node switches"),
    command(CONFIG_NODE, "show voice_self_port_cfg slot <slotno>  port <portno>", cli_show_voice_self_port_func,
            "number of a POTS port for calls that the node switches"),
    command(CONFIG_NODE, "set voice self_port telephone number <startNumber> step <numberStep> interface <ifStr>",
            cli_batch_set_voice_self_port_func, "numbers for calls that the node switches, counted up"),
};
void installVoiceSelfPort() { installCommands(commands); }
