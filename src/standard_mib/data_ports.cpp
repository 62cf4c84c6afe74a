#include <algorithm>

#include "common/msan_init.h"
#include "common/msan_obj.h"
#include "data/rate/port_rate_bind.h"
#include "platform/objects.h"
#include "standard_mib/ports.h"

static constexpr int kBadDirection = -9, kNoDataCard = -102;

ServiceSlots::ServiceSlots() : known_(getServeSlots(slots_, &count_) == 0) {
  if (!known_) count_ = 0;
}

// 0 for a type that is no card's.
static u16 portsOf(u16 card) {
  u16 ports = 0;
  ddGetBoardServePortAmountByType(card, &ports);
  return ports;
}

std::optional<u16> dataPortsOf(u16 slot) {
  const u16 card = configuredDataCard(slot);
  if (card == 0) return {};
  return portsOf(card);
}

std::optional<u16> potsPortsOf(u16 slot) {
  const auto card = static_cast<u16>(get_config_card_type(slot));
  if (caCheckCardTypeIsMsanPotsCard(card) != 0) return {};
  return portsOf(card);
}

static bool isConfiguredDataCard(u16 slot) { return configuredDataCard(slot) != 0; }

int std_snmp_first_dsl_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  const ServiceSlots slots;
  return firstPortOf(slots.list(), isConfiguredDataCard, slot, port);
}

// The slot's own card must be there; of the next one it is enough that it is configured.
int std_snmp_next_dsl_port_get(u16* slot, u16* port) {
  if (slot == nullptr || port == nullptr) return kNullArgument;
  const int card = get_valid_servicecard_type(*slot);
  if (card < 0) return card;
  const u16 ports = portsOf(static_cast<u16>(card));
  if (caCheckCardTypeIsMsanDataCard(static_cast<u16>(card)) != 0 || ports == 0) return kNoDataCard;
  return nextPortOf(ports, isConfiguredDataCard, slot, port);
}

int std_snmp_get_data_port_type(u16 cardType, u16 port, u32* type) {
  if (type == nullptr) return kNullArgument;
  u16 portType = 0;
  if (const int code = dm_get_port_type(cardType, 0, 0, port, &portType)) return code;
  *type = portType;
  return 0;
}

// The tests of a read by direction.
static int checkDirection(u16 slot, u16 port, u16 direction, const u32* out) {
  const int code = service_slot_author_port_common_examine(gModuleId_Msan, slot, port, 0);
  if (code < 0) return code;
  if (out == nullptr) return kNullArgument;
  return direction <= 1 ? 0 : kBadDirection;
}

int std_snmp_limit_speed_time_get(u16 slot, u16 port, u16 direction, u32* rate) {
  if (const int code = checkDirection(slot, port, direction, rate)) return code;
  return get_port_rate_limit_info(slot, port, direction, rate);
}

int std_snmp_data_port_rate_get(u16 slot, u16 port, u16 direction, u32* rate) {
  if (const int code = checkDirection(slot, port, direction, rate)) return code;
  return adsl_min_rate_get(slot, port, direction + 1, rate);
}
