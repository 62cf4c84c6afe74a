#include "display.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace ctl {

// Of a sequence that sets a colour, and nothing else: ESC [ and up to two digits and m. 0: another one.
static std::size_t colourLength(std::string_view text) {
  if (!text.starts_with("\033[")) return 0;
  const std::size_t end = text.find_first_not_of("0123456789", 2);
  return end != text.npos && end <= 4 && text[end] == 'm' ? end + 1 : 0;
}

std::string forDisplay(std::string_view text, bool terminal) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string shown;
  shown.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char letter = text[i];
    const auto byte = static_cast<unsigned char>(letter);
    if (letter == '\r') continue;
    if (const std::size_t length = terminal ? colourLength(text.substr(i)) : 0; length != 0) {
      shown += text.substr(i, length);
      i += length - 1;
    } else if (terminal && (byte < ' ' || byte == 127) && letter != '\n' && letter != '\t')
      shown.append({'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]});
    else
      shown += letter;
  }
  return shown;
}

static std::string_view environment(const char* name) {
  const char* const value = std::getenv(name);
  return value != nullptr ? value : "";
}

wire::Screen screenOf(int descriptor) {
  wire::Screen screen;
  winsize size{};
  const bool terminal = isatty(descriptor) == 1;
  if (terminal && ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) {
    screen.columns = size.ws_col;
  } else if (const int columns = std::atoi(std::string(environment("COLUMNS")).c_str());
             columns > 0 && columns < 1000) {
    screen.columns = static_cast<u16>(columns);
  }
  screen.utf8 = std::string_view(nl_langinfo(CODESET)) == "UTF-8";
  screen.colour = terminal && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
  return screen;
}

bool notUnderstood(const wire::Result& result) { return result.outcome >= 1 && result.outcome <= 3; }

// Columns that a text takes: characters, as UTF-8 spells them.
static std::size_t columns(std::string_view text) {
  return static_cast<std::size_t>(
      std::ranges::count_if(text, [](char letter) { return (static_cast<unsigned char>(letter) & 0xc0) != 0x80; }));
}

std::string pointer(std::string_view prompt, std::string_view line, const wire::Result& result, std::size_t width) {
  const std::size_t column = columns(prompt) + columns(line.substr(0, result.at));
  return std::string(width == 0 ? column : column % width, ' ') + "^ " + forDisplay(result.expected, true);
}

std::string reasonOf(const wire::Result& result) {
  switch (result.outcome) {
    case 0:
      return "failed (" + std::to_string(result.returned) + ")";
    case 1:
      return "unknown command";
    case 2:
      return "incomplete command";
    case 3:
      return "ambiguous command";
    default:
      return "refused";
  }
}

std::vector<Suggestion> readSuggestions(std::string_view rows) {
  std::vector<Suggestion> suggestions;
  while (!rows.empty()) {
    const std::string_view row = rows.substr(0, rows.find('\n'));
    rows.remove_prefix(std::min(row.size() + 1, rows.size()));
    const std::size_t tab = row.find('\t');
    suggestions.push_back({row.substr(0, tab), tab == row.npos ? std::string_view() : row.substr(tab + 1)});
  }
  return suggestions;
}

static char lower(char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; }

static std::size_t commonLength(std::string_view a, std::string_view b) {
  const auto same = [](char x, char y) { return lower(x) == lower(y); };
  return static_cast<std::size_t>(std::ranges::mismatch(a, b, same).in1 - a.begin());
}

std::string completion(std::string_view lineToCursor, const std::vector<Suggestion>& suggestions) {
  const std::string_view typed = lineToCursor.substr(lineToCursor.find_last_of(" \t") + 1);
  std::string_view common;
  int fitting = 0;
  for (const Suggestion& one : suggestions) {
    if (!one.isKeyword() || commonLength(one.word, typed) < typed.size()) continue;
    common = fitting == 0 ? one.word : common.substr(0, commonLength(common, one.word));
    ++fitting;
  }
  if (fitting == 0) return {};
  return std::string(common.substr(typed.size())) + (fitting == 1 ? " " : "");
}

bool insideQuotes(std::string_view lineToCursor) { return std::ranges::count(lineToCursor, '"') % 2 != 0; }

std::string helpTable(const std::vector<Suggestion>& suggestions) {
  std::size_t width = 8;
  for (const Suggestion& one : suggestions) width = std::max(width, one.word.size());
  std::string table;
  for (const Suggestion& one : suggestions) {
    table += "  " + std::string(one.word);
    if (!one.help.empty()) table += std::string(width - one.word.size() + 2, ' ') + std::string(one.help);
    table += "\r\n";
  }
  return table;
}

}  // namespace ctl
