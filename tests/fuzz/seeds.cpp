// Inputs for the fuzzers to begin with, from scenarios: seeds FOLDER FILE... lays down the frames of a scenario in
// FOLDER/frames, a few in a file, and what its operators type in FOLDER/commands.

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
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

// A directive "snmp VERB ID HEX" as a step: see fuzz_frames.cpp. Nothing for another directive.
std::string step(const std::string& text) {
  scenario::Arguments arguments(text);
  if (arguments.word("directive") != "snmp") return "";
  std::string step(1, static_cast<char>(arguments.choice({"set", "set-more", "get"})));
  number(step, arguments.id());
  const std::string_view rest = arguments.rest();
  const std::vector<u8> frame = rest == "null" ? std::vector<u8>() : scenario::parseBytes(rest);
  if (frame.size() > kMostFrame) return "";
  number(step, frame.size());
  return step.append(frame.begin(), frame.end());
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
  std::string lines, frames;
  std::size_t count = 0;
  for (const scenario::Directive& directive : read.directives) {
    if (directive.text.starts_with("cli ")) lines += directive.text.substr(4) + "\n";
    const std::string frame = step(directive.text);
    if (frame.empty()) continue;
    frames += frame;
    if (++count % kFrames != 0) continue;
    write(folder / "frames" / fmt::format("{}-{}", read.name, count), frames);
    frames.clear();
  }
  write(folder / "frames" / (read.name + "-rest"), frames);
  write(folder / "commands" / read.name, lines);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::filesystem::path folder = argv[1];
  for (const char* kind : {"frames", "commands"}) std::filesystem::create_directories(folder / kind);
  for (int i = 2; i < argc; ++i) {
    if (convert(folder, argv[i])) continue;
    std::cerr << argv[i] << ": is no scenario\n";
    return 1;
  }
}
