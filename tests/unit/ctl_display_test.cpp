// What msanctl makes of lines and texts, away from any terminal.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "descriptor.h"
#include "display.h"
#include "line_reader.h"

using namespace std::string_literals;
using ctl::LineReader;

static std::string completed(std::string_view line, std::string_view rows) {
  return ctl::completion(line, ctl::readSuggestions(rows));
}

TEST(Completion, AddsWhatIsCertain) {
  // clang-format off
  const struct { const char* line; const char* rows; const char* added; } cases[] = {
      {"sh",           "show\t\nshowrun\t\n",            "ow"},
      {"show",         "show\t\nshowrun\t\n",            ""},
      {"show c",       "cid\tcaller identification\n",   "id "},
      {"SET C",        "cid\t\n",                        "id "},
      {"set cid mode ", "dtmf\t\nfsk\t\n",               ""},
      {"set cid ",     "mode\t\n<cr>\t\n",               "mode "},
      {"set pt 9",     "<96-127>\ta number\n",           ""},
      {"set x",        "",                               ""},
      {"set c",        "default\t\n",                    ""},
  };
  // clang-format on
  for (const auto& [line, rows, added] : cases) EXPECT_EQ(completed(line, rows), added) << line;
}

TEST(Completion, AQuestionMarkIsTextInsideQuotesOnly) {
  EXPECT_FALSE(ctl::insideQuotes("set name "));
  EXPECT_TRUE(ctl::insideQuotes("set name \"what"));
  EXPECT_FALSE(ctl::insideQuotes("set name \"what\" "));
}

TEST(Text, NothingInItWorksOnTheTerminal) {
  EXPECT_EQ(ctl::forDisplay("\r\n a\tb \r\n", true), "\n a\tb \n");
  EXPECT_EQ(ctl::forDisplay("\x1b]0;x\x07\x7f", true), "\\x1b]0;x\\x07\\x7f");
  EXPECT_EQ(ctl::forDisplay("\x1b[33ma\x1b[333m\x1b[2J", true), "\x1b[33ma\\x1b[333m\\x1b[2J") << "colours alone";
  EXPECT_EQ(ctl::forDisplay("\x1b[m\xc3\xa4\r\n", false), "\x1b[m\xc3\xa4\n") << "a file gets the bytes";
}

TEST(Text, APointerStandsUnderItsPlace) {
  const wire::Result result{.outcome = 1, .at = 6, .expected = "fsk"};
  EXPECT_EQ(ctl::pointer("> ", "set b xxx", result, 0), "        ^ fsk");
  EXPECT_EQ(ctl::pointer("> ", "s\xc3\xa4t b xxx", result, 80), "       ^ fsk") << "two bytes are one character";
  EXPECT_EQ(ctl::pointer("> ", "set b xxx", result, 5), "   ^ fsk") << "the line goes on below";
}

class Lines : public testing::Test {
 protected:
  void SetUp() override {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    out_ = Descriptor(ends[0]);
    in_ = Descriptor(ends[1]);
  }
  void write(const std::string& bytes) {
    ASSERT_EQ(::write(in_.get(), bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }
  static std::string next(LineReader& reader, bool wait = true) {
    const auto got = reader.next(wait);
    if (got == LineReader::Got::end) return "end";
    if (got == LineReader::Got::nothing) return "nothing";
    return "'" + reader.line() + "'" + (reader.tooLong() ? " cut" : "");
  }
  Descriptor out_, in_;
};

TEST_F(Lines, EndInAnyOfTheWays) {
  LineReader reader(out_.get(), 100);
  write("one\r\n\n\r\nfour");
  in_.reset();
  for (const char* line : {"'one'", "''", "''", "'four'", "end", "end"}) EXPECT_EQ(next(reader), line);
}

TEST_F(Lines, ALineIsNotWaitedForUnlessTold) {
  LineReader reader(out_.get(), 100);
  EXPECT_EQ(next(reader, false), "nothing");
  write("be");
  EXPECT_EQ(next(reader, false), "nothing");
  write("gun\nand more");
  EXPECT_EQ(next(reader, false), "'begun'");
  EXPECT_EQ(next(reader, false), "nothing");
  in_.reset();
  EXPECT_EQ(next(reader, false), "'and more'");
}

TEST_F(Lines, OfALongLineTheBeginningIsKept) {
  LineReader reader(out_.get(), 5);
  write("12345\n123456\n" + std::string(30000, 'x') + "\nend");
  in_.reset();
  EXPECT_EQ(next(reader), "'12345'");
  EXPECT_EQ(next(reader), "'12345' cut");
  EXPECT_EQ(next(reader), "'xxxxx' cut");
  EXPECT_EQ(next(reader), "'end'");
}
