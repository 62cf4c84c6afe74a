// The generator refuses a schema with a mistake, and says where it is.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace {

// What the generator says of a schema on both streams, and how it ends.
std::string generate(const std::string& schema) {
  const std::string command = "printf '" + schema + "' | " DBGEN " header 2>&1";
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return "no shell";
  std::string said;
  for (int c; (c = std::fgetc(pipe)) != EOF;) said += static_cast<char>(c);
  return pclose(pipe) == 0 ? "accepted" : said;
}

TEST(SchemaGenerator, RefusesMistakesWithTheirLine) {
  const struct {
    const char* schema;
    const char* said;
  } cases[] = {
      {"u32 a", "line 1: a field stands ahead of the first table\n"},
      {"\\n# none\\ntable", "line 3: the name is missing\n"},
      {"table T 1\\n", "line 1: there is too much on the line\n"},
      {"table 1T\\n", "line 1: '1T' is no name\n"},
      {"table T\\ntable U\\n", "line 2: T has no fields\n"},
      {"table T\\nu8 a\\ntable T\\n", "line 3: there is a 'T' already\n"},
      {"table T\\nu64 a\\n", "line 2: 'u64' is unknown\n"},
      {"table T\\nu8 a\\nu8 a\\n", "line 3: T has 'a' already\n"},
      {"table T\\nchar a\\n", "line 2: width is missing\n"},
      {"table T\\nchar a 0\\n", "line 2: '0' is no width\n"},
      {"table T\\nbytes a 99999\\n", "line 2: '99999' is no width\n"},
      {"table T\\nbytes a 65535\\nu8 b\\n", "line 3: the row of T is too long\n"},
      {"table T\\nu8 a\\nindex i\\n", "line 3: the key of 'i' is missing\n"},
      {"table T\\nu8 a\\nindex i b\\n", "line 3: 'b' is no field of T\n"},
      {"table T\\nu8 a 2\\nindex i a\\n", "line 3: 'a' is a vector\n"},
      {"table T\\nu8 a\\nindex i a a\\n", "line 3: 'a' is twice in the key\n"},
      {"table T\\nchar a 129\\nmany i a\\n", "line 3: the key of 'i' is longer than 128\n"},
      {"table T\\nbytes a 4\\npart u16 p a 3\\n", "line 3: 'p' is not inside 'a'\n"},
      {"table T\\nu32 a\\npart u16 p a 0\\n", "line 3: 'a' is no field of bytes\n"},
      {"struct S\\nu8 a\\nindex i a\\n", "line 3: 'index' is unknown\n"},
      {"table T\\nu8 a\\nevent e a\\nevent e a\\n", "line 4: there is an event 'e' already\n"},
      {"table T\\nu8 a\\ntable U\\n", "line 3: U has no fields\n"},
  };
  for (const auto& [schema, said] : cases) EXPECT_EQ(generate(schema), said) << schema;
  EXPECT_EQ(generate("table T\\nchar a 128\\nmany i a\\n"), "accepted");
}

}  // namespace
