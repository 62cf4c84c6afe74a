#include "common/interface_list.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "common/msan_init.h"
#include "platform/log.h"
#include "platform/pool.h"

static constexpr std::size_t kLongestString = 255;
static constexpr u32 kSections = 31;
static constexpr u32 kLevels = 6;
static constexpr u32 kControlUnitPosition = 24;  // 801 and 24 are one number

// Takes the piece ahead of the next separator off the text. False when there is none left.
static bool nextPiece(std::string_view& text, bool& more, const char* separators, std::string_view& piece) {
  if (!more) return false;
  const auto end = text.find_first_of(separators);
  piece = text.substr(0, end);
  more = end != text.npos;
  text.remove_prefix(more ? end + 1 : text.size());
  return true;
}

// A number of digits, held at a value that is too high everywhere.
static u32 number(std::string_view digits) {
  u32 value = 0;
  for (char c : digits) value = std::min<u32>(value * 10 + static_cast<u32>(c - '0'), 100000);
  return value;
}

int parseSection(std::string_view section, IfLevel* level) {
  if (level == nullptr) return -1;
  if (section.find_first_not_of("0123456789-~") != section.npos) return -6;
  u32 numbers[2] = {};
  u32 count = 0;
  bool more = true;
  for (std::string_view piece; nextPiece(section, more, "-~", piece); ++count) {
    if (piece.empty() || count == 2) return -1;
    numbers[count] = number(piece);
  }
  if (count == 1) numbers[1] = numbers[0];
  for (u32& value : numbers) {
    if (value < level->lowest) return -1;
    value = (value == kControlUnit ? kControlUnitPosition : value) - level->lowest;
  }
  if (std::max(numbers[0], numbers[1]) >= level->positions) return -6;
  const auto [first, last] = std::minmax(numbers[0], numbers[1]);
  for (u32 at = first; at <= last; ++at) level->bits[at / 32] |= u32{1} << at % 32;
  return 0;
}

int parseIfToken(std::string_view text, IfLevel* level) {
  u32 sections = 0;
  bool more = true;
  for (std::string_view section; nextPiece(text, more, ",", section);) {
    if (++sections > kSections) return -1;
    if (const int code = parseSection(section, level)) return code;
  }
  return 0;
}

int parseIfStr(const char* text, u32* levels, IfLevel* records) {
  if (text == nullptr || levels == nullptr || records == nullptr) return -1;
  const std::size_t length = strnlen(text, kLongestString + 1);
  if (length > kLongestString) return -1;
  std::string_view rest(text, length);
  u32 level = 0;
  bool more = true;
  for (std::string_view token; nextPiece(rest, more, "/", token); ++level) {
    if (level == kLevels) return -1;
    const int code = parseIfToken(token, &records[level]);
    if (code == -6) return -2 - static_cast<int>(level);
    if (code != 0) return code;
  }
  *levels = level;
  return 0;
}

static bool named(const IfLevel& level, u32 position) { return (level.bits[position / 32] >> position % 32 & 1) != 0; }

static int addEntry(LIST* list, const CliAddr& entry) {
  auto* address = static_cast<CliAddr*>(mpuAlloc_(g_MsanMemPoolId, sizeof(CliAddr), __FILE__, __LINE__));
  if (address == nullptr) return -1;
  *address = entry;
  if (insert_sort_list(address, list, CliAddrFun) == 0) return 0;
  mpuFree(address);
  return -1;
}

// The entries of one slot.
static int addSlot(LIST* list, u16 slot, u32 levels, const IfLevel* records) {
  const auto level = static_cast<u16>(levels);
  if (levels == 1) return addEntry(list, {level, slot, 0, 0});
  for (u32 port = 0; port < records[1].positions; ++port) {
    if (!named(records[1], port)) continue;
    const auto portNo = static_cast<u16>(port + records[1].lowest);
    if (levels == 2) {
      if (addEntry(list, {level, slot, portNo, 0}) != 0) return -1;
      continue;
    }
    for (u32 sub = 0; sub < records[2].positions; ++sub) {
      if (!named(records[2], sub)) continue;
      if (addEntry(list, {level, slot, portNo, static_cast<u16>(sub + records[2].lowest)}) != 0) return -1;
    }
  }
  return 0;
}

int ParseInterface(const char* text, LIST* list) {
  IfLevel records[kLevels] = {{{}, 64, 1}, {{}, 64, 1}, {{}, 64, 0}};
  u32 levels = 0;
  if (list == nullptr || parseIfStr(text, &levels, records) != 0) {
    std::printf("unknown input interface\r");
    return -1;
  }
  const u32 controlUnit = kControlUnitPosition - records[0].lowest;
  for (u32 position = 0; position < records[0].positions; ++position) {
    if (position == controlUnit || !named(records[0], position)) continue;
    if (addSlot(list, static_cast<u16>(position + records[0].lowest), levels, records) != 0) return -1;
  }
  // The control unit's number is the highest, and so its entries come last.
  if (!named(records[0], controlUnit)) return 0;
  if (levels == 1) std::printf("enter in hcu slot.\r");
  return addSlot(list, kControlUnit, levels, records);
}

int CliInputConvertObjIndex(const char* text, LIST* list) {
  if (text == nullptr || list == nullptr) return -1;
  return ParseInterface(text, list);
}

int CliAddrFun(const void* left, const void* right) {
  const auto* a = static_cast<const CliAddr*>(left);
  const auto* b = static_cast<const CliAddr*>(right);
  if (a->slot != b->slot) return a->slot < b->slot ? -1 : 1;
  if (a->port != b->port) return a->port < b->port ? -1 : 1;
  return a->sub > b->sub ? 1 : -1;
}

int compare_adsl_slot_no(const void* left, const void* right) {
  if (left == nullptr || right == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "compare_adsl_slot_no,input parameter error!\r\n");
    return -1;
  }
  u16 slotA = 0, portA = 0, slotB = 0, portB = 0, type = 0;
  ObjIndexConvertSlotNoPort(&slotA, &portA, &type, static_cast<const ObjIndex*>(left));
  ObjIndexConvertSlotNoPort(&slotB, &portB, &type, static_cast<const ObjIndex*>(right));
  if (slotB != slotA) return slotB < slotA ? 1 : 0;
  return portB < portA ? 1 : 0;
}

// Puts a cell behind the last one that has to stay ahead of it. The lists are filled in their order nearly always, so
// the search from the tail ends at once.
template <class Ahead>
static int insertCell(void* data, LIST* list, Ahead ahead) {
  auto* cell = static_cast<ObjListCell*>(mpuAlloc_(g_MsanMemPoolId, sizeof(ObjListCell), __FILE__, __LINE__));
  if (cell == nullptr) return -1;
  cell->next = cell->previous = nullptr;
  cell->data = data;
  NODE* at = lstLast(list);
  while (at != nullptr && !ahead(dataOf<void>(at))) at = lstPrevious(at);
  lstInsert(list, at, cell);
  return 0;
}

int insert_sort_list(void* data, LIST* list, Comparator comparator) {
  if (data == nullptr || list == nullptr || comparator == nullptr) return -1;
  if (insertCell(data, list, [&](const void* other) { return comparator(data, other) >= 1; }) == 0) return 0;
  std::fprintf(stderr, "mallo erro\n");
  return -1;
}

int insert_sort_list_by_index(ObjIndex* object, LIST* list) {
  if (object == nullptr || list == nullptr) return -2;
  const auto ahead = [object](const void* data) {
    const auto* other = static_cast<const ObjIndex*>(data);
    if (other->addr[1] != object->addr[1]) return other->addr[1] < object->addr[1];
    return other->addr[2] < object->addr[2];
  };
  return insertCell(object, list, ahead) == 0 ? 0 : -27;
}

void delete_list_freedata(LIST* list, void (*each)(void* data, void* argument), void* argument) {
  if (list == nullptr) return;
  while (NODE* cell = lstFirst(list)) {
    void* data = dataOf<void>(cell);
    if (data != nullptr && each != nullptr) each(data, argument);
    lstDelete(list, cell);
    mpuFree(static_cast<ObjListCell*>(cell));
  }
}

void delete_common_list(LIST* list) {
  delete_list_freedata(
      list, [](void* data, void*) { mpuFree(data); }, nullptr);
}

void FreeTable(LIST* list) { delete_common_list(list); }

NODE* find_list_custom(const void* key, const LIST* list, Comparator comparator) {
  if (list == nullptr || comparator == nullptr) return nullptr;
  for (NODE* cell = lstFirst(list); cell != nullptr; cell = lstNext(cell)) {
    if (comparator(key, dataOf<void>(cell)) == 0) return cell;
  }
  return nullptr;
}

void* GetNextObj(NODE** cell) {
  if (cell == nullptr || *cell == nullptr) return nullptr;
  *cell = lstNext(*cell);
  return *cell != nullptr ? dataOf<void>(*cell) : nullptr;
}
