#pragma once
// The profiles that standard MIBs know, RFC 2662's. What managers read comes from the module's functions. What they
// write goes into the profile as it is stored, which a message of the module gives and takes whole: the functions that
// write would reset what their views do not hold.

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "library.h"
#include "standard_functions.h"

namespace msand {

union ProfileView {
  StdAdslLinePrf line;
  StdAlarmPrf alarm;
  u8 bytes[sizeof(StdAdslLinePrf)];  // both begin with number and name
};

enum class Channel : u8 { any, fast, interleaved };

// The columns that the view lacks.
inline constexpr oid kDownRateMode = 2, kUpRateMode = 16;

// A column: where the view has its number, and where an item of the message has it.
struct ProfileColumn {
  oid column = 0;
  u16 view = 0;
  u8 viewWidth = 0;  // 0: the view lacks it
  u16 item = 0;
  u8 itemWidth = 0;
  u32 unit = 1;  // of managers, in one of the node
  u32 least = 0, most = 0;
  Channel channel = Channel::any;
  u8 type = ASN_INTEGER;
};

// Two numbers of an item, of which the second must not be above the first.
struct ProfileBound {
  u16 most = 0, least = 0;
};

struct StoredProfile {
  u16 id = 0;
  std::vector<u8> item;
};
// By the names that managers use. Of two profiles with one name the lower number has it.
using StoredProfiles = std::map<std::string, StoredProfile, std::less<>>;

struct ProfileKind {
  const char* table;
  oid number;  // of the table, in the MIB
  oid statusColumn;
  std::span<const ProfileColumn> columns;
  std::span<const ProfileBound> bounds;
  u16 writeId, deleteId;
  u16 mostId;
  u32 itemLength;
  u16 tones;     // where an item counts the parts of 8 bytes that stand behind that count; 0: it has none
  u16 lineType;  // where an item has it; 0: channels do not matter
  int (*read)(const StandardFunctions& functions, u16 id, ProfileView& view);
  int (*next)(const StandardFunctions& functions, u16 id, ProfileView& view);
  int (*attached)(const StandardFunctions& functions, u16 slot, u16 port);  // an id, or -1
  int (*attach)(const StandardFunctions& functions, u16 slot, u16 port, u16 id);

  const ProfileColumn* find(oid column) const;
};
extern const ProfileKind kLineProfiles, kAlarmProfiles;

inline constexpr std::string_view kDefaultProfile = "DEFVAL";
std::string nameOf(const ProfileView& view);
bool hasChannel(u32 lineType, Channel channel);

// --- the module's messages

// All profiles; none if the module does not give them.
std::optional<StoredProfiles> readProfiles(const ProfileKind& kind);
bool writeProfile(const ProfileKind& kind, std::span<const u8> item);
bool deleteProfile(const ProfileKind& kind, u16 id);

// The item of a new profile, made of the default one.
std::vector<u8> newItem(const StoredProfile& from, std::string_view name);
u32 numberIn(const ProfileKind& kind, std::span<const u8> item, u16 at, u8 width);
void putIn(const ProfileKind& kind, std::span<u8> item, const ProfileColumn& column, u32 number);

}  // namespace msand
