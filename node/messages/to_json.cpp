// Fields into JSON. The layout leads, so that a list without items has its place, too.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "json.h"
#include "numbers.h"
#include "show.h"

namespace messages {

std::string gapName(const Field& field, int& count) {
  if (!field.name.empty()) return field.name;
  ++count;
  return count == 1 ? "reserved" : "reserved" + std::to_string(count);
}

namespace {

// Latin-1 as UTF-8, up to the first zero.
std::string textOf(Bytes bytes) {
  std::string text;
  for (const u8 byte : bytes) {
    if (byte == 0) break;
    if (byte < 0x80) {
      text += static_cast<char>(byte);
    } else {
      text += static_cast<char>(0xC0 | byte >> 6);
      text += static_cast<char>(0x80 | (byte & 0x3F));
    }
  }
  return text;
}

std::string hexOf(Bytes bytes) { return fmt::format("{:02x}", fmt::join(bytes, "")); }

Json shared(i64 number, unsigned decimals) {
  if (decimals == 0) return number;
  return static_cast<double>(number) / std::pow(10.0, decimals);
}

class Writer {
 public:
  explicit Writer(const Decoded& from) : from_(from), registers_(from.layout->registers) {}

  Json run() {
    Json object = Json::object();
    put(from_.layout->fields, object);
    return object;
  }

 private:
  void put(const std::vector<Field>& fields, Json& object) {
    int gaps = 0;
    put(fields, object, gaps);
  }

  void put(const std::vector<Field>& fields, Json& object, int& gaps) {
    for (const Field& field : fields) put(field, object, gaps);
  }

  bool isNext(const Field& field) const { return next_ < from_.nodes.size() && from_.nodes[next_].field == &field; }

  void put(const Field& field, Json& object, int& gaps) {
    switch (field.kind) {
      case Kind::when:
        put(holds(field, valueOf(field.amount)) ? field.fields : field.otherwise, object, gaps);
        return;
      case Kind::details:
        putDetails(field, object, gaps);
        return;
      case Kind::list:
        putItems(field, object[field.name] = Json::array());
        return;
      case Kind::group:
        if (!isNext(field)) return;
        ++next_;
        put(field.fields, object[field.name] = Json::object());
        return;
      default:
        if (isNext(field)) putValue(field, from_.nodes[next_++], object, gaps);
    }
  }

  // What is left of a message is known from where its next field stands.
  i64 valueOf(const Amount& amount) const {
    const std::size_t at = next_ < from_.nodes.size() ? from_.nodes[next_].offset : from_.bytes.size();
    return messages::valueOf(amount, registers_, from_.bytes.size() - at);
  }

  void putItems(const Field& field, Json& array) {
    while (isNext(field)) {
      ++next_;
      put(field.fields, array.emplace_back(Json::object()));
    }
  }

  void putValue(const Field& field, const Node& node, Json& object, int& gaps) {
    const Bytes bytes = from_.bytes.subspan(node.offset, node.size);
    switch (field.kind) {
      case Kind::number:
        registers_[static_cast<std::size_t>(field.keep)] = node.number;
        if (!field.fixed && !field.counts) object[field.name] = number(field, node);
        return;
      case Kind::scaled:  // with more decimals than a value has, it is none
        if ((node.head & 0xFF) > kMostDecimals)
          object[field.name] = "0x" + hexOf(bytes);
        else
          object[field.name] = number(field, node);
        return;
      case Kind::text:
        object[field.name] = textOf(bytes);
        return;
      case Kind::gap:
        if (const std::string name = gapName(field, gaps);
            std::ranges::any_of(bytes, [](u8 byte) { return byte != 0; }))
          object[name] = hexOf(bytes);
        return;
      case Kind::bytes:
        object[field.name] = hexOf(bytes);
        return;
      default:
        object[field.name] = valueText(from_, node);
    }
  }

  static Json number(const Field& field, const Node& node) {
    if (const auto word = std::ranges::find(field.words, node.number, &Word::value); word != field.words.end())
      return word->text;
    if (field.kind == Kind::scaled) return shared(node.number, node.head & 0xFF);
    if (field.divisor != 1) return static_cast<double>(node.number) / field.divisor;
    if (field.isSigned) return node.number;
    return static_cast<u64>(node.number);
  }

  void putDetails(const Field& field, Json& object, int& gaps) {
    const auto found = from_.message->details.find(static_cast<u16>(valueOf(field.amount)));
    if (found == from_.message->details.end()) return;
    const std::vector<i64> registers = std::move(registers_);
    registers_.assign(found->second.registers, 0);
    put(found->second.fields, object, gaps);
    registers_ = registers;
  }

  const Decoded& from_;
  std::size_t next_ = 0;
  std::vector<i64> registers_;
};

}  // namespace

Json toJson(const Decoded& decoded) { return Writer(decoded).run(); }

}  // namespace messages
