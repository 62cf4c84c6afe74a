#pragma once
// Judging texts and addresses of voice items.

#include <string_view>

#include "platform/types.h"

// Character sets of nIsValidString; compared exactly, with no case folding.
inline constexpr std::string_view gCriteriaMD5 = "0123456789ABCDEFabcdef";

// 1 if every character of the text is in the table, 0 if not, -1 for a null or empty argument or without memory.
int nIsValidString(const char* text, u16 length, const char* table, u16 tableLength);
