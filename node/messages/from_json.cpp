// JSON into bytes: the layout tells what follows, the members tell the values.

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>

#include "json.h"
#include "numbers.h"

namespace messages {

namespace {

[[noreturn]] void bad(const Field& field, const std::string& why) {
  throw BadValue(fmt::format("{}: {}", field.name.empty() ? "reserved" : field.name, why));
}

std::optional<i64> integerOf(const std::string& text) {
  const bool minus = text.starts_with('-');
  const bool hex = text.find("0x") == (minus ? 1 : 0);
  const char* const begin = text.data() + (minus ? 1 : 0) + (hex ? 2 : 0);
  const char* const end = text.data() + text.size();
  u64 value = 0;
  const auto [at, error] = std::from_chars(begin, end, value, hex ? 16 : 10);
  if (begin == end || at != end || error != std::errc()) return {};
  return minus ? static_cast<i64>(0 - value) : static_cast<i64>(value);
}

std::optional<double> decimalOf(const std::string& text) {
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || at != end || error != std::errc()) return {};
  return value;
}

std::string wordsOf(const Field& field) {
  std::string all;
  for (const Word& word : field.words) all += (all.empty() ? "" : ", ") + word.text;
  return all;
}

bool fits(i64 number, const Field& field) {
  const unsigned bits = 8u * field.width;
  if (bits == 64) return true;
  if (!field.isSigned) return number >= 0 && number < i64{1} << bits;
  return number >= -(i64{1} << (bits - 1)) && number < i64{1} << (bits - 1);
}

// As many bytes as the two-digit numbers between the separators tell, in the base.
std::vector<u8> partsOf(const Field& field, const std::string& text, std::size_t count, int base, char separator) {
  std::vector<u8> parts;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    unsigned value = 0;
    const char* const stop = base == 16 ? std::min(at + 2, end) : end;
    const auto [next, error] = std::from_chars(at, stop, value, base);
    if (error != std::errc() || value > 255) break;
    parts.push_back(static_cast<u8>(value));
    at = next;
    if (at != end && separator != 0 && (*at == separator || (separator == '-' && *at == ':')) && at + 1 != end) ++at;
  }
  if (at != end || (count != 0 && parts.size() != count)) bad(field, fmt::format("\"{}\" can't be read", text));
  return parts;
}

std::vector<u8> latin1(const Field& field, const std::string& text) {
  std::vector<u8> bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<u8>(text[i]);
    if (byte < 0x80) {
      bytes.push_back(byte);
    } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < text.size()) {
      bytes.push_back(static_cast<u8>(byte << 6 | (static_cast<u8>(text[++i]) & 0x3F)));
    } else {
      bad(field, "a letter beyond Latin-1");
    }
  }
  return bytes;
}

class Encoder {
 public:
  explicit Encoder(const Layout& layout) : registers_(layout.registers) {}

  std::vector<u8> run(const Layout& layout, const Json& values, std::vector<std::string>& unused) {
    put(layout.fields, values, "");
    for (const Rest& rest : rests_) {
      std::vector<u8> number;
      writeNumber(static_cast<i64>(to_.size() - rest.at - rest.field->width) + rest.field->amount.constant, *rest.field,
                  number);
      std::ranges::copy(number, to_.begin() + static_cast<std::ptrdiff_t>(rest.at));
    }
    unused = std::move(unused_);
    return std::move(to_);
  }

 private:
  // An object's members, and which of them have been used.
  struct Scope {
    const Json& object;
    std::vector<std::string> used;
    int gaps = 0;

    const Json* find(const std::string& name) {
      const auto found = object.find(name);
      if (found == object.end()) return nullptr;
      used.push_back(name);
      return &*found;
    }
  };

  // A number that tells how much stands behind it.
  struct Rest {
    std::size_t at;
    const Field* field;
  };

  void put(const std::vector<Field>& fields, const Json& object, const std::string& path) {
    if (!object.is_object()) throw BadValue("not an object");
    Scope scope{object, {}};
    put(fields, scope, path);
    for (const auto& [name, value] : object.items())
      if (std::ranges::find(scope.used, name) == scope.used.end()) unused_.push_back(path + "/" + name);
  }

  void put(const std::vector<Field>& fields, Scope& scope, const std::string& path) {
    for (std::size_t i = 0; i < fields.size(); ++i) put(fields, i, scope, path);
  }

  void put(const std::vector<Field>& fields, std::size_t i, Scope& scope, const std::string& path) {
    const Field& field = fields[i];
    switch (field.kind) {
      case Kind::when:
        put(isMet(field, scope) ? field.fields : field.otherwise, scope, path);
        return;
      case Kind::list:
        putItems(field, scope.find(field.name), path);
        return;
      case Kind::group: {
        static const Json kNone = Json::object();
        const Json* const group = scope.find(field.name);
        try {
          put(field.fields, group == nullptr ? kNone : *group, path + "/" + field.name);
        } catch (const BadValue& error) {
          throw BadValue(fmt::format("{}.{}", field.name, error.what()));
        }
        return;
      }
      case Kind::details:
        return;
      case Kind::number:
        putNumber(field, numberOf(field, std::span(fields).subspan(i + 1), scope));
        return;
      case Kind::scaled:
        putScaled(field, scope.find(field.name));
        return;
      default:
        putBytes(field, scope.find(field.kind == Kind::gap ? gapName(field, scope.gaps) : field.name));
    }
  }

  // What is left of a message that is being made is what the values have for it.
  i64 valueOf(const Amount& amount) const { return messages::valueOf(amount, registers_, 0); }

  bool isMet(const Field& when, Scope& scope) const {
    if (when.amount.source != Amount::kRest) return holds(when, valueOf(when.amount));
    return std::ranges::any_of(
        when.fields, [&](const Field& field) { return !field.name.empty() && scope.object.contains(field.name); });
  }

  // How much of what the number counts there is: the items of a list, the bytes of a text.
  static std::optional<i64> counted(i16 source, std::span<const Field> fields, const Json& object) {
    for (const Field& field : fields) {
      if (field.kind == Kind::when) {
        for (const auto* branch : {&field.fields, &field.otherwise})
          if (const auto found = counted(source, *branch, object)) return found;
      }
      const auto value = object.find(field.name);
      if (field.kind == Kind::group && value != object.end())
        if (const auto found = counted(source, field.fields, *value)) return found;
      if (field.kind == Kind::number || field.amount.source != source || value == object.end()) continue;
      const auto size =
          static_cast<i64>(value->is_string() ? value->get_ref<const std::string&>().size() : value->size());
      const i64 units = field.kind == Kind::bytes ? size / 2 : size;
      return (units - field.amount.constant) / std::max(field.amount.factor, 1);
    }
    return {};
  }

  i64 numberOf(const Field& field, std::span<const Field> behind, Scope& scope) {
    if (field.fixed) {
      if (field.amount.source == Amount::kRest) rests_.push_back({to_.size(), &field});
      return valueOf(field.amount);
    }
    if (const Json* const value = scope.find(field.name)) return toNumber(field, *value);
    if (const auto count = counted(field.keep, behind, scope.object)) return *count;
    if (field.counts) return 0;
    if (!field.words.empty()) return field.words.front().value;
    return field.ranges.empty() ? 0 : std::max<i64>(field.ranges.front().low, 0);
  }

  static i64 toNumber(const Field& field, const Json& value) {
    double decimal = 0;
    if (value.is_boolean()) return value.get<bool>() ? 1 : 0;
    if (value.is_number_integer()) {
      if (field.divisor == 1) return value.is_number_unsigned() ? static_cast<i64>(value.get<u64>()) : value.get<i64>();
      decimal = value.get<double>();
    } else if (value.is_number()) {
      decimal = value.get<double>();
    } else if (value.is_string()) {
      const auto& text = value.get_ref<const std::string&>();
      if (const auto word = std::ranges::find(field.words, text, &Word::text); word != field.words.end())
        return word->value;
      if (const auto number = integerOf(text); number && field.divisor == 1) return *number;
      const auto read = decimalOf(text);
      if (!read)
        bad(field, field.words.empty() ? fmt::format("\"{}\" is no number", text)
                                       : fmt::format("\"{}\" is none of {}", text, wordsOf(field)));
      decimal = *read;
    } else {
      bad(field, "neither a number nor a word");
    }
    const double number = decimal * field.divisor;
    const double whole = std::round(number);
    if (std::abs(number - whole) > 1e-6 || std::abs(whole) > 9e15)
      bad(field, field.divisor == 1 ? fmt::format("{} is not whole", decimal)
                                    : fmt::format("{} is not in steps of 1/{}", decimal, field.divisor));
    return static_cast<i64>(whole);
  }

  void putNumber(const Field& field, i64 number) {
    if (!fits(number, field)) bad(field, fmt::format("{} does not fit into {} bytes", number, field.width));
    registers_[static_cast<std::size_t>(field.keep)] = number;
    writeNumber(number, field, to_);
  }

  // With as many decimals as it takes, and the one at least that all margins of profiles have.
  void putScaled(const Field& field, const Json* value) {
    double number = 0;
    if (value != nullptr && value->is_string()) {
      if (const auto& text = value->get_ref<const std::string&>(); text.starts_with("0x")) {
        std::ranges::copy(partsOf(field, text.substr(2), 6, 16, 0), std::back_inserter(to_));
        return;
      }
      const auto read = decimalOf(value->get_ref<const std::string&>());
      if (!read) bad(field, "no number");
      number = *read;
    } else if (value != nullptr) {
      if (!value->is_number()) bad(field, "no number");
      number = value->get<double>();
    }
    number *= 10;
    int decimals = 1;
    while (decimals < kMostDecimals && std::abs(number - std::round(number)) > 1e-9) {
      number *= 10;
      ++decimals;
    }
    if (std::abs(number) > 0x7FFFFFFF) bad(field, "too large");
    to_.push_back(0);
    to_.push_back(static_cast<u8>(decimals));
    writeNumber(static_cast<i64>(std::round(number)), kScaledValue, to_);
  }

  void putBytes(const Field& field, const Json* value) {
    std::vector<u8> own;
    if (value != nullptr) {
      if (!value->is_string()) bad(field, "not a string");
      const auto& text = value->get_ref<const std::string&>();
      own = field.kind == Kind::text  ? latin1(field, text)
            : field.kind == Kind::mac ? partsOf(field, text, 6, 16, '-')
            : field.kind == Kind::ip  ? partsOf(field, text, 4, 10, '.')
                                      : partsOf(field, text, 0, 16, 0);
      if (field.kind == Kind::ip && isLittle(field)) std::ranges::reverse(own);
    }
    const bool open = field.amount.source == Amount::kRest && field.width == 0;
    const i64 size = field.width != 0 ? field.width : open ? static_cast<i64>(own.size()) : valueOf(field.amount);
    if (size < static_cast<i64>(own.size())) bad(field, fmt::format("longer than {} bytes", size));
    grow(field, size);
    to_.insert(to_.end(), own.begin(), own.end());
    to_.resize(to_.size() + static_cast<std::size_t>(size) - own.size());
  }

  void putItems(const Field& field, const Json* array, const std::string& path) {
    static const Json kNone = Json::object();
    if (array != nullptr && !array->is_array()) bad(field, "not an array");
    const std::size_t given = array == nullptr ? 0 : array->size();
    const bool open = field.amount.source == Amount::kRest;
    const i64 count = open ? static_cast<i64>(given) : valueOf(field.amount);
    if (static_cast<i64>(given) > count) bad(field, fmt::format("{} of them, not {}", given, count));
    grow(field, count);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) try {
        put(field.fields, i < given ? (*array)[i] : kNone, fmt::format("{}/{}/{}", path, field.name, i));
      } catch (const BadValue& error) {
        throw BadValue(fmt::format("{}[{}].{}", field.name, i, error.what()));
      }
  }

  // A length or a count that was told makes no message that is longer than any there is.
  void grow(const Field& field, i64 by) {
    constexpr i64 kMost = 16 << 20;
    if (by > kMost - static_cast<i64>(to_.size())) bad(field, fmt::format("{} make the message too long", by));
  }

  std::vector<i64> registers_;
  std::vector<u8> to_;
  std::vector<Rest> rests_;
  std::vector<std::string> unused_;
};

}  // namespace

std::vector<u8> fromJson(const Layout& layout, const Json& values, std::vector<std::string>& unused) {
  return Encoder(layout).run(layout, values, unused);
}

std::string lostInJson(const Book& book, Road road, u16 id, Bytes bytes) {
  const Message* const message = book.find(id);
  const Layout* const layout = message == nullptr ? nullptr : message->find(road);
  if (layout == nullptr || layoutOf(book, *message, road, bytes) != layout) return "";
  const Decoded decoded = decode(*message, *layout, bytes);
  if (std::ranges::any_of(decoded.problems, [](const Problem& one) { return one.fault == Fault::form; })) return "";
  try {
    const Json values = toJson(decoded);
    std::vector<std::string> unused;
    const std::vector<u8> again = fromJson(*layout, values, unused);
    if (!unused.empty()) return fmt::format("no way back for {}", unused.front());
    if (toJson(decode(*message, *layout, again)) != values) return "another message behind JSON";
  } catch (const BadValue& error) {
    return error.what();
  }
  return "";
}

}  // namespace messages
