#include "notifications.h"

#include <fmt/format.h>

#include <stdexcept>
#include <utility>

#include "library.h"

namespace msand {

static constexpr oid kTrap[] = {1, 3, 6, 1, 6, 3, 1, 1, 4, 1, 0};  // snmpTrapOID.0
static constexpr oid kNotice[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 2, 0, 1};
static constexpr oid kText[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 2, 2, 0};

void Notifications::add(std::string_view text) {
  const std::lock_guard lock(mutex_);
  waiting_.emplace_back(text);
}

void Notifications::open(const SnmpSettings& settings) {
  std::string community = settings.communities.empty() ? "public" : settings.communities.front().name;
  for (std::string address : settings.notify)
    if (create_trap_session(address.data(), 0, community.data(), SNMP_VERSION_2c, SNMP_MSG_TRAP2) == 0)
      throw std::runtime_error(fmt::format("snmp: {}: can't be notified", address));
}

void Notifications::send() {
  std::vector<std::string> texts;
  {
    const std::lock_guard lock(mutex_);
    texts.swap(waiting_);
  }
  for (const std::string& text : texts) {
    netsnmp_variable_list* variables = nullptr;
    snmp_varlist_add_variable(&variables, kTrap, std::size(kTrap), ASN_OBJECT_ID, kNotice, sizeof kNotice);
    snmp_varlist_add_variable(&variables, kText, std::size(kText), ASN_OCTET_STR, text.data(), text.size());
    send_v2trap(variables);
    snmp_free_varbind(variables);
  }
}

}  // namespace msand
