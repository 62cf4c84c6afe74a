#include "system_group.h"

#include "frame_table.h"
#include "library.h"

namespace msand {

namespace {

constexpr oid kSystem[] = {1, 3, 6, 1, 2, 1, 1};
constexpr oid kSnmp[] = {1, 3, 6, 1, 2, 1, 11};
constexpr oid kAuthenticationTraps[] = {1, 3, 6, 1, 2, 1, 11, 30};
constexpr int kDisabled = 2;
constexpr u32 kApplications = 72;  // sysServices: end-to-end and application services

enum SystemScalar : oid { kDescription = 1, kObjectId, kUptime, kContact, kName, kLocation, kServices, kLastChange };

void giveText(netsnmp_request_info* request, const std::string& text) {
  snmp_set_var_typed_value(request->requestvb, ASN_OCTET_STR, text.data(), text.size());
}

void giveNumber(netsnmp_request_info* request, u8 type, u32 number) {
  snmp_set_var_typed_integer(request->requestvb, type, static_cast<long>(number));
}

void giveScalar(netsnmp_request_info* request, const SnmpSettings& settings) {
  switch (request->requestvb->name[std::size(kSystem)]) {
    case kDescription:
      return giveText(request, "Service configuration of an access node, msand " MSAN_VERSION);
    case kObjectId:
      snmp_set_var_typed_value(request->requestvb, ASN_OBJECT_ID, kFrameTable, sizeof kFrameTable);
      return;
    case kUptime:
      return giveNumber(request, ASN_TIMETICKS, static_cast<u32>(netsnmp_get_agent_uptime()));
    case kContact:
      return giveText(request, settings.contact);
    case kName:
      return giveText(request, settings.name);
    case kLocation:
      return giveText(request, settings.location);
    case kServices:
      return giveNumber(request, ASN_INTEGER, kApplications);
    case kLastChange:
      return giveNumber(request, ASN_TIMETICKS, 0);
    default:
      netsnmp_set_request_error(nullptr, request, SNMP_NOSUCHOBJECT);
  }
}

int handleSystem(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                 netsnmp_request_info* requests) {
  if (info->mode != MODE_GET) return SNMP_ERR_NOERROR;
  for (netsnmp_request_info* request = requests; request != nullptr; request = request->next)
    giveScalar(request, *static_cast<const SnmpSettings*>(handler->myvoid));
  return SNMP_ERR_NOERROR;
}

int handleTraps(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                netsnmp_request_info* requests) {
  if (info->mode == MODE_GET) giveNumber(requests, ASN_INTEGER, kDisabled);
  return SNMP_ERR_NOERROR;
}

}  // namespace

void registerSystemGroups(const SnmpSettings& settings) {
  auto* system =
      netsnmp_create_handler_registration("system", handleSystem, kSystem, std::size(kSystem), HANDLER_CAN_RONLY);
  system->handler->myvoid = const_cast<SnmpSettings*>(&settings);
  netsnmp_register_scalar_group(system, kDescription, kLastChange);

  netsnmp_register_statistic_handler(
      netsnmp_create_handler_registration("snmp", nullptr, kSnmp, std::size(kSnmp), HANDLER_CAN_RONLY), 1,
      STAT_SNMP_STATS_START, STAT_SNMP_STATS_END);
  netsnmp_register_read_only_scalar(netsnmp_create_handler_registration(
      "snmpEnableAuthenTraps", handleTraps, kAuthenticationTraps, std::size(kAuthenticationTraps), HANDLER_CAN_RONLY));
}

}  // namespace msand
