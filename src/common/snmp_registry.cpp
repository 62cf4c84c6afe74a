// The registry of messages: found by class and low byte with two reads, no search.

#include <cinttypes>
#include <cstdlib>
#include <cstring>

#include "common/commands.h"
#include "common/debug_control.h"
#include "common/msan_init.h"
#include "common/msan_snmp.h"
#include "platform/log.h"
#include "platform/pool.h"
#include "platform/wrappers.h"

static SnmpMsgEntry* gSnmpMsgTbl = nullptr;
static u16 gSnmpMsgIdxTbl[5][256];
static u16 gSnmpMsgNum = 0;

static u16& indexEntry(u16 id) {
  u32 block = 0;
  switch (id >> 8) {
    case 12:
      block = 1;
      break;
    case 135:
      block = 2;
      break;
    case 136:
      block = 3;
      break;
    case 120:
      block = 4;
      break;
    default:  // 11, and classes that nobody has: the message type of the row tells them apart
      break;
  }
  return gSnmpMsgIdxTbl[block][id & 0xFF];
}

u16 getSnmpMsgIdx(u16 id) { return indexEntry(id); }

int SnmpMsgRegister(const SnmpMsgReg* message) {
  if (message == nullptr || message->description == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Invalid input para!\r\n", __func__);
    return -1;
  }
  if (gSnmpMsgTbl == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: no registry for message 0x%x!\r\n", __func__, message->msgType);
    return -1;
  }
  u16& index = indexEntry(message->msgType);
  if (index < 65535) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Can't repeatedly register!\r\n", __func__);
    return -1;
  }
  if (gSnmpMsgNum >= kMaxMessages) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Snmp msg registry is full!\r\n", __func__);
    return -1;
  }
  SnmpMsgEntry& row = gSnmpMsgTbl[gSnmpMsgNum];
  index = gSnmpMsgNum++;
  row.msgType = message->msgType;
  std::memcpy(row.option, message->option, sizeof row.option);
  row.msgSetMethod = message->msgSetMethod;
  row.msgGetMethod = message->msgGetMethod;
  row.maxReplyLen = message->maxReplyLen;
  bep_StrNCpy(row.description, message->description, sizeof row.description - 1);
  row.registered = 1;
  installSnmpCommand(message->msgType, message->description, 1, 1, gModuleId_Msan);
  return 0;
}

// The row of a registered id; null, with a gated line, for any other.
static SnmpMsgEntry* findRow(u16 id, const char* function) {
  const u16 index = getSnmpMsgIdx(id);
  if (index >= kMaxMessages) {
    if (debugOn(Area::common)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: Invalid cmd type!\r\n", function);
    return nullptr;
  }
  SnmpMsgEntry& row = gSnmpMsgTbl[index];
  if (row.registered != 1 || row.msgType != id) {
    if (debugOn(Area::common)) ulogPrintf(gModuleId_Msan, kLogDebug, "%s: Unregistered msg!\r\n", function);
    return nullptr;
  }
  return &row;
}

int getSnmpMsgInfo(u16 id, SnmpMsgEntry* out) {
  if (out == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Invalid input para!\r\n", __func__);
    return -1;
  }
  const SnmpMsgEntry* row = findRow(id, __func__);
  if (row == nullptr) return -1;
  *out = *row;
  return 0;
}

int setSnmpMsgFragInfo(u16 id, const SnmpMsgEntry* from) {
  if (from == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Invalid input para!\r\n", __func__);
    return -1;
  }
  SnmpMsgEntry* row = findRow(id, __func__);
  if (row == nullptr) return -1;
  row->fragCount = from->fragCount;
  row->fragBuf = from->fragBuf;
  row->fragLen = from->fragLen;
  row->fragCursor = from->fragCursor;
  row->fragLeft = from->fragLeft;
  return 0;
}

int clearSnmpMsgFragInfo(u16 id) {
  SnmpMsgEntry* row = findRow(id, __func__);
  if (row == nullptr) return -1;
  mpuFree(row->fragBuf);
  row->fragCount = 0;
  row->fragBuf = nullptr;
  row->fragLen = 0;
  row->fragCursor = nullptr;
  row->fragLeft = 0;
  return 0;
}

void initAgentIfEnv() {
  const u32 size = kMaxMessages * sizeof(SnmpMsgEntry);
  gSnmpMsgTbl = static_cast<SnmpMsgEntry*>(mpuAlloc_(g_MsanMemPoolId, size, __FILE__, __LINE__));
  if (gSnmpMsgTbl == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Malloc failed!\r\n", __func__);
    return;
  }
  bep_memSetEx(gSnmpMsgTbl, 0, size);
  bep_memSetEx(gSnmpMsgIdxTbl, 0xFF, sizeof gSnmpMsgIdxTbl);
  gSnmpMsgNum = 0;
  if (RegisterHookFunc(snmpSystemWrite, snmpSystemRead, gModuleId_Msan) != 1) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Register hook failed!\r\n", __func__);
    return;
  }
  if (initAgentIfCmd() != 0) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: Init command failed!\r\n", __func__);
    return;
  }
  ulogPrintf(gModuleId_Msan, kLogProgress, "msan snmp init OK!\r\n");
}

// A handler's address, as wide as the target's: 0x and at least eight digits.
template <class Handler>
static void printHandler(Vty* vty, const char* label, Handler* handler) {
  if (handler == nullptr) {
    vty_out(vty, "%-14s: %s\r\n", label, "NULL");
  } else {
    vty_out(vty, "%-14s: 0x%08" PRIxPTR "\r\n", label, reinterpret_cast<std::uintptr_t>(handler));
  }
}

static int cli_show_snmp_msg_reg_info_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  SnmpMsgEntry row;
  const unsigned long id = argc == 1 ? std::strtoul(argv[0], nullptr, 0) : 65536;
  if (id > 65535 || getSnmpMsgInfo(static_cast<u16>(id), &row) != 0) {
    vty_out(vty, "Unregistered msg!\r\n");
    return 0;
  }
  vty_out(vty, "%-14s: 0x%x\r\n", "Msg Type", row.msgType);
  printHandler(vty, "Set Func", row.msgSetMethod);
  printHandler(vty, "Get Func", row.msgGetMethod);
  vty_out(vty, "%-14s: %lu\r\n", "Max Reply Len", static_cast<unsigned long>(row.maxReplyLen));
  vty_out(vty, "%-14s: %s\r\n", "Description", row.description);
  return 0;
}

static constexpr Command commands[] = {
    command(DEBUG_NODE, "show snmp msg info <msgtype>", cli_show_snmp_msg_reg_info_func, "a registered SNMP message"),
};

int initAgentIfCmd() { return installCommands(commands); }
