#pragma once
// The debug words: what is traced, by area.

#include <atomic>

#include "platform/types.h"

struct CommandElement;
struct Vty;

enum class Area : u8 { common, combo, data, multicast, ppda, voice };
enum class DebugWord : u8 { func /* trace lines */, buf /* packet dumps */ };

inline constexpr u32 kDebugRows = 10;  // six of them in use
inline constexpr u32 kDebugAreas = 6;
inline constexpr u32 kDebugAllAreas = 10;

// A row per area, five words in a row, of which the first two are used: 0 off, 65535 all, else one message id.
// Written by a command while other doors read.
extern std::atomic<u16> gMsanDebugControl[kDebugRows][5];

inline u16 debugWord(Area area, DebugWord word) {
  return gMsanDebugControl[static_cast<u8>(area)][static_cast<u8>(word)].load(std::memory_order_relaxed);
}

// The plain test, where no message id is in hand.
inline bool debugOn(Area area, DebugWord word = DebugWord::func) { return debugWord(area, word) != 0; }

// The test by message id; id 0 stands for any.
inline bool debugOn(Area area, DebugWord word, u16 id) {
  const u16 value = debugWord(area, word);
  return value != 0 && (value == 65535 || value == id || id == 0);
}

// Stores a word in the row of an area (module 0 to 5) or of all six (10), and switches the module's debug severity with
// it. Does nothing for another module, or a level above 1.
void msanSetDebugControl(u32 module, u32 level, u16 word);

// Installs the debug commands.
void msan_Common_Install_Cmd();

int msan_Set_DebugLevel_Func(const CommandElement* element, Vty* vty, int argc, char** argv);
int msan_Show_DebugLevel_Func(const CommandElement* element, Vty* vty, int argc, char** argv);
