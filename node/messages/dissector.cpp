// Makes the dissector for Wireshark: message_dissector ENGINE OUTPUT. The engine, a Lua script, gets the descriptions
// of all messages as tables in the place of its line "-- DESCRIPTIONS".

#include <fmt/format.h>
#include <fmt/ostream.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "numbers.h"

namespace messages {
namespace {

constexpr std::string_view kMark = "-- DESCRIPTIONS\n";
constexpr std::string_view kKinds[] = {"number", "scaled", "text",  "bytes", "mac",    "ip",
                                       "gap",    "list",   "group", "when",  "details"};
constexpr std::string_view kSigns[] = {"=", "!=", "<", "<=", ">", ">="};

std::string quoted(std::string_view text) {
  std::string all = "\"";
  for (const char letter : text) {
    if (letter == '"' || letter == '\\') all += '\\';
    all += letter;
  }
  return all + '"';
}

std::string amountText(const Amount& amount) {
  if (amount.source == Amount::kConstant) return fmt::format("amount={}", amount.constant);
  return fmt::format("source={},factor={},amount={}", amount.source, amount.factor, amount.constant);
}

std::string fieldsText(const std::vector<Field>& fields);

void add(std::string& text, const std::string& part) { text += (text.ends_with('{') ? "" : ",") + part; }

std::string whenText(const Field& field) {
  return fmt::format("sign=\"{}\",values={{{}}},fields={},otherwise={}", kSigns[static_cast<int>(field.compare)],
                     fmt::join(field.values, ","), fieldsText(field.fields), fieldsText(field.otherwise));
}

std::string fieldText(const Field& field) {
  std::string text = "{";
  add(text, fmt::format("kind=\"{}\"", kKinds[static_cast<int>(field.kind)]));
  if (!field.name.empty()) add(text, "name=" + quoted(field.name));
  if (field.width != 0) add(text, fmt::format("width={}", field.width));
  if (field.width > 1 && isLittle(field)) add(text, "little=true");
  if (field.isSigned) add(text, "signed=true");
  if (field.hex) add(text, "hex=true");
  if (field.loose) add(text, "loose=true");
  if (field.fixed) add(text, "fixed=true");
  if (field.counts) add(text, "counts=true");
  if (field.keep >= 0) add(text, fmt::format("keep={}", field.keep));
  if (field.divisor != 1) add(text, fmt::format("divisor={}", field.divisor));
  if (!field.unit.empty()) add(text, "unit=" + quoted(field.unit));
  if (!field.note.empty()) add(text, "note=" + quoted(field.note));
  if (field.kind != Kind::group) add(text, amountText(field.amount));
  if (!field.words.empty()) {
    std::string words;
    for (const Word& word : field.words) words += fmt::format("[{}]={},", word.value, quoted(word.text));
    add(text, "words={" + words + "}");
  }
  if (field.kind == Kind::when)
    add(text, whenText(field));
  else if (!field.fields.empty())
    add(text, "fields=" + fieldsText(field.fields));
  return text + "}";
}

std::string fieldsText(const std::vector<Field>& fields) {
  std::string text = "{";
  for (const Field& field : fields) add(text, fieldText(field));
  return text + "}";
}

void print(std::ostream& to, const Message& message) {
  fmt::print(to, "message{{name={},note={},ids={{{}}},\n", quoted(message.name), quoted(message.note),
             fmt::join(message.ids, ","));
  fmt::print(to, " roads={{\n");
  for (std::size_t road = 0; road < kRoads; ++road)
    if (const Layout* const layout = message.find(static_cast<Road>(road)); layout != nullptr)
      fmt::print(to, "  [{}]={},\n", road, fieldsText(layout->fields));
  fmt::print(to, " }},\n errors={{\n");
  for (const auto& [code, layout] : message.details)
    fmt::print(to, "  [{}]={{note={},fields={}}},\n", code, quoted(layout.note), fieldsText(layout.fields));
  fmt::print(to, " }}}}\n");
}

void print(std::ostream& to) {
  for (std::size_t road = 0; road < kRoads; ++road)
    fmt::print(to, "road[{}] = {}\n", road, quoted(roadName(static_cast<Road>(road))));
  fmt::print(to, "errorPacket({})\n", fieldsText(book().errorPacket.fields));
  for (const Message& message : book().messages) print(to, message);
}

void make(const char* engineFile, const char* outputFile) {
  std::ifstream input(engineFile);
  const std::string engine(std::istreambuf_iterator<char>(input), {});
  const std::size_t mark = engine.find(kMark);
  if (mark == engine.npos) throw std::runtime_error("the engine has no place for the descriptions");
  std::ofstream output(outputFile);
  output << engine.substr(0, mark);
  print(output);
  output << engine.substr(mark + kMark.size());
  output.close();
  if (!output) throw std::runtime_error("the output can't be written");
}

}  // namespace
}  // namespace messages

int main(int argc, char** argv) try {
  if (argc != 3) throw std::runtime_error("message_dissector ENGINE OUTPUT");
  messages::make(argv[1], argv[2]);
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "message_dissector: %s\n", error.what());
  return 1;
}
