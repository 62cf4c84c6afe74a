#pragma once
// The schema of the tables, read and checked.

#include <cstddef>
#include <istream>
#include <map>
#include <set>
#include <string>
#include <vector>

struct Field {
  enum Kind { number, text, bytes, element };
  Kind kind;
  std::string type;  // u16, char, u8 for bytes, or a struct
  std::string name;
  unsigned width;      // of one
  unsigned count = 0;  // 0: no vector
  unsigned offset = 0;
  std::size_t size() const { return std::size_t{width} * (count == 0 ? 1 : count); }
};

struct Index {
  std::string name;
  bool unique;
  std::vector<Field> key;
};

struct Event {
  std::string name;
  Field field;
};

// A table, or the structure of a vector's elements.
struct Table {
  std::string name;
  bool isTable;
  std::vector<Field> fields;
  std::map<std::string, Field> parts;  // numbers inside fields
  std::vector<Index> indexes;
  std::vector<Event> events;
  std::set<std::string> names;  // all that its functions are built on
  unsigned size = 0;
  unsigned alignment = 1;
};

struct Schema {
  std::vector<Table> all;
  std::set<std::string> eventNames;

  // The structure of this name, or null.
  const Table* findStruct(const std::string& name) const;
};

// Throws std::runtime_error("line N: ...") for a schema with a mistake.
Schema readSchema(std::istream& in);

// Throws std::runtime_error.
[[noreturn]] void refuse(const std::string& what);
