#include "voice/service/ngn_vo_ip.h"

#include <bit>
#include <cstring>

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "common/store.h"
#include "platform/cards.h"
#include "platform/objects.h"
#include "platform/tables.h"
#include "voice/common/voice_item.h"
#include "voice/common/voice_packets.h"
#include "voice/service/ngn_vo_common.h"
#include "voice/service/ngn_vo_gated.h"

static constexpr u32 kMessage = 4 + kVoiceIpUnit;
namespace {
enum Origin { kSnmp = 1, kCommand = 3 };
}  // namespace

static bool isPppoe(u16 mode) { return mode == kPppoe || mode == kPppoeV6; }
static bool isDhcp(u16 mode) { return mode == kDhcp || mode == kDhcpV6; }

static u32 valueOf(const LocalIP& ip) {
  u32 value = 0;
  std::memcpy(&value, ip.ipAddr, sizeof value);
  return value;
}

// --- Wire ---

static WireIn bytesOf(const char (&text)[32]) { return {reinterpret_cast<const u8*>(text), sizeof text}; }

void encode_voice_ip(const VoiceIp& record, int form, Writer& out) {
  const u32 reserved = form == 1 ? 128 : 1024;
  out.number(2, record.mode);
  for (const LocalIP& ip : record.address) {
    const u32 bytes = form == 1 || ip.ipType != 1 ? sizeof ip.ipAddr : 4;
    out.number(4, ip.ipType);
    if (form != 1) out.number(4, bytes);
    out.bytes({ip.ipAddr, bytes});
    out.number(4, ip.ipMask);
  }
  out.number(1, record.pppoeOperation);
  out.bytes(bytesOf(record.pppoeUser));
  out.bytes(bytesOf(record.pppoePassword));
  out.number(2, record.pppoeAuthentication);
  out.zeros(reserved);
  out.number(1, record.dhcpOperation);
  out.number(1, record.option60);
  out.bytes(bytesOf(record.option60Fixed));
  out.bytes(bytesOf(record.option60Suffix));
  out.zeros(reserved);
}

int parse_voice_ip(WireIn general, VoiceIp* record) {
  constexpr u32 kReserved = 1024;
  if (general.size() < 2) return -1;
  record->mode = static_cast<u16>(getNumber(general.data(), 2));
  WireIn rest = general.subspan(2);
  for (LocalIP& ip : record->address) {
    u32 length = 0;
    if (nParseGeneralIP2LocalIP(rest, &ip, &length) != 0) return -1;
    rest = rest.subspan(length);
  }
  Reader in(rest);
  record->pppoeOperation = static_cast<u8>(in.number(1));
  in.bytes(record->pppoeUser, sizeof record->pppoeUser);
  in.bytes(record->pppoePassword, sizeof record->pppoePassword);
  record->pppoeAuthentication = static_cast<u16>(in.number(2));
  in.skip(kReserved);
  record->dhcpOperation = static_cast<u8>(in.number(1));
  record->option60 = static_cast<u8>(in.number(1));
  in.bytes(record->option60Fixed, sizeof record->option60Fixed);
  in.bytes(record->option60Suffix, sizeof record->option60Suffix);
  in.skip(kReserved);
  return in.failed() ? -1 : 0;
}

// --- Check ---

static int failed(SnmpErrInfo* err, u32 code, const void* value, u16 size) {
  vSetErrorInfo(code, value, size, err);
  trace("invalid voice IP configuration: error %d", code);
  return -1;
}

static int failedNumber(SnmpErrInfo* err, u32 code, u32 value) { return failed(err, code, &value, sizeof value); }

// Up to the multicast addresses.
static bool isUnicast(u32 address) { return address < 0xE0000000; }

static int checkAddress(const LocalIP& ip, u32 typeCode, u32 addressCode, SnmpErrInfo* err) {
  if (nIsValidIPType(ip.ipType) != 1) return failedNumber(err, typeCode, ip.ipType);
  return isUnicast(valueOf(ip)) ? 0 : failedNumber(err, addressCode, valueOf(ip));
}

// An address with its mask, and the gateway, which is 0 or matches it.
struct GatewayCodes {
  u32 type, address, mask, gatewayType, gatewayAddress, match;
};
static int checkWithGateway(const LocalIP& ip, const LocalIP& gateway, const GatewayCodes& codes, SnmpErrInfo* err) {
  if (checkAddress(ip, codes.type, codes.address, err) != 0) return -1;
  if (nIsValidIPMask(ip.ipType, ip.ipMask) != 1) return failedNumber(err, codes.mask, ip.ipMask);
  if (checkAddress(gateway, codes.gatewayType, codes.gatewayAddress, err) != 0) return -1;
  const u32 value = valueOf(gateway);
  if (value != 0 && nIsIPGatewayMatched(valueOf(ip), value, ip.ipMask) != 1)
    return failedNumber(err, codes.match, value);
  return 0;
}

static int checkStatic(const VoiceIp& record, SnmpErrInfo* err) {
  // The mask of the RTP address has the code of the signalling address's.
  static constexpr GatewayCodes kSignalling{65415, 65414, 65413, 65412, 65411, 65392};
  static constexpr GatewayCodes kRtp{65409, 65408, 65413, 65406, 65405, 65391};
  const LocalIP* ip = record.address;
  if (checkWithGateway(ip[kSigIp], ip[kSigGateway], kSignalling, err) != 0 ||
      checkWithGateway(ip[kRtpIp], ip[kRtpGateway], kRtp, err) != 0)
    return -1;
  return checkAddress(ip[kPrimaryDns], 65403, 65402, err) == 0 ? checkAddress(ip[kSecondaryDns], 65400, 65399, err)
                                                               : -1;
}

static int checkPppoe(const VoiceIp& record, SnmpErrInfo* err) {
  if (record.pppoeOperation > 1) return failed(err, 65397, &record.pppoeOperation, 1);
  if (record.pppoeOperation == 0) return 0;
  if (record.pppoeUser[0] == '\0') return failed(err, 65396, nullptr, 0);
  return record.pppoeAuthentication <= 2 ? 0 : failed(err, 65395, &record.pppoeAuthentication, 2);
}

static int checkDhcp(const VoiceIp& record, SnmpErrInfo* err) {
  if (record.dhcpOperation > 1) return failed(err, 65394, &record.dhcpOperation, 1);
  return record.dhcpOperation == 0 || record.option60 <= 1 ? 0 : failed(err, 65393, &record.option60, 1);
}

int check_voice_ip(const VoiceIp* record, SnmpErrInfo* err) {
  if (record->mode > kDhcpV6) return failed(err, 65416, &record->mode, 2);
  if (record->mode == kStatic) return checkStatic(*record, err);
  return isPppoe(record->mode) ? checkPppoe(*record, err) : checkDhcp(*record, err);
}

// --- Store ---

// The columns stand in the row as the members in the record, behind the key.
struct Keyed {
  u32 key = 0;
  VoiceIp record;
};
static_assert(sizeof(Keyed) == sizeof(VoiceIpCfg_fixed) && sizeof(Keyed) == 288);
static constexpr WholeTable<VoiceIpCfg, VoiceIpCfg_fixed> table{
    "VoiceIpCfg", "treeIdx", VoiceIpCfg_treeIdx_find, VoiceIpCfg_new, VoiceIpCfg_fixed_put, VoiceIpCfg_fixed_get};

static int set_voice_ip_db(const VoiceIp& record) {
  return storeWhole(table, 0, std::bit_cast<VoiceIpCfg_fixed>(Keyed{0, record}));
}

static int get_voice_ip_db(VoiceIpCfg_fixed& columns) { return loadWhole(table, 0, columns); }

int get_voice_ip(VoiceIp* record) {
  VoiceIpCfg_fixed columns;
  const int code = get_voice_ip_db(columns);
  if (code == 0) *record = std::bit_cast<Keyed>(columns).record;
  return code;
}

int set_voice_ip(const VoiceIp* record) {
  VoiceIp merged;
  get_voice_ip(&merged);
  merged.mode = record->mode;
  if (record->mode == kStatic) std::memcpy(merged.address, record->address, sizeof merged.address);
  if (isPppoe(record->mode)) {
    merged.pppoeOperation = record->pppoeOperation;
    if (record->pppoeOperation == 1) {
      std::memcpy(merged.pppoeUser, record->pppoeUser, sizeof merged.pppoeUser);
      std::memcpy(merged.pppoePassword, record->pppoePassword, sizeof merged.pppoePassword);
      merged.pppoeAuthentication = record->pppoeAuthentication;
    }
  }
  if (isDhcp(record->mode)) {
    merged.dhcpOperation = record->dhcpOperation;
    if (record->dhcpOperation == 1) merged.option60 = record->option60;
    if (record->dhcpOperation == 1 && record->option60 == 1) {
      std::memcpy(merged.option60Fixed, record->option60Fixed, sizeof merged.option60Fixed);
      std::memcpy(merged.option60Suffix, record->option60Suffix, sizeof merged.option60Suffix);
    }
  }
  return set_voice_ip_db(merged);
}

int init_voice_ip() {
  VoiceIp record;
  for (LocalIP& ip : record.address) ip.ipType = 1;
  record.pppoeAuthentication = 1;
  return set_voice_ip_db(record);
}

// --- Send ---

int send_rtp_ip_by_slot(u16 slot) {
  VoiceIp record;
  if (get_config_card_type(slot) < 1 || get_voice_ip(&record) != 0 || record.mode != kStatic) return 0;
  u8 message[69] = {};
  putNumber(message, 4, 1);
  message[20] = static_cast<u8>(record.address[kRtpIp].ipType);
  std::memcpy(message + 21, record.address[kRtpIp].ipAddr, sizeof record.address[kRtpIp].ipAddr);
  return dm_MakeCmdPkt_GEPON(slot, kVoiceIpRtpMessage, message, sizeof message);
}

static constexpr GatedItem gated{kVoiceIpMessage,
                                 [](const void* old) { return set_voice_ip_db(*static_cast<const VoiceIp*>(old)); },
                                 send_rtp_ip_by_slot};

// The message of a record, in memory of the pool; null without any.
static PoolBytes encodeMessage(const VoiceIp& record) {
  u8* payload = nullptr;
  if (vMemAlloc(&payload, kMessage) != 0) return nullptr;
  PoolBytes owner(payload);
  Writer out(WireOut(payload, kMessage));
  out.number(4, 1);
  encode_voice_ip(record, 1, out);
  return out.failed() ? nullptr : std::move(owner);
}

// From the stored record on.
static GatedResult sendChanged(const VoiceIp& record, const VoiceIp& old) {
  const PoolBytes message = encodeMessage(record);
  return message != nullptr ? sendGated(gated, message.get(), kMessage, &old) : GatedResult{kEncodeFailed};
}

static int failedCode(SnmpErrInfo* err, u16 code, int result) {
  vSetErrorInfo(code, err);
  return result;
}

int distrib_voice_ipx(const VoiceIp* record, SnmpErrInfo* err) {
  if (inRecoverConfProcess() != 1 && check_voice_ip(record, err) != 0) return -1;
  VoiceIp old;
  if (get_voice_ip(&old) != 0) return -1;
  if (set_voice_ip(record) != 0) return failedCode(err, kNotStored, -1);
  reportChange(kNode, kVoiceIpMessage, kCommand);
  const GatedResult sent = sendChanged(*record, old);
  if (sent.code == 0) return 0;
  // A list of slots that can't be had is no failure any more.
  const bool done = sent.code == kSendFailed && !sent.takenBack;
  return failedCode(err, sent.code, done ? 0 : -1);
}

int distrib_voice_ip() {
  VoiceIp record;
  if (get_voice_ip(&record) != 0) return -1;
  const PoolBytes message = encodeMessage(record);
  return message != nullptr ? distributeGated(kVoiceIpMessage, 18, message.get(), kMessage) : -1;
}

int erase_voice_ip() {
  if (init_voice_ip() != 0 || distrib_voice_ip() != 0) return -1;
  reportChange(kNode, kVoiceIpMessage, kCommand);
  return 0;
}

// --- SNMP ---

static constexpr u32 kLabel = 22, kItem = 58;  // bytes of the object label; where the item stands in a request
static constexpr u32 kShortest = 2255;         // of a manager's item, without its addresses' bytes

static int snmp_set_voice_ip(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, nullptr, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kVoiceIpMessage, call, Asks::orders, where) != 0) return -1;
  SnmpErrInfo err;
  if (nCheckSnmpItemsLengthPre(data, length, kLabel, &err) != 0 ||
      nCheckSnmpItemsLength(data + kItem, length - static_cast<i32>(kItem), kShortest, 0, 1, 1, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  VoiceIp record, old;
  if (parse_voice_ip(WireIn(data + kItem, static_cast<u32>(length) - kItem), &record) != 0)
    return answerFailed(call, "parse configuration failed", where);
  if (check_voice_ip(&record, &err) != 0) return answerError(call, err, "check configuration failed", where);
  if (get_voice_ip(&old) != 0 || set_voice_ip(&record) != 0)
    return answerFailed(call, "set configuration failed", where);
  reportChange(kNode, kVoiceIpMessage, kSnmp);
  const GatedResult sent = sendChanged(record, old);
  if (sent.takenBack) {
    vSetErrorInfo(static_cast<u16>(sent.sent), &err);
    return answerError(call, err, "send MSC msg 0x%04X failed", where);
  }
  if (sent.code != 0) printTrace(where, "build MSC msg 0x%04X failed", id);
  return answerSuccess(call, 0);
}

static int snmp_get_voice_ip(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const SnmpCall call{id, last, data, length, reply, replyLen};
  const Where where = Where::here();
  if (beginRequest(kVoiceIpMessage, call, Asks::nothing, where) != 0) return -1;
  VoiceIp record;
  if (get_voice_ip(&record) != 0) return answerFailed(call, "get configuration failed", where);
  constexpr u32 kReplyArea = 36;
  Writer out(WireOut(reply + kReplyArea, kMaxPacket - kReplyArea));
  out.number(4, 1);
  out.zeros(kLabel);
  encode_voice_ip(record, 2, out);
  return answerSuccess(call, out.length() + kReplyArea - 4);
}

static constexpr SnmpMsgReg message{kVoiceIpMessage,   {0, 0}, snmp_set_voice_ip,
                                    snmp_get_voice_ip, 3811,   "Set voice IP configuration"};
void registerVoiceIp() { registerMessage(message); }
