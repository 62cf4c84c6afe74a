#include "std_calls.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "host/hex.h"
#include "msan/standard_mib.h"
#include "text.h"

namespace scenario {

namespace {

constexpr std::size_t kMostParameters = 7;

enum class Form : u8 { number, text, bytes };

// A parameter. An out has the words of the list that the function's row gives; so has a buffer, with its size.
struct Parameter {
  bool in = true;
  bool out = false;
  Form form = Form::number;
  std::size_t size = 0;
  std::string_view name;
};
using Parameters = std::array<Parameter, kMostParameters>;
// What a parameter has: its number, or what its pointer points to.
using Values = std::array<std::vector<u8>, kMostParameters>;

template <class T>
T argument(std::vector<u8>& bytes) {
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(bytes.data());
  } else {
    T value{};
    std::memcpy(&value, bytes.data(), sizeof value);
    return value;
  }
}

template <class Function>
struct Caller;
template <class Result, class... T>
struct Caller<Result(T...)> {
  static constexpr bool kGivesName = std::is_pointer_v<Result>;
  static constexpr std::size_t kCount = sizeof...(T) + (kGivesName ? 1 : 0);
  static_assert(kCount <= kMostParameters);

  // What the types tell of the parameters. A name that is the result stands as an out behind them.
  static constexpr Parameters parameters() {
    Parameters all;
    [[maybe_unused]] std::size_t i = 0;
    (
        [&] {
          using Value = std::remove_pointer_t<T>;
          all[i].size = sizeof(Value);
          if (std::is_same_v<T, const char*>) all[i].form = Form::text;
          if (std::is_class_v<Value>) all[i].form = Form::bytes;
          ++i;
        }(),
        ...);
    return all;
  }
  static int call(void* function, Values& values) { return call(function, values, std::index_sequence_for<T...>{}); }

 private:
  template <std::size_t... I>
  static int call(void* function, Values& values, std::index_sequence<I...>) {
    const Result result = reinterpret_cast<Result (*)(T...)>(function)(argument<T>(values[I])...);
    if constexpr (!kGivesName) {
      return result;
    } else {
      if (result == nullptr) return -1;
      values[sizeof...(T)].assign(result, result + std::strlen(result) + 1);
      return 0;
    }
  }
};

struct Function {
  std::string_view name;
  std::size_t count;
  Parameters parameters;
  int (*call)(void* function, Values& values);
};

// `words` names the parameters: NAME, >NAME for an out, <>NAME for both; NAME:SIZE is a text in a buffer, NAME=SIZE
// bytes.
template <class Type>
consteval Function row(std::string_view name, std::string_view words) {
  Function made{name, Caller<Type>::kCount, Caller<Type>::parameters(), Caller<Type>::call};
  for (std::size_t i = 0; i < made.count; ++i) {
    Parameter& parameter = made.parameters[i];
    std::string_view word = words.substr(0, words.find(' '));
    if (word.empty()) throw "a parameter has no name";
    words.remove_prefix(word.size() < words.size() ? word.size() + 1 : words.size());
    parameter.out = word.find('>') != word.npos;
    parameter.in = !parameter.out || word[0] == '<';
    word.remove_prefix(word.find_first_not_of("<>"));
    const std::size_t mark = word.find_first_of(":=");
    if (mark != word.npos) {
      parameter.form = word[mark] == ':' ? Form::text : Form::bytes;
      parameter.size = 0;
      for (const char digit : word.substr(mark + 1))
        parameter.size = parameter.size * 10 + static_cast<std::size_t>(digit - '0');
    }
    parameter.name = word.substr(0, mark);
  }
  if (!words.empty()) throw "a name has no parameter";
  return made;
}

#define STD(name, words) row<decltype(::name)>(#name, words)

constexpr Function kFunctions[] = {
    STD(std_snmp_adsl_line_prf_add, "view"),
    STD(std_snmp_adsl_line_prf_del, "id"),
    STD(std_snmp_adsl_line_prf_mod, "view"),
    STD(std_snmp_get_first_adsl_line_prf, ">view"),
    STD(std_snmp_get_next_adsl_line_prf, "id >view"),
    STD(std_snmp_adsl_line_prf_get, "id >view"),
    STD(std_snmp_attach_adsl_line_prf, "slot port id"),
    STD(std_snmp_get_attach_adsl_line_prfid, "slot port"),
    STD(std_snmp_get_attach_adsl_line_first_prfid, ">slot >port >id"),
    STD(std_snmp_get_attach_adsl_line_next_prfid, "slot port >slot >port >id"),
    STD(std_snmp_pvc_prf_add, "view"),
    STD(std_snmp_pvc_prf_del, "id"),
    STD(std_snmp_pvc_line_prf_mod, "view"),
    STD(std_snmp_pvc_prf_get, "id >view"),
    STD(std_snmp_get_first_pvc_prf, ">view"),
    STD(std_snmp_get_next_pvc_prf, "id >view"),
    STD(std_snmp_attach_pvc_line_prf, "slot port id"),
    STD(std_snmp_get_attach_pvc_prfid, "slot port"),
    STD(std_snmp_get_attach_pvc_first_prfid, ">slot >port >id"),
    STD(std_snmp_get_attach_pvc_next_prfid, "slot port >slot >port >id"),
    STD(std_dsl_alarm_prf_add, "view"),
    STD(std_dsl_alarm_prf_del, "id"),
    STD(std_dsl_alarm_prf_mod, "view"),
    STD(std_get_first_dsl_alarm_prf, ">view"),
    STD(std_get_next_dsl_alarm_prf, "id >view"),
    STD(std_dsl_alarm_prf_get, "id >view"),
    STD(std_attach_dsl_alarm_prf_by_id, "slot port id"),
    STD(std_attach_dsl_alarm_prf_by_name, "slot port name"),
    STD(std_get_attached_dsl_alarm_prf_id, "slot port"),
    STD(std_dsl_alarm_prf_available_id, ""),
    STD(std_snmp_get_attach_alarm_first_prfid, ">slot >port >id"),
    STD(std_snmp_get_attach_alarm_next_prfid, "slot port >slot >port >id"),
    STD(std_alarm_profile_msan_obj_validation, "slot port"),
    STD(std_snmp_first_dsl_port_get, ">slot >port"),
    STD(std_snmp_next_dsl_port_get, "<>slot <>port"),
    STD(std_snmp_get_data_port_type, "card port >type"),
    STD(std_snmp_data_port_rate_get, "slot port direction >rate"),
    STD(std_snmp_limit_speed_time_get, "slot port direction >rate"),
    STD(adsl_min_rate_get, "slot port which >rate"),
    STD(msan_data_obj_validation, "slot port"),
    STD(std_snmp_data_port_enable_set, "slot port value"),
    STD(std_snmp_data_port_enable_get, "slot port >value"),
    STD(std_snmp_data_port_status_get, "slot port"),
    STD(std_snmp_modem_vendor_code_get, "slot port >code:256"),
    STD(std_snmp_modem_firmware_version_get, "slot port >version:256"),
    STD(std_snmp_port_online_time_get, "slot port >time=7"),
    STD(std_snmp_port_offline_time_get, "slot port >time=7"),
    STD(std_snmp_get_dls_port_reach_standard_rate, "slot port >rates=104"),
    STD(std_snmp_pots_port_enable_set, "slot port value"),
    STD(std_snmp_pots_port_enable_get, "slot port >value"),
    STD(check_common_voice_port, "slot port >card"),
    STD(std_snmp_get_voice_port_type, "slot port >type"),
    STD(std_snmp_voice_port_status_get, "slot port"),
    STD(std_snmp_first_pots_port_get, ">slot >port"),
    STD(std_snmp_next_pots_port_get, "<>slot <>port"),
    STD(std_snmp_get_first_rate_prf, ""),
    STD(std_snmp_get_next_rate_prf, "id"),
    STD(std_snmp_rate_prf_id_assign, ""),
    STD(std_snmp_rate_prf_add, "id name"),
    STD(std_snmp_rate_prf_name_mod, "id name"),
    STD(std_snmp_rate_prf_delete_by_id, "id"),
    STD(std_snmp_rate_prf_rate_get, "id direction"),
    STD(std_snmp_rate_prf_rate_set, "id direction rate"),
    STD(std_snmp_get_rate_prf_name_by_id, "id >name:0"),
    STD(std_snmp_rate_prf_attach_info_get, "slot port"),
    STD(std_snmp_rate_prf_attach_by_id, "slot port id"),
    STD(std_snmp_rate_prf_attach_by_name, "slot port name"),
    STD(std_snmp_get_attach_bw_first_prfid, ">slot >port >id"),
    STD(std_snmp_get_attach_bw_next_prfid, "slot port >slot >port >id"),
    STD(std_snmp_get_port_upstream_policy_attach, "slot port >policyNames:169 >length >ruleNames:169 >length"),
    STD(std_snmp_get_port_downstream_policy_attach, "slot port >policyNames:169 >length >ruleNames:169 >length"),
    STD(std_snmp_get_pvc_upstream_policy_attach, "slot port pvc >policyNames:169 >length >ruleNames:169 >length"),
    STD(std_snmp_get_pvc_downstream_policy_attach, "slot port pvc >policyNames:169 >length >ruleNames:169 >length"),
    STD(std_snmp_first_policy_port_get, ">slot >port"),
    STD(std_snmp_next_policy_port_get, "<>slot <>port"),
    STD(std_snmp_policy_first_port_get, ">slot >port"),
    STD(std_snmp_policy_next_port_get, "slot port >slot >port"),
    STD(std_snmp_policy_first_next_pvc_get, "slot port pvc >slot >port >pvc"),
    STD(std_snmp_policy_first_pvc_get, ">slot >port >pvc"),
    STD(std_snmp_policy_next_pvc_get, "slot port pvc >slot >port >pvc"),
    STD(stdmib_get_first_obj, ">slot >port"),
    STD(stdmib_get_next_obj, "slot port >slot >port"),
    STD(stdmib_get_port_fdb, "slot port >addresses=100 <>length"),
};

// What stands for a parameter on the line. A text and a view are the last one.
std::vector<u8> readValue(const Parameter& parameter, Arguments& arguments) {
  if (parameter.form == Form::number) {
    const i64 half = i64{1} << (8 * parameter.size - 1);  // with a sign or without
    const i64 number = arguments.number(parameter.name, -half, 2 * half - 1);
    std::vector<u8> value(sizeof number);
    std::memcpy(value.data(), &number, sizeof number);
    return value;
  }
  std::vector<u8> value = arguments.bytes();
  if (parameter.form == Form::text)
    value.push_back(0);
  else if (value.size() != parameter.size)
    throw BadLine(fmt::format("{} is of {} bytes, not {}", parameter.name, parameter.size, value.size()));
  return value;
}

// A number as the processor keeps it.
u32 numberOf(const std::vector<u8>& value, std::size_t size) {
  u32 number = 0;
  std::memcpy(&number, value.data(), size);
  return number;
}

std::string outLine(const Parameter& parameter, const std::vector<u8>& value) {
  if (parameter.form == Form::number) return fmt::format("out {}={}", parameter.name, numberOf(value, parameter.size));
  if (parameter.form == Form::bytes)
    return fmt::format("out {}={}", parameter.name, host::hexText(std::span(value).first(parameter.size)));
  const auto end = std::find(value.begin(), value.end(), 0);
  return fmt::format("out {}=\"{}\"", parameter.name, logText(std::string(value.begin(), end)));
}

// What a call that succeeded has written.
void recordOuts(const Function& function, const Values& values, int result, std::vector<std::string>& lines) {
  for (std::size_t i = 0; i < function.count && result >= 0; ++i)
    if (function.parameters[i].out) lines.push_back(outLine(function.parameters[i], values[i]));
}

void call(const Function& function, Values values, Stage& stage, Outcome& outcome) {
  void* const exported = stage.node.module().exported(function.name.data());
  if (exported == nullptr) return outcome.notAvailable(fmt::format("the module exports no {}", function.name));
  const int result = function.call(exported, values);
  recordOuts(function, values, result, outcome.lines);
  outcome.result(result);
}

// The bytes of an argument, as they would have been read and are written.
std::vector<u8> valueOf(const Parameter& parameter, const StdArgument& argument) {
  const auto* const bytes = static_cast<const u8*>(argument.at != nullptr ? argument.at : &argument.number);
  const bool isText = argument.at != nullptr && parameter.form == Form::text;
  std::size_t size = argument.at != nullptr ? parameter.size : sizeof argument.number;
  if (isText && parameter.in) size = std::strlen(static_cast<const char*>(argument.at)) + 1;
  return {bytes, bytes + size};
}

std::string wordOf(const Parameter& parameter, const std::vector<u8>& value) {
  if (parameter.form != Form::number)
    return host::hexText(std::span(value).first(value.size() - (parameter.form == Form::text ? 1 : 0)));
  i64 number = 0;
  std::memcpy(&number, value.data(), std::min(sizeof number, value.size()));
  return fmt::format("{}", number);
}

}  // namespace

ToldStd tellStd(std::string_view name, std::span<const StdArgument> arguments, int result) {
  const auto* const function = std::ranges::find(kFunctions, name, &Function::name);
  if (function == std::end(kFunctions) || arguments.size() != function->count)
    throw std::invalid_argument(fmt::format("no function {} of {} arguments", name, arguments.size()));
  ToldStd told{fmt::format("std {}", name), {}};
  Values values;
  for (std::size_t i = 0; i < function->count; ++i) {
    values[i] = valueOf(function->parameters[i], arguments[i]);
    if (function->parameters[i].in) told.directive += ' ' + wordOf(function->parameters[i], values[i]);
  }
  recordOuts(*function, values, result, told.lines);
  return told;
}

Action readStd(Arguments& arguments) {
  const std::string name(arguments.word("name of a function"));
  const auto* const function = std::ranges::find(kFunctions, name, &Function::name);
  if (function == std::end(kFunctions)) {
    arguments.rest();
    return [name](Stage&, Outcome& outcome) { outcome.notAvailable(fmt::format("the module exports no {}", name)); };
  }
  Values values;
  for (std::size_t i = 0; i < function->count; ++i) {
    const Parameter& parameter = function->parameters[i];
    if (parameter.in)
      values[i] = readValue(parameter, arguments);
    else
      values[i].assign(std::max<std::size_t>(parameter.size, sizeof(u32)), 0);
  }
  return [function, values](Stage& stage, Outcome& outcome) { call(*function, values, stage, outcome); };
}

}  // namespace scenario
