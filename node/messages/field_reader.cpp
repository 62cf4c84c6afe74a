#include "field_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <utility>

namespace messages {

namespace {

std::optional<i64> readNumber(std::string_view text) {
  const bool minus = text.starts_with('-');
  if (minus) text.remove_prefix(1);
  const bool hex = text.starts_with("0x");
  if (hex) text.remove_prefix(2);
  u64 value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, hex ? 16 : 10);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) return {};
  return minus ? -static_cast<i64>(value) : static_cast<i64>(value);
}

// What a name means behind the place where it stands.
struct Known {
  std::string name;
  i16 keep = -1;
  std::vector<Word> words;
};

struct Type {
  std::string_view name;
  Kind kind;
  u8 width;
  bool isSigned;
};
constexpr Type kTypes[] = {
    {"u8", Kind::number, 1, false},  {"u16", Kind::number, 2, false}, {"u32", Kind::number, 4, false},
    {"u64", Kind::number, 8, false}, {"i8", Kind::number, 1, true},   {"i16", Kind::number, 2, true},
    {"i32", Kind::number, 4, true},  {"i64", Kind::number, 8, true},  {"scaled", Kind::scaled, 6, true},
    {"mac", Kind::mac, 6, false},    {"ip", Kind::ip, 4, false},
};

class FieldReader {
 public:
  explicit FieldReader(const Templates& templates) : templates_(templates) {}

  std::vector<Field> read(const std::vector<Line>& lines) {
    std::vector<Field> fields;
    for (const Line& line : lines) {
      const Token& first = line.tokens.front();
      if (first.is("use")) {
        if (++depth_ > kDeepest) line.bad("it is part of itself");
        std::ranges::move(read(templates_.expand("record", line)), std::back_inserter(fields));
        --depth_;
      } else if (first.is("else")) {
        if (fields.empty() || fields.back().kind != Kind::when) line.bad("nothing to be else of");
        fields.back().otherwise = readInner(line.under);
      } else {
        fields.push_back(readField(line));
      }
    }
    return fields;
  }

  u16 registers() const { return registers_; }

  // Marks the numbers that tell the length of what follows.
  void markCounts(std::vector<Field>& fields) const {
    for (Field& field : fields) {
      field.counts = field.kind == Kind::number && counting_.contains(field.keep);
      markCounts(field.fields);
      markCounts(field.otherwise);
    }
  }

 private:
  // Names inside are not known outside.
  std::vector<Field> readInner(const std::vector<Line>& lines) {
    const std::size_t known = known_.size();
    auto fields = read(lines);
    known_.resize(known);
    return fields;
  }

  Field readField(const Line& line) {
    const auto& tokens = line.tokens;
    Field field;
    if (tokens.front().is("when")) return readWhen(line);
    if (tokens.front().is("details")) return readDetails(line);
    if (isGapWord(tokens.front())) return readGap(line, 0, field);
    field.name = tokens.front().text;
    if (field.name.ends_with(']')) return readList(line, field);
    if (tokens.size() == 1 || tokens[1].is("of")) return readGroup(line, field);
    if (isGapWord(tokens[1])) return readGap(line, 1, field);
    if (tokens[1].is("text") || tokens[1].is("bytes")) return readBytes(line, field);
    readType(line, tokens[1].text, field);
    for (std::size_t i = 2; i < tokens.size();) i = readAttribute(line, i, field);
    if (field.kind == Kind::number) {
      field.keep = static_cast<i16>(registers_++);
      known_.push_back({field.name, field.keep, field.words});
    }
    return field;
  }

  static bool isGapWord(const Token& token) { return token.is("zero") || token.is("any"); }

  Field readGap(const Line& line, std::size_t at, Field field) {
    field.kind = Kind::gap;
    field.loose = line.tokens[at].is("any");
    field.amount = readAmount(line, wordAt(line, at + 1));
    readNote(line, at + 2, field);
    return field;
  }

  Field readBytes(const Line& line, Field field) {
    field.kind = line.tokens[1].is("text") ? Kind::text : Kind::bytes;
    field.amount = readAmount(line, wordAt(line, 2));
    field.loose = line.tokens.size() > 3 && line.tokens[3].is("loose");
    readNote(line, field.loose ? 4 : 3, field);
    return field;
  }

  Field readList(const Line& line, Field field) {
    const auto open = field.name.find('[');
    if (open == field.name.npos || open == 0) line.bad("a list is NAME[COUNT]");
    field.kind = Kind::list;
    field.amount = readAmount(line, field.name.substr(open + 1, field.name.size() - open - 2));
    if (field.amount.source >= 0) counting_.insert(field.amount.source);
    field.name.resize(open);
    return readContent(line, field);
  }

  Field readGroup(const Line& line, Field field) {
    field.kind = Kind::group;
    return readContent(line, field);
  }

  Field readContent(const Line& line, Field field) {
    if (line.tokens.size() > 1 && line.tokens[1].is("of")) {
      Line use = line;
      use.tokens.erase(use.tokens.begin());
      if (++depth_ > kDeepest) line.bad("it is part of itself");
      field.fields = readInner(templates_.expand("record", use));
      --depth_;
    } else {
      readNote(line, 1, field);
      field.fields = readInner(line.under);
    }
    if (field.fields.empty()) line.bad("nothing belongs to " + field.name);
    return field;
  }

  // when NAME = VALUE...
  Field readWhen(const Line& line) {
    static constexpr std::string_view kSigns[] = {"=", "!=", "<", "<=", ">", ">="};
    Field field;
    field.kind = Kind::when;
    const std::string name = wordAt(line, 1);
    field.amount = readAmount(line, name);
    const auto* const sign = std::ranges::find(kSigns, wordAt(line, 2));
    if (sign == std::end(kSigns)) line.bad("a condition is when NAME = VALUE, or with one of != < <= > >=");
    field.compare = static_cast<Compare>(sign - std::begin(kSigns));
    field.condition = name + " " + std::string(*sign);
    for (std::size_t i = 3; i < line.tokens.size(); ++i) {
      const std::string& text = line.tokens[i].text;
      field.values.push_back(valueOf(line, name, text));
      field.condition += (i == 3 ? " " : " or ") + text;
    }
    if (field.values.empty()) line.bad("the condition has no value");
    field.fields = readInner(line.under);
    return field;
  }

  Field readDetails(const Line& line) {
    Field field;
    field.kind = Kind::details;
    field.amount = readAmount(line, wordAt(line, 1));
    return field;
  }

  i64 valueOf(const Line& line, const std::string& name, const std::string& text) const {
    const auto known = std::find_if(known_.rbegin(), known_.rend(), [&](const Known& one) { return one.name == name; });
    if (known != known_.rend()) {
      const auto word = std::ranges::find(known->words, text, &Word::text);
      if (word != known->words.end()) return word->value;
    }
    return numberOf(line, text);
  }

  void readType(const Line& line, std::string_view text, Field& field) {
    for (const auto& [suffix, order] : {std::pair("le", Order::little), std::pair("host", Order::host)})
      if (text.ends_with(suffix)) {
        text.remove_suffix(std::string_view(suffix).size());
        field.order = order;
        break;
      }
    const auto* const type = std::ranges::find(kTypes, text, &Type::name);
    if (type == std::end(kTypes)) line.bad("no such type: " + line.tokens[1].text);
    field.kind = type->kind;
    field.width = type->width;
    field.isSigned = type->isSigned;
  }

  // Reads the attribute at token i; the index behind it.
  std::size_t readAttribute(const Line& line, std::size_t i, Field& field) {
    const Token& token = line.tokens[i];
    const std::string& text = token.text;
    if (token.quoted) {
      field.note = text;
    } else if (text == "=") {
      field.fixed = true;
      field.amount = readAmount(line, wordAt(line, ++i));
    } else if (text == "in") {
      field.unit = wordAt(line, ++i);
    } else if (text == "loose") {
      field.loose = true;
    } else if (text == "hex") {
      field.hex = true;
    } else if (text == "...") {
      field.open = true;
    } else if (text.starts_with('/')) {
      field.divisor = static_cast<u32>(numberOf(line, text.substr(1)));
      if (field.divisor == 0) line.bad("nothing is divided by 0");
    } else if (const auto equals = text.find('='); equals != text.npos && equals + 1 < text.size()) {
      field.words.push_back({numberOf(line, text.substr(0, equals)), text.substr(equals + 1)});
    } else if (const auto dots = text.find(".."); dots != text.npos) {
      Range range;
      if (dots > 0) range.low = numberOf(line, text.substr(0, dots));
      if (dots + 2 < text.size()) range.high = numberOf(line, text.substr(dots + 2));
      field.ranges.push_back(range);
    } else {
      line.bad("not understood: " + text);
    }
    return i + 1;
  }

  static void readNote(const Line& line, std::size_t at, Field& field) {
    if (at < line.tokens.size() && line.tokens[at].quoted) field.note = line.tokens[at++].text;
    if (at < line.tokens.size()) line.bad("not understood: " + line.tokens[at].text);
  }

  static std::string wordAt(const Line& line, std::size_t at) {
    if (at >= line.tokens.size()) line.bad("something is missing at the end of the line");
    return line.tokens[at].text;
  }

  // NUMBER, NAME or rest; NAME*NUMBER; any of them with +NUMBER or -NUMBER behind it
  Amount readAmount(const Line& line, const std::string& text) const {
    Amount amount;
    amount.text = text;
    if (const auto number = readNumber(text)) {
      amount.constant = *number;
      return amount;
    }
    const auto nameEnd = std::min(text.find_first_of("*+-"), text.size());
    const std::string name = text.substr(0, nameEnd);
    std::string_view behind = std::string_view(text).substr(nameEnd);
    if (behind.starts_with('*')) {
      const auto end = std::min(behind.find_first_of("+-"), behind.size());
      amount.factor = static_cast<i32>(numberOf(line, std::string(behind.substr(1, end - 1))));
      behind.remove_prefix(end);
    }
    if (!behind.empty()) {
      const i64 number = numberOf(line, std::string(behind.substr(1)));
      amount.constant = behind.front() == '-' ? -number : number;
    }
    amount.source = name == "rest" ? Amount::kRest : registerOf(line, name);
    return amount;
  }

  i16 registerOf(const Line& line, const std::string& name) const {
    const auto found = std::find_if(known_.rbegin(), known_.rend(), [&](const Known& one) { return one.name == name; });
    if (found == known_.rend()) line.bad("no number of this name stands ahead: " + name);
    return found->keep;
  }

  const Templates& templates_;
  std::vector<Known> known_;
  int depth_ = 0;           // of records within records
  std::set<i16> counting_;  // registers that count lists
  u16 registers_ = 0;
};

}  // namespace

void Templates::add(const std::string& kind, Line line) {
  if (line.tokens.size() < 2) line.bad("it has no name");
  const std::string name = kind + " " + line.tokens[1].text;
  if (!all_.try_emplace(name, line).second) line.bad("described twice: " + name);
}

std::vector<Line> Templates::expand(const std::string& kind, const Line& use) const {
  if (use.tokens.size() < 2) use.bad("the name is missing");
  const auto found = all_.find(kind + " " + use.tokens[1].text);
  if (found == all_.end()) use.bad(fmt::format("there is no {} {}", kind, use.tokens[1].text));
  const auto wordsOf = [](const Line& line) {
    std::vector<std::string> words;
    for (std::size_t i = 2; i < line.tokens.size(); ++i)
      if (!line.tokens[i].quoted) words.push_back(line.tokens[i].text);
    return words;
  };
  const auto parameters = wordsOf(found->second);
  const auto words = wordsOf(use);
  if (parameters.size() != words.size())
    use.bad(fmt::format("{} {} takes {} words", kind, use.tokens[1].text, parameters.size()));
  Line copy = found->second;
  for (Line& line : copy.under) substitute(line, parameters, words);
  return copy.under;
}

Layout readLayout(const std::vector<Line>& lines, const Templates& templates) {
  FieldReader reader(templates);
  Layout layout;
  layout.fields = reader.read(lines);
  reader.markCounts(layout.fields);
  layout.registers = reader.registers();
  layout.given = true;
  return layout;
}

i64 numberOf(const Line& line, const std::string& text) {
  const auto number = readNumber(text);
  if (!number) line.bad("not a number: " + text);
  return *number;
}

}  // namespace messages
