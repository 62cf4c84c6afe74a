#include "voice/globals/voiceTimer.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&VoiceTimer::maxWaitTime, VOICETIMERdb_maxWaitTime_get, VOICETIMERdb_maxWaitTime_put>(
        {.offset = 0, .initial = 60, .allowed = {{0, 254}}, .code = 65416, .complaint = "invalid max waiting time(s): %d"}),
    field<&VoiceTimer::startTimer, VOICETIMERdb_startTimer_get, VOICETIMERdb_startTimer_put>(
        {.offset = 2, .initial = 16, .allowed = {{1, 3600}}, .code = 65415, .complaint = "invalid start timer(s): %d"}),
    field<&VoiceTimer::longTimer, VOICETIMERdb_longTimer_get, VOICETIMERdb_longTimer_put>(
        {.offset = 6, .initial = 16, .allowed = {{1, 3600}}, .code = 65414, .complaint = "invalid long timer(s): %d"}),
    field<&VoiceTimer::shortTimer, VOICETIMERdb_shortTimer_get, VOICETIMERdb_shortTimer_put>(
        {.offset = 10, .initial = 4, .allowed = {{1, 3600}}, .code = 65413, .complaint = "invalid short timer(s): %d"}),
    field<&VoiceTimer::digitMapNotify, VOICETIMERdb_digitMapNotify_get, VOICETIMERdb_digitMapNotify_put>(
        {.offset = 14, .initial = 0, .allowed = {{0, 1}}, .code = 65412, .complaint = "invalid digital map notification: %d"}),
};
// clang-format on
static constexpr Record shape(527, fields);
static constexpr Table<VOICETIMERdb> table{"VOICETIMERdb", "treeIdx", VOICETIMERdb_treeIdx_find, VOICETIMERdb_new,
                                           VOICETIMERdb_recordid_put};
static constexpr Word notifyWords[] = {{"yes", 1}, {"no", 0}};

static int cli_set_voice_timer_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 5) return refuse(vty, "invalid parameter quantity");
  const auto notify = valueOf(notifyWords, argv[4]);
  if (!notify) return refuse(vty, "invalid digital map notify mmediately option");
  const VoiceTimer cfg{static_cast<u16>(bep_atoiEx(argv[0])), static_cast<u32>(bep_atoiEx(argv[1])),
                       static_cast<u32>(bep_atoiEx(argv[2])), static_cast<u32>(bep_atoiEx(argv[3])),
                       static_cast<u8>(*notify)};
  return configure(vty, voiceTimer, &cfg);
}

static void show(Vty* vty, const VoiceTimer* cfg) {
  static constexpr Word shown[] = {{"Not Immediately", 0}, {"Immediately", 1}};
  vty_out(vty, "\r\n Voice Timer Configuration");
  vty_out(vty, "\r\n --------------------------------------");
  vty_out(vty, "\r\n %-21s%-6d", "Max Waiting Time(s): ", cfg->maxWaitTime);
  vty_out(vty, "\r\n %-21s%-6d", "Start Timer(s): ", static_cast<i32>(cfg->startTimer));
  vty_out(vty, "\r\n %-21s%-6d", "Long Timer(s): ", static_cast<i32>(cfg->longTimer));
  vty_out(vty, "\r\n %-21s%-6d", "Short Timer(s): ", static_cast<i32>(cfg->shortTimer));
  vty_out(vty, "\r\n %-21s%-10s", "Digital Map Notify: ", textOf(shown, cfg->digitMapNotify, "N/A"));
  vty_out(vty, "\r\n");
}

static void nShowRunVoiceTimer(Vty* vty, const VoiceTimer* cfg) {
  vty_out(vty, "set voice timer waiting time %d start-timer %d long-timer %d short-timer %d notify-immediately %s\r\n",
          cfg->maxWaitTime, static_cast<i32>(cfg->startTimer), static_cast<i32>(cfg->longTimer),
          static_cast<i32>(cfg->shortTimer), textOf(notifyWords, cfg->digitMapNotify, "no"));
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set voice timer waiting time <maxWaitTime> start-timer <startTimer> long-timer <longTimer> short-timer "
            "<shortTimer> notify-immediately [yes|no]",
            cli_set_voice_timer_config_func, "call timers"),
    command(CONFIG_NODE, "show voice timer", showOf<voiceTimer>, "call timers"),
    command(CONFIG_NODE, "[distribute|erase] voice timer", distributeEraseOf<voiceTimer>, "call timers"),
};

constexpr VoiceItem voiceTimer = {
    .id = 3080,
    .stem = "VoiceTimer",
    .words = "voice timer",
    .kept = kept<VoiceTimer>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunVoiceTimer>,
    .commands = commands,
    .message = setAndGet<voiceTimer>(553, "Set voice timers"),
};
