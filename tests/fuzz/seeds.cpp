// Inputs for the fuzzers to begin with, from scenarios: seeds FOLDER FILE... lays down the frames of a scenario in
// FOLDER/frames, a few in a file, and as a manager's requests in FOLDER/snmp; what its operators type in
// FOLDER/commands, and as a terminal sends it in FOLDER/socket.

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <span>

#include "steps.h"

namespace {

using fuzz::Step, fuzz::Verb;

void number(std::string& to, std::size_t value) {
  to += static_cast<char>(value >> 8 & 0xff);
  to += static_cast<char>(value & 0xff);
}

// See fuzz_frames.cpp.
std::string frame(const Step& step) {
  std::string text(1, static_cast<char>(step.verb));
  number(text, step.id);
  number(text, step.text.size());
  return text + step.text;
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

std::string requests(const Step& frame) {
  if (frame.verb != Verb::get) return request(true, frame.verb == Verb::set ? 1 : 2, frame.id, frame.text);
  return request(true, 4, frame.id, frame.text) + request(false, 5, frame.id, "");
}

std::string line(const Step& step) { return (step.kind == Step::debugLine ? "@" : "") + step.text + "\n"; }

// As a terminal sends it, with the question that it asks ahead.
std::string typed(const Step& line) {
  std::string frames;
  for (const char kind : {'?', 'L'}) {
    frames.append(2, '\0');
    number(frames, line.text.size() + 1);
    frames += kind + line.text;
  }
  return frames;
}

// So many steps in a file.
template <class Form>
void write(const std::filesystem::path& name, std::span<const Step> steps, std::size_t inOne, Form form) {
  std::filesystem::create_directories(name.parent_path());
  while (!steps.empty()) {
    std::ofstream file(fmt::format("{}-{}", name.native(), steps.size()), std::ios::binary);
    for (const Step& step : steps.first(std::min(inOne, steps.size()))) file << form(step);
    steps = steps.subspan(std::min(inOne, steps.size()));
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  const std::filesystem::path folder = argv[1];
  for (int i = 2; i < argc; ++i) {
    fuzz::Pool pool;
    if (!fuzz::addScenario(pool, argv[i])) {
      std::cerr << argv[i] << ": is no scenario\n";
      return 1;
    }
    const std::string name = std::filesystem::path(argv[i]).stem();
    write(folder / "frames" / name, pool.frames, 4, frame);
    write(folder / "snmp" / name, pool.frames, 4, requests);
    write(folder / "commands" / name, pool.lines, pool.lines.size(), line);
    write(folder / "socket" / name, pool.lines, 4, typed);
  }
}
