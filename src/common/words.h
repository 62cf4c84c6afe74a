#pragma once
// Words of commands and their values: one table serves set, show and showrun.

#include <optional>
#include <span>

#include "platform/types.h"
#include "platform/wrappers.h"

struct Word {
  const char* text;
  u32 value;
};

// The value of a word, compared exactly.
inline std::optional<u32> valueOf(std::span<const Word> words, const char* text) {
  for (const Word& word : words) {
    if (bep_StrCmp(word.text, text) == 0) return word.value;
  }
  return std::nullopt;
}

// The word of a value, `other` where no word has it.
inline const char* textOf(std::span<const Word> words, u32 value, const char* other) {
  for (const Word& word : words) {
    if (word.value == value) return word.text;
  }
  return other;
}
