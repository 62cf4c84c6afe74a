// The commands of the feed values, and their part of the running configuration.

#include <span>

#include "common/commands.h"
#include "common/interface_list.h"
#include "common/msan_init.h"
#include "common/obj_attributes.h"
#include "platform/log.h"
#include "platform/objects.h"
#include "platform/wrappers.h"
#include "ppda/volt_current.h"
#include "voice/common/voice_obj.h"

static int badQuantity(Vty* vty) {
  vty_out(vty, " \r\n invalid parameter quantity. \r\n");
  return -1;
}

static CommandHandler msan_cli_set_pots_voltage_current_config_func;
int msan_cli_set_pots_voltage_current_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 3) return badQuantity(vty);
  PotsFeed record;
  // Ranges and ports are the manager's to check: what an operator types is taken.
  record.voltage = static_cast<u32>(bep_atoiEx(argv[0]));
  record.current = static_cast<u32>(bep_atoiEx(argv[1]));
  ObjList addresses;
  if (CliInputConvertObjIndex(argv[2], addresses) != 0) {
    vty_out(vty, "\r\n parse interface string %s failed. \r\n", argv[2]);
    return -1;
  }
  SnmpErrInfo err;
  const int result = vdistrib_pots_voltcurrentx(addresses, &record, &err);
  vty_out(vty, "\r\n set POTS port feed voltage & current configuration %s(%d). \r\n",
          result == 0 ? "successfully" : "failed", static_cast<i16>(err.errCode));
  return result;
}

static CommandHandler msan_cli_erase_pots_voltage_current_config_func;
int msan_cli_erase_pots_voltage_current_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  const u16 slot = static_cast<u16>(bep_atoiEx(argv[0]));
  const int result = verase_pots_voltcurrent(slot);
  vty_out(vty, "\r\n erase slot %d POTS port feed voltage & current configuration %s. \r\n", slot,
          result == 0 ? "successfully" : "failed");
  return result;
}

static CommandHandler msan_cli_show_pots_voltage_current_config_func;
int msan_cli_show_pots_voltage_current_config_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1) return badQuantity(vty);
  return show_pots_voltcurrent_by_slot(static_cast<u16>(bep_atoiEx(argv[0])), vty);
}

// The stored record of a port. False when it has no object, or no row.
static bool readPort(u16 slot, u16 port, PotsFeed& record) {
  ObjIndex object;
  return SlotNoPortConvertObjIndex(slot, port, 0, &object) == 0 &&
         getObjAttrDataByCondition(&object, kFeedAttribute, &record, 0, sizeof record) == 0;
}

int show_pots_voltcurrent_by_slot(u16 slot, Vty* vty) {
  u16 card = 0, subtype = 0, portType = 0, amount = 0;
  if (vGetSlotPortObjType(slot, &card, &subtype, &portType) != 0) return -1;
  if (ddGetBoardServePortAmountByType(card, &amount) < 0) return -2;
  vty_out(vty, "\r\n Slot %d POTS Port Feed Voltage & Current Configuration", slot);
  vty_out(vty, "\r\n -------------------------------------------------------");
  vty_out(vty, "\r\n %6s%12s%13s", "PortNo", "Voltage(V)", "Current(mA)");
  vty_out(vty, "\r\n %24s", "------  ----------  -----------");
  for (u16 port = 1; port <= amount; ++port) {
    PotsFeed record;
    if (!readPort(slot, port, record)) continue;
    vty_out(vty, "\r\n %4d %10lu   %10lu", port, static_cast<unsigned long>(record.voltage),
            static_cast<unsigned long>(record.current));
  }
  vty_out(vty, "\r\n");
  vty_out(vty, "\r\n get slot %d POTS port feed voltage & current configuration successfully. \r\n", slot);
  return 0;
}

// Prints the ports of a slot that differ from the default. False at a port that can't be read.
static bool showrunSlot(Vty* vty, u16 slot, u16 amount) {
  for (u16 port = 1; port <= amount; ++port) {
    PotsFeed record;
    if (!readPort(slot, port, record)) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "%s: no feed values for slot %d port %d.\r\n", __func__, slot, port);
      return false;
    }
    if (record.voltage == 42 && record.current == 22) continue;
    vty_out(vty, "set pots port feed voltage %d current %d interface %d/%d\r\n", static_cast<i32>(record.voltage),
            static_cast<i32>(record.current), record.slot, record.port);
  }
  return true;
}

void vshow_run_pots_voltcurrent(Vty* vty) {
  u32 slots[kMostServeSlots];
  u32 count = 0;
  if (getServeSlots(slots, &count) != 0) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: the slots can't be had.\r\n", __func__);
    return;
  }
  for (const u32 listed : std::span(slots).first(count)) {
    const u16 slot = static_cast<u16>(listed);
    u16 amount = 0;
    if (vCheckSlotNo(slot, kPotsCardKind) != 0) continue;
    ddGetBoardServePortAmountByType(static_cast<u16>(get_config_card_type(slot)), &amount);
    if (!showrunSlot(vty, slot, amount)) return;
  }
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "set pots port feed voltage <feedVoltage> current <feedCurrent> interface <ifStr>",
            msan_cli_set_pots_voltage_current_config_func, "feed voltage and current of POTS ports"),
    command(CONFIG_NODE, "show slot <slotNo> pots port feed voltage and current configuration",
            msan_cli_show_pots_voltage_current_config_func, "feed voltage and current of POTS ports"),
    command(CONFIG_NODE, "erase slot <slotNo> pots port feed voltage and current configuration",
            msan_cli_erase_pots_voltage_current_config_func, "feed voltage and current of POTS ports"),
};

void volt_current_install() { installCommands(commands); }
