#include "log_repeats.h"

#include <fmt/format.h>

#include <algorithm>

namespace host {

constexpr std::size_t kLongest = 200;  // bytes that tell a kind

static std::string withoutNumbers(std::string_view line) {
  std::string kind;
  for (const char letter : line.substr(0, kLongest))
    if (letter < '0' || letter > '9')
      kind += letter;
    else if (!kind.ends_with('#'))
      kind += '#';
  return kind;
}

void LogRepeats::end(Kind& kind, const Tell& tell) {
  if (kind.count > kMostOfAKind) {
    --kept_;
    tell(fmt::format("{} more lines were like this one: {}", kind.count - kMostOfAKind, kind.line));
  }
  kind = {};
}

// The kind that is known, else the place of one that is not, or of the one that began first.
LogRepeats::Kind& LogRepeats::kindOf(std::string line, Time now, const Tell& tell) {
  const auto known = std::ranges::find(kinds_, line, &Kind::line);
  if (known != kinds_.end()) return *known;
  Kind& place = *std::ranges::min_element(kinds_, {}, &Kind::begin);
  end(place, tell);
  place = {std::move(line), now, 0};
  return place;
}

bool LogRepeats::passes(std::string_view line, Time now, const Tell& tell) {
  if (kept_ != 0)
    for (Kind& kind : kinds_)
      if (kind.count > kMostOfAKind && (now - kind.begin >= kWindow || now < kind.begin)) end(kind, tell);
  Kind& kind = kindOf(withoutNumbers(line), now, tell);
  if (now - kind.begin >= kWindow || now < kind.begin) {
    kind.begin = now;
    kind.count = 0;
  }
  if (++kind.count == kMostOfAKind + 1) ++kept_;
  return kind.count <= kMostOfAKind;
}

void LogRepeats::tellRest(const Tell& tell) {
  for (Kind& kind : kinds_) end(kind, tell);
}

}  // namespace host
