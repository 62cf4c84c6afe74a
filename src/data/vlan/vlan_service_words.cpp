// The words of "add vlan service".

#include <charconv>
#include <optional>

#include "common/words.h"
#include "data/vlan/vlan_service_command.h"
#include "platform/flow_store.h"

int cli_parse_vlan_service_type(const char* text, u8* type) {
  const auto value = text != nullptr ? valueOf(kServiceTypeWords, text) : std::nullopt;
  if (!value) return -1;
  *type = static_cast<u8>(*value);
  return 0;
}

int cli_parse_vlan_mode(const char* text, u16* mode) {
  const auto value = text != nullptr ? valueOf(kVlanModeWords, text) : std::nullopt;
  if (!value) return -1;
  *mode = static_cast<u16>(*value);
  return 0;
}

int cli_parse_vlan_rule(const char* text, int which, VlanService* service) {
  int id = 0;
  if (text != nullptr) {
    if (tooLong(text)) return -1;
    id = flowRuleGetIdByName(text);
    if (id < 0) return -1;
  }
  switch (which) {
    case 6:
      service->cvlanRuleId = static_cast<i16>(id);
      return 0;
    case 7:
      service->qinqRuleId = static_cast<u16>(id);
      return 0;
    default:
      return -1;
  }
}

// A number of 16 bits that is the whole text.
static std::optional<u16> wholeNumber(std::string_view text, int base) {
  u16 value = 0;
  const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (code != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return value;
}

using Value = TagValues::Value;

// What was read, if it was a value.
static bool take(std::optional<u16> value, u16* to) {
  if (value) *to = *value;
  return value.has_value();
}

// Each reads a part of a word, empty where there is none.

static bool readTpid(std::string_view part, Value* out) {
  const bool hex = part.starts_with("0x") || part.starts_with("0X");
  const bool octal = part.size() > 1 && part.starts_with('0');
  const auto tpid = part.empty() ? std::optional(kDefaultTpid)
                                 : wholeNumber(part.substr(hex ? 2 : 0), hex     ? 16
                                                                         : octal ? 8
                                                                                 : 10);
  return take(tpid, &out->base);
}

// "all", a number, or a number with "+" or "-" and a step.
static bool readVid(std::string_view part, Value* out) {
  out->base = kNoTag;
  if (part.empty() || part == "all") return true;
  const std::size_t sign = part.find_first_of("+-");
  const auto vid = wholeNumber(part.substr(0, sign), 10);
  const auto step = sign == part.npos ? std::optional<u16>(0) : wholeNumber(part.substr(sign + 1), 10);
  if (!vid || !step) return false;
  out->base = *vid;
  out->step = sign != part.npos && part[sign] == '-' ? static_cast<u16>(-*step) : *step;
  return true;
}

static bool readCos(std::string_view part, Value* out) {
  const auto cos = part.empty()     ? std::optional<u16>(0)
                   : part == "null" ? std::optional(kNoTag)
                                    : wholeNumber(part, 10);
  return take(cos, &out->base);
}

// Cuts a text in two at the mark; the second part is empty without one. False if there is a third.
static bool cut(std::string_view text, char mark, std::string_view* first, std::string_view* second) {
  const std::size_t at = text.find(mark);
  *first = text.substr(0, at);
  *second = at == text.npos ? std::string_view() : text.substr(at + 1);
  return second->find(mark) == second->npos;
}

int cli_parse_tag(const char* text, int kind, TagValues* out) {
  using ReadPart = bool(std::string_view part, Value * out);
  ReadPart* const readers[] = {readTpid, readVid, readCos};
  if (kind < kTpidOfTags || kind > kCosOfTags) return -1;
  ReadPart* const read = readers[kind - kTpidOfTags];
  std::string_view front, cvlan, trans, qinq;
  if (!cut(text != nullptr ? text : "", '/', &front, &qinq) || !cut(front, ':', &cvlan, &trans)) return -1;
  out->hasQinq = !qinq.empty();
  return read(cvlan, &out->cvlan) && read(trans, &out->trans) && read(qinq, &out->qinq) ? 0 : -1;
}
