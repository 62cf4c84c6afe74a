#include "voice/globals/rfc2833.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&RFC2833::neg2833, RFC2833db_rfc2833Neg_get, RFC2833db_rfc2833Neg_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid RFC2833 negotiation: %d"}),
    field<&RFC2833::neg2198, RFC2833db_rfc2198Neg_get, RFC2833db_rfc2198Neg_put>(
        {.offset = 2, .initial = 0, .allowed = {{0, 1}}, .code = 65415, .complaint = "invalid RFC2198 negotiation: %d"}),
    field<&RFC2833::pt2833, RFC2833db_rfc2833PTDefault_get, RFC2833db_rfc2833PTDefault_put>(
        {.offset = 4, .initial = 97, .allowed = {{0, 0}, {96, 127}}, .code = 65414,
         .complaint = "invalid default RFC2833 PT: %d"}),
    field<&RFC2833::pt2198, RFC2833db_rfc2198PTDefault_get, RFC2833db_rfc2198PTDefault_put>(
        {.offset = 6, .initial = 96, .allowed = {{0, 0}, {96, 127}}, .code = 65413,
         .complaint = "invalid default RFC2198 PT: %d"}),
};
// clang-format on
static constexpr Record shape(40, fields);
static constexpr Table<RFC2833db> table{"RFC2833db", "treeIdx", RFC2833db_treeIdx_find, RFC2833db_new,
                                        RFC2833db_recordid_put};
static constexpr VoiceItem item{.id = 3082,
                                .setName = "nSetRFC2833",
                                .words = "RFC2833",
                                .viewWords = "RFC2833",
                                .shape = &shape,
                                .recordBytes = sizeof(RFC2833),
                                .parse = onRecord<nParseRFC2833>,
                                .check = onRecord<nCheckRFC2833>,
                                .set = onRecord<nSetRFC2833>,
                                .get = onRecord<nGetRFC2833>,
                                .encode = onRecord<nEncodeRFC2833>,
                                .parseHandle = nParseRFC2833Handle,
                                .checkHandle = nCheckRFC2833Handle,
                                .setHandle = nSetRFC2833Handle,
                                .getHandle = nGetRFC2833Handle,
                                .encodeHandle = nEncodeRFC2833Handle,
                                .init = nInitRFC2833,
                                .distribute = nDistribRFC2833,
                                .erase = nEraseRFC2833};
static constexpr Word negotiationWords[] = {{"auto", 1}, {"manul", 0}};

// Steps that are done as by every item.
int nParseRFC2833(WireIn unit, RFC2833* cfg, u32* length) { return parseUnit(shape, unit, cfg, length); }
int nParseRFC2833Handle(WireIn area, u32* count, LIST* list) { return parseUnits(item, area, count, list); }
int nCheckRFC2833(const RFC2833* cfg, SnmpErrInfo* err) { return checkFields(fields, cfg, err); }
int nCheckRFC2833Handle(LIST* list, SnmpErrInfo* err) { return checkUnits(item, list, err); }
int nSetRFC2833(const RFC2833* cfg) { return ngnSetRFC2833db(cfg, 0); }
int nSetRFC2833Handle(LIST* list) { return setUnits(item, list); }
int nGetRFC2833(RFC2833* cfg) { return ngnGetRFC2833db(cfg, 0); }
int nGetRFC2833Handle(LIST* list) { return getUnit(item, list); }
int nEncodeRFC2833(const RFC2833* cfg, WireOut unit, u32* length) { return encodeUnit(shape, cfg, unit, length); }
int nEncodeRFC2833Handle(LIST* list, WireOut buffer, u32* length) { return encodeUnits(item, list, buffer, length); }
int ngnSetRFC2833db(const RFC2833* cfg, u32 key) { return storeRow(table, fields, cfg, key); }
int ngnGetRFC2833db(RFC2833* cfg, u32 key) { return loadRow(table, fields, cfg, key); }
int nDistribRFC2833X(const RFC2833* cfg, SnmpErrInfo* err) { return storeAndSend(item, cfg, err); }
int nDistribRFC2833() { return sendStored(item, RFC2833{}); }
int nEraseRFC2833() { return eraseItem(item); }
int nInitRFC2833() { return initItem(item, RFC2833{}); }

int nSnmpSetRFC2833(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, {id, nullptr, data, length, reply, replyLen});
}
int nSnmpGetRFC2833(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, {id, last, data, length, reply, replyLen});
}

// Commands.
int cli_set_rfc2833_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 4) return refuse(vty, "invalid parameter quantity");
  const auto neg2833 = valueOf(negotiationWords, argv[0]);
  if (!neg2833) return refuse(vty, "invalid RFC2833 negotiation");
  const auto neg2198 = valueOf(negotiationWords, argv[2]);
  if (!neg2198) return refuse(vty, "invalid RFC2198 negotiation");
  const RFC2833 cfg{static_cast<u16>(*neg2833), static_cast<u16>(*neg2198), static_cast<u16>(bep_atoiEx(argv[1])),
                    static_cast<u16>(bep_atoiEx(argv[3]))};
  SnmpErrInfo err;
  return finishSet(vty, item, nDistribRFC2833X(&cfg, &err), err);
}

int cli_show_rfc2833_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word shown[] = {{"Auto", 1}, {"Manul", 0}};
  RFC2833 cfg;
  const int result = nGetRFC2833(&cfg);
  if (result == 0) {
    vty_out(vty, "\r\n RFC2833 Configuration");
    vty_out(vty, "\r\n ----------------------------");
    vty_out(vty, "\r\n %-21s%-15s", "RFC2833 Negotiation: ", textOf(shown, cfg.neg2833, "N/A"));
    vty_out(vty, "\r\n %-21s%-15s", "RFC2198 Negotiation: ", textOf(shown, cfg.neg2198, "N/A"));
    vty_out(vty, "\r\n %-21s%-6d", "Default RFC2833 PT: ", cfg.pt2833);
    vty_out(vty, "\r\n %-21s%-6d", "Default RFC2198 PT: ", cfg.pt2198);
    vty_out(vty, "\r\n");
  }
  return finishShow(vty, item, result);
}

int cli_distribute_erase_rfc2833_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(item, vty, argc, argv);
}

int nShowRunRFC2833(Vty* vty) {
  RFC2833 cfg;
  nGetRFC2833(&cfg);
  vty_out(vty, "set rfc2833 negotiation %s default pt %d rfc2198 negotiation %s default pt %d\r\n",
          textOf(negotiationWords, cfg.neg2833, "manul"), cfg.pt2833, textOf(negotiationWords, cfg.neg2198, "manul"),
          cfg.pt2198);
  return 0;
}

static constexpr Command commands[] = {
    command(
        CONFIG_NODE,
        "set rfc2833 negotiation [auto|manul] default pt <default2833PT> rfc2198 negotiation [auto|manul] default pt "
        "<default2198PT>",
        cli_set_rfc2833_config_func, "DTMF relay"),
    command(CONFIG_NODE, "show rfc2833 configuration", cli_show_rfc2833_config_func, "DTMF relay"),
    command(CONFIG_NODE, "[distribute|erase] rfc2833 configuration", cli_distribute_erase_rfc2833_config_func,
            "DTMF relay"),
};
static constexpr SnmpMsgReg message{3082, {0, 0}, nSnmpSetRFC2833, nSnmpGetRFC2833, 66, "Set RFC2833"};

int installRfc2833Commands() { return installCommands(commands); }
int SnmpMsgRegisterRFC2833() { return registerMessage(message); }
