#include "platform/flow_store.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <shared_mutex>

#include "host/flow_store.h"

namespace host {

namespace {

enum FlowType : i16 { kRuleType = 1, kPolicyType = 2 };

// Rules, or policies. The doors read at the same time.
template <class Content>
class Shelf {
 public:
  void set(i16 id, std::string_view name, const Content& content) {
    const std::unique_lock lock(mutex_);
    take(id);
    name = name.substr(0, kFlowName);
    kept_[id] = {std::string(name), content};
    byName_[std::string(name)].insert(id);
  }

  bool remove(i16 id) {
    const std::unique_lock lock(mutex_);
    return take(id);
  }

  void clear() {
    const std::unique_lock lock(mutex_);
    kept_.clear();
    byName_.clear();
  }

  bool has(i16 id) const {
    const std::shared_lock lock(mutex_);
    return kept_.contains(id);
  }

  int idOf(std::string_view name) const {
    const std::shared_lock lock(mutex_);
    const auto found = byName_.find(name.substr(0, kFlowName));
    return found == byName_.end() ? -1 : *found->second.begin();
  }

  int nameOf(i16 id, char* name, u8* length) const {
    const std::shared_lock lock(mutex_);
    const auto found = kept_.find(id);
    if (name == nullptr || length == nullptr || found == kept_.end()) return -1;
    const std::string& text = found->second.name;
    std::memset(name, 0, *length);
    *length = static_cast<u8>(std::min<std::size_t>(*length, text.size()));
    std::memcpy(name, text.data(), *length);
    return 0;
  }

  template <class Copy>
  int read(i16 id, Copy copy) const {
    const std::shared_lock lock(mutex_);
    const auto found = kept_.find(id);
    if (found == kept_.end()) return -1;
    copy(found->second.content);
    return 0;
  }

  template <class Entries>
  std::vector<FlowEntry> list(Entries entries) const {
    const std::shared_lock lock(mutex_);
    std::vector<FlowEntry> all;
    for (const auto& [id, one] : kept_) all.push_back({id, one.name, entries(one.content)});
    return all;
  }

 private:
  struct Kept {
    std::string name;
    Content content;
  };

  bool take(i16 id) {
    const auto found = kept_.find(id);
    if (found == kept_.end()) return false;
    const auto named = byName_.find(found->second.name);
    named->second.erase(id);
    if (named->second.empty()) byName_.erase(named);
    kept_.erase(found);
    return true;
  }

  mutable std::shared_mutex mutex_;
  std::map<i16, Kept> kept_;
  std::map<std::string, std::set<i16>, std::less<>> byName_;
};

Shelf<FlowRule>& rules() {
  static Shelf<FlowRule> all;
  return all;
}
Shelf<FlowPolicyPack>& policies() {
  static Shelf<FlowPolicyPack> all;
  return all;
}

std::mutex checksMutex;
FlowBindCheck* ruleCheck = nullptr;
FlowBindCheck* policyCheck = nullptr;

int registerCheck(FlowBindCheck*& place, FlowBindCheck* check) {
  const std::lock_guard lock(checksMutex);
  place = check;
  return 0;
}

template <class Content>
FlowRemoval remove(Shelf<Content>& shelf, FlowBindCheck* const& registered, FlowType type, i16 id) {
  if (!shelf.has(id)) return FlowRemoval::unknown;
  FlowBindCheck* check = nullptr;
  {
    const std::lock_guard lock(checksMutex);
    check = registered;
  }
  if (check != nullptr && check(type, static_cast<u16>(id)) == 1) return FlowRemoval::bound;
  return shelf.remove(id) ? FlowRemoval::removed : FlowRemoval::unknown;
}

}  // namespace

void setFlowRule(i16 id, std::string_view name, const FlowRule& rule) { rules().set(id, name, rule); }

FlowRule plainFlowRule(std::string_view name) {
  FlowRule rule;
  std::memcpy(rule.name, name.data(), std::min<std::size_t>(name.size(), kFlowName));
  return rule;
}

void setFlowPolicy(i16 id, std::string_view name, const FlowPolicyPack& pack) { policies().set(id, name, pack); }

FlowPolicyPack plainFlowPolicy(std::string_view name) {
  FlowPolicyPack pack{};
  std::memcpy(pack.data(), name.data(), std::min<std::size_t>(name.size(), kFlowName));
  return pack;
}

FlowRemoval removeFlowRule(i16 id) { return remove(rules(), ruleCheck, kRuleType, id); }
FlowRemoval removeFlowPolicy(i16 id) { return remove(policies(), policyCheck, kPolicyType, id); }

std::vector<FlowEntry> flowRules() {
  return rules().list([](const FlowRule& rule) { return rule.count; });
}
std::vector<FlowEntry> flowPolicies() {
  return policies().list([](const FlowPolicyPack&) { return u16{0}; });
}

void clearFlowStore() {
  rules().clear();
  policies().clear();
}

void forgetFlowChecks() {
  registerCheck(ruleCheck, nullptr);
  registerCheck(policyCheck, nullptr);
}

}  // namespace host

int flowRuleIsPrfExist(i16 id) { return id == 0 || host::rules().has(id) ? 1 : 0; }
int flowPolicyIsPrfExist(i16 id) { return host::policies().has(id) ? 1 : 0; }

int flowRuleGetIdByName(const char* name) {
  return name == nullptr ? -1 : host::rules().idOf({name, strnlen(name, kFlowName)});
}

int flowRuleGetNameById(char* name, u8* length, i16 id) { return host::rules().nameOf(id, name, length); }
int flowPolicyGetNameById(char* name, u8* length, i16 id) { return host::policies().nameOf(id, name, length); }

int flowRuleGetPrfInfo(i16 id, FlowRule* rule) {
  if (rule == nullptr) return -1;
  if (id == 0) {
    *rule = {};
    return 0;
  }
  return host::rules().read(id, [rule](const FlowRule& kept) { *rule = kept; });
}

int flowPolicyGetPrfInfo(i16 id, u8* info) {
  if (info == nullptr) return -1;
  return host::policies().read(id, [info](const auto& kept) { std::memcpy(info, kept.data(), kFlowPolicyInfo); });
}

int fpGetSpcPrfPack(u8* pack, u32* length, i16 id) {
  if (pack == nullptr || length == nullptr) return -1;
  *length = kFlowPolicyPack;
  return host::policies().read(id, [pack](const auto& kept) { std::memcpy(pack, kept.data(), kFlowPolicyPack); });
}

int flowRuleRegBindCheck(FlowBindCheck* check) { return host::registerCheck(host::ruleCheck, check); }
int flowPolicyRegBindCheck(FlowBindCheck* check) { return host::registerCheck(host::policyCheck, check); }
int flowRulePrfTypeCheck(i16 type) { return type == host::kRuleType ? 0 : -1; }
int flowPolicyPrfTypeCheck(i16 type) { return type == host::kPolicyType ? 0 : -1; }
