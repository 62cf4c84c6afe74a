#include "profile_kinds.h"

#include <algorithm>
#include <cstring>

#include "module_frames.h"

namespace msand {

namespace {

constexpr u16 kAllocate = 0xFFFF;  // as a new profile's number
constexpr u32 kNameBytes = 20;
constexpr u32 kToneBytes = 8;

#define VIEW(type, member) offsetof(type, member), sizeof(type::member)

// ATU-C transmits downstream. Its margins are those of the downstream, too.
// clang-format off
constexpr ProfileColumn kLineColumns[] = {
    {kDownRateMode, 0, 0, 26, 2, 1, 1, 3},
    {4, VIEW(StdAdslLinePrf, targetMarginDown), 40, 4, 1, 0, 310},
    {5, VIEW(StdAdslLinePrf, maxMarginDown), 72, 2, 10, 0, 310},
    {6, VIEW(StdAdslLinePrf, minMarginDown), 76, 2, 10, 0, 310},
    {11, VIEW(StdAdslLinePrf, minRateDown), 82, 4, 1000, 0, 100'000'000, Channel::fast, ASN_UNSIGNED},
    {12, VIEW(StdAdslLinePrf, minRateDown), 82, 4, 1000, 0, 100'000'000, Channel::interleaved, ASN_UNSIGNED},
    {15, VIEW(StdAdslLinePrf, maxInterleaveDelayDn), 50, 2, 1, 0, 63},
    {kUpRateMode, 0, 0, 24, 2, 1, 1, 3},
    {18, VIEW(StdAdslLinePrf, targetMarginUp), 46, 4, 1, 0, 310},
    {19, VIEW(StdAdslLinePrf, maxMarginUp), 74, 2, 10, 0, 310},
    {20, VIEW(StdAdslLinePrf, minMarginUp), 78, 2, 10, 0, 310},
    {25, VIEW(StdAdslLinePrf, minRateUp), 86, 4, 1000, 0, 100'000'000, Channel::fast, ASN_UNSIGNED},
    {26, VIEW(StdAdslLinePrf, minRateUp), 86, 4, 1000, 0, 100'000'000, Channel::interleaved, ASN_UNSIGNED},
    {29, VIEW(StdAdslLinePrf, maxInterleaveDelayUp), 52, 2, 1, 0, 63},
};
constexpr ProfileBound kLineBounds[] = {{72, 76}, {74, 78}};

constexpr ProfileColumn kAlarmColumns[] = {
    {2, VIEW(StdAlarmPrf, neLofs), 26, 4, 1, 0, 900},
    {3, VIEW(StdAlarmPrf, neLoss), 22, 4, 1, 0, 900},
    {4, VIEW(StdAlarmPrf, neLols), 42, 4, 1, 0, 900},
    {6, VIEW(StdAlarmPrf, neEs), 30, 4, 1, 0, 900},
    {12, VIEW(StdAlarmPrf, feLofs), 50, 4, 1, 0, 900},
    {13, VIEW(StdAlarmPrf, feLoss), 46, 4, 1, 0, 900},
    {14, VIEW(StdAlarmPrf, feLprs), 66, 4, 1, 0, 900},
    {15, VIEW(StdAlarmPrf, feEs), 54, 4, 1, 0, 900},
};
// clang-format on
#undef VIEW

}  // namespace

constexpr ProfileKind kLineProfiles{
    .table = "adslLineConfProfileTable",
    .number = 14,
    .statusColumn = 30,
    .columns = kLineColumns,
    .bounds = kLineBounds,
    .writeId = 34661,
    .deleteId = 34662,
    .mostId = 1023,
    .itemLength = 154,
    .tones = 80,
    .lineType = 28,
    .read = [](const StandardFunctions& functions, u16 id,
               ProfileView& view) { return functions.lineProfile(id, &view.line); },
    .next = [](const StandardFunctions& functions, u16 id,
               ProfileView& view) { return functions.nextLineProfile(id, &view.line); },
    .attached = [](const StandardFunctions& functions, u16 slot,
                   u16 port) { return functions.attachedLineProfile(slot, port); },
    .attach = [](const StandardFunctions& functions, u16 slot, u16 port,
                 u16 id) { return functions.attachLineProfile(slot, port, id); },
};

constexpr ProfileKind kAlarmProfiles{
    .table = "adslLineAlarmConfProfileTable",
    .number = 15,
    .statusColumn = 20,
    .columns = kAlarmColumns,
    .bounds = {},
    .writeId = 34668,
    .deleteId = 34669,
    .mostId = 20,
    .itemLength = 86,
    .tones = 0,
    .lineType = 0,
    .read = [](const StandardFunctions& functions, u16 id,
               ProfileView& view) { return functions.alarmProfile(id, &view.alarm); },
    .next = [](const StandardFunctions& functions, u16 id,
               ProfileView& view) { return functions.nextAlarmProfile(id, &view.alarm); },
    .attached = [](const StandardFunctions& functions, u16 slot,
                   u16 port) { return std::max(functions.attachedAlarmProfile(slot, port), 0); },  // -1: nobody did
    .attach = [](const StandardFunctions& functions, u16 slot, u16 port,
                 u16 id) { return functions.attachAlarmProfile(slot, port, id); },
};

const ProfileColumn* ProfileKind::find(oid column) const {
  const auto found = std::ranges::find(columns, column, &ProfileColumn::column);
  return found != columns.end() ? &*found : nullptr;
}

static std::string textOf(std::span<const u8> field) {
  return {field.begin(), std::find(field.begin(), field.end(), u8{0})};
}

std::string nameOf(const ProfileView& view) { return textOf(std::span(view.bytes).subspan(2, kNameBytes)); }

bool hasChannel(u32 lineType, Channel channel) {
  constexpr u32 kFastOnly = 2, kInterleavedOnly = 3, kEither = 4, kBoth = 5;
  if (channel == Channel::any || lineType == kEither || lineType == kBoth) return true;
  return lineType == (channel == Channel::fast ? kFastOnly : kInterleavedOnly);
}

// --- the module's messages

static u32 lengthOf(const ProfileKind& kind, std::span<const u8> from) {
  if (kind.tones == 0 || from.size() < kind.tones + 2u) return kind.itemLength;
  return kind.itemLength + kToneBytes * getNumber(&from[kind.tones], 2);
}

std::optional<StoredProfiles> readProfiles(const ProfileKind& kind) {
  const auto area = askModule(kind.writeId, {});
  if (!area || area->size() < 2) return std::nullopt;
  StoredProfiles all;
  std::span<const u8> rest = std::span(*area).subspan(2);
  for (u32 count = getNumber(area->data(), 2); count > 0; --count) {
    const u32 length = lengthOf(kind, rest);
    if (rest.size() < length) return std::nullopt;
    const u16 id = static_cast<u16>(getNumber(rest.data(), 2));
    std::string name = id == 0 ? std::string(kDefaultProfile) : textOf(rest.subspan(2, kNameBytes));
    all.try_emplace(std::move(name), StoredProfile{id, {rest.begin(), rest.begin() + length}});
    rest = rest.subspan(length);
  }
  return all;
}

bool writeProfile(const ProfileKind& kind, std::span<const u8> item) {
  std::vector<u8> area(2 + item.size());
  putNumber(area.data(), 2, 1);
  std::ranges::copy(item, area.begin() + 2);
  return tellModule(kind.writeId, area);
}

bool deleteProfile(const ProfileKind& kind, u16 id) {
  return tellModule(kind.deleteId, {0, 1, static_cast<u8>(id >> 8), static_cast<u8>(id)});
}

std::vector<u8> newItem(const StoredProfile& from, std::string_view name) {
  std::vector<u8> item = from.item;
  putNumber(item.data(), 2, kAllocate);
  std::fill_n(item.begin() + 2, kNameBytes, u8{0});
  std::copy_n(name.begin(), std::min<std::size_t>(name.size(), kNameBytes), item.begin() + 2);
  return item;
}

static u32 placeOf(const ProfileKind& kind, std::span<const u8> item, u16 at) {
  return kind.tones != 0 && at > kind.tones ? at + lengthOf(kind, item) - kind.itemLength : at;
}

u32 numberIn(const ProfileKind& kind, std::span<const u8> item, u16 at, u8 width) {
  return getNumber(&item[placeOf(kind, item, at)], width);
}

void putIn(const ProfileKind& kind, std::span<u8> item, const ProfileColumn& column, u32 number) {
  putNumber(&item[placeOf(kind, item, column.item)], column.itemWidth, number);
}

}  // namespace msand
