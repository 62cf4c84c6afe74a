#pragma once
// The attribute store: what is stored for a slot or a port is reached by the object's handle and an attribute number.
// The functions that store it belong to the items; here is the table of them.

#include "common/msan_obj.h"
#include "platform/lists.h"
#include "platform/types.h"

enum AttributeNumber : u32 {
  kVoicePortAttribute = 267,
  kAlarmAttribute = 269,
  kStormAttribute = 271,
  kVlanAttribute = 272,
  kIsolationAttribute = 274,
  kRateAttribute = 275,
  kMacAttribute = 278,
  kQueueAttribute = 279,
  kPortEnableAttribute = 280,
  kAdslLineAttribute = 281,
  kPvcAttribute = 282,
  kPvcPolicyAttribute = 283,
  kPortPolicyAttribute = 284,
  kFeedAttribute = 285,
  kLoopAttribute = 286,
  kVdslCpsdAttribute = 287,
  kVdslExtraAttribute = 288,
  kVdslGinpAttribute = 289,
  kVdslVnAttribute = 290,
  kVdslLineAttribute = 291,
  kVdslServiceAttribute = 292,
  kVdslPboAttribute = 293,
  kSelfPortAttribute = 296,
};

enum AttributeError : int { kReadWithOffset = -53, kNoSuchAttribute = -54 };

// 0, the code of the attribute's function, of the object model, or one of the codes named above and in msan_obj.h.
// `extra` is for attributes that ask for it.
int setObjAttrDataByCondition(const ObjIndex* handle, u32 attribute, const void* data, i32 offset, i32 length);
int getObjAttrDataByCondition(const ObjIndex* handle, u32 attribute, void* data, u32 offset, i32 length, u32 extra = 0);

// Removes what a slot that has lost its card type holds: its ports, then the slot itself; it ends at the first that
// fails.
void delObjAttrBySlot(u16 slot);
int delPortAttrByObjId(u32 objectId);  // 0
int delSlotAttrByObjId(u32 objectId);  // 0
// Resolve the object and delete nothing: a voice port's row goes with delPortAttrByObjId. 0 for attribute 267, else
// -54.
int delSlotAttrDataByCondition(u16 slot, u32 attribute, i32 length);
int delPortAttrDataByCondition(u16 slot, u16 port, u32 attribute, i32 length);

// The list kinds of msan_cfg_sync_trigger.
enum SyncList { kObjectList = 1, kDataNodeList = 2 };
// Reports each run of equal slots in the list.
void msan_cfg_sync_trigger(const LIST* list, u16 id, int origin, int kind);

// The objects under the target that are of one of the types (none given: all), sorted by slot and port. The cells'
// handles come from the pool, as does a slot or port target that matches, which is added itself. 0 or -1.
int ForEachTargetTree(ObjIndex* target, LIST* list, u32 flags, const u16* types, i32 count);
int InForEachTargetTree(ObjIndex* target, LIST* list, u32 flags, const u16* types, i32 count);
int IsMatchObjType(u16 type, const u16* types, i32 count);  // 0 or -1
