// Prints docs/messages.md: a table for each message, with where its fields stand on each of its ways.

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include "layout.h"
#include "values_text.h"

namespace messages {
namespace {

constexpr Road kAll[] = {Road::set,     Road::setReply,   Road::get,    Road::getReply, Road::gpon,
                         Road::gponAsk, Road::gponAnswer, Road::gepon,  Road::geponAsk, Road::geponAnswer,
                         Road::epon,    Road::ngn,        Road::ngnAsk, Road::ngnAnswer};

struct Row {
  std::string field;  // with an arrow for each holder around it
  std::string bytes;
  std::string values;
  std::vector<std::string> at;  // for each way
};

using Offset = std::optional<u64>;  // none behind what may have any length

Offset sizeOf(const std::vector<Field>& fields);

Offset sizeOf(const Field& field) {
  if (field.width != 0) return field.width;
  const bool constant = field.amount.source == Amount::kConstant;
  const auto amount = static_cast<u64>(field.amount.constant);
  switch (field.kind) {
    case Kind::group:
      return sizeOf(field.fields);
    case Kind::list:
      if (const Offset item = sizeOf(field.fields); constant && item) return *item * amount;
      return {};
    case Kind::when:
      if (const Offset one = sizeOf(field.fields); one == sizeOf(field.otherwise)) return one;
      return {};
    case Kind::details:
      return {};
    default:
      return constant ? Offset(amount) : Offset();
  }
}

Offset sizeOf(const std::vector<Field>& fields) {
  u64 sum = 0;
  for (const Field& field : fields) {
    const Offset size = sizeOf(field);
    if (!size) return {};
    sum += *size;
  }
  return sum;
}

class Table {
 public:
  explicit Table(const Message& message) {
    for (const Road road : kAll)
      if (const Layout* const layout = message.find(road); layout != nullptr && !isPlain(road, *layout)) {
        ways_.push_back(road);
        for (Row& row : rows_) row.at.resize(ways_.size());
        next_ = 0;
        Offset at = 0;
        add(layout->fields, "", "", at);
      }
  }

  void print() const {
    std::string head = "| field | bytes | |";
    std::string line = "|---|---|---|";
    for (const Road road : ways_) {
      head += fmt::format(" {} |", roadName(road));
      line += "---|";
    }
    fmt::print("{}\n{}\n", head, line);
    for (const Row& row : rows_)
      fmt::print("| {} | {} | {} | {} |\n", row.field, row.bytes, row.values, fmt::join(row.at, " | "));
  }

 private:
  // What needs no column: an answer that is the word for success, a question that is not read.
  static bool isPlain(Road road, const Layout& layout) {
    if (layout.fields.size() != 1) return false;
    const Field& field = layout.fields.front();
    return road == Road::setReply ? field.fixed : road == Road::get && field.kind == Kind::gap;
  }

  void add(const std::vector<Field>& fields, const std::string& arrow, const std::string& plus, Offset& at) {
    for (const Field& field : fields) {
      addField(field, arrow, plus, at);
      const Offset size = sizeOf(field);
      at = at && size ? Offset(*at + *size) : Offset();
    }
  }

  void addField(const Field& field, const std::string& arrow, const std::string& plus, const Offset& at) {
    Offset inside = field.kind == Kind::list ? 0 : at;
    const std::string place = at ? fmt::format("{}{}", plus, *at) : "then";
    switch (field.kind) {
      case Kind::details:
        return;
      case Kind::when:
        put({arrow + "if " + field.condition + ":", "", "", {}}, "");
        add(field.fields, arrow + "› ", plus, inside);
        if (field.otherwise.empty()) return;
        put({arrow + "otherwise:", "", "", {}}, "");
        inside = at;
        return add(field.otherwise, arrow + "› ", plus, inside);
      case Kind::list:
        put({fmt::format("{}{}[{}]", arrow, field.name, field.amount.text),
             bytesText(sizeOf(field.fields), "each "),
             valuesText(field),
             {}},
            place);
        return add(field.fields, arrow + "› ", "+", inside);
      case Kind::group:
        put({arrow + field.name, bytesText(sizeOf(field), ""), valuesText(field), {}}, place);
        return add(field.fields, arrow + "› ", plus, inside);
      default:
        const std::string name = !field.name.empty() ? field.name : "*reserved*";
        const std::string bytes = sizeOf(field) ? bytesText(sizeOf(field), "") : field.amount.text;
        put({arrow + name, bytes, valuesText(field), {}}, place + (field.kind == Kind::gap && field.loose ? " ~" : ""));
    }
  }

  static std::string bytesText(const Offset& size, std::string_view each) {
    return size ? fmt::format("{}{}", each, *size) : "";
  }

  // On the row of the same field of an earlier way, where there is one further down, else on a row of its own.
  void put(Row row, const std::string& place) {
    const auto same = [&](const Row& other) {
      return other.at.back().empty() && other.field == row.field && other.bytes == row.bytes &&
             other.values == row.values;
    };
    auto found = std::find_if(rows_.begin() + static_cast<std::ptrdiff_t>(next_), rows_.end(), same);
    if (found == rows_.end()) {
      row.at.resize(ways_.size());
      found = rows_.insert(rows_.begin() + static_cast<std::ptrdiff_t>(next_), std::move(row));
    }
    found->at.back() = place;
    next_ = static_cast<std::size_t>(found - rows_.begin()) + 1;
  }

  std::vector<Road> ways_;
  std::vector<Row> rows_;
  std::size_t next_ = 0;  // behind the row of the field before
};

std::string detailsText(const std::vector<Field>& fields) {
  std::string text;
  for (const Field& field : fields) {
    if (field.kind != Kind::when) {
      addPart(text, fmt::format("{} ({})", field.name.empty() ? "reserved" : field.name,
                                field.width ? std::to_string(field.width) : field.amount.text));
      continue;
    }
    addPart(text, fmt::format("if {}: {}", field.condition, detailsText(field.fields)));
    if (!field.otherwise.empty()) addPart(text, "else " + detailsText(field.otherwise));
  }
  return text;
}

void printErrors(const Message& message) {
  if (message.details.empty()) return;
  fmt::print("\n| error | | detail (bytes) |\n|---|---|---|\n");
  // From -1 downward.
  for (auto one = message.details.rbegin(); one != message.details.rend(); ++one)
    fmt::print("| {} | {} | {} |\n", static_cast<i16>(one->first), one->second.note, detailsText(one->second.fields));
}

void print(const Message& message) {
  std::string ids;
  for (const u16 id : message.ids) addPart(ids, fmt::format("{} (0x{:04X})", id, id));
  fmt::print("\n### {}: {}\n\n", message.name, ids);
  if (!message.note.empty()) fmt::print("{}.\n\n", message.note);
  Table(message).print();
  printErrors(message);
}

void printBook() {
  fmt::print(
      "# Messages\n\n"
      "Made from `node/share/messages` by `./dev check --update`; [messages-language.md](messages-language.md) tells "
      "how "
      "they are written.\n\n"
      "Numbers are big-endian where nothing else is told. The columns on the right tell where a field stands: in a "
      "list\n"
      "from the item's beginning (+), \"then\" behind what has no fixed length. Reserved bytes are zero; with ~ "
      "anything may "
      "stand\nthere. A SET without a column for its answer is answered with 00000001. An error is answered with "
      "00000041, "
      "u16 1, u16 length\nof what follows, u16 message, i16 code, four bytes that are not written, and the detail.\n");
  std::string file;
  for (const Message& message : book().messages) {
    if (file != message.file) fmt::print("\n## {}\n", message.file.substr(0, message.file.find('.')));
    file = message.file;
    print(message);
  }
}

}  // namespace
}  // namespace messages

int main() {
  messages::printBook();
  return 0;
}
