#pragma once
// Where it is stored which port uses which profile: a row for each object that was ever attached. Set and clear write
// on the master alone and succeed elsewhere; the data is a u16, whatever offset and length say. 0, or -900 when the
// database fails. Get leaves the id alone unless there is a row; DB_NOT_FOUND and DB_END tell that there is none.

#include "platform/types.h"

int set_adsl_prf_att_dbapi(u32 objectId, const void* id, u32 offset, u32 length);
int get_adsl_prf_att_dbapi(u32 objectId, void* id, u32 offset, u32 length, u32 flag);
int clr_adsl_prf_att_dbapi(u32 objectId);

int set_pvc_prf_att_dbapi(u32 objectId, const void* id, u32 offset, u32 length);
int get_pvc_prf_att_dbapi(u32 objectId, void* id, u32 offset, u32 length, u32 flag);
int clr_pvc_prf_att_dbapi(u32 objectId);

// The three of a VDSL kind.
#define VDSL_ATTACHMENT(kind, api)                                                           \
  int set_vdsl_##kind##_prf_att_##api(u32 objectId, const void* id, u32 offset, u32 length); \
  int get_vdsl_##kind##_prf_att_##api(u32 objectId, void* id, u32 offset, u32 length);       \
  int clr_vdsl_##kind##_prf_att_##api(u32 objectId);
VDSL_ATTACHMENT(line, db_api)
VDSL_ATTACHMENT(ser, db_api)
VDSL_ATTACHMENT(pbo, db_api)
VDSL_ATTACHMENT(cpsd, dbapi)
VDSL_ATTACHMENT(extra, dbapi)
VDSL_ATTACHMENT(ginp, dbapi)
VDSL_ATTACHMENT(vn, dbapi)
#undef VDSL_ATTACHMENT
