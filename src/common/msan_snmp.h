#pragma once
// The SNMP gateway: the registry of messages, the two hooks that the agent calls, and the error packet.

#include <initializer_list>

#include "platform/snmp_agent.h"
#include "platform/types.h"

// Handlers have the hook's parameters and return 0 on success, anything else on failure; a failing handler has
// written its own reply.
using SnmpSetHandler = SnmpWrite;
using SnmpGetHandler = SnmpRead;

inline constexpr u32 kMaxPacket = 400000;                       // largest packet in either direction
inline constexpr u32 kMaxFragments = 16;                        // of one SET
inline constexpr u32 kReassembly = kMaxFragments * kMaxPacket;  // bytes
inline constexpr u32 kMaxMessages = 1280;
// Replies of several messages exceed the limit that they register: the limit counts from the object label on.
inline constexpr u32 kReplyHead = 36;

// What a GET handler may write. A reply that is handed out in pieces has a buffer of its own, which is zeroed.
constexpr u32 replyRoom(u32 maxReplyLen) { return maxReplyLen > kMaxPacket ? maxReplyLen + kReplyHead : kMaxPacket; }

// A message, as its item registers it.
struct SnmpMsgReg {
  u16 msgType;                   // high byte the class, low byte the number within it
  u8 option[2];                  // copied and never read
  SnmpSetHandler* msgSetMethod;  // or null
  SnmpGetHandler* msgGetMethod;  // or null
  u32 maxReplyLen;               // of the GET handler; above kMaxPacket the reply is handed out in pieces
  const char* description;       // name text
};

// A row of the registry.
struct SnmpMsgEntry {
  u16 msgType;
  u8 option[2];
  SnmpSetHandler* msgSetMethod;
  SnmpGetHandler* msgGetMethod;
  u32 maxReplyLen;
  char description[21];  // the first 20 characters
  u8 registered;
  u8 fragCount;    // SET: fragments held
  u8* fragBuf;     // SET: what came so far. GET: the reply that is handed out. From the pool
  u32 fragLen;     // bytes in fragBuf
  u8* fragCursor;  // GET: where the next piece begins
  u32 fragLeft;    // GET: bytes still to hand out
};

// What a failed request has to tell.
struct SnmpErrInfo {
  u16 errCode = 0;
  u8 errData[50] = {};
  u32 errDataLen = 0;  // 0 for none; above 50 the packet carries none
};

// Registers a message and announces it to the agent. 0, or -1 with a log line.
int SnmpMsgRegister(const SnmpMsgReg* message);

// The row number of an id, 65535 when free.
u16 getSnmpMsgIdx(u16 id);

// 0, or -1 for an id that is not registered. The first copies the row out, the second writes back the fragment
// fields alone, the third frees fragBuf and zeroes them.
int getSnmpMsgInfo(u16 id, SnmpMsgEntry* row);
int setSnmpMsgFragInfo(u16 id, const SnmpMsgEntry* row);
int clearSnmpMsgFragInfo(u16 id);

// The hooks.
SnmpWrite snmpSystemWrite;
SnmpRead snmpSystemRead;

// Writes the error packet: 00 00 00 41, u16 1, u16 8 + n, u16 id, u16 code, 4 bytes left alone, n bytes of detail.
// Without a record, or with code 0, the first four bytes alone.
void buildSnmpErrRetPkt(u8* reply, u32* replyLen, u16 id, const SnmpErrInfo* err);

// The arguments of a message's handler.
struct SnmpCall {
  u16 id;
  u8* lastFlagOut;  // GET
  u8* data;
  i32 length;
  u8* reply;
  u32* replyLen;
};

// What a handler ends with: 0 behind 00 00 00 01, -1 behind the error packet.
int answerSuccess(u8* reply, u32* replyLen);
int answerError(u16 id, const SnmpErrInfo& err, u8* reply, u32* replyLen);

// Fills the record of an error: code, details of 2 bytes each. -1.
int reject(SnmpErrInfo* err, int code, std::initializer_list<u16> details = {});
int rejectLong(SnmpErrInfo* err, int code, u32 detail);  // one of 4 bytes

// Make the registry and give the agent the hooks; install the registry's command. A failure is logged.
void initAgentIfEnv();
int initAgentIfCmd();
