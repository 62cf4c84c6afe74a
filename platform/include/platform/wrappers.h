#pragma once
// The platform's names for what the C library does, and its binary semaphores.

#include <cstddef>

#include "platform/types.h"

int bep_StrCmp(const char* a, const char* b);  // 0: equal
int bep_StrNCmp(const char* a, const char* b, std::size_t length);
char* bep_StrNCpy(char* to, const char* from, std::size_t length);
std::size_t bep_StrLen(const char* text);
void* bep_memCpyEx(void* to, const void* from, std::size_t length);
void* bep_memSetEx(void* memory, int value, std::size_t length);
i32 bep_atoiEx(const char* text);  // atoi, held at the limits of i32

// The 6 bytes of an address as aa-bb-cc-dd-ee-ff, which takes 18 characters.
void cli_gpon_get_mac_str(const u8* mac, char* text);

// 12 hex digits into the 6 bytes of an address. 0, or -1 with the address unchanged.
int cli_gpon_judge_mac_format(const char* text, u8* mac);

using SemaphoreId = u32;  // 0: none

SemaphoreId bep_semBCreateEx(i32 options, i32 full);         // 0 on failure; `full` 1: can be taken at once
int bep_semTakeEx(SemaphoreId semaphore, i32 timeoutTicks);  // -1 waits for ever; 0 on success
int bep_semGiveEx(SemaphoreId semaphore);                    // 0 on success
