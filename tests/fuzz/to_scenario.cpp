// An input of the fuzz targets as a scenario: to_scenario frames|commands|startup FILE. To be played with the cards
// that the targets have; msan-scenario --record shows what comes of it.

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "fuzz_node.h"
#include "steps.h"

namespace {

unsigned number(std::string_view bytes, std::size_t at) {
  const auto byte = [&](std::size_t place) {
    return place < bytes.size() ? static_cast<unsigned>(static_cast<u8>(bytes[place])) : 0;
  };
  return byte(at) << 8 | byte(at + 1);
}

// The steps as fuzz_frames.cpp reads them; an id that no message has stands for another one there.
void tellFrames(std::string_view input) {
  while (!input.empty()) {
    const std::string_view frame = input.substr(std::min<std::size_t>(5, input.size())).substr(0, number(input, 3));
    const auto verb = static_cast<fuzz::Verb>(static_cast<u8>(input[0]) % 3);
    const u16 id = static_cast<u16>(number(input, 1));
    fmt::print("{}\n", fuzz::directiveOf({fuzz::Step::frame, verb, id, std::string(frame)}));
    input.remove_prefix(std::min(5 + frame.size(), input.size()));
  }
}

void tellLines(std::string_view input) {
  while (!input.empty()) {
    const std::size_t end = std::min(input.find('\n'), input.size());
    std::string_view line = input.substr(0, end);
    input.remove_prefix(std::min(end + 1, input.size()));
    const bool debug = line.starts_with('@');
    if (debug) line.remove_prefix(1);
    if (!line.empty()) fmt::print("{} {}\n", debug ? "cli@10" : "cli", line);
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  std::ifstream in(argv[2], std::ios::binary);
  const std::string input{std::istreambuf_iterator<char>(in), {}};
  fmt::print("{}", fuzz::setUp());
  const std::string_view target = argv[1];
  if (target == "startup") fmt::print("recover on\n");
  target == "frames" ? tellFrames(input) : tellLines(input);
}
