#include "standard_mib/profiles.h"

#include <cstring>

#include "common/interface_list.h"

int attachOne(const ProfileKind& kind, u16 slot, u16 port, u16 id) {
  ObjIndex object;
  ObjList nodes;
  SnmpErrInfo err;
  if (SlotNoPortConvertObjIndex(slot, port, 0, &object) != 0 || addPortNode(nodes, &err, object, id) != 0) return -1;
  return attachPorts(kind, &err, nodes, 1);
}

int firstAttached(std::span<const u16> types, AttachedId* idOf, u16* slot, u16* port, u16* id) {
  if (slot == nullptr || port == nullptr || id == nullptr) return kNullArgument;
  ObjList ports;
  if (walkPorts(types, 0, ports) != 0) return -1;
  for (NODE* cell = lstFirst(ports); cell != nullptr; cell = lstNext(cell)) {
    const auto& object = *dataOf<const ObjIndex>(cell);
    const int attached = idOf(object.addr[1], object.addr[2]);
    if (attached == -1) continue;
    *slot = object.addr[1];
    *port = object.addr[2];
    *id = static_cast<u16>(attached);
    return 0;
  }
  return -1;
}

int nextAttached(AttachedId* idOf, u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id) {
  if (nextSlot == nullptr || nextPort == nullptr || id == nullptr) return kNullArgument;
  if (std_snmp_next_dsl_port_get(&slot, &port) != 0) return -1;
  const int attached = idOf(slot, port);
  if (attached == -1) return -1;
  *nextSlot = slot;
  *nextPort = port;
  *id = static_cast<u16>(attached);
  return 0;
}

void copyName(char* to, const char* from) { std::memcpy(to, from, kProfileNameBytes); }
