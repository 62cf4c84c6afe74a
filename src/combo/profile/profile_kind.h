#pragma once
// The frame of the DSL profile kinds. All of them are kept in the profile store, attached to ports by an attribute, and
// sent to cards in full for each port; what is particular to a kind stands in its row, and the roads here take it from
// there. Functions return 0 or -1 unless told otherwise; what failed is in the error record, with code 0 when the store
// or the pool's lists failed.

#include "combo/profile/profile_line.h"
#include "common/memory.h"
#include "common/msan_obj.h"
#include "common/semaphore_hold.h"
#include "platform/command_line.h"
#include "platform/lists.h"
#include "platform/profile_store.h"

inline constexpr u16 kAllocateId = 0xFFFF;
inline constexpr u16 kNoCount = 0xFFFF;
inline constexpr u16 kDefaultProfile = 0;

// Codes that all kinds have.
enum ProfileError : u16 {
  kTooManyItems = 65535,       // -1, with the count in 4 bytes
  kSlotNotAuthorised = 65533,  // -3, with the slot in 2 bytes
  kTooManyProfiles = 65527,    // -9, with the count in 2 bytes
  kIllegalProfileId = 65526,   // -10
  kNoFreeProfileId = 65525,    // -11
  kNoSuchProfile = 65522,      // -14, with the id in 2 bytes
  kProfileInUse = 65521,       // -15, with id and name
  kDefaultNotAllowed = 65520,  // -16
  kRequestTooShort = 65518,    // -18
  kNoMemory = 65517,           // -19
};

// --- Records ---

#pragma pack(push, 1)
// What all working records begin with; the item stands behind it.
struct ProfileHead {
  u8 status;  // 1 once the record carries a resolved id
  u8 reserved[2];
  u16 requestId;  // kAllocateId, 0 (not written), or an id
  u16 prfId;
  char name[23];  // 20 characters at most
};
template <class Item>
struct ProfileRecord : ProfileHead {
  Item item;
};
#pragma pack(pop)
static_assert(sizeof(ProfileHead) == 30);

inline constexpr u32 kLargestItem = 688;
struct AnyProfile : ProfileHead {
  u8 item[kLargestItem];
};

inline u8* itemOf(ProfileHead* record) { return reinterpret_cast<u8*>(record) + sizeof(ProfileHead); }
inline const u8* itemOf(const ProfileHead* record) { return reinterpret_cast<const u8*>(record) + sizeof(ProfileHead); }

// An entry of a list of ports that take a profile. From the pool.
struct AdslPortPrfNode {
  ObjIndex port;
  u16 prfId;
};

// --- Kinds ---

// Texts that differ from kind to kind. Behind a complaint follows a code or the line end.
struct ProfileTexts {
  const char* idRange;
  const char* addFailed;
  const char* deleteFailedById;
  const char* deleteFailedByName;
  const char* deleteDefault = "Default profile cannt be deleted";
  const char* readFailedById;
  const char* readFailedByName;
  const char* flushFailed = nullptr;  // null: the kind has no such command
  const char* flushName;              // names of functions in log lines
  const char* writeName;
  const char* selectDefault = "Default profile cant be modified!";
  const char* selectFailedById;
  const char* selectFailedByName;
  const char* attachFailed;
  const char* badInterface = "Please input correct ifStr";
  const char* portColumn = "port_no";
  const char* printTitle = nullptr;  // ahead of the kind's profiles in the running configuration
};

// What a kind brings along that keeps its profiles in a table of the database.
struct OwnTable {
  bool (*exists)(u16 id);
  int (*read)(SnmpErrInfo* err, ProfileHead* record, u16 id);
  int (*idByName)(SnmpErrInfo* err, u16* id, const char* name);
  int (*remove)(SnmpErrInfo* err, const u16* ids, u16 count);
  int (*send)(LIST* nodes, u32 count);  // to the cards
};

struct ProfileKind {
  u16 writeId;  // also the kind's number
  u16 attachId;
  u16 mostId;
  int loggedIds = 0;  // that ids should be less than, as the log has it of another; 0: nothing is logged
  u32 attribute;      // of a port: the id of its profile
  std::span<const u16> portTypes;
  const ProfileShape& shape;
  const char* defaultName;
  const char* word;                   // in commands
  const char* attachWord;             // in the running configuration
  u16 attachTail;                     // bytes behind the id in an item of an attachment message
  i16& type;                          // handle of the store, -1 ahead of the registration
  i16& selected;                      // the profile that edit commands act on, -1: none
  const SemaphoreId* lock = nullptr;  // null: none
  bool reportsAttachment = false;     // an attach command reports the change for the node, too
  bool editsUnchanged = true;         // an edit that changes no number is taken over and checked, too
  const ProfileTexts& texts;
  std::span<const ProfileLine> lines = {};  // of its edit commands

  int (*write)(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count);  // one of the batches
  int (*check)(SnmpErrInfo* err, const ProfileHead* record) = nullptr;  // null: the fields in order
  void (*setDefaults)(void* item) = nullptr;
  void (*show)(Vty* vty, const void* item) = nullptr;        // null: the fields in order
  void (*printLines)(Vty* vty, const void* item) = nullptr;  // null: `lines`
  u16 (*cardMessage)(u16 slot) = nullptr;                    // null: the attachment's id

  const OwnTable* table = nullptr;  // null: the profile store
  bool reportsFailure = true;       // a manager's batch that failed is reported as well
  bool checksIdLast = false;        // behind the values of its record, not while the request is read

  u16 deleteId() const { return static_cast<u16>(writeId + 1); }
  u32 recordSize() const { return static_cast<u32>(sizeof(ProfileHead)) + shape.itemSize; }
  u32 count() const { return u32{mostId} + 1; }
};

// Holds the kind's semaphore, if it has one.
class ProfileLock : SemaphoreHold {
 public:
  explicit ProfileLock(const ProfileKind& kind) : SemaphoreHold(kind.lock) {}
};

// --- Profiles (profile_store.cpp) ---

int registerKind(const ProfileKind& kind);
// For install_offers, with a kind as its context. A kind of the profile store is installed when it is registered.
CommandOfferList offerKind;
inline i16 storeId(u16 id) { return static_cast<i16>(id); }  // an id as the store's calls take it

int checkIdLegal(const ProfileKind& kind, SnmpErrInfo* err, u32 id);
int checkIdLegalExp0(const ProfileKind& kind, SnmpErrInfo* err, u32 id);  // refuses the default profile, too
bool profileExists(const ProfileKind& kind, u16 id);
int readProfileName(const ProfileKind& kind, char* name, u16 id);  // to a field of 23 bytes
int readProfile(const ProfileKind& kind, ProfileHead* record, u16 id);
int getProfile(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u16 id);  // with a check of the id
int idByName(const ProfileKind& kind, const char* name, u16* id);
int storeProfile(const ProfileKind& kind, const ProfileHead* record);  // the item of one that exists
int selectProfile(const ProfileKind& kind, u16 id);
// Reads the selected profile; without one a line on standard output.
int readSelected(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record);
int checkProfile(const ProfileKind& kind, SnmpErrInfo* err, const ProfileHead* record);
// Lets `change` edit the item of the selected profile and stores it; checks it ahead of that if `change` gives true.
template <class Change>
int editSelected(const ProfileKind& kind, SnmpErrInfo* err, Change change) {
  *err = {};
  AnyProfile record;
  if (readSelected(kind, err, &record) != 0) return -1;
  if (change(itemOf(&record)) && checkProfile(kind, err, &record) != 0) return -1;
  return storeProfile(kind, &record);
}

// Fills the detail that goes with a record: id and name.
void setProfileDetail(SnmpErrInfo* err, u16 id, const char* name);

// An item on the wire: id, name, body. `length` gets what it takes.
void encodeProfile(const ProfileKind& kind, const ProfileHead* record, Writer& to);
int decodeProfile(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* record, u32* length, WireIn from);
// Count and items of all profiles.
int encodeAll(const ProfileKind& kind, Writer& to);

int printProfiles(const ProfileKind& kind, Vty* vty);

// --- Batches (profile_batch.cpp) ---

void fillDefaults(const ProfileKind& kind, ProfileHead* record);
int createDefault(const ProfileKind& kind);
// Checks all records, then stores them, then sends those that existed to the ports that use them. What was stored ahead
// of a failure stays and is sent. The records follow each other; kNoCount does nothing.
int writeBatch(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count);
// Checks and stores one record after the other, and leaves it to the store to refuse a name: what is ahead of a bad
// record stays. Then as above.
int writeEach(const ProfileKind& kind, SnmpErrInfo* err, ProfileHead* records, u16 count);
// Checks all ids, then deletes.
int deleteBatch(const ProfileKind& kind, SnmpErrInfo* err, const u16* ids, u16 count);

// --- Ports (profile_attach.cpp) ---

// Lists hold AdslPortPrfNode in the order of slot and port.
int addPortNode(LIST* list, SnmpErrInfo* err, const ObjIndex& port, u16 id);
// Stores the ids for the ports, then sends.
int attachPorts(const ProfileKind& kind, SnmpErrInfo* err, LIST* list, u16 count);
// One message for each slot.
int sendToCards(const ProfileKind& kind, LIST* list, u32 count);
// Sends a profile to all ports that use it; -1 without any port of the kind.
int flushProfile(const ProfileKind& kind, SnmpErrInfo* err, u32 id);
// Sends all ports of a slot their profiles.
int hotplugProfiles(const ProfileKind& kind, u16 slot);
// 1 or 0; -1 for an id that can't be attached.
int isAttached(const ProfileKind& kind, SnmpErrInfo* err, u32 id);
int clearAttached(const ProfileKind& kind, u16 slot);
int printAttached(const ProfileKind& kind, Vty* vty);
// The ports of the kind under slot 0 (all) or a slot, as ObjIndex.
int walkPorts(std::span<const u16> types, u16 slot, LIST* list);
// The port's profile, 0 while it has none; negative on failure.
int attachedProfile(const ProfileKind& kind, const ObjIndex* port, u16* id);

// --- Messages (profile_snmp.cpp) ---

// Slot and port of an item as an object; port 65535 is the slot itself.
int get_adsl_obj_lable(SnmpErrInfo* err, ObjIndex* object, WireIn item);
bool is_item_legal(u32 count);

int snmpWriteProfiles(const ProfileKind& kind, const SnmpCall& call);
int snmpDeleteProfiles(const ProfileKind& kind, const SnmpCall& call);
int snmpReadProfiles(const ProfileKind& kind, const SnmpCall& call);
// The same for a request that must be the envelope and nothing else.
int snmpReadProfilesBare(const ProfileKind& kind, const SnmpCall& call);
int snmpAttachPorts(const ProfileKind& kind, const SnmpCall& call);
// All ports of the kind, of a slot, or those named.
int snmpReadPorts(const ProfileKind& kind, const SnmpCall& call);

struct ProfileMessage {
  const char* name;         // in the log
  const char* description;  // in the registry
  u16 id;
  SnmpSetHandler* set;
  SnmpGetHandler* get;
  u32 mostReply;
};
// Registers all; a failure goes to the log.
void registerProfileMessages(std::span<const ProfileMessage> messages);
// What a read of all attachments takes.
u32 attachmentReply(const ProfileKind& kind);
// The ports of a read's request: all of the types, those of a slot, or those named. -1 with a code.
int askedPorts(std::span<const u16> types, const SnmpCall& call, SnmpErrInfo* err, LIST* ports);
// A reply's head, and its end. 0.
Writer beginReply(const SnmpCall& call);
int endReply(const SnmpCall& call, const Writer& to);

// The parts of an attachment read.
int encodePorts(const ProfileKind& kind, LIST* list, Writer& to);

// --- Commands (profile_cli.cpp) ---

int cliAddProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliDeleteProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliShowProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliFlushProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliSelectProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliAttachProfile(const ProfileKind& kind, Vty* vty, int argc, char** argv);
int cliShowAttached(const ProfileKind& kind, Vty* vty, int argc, char** argv);

// Edits what the arguments of a line name in the selected profile.
int cliEditProfile(const ProfileKind& kind, const ProfileLine& line, Vty* vty, int argc, char** argv);
// The end of an edit command: a complaint with the code, or a report.
int finishEdit(const ProfileKind& kind, Vty* vty, int result, const SnmpErrInfo& err);

// Handlers.
using ProfileRoad = int(const ProfileKind& kind, Vty* vty, int argc, char** argv);
template <const ProfileKind& kind, ProfileRoad* road>
int profileCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return road(kind, vty, argc, argv);
}
template <const ProfileKind& kind, u32 line>  // of the kind's lines
int editCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return cliEditProfile(kind, kind.lines[line], vty, argc, argv);
}

// The rows of the commands that all VDSL kinds have.
#define PROFILE_COMMANDS(kind, word, what)                                                                             \
  command(CONFIG_NODE, "add " word " profile <name> {id <id>}*1", profileCommand<kind, cliAddProfile>,                 \
          "make a " what " profile"),                                                                                  \
      command(CONFIG_NODE, "delete " word " profile [id|name] <idOrName>", profileCommand<kind, cliDeleteProfile>,     \
              "delete a " what " profile"),                                                                            \
      command(CONFIG_NODE, "show " word " profile [id|name|all] {<idOrName>}*1", profileCommand<kind, cliShowProfile>, \
              what " profiles"),                                                                                       \
      command(CONFIG_NODE, "attach " word " profile [id|name] <idOrName> interface <ifStr>",                           \
              profileCommand<kind, cliAttachProfile>, "give ports a " what " profile"),                                \
      command(CONFIG_NODE, "show " word " profile attach interface <ifStr>", profileCommand<kind, cliShowAttached>,    \
              what " profiles of ports"),                                                                              \
      command(CONFIG_NODE, "set " word " profile [id|name] <idOrName>", profileCommand<kind, cliSelectProfile>,        \
              "select a " what " profile")

// The id of a profile that is named by its name. -1 with a line on the terminal.
int findByName(const ProfileKind& kind, Vty* vty, const char* name, u16* id);
// The complaint about an interface string. -1.
int complainInterface(const ProfileKind& kind, Vty* vty);

#define PROFILE_HANDLER(name, road, kind) \
  static int name(const CommandElement*, Vty* vty, int argc, char** argv) { return road(kind, vty, argc, argv); }

// The number at the front of a text, as strtoul reads it, held at 32 bits.
std::optional<u32> numberOf(const char* text);
// Prints a complaint and gives -1.
int complain(Vty* vty, const char* text);
int complain(Vty* vty, const char* text, u16 code, const char* behind = "");
