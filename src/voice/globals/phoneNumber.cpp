#include "voice/globals/phoneNumber.h"

#include <cstring>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_public.h"

// clang-format off
static constexpr Field potsFields[] = {
    field<&PHNNumber::phnNumber, POTSNUMBERdb_phnNumber_get, POTSNUMBERdb_phnNumber_put>({.offset = 0}),
    field<&PHNNumber::phnType, POTSNUMBERdb_phnType_get, POTSNUMBERdb_phnType_put>({.offset = 20}),
};
static constexpr Field iptFields[] = {
    field<&PHNNumber::phnNumber, IPTNUMBERdb_phnNumber_get, IPTNUMBERdb_phnNumber_put>({.offset = 0}),
    field<&PHNNumber::phnType, IPTNUMBERdb_phnType_get, IPTNUMBERdb_phnType_put>({.offset = 20}),
};
// clang-format on
static constexpr Record shape(52, potsFields);
static constexpr Table<POTSNUMBERdb> potsTable{"POTSNUMBERdb",
                                               "treePhnIndex",
                                               POTSNUMBERdb_treePhnIndex_find,
                                               POTSNUMBERdb_new,
                                               POTSNUMBERdb_phnIndex_put,
                                               dbCommon_getConnectRes,
                                               " "};
static constexpr Table<IPTNUMBERdb> iptTable{"IPTNUMBERdb",
                                             "treePhnIndex",
                                             IPTNUMBERdb_treePhnIndex_find,
                                             IPTNUMBERdb_new,
                                             IPTNUMBERdb_phnIndex_put,
                                             dbCommon_getConnectRes,
                                             " "};
static int encodeReply(LIST* list, WireOut buffer, u32* length);
static constexpr VoiceItem pots{.id = 3083,
                                .setName = "ngnSetPotsNumberdb",
                                .words = "POTS telephone number",
                                .viewWords = "POTS telephone number",
                                .shape = &shape,
                                .recordBytes = sizeof(PHNNumber),
                                .countWidth = 4,
                                .minimum = 0,
                                .maximum = kNumbers,
                                .parse = onRecord<nParsePHNNumber>,
                                .check = onRecord<nCheckPHNNumber>,
                                .encode = onRecord<nEncodePHNNumber>,
                                .parseHandle = nParsePHNNumberHandle,
                                .checkHandle = nCheckPHNNumberHandle,
                                .setHandle = nSetPOTSNumberHandle,
                                .getHandle = nGetPOTSNumberHandle,
                                .encodeHandle = encodeReply,
                                .init = nInitPOTSNumber,
                                .distribute = nDistribPOTSNumber,
                                .erase = nErasePOTSNumber};
static constexpr VoiceItem ipt = [] {
  VoiceItem twin = pots;
  twin.id = 3084;
  twin.setName = "ngnSetIPTNumberdb";
  twin.words = twin.viewWords = "IPT telephone number";
  twin.setHandle = nSetIPTNumberHandle;
  twin.getHandle = nGetIPTNumberHandle;
  twin.init = nInitIPTNumber;
  twin.distribute = nDistribIPTNumber;
  twin.erase = nEraseIPTNumber;
  return twin;
}();
static int encodeReply(LIST* list, WireOut buffer, u32* length) { return encodeUnits(pots, list, buffer, length); }
static constexpr Word typeWords[] = {{"a", 0}, {"b", 1}, {"c", 2}, {"d", 3}, {"e", 4}, {"f", 5}, {"g", 6}, {"h", 7}};

// What tells the lists apart.
struct NumberList {
  const VoiceItem& item;
  int (*get)(u16 index, PHNNumber* cfg);
  int (*set)(u16 index, const PHNNumber* cfg);
  int (*store)(const PHNNumber* cfg, u32 key);
  const char* word;
  const char* added;      // in the last line of the add command
  const char* command;    // of the running configuration
  const char* underline;  // in the heading of a show, where the lists differ by a dash
};
static constexpr NumberList potsList{pots,
                                     nGetPOTSNumber,
                                     nSetPOTSNumber,
                                     ngnSetPotsNumberdb,
                                     "POTS",
                                     "add POTS telephone number configuration",
                                     "add pots telephone number",
                                     "------------------------------------"};
static constexpr NumberList iptList{ipt,
                                    nGetIPTNumber,
                                    nSetIPTNumber,
                                    ngnSetIPTNumberdb,
                                    "IPT",
                                    "add IPT telephone number configuration",
                                    "add ipt telephone number",
                                    "-----------------------------------"};

// --- The record ---

int nParsePHNNumber(WireIn unit, PHNNumber* cfg, u32* length) { return parseUnit(shape, unit, cfg, length); }
int nParsePHNNumberHandle(WireIn area, u32* count, LIST* list) { return parseUnits(pots, area, count, list); }
int nEncodePHNNumber(const PHNNumber* cfg, WireOut unit, u32* length) { return encodeUnit(shape, cfg, unit, length); }
int nEncodePHNNumberHandle(LIST* list, WireOut buffer, u32* length) { return encodeArea(pots, list, buffer, length); }

int nCheckPHNNumber(const PHNNumber* cfg, SnmpErrInfo* err) {
  if (cfg == nullptr || err == nullptr) {
    trace("configuration para is NULL");
    return -1;
  }
  const auto length = static_cast<u16>(strnlen(cfg->phnNumber, sizeof cfg->phnNumber));
  if (length == 0) {
    vSetErrorInfo(65416, nullptr, 0, err);
    trace("telephone number is NULL");
    return -1;
  }
  switch (nIsValidString(cfg->phnNumber, length, gCriteriaPOTSIPT)) {
    case 1:
      break;
    case 0:
      vSetErrorInfo(65415, cfg->phnNumber, sizeof cfg->phnNumber, err);
      trace("invalid POTS/IPT telephone number: %.20s", cfg->phnNumber);
      return -1;
    default:
      vSetErrorInfo(kStepFailed, nullptr, 0, err);
      trace("check POTS/IPT telephone number failed");
      return -1;
  }
  if (cfg->phnType <= 7) return 0;
  vSetErrorInfo(65413, &cfg->phnType, sizeof cfg->phnType, err);
  trace("invalid telephone number type: %d", cfg->phnType);
  return -1;
}

int nIsPHNNumberDuplicate(const LIST* list, char* number) {
  if (list == nullptr || number == nullptr) {
    trace("configuration para is NULL");
    return -1;
  }
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    const char* own = recordOf<PHNNumber>(at)->phnNumber;
    for (NODE* other = lstNext(at); other != nullptr; other = lstNext(other)) {
      if (std::memcmp(own, recordOf<PHNNumber>(other)->phnNumber, sizeof PHNNumber::phnNumber) != 0) continue;
      std::memcpy(number, own, sizeof PHNNumber::phnNumber);
      return 1;
    }
  }
  return 0;
}

int nCheckPHNNumberHandle(LIST* list, SnmpErrInfo* err) {
  if (checkUnits(pots, list, err) != 0) return -1;
  char number[sizeof PHNNumber::phnNumber];
  switch (nIsPHNNumberDuplicate(list, number)) {
    case 0:
      return 0;
    case 1:
      vSetErrorInfo(65414, number, sizeof number, err);
      trace("the telephone number %.20s is duplicate", number);
      return -1;
    default:
      vSetErrorInfo(kStepFailed, nullptr, 0, err);
      trace("check POTS/IPT telephone number duplicate failed");
      return -1;
  }
}

// --- The lists ---

static bool indexIsGood(u16 index, Where where = Where::here()) {
  if (index < kNumbers) return true;
  printTrace(where, "invalid telephone number index: %d", index);
  return false;
}

static bool isEmpty(const PHNNumber& cfg) { return cfg.phnNumber[0] == '\0'; }

// The rows in use, in their order.
static int getNumbers(const NumberList& list, LIST* out) {
  if (out == nullptr || vCreateDataNode(out, kNumbers, sizeof(PHNNumber)) != 0) return -1;
  NODE* at = lstFirst(out);
  for (u16 index = 0; index < kNumbers && at != nullptr; ++index) {
    auto* node = static_cast<DataNode*>(at);
    at = lstNext(at);
    if (list.get(index, recordOf<PHNNumber>(node)) != 0) return -1;
    node->slot = 18;
    if (isEmpty(*recordOf<PHNNumber>(node))) vFreeDataNode(out, node);
  }
  return 0;
}

// Every store empties all rows first. A failure leaves the rows that were written by then.
static int setNumbers(const NumberList& list, LIST* numbers) {
  if (numbers == nullptr || list.item.init() != 0) return -1;
  u16 index = 0;
  for (NODE* at = lstFirst(numbers); at != nullptr; at = lstNext(at)) {
    if (list.set(index++, recordOf<PHNNumber>(at)) != 0) return -1;
  }
  return 0;
}

static int initNumbers(const NumberList& list, Where where = Where::here()) {
  const PHNNumber empty;
  for (u16 index = 0; index < kNumbers; ++index) {
    const int result = list.store(&empty, index);
    if (result == 0) continue;
    printTrace(where, "%s error iRet = %d", list.item.setName, result);
    return -1;
  }
  return 0;
}

// Sends the whole list: the voice side's is replaced.
static u16 sendNumbers(const NumberList& list, LIST* numbers, Where where) {
  const auto encode = [](const void* from, WireOut wire, u32* length) {
    return nEncodePHNNumberHandle(const_cast<LIST*>(static_cast<const LIST*>(from)), wire, length);
  };
  const u32 bytes = 4 + shape.unit * static_cast<u32>(lstCount(numbers));
  return encodeAndSend(list.item, numbers, encode, bytes, where);
}

static int distribX(const NumberList& list, LIST* numbers, SnmpErrInfo* err, Where where = Where::here()) {
  if (numbers == nullptr || err == nullptr) return -1;
  if (inRecoverConfProcess() != 1 && nCheckPHNNumberHandle(numbers, err) != 0) return -1;
  if (list.item.setHandle(numbers) != 0) {
    vSetErrorInfo(kNotStored, nullptr, 0, err);
    printTrace(where, "set %s configuration failed", list.item.words);
    return -1;
  }
  if (const u16 code = sendNumbers(list, numbers, where)) vSetErrorInfo(code, nullptr, 0, err);
  return 0;
}

static int distrib(const NumberList& list, Where where = Where::here()) {
  DataList numbers;
  if (list.item.getHandle(numbers) != 0) {
    printTrace(where, "get %s configuration failed", list.item.words);
    return -1;
  }
  return sendNumbers(list, numbers, where) == 0 ? 0 : -1;
}

static int showrun(const NumberList& list, Vty* vty) {
  for (u16 index = 0; index < kNumbers; ++index) {
    PHNNumber cfg;
    if (list.get(index, &cfg) != 0 || isEmpty(cfg)) continue;
    vty_out(vty, "%s %.20s type %s\r\n", list.command, cfg.phnNumber, textOf(typeWords, cfg.phnType, "h"));
  }
  return 0;
}

static int add(const NumberList& list, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  const std::size_t length = bep_StrLen(argv[0]);
  PHNNumber cfg;
  if (length == 0) return refuse(vty, "the telephone number is NULL");
  if (length > sizeof cfg.phnNumber) {
    vty_out(vty, "\r\n the telephone number is more than %d bytes. \r\n", static_cast<int>(sizeof cfg.phnNumber));
    return -1;
  }
  std::memcpy(cfg.phnNumber, argv[0], length);
  const auto type = valueOf(typeWords, argv[1]);
  if (!type) return refuse(vty, "invalid telephone number type");
  cfg.phnType = static_cast<u16>(*type);
  DataList numbers;
  if (list.item.getHandle(numbers) != 0) {
    vty_out(vty, "\r\n get %s telephone number configuration failed. \r\n", list.word);
    return -1;
  }
  if (lstCount(numbers) == kNumbers) {
    vty_out(vty, "\r\n %s telephone number configuration is FULL. \r\n", list.word);
    return -1;
  }
  if (nSetDataList(&cfg, sizeof cfg, numbers) != 0) {
    vty_out(vty, "\r\n set %s telephone number list failed. \r\n", list.word);
    return -1;
  }
  SnmpErrInfo err;
  const int result = distribX(list, numbers, &err);
  return finishSet(vty, list.item, list.added, result, err);
}

static int show(const NumberList& list, Vty* vty) {
  static constexpr Word letters[] = {{"A", 0}, {"B", 1}, {"C", 2}, {"D", 3}, {"E", 4}, {"F", 5}, {"G", 6}, {"H", 7}};
  vty_out(vty, "\r\n %s Telephone Number Configuration", list.word);
  vty_out(vty, "\r\n %s", list.underline);
  vty_out(vty, "\r\n  No.   Telephone Number       Type");
  vty_out(vty, "\r\n ----- ---------------------- ------");
  for (u16 index = 0; index < kNumbers; ++index) {
    PHNNumber cfg;
    if (list.get(index, &cfg) != 0) {
      vty_out(vty, "\r\n get No.%d %s number configuration failed. \r\n", index, list.word);
      return -1;
    }
    if (isEmpty(cfg)) continue;
    vty_out(vty, "\r\n   %-2d   %-20.20s    %s\r\n", index + 1, cfg.phnNumber, textOf(letters, cfg.phnType, "N/A"));
  }
  vty_out(vty, "\r\n get %s number configuration successfully. \r\n", list.word);
  return 0;
}

// --- POTS ---

int nGetPOTSNumber(u16 index, PHNNumber* cfg) { return indexIsGood(index) ? ngnGetPotsNumberdb(cfg, index) : -1; }
int nSetPOTSNumber(u16 index, const PHNNumber* cfg) { return indexIsGood(index) ? ngnSetPotsNumberdb(cfg, index) : -1; }
int nGetPOTSNumberHandle(LIST* list) { return getNumbers(potsList, list); }
int nSetPOTSNumberHandle(LIST* list) { return setNumbers(potsList, list); }
int ngnSetPotsNumberdb(const PHNNumber* cfg, u32 key) { return storeRow(potsTable, potsFields, cfg, key); }
int ngnGetPotsNumberdb(PHNNumber* cfg, u32 key) { return loadRow(potsTable, potsFields, cfg, key); }
int nDistribPOTSNumberX(LIST* list, SnmpErrInfo* err) { return distribX(potsList, list, err); }
int nDistribPOTSNumber() { return distrib(potsList); }
int nErasePOTSNumber() { return eraseItem(pots); }
int nInitPOTSNumber() { return initNumbers(potsList); }
int nShowRunPOTSNumber(Vty* vty) { return showrun(potsList, vty); }

int nSnmpSetPOTSNumber(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(pots, {id, nullptr, data, length, reply, replyLen});
}
int nSnmpGetPOTSNumber(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(pots, {id, last, data, length, reply, replyLen});
}
int cli_add_pots_telephone_number_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return add(potsList, vty, argc, argv);
}
int cli_show_pots_telephone_number_config_func(const CommandElement*, Vty* vty, int, char**) {
  return show(potsList, vty);
}
int cli_distribute_erase_pots_telephone_number_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(pots, vty, argc, argv);
}

// --- IPT ---

int nGetIPTNumber(u16 index, PHNNumber* cfg) { return indexIsGood(index) ? ngnGetIPTNumberdb(cfg, index) : -1; }
int nSetIPTNumber(u16 index, const PHNNumber* cfg) { return indexIsGood(index) ? ngnSetIPTNumberdb(cfg, index) : -1; }
int nGetIPTNumberHandle(LIST* list) { return getNumbers(iptList, list); }
int nSetIPTNumberHandle(LIST* list) { return setNumbers(iptList, list); }
int ngnSetIPTNumberdb(const PHNNumber* cfg, u32 key) { return storeRow(iptTable, iptFields, cfg, key); }
int ngnGetIPTNumberdb(PHNNumber* cfg, u32 key) { return loadRow(iptTable, iptFields, cfg, key); }
int nDistribIPTNumberX(LIST* list, SnmpErrInfo* err) { return distribX(iptList, list, err); }
int nDistribIPTNumber() { return distrib(iptList); }
int nEraseIPTNumber() { return eraseItem(ipt); }
int nInitIPTNumber() { return initNumbers(iptList); }
int nShowRunIPTNumber(Vty* vty) { return showrun(iptList, vty); }

int nSnmpSetIPTNumber(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(ipt, {id, nullptr, data, length, reply, replyLen});
}
int nSnmpGetIPTNumber(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(ipt, {id, last, data, length, reply, replyLen});
}
int cli_add_ipt_telephone_number_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return add(iptList, vty, argc, argv);
}
int cli_show_ipt_telephone_number_config_func(const CommandElement*, Vty* vty, int, char**) {
  return show(iptList, vty);
}
int cli_distribute_erase_ipt_telephone_number_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(ipt, vty, argc, argv);
}

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "show pots telephone number", cli_show_pots_telephone_number_config_func, "POTS numbers of the node"),
    command(CONFIG_NODE, "add pots telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]",
            cli_add_pots_telephone_number_config_func, "POTS numbers of the node"),
    command(CONFIG_NODE, "[distribute|erase] pots telephone number",
            cli_distribute_erase_pots_telephone_number_config_func, "POTS numbers of the node"),
    command(CONFIG_NODE, "show ipt telephone number", cli_show_ipt_telephone_number_config_func, "IPT numbers of the node"),
    command(CONFIG_NODE, "add ipt telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]",
            cli_add_ipt_telephone_number_config_func, "IPT numbers of the node"),
    command(CONFIG_NODE, "[distribute|erase] ipt telephone number",
            cli_distribute_erase_ipt_telephone_number_config_func, "IPT numbers of the node"),
};
// clang-format on
static constexpr SnmpMsgReg potsMessage{
    3083, {0, 0}, nSnmpSetPOTSNumber, nSnmpGetPOTSNumber, 550, "Set POTS telephone number"};
static constexpr SnmpMsgReg iptMessage{
    3084, {0, 0}, nSnmpSetIPTNumber, nSnmpGetIPTNumber, 550, "Set IPT telephone number"};

int installPhoneNumberCommands() { return installCommands(commands); }
int SnmpMsgRegisterPhoneNumber() { return registerMessage(potsMessage) == 0 ? registerMessage(iptMessage) : -1; }
