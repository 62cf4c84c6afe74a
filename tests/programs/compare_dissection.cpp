// compare_dissection CAPTURE: what tshark -T json --no-duplicate-keys makes of the capture, on standard input, held
// against the JSON of the messages. What a message leaves open is malformed for both; only answers that somebody made
// up may be.

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "messages/capture.h"
#include "messages/json.h"

namespace {

using messages::Json;

std::string plain(std::string text) {
  std::erase_if(text, [](char letter) { return letter == ':' || letter == '-'; });
  return text;
}

bool same(const Json& wanted, const std::string& found) {
  if (wanted.is_string())
    return wanted == found || plain(wanted.get<std::string>()) == plain(found) || wanted == "0x" + plain(found);
  if (wanted.is_number_float()) return std::abs(wanted.get<double>() - std::stod(found)) < 1e-9;
  return found.starts_with("0x") ? wanted == std::stoull(found, nullptr, 16) : wanted.dump() == found;
}

// What follows from the rest and has no member.
bool isDull(const std::string& key) {
  static const std::set<std::string> kDull = {"msan.constant", "msan.count", "msan.reserved"};
  return kDull.contains(key.substr(0, key.rfind("_tree")));
}

// The first difference; empty: none.
std::string compare(const Json& wanted, const Json& tree) {
  static const Json kNothing = Json::object();
  if (!tree.is_object()) return compare(wanted, kNothing);
  std::set<std::string> compared;
  for (const auto& [name, value] : wanted.items()) {
    const auto isName = [&](const std::string& key) {
      return !isDull(key) && (key.ends_with("." + name) || key.ends_with("." + name + ".raw"));
    };
    auto at = tree.begin();
    while (at != tree.end() && !isName(at.key())) ++at;
    if (value.is_array() && value.empty() && at == tree.end()) continue;
    if (at == tree.end()) return name + " is missing";
    const Json& found = at.value();
    compared.insert({at.key(), at.key() + "_tree"});
    if (value.is_object()) {
      if (const std::string why = compare(value, found); !why.empty()) return name + "." + why;
    } else if (value.is_array()) {
      const std::size_t count = found.is_array() ? found.size() : 1;
      if (count != value.size()) return fmt::format("{}: {} items, not {}", name, count, value.size());
      for (std::size_t i = 0; i < count; ++i)
        if (const std::string why = compare(value[i], found.is_array() ? found[i] : found); !why.empty())
          return fmt::format("{}[{}].{}", name, i, why);
    } else if (!found.is_string()) {
      return name + " is no value";
    } else if (!same(value, found.get<std::string>())) {
      return fmt::format("{}: {}, not {}", name, found.dump(), value.dump());
    }
  }
  for (const auto& [key, value] : tree.items())
    if (!key.starts_with("_ws.") && !isDull(key) && !compared.contains(key)) return key + " is too much";
  return "";
}

struct Tally {
  std::size_t next = 0, malformed = 0, bad = 0;
};

void comparePacket(const messages::Captured& packet, const Json& layers, Tally& tally) {
  const messages::Message* const message = messages::book().find(packet.id);
  const messages::Bytes bytes(reinterpret_cast<const u8*>(packet.bytes.data()), packet.bytes.size());
  const Json tree = layers.value("msan", Json::object());
  const auto tell = [&](const std::string& why) {
    ++tally.bad;
    fmt::print("packet {}, {} {}: {}\n", tally.next, roadName(packet.road), packet.id, why);
  };
  // An error ahead of any message.
  if (packet.bytes == std::string("\0\0\0\x41", 4) && tree.contains("msan.meaning")) return;
  if (message == nullptr) return tell("not described");
  const messages::Layout* const layout = layoutOf(messages::book(), *message, packet.road, bytes);
  if (layout == nullptr) return tell("not described");
  const auto decoded = decode(*message, *layout, bytes);
  const bool malformed = std::ranges::any_of(
      decoded.problems, [](const messages::Problem& one) { return one.fault == messages::Fault::form; });
  const std::string text = tree.dump();
  const bool told = text.find("\"msan.malformed\"") != text.npos;
  const bool isCut = bytes.size() == messages::kMostCaptured;
  if (malformed != told && !isCut)
    return tell(fmt::format("malformed for {}", told ? "the dissector alone" : "us alone"));
  if (malformed && !isCut) {
    ++tally.malformed;
    if (!messages::roadName(packet.road).ends_with("answer")) tell("malformed");
    return;
  }
  if (isCut) return;
  if (text.find("\"msan.unknown\"") != text.npos) return tell("unknown bytes");
  const std::string why = compare(toJson(decoded), tree.value("msan.fields", Json::object()));
  if (!why.empty()) tell(why);
}

}  // namespace

int main(int, char** argv) {
  std::ifstream file(argv[1], std::ios::binary);
  const auto packets = messages::readCapture(std::string(std::istreambuf_iterator<char>(file), {}));
  Tally tally;
  // Packet by packet: all of them would take much memory.
  const Json rest = Json::parse(std::cin, [&](int depth, Json::parse_event_t event, Json& parsed) {
    if (depth != 1 || event != Json::parse_event_t::object_end) return true;
    comparePacket(packets.at(tally.next++), parsed.at("_source").at("layers"), tally);
    return false;
  });
  fmt::print("{} of {} packets, {} made-up answers are malformed, {} differ\n", tally.next, packets.size(),
             tally.malformed, tally.bad);
  return tally.bad == 0 && tally.next == packets.size() ? 0 : 1;
}
