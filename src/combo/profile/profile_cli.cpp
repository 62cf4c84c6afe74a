// The commands that all kinds have. Texts end with a line end of their own.

#include <cstdlib>
#include <cstring>

#include "combo/profile/profile_kind.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/report.h"
#include "platform/command_line.h"

static constexpr int kOperator = 3;  // origin of a report

std::optional<u32> numberOf(const char* text) {
  char* end = nullptr;
  const unsigned long value = std::strtoul(text, &end, 10);
  if (end == text) return std::nullopt;
  const bool negative = text[std::strspn(text, " \t")] == '-';
  return !negative && value > 0xFFFFFFFF ? 0xFFFFFFFF : static_cast<u32>(value);
}

int complain(Vty* vty, const char* text) {
  vty_out(vty, "%s%s", text, "\r\n");
  return -1;
}

int complain(Vty* vty, const char* text, u16 code, const char* behind) {
  vty_out(vty, "%s%d%s%s", text, static_cast<i16>(code), behind, "\r\n");
  return -1;
}

static int badId(Vty* vty) { return complain(vty, "Please input legal id"); }

static int badName(Vty* vty, const char* name) {
  if (std::strlen(name) <= kProfileNameBytes) return 0;
  return complain(vty, "Profile's name longer than 20 characters");
}

static int unknownName(Vty* vty, const char* name, u16 code) {
  vty_out(vty, "There is no profile with name %s,and errcode is %d%s", name, static_cast<i16>(code), "\r\n");
  return -1;
}

static bool isWord(const char* word, const char* argument) { return bep_StrCmp(word, argument) == 0; }

int findByName(const ProfileKind& kind, Vty* vty, const char* name, u16* id) {
  if (badName(vty, name) != 0) return -1;
  SnmpErrInfo err;
  const int found = kind.table != nullptr ? kind.table->idByName(&err, id, name) : idByName(kind, name, id);
  return found == 0 ? 0 : unknownName(vty, name, err.errCode);
}

// Any profile, by id or name. Whether there is one of the id is not looked at.
static int findAny(const ProfileKind& kind, Vty* vty, char** argv, u16* id) {
  if (!isWord("id", argv[0])) return findByName(kind, vty, argv[1], id);
  const auto number = numberOf(argv[1]);
  if (!number) return badId(vty);
  SnmpErrInfo err;
  if (checkIdLegal(kind, &err, *number) != 0) {
    vty_out(vty, "there is no profile with id %d%s", static_cast<int>(*number), "\r\n");
    return -1;
  }
  *id = static_cast<u16>(*number);
  return 0;
}

// A profile other than the default one, by id or name.
static int findOther(const ProfileKind& kind, Vty* vty, char** argv, const char* refuseDefault, u16* id) {
  if (!isWord("id", argv[0])) {
    if (findByName(kind, vty, argv[1], id) != 0) return -1;
    return *id != kDefaultProfile ? 0 : complain(vty, refuseDefault);
  }
  const auto number = numberOf(argv[1]);
  if (!number) return badId(vty);
  SnmpErrInfo err;
  if (checkIdLegalExp0(kind, &err, *number) != 0) {
    vty_out(vty, "the profile id %d is invalid!%s", static_cast<int>(*number), "\r\n");
    return -1;
  }
  *id = static_cast<u16>(*number);
  return 0;
}

int cliAddProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc < 1) return -1;
  if (badName(vty, argv[0]) != 0) return -1;
  AnyProfile record;
  fillDefaults(kind, &record);
  std::memset(record.name, 0, sizeof record.name);
  std::memcpy(record.name, argv[0], std::strlen(argv[0]));
  record.requestId = kAllocateId;
  const ProfileLock lock(kind);
  if (argc > 1) {
    const auto id = numberOf(argv[1]);
    if (!id) return badId(vty);
    if (*id == kDefaultProfile || *id > kind.mostId) return complain(vty, kind.texts.idRange);
    record.requestId = static_cast<u16>(*id);
    if (profileExists(kind, record.requestId)) return complain(vty, "the prfID is used! ");
  }
  SnmpErrInfo err;
  if (kind.write(kind, &err, &record, 1) != 0) return complain(vty, kind.texts.addFailed, err.errCode);
  reportChange(kNode, kind.writeId, kOperator);
  return 0;
}

int cliDeleteProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc != 2) return -1;
  const ProfileLock lock(kind);
  u16 id = 0;
  if (findOther(kind, vty, argv, kind.texts.deleteDefault, &id) != 0) return -1;
  SnmpErrInfo err;
  if (deleteBatch(kind, &err, &id, 1) != 0) {
    const bool byId = isWord("id", argv[0]);
    return complain(vty, byId ? kind.texts.deleteFailedById : kind.texts.deleteFailedByName, err.errCode);
  }
  reportChange(kNode, kind.writeId, kOperator);
  return 0;
}

static void showProfile(const ProfileKind& kind, Vty* vty, const AnyProfile& record) {
  showText(vty, "Profile name", record.name);
  showNumber(vty, "Profile id", record.prfId);
  if (kind.show != nullptr) return kind.show(vty, itemOf(&record));
  showFields(vty, kind.shape.fields, itemOf(&record));
}

static int showAll(const ProfileKind& kind, Vty* vty) {
  AnyProfile record;
  for (u32 id = 0; id <= kind.mostId; ++id) {
    if (readProfile(kind, &record, static_cast<u16>(id)) != 0) continue;
    showProfile(kind, vty, record);
    vty_out(vty, "%s%s", "\r\n", "\r\n");
  }
  return 0;
}

int cliShowProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc < 1) return -1;
  const bool byId = isWord("id", argv[0]);
  const ProfileLock lock(kind);
  if (!byId && !isWord("name", argv[0])) return showAll(kind, vty);
  if (argc < 2) return -1;
  u16 id = 0;
  SnmpErrInfo err;
  if (findAny(kind, vty, argv, &id) != 0) return -1;
  AnyProfile record;
  if (getProfile(kind, &err, &record, id) != 0) {
    return complain(vty, byId ? kind.texts.readFailedById : kind.texts.readFailedByName, err.errCode);
  }
  showProfile(kind, vty, record);
  return 0;
}

int cliFlushProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc != 2) return -1;
  const ProfileLock lock(kind);
  u16 id = 0;
  if (findOther(kind, vty, argv, kind.texts.deleteDefault, &id) != 0) return -1;
  SnmpErrInfo err;
  return flushProfile(kind, &err, id) == 0 ? 0 : complain(vty, kind.texts.flushFailed);
}

int cliSelectProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc != 2) return -1;
  const ProfileLock lock(kind);
  u16 id = 0;
  if (findOther(kind, vty, argv, kind.texts.selectDefault, &id) != 0) return -1;
  if (selectProfile(kind, id) == 0) return 0;
  const bool byId = isWord("id", argv[0]);
  return complain(vty, byId ? kind.texts.selectFailedById : kind.texts.selectFailedByName, 0, " exist");
}

// --- Edit ---

int finishEdit(const ProfileKind& kind, Vty* vty, int result, const SnmpErrInfo& err) {
  if (result != 0) return complain(vty, "failed,error code is ", err.errCode);
  reportChange(kNode, kind.writeId, kOperator);
  return 0;
}

int cliEditProfile(const ProfileKind& kind, const ProfileLine& line, Vty* vty, int argc, char** argv) {
  u8 values[kLargestItem] = {};
  if (readLine(line, vty, argc, argv, values) != 0) return -1;
  SnmpErrInfo err;
  const auto apply = [&](void* item) { return applyLine(line, item, values, kind.editsUnchanged); };
  return finishEdit(kind, vty, editSelected(kind, &err, apply), err);
}

// --- Attach ---

int complainInterface(const ProfileKind& kind, Vty* vty) {
  vty_out(vty, "%s%s%s", kind.texts.badInterface, "\r\n", "\r\n");
  return -1;
}

// Makes the nodes of all ports that an interface string names.
static int makeNodes(Vty* vty, LIST* addresses, u16 id, LIST* nodes) {
  SnmpErrInfo err;
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    ObjIndex port;
    if (trans_cli_addr_2objlabel(vty, dataOf<const CliAddr>(cell), &port) != 0) return -1;
    if (addPortNode(nodes, &err, port, id) != 0) return complain(vty, "MSAN_MALLOC failed!");
  }
  return 0;
}

int cliAttachProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc != 3) return -1;
  const ProfileLock lock(kind);
  u16 id = 0;
  SnmpErrInfo err;
  if (findAny(kind, vty, argv, &id) != 0) return -1;
  ObjList addresses, nodes;
  if (CliInputConvertObjIndex(argv[2], addresses) != 0) return complainInterface(kind, vty);
  if (makeNodes(vty, addresses, id, nodes) != 0) return -1;
  if (attachPorts(kind, &err, nodes, static_cast<u16>(lstCount(nodes))) != 0) {
    return complain(vty, kind.texts.attachFailed, err.errCode);
  }
  if (kind.reportsAttachment) reportChange(kNode, kind.attachId, kOperator);
  return 0;
}

int cliShowAttached(const ProfileKind& kind, Vty* vty, int argc, char** argv) {
  if (argc != 1) return -1;
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[0], addresses) != 0) return complainInterface(kind, vty);
  vty_out(vty, "%-10s%-10s%-10s%s", "slotNO", kind.texts.portColumn, "profile id", "\r\n");
  for (NODE* cell = lstFirst(addresses); cell != nullptr; cell = lstNext(cell)) {
    ObjIndex port;
    if (trans_cli_addr_2objlabel(vty, dataOf<const CliAddr>(cell), &port) != 0) return -1;
    u16 id = 0, slot = 0, portNo = 0, type = 0;
    if (attachedProfile(kind, &port, &id) < 0) return complain(vty, "getObjAttrDataByCondition failed!");
    if (ObjIndexConvertSlotNoPort(&slot, &portNo, &type, &port) != 0) {
      return complain(vty, "ObjIndexConvertSlotNoPort failed!");
    }
    vty_out(vty, "%-10d%-10d%-10d%s", slot, portNo, id, "\r\n");
  }
  return 0;
}
