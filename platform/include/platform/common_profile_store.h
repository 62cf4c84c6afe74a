#pragma once
// The common profile store: profiles whose names need not differ. A kind is known by a descriptor of its owner's, which
// every call takes; the owner sets the id, and what a call reads or fills besides, ahead of it. Kinds and their names
// are found by the look-ups of the profile store, too (the lowest id of a name). Each call is whole where callers
// overlap, if their descriptors are not the same.

#include "platform/types.h"

struct CommProfile {
  i32 moduleId = 0;
  u16 ids = 0;  // a profile's id is 1 to ids - 1
  u16 items = 0;
  i16 type = -1;                                         // the handle
  u16 id = 0;                                            // of the profile that a call is about
  u16 recordSize = 0;                                    // in bytes
  u16 storedSize = 0;                                    // the same
  void* data = nullptr;                                  // the record: read by a write, filled by a read
  int (*isBound)(const CommProfile* profile) = nullptr;  // asked ahead of a deletion, which 1 forbids; null: not asked
  char name[33] = {};                                    // read by a write, filled by a read
};

int init_comm_profile_type(CommProfile* profile);         // registers the kind and fills in the handle. 0, or -1
int is_comm_profile_exist(const CommProfile* profile);    // 1 or 0
int find_comm_profile_by_id(CommProfile* profile);        // 0; -1, and nothing is filled, if there is none
int get_comm_profile_max_id(const CommProfile* profile);  // the highest id in use, 0 for none
int add_comm_profile_base(const CommProfile* profile);    // or replaces. 0, or -1 for an id that can't be
int del_comm_profile_base(const CommProfile* profile);    // 0, or -1 if there is none, or it is bound
