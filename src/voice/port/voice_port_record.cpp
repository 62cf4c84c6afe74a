#include "voice/port/voice_port_record.h"

#include <algorithm>
#include <cstring>

#include "common/msan_init.h"
#include "common/msan_obj.h"
#include "common/obj_attributes.h"
#include "common/store.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/tables.h"

// The columns; nothing here goes over a wire.
static constexpr Field columns[] = {
    field<&VoicePort::enable, VoicePortCfg_enable_get, VoicePortCfg_enable_put>({.offset = 0}),
    field<&VoicePort::protocolType, VoicePortCfg_protocolType_get, VoicePortCfg_protocolType_put>({.offset = 0}),
    field<&VoicePort::userNumber, VoicePortCfg_userNumber_get, VoicePortCfg_userNumber_put>({.offset = 0}),
    field<&VoicePort::DSPProfileID, VoicePortCfg_DSPProfileID_get, VoicePortCfg_DSPProfileID_put>({.offset = 0}),
    field<&VoicePort::SIPAuthUserName, VoicePortCfg_SIPAuthUserName_get, VoicePortCfg_SIPAuthUserName_put>(
        {.offset = 0}),
    field<&VoicePort::SIPAuthPassword, VoicePortCfg_SIPAuthPassword_get, VoicePortCfg_SIPAuthPassword_put>(
        {.offset = 0}),
    field<&VoicePort::SIPUserCallProfileID, VoicePortCfg_SIPUserCallProfileID_get,
          VoicePortCfg_SIPUserCallProfileID_put>({.offset = 0}),
};
static constexpr Table<VoicePortCfg> table{"VoicePortCfg", "objIdTree", VoicePortCfg_objIdTree_find, VoicePortCfg_new,
                                           VoicePortCfg_objId_put};

int set_voiceportcfg_dbapi(u32 objectId, const void* data, u32 offset, u32 length) {
  if (data == nullptr || offset != 0 || length < sizeof(VoicePort)) return -1;
  return storeRow(table, columns, data, objectId);
}

int get_voiceportcfg_dbapi(u32 objectId, void* data, u32 offset, u32 length) {
  if (data == nullptr || offset != 0) return -1;
  VoicePort record;
  if (const int code = loadRow(table, columns, &record, objectId)) return code;
  std::memcpy(data, &record, std::min<u32>(length, sizeof record));
  return 0;
}

int del_voiceportcfg_dbapi(u32 objectId) {
  Transaction transaction(Access::write);
  if (!transaction) return kStoreFailed;
  VoicePortCfg row;
  const int code = VoicePortCfg_objIdTree_find(transaction, objectId, &row);
  if (code == DB_NOT_FOUND) return 0;
  if (code != 0) {
    logFind(Where::here(), table.name, table.index, code);
    return kStoreFailed;
  }
  VoicePortCfg_delete(&row);
  return transaction.commit();
}

void init_voiceport_cfg(u16 slot) {
  const int card = get_config_card_type(slot);
  if (card > 0 && caCheckCardTypeIsMsanPotsCard(static_cast<u16>(card)) != 0) return;
  u16 amount = 0;
  if (card <= 0 || ddGetBoardServePortAmountByType(static_cast<u16>(card), &amount) != 0) {
    ulogPrintf(gModuleId_Msan, kLogError, "%s: the card of slot %d can't be had.\r\n", __func__, slot);
    return;
  }
  for (u32 port = 1; port <= amount; ++port) {
    ObjIndex object;
    if (SlotNoPortConvertObjIndex(slot, static_cast<u16>(port), 0, &object) != 0) {
      ulogPrintf(gModuleId_Msan, kLogError, "%s: no object for slot %d port %d.\r\n", __func__, slot,
                 static_cast<int>(port));
      continue;
    }
    const VoicePort record;
    if (setObjAttrDataByCondition(&object, kVoicePortAttribute, &record, 0, sizeof record) != 0) return;
  }
}
