#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "scenario/arguments.h"

namespace {

std::string complaint(std::string_view text) {
  try {
    scenario::parseBytes(text);
  } catch (const scenario::BadLine& bad) {
    return bad.what();
  }
  return "none";
}

TEST(ScenarioBytes, WhatDoesNotFitIsRefused) {
  for (const char* text :
       {"0", "00*", "0*4", "000*4", "00*-1", "u8:256", "u16:65536", "u32:4294967296", "u8:-1", "u8:", "i32:-2147483649",
        "mac:1-2-3-4-5-6", "mac:00-00-00-00-00", "ip:1.2.3", "ip:1.2.3.256", "ip:1.2.3.4.5", "0g", "00*999999999999"})
    EXPECT_NE(complaint(text), "none") << text;
  EXPECT_THAT(complaint("u61:4"), testing::HasSubstr("\"u16:\""));
}

}  // namespace
