// What a card knows of a DSL port and its modem, for standard MIBs.

#include <cstring>

#include "combo/port/modem_read.h"
#include "standard_mib/ports.h"

static int readField(u16 slot, u16 port, const ModemField& field, u8* out) {
  return out != nullptr ? readModemField(slot, port, field, out) : kNullArgument;
}

static int readText(u16 slot, u16 port, const ModemField& field, u8* out) {
  constexpr u32 kText = 256;  // room of an out that holds a text
  if (out != nullptr) std::memset(out, 0, kText);
  return readField(slot, port, field, out);
}

int std_snmp_data_port_status_get(u16 slot, u16 port) {
  u16 status = 0;
  if (msan_data_obj_validation(slot, port) != 0 || readModemField(slot, port, kModemStatus, &status) != 0) return -1;
  return status <= 1 ? status : -1;
}

int std_snmp_modem_vendor_code_get(u16 slot, u16 port, u8* code) { return readText(slot, port, kModemVendor, code); }
int std_snmp_modem_firmware_version_get(u16 slot, u16 port, u8* version) {
  return readText(slot, port, kModemFirmware, version);
}
int std_snmp_port_online_time_get(u16 slot, u16 port, u8* time) {
  return readField(slot, port, kModemOnlineTime, time);
}
int std_snmp_port_offline_time_get(u16 slot, u16 port, u8* time) {
  return readField(slot, port, kModemOfflineTime, time);
}
int std_snmp_get_dls_port_reach_standard_rate(u16 slot, u16 port, u8* rates) {
  return readField(slot, port, kReachedRates, rates);
}
