#include "voice/globals/phoneNumber.h"

#include <cstring>
#include <ranges>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_packets.h"
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
static constexpr Record potsShape(52, potsFields);
static constexpr Record iptShape(52, iptFields);
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
static constexpr Word typeWords[] = {{"a", 0}, {"b", 1}, {"c", 2}, {"d", 3}, {"e", 4}, {"f", 5}, {"g", 6}, {"h", 7}};

// --- Check ---

static int nCheckPHNNumber(const PHNNumber* cfg, SnmpErrInfo* err) {
  const auto length = static_cast<u16>(strnlen(cfg->phnNumber, sizeof cfg->phnNumber));
  if (length == 0) {
    vSetErrorInfo(65416, err);
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
      vSetErrorInfo(kStepFailed, err);
      trace("check POTS/IPT telephone number failed");
      return -1;
  }
  if (cfg->phnType <= 7) return 0;
  vSetErrorInfo(65413, &cfg->phnType, sizeof cfg->phnType, err);
  trace("invalid telephone number type: %d", cfg->phnType);
  return -1;
}

int nIsPHNNumberDuplicate(const LIST* list, char* number) {
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

// No number stands twice in a list.
static int nCheckPHNNumberHandle(LIST* list, SnmpErrInfo* err) {
  char number[sizeof PHNNumber::phnNumber];
  if (nIsPHNNumberDuplicate(list, number) == 0) return 0;
  vSetErrorInfo(65414, number, sizeof number, err);
  trace("the telephone number %.20s is duplicate", number);
  return -1;
}

// --- A list ---

static constexpr auto everyRow = std::views::iota(0U, kNumbers);

static bool isEmpty(const PHNNumber& cfg) { return cfg.phnNumber[0] == '\0'; }

// The rows in use, in their order.
template <const VoiceItem& item>
static int getNumbers(LIST* out) {
  if (vCreateDataNode(out, kNumbers, sizeof(PHNNumber)) != 0) return -1;
  u32 index = 0;
  for (NODE *at = lstFirst(out), *next = nullptr; at != nullptr; at = next) {
    next = lstNext(at);
    if (loadItem(item, recordOf<void>(at), index++) != 0) return -1;
    if (isEmpty(*recordOf<PHNNumber>(at))) vFreeDataNode(out, static_cast<DataNode*>(at));
  }
  return 0;
}

template <const VoiceItem& item>
static int initNumbers() {
  const PHNNumber empty;
  for (const u32 index : everyRow) {
    const int result = storeItem(item, &empty, index);
    if (result == 0) continue;
    const FunctionName store(item.at(item.names->store));
    printTrace(item.at(item.names->init), "%s error iRet = %d", store.text, result);
    return -1;
  }
  return 0;
}

// Every store empties all rows first. A failure leaves the rows that were written by then.
template <const VoiceItem& item>
static int setNumbers(LIST* numbers) {
  if (initItem(item) != 0) return -1;
  u32 index = 0;
  for (NODE* at = lstFirst(numbers); at != nullptr; at = lstNext(at)) {
    if (storeItem(item, recordOf<void>(at), index++) != 0) return -1;
  }
  return 0;
}

// A command or a replay sends the whole list: the voice side's is replaced.
template <const VoiceItem& item>
static int distribNumbers() {
  const Where where = item.at(item.names->distribute);
  DataList numbers;
  if (getUnits(item, numbers) != 0) {
    printTrace(where, "get %s configuration failed", item.words);
    return -1;
  }
  return encodeAndSend(item, static_cast<LIST*>(numbers), where) == 0 ? 0 : -1;
}

static int distribNumbersX(const VoiceItem& item, LIST* numbers, SnmpErrInfo* err) {
  const Where where = item.at(item.names->distributeX);
  if (inRecoverConfProcess() != 1 && checkUnits(item, numbers, err) != 0) return -1;
  if (setUnits(item, numbers) != 0) {
    vSetErrorInfo(kNotStored, err);
    printTrace(where, "set %s configuration failed", item.words);
    return -1;
  }
  if (const u16 code = encodeAndSend(item, numbers, where)) vSetErrorInfo(code, err);
  return 0;
}

// --- Commands ---

// Where the two lists' texts differ.
struct NumberTexts {
  const char* word;
  const char* added;      // in the last line of the add command
  const char* command;    // of the running configuration
  const char* underline;  // in the heading of a show, where they differ by a dash
};
static constexpr NumberTexts potsTexts{"POTS", "add POTS telephone number configuration", "add pots telephone number",
                                       "------------------------------------"};
static constexpr NumberTexts iptTexts{"IPT", "add IPT telephone number configuration", "add ipt telephone number",
                                      "-----------------------------------"};

template <const VoiceItem& item, const NumberTexts& texts>
static void showrun(Vty* vty) {
  for (const u32 index : everyRow) {
    PHNNumber cfg;
    if (loadItem(item, &cfg, index) != 0 || isEmpty(cfg)) continue;
    vty_out(vty, "%s %.20s type %s\r\n", texts.command, cfg.phnNumber, textOf(typeWords, cfg.phnType, "h"));
  }
}

template <const VoiceItem& item, const NumberTexts& texts>
static int add(const CommandElement*, Vty* vty, int argc, char** argv) {
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
  if (getUnits(item, numbers) != 0) {
    vty_out(vty, "\r\n get %s telephone number configuration failed. \r\n", texts.word);
    return -1;
  }
  if (lstCount(numbers) == kNumbers) {
    vty_out(vty, "\r\n %s telephone number configuration is FULL. \r\n", texts.word);
    return -1;
  }
  if (nSetDataList(&cfg, sizeof cfg, numbers) != 0) {
    vty_out(vty, "\r\n set %s telephone number list failed. \r\n", texts.word);
    return -1;
  }
  SnmpErrInfo err;
  const int result = distribNumbersX(item, numbers, &err);
  return finishSet(vty, item, result, err, texts.added);
}

template <const VoiceItem& item, const NumberTexts& texts>
static int show(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word letters[] = {{"A", 0}, {"B", 1}, {"C", 2}, {"D", 3}, {"E", 4}, {"F", 5}, {"G", 6}, {"H", 7}};
  vty_out(vty, "\r\n %s Telephone Number Configuration", texts.word);
  vty_out(vty, "\r\n %s", texts.underline);
  vty_out(vty, "\r\n  No.   Telephone Number       Type");
  vty_out(vty, "\r\n ----- ---------------------- ------");
  for (u32 index = 0; index < kNumbers; ++index) {
    PHNNumber cfg;
    if (loadItem(item, &cfg, index) != 0) {
      vty_out(vty, "\r\n get No.%d %s number configuration failed. \r\n", static_cast<int>(index), texts.word);
      return -1;
    }
    if (isEmpty(cfg)) continue;
    vty_out(vty, "\r\n   %-2d   %-20.20s    %s\r\n", static_cast<int>(index + 1), cfg.phnNumber,
            textOf(letters, cfg.phnType, "N/A"));
  }
  vty_out(vty, "\r\n get %s number configuration successfully. \r\n", texts.word);
  return 0;
}

// clang-format off
static constexpr Command potsCommands[] = {
    command(CONFIG_NODE, "show pots telephone number", show<potsNumber, potsTexts>, "POTS numbers of the node"),
    command(CONFIG_NODE, "add pots telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]", add<potsNumber, potsTexts>,
            "POTS numbers of the node"),
    command(CONFIG_NODE, "[distribute|erase] pots telephone number", distributeEraseOf<potsNumber>,
            "POTS numbers of the node"),
};
static constexpr Command iptCommands[] = {
    command(CONFIG_NODE, "show ipt telephone number", show<iptNumber, iptTexts>, "IPT numbers of the node"),
    command(CONFIG_NODE, "add ipt telephone number <phoneNumber> type [a|b|c|d|e|f|g|h]", add<iptNumber, iptTexts>,
            "IPT numbers of the node"),
    command(CONFIG_NODE, "[distribute|erase] ipt telephone number", distributeEraseOf<iptNumber>,
            "IPT numbers of the node"),
};
// clang-format on

// What the two lists have in common.
template <const VoiceItem& item>
static constexpr VoiceItem numberList(VoiceItem row) {
  row.countWidth = 4;
  row.minimum = 0;
  row.maximum = kNumbers;
  row.check = onRecord<nCheckPHNNumber>;
  row.checkHandle = nCheckPHNNumberHandle;
  row.setHandle = setNumbers<item>;
  row.getHandle = getNumbers<item>;
  row.init = initNumbers<item>;
  row.distribute = distribNumbers<item>;
  return row;
}

static constexpr StepNames namesWith(const char* store, const char* load) {
  StepNames names = kNodeItem;
  names.store = store;
  names.load = load;
  names.registrar = "SnmpMsgRegisterPhoneNumber";
  return names;
}
static constexpr StepNames potsNames = namesWith("ngnSetPotsNumberdb", "ngnGetPotsNumberdb");
static constexpr StepNames iptNames = namesWith("ngnSetIPTNumberdb", "ngnGetIPTNumberdb");

constexpr VoiceItem potsNumber = numberList<potsNumber>({
    .id = 3083,
    .stem = "POTSNumber",
    .names = &potsNames,
    .words = "POTS telephone number",
    .kept = kept<PHNNumber>(potsShape, potsTable),
    .showrunHandle = showrun<potsNumber, potsTexts>,
    .commands = potsCommands,
    .message = setAndGet<potsNumber>(550, "Set POTS telephone number"),
});
constexpr VoiceItem iptNumber = numberList<iptNumber>({
    .id = 3084,
    .stem = "IPTNumber",
    .names = &iptNames,
    .words = "IPT telephone number",
    .kept = kept<PHNNumber>(iptShape, iptTable),
    .showrunHandle = showrun<iptNumber, iptTexts>,
    .commands = iptCommands,
    .message = setAndGet<iptNumber>(550, "Set IPT telephone number"),
});

void offerNumbers(const void*, CommandOffers* to) {
  for (const VoiceItem* item : {&potsNumber, &iptNumber}) {
    for (const u32 index : everyRow) {
      PHNNumber cfg;
      if (loadItem(*item, &cfg, index) != 0 || isEmpty(cfg)) continue;
      offer_to_cli(to, -1, cfg.phnNumber, static_cast<u32>(strnlen(cfg.phnNumber, sizeof cfg.phnNumber)));
    }
  }
}
