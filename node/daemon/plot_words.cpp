#include "plot_words.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <ctime>
#include <string>

#include "cards/profile.h"
#include "host/chassis.h"
#include "module_read.h"
#include "operator.h"
#include "platform_words.h"
#include "plot/curve.h"
#include "port_profile.h"

namespace msand {

namespace {

using messages::View;

constexpr u16 kStatus = 2825, kBits = 2826, kTestStatus = 2830;

// A curve and where it comes from. A message that has both ways names both, one that has a way has one name; the
// tables of bits and gains do not tell ways apart, the bands do.
struct What {
  std::string_view word, quantity, unit;
  struct Source {
    u16 message = 0;
    std::string_view list, up, down;
  } sources[2];
  double none = 1e9;  // a value that says that nothing was measured
};
constexpr What kCurves[] = {
    {"bits", "Bits", "per tone", {{kBits, "tone", "bits", "bits"}, {}}},
    {"gain", "Gain", "dB", {{2827, "tone", "gain", "gain"}, {}}},
    {"snr", "SNR", "dB", {{2834, "group", "SNR", ""}, {2835, "group", "", "SNR"}}, 95.5},
    {"hlog", "Hlog", "dB", {{2831, "group", "up", "down"}, {}}, -96.3},
    {"qln", "Quiet line noise", "dBm/Hz", {{2833, "group", "up", "down"}, {}}, -150.5},
};

// The bands of the line as its card tells them; while it tells none, the widest of its family.
const line::Plan& planOf(u16 slot, u16 port) {
  const host::CardType* const type = host::authorisedType(slot);
  const bool vdsl = type != nullptr && (type->families & host::VDSL) != 0;
  const ModuleReply status(kStatus, slot, port);
  const auto told = cards::vdslMode(status.first("port").numberOr("StandardProfile", 0));
  return line::planOf(vdsl ? told.value_or(line::Mode::p17a) : line::Mode::adsl2plus);
}

std::optional<double> valueOf(const View& item, std::string_view field, double none) {
  if (field.empty()) return {};
  auto value = item.scaled(field);
  if (value && std::abs(*value - none) < 0.05) value.reset();
  return value;
}

// Adds a source's points; false if the module has none.
bool read(plot::Curve& curve, const What& what, const What::Source& source, u16 slot, u16 port, std::string& why) {
  const ModuleReply reply(source.message, slot, port);
  why = reply.why();
  const std::vector<View> items = reply.first("port").items(source.list);
  curve.points.resize(std::max(curve.points.size(), items.size()));
  for (std::size_t i = 0; i < items.size(); ++i) {
    if (auto value = valueOf(items[i], source.up, what.none)) curve.points[i].up = value;
    if (auto value = valueOf(items[i], source.down, what.none)) curve.points[i].down = value;
  }
  return !items.empty();
}

void partByBands(plot::Curve& curve, const line::Plan& plan) {
  for (std::size_t i = 0; i < curve.points.size(); ++i) {
    const auto band = line::bandOf(plan, static_cast<u32>(i));
    if (!band || !band->up) curve.points[i].up.reset();
    if (!band || band->up) curve.points[i].down.reset();
  }
}

std::string titleOf(const What& what, u16 slot, u16 port) {
  const std::string profile = lineProfile(slot, port);
  std::tm now{};
  const std::time_t seconds = std::time(nullptr);
  localtime_r(&seconds, &now);
  return fmt::format("{} of {}/{}, {}{}{:%Y-%m-%d %H:%M:%S}", what.quantity, slot, port, profile,
                     profile.empty() ? "" : ", ", now);
}

int refuse(const PlatformCall& call, const std::string& why) {
  call.text += why + "\r\n";
  return -1;
}

int plotCurve(const PlatformCall& call, const What& what, const std::string& place, bool asTable) {
  u16 slot = 0, port = 0;
  if (!readPort(place, slot, port)) return refuse(call, "a single port, as 1/5");
  if (!isDslPort(slot, port)) return refuse(call, fmt::format("{}/{} is no DSL port", slot, port));
  plot::Curve curve;
  std::string why;
  bool any = false;
  for (const What::Source& source : what.sources)
    if (source.message != 0) any = read(curve, what, source, slot, port, why) || any;
  if (!why.empty()) return refuse(call, fmt::format("{}/{}: {}", slot, port, why));
  if (!any) {
    const std::string state = ModuleReply(kTestStatus, slot, port).first("port").word("curState");
    return refuse(call, fmt::format("{}/{} has no such curve now: its line is in state {}", slot, port, state));
  }
  const line::Plan& plan = planOf(slot, port);
  curve.title = titleOf(what, slot, port);
  curve.quantity = what.quantity;
  curve.unit = what.unit;
  curve.kilohertz = plan.spacing / 1000;
  while (curve.points.size() * curve.tones < plan.tones && what.sources[0].list == "group") curve.tones *= 2;
  if (what.sources[0].list == "tone") partByBands(curve, plan);
  const wire::Screen& screen = call.terminal.screen;
  const plot::Style style{.columns = screen.columns, .utf8 = screen.utf8, .colour = screen.colour};
  call.text += asTable ? plot::table(curve) : plot::draw(curve, style);
  return 0;
}

int plotCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  const std::string_view word = argv[0];
  const What& what = *std::ranges::find(kCurves, word, &What::word);
  return leave(vty, [&what, place = std::string(argv[1]), asTable = argc > 2](const PlatformCall& call) {
    return plotCurve(call, what, place, asTable);
  });
}

const CommandElement kElements[] = {
    {"plot [bits|gain|snr|hlog|qln] <interface> {[table]}*1", plotCommand,
     "draw a curve of a DSL line over its tones, as its card tells it, or list its points"},
};

}  // namespace

std::span<const CommandElement> plotWords() { return kElements; }

}  // namespace msand
