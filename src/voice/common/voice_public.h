#pragma once
// Judging texts and addresses of voice items, and the address forms of the wire and of the records.
//
// A null argument is traced and gives -1, or 0 where the result is a yes or no of numbers.

#include <string_view>

#include "common/wire.h"
#include "platform/lists.h"
#include "platform/types.h"

// Character sets of nIsValidString; compared exactly, with no case folding.
inline constexpr std::string_view gCriteriaPOTSIPT = "0123456789ABCDabcd*#";
inline constexpr std::string_view gCriteriaSIMNumber = "0123456789ABCDabcd*#";
inline constexpr std::string_view gCriteriaSIPNumber = "0123456789*#+-";
inline constexpr std::string_view gCriteriaMD5 = "0123456789ABCDEFabcdef";
inline constexpr std::string_view gCriteriaDigitMap = "0123456789ABCDEFLSXabcdeflsx .|-()[]";
inline constexpr std::string_view gCriteriaConfURI =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz@-_.";
static_assert(gCriteriaPOTSIPT.size() == 20 && gCriteriaSIPNumber.size() == 14 && gCriteriaMD5.size() == 22);
static_assert(gCriteriaDigitMap.size() == 36 && gCriteriaConfURI.size() == 66);

// 1 if every character of the text is in the table, 0 if not, -1 for a null or empty argument or without memory.
int nIsValidString(const char* text, u16 length, const char* table, u16 tableLength);
int nIsValidString(const char* text, u16 length, std::string_view table);
// 1 if the text holds no blank, 0 if it does, -1 for a null or empty one.
int nIsNoSpaceString(const char* text, u16 length);
// 1 if the data of two nodes begin with the same u16, which goes to `id`; 0 if none; -1.
int nIsProfileIDDuplicate(const LIST* list, u16* id);

// An address, 24 bytes on the wire: u32 type, 16 bytes of address, u32 mask.
struct LocalIP {
  u32 ipType = 0;  // 1 IPv4 (the first 4 bytes of the address), 2 IPv6; 3 and 4 are valid
  u8 ipAddr[16] = {};
  u32 ipMask = 0;  // prefix length
};
inline constexpr u32 kLocalIP = 24;
// The network manager's form, of variable length: u32 type, u32 length L, L bytes of address, u32 mask.
inline constexpr u32 kGeneralIPHead = 12;  // without the address

int nStringIP2ULongIP(const char* text, u32* address);  // host order; -1 for 255.255.255.255 too
int nULongIP2StringIP(u32 address, char* text);         // 16 bytes
// 0 or -1; `length` gets the bytes of the general form: L + 12, or 24 of nEncodeLocalIP.
int nParseGeneralIP2LocalIP(WireIn general, LocalIP* local, u32* length);
int nParseLocalIP2GeneralIP(WireIn local, WireOut general, u32* length);
int nEncodeLocalIP(const LocalIP* local, WireOut wire, u32* length);
int nEncodeLocalIP2GeneralIP(const LocalIP* local, WireOut general, u32* length);
int nIsValidIPType(u32 type);                                 // 1 or 0
int nIsValidIPMask(u32 type, u32 mask);                       // 1 or 0
int nIsIPGatewayMatched(u32 address, u32 gateway, u32 mask);  // 1 if both agree in the leading `mask` bits
int nULongLong2Float10(u64 value, u8* out);                   // 10 bytes: tag 3, 0, the value in host order
