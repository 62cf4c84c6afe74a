#include "combo/pvc/pvc_profile.h"

#include "combo/adsl/adsl_config_aux.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/command_line.h"
#include "platform/log.h"
#include "platform/objects.h"

i16 pvcPrfType = -1;
i16 pvcPrfCfgId = -1;
SemaphoreId pvc_prf_config_mux = 0;

static constexpr u16 kPvcs = 8;
static constexpr u16 kDefaultVpi = 8;
static constexpr u32 kDefaultVci = 35;
static constexpr u16 kBadPair = static_cast<u16>(-97);

// clang-format off
static constexpr ProfileField pvcFields[] = {
    {ITEM_FIELD(PvcEntry, pvcNo), .allowed = {{0, 7}}, .code = static_cast<u16>(-96), .label = "PvcIndex"},
    {ITEM_FIELD(PvcEntry, vpi), .allowed = {{0, 255}, {65535, 65535}}, .code = kBadPair, .label = "Vpi"},
    {ITEM_FIELD(PvcEntry, vci), .allowed = {{0, 0}, {32, 255}, {-1, -1}}, .code = static_cast<u16>(-98), .label = "Vci"},
};
static constexpr ProfileTable pvcs{.at = offsetof(PvcPrfItem, pvcs), .most = kPvcs, .entry = sizeof(PvcEntry),
                                   .fields = pvcFields, .atLeast = 1};
static constexpr ProfileField fields[] = {
    {ITEM_FIELD(PvcPrfItem, PvcNum), .initial = kPvcs, .allowed = {{0, kPvcs}}, .code = static_cast<u16>(-119), .early = true, .table = &pvcs, .label = "PvcNum"},
};
// clang-format on
static constexpr ProfileShape shape{.itemSize = sizeof(PvcPrfItem), .headGap = 8, .tail = 0, .fields = fields};
static_assert(shape.mostBody() == 98);

static void setDefaults(void* blob) {
  auto* item = static_cast<PvcPrfItem*>(blob);
  for (u16 i = 0; i < kPvcs; ++i) item->pvcs[i].pvcNo = i;
  item->pvcs[0].vpi = kDefaultVpi;
  item->pvcs[0].vci = kDefaultVci;
}

static u32 pairOf(const PvcEntry& entry) { return u32{entry.vpi} << 16 | (entry.vci & 0xFFFF); }

// True if a pair is there twice, or none at all; `vpi` is that of the repeated one.
static bool is_same_vpi_vci_exist(const PvcPrfItem& item, u16* vpi) {
  bool any = false;
  *vpi = 0;
  for (u16 i = 0; i < item.PvcNum; ++i) {
    const u32 pair = pairOf(item.pvcs[i]);
    if (pair == 0) continue;
    any = true;
    for (u16 k = 0; k < i; ++k) {
      if (pairOf(item.pvcs[k]) != pair) continue;
      *vpi = item.pvcs[i].vpi;
      return true;
    }
  }
  return !any;
}

int check_pvc_prf_para(SnmpErrInfo* err, const ProfileHead* record) {
  const auto* item = reinterpret_cast<const PvcPrfItem*>(itemOf(record));
  if (checkFields(fields, item, err) != 0) return -1;
  u16 vpi = 0;
  if (!is_same_vpi_vci_exist(*item, &vpi)) return 0;
  err->errCode = kBadPair;
  setProfileDetail(err, record->requestId, record->name);
  putNumber(err->errData + err->errDataLen, 2, vpi);
  err->errDataLen += 2;
  return -1;
}

// The line of a circuit number: of the first entry that has it.
static void printPvc(Vty* vty, const PvcPrfItem& item, u16 number) {
  for (u16 i = 0; i < item.PvcNum && i < kPvcs; ++i) {
    const PvcEntry& entry = item.pvcs[i];
    if (entry.pvcNo != number) continue;
    const bool isDefault =
        number == 0 ? entry.vpi == kDefaultVpi && entry.vci == kDefaultVci : entry.vpi == 0 && entry.vci == 0;
    if (isDefault) return;
    vty_out(vty, "set adsl pvcNo %d vpi %d vci %d%s", number, entry.vpi, static_cast<i32>(entry.vci), "\r\n");
    return;
  }
}

static void printLines(Vty* vty, const void* item) {
  for (u16 number = kPvcs; number-- > 0;) printPvc(vty, *static_cast<const PvcPrfItem*>(item), number);
}

// ADSL cards know the message under a number of its own.
static u16 cardMessage(u16 slot) {
  const int card = get_card_type(slot);
  return caCheckCardTypeIsADSLCard(static_cast<u16>(card)) == 0 ? 2860 : 2838;
}

static constexpr u16 portTypes[] = {kAdslPort, kDslPort, kVdslPort, kAdslPotsPort, kVdslPotsPort};

static constexpr ProfileTexts texts{
    .idRange = "Profile's id must between 1 and 128",
    .addFailed = "Add PVC profine failed,and errcode is ",
    .deleteFailedById = "Delete pvc profine failed,and errcode is ",
    .deleteFailedByName = "del_spc_pvc_prf failed,and errcode is ",
    .deleteDefault = "Default profile cant be deleted! ",
    .readFailedById = "Get pvc profine failed,and errcode is ",
    .readFailedByName = "Get pvc profine failed,and errcode is ",
    .flushFailed = "flush_pvc_prf pvc profine failed",
    .flushName = "flush_pvc_prf",
    .writeName = "snmp_set_pvc_prf",
    .selectDefault = "Default profile cannt be modified!",
    .selectFailedById = "set_pvc_prf_cfg_id failed,error.code is ",
    .selectFailedByName = "set_pvc_prf_cfg_id failed,error.code is ",
    .attachFailed = "attach_pvc_prf failed,errInfo.code is ",
    .portColumn = "portNo",
};

constexpr ProfileKind pvcKind{
    .writeId = 34664,
    .attachId = 2838,
    .mostId = 128,
    .attribute = kPvcAttribute,
    .portTypes = portTypes,
    .shape = shape,
    .defaultName = "DEFPVC.PRF",
    .word = "pvc",
    .attachWord = "pvc",
    .attachTail = 4,
    .type = pvcPrfType,
    .selected = pvcPrfCfgId,
    .lock = &pvc_prf_config_mux,
    .texts = texts,
    .write = writeBatch,
    .check = check_pvc_prf_para,
    .setDefaults = setDefaults,
    .printLines = printLines,
    .cardMessage = cardMessage,
};

void pvc_create_dft_prf() { createDefault(pvcKind); }
int get_pvc_prf(PvcPrfRecord* record, u16 id) { return readProfile(pvcKind, record, id); }
int set_pvc_prf(SnmpErrInfo* err, PvcPrfRecord* records, u16 count) {
  if (count > pvcKind.count()) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "prfNum is error!\r\n");
    return -1;
  }
  return writeBatch(pvcKind, err, records, count);
}
int del_spc_pvc_prf(SnmpErrInfo* err, const u16* ids, u16 count) { return deleteBatch(pvcKind, err, ids, count); }
int attach_pvc_prf(SnmpErrInfo* err, LIST* nodes, u16 count) { return attachPorts(pvcKind, err, nodes, count); }
int attach_pvc_prf_adapt(LIST* nodes, u16 count) { return sendToCards(pvcKind, nodes, count); }
int flush_pvc_prf(SnmpErrInfo* err, u16 id, int) { return flushProfile(pvcKind, err, id); }
int check_pvc_prf_attached(SnmpErrInfo* err, u16 id) { return isAttached(pvcKind, err, id); }
void hotplug_pvc_prf_attach(u16 slot) { hotplugProfiles(pvcKind, slot); }
int clr_pvc_prf_attach(u16 slot) { return clearAttached(pvcKind, slot); }
int pvc_att_dft_prf(u16 slot) { return clr_pvc_prf_attach(slot); }
void pvc_prf_showrun(Vty* vty) { printProfiles(pvcKind, vty); }
void pvc_prf_attach_showrun(Vty* vty) { printAttached(pvcKind, vty); }

int modify_spc_pvc_prf_para(SnmpErrInfo* err, const PvcEntry* values) {
  if (err == nullptr || values == nullptr) return -1;
  PvcPrfRecord record;
  if (readSelected(pvcKind, err, &record) != 0) return -1;
  for (PvcEntry& entry : record.item.pvcs) {
    if (entry.pvcNo != values->pvcNo) continue;
    entry.vpi = values->vpi;
    entry.vci = values->vci;
    break;
  }
  if (check_pvc_prf_para(err, &record) != 0) return -1;
  return storeProfile(pvcKind, &record);
}
