// The VDSL profile kinds together. None of them has a lock: calls of the store are whole, and the selected profile is
// the terminal's alone.

#include "combo/vdsl/vdsl_config_interface.h"

#include <algorithm>

#include "combo/vdsl/vdsl_line_func_prf.h"
#include "common/areas.h"
#include "common/msan_init.h"
#include "platform/log.h"

// In the order in which they are made, printed and sent.
static constexpr const ProfileKind* kinds[] = {&vdslLineKind};

static constexpr Step createDefaults[] = {create_vdsl_line_dft_prf};
static constexpr Step install[] = {install_vdsl_line_cmd};
static constexpr PrintStep showrun[] = {vdsl_line_prf_showrun, vdsl_line_prf_attach_showrun};
static constexpr SlotStep hotplug[] = {hotplug_vdsl_line_prf_attach};

int vdsl_init_cfg() {
  for (const ProfileKind* kind : kinds) {
    if (registerKind(*kind) == 0) continue;
    ulogPrintf(gModuleId_Msan, 10, "\r\n[ERROR] %s(%d):%s->prfRegNewType err! profileID = %d",
               "vdsl_config_interface.cpp", __LINE__, __func__, kind->writeId);
    return -1;
  }
  return callAll(createDefaults);
}

int vdsl_init_cli_cmd() { return callAll(install); }
int vdsl_showrun_info(Vty* vty) { return callAll(showrun, vty); }
int vdsl_hotplug(u16 slot) { return callAll(hotplug, slot); }

// --- Messages ---

static int snmp_set_vdsl_line_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpWriteProfiles(vdslLineKind, {id, nullptr, data, length, reply, replyLen});
}
static int snmp_del_vdsl_line_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDeleteProfiles(vdslLineKind, {id, nullptr, data, length, reply, replyLen});
}
static int snmp_get_vdsl_line_prf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfiles(vdslLineKind, {id, last, data, length, reply, replyLen});
}

// The kind that an attachment message is of. The messages below are registered, so there is one.
static const ProfileKind& kindOf(u16 attachId) {
  return **std::ranges::find(kinds, attachId, [](const ProfileKind* kind) { return kind->attachId; });
}

static int snmp_set_vdsl_prf_attach(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpAttachPorts(kindOf(id), {id, nullptr, data, length, reply, replyLen});
}
static int snmp_get_vdsl_prf_attach(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadPorts(kindOf(id), {id, last, data, length, reply, replyLen});
}

int vdsl_reg_snmp_info() {
  const ProfileMessage messages[] = {
      {"MSAN_SET_VD_LINE_PROFILE", "set vdsl line profile", 34801, snmp_set_vdsl_line_prf, snmp_get_vdsl_line_prf,
       90000},
      {"MSAN_DEL_VD_LINE_PROFILE", "delete vdsl line profile", 34802, snmp_del_vdsl_line_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_LINE_PROFILE", "attach vdsl line profile", 2862, snmp_set_vdsl_prf_attach,
       snmp_get_vdsl_prf_attach, attachmentReply(vdslLineKind)},
  };
  return registerProfileMessages(messages);
}
