#include "common/debug_control.h"

#include <span>

#include "common/commands.h"
#include "common/msan_init.h"
#include "common/words.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/wrappers.h"

std::atomic<u16> gMsanDebugControl[kDebugRows][5] = {};

static constexpr Word areaWords[] = {{"common", 0}, {"combo", 1},           {"data", 2}, {"multicast", 3}, {"ppda", 4},
                                     {"voice", 5},  {"all", kDebugAllAreas}};
static constexpr Word levelWords[] = {{"func", 0}, {"buf", 1}};

void msanSetDebugControl(u32 module, u32 level, u16 word) {
  const bool all = module == kDebugAllAreas;
  if ((module >= kDebugAreas && !all) || level > 1) return;
  for (u32 row = all ? 0 : module; row < (all ? kDebugAreas : module + 1); ++row) {
    gMsanDebugControl[row][level].store(word, std::memory_order_relaxed);
  }
  const i32 flag = word != 0 ? 1 : 0;
  ulogSetModIgnore(gModuleId_Msan, kLogDebug, flag);
  ulogSetModOutput(gModuleId_Msan, kLogDebug, flag);
}

static int wrong(Vty* vty, const char* what) {
  vty_out(vty, "Error: wrong %s. %s", what, "\r\n");
  return -1;
}

int msan_Set_DebugLevel_Func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc < 1) return wrong(vty, "para");
  u32 module = kDebugAllAreas;
  u32 level = 0;
  u16 word = bep_StrCmp(argv[0], "on") == 0 ? 65535 : 0;
  for (int i = 1; i + 1 < argc; i += 2) {
    const char* key = argv[i];
    const char* value = argv[i + 1];
    if (bep_StrCmp(key, "module") == 0) {
      const auto area = valueOf(areaWords, value);
      if (!area) return wrong(vty, "module");
      module = *area;
    } else if (bep_StrCmp(key, "level") == 0) {
      const auto row = valueOf(levelWords, value);
      if (!row) return wrong(vty, "level");
      level = *row;
    } else if (bep_StrCmp(key, "cmdid") == 0) {
      // A single message, whatever "on" or "off" said.
      word = static_cast<u16>(bep_atoiEx(value));
    } else {
      return wrong(vty, "para");
    }
  }
  msanSetDebugControl(module, level, word);
  return 0;
}

int msan_Show_DebugLevel_Func(const CommandElement*, Vty* vty, int, char**) {
  vty_out(vty, "%-10s %-6s %-6s %s", "module", "func", "buf", "\r\n");
  for (const Word& area : std::span(areaWords).first(kDebugAreas)) {
    const auto& row = gMsanDebugControl[area.value];
    vty_out(vty, "%-10s %-6d %-6d %s", area.text, row[0].load(), row[1].load(), "\r\n");
  }
  return 0;
}

static constexpr Command commands[] = {
    command(DEBUG_NODE, "set msan debug [on|off] {[module|level|cmdid] <input>}*3", msan_Set_DebugLevel_Func,
            "what the module traces"),
    command(DEBUG_NODE, "show msan debug print", msan_Show_DebugLevel_Func, "what the module traces"),
};

void msan_Common_Install_Cmd() { installCommands(commands); }
