#include "show.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <utility>

#include "host/hex.h"
#include "numbers.h"

namespace messages {

namespace {

constexpr std::size_t kMostLines = 8;  // of a brief message's items
constexpr i64 kMostItems = 3;          // of a list within an item
constexpr std::size_t kLongest = 400;  // letters of a brief line

Bytes bytesOf(const Decoded& decoded, const Node& node) { return decoded.bytes.subspan(node.offset, node.size); }

bool isZero(Bytes bytes) {
  return std::ranges::all_of(bytes, [](u8 byte) { return byte == 0; });
}

std::string withDecimals(i64 number, unsigned decimals) {
  const u64 size = number < 0 ? 0 - static_cast<u64>(number) : static_cast<u64>(number);
  std::string digits = fmt::format("{:0{}}", size, decimals + 1);
  if (decimals > 0) digits.insert(digits.size() - decimals, ".");
  return (number < 0 ? "-" : "") + digits;
}

unsigned decimalsOf(u32 divisor) {
  unsigned decimals = 0;
  for (; divisor > 1; divisor = (divisor + 9) / 10) ++decimals;
  return decimals;
}

std::string numberText(const Field& field, const Node& node) {
  for (const Word& word : field.words)
    if (word.value == node.number) return word.text;
  std::string text;
  if (field.kind == Kind::scaled)
    text = withDecimals(node.number, std::min(node.head & 0xFF, 18));
  else if (field.hex)
    text = fmt::format("0x{:0{}x}", static_cast<u64>(node.number), 2 * field.width);
  else if (field.divisor != 1)
    text = withDecimals(node.number, decimalsOf(field.divisor));
  else
    text = field.isSigned ? fmt::format("{}", node.number) : fmt::format("{}", static_cast<u64>(node.number));
  return field.unit.empty() ? text : text + " " + field.unit;
}

std::string textOf(Bytes bytes) {
  std::string text = "\"";
  for (const u8 byte : bytes) {
    if (byte == 0) break;
    if (byte < ' ' || byte > '~' || byte == '"' || byte == '\\')
      text += fmt::format("\\x{:02x}", byte);
    else
      text += static_cast<char>(byte);
  }
  return text + "\"";
}

bool isHolder(const Field& field) { return field.kind == Kind::list || field.kind == Kind::group; }

bool isDull(const Decoded& decoded, const Node& node) {
  return node.field->kind == Kind::gap && isZero(bytesOf(decoded, node));
}

std::string_view nameOf(const Field& field) {
  if (!field.name.empty()) return field.name;
  return field.kind == Kind::gap ? "reserved" : "value";
}

// "3/1", "slot 3" for an item that begins with slot and port; empty for another.
std::string placeOf(const Decoded& decoded, std::size_t item) {
  if (item + 2 >= decoded.nodes.size() || item + 2 >= decoded.nodes[item].end) return "";
  const Node& slot = decoded.nodes[item + 1];
  const Node& port = decoded.nodes[item + 2];
  if (slot.field->name != "slot" || port.field->name != "port") return "";
  if (port.number == 0xFFFF) return fmt::format("slot {}", slot.number);
  return fmt::format("{}/{}", slot.number, port.number);
}

class Brief {
 public:
  explicit Brief(const Decoded& decoded) : decoded_(decoded) {}

  std::vector<std::string> run() {
    const std::string own = textOf(0, decoded_.nodes.size(), true);
    std::vector<std::string> lines;
    if (!own.empty()) lines.push_back(cut(own));
    flush();
    for (std::string& line : items_) lines.push_back(cut(std::move(line)));
    if (skipped_ > 0) lines.push_back(fmt::format("... {} more", skipped_));
    for (const Problem& problem : decoded_.problems)
      lines.push_back(fmt::format("! {}, byte {}: {}", problem.field, problem.offset, problem.why));
    return lines;
  }

 private:
  static std::string cut(std::string line) {
    if (line.size() > kLongest) line = line.substr(0, kLongest - 4) + " ...";
    return line;
  }

  // The fields of nodes [from, to), parted by commas; at the top, items go to lines of their own.
  std::string textOf(std::size_t from, std::size_t to, bool top) {
    std::string text;
    i64 more = 0;
    for (std::size_t i = from; i < to; i = decoded_.nodes[i].end) {
      const Node& node = decoded_.nodes[i];
      const Field& field = *node.field;
      if (isDull(decoded_, node) || field.fixed || field.counts) continue;
      if (top && field.kind == Kind::list) {
        addItem(i);
      } else if (isHolder(field)) {
        const bool shown = field.kind == Kind::group || node.number < kMostItems;
        if (shown) join(text, fmt::format("{} ({})", field.name, inner(i)));
        const bool last = node.end >= to || decoded_.nodes[node.end].field != &field;
        more += shown ? 0 : 1;
        if (last && more > 0) join(text, fmt::format("... {} more", std::exchange(more, 0)));
      } else {
        join(text, fmt::format("{} {}", nameOf(field), valueText(decoded_, node)));
      }
    }
    return text;
  }

  static void join(std::string& text, const std::string& part) {
    if (!text.empty()) text += ", ";
    text += part;
  }

  std::string inner(std::size_t item) {
    const std::size_t place = placeOf(decoded_, item).empty() ? 0 : 2;
    return textOf(item + 1 + place, decoded_.nodes[item].end, false);
  }

  void addItem(std::size_t item) {
    if (skipped_ > 0) {
      ++skipped_;
      return;
    }
    const std::string name = headOf(item);
    const std::string body = inner(item);
    if (!first_.empty() && body == body_) {
      last_ = name;
      return;
    }
    flush();
    if (items_.size() == kMostLines) {
      ++skipped_;
      return;
    }
    first_ = last_ = name;
    body_ = body;
  }

  std::string headOf(std::size_t item) const {
    const std::string place = placeOf(decoded_, item);
    const Node& node = decoded_.nodes[item];
    if (place.empty()) return fmt::format("{} {}", node.field->name, node.number + 1);
    return place.starts_with("slot") ? place : "port " + place;
  }

  void flush() {
    if (first_.empty()) return;
    const std::string head = first_ == last_ ? first_ : fmt::format("{} to {}", first_, last_);
    items_.push_back(body_.empty() ? head : head + ": " + body_);
    first_.clear();
  }

  const Decoded& decoded_;
  std::vector<std::string> items_;
  std::string first_, last_, body_;  // of the items that are equal so far
  std::size_t skipped_ = 0;
};

// A field that holds no others, with its path.
struct Leaf {
  std::string path;
  std::string value;
};

std::vector<Leaf> leavesOf(const Decoded& decoded) {
  struct Holder {
    std::size_t end;
    std::size_t length;  // of the path outside
  };
  std::vector<Leaf> leaves;
  std::vector<Holder> holders;
  std::string path;
  for (std::size_t i = 0; i < decoded.nodes.size(); ++i) {
    const Node& node = decoded.nodes[i];
    for (; !holders.empty() && holders.back().end <= i; holders.pop_back()) path.resize(holders.back().length);
    const std::string name = path + (path.empty() ? "" : ".") + std::string(nameOf(*node.field));
    if (isHolder(*node.field)) {
      holders.push_back({node.end, path.size()});
      path = node.field->kind == Kind::list ? fmt::format("{}[{}]", name, node.number) : name;
    } else {
      leaves.push_back({name, valueText(decoded, node)});
    }
  }
  return leaves;
}

}  // namespace

std::vector<std::string> differences(const Decoded& wanted, const Decoded& given) {
  // Gaps without a name have equal paths: they are met in their order.
  std::multimap<std::string, std::string> left;
  for (Leaf& leaf : leavesOf(given)) left.emplace(std::move(leaf.path), std::move(leaf.value));
  std::vector<std::string> lines;
  for (const Leaf& leaf : leavesOf(wanted)) {
    const auto found = left.find(leaf.path);
    if (found == left.end()) {
      lines.push_back(fmt::format("{}: missing, not {}", leaf.path, leaf.value));
      continue;
    }
    if (found->second != leaf.value)
      lines.push_back(fmt::format("{}: {}, not {}", leaf.path, found->second, leaf.value));
    left.erase(found);
  }
  for (const auto& [path, value] : left) lines.push_back(fmt::format("{}: {}, not wanted", path, value));
  return lines;
}

std::string valueText(const Decoded& decoded, const Node& node) {
  const Bytes bytes = bytesOf(decoded, node);
  switch (node.field->kind) {
    case Kind::number:
    case Kind::scaled:
      return numberText(*node.field, node);
    case Kind::text:
      return textOf(bytes);
    case Kind::mac:
      return fmt::format("{:02x}", fmt::join(bytes, "-"));
    case Kind::ip: {
      std::vector<u8> parts(bytes.begin(), bytes.end());
      if (isLittle(*node.field)) std::ranges::reverse(parts);
      return fmt::format("{}", fmt::join(parts, "."));
    }
    case Kind::list:
    case Kind::group: {
      const auto index = static_cast<std::size_t>(&node - decoded.nodes.data());
      return placeOf(decoded, index);
    }
    default:
      return host::hexText(bytes);
  }
}

// `line(depth, name, node)` for each node that is worth one; how far to the right it stands follows from what it
// belongs to.
template <class Line>
static void eachLine(const Decoded& decoded, Line line) {
  std::vector<std::size_t> ends;
  for (std::size_t i = 0; i < decoded.nodes.size(); ++i) {
    while (!ends.empty() && ends.back() <= i) ends.pop_back();
    const Node& node = decoded.nodes[i];
    if (isDull(decoded, node)) continue;
    std::string name(nameOf(*node.field));
    if (node.field->kind == Kind::list) name += fmt::format(" {}", node.number + 1);
    line(2 * ends.size(), name, node);
    if (isHolder(*node.field)) ends.push_back(node.end);
  }
}

static void addTrimmed(std::vector<std::string>& lines, std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  lines.push_back(std::move(line));
}

std::vector<std::string> fieldLines(const Decoded& decoded) {
  std::vector<std::string> lines;
  eachLine(decoded, [&](std::size_t indent, const std::string& name, const Node& node) {
    addTrimmed(lines, fmt::format("{:>6}  {:{}}{} {}", node.offset, "", indent, name, valueText(decoded, node)));
  });
  for (const Problem& problem : decoded.problems)
    lines.push_back(fmt::format("{:>6}  ! {}: {}", problem.offset, problem.field, problem.why));
  return lines;
}

std::vector<std::string> valueLines(const Decoded& decoded) {
  std::vector<std::string> lines;
  std::size_t placeEnd = 0;  // behind the slot and port of an item that is headed by them
  eachLine(decoded, [&](std::size_t indent, const std::string& name, const Node& node) {
    const auto index = static_cast<std::size_t>(&node - decoded.nodes.data());
    if (node.field->fixed || node.field->counts || index < placeEnd) return;
    const std::string place = isHolder(*node.field) ? placeOf(decoded, index) : "";
    if (!place.empty()) placeEnd = index + 3;
    if (place.empty())
      addTrimmed(lines, fmt::format("{:{}}{} {}", "", indent, name, valueText(decoded, node)));
    else
      lines.push_back(fmt::format("{:{}}{}{}", "", indent, place.starts_with("slot") ? "" : "port ", place));
  });
  return lines;
}

std::vector<std::string> briefLines(const Decoded& decoded) { return Brief(decoded).run(); }

std::vector<std::string> describe(const Book& book, Road road, u16 id, Bytes bytes, bool full) {
  const Message* const message = book.find(id);
  const Layout* const layout = message == nullptr ? nullptr : layoutOf(book, *message, road, bytes);
  if (layout == nullptr) return {"not described: " + host::hexText(bytes)};
  const Decoded decoded = decode(*message, *layout, bytes);
  std::vector<std::string> lines = full ? fieldLines(decoded) : briefLines(decoded);
  if (!full && lines.size() == 1) return {message->name + ": " + lines.front()};
  lines.insert(lines.begin(), fmt::format("{}, {} bytes", message->name, bytes.size()));
  return lines;
}

}  // namespace messages
