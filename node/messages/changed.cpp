#include "changed.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <tuple>

#include "decode.h"
#include "json.h"

namespace messages {

namespace {

using Receiver = std::tuple<Road, u16, u16>;
Receiver receiverOf(const StateMessage& message) { return {message.road, message.slot, message.id}; }

// A message's values, if it decodes whole and its values make it again.
Json valuesOf(const StateMessage& message, const Layout*& layout) {
  const Message* const described = book().find(message.id);
  layout = described == nullptr ? nullptr : layoutOf(book(), *described, message.road, message.bytes);
  if (layout == nullptr || !lostInJson(book(), message.road, message.id, message.bytes).empty()) return nullptr;
  return toJson(decode(*described, *layout, message.bytes));
}

// What was told to one receiver: whole messages, and the items of lists under their names.
struct ToldBefore {
  std::set<std::vector<u8>> whole;
  std::set<std::string> items;
};

std::string itemKey(const std::string& list, const Json& item) { return list + ' ' + item.dump(); }

void note(ToldBefore& told, const StateMessage& message) {
  told.whole.insert(message.bytes);
  const Layout* layout = nullptr;
  const Json values = valuesOf(message, layout);
  if (!values.is_object()) return;
  for (const auto& [name, value] : values.items())
    if (value.is_array())
      for (const Json& item : value) told.items.insert(itemKey(name, item));
}

// Takes the items off that were told. False: there is nothing to choose from.
bool leaveNew(Json& values, const ToldBefore& told) {
  bool lists = false;
  std::size_t left = 0;
  for (auto& [name, value] : values.items()) {
    if (!value.is_array()) continue;
    lists = true;
    Json kept = Json::array();
    for (Json& item : value)
      if (!told.items.contains(itemKey(name, item))) kept.push_back(std::move(item));
    left += kept.size();
    value = std::move(kept);
  }
  return lists && left != 0;
}

std::size_t itemsOf(const StateMessage& message) {
  const Layout* layout = nullptr;
  const Json values = valuesOf(message, layout);
  std::size_t count = 0;
  if (values.is_object())
    for (const auto& [name, value] : values.items())
      if (value.is_array()) count += value.size();
  return std::max<std::size_t>(count, 1);
}

}  // namespace

std::vector<StateMessage> changedMessages(const std::vector<StateMessage>& before,
                                          const std::vector<StateMessage>& now) {
  std::map<Receiver, ToldBefore> told;
  for (const StateMessage& message : before) note(told[receiverOf(message)], message);
  std::vector<StateMessage> changed;
  for (const StateMessage& message : now) {
    ToldBefore& then = told[receiverOf(message)];
    if (!then.whole.insert(message.bytes).second) continue;
    changed.push_back(message);
    const Layout* layout = nullptr;
    Json values = valuesOf(message, layout);
    if (!values.is_object() || !leaveNew(values, then)) continue;
    std::vector<std::string> unused;
    changed.back().bytes = fromJson(*layout, values, unused);
  }
  return changed;
}

std::vector<Forgotten> forgottenBy(const std::vector<StateMessage>& before, const std::vector<StateMessage>& now) {
  std::map<Receiver, std::size_t> left;
  for (const StateMessage& message : now) left[receiverOf(message)] += itemsOf(message);
  std::map<Receiver, std::size_t> had;
  for (const StateMessage& message : before) had[receiverOf(message)] += itemsOf(message);
  std::vector<Forgotten> forgotten;
  for (const auto& [receiver, count] : had)
    if (count > left[receiver]) forgotten.push_back({std::get<1>(receiver), std::get<2>(receiver)});
  return forgotten;
}

}  // namespace messages
