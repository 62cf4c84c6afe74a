// Fields back into bytes: the layout tells what follows, the nodes tell the values.

#include <fmt/format.h>

#include <stdexcept>

#include "decode.h"
#include "numbers.h"

namespace messages {

namespace {

class Encoder {
 public:
  explicit Encoder(const Decoded& from) : from_(from) {}

  std::vector<u8> run() {
    to_.reserve(from_.bytes.size());
    registers_.resize(from_.layout->registers);
    put(from_.layout->fields);
    if (next_ != from_.nodes.size()) fail("fields are left over");
    return std::move(to_);
  }

 private:
  void put(const std::vector<Field>& fields) {
    for (const Field& field : fields) put(field);
  }

  void put(const Field& field) {
    switch (field.kind) {
      case Kind::when:
        put(holds(field, valueOf(field.amount)) ? field.fields : field.otherwise);
        return;
      case Kind::details:
        putDetails(field);
        return;
      case Kind::list:
        putItems(field);
        return;
      case Kind::group:
        take(field);
        put(field.fields);
        return;
      default:
        putValue(field, take(field));
    }
  }

  // What is left of the message is known from what it was read from.
  i64 valueOf(const Amount& amount) const {
    return messages::valueOf(amount, registers_, from_.bytes.size() - to_.size());
  }

  bool isNext(const Field& field) const { return next_ < from_.nodes.size() && from_.nodes[next_].field == &field; }

  const Node& take(const Field& field) {
    if (!isNext(field)) fail("no value for " + field.name);
    return from_.nodes[next_++];
  }

  void putItems(const Field& field) {
    i64 count = 0;
    for (; isNext(field); ++count) {
      ++next_;
      put(field.fields);
    }
    if (field.amount.source != Amount::kRest && count != valueOf(field.amount))
      fail(fmt::format("{} of {}, {} counted", count, field.name, valueOf(field.amount)));
  }

  void putValue(const Field& field, const Node& node) {
    if (field.kind == Kind::number) {
      registers_[static_cast<std::size_t>(field.keep)] = node.number;
      writeNumber(node.number, field, to_);
    } else if (field.kind == Kind::scaled) {
      to_.push_back(static_cast<u8>(node.head >> 8));
      to_.push_back(static_cast<u8>(node.head));
      writeNumber(node.number, kScaledValue, to_);
    } else {
      const auto size = static_cast<std::size_t>(field.width != 0 ? field.width : valueOf(field.amount));
      Bytes own = from_.bytes.subspan(node.offset, node.size);
      if (own.size() > size) fail(field.name + " is too long");
      if (field.kind == Kind::gap && !field.loose) own = {};
      to_.insert(to_.end(), own.begin(), own.end());
      to_.resize(to_.size() + size - own.size());
    }
  }

  void putDetails(const Field& field) {
    const auto found = from_.message->details.find(static_cast<u16>(valueOf(field.amount)));
    if (found == from_.message->details.end()) fail("the error code is not described");
    const std::vector<i64> registers = std::move(registers_);
    registers_.assign(found->second.registers, 0);
    put(found->second.fields);
    registers_ = registers;
  }

  [[noreturn]] void fail(const std::string& why) const {
    throw std::runtime_error(fmt::format("{}: {}", from_.message->name, why));
  }

  const Decoded& from_;
  std::size_t next_ = 0;
  std::vector<i64> registers_;
  std::vector<u8> to_;
};

}  // namespace

std::vector<u8> encode(const Decoded& decoded) { return Encoder(decoded).run(); }

}  // namespace messages
