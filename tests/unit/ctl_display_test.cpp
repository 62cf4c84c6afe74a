// What msanctl makes of lines and texts, away from any terminal.

#include <gtest/gtest.h>
#include <unistd.h>

#include "descriptor.h"
#include "display.h"
#include "line_reader.h"

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

TEST(Lines, EndInAnyOfTheWays) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const Descriptor out(ends[0]);
  Descriptor in(ends[1]);
  ASSERT_EQ(write(in.get(), "one\r\n\n\r\nfour", 12), 12);
  in.reset();
  ctl::LineReader reader(out.get(), 100);
  for (const char* line : {"one", "", "", "four"}) {
    EXPECT_EQ(reader.next(true), ctl::LineReader::Got::line);
    EXPECT_EQ(reader.line(), line);
  }
  EXPECT_EQ(reader.next(true), ctl::LineReader::Got::end);
}
