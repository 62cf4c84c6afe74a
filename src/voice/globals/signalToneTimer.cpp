#include "voice/globals/signalToneTimer.h"

#include "common/commands.h"
#include "common/words.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"

// clang-format off
static constexpr Field fields[] = {
    field<&SGNToneTimer::busyTime, SGNTONETIMERdb_busyTime_get, SGNTONETIMERdb_busyTime_put>(
        {.offset = 0, .initial = 40, .allowed = {{1, 3600}}, .code = 65416, .complaint = "invalid busy timeout: %d"}),
    field<&SGNToneTimer::dialTime, SGNTONETIMERdb_dialTime_get, SGNTONETIMERdb_dialTime_put>(
        {.offset = 4, .initial = 60, .allowed = {{1, 3600}}, .code = 65415, .complaint = "invalid dial timeout: %d"}),
    field<&SGNToneTimer::rohTime, SGNTONETIMERdb_rohTime_get, SGNTONETIMERdb_rohTime_put>(
        {.offset = 8, .initial = 60, .allowed = {{1, 3600}}, .code = 65414, .complaint = "invalid ROH timeout: %d"}),
    field<&SGNToneTimer::callWaitTime, SGNTONETIMERdb_callWaitTime_get, SGNTONETIMERdb_callWaitTime_put>(
        {.offset = 12, .initial = 60, .allowed = {{1, 3600}}, .code = 65413, .complaint = "invalid call waiting timeout: %d"}),
    field<&SGNToneTimer::ringTime, SGNTONETIMERdb_ringTime_get, SGNTONETIMERdb_ringTime_put>(
        {.offset = 16, .initial = 60, .allowed = {{1, 3600}}, .code = 65412, .complaint = "invalid ring timeout: %d"}),
    field<&SGNToneTimer::ringBackTime, SGNTONETIMERdb_ringBackTime_get, SGNTONETIMERdb_ringBackTime_put>(
        {.offset = 20, .initial = 60, .allowed = {{1, 3600}}, .code = 65411, .complaint = "invalid ring back timeout: %d"}),
    field<&SGNToneTimer::noAnswerTime, SGNTONETIMERdb_noAnswerTime_get, SGNTONETIMERdb_noAnswerTime_put>(
        {.offset = 24, .initial = 60, .allowed = {{1, 3600}}, .code = 65410, .complaint = "invalid no answer timeout: %d"}),
    field<&SGNToneTimer::intervalDialTime, SGNTONETIMERdb_intervalDialTime_get, SGNTONETIMERdb_intervalDialTime_put>(
        {.offset = 28, .initial = 4, .allowed = {{1, 3600}}, .code = 65409, .complaint = "invalid interval dial timeout: %d"}),
};
// clang-format on
static constexpr Record shape(64, fields);
static constexpr Table<SGNTONETIMERdb> table{"SGNTONETIMERdb", "treeIdx", SGNTONETIMERdb_treeIdx_find,
                                             SGNTONETIMERdb_new, SGNTONETIMERdb_recordid_put};

// The two set commands are the halves of one record: one puts its numbers into the first four fields, the other into
// the last four.
static int setHalf(Vty* vty, int argc, char** argv, u32 SGNToneTimer::*const (&half)[4]) {
  if (argc != 4) return refuse(vty, "invalid parameter quantity");
  SGNToneTimer cfg;
  if (loadItem(signalToneTimer, &cfg) != 0) return refuse(vty, "get signal tone timeout configuration failed");
  for (int i = 0; i < 4; ++i) cfg.*half[i] = static_cast<u32>(bep_atoiEx(argv[i]));
  return configure(vty, signalToneTimer, &cfg);
}

static int cli_set_signal_tone_timers_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  using T = SGNToneTimer;
  return setHalf(vty, argc, argv, {&T::busyTime, &T::dialTime, &T::rohTime, &T::callWaitTime});
}

static int cli_set_signal_tone_timers_ext_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  using T = SGNToneTimer;
  return setHalf(vty, argc, argv, {&T::ringTime, &T::ringBackTime, &T::noAnswerTime, &T::intervalDialTime});
}

static void show(Vty* vty, const SGNToneTimer* cfg) {
  vty_out(vty, "\r\n Signal Tone Timeout Timers Configuration");
  vty_out(vty, "\r\n ------------------------------------------");
  vty_out(vty, "\r\n %-27s%-6d", "Busy Tone Time(s): ", static_cast<i32>(cfg->busyTime));
  vty_out(vty, "\r\n %-27s%-6d", "Dialing Tone Tone(s): ", static_cast<i32>(cfg->dialTime));
  vty_out(vty, "\r\n %-27s%-6d", "ROH Tone Time(s): ", static_cast<i32>(cfg->rohTime));
  vty_out(vty, "\r\n %-27s%-6d", "Call Waiting Tone Time(s): ", static_cast<i32>(cfg->callWaitTime));
  vty_out(vty, "\r\n %-27s%-6d", "Ringing Tone Time(s): ", static_cast<i32>(cfg->ringTime));
  vty_out(vty, "\r\n %-27s%-6d", "Ringing Back Tone Time(s): ", static_cast<i32>(cfg->ringBackTime));
  vty_out(vty, "\r\n %-27s%-6d", "No Answer Tone Time(s): ", static_cast<i32>(cfg->noAnswerTime));
  vty_out(vty, "\r\n %-27s%-6d\r\n", "Dailing Interval Time(s): ", static_cast<i32>(cfg->intervalDialTime));
}

static void nShowRunSGNToneTimer(Vty* vty, const SGNToneTimer* cfg) {
  vty_out(vty, "set signal tone timeout busy %d dial %d roh %d call-waiting %d\r\n", static_cast<i32>(cfg->busyTime),
          static_cast<i32>(cfg->dialTime), static_cast<i32>(cfg->rohTime), static_cast<i32>(cfg->callWaitTime));
  vty_out(vty, "set signal tone timeout ring %d ring-back %d no-answer %d interval-dial %d\r\n",
          static_cast<i32>(cfg->ringTime), static_cast<i32>(cfg->ringBackTime), static_cast<i32>(cfg->noAnswerTime),
          static_cast<i32>(cfg->intervalDialTime));
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set signal tone timeout busy <busyTimeout> dial <dialTimeout> roh <rohTimeout> call-waiting "
            "<calWaitTimeout>",
            cli_set_signal_tone_timers_config_func, "how long signal tones last"),
    command(CONFIG_NODE,
            "set signal tone timeout ring <ringTimeout> ring-back <ringBackTimeout> no-answer <noAnswerTimeout> "
            "interval-dial <intDialTimeout>",
            cli_set_signal_tone_timers_ext_config_func, "how long signal tones last"),
    command(CONFIG_NODE, "show signal tone timeout configuration", showOf<signalToneTimer>,
            "how long signal tones last"),
    command(CONFIG_NODE, "[distribute|erase] signal tone timeout configuration", distributeEraseOf<signalToneTimer>,
            "how long signal tones last"),
};

constexpr VoiceItem signalToneTimer = {
    .id = 3085,
    .stem = "SGNToneTimer",
    .words = "signal tone timeout",
    .viewWords = "signal tone timeout timers",
    .kept = kept<SGNToneTimer>(shape, table),
    .show = onRecord<show>,
    .showrun = onRecord<nShowRunSGNToneTimer>,
    .commands = commands,
    .message = setAndGet<signalToneTimer>(90, "Set signal tone timeout period"),
};
