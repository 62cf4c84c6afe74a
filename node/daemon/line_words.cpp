#include "line_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "cards/dsl_cards.h"
#include "operator.h"
#include "platform_words.h"

namespace msand {

namespace {

using cards::FarEnd, cards::Site;

constexpr double kQuietest = -170, kLoudest = 0;  // dBm/Hz

template <class Number>
std::optional<Number> numberOf(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return {};
  return number;
}

int refuse(const PlatformCall& call, const std::string& why) {
  call.text += why + "\r\n";
  return -1;
}

// "5", "1-8,12". Empty for another text and for ports that no card has.
std::vector<u16> portsOf(std::string_view text) {
  std::vector<u16> ports;
  while (true) {
    const std::string_view part = text.substr(0, text.find(','));
    const auto dash = part.find('-');
    const auto first = numberOf<u16>(part.substr(0, dash));
    const auto last = dash == part.npos ? first : numberOf<u16>(part.substr(dash + 1));
    if (!first || !last || *first < 1 || *last > host::kPorts || *first > *last) return {};
    for (u16 port = *first; port <= *last; ++port) ports.push_back(port);
    if (part.size() == text.size()) return ports;
    text.remove_prefix(part.size() + 1);
  }
}

std::optional<double> levelOf(std::string_view text) {
  double level = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), level);
  const bool good = error == std::errc{} && end == text.data() + text.size() && level >= kQuietest && level <= kLoudest;
  return good ? std::optional(level) : std::nullopt;
}

// What the words behind slot and port change of a line. None if one of them is not good.
using Change = std::function<void(Site&)>;
std::optional<Change> changeOf(const std::vector<std::string>& told) {
  std::vector<Change> changes;
  for (std::size_t i = 0; i < told.size(); ++i) {
    const std::string& what = told[i];
    if (what == "loop") {
      const u32 metres = numberOf<u32>(told[++i]).value_or(0);
      const line::Gauge gauge = told[++i] == "0.4" ? line::Gauge::mm04 : line::Gauge::mm05;
      changes.push_back([=](Site& site) { site.plant.loop = {gauge, metres, site.plant.loop.tapMetres}; });
    } else if (what == "tap") {
      const u32 metres = numberOf<u32>(told[++i]).value_or(0);
      changes.push_back([=](Site& site) { site.plant.loop.tapMetres = metres; });
    } else if (what == "noise") {
      const auto level = levelOf(told[++i]);
      if (!level) return {};
      changes.push_back([=](Site& site) { site.plant.noise = *level; });
    } else if (what == "tone") {
      const u32 tone = numberOf<u32>(told[++i]).value_or(0);
      const auto level = levelOf(told[++i]);
      if (!level) return {};
      changes.push_back([=](Site& site) { site.plant.disturbedTone = tone, site.plant.disturbance = *level; });
    } else if (what == "far") {
      const std::string& end = told[++i];
      const FarEnd far = end == "present" ? FarEnd::present : end == "open" ? FarEnd::open : FarEnd::shorted;
      changes.push_back([=](Site& site) { site.far = far; });
    }
  }
  return [changes](Site& site) {
    for (const Change& change : changes) change(site);
  };
}

// Changes the lines, or shows them if nothing is to be changed. Port 0: those of the card.
int tell(const PlatformCall& call, u16 slot, const std::vector<u16>& ports, const std::vector<std::string>& told) {
  if (!host::holdsServiceCard(slot)) return refuse(call, fmt::format("slot {} holds no service card", slot));
  if (ports.empty()) return refuse(call, "ports of the slot are 1 to 64: 5, 1-8,12");
  const auto change = changeOf(told);
  if (!change) return refuse(call, fmt::format("a level is {} to {} dBm/Hz", kQuietest, kLoudest));
  for (const u16 port : ports) {
    Site site = call.node.cards().site(slot, port);
    (*change)(site);
    if (!told.empty())
      call.node.cards().setSite(slot, port, site);
    else
      call.text += port == 0 ? fmt::format("slot {} line {}\r\n", slot, wordsOf(site))
                             : fmt::format("slot {} port {} {}\r\n", slot, port, wordsOf(site));
  }
  return 0;
}

int portCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty, [slot = numberOf<u16>(argv[0]).value_or(0), ports = portsOf(argv[1]),
                     told = std::vector<std::string>(argv + 2, argv + argc)](const PlatformCall& call) {
    return tell(call, slot, ports, told);
  });
}

int cardCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  return leave(vty, [slot = numberOf<u16>(argv[0]).value_or(0), told = std::vector<std::string>(argv + 1, argv + argc)](
                        const PlatformCall& call) { return tell(call, slot, {0}, told); });
}

// clang-format off
#define MSAN_LINE "{[loop] <0-9000> m [0.4|0.5] mm}*1 {[tap] <0-1000> m}*1 {[noise] <level>}*1 {[tone] <0-4095> <level>}*1 {[far] [present|open|short]}*1"
const CommandElement kElements[] = {
    {"chassis slot <1-20> line " MSAN_LINE, cardCommand, "the line behind each DSL port that has none of its own; shows it"},
    {"chassis slot <1-20> port <linePorts> " MSAN_LINE, portCommand, "the line behind a DSL port; shows it"},
};
#undef MSAN_LINE
// clang-format on

}  // namespace

std::string wordsOf(const cards::Site& site) {
  const line::Plant& plant = site.plant;
  std::string text = fmt::format("loop {} m {} mm tap {} m noise {:g} tone {}", plant.loop.metres,
                                 plant.loop.gauge == line::Gauge::mm04 ? "0.4" : "0.5", plant.loop.tapMetres,
                                 plant.noise, plant.disturbedTone);
  text += fmt::format(" {:g} far {}", plant.disturbance,
                      site.far == cards::FarEnd::present ? "present"
                      : site.far == cards::FarEnd::open  ? "open"
                                                         : "short");
  return text;
}

std::span<const CommandElement> lineWords() { return kElements; }

bool tellOfLine(std::string_view told) {
  return told.starts_with("slot ") && (told.find(" line ") != told.npos || told.find(" port ") != told.npos);
}

}  // namespace msand
