// Failing comparisons by the names of fields.

#include <fmt/format.h>

#include <algorithm>

#include "compare.h"
#include "messages/show.h"
#include "told.h"

namespace scenario {

namespace {

constexpr std::size_t kMost = 12;  // fields that are named for a line

// The message that a line of the directive's record is; false if it is none.
bool toldBy(const std::string& directive, const std::string& line, Told& told) {
  if (readSent(line, told)) return true;
  if (!line.starts_with("reply ")) return false;
  const std::vector<Told> all = TellingReader().read(directive, {line});
  const auto reply = std::ranges::find(all, std::size_t{0}, &Told::line);
  if (reply == all.end()) return false;
  told = *reply;
  return true;
}

// What was expected, as bytes: any byte is as it was given, or zero behind that.
std::vector<u8> bytesOf(const std::vector<u16>& pattern, const std::vector<u8>& given) {
  std::vector<u8> bytes;
  for (std::size_t i = 0; i < pattern.size(); ++i)
    bytes.push_back(pattern[i] < 256 ? static_cast<u8>(pattern[i]) : i < given.size() ? given[i] : u8{0});
  return bytes;
}

void nameFields(const HexLine& expected, const Told& told, std::vector<std::string>& lines) {
  const messages::Book& book = messages::book();
  const messages::Message* const message = book.find(told.id);
  if (message == nullptr) return;
  const std::vector<u8> wanted = bytesOf(expected.bytes, told.bytes);
  const messages::Layout* const layout = layoutOf(book, *message, told.road, told.bytes);
  if (layout == nullptr || layout != layoutOf(book, *message, told.road, wanted)) return;
  std::vector<std::string> names =
      differences(decode(*message, *layout, wanted), decode(*message, *layout, told.bytes));
  if (names.size() > kMost) {
    const std::size_t more = names.size() - kMost;
    names.resize(kMost);
    names.push_back(fmt::format("... {} more", more));
  }
  for (const std::string& name : names) lines.push_back(fmt::format("  {}: {}", message->name, name));
}

}  // namespace

std::vector<std::string> fieldDifferences(const Directive& directive, const std::vector<Pair>& pairs,
                                          const std::vector<std::string>& record) {
  std::vector<std::string> lines;
  std::vector<bool> used(record.size());
  for (const Pair& missing : pairs) {
    if (missing.side != Side::missing) continue;
    const auto expected = readHexLine(directive.expectations[missing.expectation].text);
    if (!expected) continue;
    const auto instead = std::ranges::find_if(pairs, [&](const Pair& pair) {
      const bool free = pair.side == Side::surplus || pair.side == Side::covered;
      return free && !used[pair.line] && record[pair.line].starts_with(expected->head);
    });
    Told told;
    if (instead == pairs.end() || !toldBy(directive.text, record[instead->line], told)) continue;
    used[instead->line] = true;
    nameFields(*expected, told, lines);
  }
  return lines;
}

}  // namespace scenario
