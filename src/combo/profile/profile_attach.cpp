// Profiles and ports: which port uses which, and the content's way to the cards.

#include <cstring>
#include <new>

#include "combo/port/port_blocks.h"
#include "combo/profile/profile_kind.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "common/report.h"
#include "platform/command_line.h"
#include "platform/log.h"

int walkPorts(std::span<const u16> types, u16 slot, LIST* list) {
  ObjIndex target;
  if (SlotNoPortConvertObjIndex(slot, 0, 0, &target) != 0) return -1;
  return ForEachTargetTree(&target, list, 0, types.data(), static_cast<i32>(types.size()));
}

int attachedProfile(const ProfileKind& kind, const ObjIndex* port, u16* id) {
  *id = kDefaultProfile;
  return getObjAttrDataByCondition(port, kind.attribute, id, 0, sizeof *id);
}

int addPortNode(LIST* list, SnmpErrInfo* err, const ObjIndex& port, u16 id) {
  void* memory = mpuAlloc_(g_MsanMemPoolId, sizeof(AdslPortPrfNode), __FILE__, __LINE__);
  if (memory == nullptr) {
    err->errCode = kNoMemory;
    return -1;
  }
  auto* node = new (memory) AdslPortPrfNode{port, id};
  if (insert_sort_list(node, list, compare_adsl_slot_no) == 0) return 0;
  mpuFree(node);
  err->errCode = kNoMemory;
  return -1;
}

// --- Attach ---

static int checkAttach(const ProfileKind& kind, SnmpErrInfo* err, u16 id) {
  if (checkIdLegal(kind, err, id) != 0) return -1;
  return profileExists(kind, id) ? 0 : reject(err, kNoSuchProfile, {id});
}

int attachPorts(const ProfileKind& kind, SnmpErrInfo* err, LIST* list, u16 count) {
  if (err == nullptr) return -1;
  if (list == nullptr) return count == kNoCount ? 0 : -1;
  const NODE* cell = lstFirst(list);
  for (u32 i = 0; i < count; ++i, cell = lstNext(cell)) {
    if (cell == nullptr || checkAttach(kind, err, dataOf<AdslPortPrfNode>(const_cast<NODE*>(cell))->prfId) != 0) {
      return -1;
    }
  }
  NODE* at = lstFirst(list);
  u16 slot = 0;
  for (u32 i = 0; i < count; ++i, at = lstNext(at)) {
    const auto* node = dataOf<AdslPortPrfNode>(at);
    if (setObjAttrDataByCondition(&node->port, kind.attribute, &node->prfId, 0, sizeof node->prfId) != 0) return -1;
    if (node->port.addr[1] != slot) reportChange(node->port.addr[1], kind.attachId, 0);
    slot = node->port.addr[1];
  }
  // What the cards did not get they get when they return.
  sendToCards(kind, list, count);
  return 0;
}

// --- Send ---

// Appends a port's block. A profile that can't be read is left out.
static bool encodePort(const ProfileKind& kind, const AdslPortPrfNode& node, Writer& to) {
  AnyProfile record;
  SnmpErrInfo err;
  if (getProfile(kind, &err, &record, node.prfId) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: profile %d can't be read!\r\n", __func__, node.prfId);
    return false;
  }
  putPortHead(to, node.port);
  encodeBody(kind.shape, itemOf(&record), to);
  return true;
}

int sendToCards(const ProfileKind& kind, LIST* list, u32 count) {
  if (kind.table != nullptr) return kind.table->send(list, count);
  return sendBySlot<AdslPortPrfNode>(
      list, count, kPortsFrame + (kPortHead + kind.shape.mostBody()) * count,
      [&](const AdslPortPrfNode& node, Writer& to) { return encodePort(kind, node, to); },
      [&](u16 slot) { return kind.cardMessage != nullptr ? kind.cardMessage(slot) : kind.attachId; });
}

// --- Walks ---

int flushProfile(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (checkIdLegalExp0(kind, err, id) != 0) return -1;
  ObjList ports, users;
  if (walkPorts(kind.portTypes, 0, ports) != 0 || lstCount(ports) == 0) return -1;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u16 used = 0;
    if (attachedProfile(kind, port, &used) < 0) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "%s,getObjAttrDataByCondition error!\r\n", kind.texts.flushName);
      return -1;
    }
    if (used == id && addPortNode(users, err, *port, used) != 0) return -1;
  }
  if (lstCount(users) == 0) return 0;
  return sendToCards(kind, users, static_cast<u32>(lstCount(users)));
}

int hotplugProfiles(const ProfileKind& kind, u16 slot) {
  ObjList ports, nodes;
  if (walkPorts(kind.portTypes, slot, ports) != 0) return -1;
  int result = 0;
  SnmpErrInfo err;
  for (NODE* cell = lstFirst(ports); cell != nullptr && result == 0; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u16 id = 0;
    if (attachedProfile(kind, port, &id) < 0 || addPortNode(nodes, &err, *port, id) != 0) result = -1;
  }
  // The ports ahead of one that can't be read are served.
  if (lstCount(nodes) != 0 && sendToCards(kind, nodes, static_cast<u32>(lstCount(nodes))) != 0) return -1;
  return result;
}

int isAttached(const ProfileKind& kind, SnmpErrInfo* err, u32 id) {
  if (checkIdLegalExp0(kind, err, id) != 0) return -1;
  ObjList ports;
  if (walkPorts(kind.portTypes, 0, ports) != 0) return -1;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    u16 used = 0;
    if (attachedProfile(kind, dataOf<const ObjIndex>(cell), &used) >= 0 && used == id) return 1;
  }
  return 0;
}

int clearAttached(const ProfileKind& kind, u16 slot) {
  ObjList ports;
  if (walkPorts(kind.portTypes, slot, ports) != 0) return -1;
  const u16 id = kDefaultProfile;
  int result = 0;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    if (setObjAttrDataByCondition(dataOf<const ObjIndex>(cell), kind.attribute, &id, 0, sizeof id) != 0) result = -1;
  }
  return result;
}

int printAttached(const ProfileKind& kind, Vty* vty) {
  ObjList ports;
  if (walkPorts(kind.portTypes, 0, ports) != 0) return -1;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    const auto* port = dataOf<const ObjIndex>(cell);
    u16 id = 0;
    if (attachedProfile(kind, port, &id) < 0 || id == kDefaultProfile) continue;
    vty_out(vty, "attach %s profile id %d interface %d/%d%s", kind.attachWord, id, port->addr[1], port->addr[2],
            "\r\n");
  }
  return 0;
}
