#pragma once
// The profile store: named profiles with an item of fixed size, by kind. A kind is known by the handle that its
// registration gave, a profile by an id from 0 to the kind's number of profiles less one. Each call is whole where
// callers overlap. What fails is told by a negative result unless a line says otherwise, and changes nothing.

#include "platform/types.h"

inline constexpr u32 kProfileNameBytes = 20;  // of a name; one of 20 has no terminator

// Registers a kind. `type` is the handle that the caller holds: a registered one gives itself back, for
// any other the kind is registered. `items` is 1. Returns the handle.
i16 prfRegNewType(i16 type, u16 profiles, u16 items, u16 itemSize);

// Creates a profile without an item. Refused for an id or a name that is in use.
i16 prfCreate(i16 type, const char* name, i16 id);
// Stores the item, number 0, of a profile that has none.
i16 prfAddItem(i16 type, i16 id, i16 item, const void* data, u16 size);
// Copies the item out. `size` goes in as the room at `to` and comes back as the item's size. 0 on success.
i16 prfGetItem(void* to, u16* size, i16 type, i16 id, i16 item);
i16 prfModifyItem(i16 type, i16 id, i16 item, const void* data, u16 size);
i16 prfDel(i16 type, i16 id);

i16 prfGetFreeId(i16 type);                      // the lowest
i16 prfIsIdUsed(i16 type, i16 id);               // 1 or 0
i16 prfIsNameExist(i16 type, const char* name);  // 1 or 0
i16 prfGetPrfIdByName(i16 type, const char* name);
// Copies the name, padded with zeros. `capacity` goes in as the room at `to` and comes back as the name's length. 0 on
// success.
i16 prfGetNameByPrfId(char* to, u8* capacity, i16 type, i16 id);
// Refused for a name that another profile of the kind has.
i16 prfNameModify(i16 type, const char* name, i16 id);
