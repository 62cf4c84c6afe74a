// How a VLAN profile, or a row of a port's table, is printed.

#include "common/commands.h"
#include "data/common/terminal.h"
#include "data/vlan/vlan_profile.h"
#include "platform/flow_store.h"

void showVlanHead(Vty* vty, const VlanItem& item) {
  vty_out(vty, "%-20s%-10s%-10s%-10s%-10s%-10s\r\n", "vlan", "flag", "tpid", "vid", "cos", "cos copy");
  vty_out(vty, "%-20s%-10s0x%-8x%-10d%-10d%-10s\r\n", "tls vlan", textOf(kSwitchWords, item.tlsEnable, "--"),
          item.tlsTpid, item.tlsVid, item.tlsCos, textOf(kSwitchWords, item.tlsCosCopy, "--"));
  vty_out(vty, "%-20s%-4d\r\n", "service number:", item.serviceNum);
}

// A tag, and the rule that it goes by.
static void showTag(Vty* vty, const char* what, const char* flag, u16 tpid, u16 vid, u16 cos, i16 rule) {
  char name[kVlanName + 1] = "--";
  u8 length = kVlanName;
  if (rule != 0 && flowRuleIsPrfExist(rule) == 1) flowRuleGetNameById(name, &length, rule);
  vty_out(vty, "%-20s%-10s0x%-8x%-10d%-10d", what, flag, tpid, vid, cos);
  vty_out(vty, "%.20s(%d)\r\n", name, rule);
}

void show_vlan_profile_service(Vty* vty, const VlanService& service, u16 number) {
  vty_out(vty, "****************************service %-2d****************************\r\n", number);
  const char* type = textOf(kServiceTypeWords, service.serviceType, nullptr);
  const char* mode = textOf(kVlanModeWords, service.vlanMode, nullptr);
  if (type == nullptr) {
    vty_out(vty, "Error service type %d in profile.\r\n", service.serviceType);
    return;
  }
  vty_out(vty, "%-8s%-12s\r\n", "type:", type);
  if (mode == nullptr) {
    vty_out(vty, "Error vlan mode %d in profile.\r\n", service.vlanMode);
    return;
  }
  vty_out(vty, "%-8s%-12s\r\n", "mode:", mode);
  vty_out(vty, "%-20s%-10s%-10s%-10s%-10s%-30s\r\n", "vlan", "flag", "tpid", "vid", "cos", "rule(id)");
  showTag(vty, "cvlan", "--", service.cvlanTpid, service.cvlanVid, service.cvlanCos, service.cvlanRuleId);
  vty_out(vty, "%-20s%-10s0x%-8x%-10d%-10d%-2s\r\n", "translation vlan", "--", service.transTpid, service.transVid,
          service.transCos, "--");
  showTag(vty, "qinq", textOf(kSwitchWords, service.qinqEnable, "--"), service.qinqTpid, service.qinqVid,
          service.qinqCos, static_cast<i16>(service.qinqRuleId));
}

static CommandHandler cli_show_vlan_profile_func;
int cli_show_vlan_profile_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 2) return refuse(vty, "Unknown command.\r\n");
  if (tooLong(argv[0])) return refuse(vty, "Profile name %.20s is too long.\r\n", argv[0]);
  u16 id = 0;
  if (find_vlan_prf_id_by_name(argv[0], &id) != 0) return refuse(vty, "Profile %.20s is not exist.\r\n", argv[0]);
  const VlanProfile& profile = gPortVlanPrf[id];
  const VlanItem& item = profile.item;
  vty_out(vty, "\r\n%-16s%-20.20s\r\n", "profile name:", profile.name);
  vty_out(vty, "%-16s%-4d\r\n", "profile id:", id);
  showVlanHead(vty, item);
  if (argc == 2) {
    const u16 service = cutNumber(argv[1]);
    if (service == 0 || service > item.serviceNum) return refuse(vty, "Invalid service id %d.\r\n", service);
    show_vlan_profile_service(vty, item.services[service - 1], service);
    return 0;
  }
  for (u16 i = 0; i < item.serviceNum; ++i) {
    show_vlan_profile_service(vty, item.services[i], static_cast<u16>(i + 1));
  }
  return 0;
}

static constexpr Command commands[] = {
    command(CONFIG_NODE, "show vlan profile <name> {service <serviceid>}*1", cli_show_vlan_profile_func,
            "a VLAN profile, or one of its services"),
};

void installVlanProfileShow() { installCommands(commands); }
