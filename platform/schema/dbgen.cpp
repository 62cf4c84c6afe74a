// Turns the schema on standard input into sources on standard output:
//
//   dbgen header       the typed functions of the tables
//   dbgen layouts H    the layouts of the tables, for the platform; H is how to include the header
//
// A schema with a mistake gives "line N: ..." on standard error and exit status 1.

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <exception>
#include <iostream>
#include <map>
#include <set>
#include <string>

#include "schema.h"

namespace {

// Puts words in the place of marks; a mark is an @ and a name.
std::string fill(const std::string& text, const std::map<std::string, std::string>& words) {
  std::string result;
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != '@') {
      result += text[at++];
      continue;
    }
    std::size_t end = at + 1;
    while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])) != 0) ++end;
    result += words.at(text.substr(at + 1, end - at - 1));
    at = end;
  }
  return result;
}

using Words = std::map<std::string, std::string>;

const std::string ofTable = R"(
extern const DbTable @T_table;
struct @T {
  DbRow row;
};
inline int @T_new(mco_trans_h t, @T* h) { return dbNew(t, &@T_table, &h->row); }
inline int @T_delete(@T* h) { return dbDelete(&h->row); }
inline int @T_list_cursor(mco_trans_h t, mco_cursor_t* c) { return dbListCursor(t, &@T_table, c); }
inline int @T_from_cursor(mco_trans_h t, const mco_cursor_t* c, @T* h) { return dbFromCursor(t, &@T_table, c, &h->row); }
)";

// An element of a vector: a row, and where in it.
const std::string ofStruct = R"(
struct @T {
  DbRow row;
  u32 offset = 0;
};
)";

const std::string ofNumber =
    R"(inline int @T_@f_get(@T* h, @type* v) { return dbGet(&h->row, @offset, @width, v, @width); }
inline int @T_@f_put(@T* h, @type v) { return dbPut(&h->row, @offset, @width, &v, @width); }
)";

const std::string ofNumbers = R"(inline int @T_@f_at(@T* h, u32 i, @type* v) {
  return i < @count ? dbGet(&h->row, @offset + i * @width, @width, v, @width) : int{DB_BAD_ARGUMENT};
}
inline int @T_@f_put(@T* h, u32 i, @type v) {
  return i < @count ? dbPut(&h->row, @offset + i * @width, @width, &v, @width) : int{DB_BAD_ARGUMENT};
}
)";

const std::string ofBytes =
    R"(inline int @T_@f_get(@T* h, @any* v, u32 size) { return dbGet(&h->row, @offset, @width, v, size); }
inline int @T_@f_put(@T* h, const @any* v, u32 size) { return dbPut(&h->row, @offset, @width, v, size); }
)";

const std::string ofRange = R"(inline int @T_@f_get_range(@T* h, u32 from, u32 size, void* v) {
  return from <= @width && size <= @width - from ? dbGet(&h->row, @offset + from, size, v, size) : int{DB_BAD_ARGUMENT};
}
inline int @T_@f_put_range(@T* h, u32 from, u32 size, const void* v) {
  return from <= @width && size <= @width - from ? dbPut(&h->row, @offset + from, size, v, size) : int{DB_BAD_ARGUMENT};
}
)";

const std::string ofElements = R"(inline int @T_@f_at(@T* h, u32 i, @type* v) {
  if (i >= @count) return DB_BAD_ARGUMENT;
  *v = {h->row, @offset + i * @width};
  return DB_OK;
}
inline int @T_@f_put(@T* h, u32 i, @type* v) { return @T_@f_at(h, i, v); }
)";

const std::string ofFixed = R"(struct @T_fixed {
@members};
static_assert(sizeof(@T_fixed) == @size);
inline int @T_fixed_get(@T* h, @T_fixed* v) { return dbGet(&h->row, @offset, @size, v, @size); }
inline int @T_fixed_put(@T* h, const @T_fixed* v) { return dbPut(&h->row, @offset, @size, v, @size); }
)";

const std::string ofKey = R"(inline DbKey @T_@i_key(@keyParameters) {
  DbKey k;
@adds  return k;
}
)";

const std::string ofFind = R"(inline int @T_@i_find(mco_trans_h t@parameters, @T* h) {
  return dbFind(t, &@T_table, @number, @T_@i_key(@arguments), &h->row);
}
)";

const std::string ofIndex =
    R"(inline int @T_@i_index_cursor(mco_trans_h t, mco_cursor_t* c) { return dbIndexCursor(t, &@T_table, @number, c); }
inline int @T_@i_search(mco_trans_h t, mco_cursor_t* c, int op@parameters) {
  return dbSearch(t, &@T_table, @number, c, op, @T_@i_key(@arguments));
}
inline int @T_@i_compare(mco_trans_h t, const mco_cursor_t* c@parameters, int* result) {
  return dbCompare(t, &@T_table, @number, c, @T_@i_key(@arguments), result);
}
)";

const std::string ofEvent = R"(using @H = int(mco_trans_h transaction, @T* row);
inline int mco_register_@e_handler(mco_trans_h t, @H* handler, int, int) {
  DbCallHandler* const call = [](DbHandler* h, mco_trans_h transaction, const DbRow& row) {
    @T typed{row};
    return reinterpret_cast<@H*>(h)(transaction, &typed);
  };
  return dbRegisterHandler(t, &@T_table, @number, reinterpret_cast<DbHandler*>(handler), call);
}
inline int mco_unregister_@e_handler(mco_trans_h t, @H* handler) {
  return dbUnregisterHandler(t, &@T_table, @number, reinterpret_cast<DbHandler*>(handler));
}
)";

// How the functions of a table, or of an element, reach a field.
Words fieldWords(const Table& table, const Field& field) {
  return {{"T", table.name},
          {"f", field.name},
          {"type", field.type},
          {"any", field.kind == Field::text ? "char" : "void"},
          {"width", std::to_string(field.width)},
          {"count", std::to_string(field.count)},
          {"offset", (table.isTable ? "" : "h->offset + ") + std::to_string(field.offset)}};
}

void writeField(const Table& table, const Field& field) {
  const Words words = fieldWords(table, field);
  if (field.kind == Field::number)
    std::cout << fill(field.count == 0 ? ofNumber : ofNumbers, words);
  else if (field.kind == Field::element)
    std::cout << fill(ofElements, words);
  else
    std::cout << fill(ofBytes, words);
  if (field.kind == Field::bytes) std::cout << fill(ofRange, words);
}

// The whole row as a structure, unless a field has that name.
void writeFixed(const Table& table) {
  if (table.names.count("fixed") != 0) return;
  std::string members;
  for (const Field& field : table.fields) {
    const std::string type = field.kind == Field::element ? field.type + "_fixed" : field.type;
    const bool bytes = field.kind == Field::text || field.kind == Field::bytes;
    const unsigned count = bytes ? field.width : field.count;
    members += "  " + type + " " + field.name + (count == 0 ? "" : "[" + std::to_string(count) + "]") + ";\n";
  }
  Words words = fieldWords(table, {Field::bytes, "", "", table.size});
  words["members"] = members;
  words["size"] = std::to_string(table.size);
  std::cout << fill(ofFixed, words);
}

void writeIndex(const Table& table, unsigned number) {
  const Index& index = table.indexes[number];
  std::string parameters, arguments, adds;
  for (const Field& field : index.key) {
    const bool bytes = field.kind != Field::number;
    const std::string any = field.kind == Field::text ? "const char* " : "const void* ";
    parameters += ", " + (bytes ? any + field.name + ", u32 " + field.name + "Size" : field.type + " " + field.name);
    arguments += (arguments.empty() ? "" : ", ") + field.name + (bytes ? ", " + field.name + "Size" : "");
    adds += bytes ? "  k.addBytes(" + field.name + ", " + field.name + "Size, " + std::to_string(field.width) + ");\n"
                  : "  k.add(" + field.name + ");\n";
  }
  const Words words = {{"T", table.name},
                       {"i", index.name},
                       {"parameters", parameters},
                       {"keyParameters", parameters.substr(2)},
                       {"arguments", arguments},
                       {"adds", adds},
                       {"number", std::to_string(number)}};
  std::cout << fill(ofKey, words);
  if (index.unique) std::cout << fill(ofFind, words);
  std::cout << fill(ofIndex, words);
}

void writeEvent(const Table& table, unsigned number) {
  const std::string& name = table.events[number].name;
  std::string type = name + "Handler";
  type[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(type[0])));
  std::cout << fill(ofEvent, {{"T", table.name}, {"e", name}, {"H", type}, {"number", std::to_string(number)}});
}

void writeHeader(const Schema& schema) {
  std::cout << "#pragma once\n// Written by dbgen from the schema of the tables. Do not edit.\n\n"
               "#include \"platform/database.h\"\n";
  for (const Table& table : schema.all) {
    std::cout << fill(table.isTable ? ofTable : ofStruct, {{"T", table.name}});
    for (const Field& field : table.fields) writeField(table, field);
    writeFixed(table);
    for (unsigned i = 0; i < table.indexes.size(); ++i) writeIndex(table, i);
    for (unsigned i = 0; i < table.events.size(); ++i) writeEvent(table, i);
  }
}

// FNV-1a.
std::uint32_t tagOf(const std::string& name) {
  std::uint32_t hash = 2166136261U;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
  return hash;
}

void writeField(const std::string& name, const Field& field, std::size_t offset) {
  const char* kind = field.kind == Field::text     ? "text"
                     : field.kind == Field::bytes  ? "bytes"
                     : field.type.starts_with("i") ? "signedNumber"
                                                   : "number";
  std::cout << "    {\"" << name << "\", " << offset << ", " << field.width << ", DbKind::" << kind << "},\n";
}

// Fields as they are listed: elements of vectors one by one.
void writeFields(const Schema& schema, const std::vector<Field>& fields, const std::string& prefix, std::size_t base) {
  for (const Field& field : fields) {
    for (unsigned i = 0; i < std::max(field.count, 1U); ++i) {
      const std::string name = prefix + field.name + (field.count == 0 ? "" : "[" + std::to_string(i) + "]");
      const std::size_t offset = base + field.offset + std::size_t{i} * field.width;
      if (field.kind == Field::element)
        writeFields(schema, schema.findStruct(field.type)->fields, name + ".", offset);
      else
        writeField(name, field, offset);
    }
  }
}

void writeLayout(const Schema& schema, const Table& table) {
  const std::string& name = table.name;
  std::cout << "\nstatic constexpr DbField " << name << "_fields[] = {\n";
  writeFields(schema, table.fields, "", 0);
  std::cout << "};\n";
  std::string indexes, watched;
  for (const Index& index : table.indexes) {
    const std::string key = name + "_" + index.name + "_fields";
    std::cout << "static constexpr DbField " << key << "[] = {\n";
    for (const Field& field : index.key) writeField(field.name, field, field.offset);
    std::cout << "};\n";
    indexes += "    {\"" + index.name + "\", " + (index.unique ? "true" : "false") + ", " + key + "},\n";
  }
  for (const Event& event : table.events) watched += (watched.empty() ? "" : ", ") + std::to_string(event.field.offset);
  if (!indexes.empty()) std::cout << "static constexpr DbIndex " << name << "_indexes[] = {\n" << indexes << "};\n";
  if (!watched.empty()) std::cout << "static constexpr u32 " << name << "_watched[] = {" << watched << "};\n";
  std::cout << "const DbTable " << name << "_table = {\"" << name << "\", " << tagOf(name) << "U, " << table.size
            << ", " << name << "_fields, " << (indexes.empty() ? "{}" : name + "_indexes") << ", "
            << (watched.empty() ? "{}" : name + "_watched") << "};\n";
}

void writeLayouts(const Schema& schema, const std::string& header) {
  std::cout << "// Written by dbgen from the schema of the tables. Do not edit.\n\n#include \"host/table_layout.h\"\n"
            << "#include \"" << header << "\"\n";
  std::string all;
  std::set<std::uint32_t> tags;
  for (const Table& table : schema.all) {
    if (!table.isTable) continue;
    if (!tags.insert(tagOf(table.name)).second) refuse("the tag of " + table.name + " is taken; rename it");
    writeLayout(schema, table);
    all += "    &" + table.name + "_table,\n";
  }
  std::cout << "\nstatic constexpr const DbTable* all[] = {\n"
            << all << "};\n"
            << "[[maybe_unused]] static const bool known = (host::addTables(all), true);\n";
}

}  // namespace

int main(int argc, char** argv) {
  const std::string what = argc > 1 ? argv[1] : "";
  try {
    if (what == "header" && argc == 2)
      writeHeader(readSchema(std::cin));
    else if (what == "layouts" && argc == 3)
      writeLayouts(readSchema(std::cin), argv[2]);
    else
      refuse("usage: dbgen header|layouts HEADER < SCHEMA");
  } catch (const std::exception& mistake) {
    std::cerr << mistake.what() << '\n';
    return 1;
  }
  return std::cout.flush() ? 0 : 1;
}
