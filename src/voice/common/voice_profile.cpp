#include "voice/common/voice_profile.h"

#include <algorithm>
#include <cstring>
#include <ranges>

#include "common/memory.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "platform/log.h"
#include "platform/wrappers.h"
#include "voice/common/voice_msc.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_public.h"

static constexpr u32 kArea = 32;       // of a request
static constexpr u32 kReplyArea = 36;  // of a reply
static constexpr u16 kSendSlot = 18;   // a card, or a trace line's
static constexpr u32 kPortRecord = 228;
static constexpr auto everyId = std::views::iota(u16{0}, kProfiles);
namespace {
enum Origin { kSnmp = 1, kCommand = 3 };
}  // namespace

namespace {
struct AnyProfile {
  alignas(u32) u8 bytes[256] = {};
  operator void*() { return bytes; }
  operator VoiceProfileHead*() { return reinterpret_cast<VoiceProfileHead*>(bytes); }
  VoiceProfileHead* operator->() { return *this; }
};
}  // namespace

static VoiceProfileHead* headOf(NODE* node) { return recordOf<VoiceProfileHead>(node); }

static bool isNamed(const VoiceProfileHead* head) { return head->name[0] != '\0'; }

static bool sameName(const char* a, const char* b) { return std::memcmp(a, b, kProfileName) == 0; }

static int failed(SnmpErrInfo* err, u16 code) {
  vSetErrorInfo(code, err);
  return -1;
}

static int failedId(SnmpErrInfo* err, u16 code, u16 id) {
  vSetErrorInfo(code, &id, sizeof id, err);
  return -1;
}

// --- Steps ---

int loadProfile(const VoiceProfiles& kind, u16 id, void* profile) { return loadItem(kind.item, profile, id); }

int findProfile(const VoiceProfiles& kind, const char* name, void* profile) {
  char padded[kProfileName] = {};
  const std::size_t length = std::strlen(name);
  if (length <= kProfileName) {
    std::memcpy(padded, name, length);
    for (const u16 id : everyId) {
      AnyProfile one;
      if (loadProfile(kind, id, one) != 0) return -1;
      if (!sameName(one->name, padded)) continue;
      std::memcpy(profile, one.bytes, kind.item.kept.bytes);
      return 0;
    }
  }
  trace("no %s named %s", kind.noun, name);
  return -1;
}

int isValidProfile(const VoiceProfiles& kind, u16 id) {
  if (id == 0) return 1;
  AnyProfile profile;
  if (loadProfile(kind, id, profile) != 0) return -1;
  return isNamed(profile) ? 1 : 0;
}

void offerProfiles(const void* context, CommandOffers* to) {
  const auto& kind = *static_cast<const VoiceProfiles*>(context);
  for (const u16 id : everyId) {
    AnyProfile profile;
    if (loadProfile(kind, id, profile) != 0 || !isNamed(profile)) continue;
    offer_to_cli(to, id, profile->name, static_cast<u32>(strnlen(profile->name, kProfileName)));
  }
}

int initProfile(const VoiceProfiles& kind, u16 id) {
  AnyProfile profile;
  resetRecord(kind.item.kept.shape->fields, profile);
  profile->id = id;
  if (kind.freshName != nullptr) kind.freshName(id, profile->name);
  return storeItem(kind.item, profile, id);
}

int initProfiles(const VoiceProfiles& kind) {
  for (const u16 id : everyId) initProfile(kind, id);
  AnyProfile first;
  if (loadProfile(kind, 0, first) != 0) return -1;
  std::memcpy(first->name, "Default", 7);
  return storeItem(kind.item, first, 0);
}

int namedProfiles(const VoiceProfiles& kind, LIST* list) {
  if (vCreateDataNode(list, kProfiles, kind.item.kept.bytes) != 0) return -1;
  u16 id = 0;
  for (NODE *at = lstFirst(list), *next = nullptr; at != nullptr; at = next, ++id) {
    next = lstNext(at);
    if (loadProfile(kind, id, headOf(at)) != 0) return -1;
    if (!isNamed(headOf(at))) vFreeDataNode(list, static_cast<DataNode*>(at));
  }
  return 0;
}

int citedProfiles(const VoiceProfiles& kind, u16 (&ids)[kProfiles], u16* count) {
  DataList ports;
  if (nGetSlotObjManageDataHandle(0, kVoicePortAttribute, 0, kPortRecord, ports) != 0) return -1;
  *count = 0;
  for (NODE* at = lstFirst(ports); at != nullptr; at = lstNext(at)) {
    u16 id = 0;
    std::memcpy(&id, recordOf<u8>(at) + kind.cited, sizeof id);
    // What a recovery stored unchecked is no profile's id: nothing to protect.
    if (id == 0 || id >= kProfiles || std::find(ids, ids + *count, id) != ids + *count) continue;
    ids[(*count)++] = id;
  }
  return 0;
}

static bool holds(const u16 (&ids)[kProfiles], u16 count, u16 id) {
  return std::find(ids, ids + count, id) != ids + count;
}

// --- Checks ---

// Profile 0 passes as it is stored.
static int checkDefault(const VoiceProfiles& kind, const void* profile, SnmpErrInfo* err) {
  AnyProfile stored;
  if (loadProfile(kind, 0, stored) != 0) return failed(err, kStepFailed);
  for (const Field& field : kind.item.kept.shape->fields)
    if (std::memcmp(field.at(profile), field.at(stored), field.width) != 0) return failed(err, 65412);
  return 0;
}

int checkProfile(const VoiceProfiles& kind, const void* profile, SnmpErrInfo* err) {
  const auto* head = static_cast<const VoiceProfileHead*>(profile);
  if (head->id >= kProfiles) return failedId(err, 65416, head->id);
  if (head->id == 0 && checkDefault(kind, profile, err) != 0) return -1;
  if (!isNamed(head)) return failed(err, 65413);
  const auto length = static_cast<u16>(strnlen(head->name, kProfileName));
  const int whole = nIsNoSpaceString(head->name, length);
  if (whole == -1) return failed(err, kStepFailed);
  if (whole == 0) {
    vSetErrorInfo(65411, kind.blankDetail != 0 ? head->name : nullptr, kind.blankDetail, err);
    return -1;
  }
  return checkItem(kind.item, profile, err);
}

int isNameDuplicate(const VoiceProfiles& kind, LIST* list, u16* id) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    for (NODE* other = lstNext(at); other != nullptr; other = lstNext(other)) {
      if (!sameName(headOf(at)->name, headOf(other)->name)) continue;
      *id = headOf(at)->id;
      return 1;
    }
  }
  DataList named;
  if (namedProfiles(kind, named) != 0) return -1;
  const auto inList = [&](u16 wanted) {
    for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
      if (headOf(at)->id == wanted) return true;
    return false;
  };
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) {
    for (NODE* other = lstFirst(named); other != nullptr; other = lstNext(other)) {
      if (inList(headOf(other)->id) || !sameName(headOf(at)->name, headOf(other)->name)) continue;
      *id = headOf(at)->id;
      return 1;
    }
  }
  return 0;
}

static int checkIdsDiffer(LIST* list, SnmpErrInfo* err) {
  u16 id = 0;
  const int twice = nIsProfileIDDuplicate(list, &id);
  if (twice == 0) return 0;
  return twice == 1 ? failedId(err, 65415, id) : failed(err, kStepFailed);
}

static int checkProfiles(const VoiceProfiles& kind, LIST* list, SnmpErrInfo* err) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
    if (checkProfile(kind, headOf(at), err) != 0) return -1;
  if (checkIdsDiffer(list, err) != 0) return -1;
  u16 id = 0;
  const int twice = isNameDuplicate(kind, list, &id);
  if (twice == 0) return 0;
  return twice == 1 ? failedId(err, 65410, id) : failed(err, kStepFailed);
}

int checkDelete(const VoiceProfiles& kind, u16 id, SnmpErrInfo* err) {
  if (id >= kProfiles) return failedId(err, 65416, id);
  if (id == 0) return failedId(err, 65396, id);
  const int valid = isValidProfile(kind, id);
  if (valid == -1) return failed(err, kStepFailed);
  return valid == 1 ? 0 : failedId(err, 65395, id);
}

// The ids of a list that may be deleted: none is cited.
static int checkDeletes(const VoiceProfiles& kind, LIST* list, SnmpErrInfo* err) {
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
    if (checkDelete(kind, *recordOf<u16>(at), err) != 0) return -1;
  if (checkIdsDiffer(list, err) != 0) return -1;
  u16 cited[kProfiles] = {};
  u16 count = 0;
  if (citedProfiles(kind, cited, &count) != 0) return failed(err, kStepFailed);
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
    if (holds(cited, count, *recordOf<u16>(at))) return failedId(err, 65414, *recordOf<u16>(at));
  return 0;
}

// --- Messages ---

static void report(const VoiceProfiles& kind, Origin origin) { reportChange(kNode, kind.item.id, origin); }

// A payload to the NGN side, or to the card that some kinds tell. 0, or the code of the step that failed.
static u16 sendPayload(const VoiceProfiles& kind, const u8* payload, u32 length, bool toCard) {
  DataList sends;
  const u16 id = kind.item.id;
  const int built = toCard ? vBuildMscPacketS(kSendSlot, id, 0, payload, length, sends)
                           : vBuildMscPacketI(kSendSlot, id, 0, payload, length, sends);
  if (built != 0) return kBuildFailed;
  const int sent = toCard                 ? vSendMscPacket(sends)
                   : kind.send != nullptr ? kind.send(id, sends)
                                          : vSendMscPacketI(sends);
  return sent == 0 ? 0 : u16{kSendFailed};
}

// All profiles with a name. 0, or the code of the step that failed.
static u16 sendNamed(const VoiceProfiles& kind, bool toCard = false) {
  DataList list;
  if (namedProfiles(kind, list) != 0) return kNotRead;
  const u32 bytes = 4 + kind.item.kept.shape->unit * static_cast<u32>(lstCount(list));
  u8* payload = nullptr;
  if (vMemAlloc(&payload, static_cast<i32>(bytes)) != 0) return kEncodeFailed;
  const PoolBytes owner(payload);
  Writer out(WireOut(payload, bytes));
  if (encodeArea(kind.item, list, out) != 0) return kEncodeFailed;
  return sendPayload(kind, payload, bytes, toCard);
}

// --- SNMP ---

// Frame and list of a request whose units are of so many bytes. 0, or the answered failure.
static int acceptFrame(const SnmpCall& call, u32 unit, WireIn* area, Where where) {
  SnmpErrInfo err;
  const i32 length = call.length - static_cast<i32>(kArea);
  if (nCheckSnmpItemsLength(call.data + kArea, length, unit, 4, 1, kProfiles, &err) != 0)
    return answerError(call, err, "invalid SNMP command para", where);
  *area = WireIn(call.data + kArea, static_cast<u32>(length));
  return 0;
}

int snmpSet(const VoiceProfiles& kind, const SnmpCall& call) {
  const Where where = kind.at(kind.item.names->snmpSet);
  const u32 unit = kind.item.kept.shape->unit;
  WireIn area;
  if (beginRequest(kind.item.id, call, Asks::orders, where) != 0 || acceptFrame(call, unit, &area, where) != 0)
    return -1;
  u32 length = 4;
  {
    DataList list;
    SnmpErrInfo err;
    if (parseUnits(kind.item, area, list) != 0) return answerFailed(call, "parse configuration failed", where);
    if (checkProfiles(kind, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
    for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
      if (storeItem(kind.item, headOf(at), headOf(at)->id) != 0)
        return answerFailed(call, "set configuration failed", where);
    length += unit * static_cast<u32>(lstCount(list));
  }
  if (kind.report == Report::first) report(kind, kSnmp);
  const u16 code = sendPayload(kind, area.data(), length, false);
  if (code != 0) printTrace(where, "build MSC msg 0x%04X failed", call.id);
  if (kind.report == Report::whenSent && code == 0) report(kind, kSnmp);
  return answerSuccess(call, 0);
}

int snmpGet(const VoiceProfiles& kind, const SnmpCall& call) {
  const Where where = kind.at(kind.item.names->snmpGet);
  if (beginRequest(kind.item.id, call, Asks::nothing, where) != 0) return -1;
  DataList list;
  if (namedProfiles(kind, list) != 0) return answerFailed(call, "get configuration failed", where);
  Writer out(WireOut(call.reply, kMaxPacket).subspan(kReplyArea));
  if (encodeArea(kind.item, list, out) != 0) return answerFailed(call, "SNMP confirm encode failed", where);
  return answerSuccess(call, out.length() + kReplyArea - 4);
}

static int parseIds(WireIn area, LIST* list) {
  Reader in(area);
  const u32 count = in.number(4);
  if (vCreateDataNode(list, static_cast<i32>(count), sizeof(u16)) != 0) return -1;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at)) *recordOf<u16>(at) = static_cast<u16>(in.number(2));
  return 0;
}

int snmpDelete(const VoiceProfiles& kind, const SnmpCall& call) {
  const Where where = kind.at(kind.snmpDelete);
  WireIn area;
  if (beginRequest(kind.deleteId, call, Asks::orders, where) != 0 || acceptFrame(call, sizeof(u16), &area, where) != 0)
    return -1;
  {
    DataList list;
    SnmpErrInfo err;
    if (parseIds(area, list) != 0) return answerFailed(call, "parse configuration failed", where);
    if (checkDeletes(kind, list, &err) != 0) return answerError(call, err, "check configuration failed", where);
    for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at))
      if (initProfile(kind, *recordOf<u16>(at)) != 0) return answerFailed(call, "set configuration failed", where);
  }
  if (kind.report == Report::first) report(kind, kSnmp);
  const u16 code = sendNamed(kind, kind.deletionToCard);
  if (code != 0) printTrace(where, "build MSC msg 0x%04X failed", call.id);
  if (kind.report == Report::whenSent && code == 0) report(kind, kSnmp);
  return answerSuccess(call, 0);
}

// --- Store and send ---

int distributeProfile(const VoiceProfiles& kind, const void* profile, SnmpErrInfo* err) {
  const auto* head = static_cast<const VoiceProfileHead*>(profile);
  if (inRecoverConfProcess() != 1 && checkProfile(kind, profile, err) != 0) return -1;
  DataList named;
  if (namedProfiles(kind, named) != 0) return failed(err, kNotStored);
  for (NODE* at = lstFirst(named); at != nullptr; at = lstNext(at))
    if (headOf(at)->id != head->id && sameName(headOf(at)->name, head->name)) return failedId(err, 65410, head->id);
  if (storeItem(kind.item, profile, head->id) != 0) return failed(err, kNotStored);
  if (kind.report == Report::first) report(kind, kCommand);
  if (const u16 code = sendNamed(kind)) failed(err, code);
  return 0;
}

int distributeProfiles(const VoiceProfiles& kind) { return sendNamed(kind) == 0 ? 0 : -1; }

int eraseProfiles(const VoiceProfiles& kind) {
  u16 cited[kProfiles] = {};
  u16 count = 0;
  if (citedProfiles(kind, cited, &count) != 0) return -1;
  for (const u16 id : everyId | std::views::drop(1)) {
    if (isValidProfile(kind, id) != 1) continue;
    if (holds(cited, count, id))
      ulogPrintf(gModuleId_Msan, kLogDebug, "the %s %d has been cited.", kind.noun, id);
    else
      initProfile(kind, id);
  }
  return distributeProfiles(kind);
}

static int distributeDelete(const VoiceProfiles& kind, u16 id, SnmpErrInfo* err) {
  u16 cited[kProfiles] = {};
  u16 count = 0;
  if (checkDelete(kind, id, err) != 0) return -1;
  if (citedProfiles(kind, cited, &count) != 0) return failed(err, kStepFailed);
  if (holds(cited, count, id)) return failedId(err, 65414, id);
  if (initProfile(kind, id) != 0) return failed(err, kNotStored);
  if (const u16 code = sendNamed(kind)) failed(err, code);
  return 0;
}

// --- Commands ---

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int notRead(Vty* vty, const VoiceProfiles& kind, u16 id) {
  vty_out(vty, "\r\n get %s %d configuration failed. \r\n", kind.noun, id);
  return -1;
}

static int notConfigurable(Vty* vty, const VoiceProfiles& kind, const char* word) {
  vty_out(vty, "\r\n the %s 0 is %s configurable. \r\n", kind.noun, word);
  return -1;
}

static u16 idOf(const char* text) { return static_cast<u16>(bep_atoiEx(text)); }

// The profile of "id" or "name" and its value. 0, or -1 behind a line.
static int readOption(Vty* vty, const VoiceProfiles& kind, char** argv, void* profile) {
  if (bep_StrCmp(argv[0], "id") == 0)
    return loadProfile(kind, idOf(argv[1]), profile) == 0 ? 0 : notRead(vty, kind, idOf(argv[1]));
  if (bep_StrCmp(argv[0], "name") != 0) return refuse(vty, "invalid profile option");
  if (findProfile(kind, argv[1], profile) == 0) return 0;
  vty_out(vty, "\r\n get %s %s configuration failed. \r\n", kind.noun, argv[1]);
  return -1;
}

int chooseProfile(Vty* vty, const VoiceProfiles& kind, char** argv, void* profile) {
  if (readOption(vty, kind, argv, profile) != 0) return -1;
  const auto* head = static_cast<const VoiceProfileHead*>(profile);
  if (head->id == 0) return notConfigurable(vty, kind, "not");
  if (isNamed(head)) return 0;
  vty_out(vty, "\r\n please config the name of %s %d at first. \r\n", kind.noun, head->id);
  return -1;
}

int configureProfile(Vty* vty, const VoiceProfiles& kind, const void* profile, const char* done, const char* notDone) {
  SnmpErrInfo err;
  const u16 id = static_cast<const VoiceProfileHead*>(profile)->id;
  const int result = distributeProfile(kind, profile, &err);
  const int code = static_cast<i16>(err.errCode);
  if (result != 0) {
    vty_out(vty, "\r\n set %s %d %s failed(%d). \r\n", kind.noun, id, notDone != nullptr ? notDone : done, code);
    return -1;
  }
  vty_out(vty, "\r\n set %s %d %s successfully(%d). \r\n", kind.noun, id, done, code);
  if (kind.report == Report::whenSent) report(kind, kCommand);
  return 0;
}

int nameProfile(Vty* vty, const VoiceProfiles& kind, int argc, char** argv, const char* done) {
  if (argc != 2) return badQuantity(vty);
  const u16 id = idOf(argv[0]);
  if (id == 0) return notConfigurable(vty, kind, "Not");
  const std::size_t length = std::strlen(argv[1]);
  if (length == 0) {
    vty_out(vty, "\r\n the %s name is NULL. \r\n", kind.nameNoun);
    return -1;
  }
  if (length > kProfileName) {
    vty_out(vty, "\r\n the %s name is more than %d bytes. \r\n", kind.nameNoun, static_cast<int>(kProfileName));
    return -1;
  }
  AnyProfile profile;
  if (loadProfile(kind, id, profile) != 0) return notRead(vty, kind, id);
  std::memset(profile->name, 0, kProfileName);
  std::memcpy(profile->name, argv[1], length);
  return configureProfile(vty, kind, profile, done);
}

int forEachNamed(const VoiceProfiles& kind, Vty* vty, void (*print)(Vty* vty, const void* profile)) {
  for (const u16 id : everyId) {
    AnyProfile profile;
    if (loadProfile(kind, id, profile) != 0) return -1;
    if (isNamed(profile)) print(vty, profile);
  }
  return 0;
}

int showProfiles(Vty* vty, const VoiceProfiles& kind, int argc, char** argv) {
  if (argc != 1 && argc != 2) return badQuantity(vty);
  const bool all = bep_StrCmp(argv[0], "all") == 0;
  if (all && argc == 2) return refuse(vty, "invalid parameter");
  if (!all && argc == 1) return refuse(vty, "invalid profile option");
  AnyProfile profile;
  if (!all && readOption(vty, kind, argv, profile) != 0) return -1;
  vty_out(vty, "\r\n %s", kind.title);
  vty_out(vty, "\r\n ");
  for (u32 i = 0; i < kind.dashes; ++i) vty_out(vty, "-");
  if (all)
    forEachNamed(kind, vty, kind.show);
  else if (isNamed(profile))
    kind.show(vty, profile);
  vty_out(vty, "\r\n get %s configuration successfully. \r\n", kind.noun);
  return 0;
}

int deleteProfile(Vty* vty, const VoiceProfiles& kind, int argc, char** argv) {
  if (argc != 2) return badQuantity(vty);
  AnyProfile profile;
  u16 id = idOf(argv[1]);
  if (bep_StrCmp(argv[0], "id") == 0) {
    if (id == 0 && kind.defaultDeleteRefused) return notConfigurable(vty, kind, "not");
  } else {
    if (readOption(vty, kind, argv, profile) != 0) return -1;
    id = profile->id;
  }
  SnmpErrInfo err;
  const int result = distributeDelete(kind, id, &err);
  vty_out(vty, "\r\n delete %s %d configuration %s(%d). \r\n", kind.noun, id, result == 0 ? "successfully" : "failed",
          static_cast<i16>(err.errCode));
  if (result == 0 && kind.reportsOrders) report(kind, kCommand);
  return result;
}

int distributeEraseProfiles(Vty* vty, const VoiceProfiles& kind, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  const bool erases = bep_StrCmp(argv[0], "erase") == 0;
  if (!erases && bep_StrCmp(argv[0], "distribute") != 0) return refuse(vty, "invalid configuration operation");
  const int result = erases ? eraseProfiles(kind) : distributeProfiles(kind);
  vty_out(vty, "\r\n %s %s configuration %s. \r\n", argv[0], kind.noun, result == 0 ? "successfully" : "failed");
  if (result == 0 && kind.reportsOrders) report(kind, kCommand);
  return result;
}
