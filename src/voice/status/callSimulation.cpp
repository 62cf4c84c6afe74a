#include "voice/status/callSimulation.h"

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

#include "platform/wrappers.h"
#include "voice/common/voice_obj.h"
#include "voice/common/voice_packets.h"
#include "voice/common/voice_public.h"

static constexpr u32 kLocationAttribute = 148;

// --- Records, wire, check ---

// clang-format off
static constexpr Field inFields[] = {
    field<&CallInStart::timeout>(
        {.offset = 0, .allowed = {{60, 300}}, .code = 65416, .complaint = "invalid call in simulation start timeout: %d"}),
};
static constexpr Field outFields[] = {
    field<&CallOutStart::number>({.offset = 0}),
    field<&CallOutStart::timeout>(
        {.offset = 32, .allowed = {{60, 300}}, .code = 65416, .complaint = "invalid call out simulation start timeout: %d"}),
};
// clang-format on
static constexpr Record inShape(66, inFields);
static constexpr Record outShape(100, outFields);

// What a number shows of itself: it may fill its field.
static std::string_view textOf(const CallOutStart& record) {
  return {record.number, strnlen(record.number, sizeof record.number)};
}

static int check_call_in_start(const CallInStart* record, SnmpErrInfo* err) {
  return checkRecord(inFields, record, err);
}

int check_call_out_start(const CallOutStart* record, SnmpErrInfo* err) {
  const std::string_view number = textOf(*record);
  if (number.empty()) {
    vSetErrorInfo(65415, err);
    trace("the telephone number is NULL");
    return -1;
  }
  const int valid = nIsValidString(number.data(), static_cast<u16>(number.size()), gCriteriaSIMNumber);
  if (valid == -1) {
    vSetErrorInfo(kStepFailed, err);
    trace("check telephone number validity failed");
    return -1;
  }
  if (valid == 0) {
    char shown[33] = {};
    number.copy(shown, sizeof shown - 1);
    vSetErrorInfo(65414, record->number, sizeof record->number, err);
    trace("invalid telephone number: %s", static_cast<const char*>(shown));
    return -1;
  }
  return checkRecord(outFields, record, err);
}

int is_call_out_number_duplicate(LIST* list, u16* slot, u16* port, char* number) {
  if (list == nullptr || slot == nullptr || port == nullptr || number == nullptr) return -1;
  const DataNode* first = firstTwice(list, {offsetof(CallOutStart, number), sizeof CallOutStart::number, true});
  if (first == nullptr) return 0;
  *slot = first->slot;
  *port = first->port;
  std::memcpy(number, first->data, sizeof CallOutStart::number);
  return 1;
}

// Behind the check of each order.
static int check_call_out_start_handle(LIST* list, SnmpErrInfo* err) {
  u16 slot = 0, port = 0;
  char number[sizeof CallOutStart::number] = {};
  const int duplicate = is_call_out_number_duplicate(list, &slot, &port, number);
  if (duplicate == 0) return 0;
  if (duplicate == 1) {
    vSetErrorInfo(65413, number, sizeof number, err);
    trace("port %d/%d telephone number is duplicate", slot, port);
  } else {
    vSetErrorInfo(kStepFailed, err);
  }
  return -1;
}

// --- What is shown ---

// clang-format off
static constexpr Word startWords[] = {{"Started", 0}, {"Not Start", 1}};
static constexpr Word inWords[] = {
    {"Idle", 1}, {"Off-Hook", 2}, {"Ring", 3}, {"Connected", 4}, {"On-Hook", 5}, {"Finished", 6}};
static constexpr Word outWords[] = {
    {"Idle", 1}, {"Off-Hook", 2}, {"Dial Tone", 3}, {"Receiving", 4}, {"Receiving Finished", 5}, {"Ring Back Tone", 6},
    {"Connected", 7}, {"Busy Tone", 8}, {"On-Hook", 9}, {"Finished", 10}};
static constexpr Word conclusionWords[] = {{"Success", 1}, {"Failure", 2}, {"Not Confirmed", 3}};
static constexpr Word inReasonWords[] = {{"No Signalling", 1}, {"No Response From SS", 2}, {"MG Error", 3}, {"Other", 4}};
static constexpr Word outReasonWords[] = {
    {"No Off-Hook Signalling Response From SS", 1}, {"No Dial Tone Signalling Response From SS", 2},
    {"Telephone Number Mismatched", 3}, {"No Ring Back Tone Signalling Response From SS", 4},
    {"No Remote Off-Hook Signalling", 5}, {"Connect Failed", 6}, {"No On-Hook Signalling Response From SS", 7}, {"Other", 8}};
static constexpr const char* kNoStatus = "Invalid Status";
static constexpr const char* kNoConclusion = "Invalid Conclusion";
static constexpr const char* kNoReason = "Invalid Failure Reason";

static constexpr ShownField inStartShown[] = {
    shownPlace("\r\n %-19s%d/%d", "Slot No./Port No.: "),
    shownNumber("\r\n %-19s%-6d", "Timeout(s): ", 20, 2),
    shownWord("\r\n %-19s%-15s\r\n", "Status: ", 86, 2, startWords, kNoStatus),
};
static constexpr ShownField inStatusShown[] = {
    shownPlace("\r\n %-19s%d/%d", "Slot No./Port No.: "),
    shownWord("\r\n %-19s%-15s\r\n", "Status: ", 84, 2, inWords, kNoStatus),
};
static constexpr ShownField inStopShown[] = {
    shownPlace("\r\n %-19s%d/%d", "Slot No./Port No.: "),
    shownWord("\r\n %-19s%-25s", "Status: ", 84, 2, inWords, kNoStatus),
    shownWord("\r\n %-19s%-25s", "Conclusion: ", 86, 2, conclusionWords, kNoConclusion),
    shownWord("\r\n %-19s%-25s\r\n", "Failure Reason: ", 88, 2, inReasonWords, kNoReason),
};
static constexpr ShownField outStartShown[] = {
    shownPlace("\r\n %-19s%d/%d", "Slot No./Port No.: "),
    shownNumber("\r\n %-19s%-6d", "Timeout(s): ", 52),
    shownText("\r\n %-19s%-20s", "Telephone Number: ", 20, 32),
    shownWord("\r\n %-19s%-15s\r\n", "Status: ", 120, 2, startWords, kNoStatus),
};
static constexpr ShownField outStatusShown[] = {
    shownPlace("\r\n %-19s%d/%d", "Slot No./Port No.: "),
    shownWord("\r\n %-19s%-20s\r\n", "Status: ", 84, 4, outWords, kNoStatus),
};
static constexpr ShownField outStopShown[] = {
    shownPlace("\r\n %-31s%d/%d", "Slot No./Port No.: "),
    shownWord("\r\n %-31s%-25s", "Status: ", 84, 4, outWords, kNoStatus),
    shownText("\r\n %-31s%-32s", "Dial Number: ", 88, 32),
    shownText("\r\n %-31s%-32s", "Target Number: ", 120, 32),
    shownText("\r\n %-31s%-128s", "Failed Singnalling Indication: ", 152, 128),
    shownWord("\r\n %-31s%-25s", "Conclusion: ", 280, 4, conclusionWords, kNoConclusion),
    shownWord("\r\n %-31s%-45s\r\n", "Failure Reason: ", 284, 4, outReasonWords, kNoReason),
};
// clang-format on

// --- Commands ---

static int badQuantity(Vty* vty) { return refuse(vty, "invalid parameter quantity"); }

static int cli_start_call_in_simulation_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return badQuantity(vty);
  const CallInStart record{static_cast<u16>(bep_atoiEx(argv[0]))};
  DataList ports;
  if (readPorts(vty, argv[1], kLocationAttribute, sizeof record, ports) != 0) return -1;
  if (nSetPortObjDataList(&record, ports) != 0)
    return refuse(vty, "set call in simulation start configuration list failed");
  return simulate(vty, callInStart, ports);
}

// A number as far as it goes; false beyond 31 bits, where another one would be dialled.
static bool readNumber(const char* text, i64* number) {
  errno = 0;
  *number = std::strtoll(text, nullptr, 10);
  return errno == 0 && *number >= std::numeric_limits<i32>::min() && *number <= std::numeric_limits<i32>::max();
}

int set_call_out_start_datalist(u16 timeout, i64 start, i64 step, LIST* list) {
  if (list == nullptr) return -1;
  i64 number = start;
  for (NODE* at = lstFirst(list); at != nullptr; at = lstNext(at), number += step) {
    auto* record = recordOf<CallOutStart>(at);
    record->timeout = timeout;
    std::snprintf(record->number, sizeof record->number, "%lld", static_cast<long long>(number));
  }
  return 0;
}

static int cli_start_call_out_simulation_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 4) return badQuantity(vty);
  const u16 timeout = static_cast<u16>(bep_atoiEx(argv[0]));
  i64 start = 0, step = 0;
  if (!readNumber(argv[1], &start) || start == 0) {
    vty_out(vty, "\r\n invalid start telephone number: %s. \r\n", argv[1]);
    return -1;
  }
  const bool stepGood = readNumber(argv[2], &step);
  DataList ports;
  if (readPorts(vty, argv[3], kLocationAttribute, sizeof(CallOutStart), ports) != 0) return -1;
  if (!stepGood || set_call_out_start_datalist(timeout, start, step, ports) != 0)
    return refuse(vty, "set call out simulation start configuration list failed");
  return simulate(vty, callOutStart, ports);
}

// A command whose only argument are its ports.
template <const Simulation& simulation>
static int simulatePorts(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  DataList ports;
  return readPorts(vty, argv[0], kLocationAttribute, simulation.ports.bytes, ports) == 0
             ? simulate(vty, simulation, ports)
             : -1;
}

// --- Rows ---

constexpr Simulation callInStart = {
    .ports = {.id = 3103, .shape = &inShape, .bytes = sizeof(CallInStart), .check = onRecord<check_call_in_start>},
    .names = {.stem = "snmp_set_call_in_start",
              .showStem = "distrib_call_in_start",
              .title = "Call In Simulation Start Confirm",
              .dashes = 35,
              .words = "set call in simulation start configuration",
              .text = "Start call in simulation"},
    .answerUnit = 120,
    .fields = inStartShown,
};
constexpr Simulation callInStatus = {
    .ports = {.id = 3104},
    .names = {.stem = "snmp_get_call_in_status",
              .showStem = "get_call_in_status",
              .title = "Call In Simulation Status",
              .dashes = 35,
              .words = "get call in simulation status",
              .text = "Get call in simulation information"},
    .asks = Asks::something,
    .answerUnit = 118,
    .fields = inStatusShown,
};
constexpr Simulation callInStop = {
    .ports = {.id = 3105},
    .names = {.stem = "snmp_set_call_in_stop",
              .showStem = "distrib_call_in_stop",
              .title = "Call In Simulation Stop Confirm",
              .dashes = 43,
              .words = "set call in simulation stop configuration",
              .text = "Stop call in simulation"},
    .answerUnit = 122,
    .fields = inStopShown,
};
constexpr Simulation callOutStart = {
    .ports = {.id = 3106,
              .shape = &outShape,
              .bytes = sizeof(CallOutStart),
              .check = onRecord<check_call_out_start>,
              .checkList = check_call_out_start_handle},
    .names = {.stem = "snmp_get_call_out_start",
              .showStem = "distrib_call_out_start",
              .title = "Call Out Simulation Start Confirm",
              .dashes = 35,
              .words = "set call out simulation start configuration",
              .text = "Start call out simulation"},
    .answerUnit = 154,
    .fields = outStartShown,
};
constexpr Simulation callOutStatus = {
    .ports = {.id = 3107},
    .names = {.stem = "snmp_get_call_out_status",
              .showStem = "get_call_out_status",
              .title = "Call Out Simulation Status",
              .dashes = 39,
              .words = "get call out simulation status",
              .text = "Get call out simulation information"},
    .asks = Asks::something,
    .answerUnit = 120,
    .fields = outStatusShown,
};
constexpr Simulation callOutStop = {
    .ports = {.id = 3108},
    .names = {.stem = "snmp_set_call_out_stop",
              .showStem = "distrib_call_out_stop",
              .title = "Call Out Simulation Stop Confirm",
              .dashes = 55,
              .words = "set call out simulation stop configuration",
              .text = "Stop call out simulation"},
    .answerUnit = 320,
    .fields = outStopShown,
};

// --- Lists ---

// clang-format off
static constexpr Command commands[] = {
    command(CONFIG_NODE, "start call in simulation timeout <simTimeout> interface <ifStr>", cli_start_call_in_simulation_func,
            "simulate calls that come in at POTS ports"),
    command(CONFIG_NODE, "stop call in simulation interface <ifStr>", simulatePorts<callInStop>,
            "end simulated calls at POTS ports, with their result"),
    command(CONFIG_NODE,
            "start call out simulation timeout <simTimeout> telephone number <startNumber> step <numberStep> interface <ifStr>",
            cli_start_call_out_simulation_func, "simulate calls from POTS ports, each to a number of its own"),
    command(CONFIG_NODE, "stop call out simulation interface <ifStr>", simulatePorts<callOutStop>,
            "end simulated calls from POTS ports, with their result"),
    command(CONFIG_NODE, "show call in simulation status interface <ifStr>", simulatePorts<callInStatus>,
            "how far simulated calls at POTS ports are"),
    command(CONFIG_NODE, "show call out simulation status interface <ifStr>", simulatePorts<callOutStatus>,
            "how far simulated calls from POTS ports are"),
};
// clang-format on
static constexpr SnmpMsgReg messages[] = {
    simulationMessage<callInStart>(),  simulationMessage<callInStatus>(),  simulationMessage<callInStop>(),
    simulationMessage<callOutStart>(), simulationMessage<callOutStatus>(), simulationMessage<callOutStop>(),
};

void installCallSimulation() { installCommands(commands); }

void registerCallSimulation() {
  for (const SnmpMsgReg& message : messages) registerMessage(message);
}
