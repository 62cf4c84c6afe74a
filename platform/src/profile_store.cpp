#include "platform/profile_store.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>
#include <string_view>

#include "host/profile_store.h"
#include "platform/common_profile_store.h"

namespace {

constexpr i16 kRefused = -1;

struct Profile {
  std::string name;
  std::vector<u8> item;
};

struct Kind {
  u16 itemSize = 0;
  std::vector<std::optional<Profile>> profiles;  // by id
  std::map<std::string, i16, std::less<>> ids;   // by name; none where names need not differ
  std::size_t lowestFree = 0;                    // no id below it is free
  bool namesShared = false;

  Profile* find(i16 id) {
    if (id < 0 || static_cast<std::size_t>(id) >= profiles.size()) return nullptr;
    auto& place = profiles[static_cast<std::size_t>(id)];
    return place.has_value() ? &*place : nullptr;
  }
};

std::mutex mutex;
u64 changes = 0;
std::vector<Kind>& kinds() {
  static std::vector<Kind> all;
  return all;
}

Kind* findKind(i16 type) {
  return type >= 0 && static_cast<std::size_t>(type) < kinds().size() ? &kinds()[static_cast<std::size_t>(type)]
                                                                      : nullptr;
}

std::string_view nameOf(const char* name) { return {name, strnlen(name, kProfileNameBytes)}; }

// Calls `use` with the kind and the profile, under the lock.
template <class Use>
i16 withProfile(i16 type, i16 id, Use use) {
  const std::lock_guard lock(mutex);
  Kind* kind = findKind(type);
  Profile* profile = kind != nullptr ? kind->find(id) : nullptr;
  return profile != nullptr ? use(*kind, *profile) : kRefused;
}

i16 storeItem(Profile& profile, const void* data, u16 size) {
  ++changes;
  const u8* from = static_cast<const u8*>(data);
  profile.item.assign(from, from + size);
  return 0;
}

}  // namespace

i16 prfRegNewType(i16 type, u16 profiles, u16 items, u16 itemSize) {
  const std::lock_guard lock(mutex);
  if (findKind(type) != nullptr) return type;
  if (profiles == 0 || profiles > 0x7fff || items != 1 || itemSize == 0 || kinds().size() == 0x7fff) return kRefused;
  Kind& kind = kinds().emplace_back();
  kind.itemSize = itemSize;
  kind.profiles.resize(profiles);
  return static_cast<i16>(kinds().size() - 1);
}

i16 prfCreate(i16 type, const char* name, i16 id) {
  const std::lock_guard lock(mutex);
  Kind* kind = findKind(type);
  if (kind == nullptr || name == nullptr || id < 0 || static_cast<std::size_t>(id) >= kind->profiles.size() ||
      kind->find(id) != nullptr || !kind->ids.emplace(nameOf(name), id).second)
    return kRefused;
  ++changes;
  kind->profiles[static_cast<std::size_t>(id)] = Profile{std::string(nameOf(name)), {}};
  return 0;
}

i16 prfAddItem(i16 type, i16 id, i16 item, const void* data, u16 size) {
  return withProfile(type, id, [=](const Kind& kind, Profile& profile) {
    if (item != 0 || data == nullptr || size != kind.itemSize || !profile.item.empty()) return kRefused;
    return storeItem(profile, data, size);
  });
}

i16 prfGetItem(void* to, u16* size, i16 type, i16 id, i16 item) {
  return withProfile(type, id, [=](const Kind& kind, const Profile& profile) -> i16 {
    if (item != 0 || to == nullptr || size == nullptr || *size < kind.itemSize || profile.item.empty()) return kRefused;
    std::memcpy(to, profile.item.data(), kind.itemSize);
    *size = kind.itemSize;
    return 0;
  });
}

i16 prfModifyItem(i16 type, i16 id, i16 item, const void* data, u16 size) {
  return withProfile(type, id, [=](const Kind& kind, Profile& profile) {
    if (item != 0 || data == nullptr || size != kind.itemSize || profile.item.empty()) return kRefused;
    return storeItem(profile, data, size);
  });
}

i16 prfDel(i16 type, i16 id) {
  return withProfile(type, id, [=](Kind& kind, const Profile& profile) -> i16 {
    ++changes;
    kind.ids.erase(profile.name);
    kind.profiles[static_cast<std::size_t>(id)].reset();
    kind.lowestFree = std::min(kind.lowestFree, static_cast<std::size_t>(id));
    return 0;
  });
}

i16 prfGetFreeId(i16 type) {
  const std::lock_guard lock(mutex);
  Kind* kind = findKind(type);
  if (kind == nullptr) return kRefused;
  std::size_t& at = kind->lowestFree;
  while (at < kind->profiles.size() && kind->profiles[at].has_value()) ++at;
  return at < kind->profiles.size() ? static_cast<i16>(at) : kRefused;
}

i16 prfIsIdUsed(i16 type, i16 id) {
  return withProfile(type, id, [](const Kind&, const Profile&) -> i16 { return 1; }) == 1 ? 1 : 0;
}

i16 prfIsNameExist(i16 type, const char* name) { return prfGetPrfIdByName(type, name) >= 0 ? 1 : 0; }

i16 prfGetPrfIdByName(i16 type, const char* name) {
  const std::lock_guard lock(mutex);
  Kind* kind = findKind(type);
  if (kind == nullptr || name == nullptr) return kRefused;
  const auto found = kind->ids.find(nameOf(name));
  if (found != kind->ids.end()) return found->second;
  if (!kind->namesShared) return kRefused;
  const auto hasName = [name](const std::optional<Profile>& profile) {
    return profile && profile->name == nameOf(name);
  };
  const auto at = std::ranges::find_if(kind->profiles, hasName);
  return at != kind->profiles.end() ? static_cast<i16>(at - kind->profiles.begin()) : kRefused;
}

i16 prfGetNameByPrfId(char* to, u8* capacity, i16 type, i16 id) {
  return withProfile(type, id, [=](const Kind&, const Profile& profile) -> i16 {
    if (to == nullptr || capacity == nullptr || *capacity < profile.name.size()) return kRefused;
    std::memset(to, 0, *capacity);
    std::memcpy(to, profile.name.data(), profile.name.size());
    *capacity = static_cast<u8>(profile.name.size());
    return 0;
  });
}

i16 prfNameModify(i16 type, const char* name, i16 id) {
  return withProfile(type, id, [=](Kind& kind, Profile& profile) -> i16 {
    if (name == nullptr) return kRefused;
    const std::string_view wanted = nameOf(name);
    if (wanted == profile.name) return 0;
    if (!kind.ids.emplace(wanted, id).second) return kRefused;
    ++changes;
    kind.ids.erase(profile.name);
    profile.name = wanted;
    return 0;
  });
}

// --- Profiles whose names need not differ ---

int init_comm_profile_type(CommProfile* profile) {
  if (profile == nullptr || profile->storedSize != profile->recordSize) return kRefused;
  const i16 type = prfRegNewType(profile->type, profile->ids, profile->items, profile->recordSize);
  if (type < 0) return kRefused;
  const std::lock_guard lock(mutex);
  findKind(type)->namesShared = true;
  profile->type = type;
  return 0;
}

int is_comm_profile_exist(const CommProfile* profile) {
  return profile != nullptr && profile->id != 0 ? prfIsIdUsed(profile->type, static_cast<i16>(profile->id)) : 0;
}

int find_comm_profile_by_id(CommProfile* profile) {
  if (profile == nullptr || profile->data == nullptr || profile->id == 0) return kRefused;
  return withProfile(profile->type, static_cast<i16>(profile->id), [=](const Kind&, const Profile& found) -> i16 {
    std::memcpy(profile->data, found.item.data(), found.item.size());
    std::memset(profile->name, 0, sizeof profile->name);
    std::memcpy(profile->name, found.name.data(), found.name.size());
    return 0;
  });
}

int get_comm_profile_max_id(const CommProfile* profile) {
  const std::lock_guard lock(mutex);
  const Kind* kind = profile != nullptr ? findKind(profile->type) : nullptr;
  if (kind == nullptr) return 0;
  std::size_t id = kind->profiles.size() - 1;
  while (id > 0 && !kind->profiles[id].has_value()) --id;
  return static_cast<int>(id);
}

int add_comm_profile_base(const CommProfile* profile) {
  const std::lock_guard lock(mutex);
  Kind* kind = profile != nullptr ? findKind(profile->type) : nullptr;
  if (kind == nullptr || profile->data == nullptr || profile->id == 0 || profile->id >= kind->profiles.size()) {
    return kRefused;
  }
  auto& place = kind->profiles[profile->id];
  place = Profile{std::string(nameOf(profile->name)), {}};
  return storeItem(*place, profile->data, kind->itemSize);
}

int del_comm_profile_base(const CommProfile* profile) {
  if (is_comm_profile_exist(profile) != 1 || (profile->isBound != nullptr && profile->isBound(profile) == 1)) {
    return kRefused;
  }
  return prfDel(profile->type, static_cast<i16>(profile->id));
}

namespace host {

u64 profileChanges() {
  const std::lock_guard lock(mutex);
  return changes;
}

bool listProfiles(i16 type, std::vector<StoredProfile>& profiles) {
  const std::lock_guard lock(mutex);
  Kind* kind = findKind(type);
  if (kind == nullptr) return false;
  for (std::size_t id = 0; id < kind->profiles.size(); ++id) {
    const auto& profile = kind->profiles[id];
    if (profile.has_value()) profiles.push_back({static_cast<i16>(id), profile->name, profile->item});
  }
  return true;
}

void clearProfiles() {
  const std::lock_guard lock(mutex);
  kinds().clear();
}

}  // namespace host
