#include "engine.h"

#include <fmt/format.h>
#include <sys/random.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <system_error>

#include "files.h"
#include "note.h"

namespace msand {

namespace {

constexpr std::array<u8, 5> kForm = {0x80, 0x00, 0x1f, 0x88, 5};  // a name that is given as bytes
constexpr std::size_t kDigits = 2 * sizeof(Engine::id);
constexpr std::size_t kLongestFile = 100;
constexpr u32 kLastBoot = 0x7FFFFFFF;  // of a name

Engine newEngine() {
  Engine engine;
  std::ranges::copy(kForm, engine.id.begin());
  constexpr std::size_t kRandom = sizeof engine.id - kForm.size();
  if (getrandom(engine.id.data() + kForm.size(), kRandom, 0) != static_cast<ssize_t>(kRandom))
    throw std::system_error(errno, std::generic_category(), "snmp: no random bytes");
  return engine;
}

// The whole text is a number.
template <class Number>
bool readNumber(std::string_view text, int base, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, base);
  return error == std::errc{} && end == text.data() + text.size();
}

// "NAME BOOTS\n", the name in hexadecimal, as it was written at the last start.
std::optional<Engine> parse(std::string_view text) {
  if (text.size() < kDigits + 3 || text[kDigits] != ' ' || text.back() != '\n') return std::nullopt;
  Engine engine;
  for (std::size_t i = 0; i < engine.id.size(); ++i)
    if (!readNumber(text.substr(2 * i, 2), 16, engine.id[i])) return std::nullopt;
  if (!std::ranges::equal(kForm, std::span(engine.id).first(kForm.size()))) return std::nullopt;
  const std::string_view boots = text.substr(kDigits + 1, text.size() - kDigits - 2);
  if (!readNumber(boots, 10, engine.boots) || engine.boots == 0 || engine.boots >= kLastBoot) return std::nullopt;
  return engine;
}

Engine nextStart(const std::string& file) {
  try {
    if (const auto engine = parse(readFile(file, kLongestFile))) return {engine->id, engine->boots + 1};
    complain("snmp: " + file + ": is no record of starts; the engine id is a new one");
  } catch (const FileError& error) {
    if (error.code != ENOENT) complain(fmt::format("snmp: {}; the engine id is a new one", error.what()));
  }
  return newEngine();
}

}  // namespace

Engine startEngine(const std::string& file) {
  const Engine engine = nextStart(file);
  try {
    const std::string folder = std::filesystem::path(file).parent_path().string();
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) throw FileError(folder, "can't be made", errno);
    std::string text;
    for (const u8 byte : engine.id) text += fmt::format("{:02x}", byte);
    replaceFile(file, fmt::format("{} {}\n", text, engine.boots));
    return engine;
  } catch (const FileError& error) {
    complain(fmt::format("snmp: {}; the engine id is for this time only", error.what()));
    return newEngine();
  }
}

}  // namespace msand
