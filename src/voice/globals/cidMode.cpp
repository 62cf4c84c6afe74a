#include "voice/globals/cidMode.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&CIDMode::mode, CIDMODEdb_CIDMode_get, CIDMODEdb_CIDMode_put>(
        {.offset = 0, .initial = 1, .allowed = {{1, 2}}, .code = 65416, .complaint = "invalid CID mode: %d"}),
};
// clang-format on
static constexpr Record shape(34, fields);
static constexpr Table<CIDMODEdb> table{"CIDMODEdb", "treeIdx", CIDMODEdb_treeIdx_find, CIDMODEdb_new,
                                        CIDMODEdb_recordid_put};
static constexpr VoiceItem item{.id = 3087,
                                .setName = "nSetCIDMode",
                                .words = "CID mode",
                                .viewWords = "CID mode",
                                .shape = &shape,
                                .recordBytes = sizeof(CIDMode),
                                .parse = onRecord<nParseCIDMode>,
                                .check = onRecord<nCheckCIDMode>,
                                .set = onRecord<nSetCIDMode>,
                                .get = onRecord<nGetCIDMode>,
                                .encode = onRecord<nEncodeCIDMode>,
                                .parseHandle = nParseCIDModeHandle,
                                .checkHandle = nCheckCIDModeHandle,
                                .setHandle = nSetCIDModeHandle,
                                .getHandle = nGetCIDModeHandle,
                                .encodeHandle = nEncodeCIDModeHandle,
                                .init = nInitCIDMode,
                                .distribute = nDistribCIDMode,
                                .erase = nEraseCIDMode};
static constexpr Word modeWords[] = {{"fsk", 1}, {"dtmf", 2}};

// Steps that are done as by every item.
int nParseCIDMode(WireIn unit, CIDMode* cfg, u32* length) { return parseUnit(shape, unit, cfg, length); }
int nParseCIDModeHandle(WireIn area, u32* count, LIST* list) { return parseUnits(item, area, count, list); }
int nCheckCIDMode(const CIDMode* cfg, SnmpErrInfo* err) { return checkFields(fields, cfg, err); }
int nCheckCIDModeHandle(LIST* list, SnmpErrInfo* err) { return checkUnits(item, list, err); }
int nSetCIDMode(const CIDMode* cfg) { return ngnSetCIDModedb(cfg, 0); }
int nSetCIDModeHandle(LIST* list) { return setUnits(item, list); }
int nGetCIDMode(CIDMode* cfg) { return ngnGetCIDModedb(cfg, 0); }
int nGetCIDModeHandle(LIST* list) { return getUnit(item, list); }
int nEncodeCIDMode(const CIDMode* cfg, WireOut unit, u32* length) { return encodeUnit(shape, cfg, unit, length); }
int nEncodeCIDModeHandle(LIST* list, WireOut buffer, u32* length) { return encodeUnits(item, list, buffer, length); }
int ngnSetCIDModedb(const CIDMode* cfg, u32 key) { return storeRow(table, fields, cfg, key); }
int ngnGetCIDModedb(CIDMode* cfg, u32 key) { return loadRow(table, fields, cfg, key); }
int nDistribCIDModeX(const CIDMode* cfg, SnmpErrInfo* err) { return storeAndSend(item, cfg, err); }
int nDistribCIDMode() { return sendStored(item, CIDMode{}); }
int nEraseCIDMode() { return eraseItem(item); }
int nInitCIDMode() { return initItem(item, CIDMode{}); }

int nSnmpSetCIDMode(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, {id, nullptr, data, length, reply, replyLen});
}
int nSnmpGetCIDMode(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, {id, last, data, length, reply, replyLen});
}

// Commands.
int cli_set_cid_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return refuse(vty, "invalid parameter quantity");
  const auto mode = valueOf(modeWords, argv[0]);
  if (!mode) return refuse(vty, "invalid CID mode");
  const CIDMode cfg{static_cast<u16>(*mode)};
  SnmpErrInfo err;
  return finishSet(vty, item, nDistribCIDModeX(&cfg, &err), err);
}

int cli_show_cid_mode_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word shown[] = {{"FSK", 1}, {"DTMF", 2}};
  CIDMode cfg;
  const int result = nGetCIDMode(&cfg);
  if (result == 0) {
    vty_out(vty, "\r\n CID Mode Configuration");
    vty_out(vty, "\r\n ------------------------");
    vty_out(vty, "\r\n %-10s%-10s\r\n", "CID Mode: ", textOf(shown, cfg.mode, "N/A"));
  }
  return finishShow(vty, item, result);
}

int cli_distribute_erase_cid_mode_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(item, vty, argc, argv);
}

int nShowRunCIDMode(Vty* vty) {
  CIDMode cfg;
  nGetCIDMode(&cfg);
  vty_out(vty, "set cid mode %s\r\n", textOf(modeWords, cfg.mode, "dtmf"));
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set cid mode [fsk|dtmf]", cli_set_cid_mode_config_func, "caller identification mode"),
    command(CONFIG_NODE, "show cid mode", cli_show_cid_mode_config_func, "caller identification mode"),
    command(CONFIG_NODE, "[distribute|erase] cid mode", cli_distribute_erase_cid_mode_config_func,
            "caller identification mode"),
};
static constexpr SnmpMsgReg message{3087, {0, 0}, nSnmpSetCIDMode, nSnmpGetCIDMode, 60, "Set CIDMode configuration"};

int installCidModeCommands() { return installCommands(commands); }
int SnmpMsgRegisterCIDMode() { return registerMessage(message); }
