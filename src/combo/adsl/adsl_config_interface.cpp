#include "combo/adsl/adsl_config_interface.h"

#include <cstdio>
#include <new>

#include "combo/adsl/adsl_config_aux.h"
#include "combo/adsl/adsl_profile.h"
#include "combo/pvc/pvc_profile.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "platform/log.h"
#include "platform/objects.h"

// --- Start ---

static int init_adsl_sem() {
  adsl_prf_config_mux = bep_semBCreateEx(2, 1);
  pvc_prf_config_mux = bep_semBCreateEx(2, 1);
  return adsl_prf_config_mux != 0 && pvc_prf_config_mux != 0 ? 0 : -1;
}

void init_adsl_cfg() {
  if (registerKind(adslLineKind) != 0 || registerKind(pvcKind) != 0) {
    std::printf("\r\nflowPolicyInit,prfRegNewType failed!\r");
    return;
  }
  if (init_adsl_sem() != 0) {
    std::printf("init_adsl_config_module,init_adsl_sem failed!\r");
    return;
  }
  adsl_create_dft_prf();
  pvc_create_dft_prf();
}

void adsl_showrun_inf(Vty* vty) {
  adsl_line_prf_showrun(vty);
  pvc_prf_showrun(vty);
  ad_prf_attach_showrun(vty);
  pvc_prf_attach_showrun(vty);
}

// --- Messages ---

int snmp_set_adsl_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpWriteProfiles(adslLineKind, {id, nullptr, data, length, reply, replyLen});
}
int snmp_del_adsl_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDeleteProfiles(adslLineKind, {id, nullptr, data, length, reply, replyLen});
}
int snmp_get_adsl_prf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfiles(adslLineKind, {id, last, data, length, reply, replyLen});
}
int snmp_set_pvc_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpWriteProfiles(pvcKind, {id, nullptr, data, length, reply, replyLen});
}
int snmp_del_pvc_prf(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDeleteProfiles(pvcKind, {id, nullptr, data, length, reply, replyLen});
}
int snmp_get_pvc_prf(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadProfiles(pvcKind, {id, last, data, length, reply, replyLen});
}

// The PVC attachment has two numbers.
static u16 attachmentOf(u16 id) { return id == 2860 ? pvcKind.attachId : id; }

int snmp_set_ad_pvc_prf_attach(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  const u16 attachment = attachmentOf(id);
  const ProfileKind& kind = attachment == pvcKind.attachId ? pvcKind : adslLineKind;
  return snmpAttachPorts(kind, {attachment, nullptr, data, length, reply, replyLen});
}

int snmp_get_pvc_prf_attach(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpReadPorts(pvcKind, {attachmentOf(id), last, data, length, reply, replyLen});
}

// The ports of a read of ADSL attachments: those of a slot if its one item names port 65535, else those named.
static int parse_get_port_info(LIST* list, SnmpErrInfo* err, u32 count, WireIn items) {
  Reader from(items);
  for (u32 i = 0; i < count; ++i) {
    ObjIndex port;
    const WireIn item = from.rest();
    if (get_adsl_obj_lable(err, &port, item) != 0) return -1;
    from.skip(20);
    if (from.failed()) {
      err->errCode = kRequestTooShort;
      return -1;
    }
    if (count == 1 && getNumber(item.data() + 2, 2) == 65535)
      return walkPorts(adslLineKind.portTypes, port.addr[1], list);
    void* memory = mpuAlloc_(g_MsanMemPoolId, sizeof port, __FILE__, __LINE__);
    if (memory == nullptr) {
      err->errCode = kNoMemory;
      return -1;
    }
    if (insert_sort_list(new (memory) ObjIndex(port), list, compare_adsl_slot_no) != 0) {
      mpuFree(memory);
      err->errCode = kNoMemory;
      return -1;
    }
  }
  return 0;
}

int snmp_get_adsl_port_info(u16 id, u8*, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  Reader from(data != nullptr && length >= 32 ? WireIn(data + 32, static_cast<u32>(length) - 32) : WireIn());
  const u32 count = from.number(4);
  SnmpErrInfo err;
  if (from.failed()) {
    err.errCode = kRequestTooShort;
    return answerError(id, err, reply, replyLen);
  }
  if (count == 0) {
    *replyLen = 0;
    return 0;
  }
  if (!is_item_legal(count)) return -1;
  ObjList ports;
  if (parse_get_port_info(ports, &err, count, from.rest()) != 0) return answerError(id, err, reply, replyLen);
  Writer to(WireOut(reply, kMaxPacket));
  to.number(4, 1);
  to.zeros(32);
  const ProfileLock lock(adslLineKind);
  if (encodePorts(adslLineKind, ports, to) != 0) return answerError(id, err, reply, replyLen);
  *replyLen = to.length();
  return 0;
}

// --- Registration ---

void adsl_reg_snmp_inf() {
  u32 slots = 0;
  if (ddGetMaxSlotNum(&slots) != 0) return;
  const u32 ports = attachmentReply(adslLineKind);
  const ProfileMessage messages[] = {
      {"AD_LINE_PRF_CONFIG", "test", 34661, snmp_set_adsl_prf, snmp_get_adsl_prf, 301090},
      {"AD_LINE_PRF_DELETE", "test", 34662, snmp_del_adsl_prf, nullptr, 0},
      {"AD_LINE_PRF_ATTACH", "test", 2837, snmp_set_ad_pvc_prf_attach, snmp_get_adsl_port_info, ports},
      {"PVC_PRF_CONFIG", "test", 34664, snmp_set_pvc_prf, snmp_get_pvc_prf, 16546},
      {"PVC_PRF_DELETE", "test", 34665, snmp_del_pvc_prf, nullptr, 0},
      {"PVC_PRF_ATTACH", "test", 2838, snmp_set_ad_pvc_prf_attach, snmp_get_pvc_prf_attach, ports},
      {"PVC_PRF_ATTACH", "test", 2860, snmp_set_ad_pvc_prf_attach, snmp_get_pvc_prf_attach, ports},
  };
  registerProfileMessages(messages);
}
