// The language of the descriptions on layouts of every shape; bytes are put together by hand.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "messages/decode.h"
#include "messages/lines.h"
#include "messages/show.h"
#include "scenario/arguments.h"

namespace messages {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kFrames = R"(
record errorPacket
  status u32 = 0x41
  when rest > 0: entries u16 = 1; length u16 = rest; message u16; code i16; any 4; details code
record location RESERVED
  slot u16
  port u16 65535=all ...
  RESERVED 16
)";

Book bookOf(std::string_view text) {
  const Source sources[] = {{"frames", kFrames}, {"test", text}};
  return readBook(sources);
}

class MessagesTest : public testing::Test {
 protected:
  // The fields of message 1 as lines "NAME VALUE"; faults as "! ...". What is without fault is put together again, too.
  std::vector<std::string> read(std::string_view text, Road road, std::string_view hex) {
    const Book book = bookOf(text);
    const std::vector<u8> bytes = scenario::parseBytes(hex);
    const Message& message = *book.find(1);
    const Decoded decoded = decode(message, *layoutOf(book, message, road, bytes), bytes);
    if (decoded.problems.empty()) {
      EXPECT_EQ(encode(decoded), bytes);
    }
    std::vector<std::string> lines = fieldLines(decoded);
    for (std::string& line : lines) line.erase(0, line.find_first_not_of(" 0123456789"));
    return lines;
  }
};

TEST_F(MessagesTest, numbersOfEveryOrderWithSignScaleUnitAndWords) {
  EXPECT_THAT(read(R"(
message numbers 1
  gpon
    big    i16 /10 in dB
    small  u16le hex
    native u32host
    margin scaled in dB
    gain   i32le /100
    mode   u8 1=fsk 2=dtmf
    large  u64
)",
                   Road::gpon, "ffdd 3412 01000000 0001 0000003c 9cffffff 02 ffffffffffffffff"),
              ElementsAre("big -3.5 dB", "small 0x1234", "native 1", "margin 6.0 dB", "gain -1.00", "mode dtmf",
                          "large 18446744073709551615"));
}

TEST_F(MessagesTest, textsAddressesAndGaps) {
  EXPECT_THAT(read(R"(
message texts 1
  gpon: name text 6; free text 4 loose; card mac; old iple; any 2; zero 1; tail bytes rest
)",
                   Road::gpon, "676f6c640000 61006262 0200aabbcc03 0100000a 0000 00 99"),
              ElementsAre("name \"gold\"", "free \"a\"", "card 02-00-aa-bb-cc-03", "old 10.0.0.1", "tail 99"));
}

TEST_F(MessagesTest, sizesAreReckonedWith) {
  EXPECT_THAT(read(R"(
message sizes 1
  gpon: length u8; name text length-2; zero length*2+1; tail bytes rest-3; last u8; gain i16 /10
)",
                   Road::gpon, "05 616263 00*11 9998 07 0000"),
              ElementsAre("length 5", "name \"abc\"", "tail 9998", "last 7", "gain 0.0"));
}

TEST_F(MessagesTest, groupsKeepTheirNamesToThemselves) {
  const std::string text =
      "record end\n  port u16\nmessage groups 1\n  gpon\n    near of end\n    far\n      port u16\n";
  EXPECT_THAT(read(text, Road::gpon, "0001 0002"), ElementsAre("near", "port 1", "far", "port 2"));
  const Book book = bookOf(text);
  const std::vector<u8> bytes = scenario::parseBytes("0001 0002");
  EXPECT_THAT(describe(book, Road::gpon, 1, bytes, false), ElementsAre("groups: near (port 1), far (port 2)"));
  EXPECT_THROW(bookOf(text + "    any port\n"), BadDescription);
}

TEST_F(MessagesTest, listsWithinListsAndFormsWithinThem) {
  // Bits of tones for ports, bindings with rules that are there or not, and a gap that grows with the list.
  EXPECT_THAT(read(R"(
message blocks 1
  gpon
    ports u32
    port[ports]
      use location any
      tones u16
      tone[tones]: bits u16; any 2
    bindings u16
    binding[bindings]
      up u8 0=none 1=policy
      when up = policy
        rules u16host
        rule[rules]: entry u8
      else: why u8
    zero bindings*2
)",
                   Road::gpon,
                   "00000002 0003 0001 11*16 0002 0005 ffff 0006 ffff 0003 ffff 11*16 0000"
                   "0002 01 0200 0708 00 09 00000000"),
              ElementsAre("ports 2", "port 1 3/1", "slot 3", "port 1", "reserved 11*16", "tones 2", "tone 1", "bits 5",
                          "reserved ffff", "tone 2", "bits 6", "reserved ffff", "port 2 slot 3", "slot 3", "port all",
                          "reserved 11*16", "tones 0", "bindings 2", "binding 1", "up policy", "rules 2", "rule 1",
                          "entry 7", "rule 2", "entry 8", "binding 2", "up none", "why 9"));
}

TEST_F(MessagesTest, faultsAreNamedByFieldAndByte) {
  constexpr std::string_view kText = R"(
message faults 1
  set
    done  u32 = 1
    items u16
    item[items]: mode u8 1=on; level u8 0..9; name text 3; zero 1
)";
  const Book book = bookOf(kText);
  const auto wrong = [&](std::string_view hex) {
    return check(book, Road::set, 1, scenario::parseBytes(hex), Fault::range);
  };
  EXPECT_THAT(wrong("00000001 0002 01 09 610000 00 01 00 000000 00"), ElementsAre());
  EXPECT_THAT(wrong("00000002 0001 07 0a 610062 01 ee"),
              ElementsAre("done, byte 0: 2, not 1", "item[0].mode, byte 6: no word for 7",
                          "item[0].level, byte 7: 10 is out of range",
                          "item[0].name, byte 8: bytes behind the end of the text: 610062",
                          "item[0].gap, byte 11: not zero: 01", "faults, byte 12: 1 bytes behind the last field"));
  EXPECT_THAT(wrong("00000001 ffff 01 00 000000 00"), ElementsAre("item[1].mode, byte 12: 0 bytes are left of 1"));
  EXPECT_THAT(check(book, Road::ngn, 1, {}, Fault::form), ElementsAre("faults is not described as ngn"));
  EXPECT_THAT(check(book, Road::ngn, 2, {}, Fault::form), ElementsAre("no description of this message"));
}

TEST_F(MessagesTest, answersScaledNumbersAndConditionsAreCheckedToo) {
  const Book book = bookOf(R"(
message more 1
  set
    level scaled 0..310
    kind u8
    when kind >= 5
      when kind != 6 7: far u8 = 1
    else
      when kind < 2: near u8 = 2
    item[rest]
      when kind = 9: x u8
)");
  const auto wrong = [&](Road road, u16 id, std::string_view hex) {
    return check(book, road, id, scenario::parseBytes(hex), Fault::range);
  };
  EXPECT_THAT(wrong(Road::set, 1, "0001 0000003c 05 01"), ElementsAre());
  EXPECT_THAT(wrong(Road::set, 1, "0001 0000003c 06"), ElementsAre());
  EXPECT_THAT(wrong(Road::set, 1, "0001 0000003c 01 02"), ElementsAre());
  EXPECT_THAT(wrong(Road::set, 1, "0001 0000003c 02"), ElementsAre());
  EXPECT_THAT(wrong(Road::set, 1, "0101 00000137 02"),
              ElementsAre("level, byte 0: 1 ahead of the decimals, not 0", "level, byte 0: 311 is out of range"));
  EXPECT_THAT(wrong(Road::set, 1, "0001 0000003c 03 00"), ElementsAre("more, byte 7: items without a byte: item"));
  EXPECT_THAT(wrong(Road::setReply, 1, "00000002"), ElementsAre("done, byte 0: 2, not 1"));
  EXPECT_THAT(wrong(Road::setReply, 2, "00000041"), ElementsAre());
  EXPECT_THAT(wrong(Road::setReply, 2, "00000001"), ElementsAre("no description of this message"));
}

TEST_F(MessagesTest, anErrorTellsItsDetailsByItsCode) {
  constexpr std::string_view kText = R"(
codes common WIDTH
  -1 "too many": items WIDTH
frame kind
  set: any rest
  errors: use common u32
message errors 1
  as kind
  errors
    -120 -121: value u16
)";
  EXPECT_THAT(read(kText, Road::setReply, "00000001"), ElementsAre("done 1"));
  EXPECT_THAT(read(kText, Road::setReply, "00000041"), ElementsAre("status 65"));
  EXPECT_THAT(read(kText, Road::setReply, "00000041 0001 000a 0001 ff87 00000000 0003").back(), "value 3");
  EXPECT_THAT(read(kText, Road::setReply, "00000041 0001 000c 0001 ffff 00000000 00000002").back(), "items 2");
  EXPECT_THAT(read(kText, Road::setReply, "00000041 0001 0008 0001 fffe 00000000").back(),
              HasSubstr("error code 65534 (-2) is not described"));
}

TEST_F(MessagesTest, briefLinesShareEqualItemsAndAreCut) {
  const Book book = bookOf(R"(
message brief 1
  gpon
    items u8 = 1
    mode  u8 2=dtmf
    ports u16
    port[ports]
      use location zero
      level u8
      marks u8
      mark[marks]: no u8
)");
  std::string hex = "01 02 000e";
  for (int port = 1; port <= 14; ++port)
    hex += " u16:3 u16:" + std::to_string(port) + " 00*16 u8:" + std::to_string(port < 4 ? 0 : port) +
           (port == 4 ? " 05 0102030405" : " 00");
  const std::vector<u8> bytes = scenario::parseBytes(hex);
  const auto lines = briefLines(decode(*book.find(1), *book.find(1)->find(Road::gpon), bytes));
  EXPECT_THAT(lines, ElementsAre("mode dtmf", "port 3/1 to port 3/3: level 0",
                                 "port 3/4: level 4, mark (no 1), mark (no 2), mark (no 3), ... 2 more",
                                 "port 3/5: level 5", "port 3/6: level 6", "port 3/7: level 7", "port 3/8: level 8",
                                 "port 3/9: level 9", "port 3/10: level 10", "... 4 more"));
}

TEST_F(MessagesTest, badDescriptionsAreToldWithTheirLine) {
  const auto why = [](std::string_view text) -> std::string {
    try {
      bookOf(text);
    } catch (const BadDescription& bad) {
      return bad.what();
    }
    return "";
  };
  EXPECT_EQ(why("message a 1\n  gpon\n    x u17\n"), "test:3: no such type: u17");
  EXPECT_EQ(why("message a 1\n  gpon: x[y]: z u8\n"), "test:2: the line has a second \":\"");
  EXPECT_EQ(why("message a 1\n  gpon\n    x[y]: z u8\n"), "test:3: no number of this name stands ahead: y");
  EXPECT_EQ(why("message a 1\n  gpon\n    x u8\n    else: y u8\n"), "test:4: nothing to be else of");
  EXPECT_EQ(why("message a 1\n  gpon: use r 1\nrecord r A B\n  x u8\n"), "test:2: record r takes 2 words");
  EXPECT_EQ(why("message a 1\n  gpon: use r\nrecord r\n  use r\n"), "test:4: it is part of itself");
  EXPECT_EQ(why("message a 1\n  gpon: x u8\nmessage b 1\n  gpon: x u8\n"), "test:3: the id is described twice");
  EXPECT_EQ(why("frame f\n  as f\nmessage a 1\n  as f\n"), "test:2: it is part of itself");
  EXPECT_EQ(why("codes c\n  use c\nmessage a 1\n  errors: use c\n"), "test:2: it is part of itself");
  EXPECT_EQ(why("message a 1\n  gpon: x u8\nmessage a 2\n  gpon: x u8\n"), "test:3: the name is taken");
  EXPECT_EQ(why("message a 1\n  gpno: x u8\n"), "test:2: no such way: gpno");
  EXPECT_EQ(why("message a 1\n  gpon\n    x u8\n   y u8\n"), "test:4: the indent fits nothing above");
}

}  // namespace
}  // namespace messages
