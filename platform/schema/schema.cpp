// Reads the schema line by line. What a line may say is told at the head of msan.schema.

#include "schema.h"

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace {

constexpr unsigned kLongestRow = 65535;
constexpr unsigned kLongestKey = 128;  // kDbKeyBytes
constexpr unsigned kMostIndexes = 16;
constexpr unsigned kMostEvents = 16;

const std::map<std::string, unsigned> kNumbers = {{"u8", 1}, {"u16", 2}, {"u32", 4}, {"i8", 1}, {"i16", 2}, {"i32", 4}};

std::string nextName(std::istringstream& line, const std::string& what) {
  std::string name;
  if (!(line >> name)) refuse(what + " is missing");
  for (const char c : name)
    if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '_') refuse("'" + name + "' is no name");
  if (std::isdigit(static_cast<unsigned char>(name[0])) != 0) refuse("'" + name + "' is no name");
  return name;
}

unsigned nextNumber(std::istringstream& line, const std::string& what, unsigned least) {
  std::string word;
  if (!(line >> word)) refuse(what + " is missing");
  if (word.size() > 5 || word.find_first_not_of("0123456789") != word.npos) refuse("'" + word + "' is no " + what);
  const unsigned number = static_cast<unsigned>(std::stoul(word));
  if (number < least || number > kLongestRow) refuse("'" + word + "' is no " + what);
  return number;
}

bool isAtEnd(std::istringstream& line) { return (line >> std::ws).eof(); }

const Field* findField(const Table& table, const std::string& name) {
  for (const Field& field : table.fields)
    if (field.name == name) return &field;
  return nullptr;
}

void takeName(Table& table, const std::string& name) {
  if (!table.names.insert(name).second) refuse(table.name + " has '" + name + "' already");
}

// Rows are laid out as a C structure of their fields.
void addField(Table& table, Field field, unsigned alignment) {
  takeName(table, field.name);
  const std::size_t offset = (table.size + alignment - 1) / alignment * alignment;
  if (offset + field.size() > kLongestRow) refuse("the row of " + table.name + " is too long");
  field.offset = static_cast<unsigned>(offset);
  table.size = static_cast<unsigned>(offset + field.size());
  table.alignment = std::max(table.alignment, alignment);
  table.fields.push_back(field);
}

void readField(const Schema& schema, Table& table, const std::string& kind, std::istringstream& line) {
  if (const auto number = kNumbers.find(kind); number != kNumbers.end()) {
    const std::string name = nextName(line, "the field's name");
    const unsigned count = isAtEnd(line) ? 0 : nextNumber(line, "count", 1);
    addField(table, {Field::number, kind, name, number->second, count}, number->second);
  } else if (kind == "char" || kind == "bytes") {
    const std::string name = nextName(line, "the field's name");
    const unsigned width = nextNumber(line, "width", 1);
    addField(table, {kind == "char" ? Field::text : Field::bytes, kind == "char" ? "char" : "u8", name, width}, 1);
  } else if (const Table* element = schema.findStruct(kind); element != nullptr && table.isTable) {
    const std::string name = nextName(line, "the field's name");
    const unsigned count = nextNumber(line, "count", 1);
    addField(table, {Field::element, kind, name, element->size, count}, element->alignment);
  } else {
    refuse("'" + kind + "' is unknown");
  }
}

void readPart(Table& table, std::istringstream& line) {
  const std::string type = nextName(line, "the type");
  const auto number = kNumbers.find(type);
  if (number == kNumbers.end()) refuse("'" + type + "' is no number");
  const std::string name = nextName(line, "the part's name");
  const std::string of = nextName(line, "the field");
  const unsigned offset = nextNumber(line, "offset", 0);
  const Field* field = findField(table, of);
  if (field == nullptr || (field->kind != Field::bytes && field->kind != Field::text))
    refuse("'" + of + "' is no field of bytes");
  if (offset + number->second > field->width) refuse("'" + name + "' is not inside '" + of + "'");
  takeName(table, name);
  table.parts[name] = {Field::number, type, name, number->second, 0, field->offset + offset};
}

Field keyField(const Table& table, const std::string& name) {
  if (const auto part = table.parts.find(name); part != table.parts.end()) return part->second;
  const Field* field = findField(table, name);
  if (field == nullptr) refuse("'" + name + "' is no field of " + table.name);
  if (field->kind == Field::element || field->count != 0) refuse("'" + name + "' is a vector");
  return *field;
}

void readIndex(Table& table, bool unique, std::istringstream& line) {
  Index index{nextName(line, "the index's name"), unique, {}};
  takeName(table, index.name);
  unsigned length = 0;
  while (!isAtEnd(line)) {
    index.key.push_back(keyField(table, nextName(line, "the field")));
    length += index.key.back().width;
    for (std::size_t i = 0; i + 1 < index.key.size(); ++i)
      if (index.key[i].name == index.key.back().name) refuse("'" + index.key[i].name + "' is twice in the key");
  }
  if (index.key.empty()) refuse("the key of '" + index.name + "' is missing");
  if (length > kLongestKey) refuse("the key of '" + index.name + "' is longer than " + std::to_string(kLongestKey));
  if (table.indexes.size() == kMostIndexes) refuse(table.name + " has too many indexes");
  table.indexes.push_back(index);
}

void readEvent(Schema& schema, Table& table, std::istringstream& line) {
  const std::string name = nextName(line, "the event's name");
  const Field field = keyField(table, nextName(line, "the field"));
  if (!schema.eventNames.insert(name).second) refuse("there is an event '" + name + "' already");
  if (table.events.size() == kMostEvents) refuse(table.name + " has too many events");
  table.events.push_back({name, field});
}

// What is behind the last field, so that vectors and tables have the size of a C structure.
void closeTable(Schema& schema) {
  if (schema.all.empty()) return;
  Table& table = schema.all.back();
  if (table.fields.empty()) refuse(table.name + " has no fields");
  table.size = (table.size + table.alignment - 1) / table.alignment * table.alignment;
}

void openTable(Schema& schema, const std::string& name, bool isTable) {
  closeTable(schema);
  if (kNumbers.count(name) != 0) refuse("'" + name + "' is a type already");
  for (const Table& table : schema.all)
    if (table.name == name) refuse("there is a '" + name + "' already");
  schema.all.push_back({name, isTable, {}, {}, {}, {}, {}});
}

void readLine(Schema& schema, const std::string& text) {
  std::istringstream line(text.substr(0, text.find('#')));
  std::string kind;
  if (!(line >> kind)) return;
  if (kind == "table" || kind == "struct") {
    openTable(schema, nextName(line, "the name"), kind == "table");
  } else if (schema.all.empty()) {
    refuse("a field stands ahead of the first table");
  } else if (Table& table = schema.all.back(); kind == "part" && table.isTable) {
    readPart(table, line);
  } else if ((kind == "index" || kind == "many") && table.isTable) {
    readIndex(table, kind == "index", line);
  } else if (kind == "event" && table.isTable) {
    readEvent(schema, table, line);
  } else {
    readField(schema, table, kind, line);
  }
  if (!isAtEnd(line)) refuse("there is too much on the line");
}

}  // namespace

void refuse(const std::string& what) { throw std::runtime_error(what); }

const Table* Schema::findStruct(const std::string& name) const {
  for (const Table& table : all)
    if (!table.isTable && table.name == name) return &table;
  return nullptr;
}

Schema readSchema(std::istream& in) {
  Schema schema;
  std::string text;
  unsigned number = 0;
  try {
    while (std::getline(in, text)) {
      ++number;
      readLine(schema, text);
    }
    closeTable(schema);
  } catch (const std::runtime_error& mistake) {
    refuse("line " + std::to_string(number) + ": " + mistake.what());
  }
  return schema;
}
