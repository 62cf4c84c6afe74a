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
static constexpr Word operationWords[] = {{"not_unregister", 0}, {"unregister", 1}};
static constexpr Word statusWords[] = {{"keep", 0}, {"over", 1}};

static int cli_set_roh_timeout_process_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "invalid parameter quantity");
  const auto operation = valueOf(operationWords, argv[0]);
  if (!operation) return refuse(vty, "invalid roh timeout procession");
  const auto status = valueOf(statusWords, argv[1]);
  if (!status) return refuse(vty, "invalid terminal service status");
  const ROHTimeout cfg{static_cast<u16>(*operation), static_cast<u16>(*status)};
  return configure(vty, rohTimeout, &cfg);
}

static void show(Vty* vty, const ROHTimeout* cfg) {
  static constexpr Word operations[] = {{"Not Unregister", 0}, {"Unregister", 1}};
  static constexpr Word statuses[] = {{"Keep Service", 0}, {"Service Over", 1}};
  vty_out(vty, "\r\n ROH Timeout Procession Configuration");
  vty_out(vty, "\r\n -----------------------------------------");
  vty_out(vty, "\r\n %-25s%-15s", "ROH Timeout Operation: ", textOf(operations, cfg->operation, "N/A"));
  vty_out(vty, "\r\n %-25s%-15s\r\n", "Terminal Service Status: ", textOf(statuses, cfg->terminalStatus, "N/A"));
}

static void nShowRunROHTimeout(Vty* vty, const ROHTimeout* cfg) {
  vty_out(vty, "set roh timeout procession %s terminal service status %s\r\n",
          cfg->operation != 0 ? "unregister" : "not_unregister", cfg->terminalStatus != 0 ? "over" : "keep");
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set roh timeout procession [not_unregister|unregister] terminal service status [keep|over]",
            cli_set_roh_timeout_process_config_func, "lines that stay off-hook"),
    command(CONFIG_NODE, "show roh timeout procession", showOf<rohTimeout>, "lines that stay off-hook"),
    command(CONFIG_NODE, "[distribute|erase] roh timeout procession", distributeEraseOf<rohTimeout>,
            "lines that stay off-hook"),
};

constexpr VoiceItem rohTimeout = {
    .id = 3086,
    .stem = "ROHTimeout",
    .words = "ROH timeout procession",
    .kept = kept<ROHTimeout>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunROHTimeout>,
    .commands = commands,
    .message = setAndGet<rohTimeout>(158, "Set off-hook warning timeout procession"),
};
