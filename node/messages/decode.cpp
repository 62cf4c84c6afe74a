#include "decode.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/hex.h"
#include "numbers.h"

namespace messages {

namespace {

constexpr std::size_t kMostProblems = 20;

class Decoder {
 public:
  explicit Decoder(Decoded& result) : result_(result), bytes_(result.bytes) {}

  void run(const Layout& layout) {
    registers_.resize(layout.registers);
    if (walk(layout.fields) && at_ < bytes_.size())
      complain(fmt::format("{} bytes behind the last field", bytes_.size() - at_));
  }

 private:
  bool walk(const std::vector<Field>& fields) {
    return std::ranges::all_of(fields, [&](const Field& field) { return take(field); });
  }

  // False when the bytes end too early.
  bool take(const Field& field) {
    switch (field.kind) {
      case Kind::number:
        return takeNumber(field);
      case Kind::list:
        return takeList(field);
      case Kind::when:
        return walk(holds(field, valueOf(field.amount)) ? field.fields : field.otherwise);
      case Kind::details:
        return takeDetails(field);
      case Kind::group:
        return takeInner(field, 0);
      default:
        return takeBytes(field);
    }
  }

  i64 valueOf(const Amount& amount) const { return messages::valueOf(amount, registers_, bytes_.size() - at_); }

  // Adds the node of a field with its next `size` bytes.
  Node* add(const Field& field, u64 size) {
    if (size > bytes_.size() - at_) {
      path_.push_back({&field, -1});
      complain(fmt::format("{} bytes are left of {}", bytes_.size() - at_, size));
      path_.pop_back();
      return nullptr;
    }
    Node& node = result_.nodes.emplace_back();
    node.field = &field;
    node.offset = static_cast<u32>(at_);
    node.size = static_cast<u32>(size);
    node.end = static_cast<u32>(result_.nodes.size());
    at_ += static_cast<std::size_t>(size);
    return &node;
  }

  bool takeNumber(const Field& field) {
    Node* const node = add(field, field.width);
    if (node == nullptr) return false;
    node->number = readNumber(bytes_.subspan(node->offset, node->size), field);
    registers_[static_cast<std::size_t>(field.keep)] = node->number;
    if (field.fixed && node->number != valueOf(field.amount))
      complainOf(*node, fmt::format("{}, not {}", node->number, valueOf(field.amount)));
    if (!field.words.empty() || !field.ranges.empty()) checkValue(*node);
    return true;
  }

  void checkValue(const Node& node) {
    const Field& field = *node.field;
    if (field.open || std::ranges::find(field.words, node.number, &Word::value) != field.words.end()) return;
    const auto within = [&](const Range& range) { return range.low <= node.number && node.number <= range.high; };
    if (std::ranges::any_of(field.ranges, within)) return;
    const bool words = field.ranges.empty();
    complainOf(node,
               words ? fmt::format("no word for {}", node.number) : fmt::format("{} is out of range", node.number));
    result_.problems.back().fault = words ? Fault::word : Fault::range;
  }

  bool takeBytes(const Field& field) {
    const i64 size = field.width != 0 ? field.width : valueOf(field.amount);
    Node* const node = add(field, size < 0 ? ~u64{0} : static_cast<u64>(size));
    if (node == nullptr) return false;
    const Bytes own = bytes_.subspan(node->offset, node->size);
    if (field.kind == Kind::gap && !field.loose && std::ranges::any_of(own, [](u8 byte) { return byte != 0; })) {
      complainOf(*node, "not zero: " + host::hexText(own));
    } else if (field.kind == Kind::text && !field.loose) {
      const auto end = std::ranges::find(own, u8{0});
      if (std::any_of(end, own.end(), [](u8 byte) { return byte != 0; }))
        complainOf(*node, "bytes behind the end of the text: " + host::hexText(own));
    } else if (field.kind == Kind::scaled) {
      node->head = static_cast<u16>(own[0] << 8 | own[1]);
      node->number = readNumber(own.subspan(2), kScaledValue);
      if (own[0] != 0 && !field.loose) complainOf(*node, fmt::format("{} ahead of the decimals, not 0", own[0]));
      checkValueIfAny(*node);
    }
    return true;
  }

  void checkValueIfAny(const Node& node) {
    if (!node.field->words.empty() || !node.field->ranges.empty()) checkValue(node);
  }

  bool takeList(const Field& field) {
    const bool toTheEnd = field.amount.source == Amount::kRest;
    const i64 count = toTheEnd ? 0 : valueOf(field.amount);
    for (i64 i = 0; toTheEnd ? at_ < bytes_.size() : i < count; ++i) {
      const std::size_t before = at_;
      if (!takeInner(field, i)) return false;
      if (at_ == before) {
        complain("items without a byte: " + field.name);
        return false;
      }
    }
    return true;
  }

  // A group, or item i of a list.
  bool takeInner(const Field& field, i64 i) {
    const std::size_t own = result_.nodes.size();
    add(field, 0)->number = i;
    path_.push_back({&field, field.kind == Kind::list ? i : -1});
    const bool whole = walk(field.fields);
    path_.pop_back();
    result_.nodes[own].size = static_cast<u32>(at_) - result_.nodes[own].offset;
    result_.nodes[own].end = static_cast<u32>(result_.nodes.size());
    return whole;
  }

  bool takeDetails(const Field& field) {
    const auto code = static_cast<u16>(valueOf(field.amount));
    const auto found = result_.message->details.find(code);
    if (found == result_.message->details.end()) {
      complain(fmt::format("error code {} ({}) is not described", code, static_cast<i16>(code)));
      return true;
    }
    const std::vector<i64> registers = std::move(registers_);
    registers_.assign(found->second.registers, 0);
    const bool whole = walk(found->second.fields);
    registers_ = registers;
    return whole;
  }

  void complainOf(const Node& node, std::string why) {
    path_.push_back({node.field, -1});
    complain(std::move(why));
    path_.pop_back();
    result_.problems.back().offset = node.offset;
  }

  // More of the same kind is of no use to anybody; the last one tells why the reading ended.
  void complain(std::string why) {
    if (result_.problems.size() == kMostProblems) result_.problems.pop_back();
    std::string path;
    for (const Step& step : path_) {
      if (!path.empty()) path += '.';
      path += step.field->name.empty() ? "gap" : step.field->name;
      if (step.index >= 0) path += fmt::format("[{}]", step.index);
    }
    result_.problems.push_back({static_cast<u32>(at_), std::move(path), std::move(why), Fault::form});
  }

  struct Step {
    const Field* field;
    i64 index;  // -1: no item
  };

  Decoded& result_;
  Bytes bytes_;
  std::size_t at_ = 0;
  std::vector<i64> registers_;
  std::vector<Step> path_;
};

constexpr u8 kErrorMark[] = {0, 0, 0, 0x41};

bool isAnswer(Road road) { return road == Road::setReply || road == Road::getReply; }

}  // namespace

const Layout* layoutOf(const Book& book, const Message& message, Road road, Bytes bytes) {
  if (isAnswer(road) && bytes.size() >= std::size(kErrorMark) && std::ranges::equal(bytes.first<4>(), kErrorMark))
    return &book.errorPacket;
  return message.find(road);
}

Decoded decode(const Message& message, const Layout& layout, Bytes bytes) {
  Decoded result{bytes, &layout, &message, {}, {}};
  result.nodes.reserve(bytes.size() / 4 + 8);
  Decoder(result).run(layout);
  return result;
}

std::vector<std::string> check(const Book& book, Road road, u16 id, Bytes bytes, Fault worst) {
  // The gateway tells an error ahead of any message.
  if (isAnswer(road) && std::ranges::equal(bytes, kErrorMark)) return {};
  const Message* const message = book.find(id);
  if (message == nullptr) return {"no description of this message"};
  const Layout* const layout = layoutOf(book, *message, road, bytes);
  if (layout == nullptr) return {fmt::format("{} is not described as {}", message->name, roadName(road))};
  const Decoded decoded = decode(*message, *layout, bytes);
  std::vector<std::string> wrong;
  for (const Problem& problem : decoded.problems)
    if (problem.fault <= worst)
      wrong.push_back(fmt::format("{}, byte {}: {}", problem.field.empty() ? message->name : problem.field,
                                  problem.offset, problem.why));
  if (wrong.empty() && !std::ranges::equal(encode(decoded), bytes))
    wrong.push_back(fmt::format("{} is another one when it is put together again", message->name));
  return wrong;
}

}  // namespace messages
