// The messages of scenarios as a file for Wireshark.

#include "messages/capture.h"

#include <fmt/format.h>

#include <fstream>
#include <stdexcept>

#include "modes.h"
#include "told.h"

namespace scenario {

namespace {

// Ahead of what came of it.
std::vector<Told> messagesOf(TellingReader& reader, const Directive& directive, const Played& played) {
  std::vector<Told> all = reader.read(directive.text, played.record);
  if (Told answer; readAnswer(directive.text, answer)) all.insert(all.begin(), std::move(answer));
  return all;
}

}  // namespace

int captureFiles(const std::string& module, const std::vector<Scenario>& scenarios, const std::string& file) {
  std::ofstream output(file, std::ios::binary);
  std::string capture = messages::captureHead();
  std::size_t count = 0;
  std::chrono::seconds time{0};
  for (const Scenario& scenario : scenarios) {
    TellingReader reader;
    const std::vector<Played> played = playAll(module, scenario);
    for (std::size_t i = 0; i < played.size(); ++i) {
      ++time;
      for (const Told& told : messagesOf(reader, scenario.directives[i], played[i])) {
        appendPacket(capture, time, told.road, told.slot, told.id, told.bytes);
        ++count;
      }
    }
    output << capture;
    capture.clear();
  }
  output.close();
  if (!output) throw std::runtime_error(file + ": can't be written");
  fmt::print("{} messages\n", count);
  return kGood;
}

}  // namespace scenario
