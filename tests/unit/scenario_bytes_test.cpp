#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "scenario/arguments.h"

namespace {

using scenario::Arguments;
using scenario::BadLine;
using scenario::parseBytes;
using testing::ElementsAre;
using testing::HasSubstr;

template <class Call>
std::string complaint(Call call) {
  try {
    call();
  } catch (const BadLine& bad) {
    return bad.what();
  }
  return "none";
}

std::string bytesComplaint(std::string_view text) {
  return complaint([&] { parseBytes(text); });
}

TEST(ScenarioBytes, WhatDoesNotFitIsRefused) {
  for (const char* text :
       {"0", "00*", "0*4", "000*4", "00*-1", "u8:256", "u16:65536", "u32:4294967296", "u8:-1", "u8:", "i32:-2147483649",
        "mac:1-2-3-4-5-6", "mac:00-00-00-00-00", "ip:1.2.3", "ip:1.2.3.256", "ip:1.2.3.4.5", "0g", "00*999999999999"})
    EXPECT_NE(bytesComplaint(text), "none") << text;
  EXPECT_THAT(bytesComplaint("u61:4"), HasSubstr("\"u16:\""));
}

TEST(ScenarioArguments, AreTakenInOrderAndChecked) {
  Arguments arguments("  set 0x0c0f 801 a  b ");
  EXPECT_EQ(arguments.choice({"get", "set"}), 1u);
  EXPECT_EQ(arguments.id(), 3087);
  EXPECT_EQ(arguments.slot(), 801);
  EXPECT_EQ(arguments.rest(), "a  b ");
  arguments.end();
}

}  // namespace
