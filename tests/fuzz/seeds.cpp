// Inputs for the fuzzers to begin with, from scenarios: seeds FOLDER FILE... lays down the frames of a scenario in
// FOLDER/frames, a few in a file, and as a manager's requests in FOLDER/snmp; what its operators type in
// FOLDER/commands, and as a terminal sends it in FOLDER/socket.

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "scenario/arguments.h"
#include "scenario/reader.h"

namespace {

constexpr std::size_t kMostFrame = 4096;  // bytes; larger ones would hold the fuzzer up
constexpr std::size_t kFrames = 4;        // of a file

void number(std::string& to, std::size_t value) {
  to += static_cast<char>(value >> 8 & 0xff);
  to += static_cast<char>(value & 0xff);
}

struct Frame {
  enum Verb : u8 { set, setMore, get };
  Verb verb = set;
  u16 id = 0;
  std::string bytes;
};

// A directive "snmp VERB ID HEX".
std::optional<Frame> frameOf(const std::string& text) {
  scenario::Arguments arguments(text);
  if (arguments.word("directive") != "snmp") return {};
  Frame frame;
  frame.verb = static_cast<Frame::Verb>(arguments.choice({"set", "set-more", "get"}));
  frame.id = arguments.id();
  const std::string_view rest = arguments.rest();
  const std::vector<u8> bytes = rest == "null" ? std::vector<u8>() : scenario::parseBytes(rest);
  frame.bytes.assign(bytes.begin(), bytes.end());
  if (bytes.size() > kMostFrame) return {};
  return frame;
}

// See fuzz_frames.cpp.
std::string step(const Frame& frame) {
  std::string step(1, static_cast<char>(frame.verb));
  number(step, frame.id);
  number(step, frame.bytes.size());
  return step + frame.bytes;
}

// See fuzz_snmp.cpp.
std::string request(bool set, u8 column, u16 id, const std::string& value) {
  std::string text{static_cast<char>(set ? 2 : 0), 0, 0, 0 /* place */, 2 /* parts */};
  number(text, column);
  number(text, id);
  text += static_cast<char>(set ? 4 : 5);
  number(text, value.size());
  text += value;
  std::string step(1, '\2');
  number(step, text.size());
  return step + text;
}

std::string requests(const Frame& frame) {
  if (frame.verb != Frame::get) return request(true, frame.verb == Frame::set ? 1 : 2, frame.id, frame.bytes);
  return request(true, 4, frame.id, frame.bytes) + request(false, 5, frame.id, "");
}

// As a terminal sends it, with the question that it asks ahead.
std::string typed(const std::string& line) {
  std::string frames;
  for (const char kind : {'?', 'L'}) {
    frames.append(2, '\0');
    number(frames, line.size() + 1);
    frames += kind + line;
  }
  return frames;
}

void write(const std::filesystem::path& file, const std::string& bytes) {
  if (!bytes.empty()) std::ofstream(file, std::ios::binary) << bytes;
}

// False if the file is none of scenarios.
bool convert(const std::filesystem::path& folder, const std::filesystem::path& file) {
  std::ifstream in(file);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  std::vector<scenario::Problem> problems;
  const auto read = scenario::readScenario(file.stem(), text, problems);
  if (text.empty() || !problems.empty()) return false;
  std::string lines, terminal, frames, manager;
  std::size_t count = 0;
  const auto flush = [&](const std::string& name) {
    write(folder / "frames" / name, std::exchange(frames, {}));
    write(folder / "snmp" / name, std::exchange(manager, {}));
    write(folder / "socket" / name, std::exchange(terminal, {}));
  };
  for (const scenario::Directive& directive : read.directives) {
    if (directive.text.starts_with("cli ")) {
      lines += directive.text.substr(4) + "\n";
      terminal += typed(directive.text.substr(4));
    }
    if (const auto frame = frameOf(directive.text)) {
      frames += step(*frame);
      manager += requests(*frame);
      if (++count % kFrames == 0) flush(fmt::format("{}-{}", read.name, count));
    }
  }
  flush(read.name + "-rest");
  write(folder / "commands" / read.name, lines);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::filesystem::path folder = argv[1];
  for (const char* kind : {"frames", "snmp", "commands", "socket"}) std::filesystem::create_directories(folder / kind);
  for (int i = 2; i < argc; ++i) {
    if (convert(folder, argv[i])) continue;
    std::cerr << argv[i] << ": is no scenario\n";
    return 1;
  }
}
