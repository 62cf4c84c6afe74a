#include "port_words.h"

#include <fmt/format.h>

#include <string>

#include "host/chassis.h"
#include "module_read.h"
#include "operator.h"
#include "platform_words.h"
#include "port_profile.h"

namespace msand {

namespace {

using messages::View;

enum : u16 {
  kRateBinding = 2820,
  kMacLimit = 2822,
  kStatus = 2825,
  kDropReasons = 2828,
  kTestStatus = 2830,
  kEnable = 2840,
  kVlan = 2846,
  kVoicePort = 3092,
  kRateProfiles = 34609,
};
constexpr i64 kNoPvc = 65535;

// The lines of a port, each from the module's own answer.
class Glance {
 public:
  Glance(u16 slot, u16 port, const host::CardType& type) : slot_(slot), port_(port), type_(type) {}

  std::string run() {
    const auto state = host::cardState(slot_);
    add("card", fmt::format("{}, {}", type_.name,
                            state == host::CardState::up        ? "up"
                            : state == host::CardState::present ? "without its software"
                                                                : "not there"));
    if ((type_.families & host::DATA) != 0) {
      show("in service", kEnable, "port", [](const View& port) { return port.number("enable") == 1 ? "yes" : "no"; });
      if (isDslPort(slot_, port_)) showLine();
      showServices();
    }
    if ((type_.families & host::POTS) != 0)
      show("voice number", kVoicePort, "port", [](const View& port) { return orNone(port.text("userNumber")); });
    return std::move(text_);
  }

 private:
  static std::string orNone(std::string text) { return text.empty() ? "none" : std::move(text); }

  void add(std::string_view what, std::string_view value) { text_ += fmt::format("{:<14} {}\r\n", what, value); }

  // What a message tells of the port, or why it does not.
  template <class Words>
  void show(std::string_view what, u16 message, std::string_view list, Words words) {
    const ModuleReply reply(message, slot_, port_);
    if (!reply.good())
      add(what, "- " + reply.why());
    else if (reply.whole().items(list).empty())
      add(what, "- nothing is told");
    else
      add(what, words(reply.first(list)));
  }

  void showLine() {
    add("line profile", orNone(lineProfile(slot_, port_)));
    show("line", kTestStatus, "port", [](const View& port) { return port.word("curState"); });
    show("drops", kDropReasons, "port", [](const View& port) {
      const auto drops = port.items("drop");
      return drops.empty() ? "none" : fmt::format("{}, the last {} s ago", drops.size(), drops.front().word("ago"));
    });
    const ModuleReply status(kStatus, slot_, port_);
    const View line = status.first("port");
    if (line.numberOr("LineBitRateDs", 0) == 0 && line.numberOr("LineBitRateUs", 0) == 0) return;
    const auto number = [&](std::string_view name) { return line.numberOr(name, 0); };
    const auto scaled = [&](std::string_view name) { return line.scaled(name).value_or(0); };
    add("mode", fmt::format("standard {}, profile 0x{:x}, delay down {} up {} ms", number("Standard"),
                            number("StandardProfile"), number("delayDs"), number("delayUs")));
    add("rate", fmt::format("down {} of {}, up {} of {} kbit/s", number("netDataRateDs"), number("attainableBitRateDs"),
                            number("netDataRateUs"), number("attainableBitRateUs")));
    add("margin", fmt::format("down {:.1f}, up {:.1f} dB", scaled("snrMarginDs"), scaled("snrMarginUs")));
    add("power", fmt::format("down {:.1f}, up {:.1f} dBm", scaled("outputPowerDs"), scaled("outputPowerUs")));
    show("attenuation", kTestStatus, "port", [](const View& port) {
      return fmt::format("down {:.1f}, up {:.1f} dB", port.scaled("aggLnAttenDs").value_or(0),
                         port.scaled("aggLnAttenUs").value_or(0));
    });
  }

  void showServices() {
    showRows("VLAN", kVlan, "object", services);
    showRows("MAC limit", kMacLimit, "port", [](const View& row) {
      return row.numberOr("enable", 0) == 1 ? row.word("number") + " addresses" : std::string();
    });
    show("rate limit", kRateBinding, "port", [](const View& port) { return rateLimit(port.numberOr("prfId", 0)); });
  }

  // The rows of a port's circuits that hold anything.
  template <class Words>
  void showRows(std::string_view what, u16 message, std::string_view list, Words words) {
    const ModuleReply reply(message, slot_, port_);
    if (!reply.good()) return add(what, "- " + reply.why());
    bool any = false;
    for (const View& row : reply.first(list).items("row")) {
      const std::string text = words(row);
      if (!text.empty()) add(what, pvc(row) + text);
      any = any || !text.empty();
    }
    if (!any) add(what, "none");
  }

  static std::string pvc(const View& row) {
    const i64 index = row.numberOr("pvcIndex", kNoPvc);
    return index == kNoPvc ? "" : fmt::format("pvc {}: ", index);
  }

  static std::string services(const View& row) {
    std::string text = row.numberOr("tlsEnable", 0) == 1 ? fmt::format("tls {}", row.word("tlsVid")) : "";
    for (const View& service : row.items("service")) {
      text += fmt::format("{}{} {} {}", text.empty() ? "" : ", ", service.word("serviceType"), service.word("vlanMode"),
                          service.word("cvlanVid"));
      if (service.word("vlanMode") == "translation") text += " to " + service.word("transVid");
      if (service.numberOr("qinqEnable", 0) == 1) text += " in " + service.word("qinqVid");
    }
    return text;
  }

  static std::string rateLimit(i64 id) {
    const ModuleReply profiles(kRateProfiles, 0, 0);
    if (profiles.good())
      for (const View& profile : profiles.whole().items("profile")) {
        if (profile.numberOr("id", -1) != id) continue;
        const auto way = [&](std::string_view status, std::string_view rate) {
          return profile.numberOr(status, 0) == 1 ? profile.word(rate) + " kbit/s" : std::string("not limited");
        };
        return fmt::format("profile {} {}, down {}, up {}", id, profile.text("name"), way("dsStatus", "dsCir"),
                           way("usStatus", "usCir"));
      }
    return fmt::format("profile {}", id);
  }

  const u16 slot_, port_;
  const host::CardType& type_;
  std::string text_;
};

int glance(const PlatformCall& call, const std::string& place) {
  u16 slot = 0, port = 0;
  std::string why;
  if (!readPort(place, slot, port))
    why = "a single port, as 1/5";
  else if (const host::CardType* const type = host::authorisedType(slot); type == nullptr)
    why = fmt::format("slot {} has no card type", slot);
  else if (port > type->ports)
    why = fmt::format("{} has {} ports", type->name, type->ports);
  else
    call.text += Glance(slot, port, *type).run();
  if (why.empty()) return 0;
  call.text += why + "\r\n";
  return -1;
}

int portCommand(const CommandElement*, Vty* vty, int, char** argv) {
  return leave(vty, [place = std::string(argv[0])](const PlatformCall& call) { return glance(call, place); });
}

const CommandElement kElements[] = {
    {"chassis port <interface>", portCommand, "a port at a glance: card, line, rates, services, limits, voice number"},
};

}  // namespace

std::span<const CommandElement> portWords() { return kElements; }

}  // namespace msand
