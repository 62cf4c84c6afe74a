#include "voice/common/voice_public.h"

#include <array>

#include "module_fixture.h"

namespace {

class ValidatorTest : public ModuleTest {};

TEST_F(ValidatorTest, Characters) {
  EXPECT_EQ(nIsValidString("0b*#", 4, gCriteriaPOTSIPT), 1);
  EXPECT_EQ(nIsValidString("0e", 2, gCriteriaPOTSIPT), 0);
  EXPECT_EQ(nIsValidString("(x.T)", 5, gCriteriaDigitMap), 0);
  EXPECT_EQ(nIsValidString("", 0, gCriteriaMD5), -1);
  EXPECT_EQ(nIsValidString(nullptr, 1, gCriteriaMD5), -1);
  // Every letter of the longest table once, which fills the memory of the distinct ones.
  EXPECT_EQ(nIsValidString(gCriteriaConfURI.data(), 66, gCriteriaConfURI), 1);
  EXPECT_EQ(nIsNoSpaceString("a b", 3), 0);
  EXPECT_EQ(nIsNoSpaceString("a b", 1), 1);
  EXPECT_EQ(nIsNoSpaceString("", 0), -1);
}

TEST_F(ValidatorTest, AddressesAsText) {
  u32 address = 0;
  EXPECT_EQ(nStringIP2ULongIP("10.1.2.3", &address), 0);
  EXPECT_EQ(address, 0x0A010203U);
  EXPECT_EQ(nStringIP2ULongIP("255.255.255.255", &address), -1);
  EXPECT_EQ(nStringIP2ULongIP("10.1.2", &address), 0) << "as the C library reads it";
  EXPECT_EQ(nStringIP2ULongIP("ten", &address), -1);
  char text[16];
  EXPECT_EQ(nULongIP2StringIP(0xFFFFFFFE, text), 0);
  EXPECT_STREQ(text, "255.255.255.254");
}

TEST_F(ValidatorTest, GeneralAddressesOnTheWire) {
  // Type 1, 4 bytes of address, mask 24.
  const u8 v4[] = {0, 0, 0, 1, 0, 0, 0, 4, 10, 1, 2, 3, 0, 0, 0, 24};
  LocalIP local;
  u32 length = 0;
  ASSERT_EQ(nParseGeneralIP2LocalIP(v4, &local, &length), 0);
  EXPECT_EQ(length, 16U);
  std::array<u8, 28> wire{};
  ASSERT_EQ(nEncodeLocalIP(&local, wire, &length), 0);
  EXPECT_EQ(host::hexText(WireIn(wire).first(length)),
            "000000010a010203"
            "00000000000000000000000000000018");
  std::array<u8, 28> again{};
  ASSERT_EQ(nParseLocalIP2GeneralIP(WireIn(wire).first(24), again, &length), 0);
  EXPECT_EQ(host::hexText(WireIn(again).first(length)), "00000001000000040a01020300000018");
  local.ipType = 3;
  ASSERT_EQ(nEncodeLocalIP2GeneralIP(&local, again, &length), 0);
  EXPECT_EQ(length, 28U) << "every other type has 16 bytes";
  EXPECT_EQ(nEncodeLocalIP2GeneralIP(&local, WireOut(again).first(27), &length), -1);
  EXPECT_EQ(nEncodeLocalIP(&local, WireOut(again).first(23), &length), -1);

  const u8 lying[] = {0, 0, 0, 1, 0, 0, 0, 17, 10, 1, 2, 3, 0, 0, 0, 24, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(nParseGeneralIP2LocalIP(lying, &local, &length), -1) << "more than an address has";
  EXPECT_EQ(nParseGeneralIP2LocalIP(WireIn(v4).first(15), &local, &length), -1);
}

TEST_F(ValidatorTest, MasksAndGateways) {
  EXPECT_EQ(nIsValidIPType(0) + nIsValidIPType(5), 0);
  EXPECT_EQ(nIsValidIPType(1) + nIsValidIPType(4), 2);
  EXPECT_EQ(nIsValidIPMask(1, 32) + nIsValidIPMask(2, 128) + nIsValidIPMask(3, 999), 3);
  EXPECT_EQ(nIsValidIPMask(1, 33) + nIsValidIPMask(2, 129), 0);
  EXPECT_EQ(nIsIPGatewayMatched(0x0A010203, 0x0A0102FE, 24), 1);
  EXPECT_EQ(nIsIPGatewayMatched(0x0A010203, 0x0A0103FE, 24), 0);
  EXPECT_EQ(nIsIPGatewayMatched(0x0A010203, 0xFFFFFFFF, 0), 1);
  EXPECT_EQ(nIsIPGatewayMatched(1, 2, 40), 0) << "longer than an address";
}

TEST_F(ValidatorTest, Float10HoldsTheValueInHostOrder) {
  u8 out[10];
  ASSERT_EQ(nULongLong2Float10(0x0102030405060708, out), 0);
  EXPECT_EQ(host::hexText(out), "03000807060504030201");
}

}  // namespace
