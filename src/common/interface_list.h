#pragma once
// Interface strings such as 1/1-8,12, and the sorted lists that they and the configuration walks become.
//
// A string has one to three levels parted by "/": slot, port and a third number. A level is one to 31 sections parted
// by ","; a section is a number, or two with "-" or "~" between them, a range in either order.

#include <string_view>

#include "common/msan_obj.h"
#include "platform/lists.h"
#include "platform/types.h"

// An entry of the list that an interface string becomes.
struct CliAddr {
  u16 level;  // levels in the string
  u16 slot;
  u16 port;  // 0 if the string has one level
  u16 sub;   // 0 if it has fewer than three
};

// A cell of a list of objects, from the pool. It does not own its data until the list is freed with FreeTable.
struct ObjListCell : NODE {
  void* data;
};

template <class T>
T* dataOf(NODE* cell) {
  return static_cast<T*>(static_cast<ObjListCell*>(cell)->data);
}

// A level of an interface string: a bit for each position whose number was named.
struct IfLevel {
  u32 bits[2] = {};
  u32 positions = 0;
  u32 lowest = 0;  // number of position 0
};

// Mark what a text names. 0, -1 (malformed, or below the lowest number) or -6 (a strange character, or too high).
int parseSection(std::string_view section, IfLevel* level);
int parseIfToken(std::string_view text, IfLevel* level);
// Up to six levels, each into its record. 0; -1; or -2 to -5 for a -6 of the first to the fourth level.
int parseIfStr(const char* text, u32* levels, IfLevel* records);

// The entries of a string, in the order of slot, port and third number. 0, or -1 after a line on standard output, or
// without memory; what was made stays in the list either way, for FreeTable.
int ParseInterface(const char* text, LIST* list);
int CliInputConvertObjIndex(const char* text, LIST* list);

// Order of two entries: -1 or 1.
int CliAddrFun(const void* a, const void* b);
// Order of two objects, by slot and port: 1 if b stands below a, else 0; -1 for null.
int compare_adsl_slot_no(const void* a, const void* b);

using Comparator = int (*)(const void* data, const void* cellData);

// Puts data ahead of the first cell for which the comparator gives less than 1. 0, or -1 for null or without memory.
int insert_sort_list(void* data, LIST* list, Comparator comparator);
// The same in the order of slot and port. 0, -2 for null, -27 without memory.
int insert_sort_list_by_index(ObjIndex* object, LIST* list);

// Free a list: its cells with their data; with `each` called on the data instead (0 for null data).
void delete_common_list(LIST* list);
void FreeTable(LIST* list);
void delete_list_freedata(LIST* list, void (*each)(void* data, void* argument), void* argument);
// The first cell for which the comparator of key and data gives 0; null if none.
NODE* find_list_custom(const void* key, const LIST* list, Comparator comparator);
// Moves to the next cell and gives its data; null at the end.
void* GetNextObj(NODE** cell);

// A list of objects that belongs to a scope.
class ObjList {
 public:
  ObjList() { lstInit(&list_); }
  ~ObjList() { FreeTable(&list_); }
  ObjList(const ObjList&) = delete;
  ObjList& operator=(const ObjList&) = delete;
  operator LIST*() { return &list_; }

 private:
  LIST list_;
};
