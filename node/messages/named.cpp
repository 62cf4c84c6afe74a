#include "named.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <ranges>

#include "show.h"
#include "values_text.h"

namespace messages {

namespace {

bool equal(std::string_view a, std::string_view b) {
  const auto small = [](char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
  };
  return std::ranges::equal(a, b, {}, small, small);
}

// "code -120 ..." of an error packet, as the message's own.
Json errorOf(const Message& message, const Json& packet) {
  Json error = Json::object();
  const i64 code = packet.value("code", i64{0});
  error["code"] = code;
  const auto told = message.details.find(static_cast<u16>(code));
  if (told != message.details.end() && !told->second.note.empty()) error["meaning"] = told->second.note;
  for (const auto& [name, value] : packet.items())
    if (name != "code") error[name] = value;
  return {{"error", error}};
}

bool isWanted(const Json& items, i64 id) {
  return std::ranges::any_of(items, [&](const Json& item) {
    const auto told = item.find("id");
    if (told == item.end()) return false;
    return told->is_string() ? told->get<std::string>() == std::to_string(id) : *told == id;
  });
}

// Without the items whose id is not among those of `only`.
Decoded decodeOnly(const Message& message, const Layout& layout, Bytes bytes, const Json& only) {
  Decoded decoded = decode(message, layout, bytes);
  std::vector<Node> kept;
  i64 without = 0;
  for (std::size_t i = 0; i < decoded.nodes.size();) {
    const Node& node = decoded.nodes[i];
    const std::size_t end = node.field->kind == Kind::list ? node.end : i + 1;
    const auto wanted = only.find(node.field->name);
    const bool dropped = end > i + 1 && wanted != only.end() && decoded.nodes[i + 1].field->name == "id" &&
                         !isWanted(*wanted, decoded.nodes[i + 1].number);
    const auto shift = static_cast<u32>(i - kept.size());
    const std::size_t first = kept.size();
    for (; i < end; ++i) {
      if (dropped) continue;
      kept.push_back(decoded.nodes[i]);
      kept.back().end -= shift;
    }
    if (dropped) ++without;
    if (first < kept.size() && kept[first].field->kind == Kind::list) kept[first].number -= without;
  }
  decoded.nodes = std::move(kept);
  return decoded;
}

void addFields(const std::vector<Field>& fields, std::size_t depth, std::string& text) {
  for (const Field& field : fields) {
    const std::string indent(2 * depth, ' ');
    if (field.kind == Kind::when) {
      text += fmt::format("{}if {}\n", indent, field.condition);
      addFields(field.fields, depth + 1, text);
      if (!field.otherwise.empty()) text += indent + "else\n";
      addFields(field.otherwise, depth + 1, text);
    } else if (field.kind == Kind::list || field.kind == Kind::group) {
      const bool any = field.kind == Kind::list && field.amount.source != Amount::kConstant;
      const std::string count = field.kind == Kind::group ? "" : any ? "[...]" : "[" + field.amount.text + "]";
      text += fmt::format("{}{}{}\n", indent, field.name, count);
      addFields(field.fields, depth + 1, text);
    } else if (field.kind != Kind::gap && field.kind != Kind::details && !field.fixed && !field.counts) {
      std::string values = valuesText(field);
      if (field.kind == Kind::text && field.amount.source == Amount::kConstant)
        values += fmt::format(" of at most {}", field.amount.text);
      text += fmt::format("{}{:<{}} {}", indent, field.name, 24 - std::min<std::size_t>(indent.size(), 20), values);
      text.erase(text.find_last_not_of(' ') + 1);
      text += '\n';
    }
  }
}

bool hasNames(const std::vector<Field>& fields) {
  return std::ranges::any_of(fields, [](const Field& field) {
    return field.kind == Kind::when || (!field.fixed && field.kind != Kind::gap && field.kind != Kind::details);
  });
}

}  // namespace

const Message* findNamed(const Book& book, std::string_view text, u16& id) {
  const bool hex = text.starts_with("0x");
  const std::string_view digits = hex ? text.substr(2) : text;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id, hex ? 16 : 10);
  if (error == std::errc() && end == digits.data() + digits.size()) return book.find(id);
  const auto found = std::ranges::find_if(book.messages, [&](const Message& one) { return equal(one.name, text); });
  if (found == book.messages.end()) return nullptr;
  id = found->ids.front();
  return &*found;
}

std::vector<u8> questionOf(const Message& message, const Json& values) {
  constexpr std::size_t kEnvelope = 32;  // some kinds of profiles refuse a question without it
  const Layout* const layout = message.find(Road::get);
  std::vector<std::string> unused;
  std::vector<u8> question = layout == nullptr ? std::vector<u8>() : fromJson(*layout, values, unused);
  if (question.empty()) question.resize(kEnvelope);
  return question;
}

Json readReply(const Book& book, const Message& message, Road road, Bytes bytes, const Json& only) {
  const Layout* const layout = layoutOf(book, message, road, bytes);
  if (layout == nullptr) return Json::object();
  Json values = toJson(decodeOnly(message, *layout, bytes, only));
  return layout == &book.errorPacket ? errorOf(message, values) : values;
}

bool isRefusal(const Book& book, const Message& message, Road road, Bytes bytes) {
  return layoutOf(book, message, road, bytes) == &book.errorPacket;
}

std::string replyText(const Book& book, const Message& message, Road road, Bytes bytes, const Json& only) {
  const Layout* const layout = layoutOf(book, message, road, bytes);
  if (layout == nullptr) return "";
  if (layout != &book.errorPacket) {
    std::string text;
    for (const std::string& line : valueLines(decodeOnly(message, *layout, bytes, only))) text += line + "\n";
    return text;
  }
  const Json error = readReply(book, message, road, bytes, only)["error"];
  std::string details;
  for (const auto& [name, value] : error.items())
    if (name != "code" && name != "meaning" && name != "message")
      addPart(details, fmt::format("{} {}", name, value.is_string() ? value.get<std::string>() : value.dump()));
  return fmt::format("refused: {}{}{}\n", error["code"].get<i64>(),
                     error.contains("meaning") ? ", " + error["meaning"].get<std::string>() : "",
                     details.empty() ? "" : " (" + details + ")");
}

std::string jsonText(const Json& values) { return values.dump(2) + "\n"; }

std::string description(const Message& message) {
  std::string text = fmt::format("{} ({}): {}\n", message.name, fmt::join(message.ids, ", "), message.note);
  for (const auto& [road, title] :
       {std::pair(Road::set, "set"), std::pair(Road::get, "get"), std::pair(Road::getReply, "get answers")}) {
    const Layout* const layout = message.find(road);
    if (layout == nullptr || !hasNames(layout->fields)) continue;
    text += fmt::format("{}\n", title);
    addFields(layout->fields, 1, text);
  }
  std::string codes;
  for (const auto& [code, layout] : std::ranges::reverse_view(message.details))
    codes += fmt::format("  {:<6} {}\n", static_cast<i16>(code), layout.note);
  return codes.empty() ? text : text + "refused with\n" + codes;
}

}  // namespace messages
