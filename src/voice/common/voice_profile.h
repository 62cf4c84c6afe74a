#pragma once
// The road of the profiles that POTS ports use: a table of ten rows, ids 0 to 9, of which 0 is "Default" and can't be
// changed. A profile without a name does not exist for an operator. Whatever changes, the NGN side gets all that have
// one. A port cites a profile by its id; what is cited can't be deleted.
//
// A kind of profile is a row. Where the two kinds differ in the order of report and message, the row says so.

#include "voice/common/voice_item.h"

inline constexpr u16 kProfiles = 10;
inline constexpr u32 kProfileName = 20;  // bytes

// What every record begins with, in memory and on the wire.
struct VoiceProfileHead {
  u16 id = 0;
  char name[kProfileName] = {};  // full, it has no end
};

// When a changed table is reported: ahead of the message, whether it goes or not, or behind one that went.
enum class Report : u8 { first, whenSent };

struct VoiceProfiles {
  VoiceItem item;  // record, table and messages; its fields are id, name and the others, its check that of the others
  u16 deleteId;
  const char* snmpDelete;  // the step of its name
  const char* noun;        // "the <noun> 0 is not configurable"
  const char* nameNoun;    // "the <nameNoun> name is NULL"
  // The name of a fresh profile; null: none.
  void (*freshName)(u16 id, char* name) = nullptr;
  u16 blankDetail = 0;  // bytes of the name that are told with a blank in it
  u32 cited;            // where a port's record has the id
  Report report;
  int (*send)(u32 id, const LIST* list) = nullptr;  // null: straight to the NGN side
  bool deletionToCard = false;                      // the message behind a manager's delete goes to a card
  bool reportsOrders;                               // a command's delete, distribution and erasing are reported, too
  bool defaultDeleteRefused;                        // a delete command by id 0 does not reach the check
  void (*show)(Vty* vty, const void* profile);      // below its title
  const char* title;
  u32 dashes;

  Where at(const char* step) const { return item.at(step); }
};

// --- Steps ------------------------------------------------------------------------------------------------------

// 0 or kStoreFailed.
int loadProfile(const VoiceProfiles& kind, u16 id, void* profile);
// By its name, of which 20 bytes count. 0 or -1.
int findProfile(const VoiceProfiles& kind, const char* name, void* profile);
// 1 if the profile has a name (0 always has), 0 if not, -1 if it can't be read.
int isValidProfile(const VoiceProfiles& kind, u16 id);
// Gives the profile its first values; that is its deletion, too.
int initProfile(const VoiceProfiles& kind, u16 id);
int initProfiles(const VoiceProfiles& kind);
// A node for each profile with a name.
int namedProfiles(const VoiceProfiles& kind, LIST* list);
// The ids that ports cite, each once, without 0. 0 or -1.
int citedProfiles(const VoiceProfiles& kind, u16 (&ids)[kProfiles], u16* count);

int checkProfile(const VoiceProfiles& kind, const void* profile, SnmpErrInfo* err);
// 1 with the first id whose name is there twice: in the list, or among the profiles that are not in it; 0; -1.
int isNameDuplicate(const VoiceProfiles& kind, LIST* list, u16* id);
int checkDelete(const VoiceProfiles& kind, u16 id, SnmpErrInfo* err);

// --- Roads ------------------------------------------------------------------------------------------------------

int snmpSet(const VoiceProfiles& kind, const SnmpCall& call);
int snmpGet(const VoiceProfiles& kind, const SnmpCall& call);
int snmpDelete(const VoiceProfiles& kind, const SnmpCall& call);
// A command's change of one profile: -1 while nothing is stored, behind the store 0, and a failure shows in `err`
// alone.
int distributeProfile(const VoiceProfiles& kind, const void* profile, SnmpErrInfo* err);
int distributeProfiles(const VoiceProfiles& kind);  // 0 or -1
int eraseProfiles(const VoiceProfiles& kind);

// A set command: its profile by "id" or "name", which must have a name already. 0, or -1 behind a line that says why.
int chooseProfile(Vty* vty, const VoiceProfiles& kind, char** argv, void* profile);
// From the changed record to the result line, "set <noun> <id> <done> successfully(<code>)."; `notDone` in a failed
// one.
int configureProfile(Vty* vty, const VoiceProfiles& kind, const void* profile, const char* done,
                     const char* notDone = nullptr);
// The commands "set ... <id> name <name>", "show ...", "delete ..." and "[distribute|erase] ...".
int nameProfile(Vty* vty, const VoiceProfiles& kind, int argc, char** argv, const char* done);
int showProfiles(Vty* vty, const VoiceProfiles& kind, int argc, char** argv);
int deleteProfile(Vty* vty, const VoiceProfiles& kind, int argc, char** argv);
int distributeEraseProfiles(Vty* vty, const VoiceProfiles& kind, int argc, char** argv);

// A list for install_offers, with the kind as its context.
CommandOfferList offerProfiles;

// Each profile with a name goes to `print`; 0, or -1 when one can't be read.
int forEachNamed(const VoiceProfiles& kind, Vty* vty, void (*print)(Vty* vty, const void* profile));

template <const VoiceProfiles& kind, int (*Road)(Vty*, const VoiceProfiles&, int, char**)>
int profileCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return Road(vty, kind, argc, argv);
}
template <const VoiceProfiles& kind>
int profileSet(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpSet(kind, {id, nullptr, data, length, reply, replyLen});
}
template <const VoiceProfiles& kind>
int profileGet(u16 id, u8* last, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpGet(kind, {id, last, data, length, reply, replyLen});
}
template <const VoiceProfiles& kind>
int profileDelete(u16 id, u8, u8* data, i32 length, u8* reply, u32* replyLen, void*, void*) {
  return snmpDelete(kind, {id, nullptr, data, length, reply, replyLen});
}
// The two messages of a kind.
template <const VoiceProfiles& kind>
void registerProfiles(u32 mostReply, const char* setText, const char* deleteText) {
  constexpr u32 kDeleteReply = 32;
  registerMessage({kind.item.id, {0, 0}, profileSet<kind>, profileGet<kind>, mostReply, setText});
  registerMessage({kind.deleteId, {0, 0}, profileDelete<kind>, nullptr, kDeleteReply, deleteText});
}
