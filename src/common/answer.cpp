#include "common/answer.h"

#include <algorithm>
#include <bit>
#include <cstdio>
#include <iterator>

#include "common/msan_init.h"
#include "platform/log.h"

static constexpr u32 kLongestText = 128;

u64 numberIn(WireIn answer, u32 offset, u32 width, ByteOrder order) {
  if (width > answer.size() || offset > answer.size() - width) return 0;
  const bool little = order == ByteOrder::host && std::endian::native == std::endian::little;
  u64 value = 0;
  for (u32 i = 0; i < width; ++i) value = value << 8 | answer[offset + (little ? width - 1 - i : i)];
  return value;
}

int get_value_float_to_int(const u8* value, char* text) {
  if (value == nullptr || text == nullptr) {
    ulogPrintf(gModuleId_Msan, kLogDebug, "%s: the pointer is NULL.\r\n", __func__);
    return -24;
  }
  static constexpr double powers[] = {1, 10, 100, 1000, 10000, 100000};
  const u8 decimals = value[1];
  const i32 number = static_cast<i32>(getNumber(value + 2, 4));
  std::snprintf(text, kScaledText, "%5.2f", decimals < std::size(powers) ? number / powers[decimals] : 0.0);
  return 0;
}

ScaledText::ScaledText(WireIn answer, u32 offset) {
  static constexpr u8 none[6] = {};
  const bool held = offset <= answer.size() && answer.size() - offset >= sizeof none;
  get_value_float_to_int(held ? answer.data() + offset : none, text);
}

namespace {

struct Text {
  char bytes[kLongestText + 1] = {};

  Text(WireIn answer, u32 offset, u32 width) {
    if (offset > answer.size()) return;
    const WireIn field = answer.subspan(offset, std::min<std::size_t>({width, kLongestText, answer.size() - offset}));
    std::copy(field.begin(), std::find(field.begin(), field.end(), 0), bytes);
  }
};

struct Answer {
  WireIn bytes;
  ByteOrder order;

  u32 number(u32 offset, u32 width) const { return static_cast<u32>(numberIn(bytes, offset, width, order)); }
  u32 byte(u32 offset) const { return number(offset, 1); }
};

void showAddress(Vty* vty, const ShownField& field, const Answer& answer) {
  static constexpr Word kTypes[] = {{"IPv4", 1}, {"IPv6", 2}};
  const u32 type = answer.number(field.offset, 4);
  const u32 at = field.offset + 4u;
  Text address(answer.bytes, at, 16);
  if (type == 1) {
    std::snprintf(address.bytes, sizeof address.bytes, "%u.%u.%u.%u", answer.byte(at), answer.byte(at + 1),
                  answer.byte(at + 2), answer.byte(at + 3));
  }
  vty_out(vty, field.format, field.label, textOf(kTypes, type, "N/A"), "): ", address.bytes,
          answer.number(field.offset + 20u, 4));
}

void showNumber(Vty* vty, const ShownField& field, const Answer& answer) {
  if (field.width > 4)
    vty_out(vty, field.format, field.label,
            static_cast<unsigned long long>(numberIn(answer.bytes, field.offset, field.width, answer.order)));
  else
    vty_out(vty, field.format, field.label, answer.number(field.offset, field.width));
}

void showField(Vty* vty, const ShownField& field, const Answer& answer) {
  const u32 at = field.offset;
  switch (field.form) {
    case AnswerForm::number:
      return showNumber(vty, field, answer);
    case AnswerForm::scaled:
      return vty_out(vty, field.format, field.label, ScaledText(answer.bytes, at).text);
    case AnswerForm::word:
      return vty_out(vty, field.format, field.label,
                     textOf(field.words, answer.number(at, field.width), field.otherwise));
    case AnswerForm::text:
      return vty_out(vty, field.format, field.label, Text(answer.bytes, at, field.width).bytes);
    case AnswerForm::place:
      return vty_out(vty, field.format, field.label, answer.number(at, 2), answer.number(at + 2, 2));
    case AnswerForm::date:
      return vty_out(vty, field.format, field.label, answer.number(at, 2), answer.byte(at + 2), answer.byte(at + 3),
                     answer.byte(at + 4), answer.byte(at + 5), answer.byte(at + 6));
    case AnswerForm::mac:
      return vty_out(vty, field.format, field.label, answer.byte(at), answer.byte(at + 1), answer.byte(at + 2),
                     answer.byte(at + 3), answer.byte(at + 4), answer.byte(at + 5));
    case AnswerForm::address:
      return showAddress(vty, field, answer);
  }
}

}  // namespace

void showFields(Vty* vty, std::span<const ShownField> fields, WireIn answer, ByteOrder order) {
  for (const ShownField& field : fields) showField(vty, field, {answer, order});
}
