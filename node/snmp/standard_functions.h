#pragma once
// The module's functions for standard MIBs.

#include <string>
#include <type_traits>

#include "module.h"
#include "msan/standard_mib.h"
#include "scenario/std_calls.h"
#include "session_record.h"

namespace msand {

// One of them; a call is told to the record of the session.
template <class Function>
class StandardCall;
template <class... T>
class StandardCall<int(T...)> {
 public:
  StandardCall(const node::Module& module, const char* name) : module_(module), name_(name) {}
  int operator()(T... arguments) const {
    Doing doing([] { return std::string(); });
    // The module may have been loaded anew since the last call.
    const int result = reinterpret_cast<int (*)(T...)>(module_.exported(name_))(arguments...);
    doing.outcome([&](scenario::Outcome& outcome) {
      const scenario::StdArgument told[] = {argument(arguments)...};
      const scenario::ToldStd call = scenario::tellStd(name_, told, result);
      doing.told(call.directive);
      outcome.lines = call.lines;
      outcome.result(result);
    });
    return result;
  }

 private:
  static scenario::StdArgument argument(const void* at) { return {0, at}; }
  template <class Number>
    requires std::is_integral_v<Number>
  static scenario::StdArgument argument(Number number) {
    return {number, nullptr};
  }

  const node::Module& module_;
  const char* name_;
};

class StandardFunctions {
 public:
  explicit StandardFunctions(const node::Module& module) : module_(module) {}
  // The module has all of those below.
  bool complete() const { return complete_; }

 private:
  const node::Module& of(const char* name) {
    complete_ = complete_ && module_.exported(name) != nullptr;
    return module_;
  }
#define MSAND_FUNCTION(member, name) \
  const StandardCall<decltype(::name)> member { of(#name), #name }

  const node::Module& module_;
  bool complete_ = true;

 public:
  MSAND_FUNCTION(dataPortEnable, std_snmp_data_port_enable_get);
  MSAND_FUNCTION(dataPortStatus, std_snmp_data_port_status_get);
  MSAND_FUNCTION(modemVendor, std_snmp_modem_vendor_code_get);
  MSAND_FUNCTION(modemFirmware, std_snmp_modem_firmware_version_get);
  MSAND_FUNCTION(potsPortEnable, std_snmp_pots_port_enable_get);
  MSAND_FUNCTION(lineProfile, std_snmp_adsl_line_prf_get);
  MSAND_FUNCTION(nextLineProfile, std_snmp_get_next_adsl_line_prf);
  MSAND_FUNCTION(attachedLineProfile, std_snmp_get_attach_adsl_line_prfid);
  MSAND_FUNCTION(attachLineProfile, std_snmp_attach_adsl_line_prf);
  MSAND_FUNCTION(alarmProfile, std_dsl_alarm_prf_get);
  MSAND_FUNCTION(nextAlarmProfile, std_get_next_dsl_alarm_prf);
  MSAND_FUNCTION(attachedAlarmProfile, std_get_attached_dsl_alarm_prf_id);
  MSAND_FUNCTION(attachAlarmProfile, std_attach_dsl_alarm_prf_by_id);
#undef MSAND_FUNCTION
};

}  // namespace msand
