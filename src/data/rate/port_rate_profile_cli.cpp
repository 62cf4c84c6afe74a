// The commands over rate-limit profiles, and their lines of the running configuration.

#include <cstring>

#include "common/commands.h"
#include "common/report.h"
#include "data/common/terminal.h"
#include "data/rate/port_rate_bind.h"
#include "data/rate/port_rate_profile.h"

static bool isDefaultName(const char* name) { return bep_StrCmp(name, kDefaultRateName) == 0; }
static const char* switchWord(u8 status) { return textOf(kSwitchWords, status == 1, "disable"); }
static u32 rateOf(const char* text) { return static_cast<u32>(bep_atoiEx(text)); }

static CommandHandler cli_set_rate_limit_prf_func;
int cli_set_rate_limit_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 6) return refuse(vty, "unknown command.\r\n");
  PortRatePrf profile;
  profile.id = cutNumber(argv[0]);
  const std::size_t length = bep_StrLen(argv[1]);
  if (profile.id == 0) return refuse(vty, "default pfr can not modify.\r\n");
  if (length > kRateName) {
    return refuse(vty, "port rate limit profile name length error!len=%d.\n\r", static_cast<int>(length));
  }
  if (isDefaultName(argv[1])) return refuse(vty, "default pfr name can not modify.\r\n");
  const auto us = valueOf(kSwitchWords, argv[2]);
  const auto ds = valueOf(kSwitchWords, argv[4]);
  if (!us || !ds) return refuse(vty, "unknown command.\r\n");
  std::memcpy(profile.name, argv[1], length);
  profile.usStatus = static_cast<u8>(*us);
  profile.usCir = rateOf(argv[3]);
  profile.dsStatus = static_cast<u8>(*ds);
  profile.dsCir = rateOf(argv[5]);
  if (const int code = gpon_set_port_rate_profile_base(profile, port_rate_prf_is_modify(profile.id, profile))) {
    return refuse(vty, "set port rate limit profile error: %d.\n\r", code);
  }
  reportChange(kNode, kRateProfileMessage, 3);
  vty_out(vty, "set port rate limit profile ok!\n\r");
  return 0;
}

// The profile that two words of a command name. `isDefault` is the line for the default. 0 or -1 with a line.
static int readProfileId(Vty* vty, char** argv, const char* isDefault, u16* id) {
  if (bep_StrCmp(argv[0], "id") == 0) {
    *id = cutNumber(argv[1]);
    if (!rate_limit_prf_is_valid(*id)) return refuse(vty, "profile id is not exist.\r\n ");
    if (*id != 0) return 0;
  } else if (bep_StrCmp(argv[0], "name") == 0) {
    const std::size_t length = bep_StrLen(argv[1]);
    if (length == 0 || length > kRateName) {
      return refuse(vty, "length of profile name is more than %d characters.\r\n", static_cast<int>(kRateName));
    }
    if (!isDefaultName(argv[1])) {
      const int found = StdSnmpGetRatePrfIdByName(argv[1]);
      *id = static_cast<u16>(found);
      return found >= 0 ? 0 : refuse(vty, "the profile name %s is not exit.\r\n", argv[1]);
    }
  } else {
    return refuse(vty, "unknown command.\r\n");
  }
  vty_out(vty, "%s", isDefault);
  return -1;
}

static CommandHandler cli_del_rate_limit_prf_func;
int cli_del_rate_limit_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 2) return refuse(vty, "unknown command.\r\n");
  u16 id = 0;
  if (readProfileId(vty, argv, "default prf can not delete.\r\n", &id) != 0) return -1;
  const int code = deleteRateProfile(id);
  if (code == kRateBound) {
    vty_out(vty, "\r\n prf_id %d is bind,can not delete\r\n", id);
    return 0;
  }
  if (code != 0) return refuse(vty, "\r\n del failed of ret :%d \r\n", code);
  reportChange(kNode, kRateProfileMessage, 3);
  vty_out(vty, "delete rate limit profile completed.\r\n");
  return 0;
}

static void showHead(Vty* vty, u32 count) {
  vty_out(vty, "port rate profile item: %d\r\n", static_cast<int>(count));
  if (count == 0) return;
  vty_out(vty, "id     name                    us_sta      us_cir     dn_sta      dn_cir\r\n");
}

static void showProfile(Vty* vty, const PortRatePrf& p) {
  vty_out(vty, "%-3d    %-20.20s    %-8s    %-7d    %-8s    %-7d\r\n", p.id, p.name, switchWord(p.usStatus), p.usCir,
          switchWord(p.dsStatus), p.dsCir);
}

static int showAll(Vty* vty) {
  PortRatePrf profile;
  u32 count = 1;
  for (u16 id = nextRateProfile(0, &profile); id != 0; id = nextRateProfile(id, &profile)) ++count;
  showHead(vty, count);
  get_rate_limit_profile_byid(0, &profile);
  showProfile(vty, profile);
  for (u16 id = nextRateProfile(0, &profile); id != 0; id = nextRateProfile(id, &profile)) showProfile(vty, profile);
  return 0;
}

static CommandHandler cli_show_rate_limit_prf_func;
int cli_show_rate_limit_prf_func(const CommandElement*, Vty* vty, int argc, char** argv) {
  if (argc != 1 && argc != 2) return refuse(vty, "unknown command.\r\n");
  if (bep_StrCmp(argv[0], "all") == 0) return showAll(vty);
  const bool byId = bep_StrCmp(argv[0], "id") == 0;
  if (argc == 1 && byId) return refuse(vty, "please input profile id.\r\n");
  if (argc == 1) return refuse(vty, "please input profile name.\r\n");
  u16 id = 0;
  PortRatePrf profile;
  const char* isDefault = byId ? "id is default prf.\r\n" : "name is default prf name.\r\n";
  if (readProfileId(vty, argv, isDefault, &id) != 0 || get_rate_limit_profile_byid(id, &profile) != 0) return -1;
  showHead(vty, 1);
  showProfile(vty, profile);
  return 0;
}

void port_rate_profile_showrun(Vty* vty) {
  PortRatePrf p;
  for (u16 id = nextRateProfile(0, &p); id != 0; id = nextRateProfile(id, &p)) {
    vty_out(vty, "set rate-limit id %d name %s us-status %s us-cir %d ds-status %s ds-cir %d \r\n", id, p.name,
            switchWord(p.usStatus), p.usCir, switchWord(p.dsStatus), p.dsCir);
  }
}

static constexpr Command commands[] = {
    command(CONFIG_NODE,
            "set rate-limit id <id> name <name> us-status [enable|disable] us-cir <value> ds-status [enable|disable] "
            "ds-cir <value> ",
            cli_set_rate_limit_prf_func, "make or change a rate-limit profile"),
    command(CONFIG_NODE, "delete rate-limit profile [id|name] <id_or_name> ", cli_del_rate_limit_prf_func,
            "take a rate-limit profile away"),
    command(CONFIG_NODE, "show rate-limit profile [id|name|all] {<id_or_name>}*1", cli_show_rate_limit_prf_func,
            "rate-limit profiles"),
};

static void offerProfiles(const void*, CommandOffers* to) {
  offer_to_cli(to, 0, kDefaultRateName, sizeof kDefaultRateName - 1);
  PortRatePrf p;
  for (u16 id = nextRateProfile(0, &p); id != 0; id = nextRateProfile(id, &p)) {
    offer_to_cli(to, id, p.name, static_cast<u32>(strnlen(p.name, kRateName)));
  }
}

void install_element_port_rate_profile() {
  install_offers("rate-limit", offerProfiles, nullptr);
  installCommands(commands);
}
