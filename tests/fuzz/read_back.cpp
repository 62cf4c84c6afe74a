#include "read_back.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>

#include "messages/decode.h"
#include "messages/named.h"

namespace fuzz {

namespace {

using messages::Json, messages::Road;

// What does not come back as it was set, and why that is as it should be. "*": the whole message is left out; "[]": an
// item may be missing from the answer.
struct Merge {
  std::string_view message, field, why;
};
constexpr Merge kMerges[] = {
    {"dslPairDeletion", "*", "what was set has gone"},
    {"cesService", "*", "a question of no port, or of one whose card is another one now, is refused"},
    {"voiceIp", "*", "what belongs to a mode or protocol that is not set is not stored"},
    {"voiceVlan", "*", "what belongs to a protocol that is not set is not stored"},
    {"potsFeed", "[]", "a slot that is given another card has other ports"},
    {"portVlan", "[]", "a line in packet mode has one row"},
    {"portVlan", "pvcIndex", "a line in packet mode has one row"},
    {"portVlan", "tls*", "counts while TLS is enabled"},
    {"portVlan", "trans*", "counts in a service that translates"},
    {"portVlan", "qinq*", "counts in a service that adds a tag"},
    {"macLimit", "[]", "a line in packet mode has one row"},
    {"macLimit", "pvcIndex", "a line in packet mode has one row"},
    {"portPolicy", "[]", "port 0, the slot as a whole, is a question for all of its ports"},
    {"pvcPolicy", "pvcIndex", "the place tells the PVC"},
    {"pvcPolicy", "[]", "an entry that binds nothing ends the list"},
    {"faxParameter", "ansNotify", "counts while events are notified"},
    {"faxParameter", "VBDEnable", "counts while events are notified"},
    {"sipAdvanced", "conferenceURI", "counts with a conference server"},
    {"sipServer", "heartbeatInterval", "counts with a heartbeat"},
    {"sipServer", "heartbeatTimeOuts", "counts with a heartbeat"},
    {"vdslGinpProfiles", "dnREIN*", "counts while REIN is enabled"},
    {"vdslGinpProfiles", "upREIN*", "counts while REIN is enabled"},
    {"dslPair", "slaveId", "goes to the card, and is not stored"},
    {"queueSchedule", "type", "the mode tells the type"},
    {"queueSchedule", "weight", "a strict queue has none"},
    {"stormSuppression", "pktType", "the place tells the type"},
    {"stormSuppression", "[]", "the port of an item is not read"},
    {"portIsolation", "[]", "the port of an item is not read"},
    {"rateLimitBinding", "[]", "a port that is let go has no profile to be told"},
};

bool fits(std::string_view field, std::string_view pattern) {
  return pattern.ends_with('*') ? field.starts_with(pattern.substr(0, pattern.size() - 1)) : field == pattern;
}

bool isMerged(const std::string& message, std::string_view field) {
  // A name that another profile has is not taken on.
  if (field == "name" && message.ends_with("Profiles")) return true;
  return std::ranges::any_of(kMerges,
                             [&](const Merge& one) { return one.message == message && fits(field, one.field); });
}

const std::vector<std::vector<const char*>> kKeys = {{"slot", "port"}, {"id"}};

std::string keyOf(const Json& item) {
  if (!item.is_object()) return "";
  for (const auto& names : kKeys)
    if (std::ranges::all_of(names, [&](const char* name) { return item.contains(name); }))
      return fmt::format("{} {}", item[names.front()].dump(), item[names.back()].dump());
  return "";
}

bool isUnnamed(std::string_view field) { return field.starts_with("reserved") || field == "envelope"; }

// Its name is its own, and some kinds keep all of it.
bool isFirstProfile(const Json& item) { return item.is_object() && item.contains("name") && item.value("id", 1) == 0; }

bool isOfSlots(std::string_view message) { return message == "stormSuppression" || message == "portIsolation"; }

// Names a list's items as a whole or twice, or leaves the choice to the node: no item of the answer belongs to it.
bool namesMany(const std::string& message, const Json& values) {
  for (const auto& list : values) {
    if (!list.is_array()) continue;
    std::set<std::string> keys;
    for (const Json& item : list) {
      const std::string key = isOfSlots(message) ? item["slot"].dump() : keyOf(item);
      if (key.find("\"all\"") != key.npos || key.find("\"allocate\"") != key.npos) return true;
      if (!key.empty() && !keys.insert(key).second) return true;
    }
  }
  return false;
}

class Comparison {
 public:
  explicit Comparison(const std::string& message) : message_(message) {}

  // Where they differ; empty: nowhere.
  std::string compare(const Json& set, const Json& got, const std::string& at) const {
    if (set.is_object() && got.is_object()) return compareMembers(set, got, at);
    if (set.is_array() && got.is_array()) return compareItems(set, got, at);
    return set == got ? "" : fmt::format("{} {}: set {}, answered {}", message_, at, set.dump(), got.dump());
  }

 private:
  std::string compareMembers(const Json& set, const Json& got, const std::string& at) const {
    for (const auto& [name, value] : set.items()) {
      if (isUnnamed(name) || !got.contains(name) || isMerged(message_, name)) continue;
      if (std::string why = compare(value, got[name], at + "." + name); !why.empty()) return why;
    }
    return "";
  }

  std::string compareItems(const Json& set, const Json& got, const std::string& at) const {
    for (std::size_t i = 0; i < set.size(); ++i) {
      const std::string place = fmt::format("{}[{}]", at, i), key = keyOf(set[i]);
      const Json* item = i < got.size() ? &got[i] : nullptr;
      if (!key.empty()) {
        const auto found = std::ranges::find_if(got, [&](const Json& one) { return keyOf(one) == key; });
        item = found == got.end() ? nullptr : &*found;
      }
      if (item == nullptr && isMerged(message_, "[]")) continue;
      if (item == nullptr) return fmt::format("{} {}: set, not answered", message_, place);
      if (isFirstProfile(set[i])) continue;
      if (std::string why = compare(set[i], *item, place); !why.empty()) return why;
    }
    return "";
  }

  const std::string& message_;
};

}  // namespace

std::string readBack(u16 id, messages::Bytes frame, const Ask& ask) {
  const messages::Book& book = messages::book();
  const messages::Message* const message = book.find(id);
  if (message == nullptr || message->find(Road::getReply) == nullptr || isMerged(message->name, "*")) return "";
  const messages::Layout* const layout = message->find(Road::set);
  if (layout == nullptr) return "";
  const messages::Decoded decoded = messages::decode(*message, *layout, frame);
  if (!decoded.problems.empty()) return "";
  const Json set = messages::toJson(decoded);
  if (namesMany(message->name, set)) return "";
  Json asked = set;  // its gaps are not the question's
  for (const auto& [name, value] : set.items())
    if (isUnnamed(name)) asked.erase(name);
  const std::vector<u8> reply = ask(id, messages::questionOf(*message, asked));
  if (reply.empty()) return "";
  if (messages::isRefusal(book, *message, Road::getReply, reply))
    return isMerged(message->name, "[]") ? "" : fmt::format("{}: set, and the question refused", message->name);
  const messages::Json got = messages::readReply(book, *message, Road::getReply, reply, Json::object());
  return Comparison(message->name).compare(set, got, "");
}

}  // namespace fuzz
