// The VDSL profile kinds together. None of them has a lock: calls of the store are whole, and the selected profile is
// the terminal's alone.

#include "combo/vdsl/vdsl_config_interface.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "combo/vdsl/vdsl_kinds.h"
#include "combo/vdsl/vdsl_line_func_prf.h"
#include "common/areas.h"
#include "common/msan_init.h"
#include "platform/log.h"

// In the order in which they are made, printed and sent.
static constexpr const ProfileKind* kinds[] = {&vdslLineKind,  &vdslServiceKind, &vdslPboKind, &vdslCpsdKind,
                                               &vdslExtraKind, &vdslGinpKind,    &vdslVnKind};

static constexpr Step install[] = {install_vdsl_line_cmd, install_vdsl_ser_cmd,   install_vdsl_pbo_cmd,
                                   install_vdsl_cpsd_cmd, install_vdsl_extra_cmd, install_vdsl_ginp_cmd,
                                   install_vdsl_vn_cmd};

// Line, service and power back-off tell it in the log, the others on standard output.
static void registerFailed(const ProfileKind& kind) {
  if (kind.write == writeBatch) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n[ERROR] %s(%d):%s->prfRegNewType err! profileID = %d",
               "vdsl_config_interface.cpp", __LINE__, "vdsl_init_cfg", kind.writeId);
  } else {
    std::printf("\r\nvdsl %s prf,prfRegNewType failed!\r", kind.word + std::strlen("vdsl"));
  }
}

void vdsl_init_cfg() {
  for (const ProfileKind* kind : kinds) {
    if (registerKind(*kind) != 0) return registerFailed(*kind);
  }
  for (const ProfileKind* kind : kinds) createDefault(*kind);
}

void vdsl_init_cli_cmd() { callAll(install); }

void vdsl_showrun_info(Vty* vty) {
  for (const ProfileKind* kind : kinds) printProfiles(*kind, vty);
  for (const ProfileKind* kind : kinds) printAttached(*kind, vty);
}

void vdsl_hotplug(u16 slot) {
  for (const ProfileKind* kind : kinds) hotplugProfiles(*kind, slot);
}

// --- Messages ---

// The kind that a message is of. The messages below are registered, so there is one.
static const ProfileKind& kindOf(u16 id) {
  return **std::ranges::find_if(kinds, [id](const ProfileKind* kind) {
    return kind->writeId == id || kind->deleteId() == id || kind->attachId == id;
  });
}

static int snmp_set_vdsl_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpWriteProfiles(kindOf(id), {id, nullptr, data, length, reply, replyLen});
}
static int snmp_del_vdsl_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDeleteProfiles(kindOf(id), {id, nullptr, data, length, reply, replyLen});
}
static int snmp_get_vdsl_prf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfiles(kindOf(id), {id, last, data, length, reply, replyLen});
}
static int snmp_get_vdsl_prf_cfg_info(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfilesBare(kindOf(id), {id, last, data, length, reply, replyLen});
}
static int snmp_set_vdsl_prf_attach(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpAttachPorts(kindOf(id), {id, nullptr, data, length, reply, replyLen});
}
static int snmp_get_vdsl_prf_attach(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadPorts(kindOf(id), {id, last, data, length, reply, replyLen});
}

void vdsl_reg_snmp_info() {
  const u32 ports = attachmentReply(vdslLineKind), longPorts = attachmentReply(vdslExtraKind);
  // clang-format off
  const ProfileMessage messages[] = {
      {"MSAN_SET_VD_LINE_PROFILE", "set vdsl line profile", 34801, snmp_set_vdsl_prf, snmp_get_vdsl_prf, 90000},
      {"MSAN_DEL_VD_LINE_PROFILE", "delete vdsl line profile", 34802, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_LINE_PROFILE", "attach vdsl line profile", 2862, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, ports},
      {"MSAN_SET_VD_SERVICE_PROFILE", "set vdsl service profile", 34803, snmp_set_vdsl_prf, snmp_get_vdsl_prf, 90000},
      {"VD_SERVICE_PRF_CONFIG", "delete vdsl service profile", 34804, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_SERVICE_PROFILE", "attach vdsl service profile", 2863, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, ports},
      {"MSAN_SET_VD_PBO_PROFILE", "set vdsl pbo profile", 34805, snmp_set_vdsl_prf, snmp_get_vdsl_prf, 90000},
      {"MSAN_DEL_VD_PBO_PROFILE", "delete vdsl pbo profile", 34806, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_PBO_PROFILE", "attach vdsl pbo profile", 2855, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, ports},
      {"MSAN_SET_VD_CPSD_PROFILE", "set vdsl cpsd profile", 34807, snmp_set_vdsl_prf, snmp_get_vdsl_prf_cfg_info, 22738},
      {"MSAN_DEL_VD_CPSD_PROFILE", "del vdsl cpsd profile", 34808, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_CPSD_PROFILE", "attach vdsl cpsd profile", 2856, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, ports},
      {"MSAN_SET_VD_EXTRA_PROFILE", "set vdsl extra profile", 34820, snmp_set_vdsl_prf, snmp_get_vdsl_prf_cfg_info, 3400},
      {"MSAN_DEL_VD_EXTRA_PROFILE", "del vdsl extra profile", 34821, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_EXTRA_PROFILE", "attach vdsl extra profile", 2858, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, longPorts},
      {"MSAN_SET_VD_GINP_PROFILE", "set vdsl ginp profile", 34822, snmp_set_vdsl_prf, snmp_get_vdsl_prf_cfg_info, 4984},
      {"MSAN_DEL_VD_GINP_PROFILE", "del vdsl ginp profile", 34823, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_GINP_PROFILE", "attach vdsl ginp profile", 2859, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, longPorts},
      {"MSAN_SET_VD_VN_PROFILE", "set vdsl vn profile", 34809, snmp_set_vdsl_prf, snmp_get_vdsl_prf_cfg_info, 13234},
      {"MSAN_DEL_VD_VN_PROFILE", "del vdsl vn profile", 34810, snmp_del_vdsl_prf, nullptr, 0},
      {"MSAN_SET_VD_BIND_VN_PROFILE", "attach vdsl vn profile", 2857, snmp_set_vdsl_prf_attach, snmp_get_vdsl_prf_attach, ports},
  };
  // clang-format on
  registerProfileMessages(messages);
}
