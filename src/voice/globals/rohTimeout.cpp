#include "voice/globals/rohTimeout.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&ROHTimeout::operation, ROHTIMEOUTdb_operation_get, ROHTIMEOUTdb_operation_put>(
        {.offset = 0, .initial = 0, .allowed = {{0, 1}}, .code = 65416, .complaint = "invalid ROH timeout operation: %d"}),
    field<&ROHTimeout::terminalStatus, ROHTIMEOUTdb_terminalStatus_get, ROHTIMEOUTdb_terminalStatus_put>(
        {.offset = 2, .initial = 1, .allowed = {{0, 1}}, .code = 65415,
         .complaint = "invalid terminal service status: %d"}),
};
// clang-format on
static constexpr Record shape(132, fields);
static constexpr Table<ROHTIMEOUTdb> table{"ROHTIMEOUTdb", "treeIdx", ROHTIMEOUTdb_treeIdx_find, ROHTIMEOUTdb_new,
                                           ROHTIMEOUTdb_recordid_put};
static constexpr VoiceItem item{.id = 3086,
                                .setName = "nSetROHTimeout",
                                .words = "ROH timeout procession",
                                .viewWords = "ROH timeout procession",
                                .shape = &shape,
                                .recordBytes = sizeof(ROHTimeout),
                                .parse = onRecord<nParseROHTimeout>,
                                .check = onRecord<nCheckROHTimeout>,
                                .set = onRecord<nSetROHTimeout>,
                                .get = onRecord<nGetROHTimeout>,
                                .encode = onRecord<nEncodeROHTimeout>,
                                .parseHandle = nParseROHTimeoutHandle,
                                .checkHandle = nCheckROHTimeoutHandle,
                                .setHandle = nSetROHTimeoutHandle,
                                .getHandle = nGetROHTimeoutHandle,
                                .encodeHandle = nEncodeROHTimeoutHandle,
                                .init = nInitROHTimeout,
                                .distribute = nDistribROHTimeout,
                                .erase = nEraseROHTimeout};
static constexpr Word operationWords[] = {{"not_unregister", 0}, {"unregister", 1}};
static constexpr Word statusWords[] = {{"keep", 0}, {"over", 1}};

// Steps that are done as by every item.
int nParseROHTimeout(WireIn unit, ROHTimeout* cfg, u32* length) { return parseUnit(shape, unit, cfg, length); }
int nParseROHTimeoutHandle(WireIn area, u32* count, LIST* list) { return parseUnits(item, area, count, list); }
int nCheckROHTimeout(const ROHTimeout* cfg, SnmpErrInfo* err) { return checkFields(fields, cfg, err); }
int nCheckROHTimeoutHandle(LIST* list, SnmpErrInfo* err) { return checkUnits(item, list, err); }
int nSetROHTimeout(const ROHTimeout* cfg) { return ngnSetROHTimeoutdb(cfg, 0); }
int nSetROHTimeoutHandle(LIST* list) { return setUnits(item, list); }
int nGetROHTimeout(ROHTimeout* cfg) { return ngnGetROHTimeoutdb(cfg, 0); }
int nGetROHTimeoutHandle(LIST* list) { return getUnit(item, list); }
int nEncodeROHTimeout(const ROHTimeout* cfg, WireOut unit, u32* length) { return encodeUnit(shape, cfg, unit, length); }
int nEncodeROHTimeoutHandle(LIST* list, WireOut buffer, u32* length) { return encodeUnits(item, list, buffer, length); }
int ngnSetROHTimeoutdb(const ROHTimeout* cfg, u32 key) { return storeRow(table, fields, cfg, key); }
int ngnGetROHTimeoutdb(ROHTimeout* cfg, u32 key) { return loadRow(table, fields, cfg, key); }
int nDistribROHTimeoutX(const ROHTimeout* cfg, SnmpErrInfo* err) { return storeAndSend(item, cfg, err); }
int nDistribROHTimeout() { return sendStored(item, ROHTimeout{}); }
int nEraseROHTimeout() { return eraseItem(item); }
int nInitROHTimeout() { return initItem(item, ROHTimeout{}); }

int nSnmpSetROHTimeout(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(item, {id, nullptr, data, length, reply, replyLen});
}
int nSnmpGetROHTimeout(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(item, {id, last, data, length, reply, replyLen});
}

// Commands.
int cli_set_roh_timeout_process_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  const auto operation = valueOf(operationWords, argv[0]);
  if (!operation) return refuse(vty, "invalid roh timeout procession");
  const auto status = valueOf(statusWords, argv[1]);
  if (!status) return refuse(vty, "invalid terminal service status");
  const ROHTimeout cfg{static_cast<u16>(*operation), static_cast<u16>(*status)};
  SnmpErrInfo err;
  return finishSet(vty, item, nDistribROHTimeoutX(&cfg, &err), err);
}

int cli_show_roh_timeout_process_config_func(const CommandElement*, Vty* vty, int, char**) {
  static constexpr Word operations[] = {{"Not Unregister", 0}, {"Unregister", 1}};
  static constexpr Word statuses[] = {{"Keep Service", 0}, {"Service Over", 1}};
  ROHTimeout cfg;
  const int result = nGetROHTimeout(&cfg);
  if (result == 0) {
    vty_out(vty, "\r\n ROH Timeout Procession Configuration");
    vty_out(vty, "\r\n -----------------------------------------");
    vty_out(vty, "\r\n %-25s%-15s", "ROH Timeout Operation: ", textOf(operations, cfg.operation, "N/A"));
    vty_out(vty, "\r\n %-25s%-15s\r\n", "Terminal Service Status: ", textOf(statuses, cfg.terminalStatus, "N/A"));
  }
  return finishShow(vty, item, result);
}

int cli_distribute_erase_roh_timeout_process_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliDistributeErase(item, vty, argc, argv);
}

int nShowRunROHTimeout(Vty* vty) {
  ROHTimeout cfg;
  nGetROHTimeout(&cfg);
  vty_out(vty, "set roh timeout procession %s terminal service status %s\r\n",
          cfg.operation != 0 ? "unregister" : "not_unregister", cfg.terminalStatus != 0 ? "over" : "keep");
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set roh timeout procession [not_unregister|unregister] terminal service status [keep|over]",
            cli_set_roh_timeout_process_config_func, "lines that stay off-hook"),
    command(CONFIG_NODE, "show roh timeout procession", cli_show_roh_timeout_process_config_func,
            "lines that stay off-hook"),
    command(CONFIG_NODE, "[distribute|erase] roh timeout procession",
            cli_distribute_erase_roh_timeout_process_config_func, "lines that stay off-hook"),
};
static constexpr SnmpMsgReg message{
    3086, {0, 0}, nSnmpSetROHTimeout, nSnmpGetROHTimeout, 158, "Set off-hook warning timeout procession"};

int installRohTimeoutCommands() { return installCommands(commands); }
int SnmpMsgRegisterROHTimeout() { return registerMessage(message); }
