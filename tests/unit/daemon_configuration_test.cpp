// The configuration file of msand: what is read, and how a bad one is told.

#include <gtest/gtest.h>

#include "configuration.h"

using msand::Configuration, msand::ConfigurationError, msand::parseConfiguration;

static std::string complaint(std::string_view text) {
  try {
    parseConfiguration(text, "/etc/msan/msand.toml");
  } catch (const ConfigurationError& error) {
    return error.what();
  }
  return "none";
}

TEST(Configuration, IsRead) {
  const Configuration read = parseConfiguration(
      "socket = 'run/node.socket'\n"
      "startup = '/var/lib/msan/a.cfg'\n"
      "module = '../../lib/libmsan.so'\n"
      "log = 'node.log'\n"
      "[slots]\n"
      "12 = { card = 'pots64', state = 'present' }\n"
      "1 = { card = 542 }\n"
      "[slots.3]\n"
      "card = 'vdsl32'\n"
      "state = 'down'\n",
      "/etc/msan/msand.toml");
  EXPECT_EQ(read.socket.value, "/etc/msan/run/node.socket") << "paths are seen from the file's folder";
  EXPECT_EQ(read.startup, "/var/lib/msan/a.cfg");
  EXPECT_EQ(read.module.value, "/etc/msan/../../lib/libmsan.so");
  EXPECT_EQ(read.logTo, host::LogTo::file);
  EXPECT_EQ(read.logFile.value, "/etc/msan/node.log");
  ASSERT_EQ(read.slots.size(), 3u);
  const auto is = [&](std::size_t index, u16 slot, std::string_view card, host::CardState state) {
    return read.slots[index].slot == slot && read.slots[index].card->name == card && read.slots[index].state == state;
  };
  EXPECT_TRUE(is(0, 1, "adsl32", host::CardState::up)) << "by number, up unless told";
  EXPECT_TRUE(is(1, 3, "vdsl32", host::CardState::absent));
  EXPECT_TRUE(is(2, 12, "pots64", host::CardState::present));
}

TEST(Configuration, ManagersAreRead) {
  const msand::SnmpSettings read = parseConfiguration(
                                       "[snmp]\n"
                                       "listen = ['127.0.0.1:16100', 'tcp:[::1]:161']\n"
                                       "communities = [{ name = 'a b', source = '10.0.0.0/8' },\n"
                                       "  { name = 'c', access = 'read-write' }]\n"
                                       "users = [{ name = 'd', auth-secret = '12345678', priv-secret = '87654321' }]\n",
                                       "msand.toml")
                                       .snmp;
  EXPECT_EQ(read.listen, (std::vector<std::string>{"udp:127.0.0.1:16100", "tcp:127.0.0.1:16100", "tcp6:[::1]:161"}));
  ASSERT_EQ(read.communities.size(), 2u);
  EXPECT_EQ(read.communities[0].source, "10.0.0.0/8");
  EXPECT_FALSE(read.communities[0].writes) << "unless told";
  EXPECT_TRUE(read.communities[1].writes);
  ASSERT_EQ(read.users.size(), 1u);
  EXPECT_EQ(read.users[0].authentication, "SHA-256");
  EXPECT_FALSE(read.users[0].writes);
  EXPECT_TRUE(parseConfiguration("[snmp]\nlisten = []", "msand.toml").snmp.listen.empty());
  EXPECT_EQ(parseConfiguration("", "msand.toml").snmp.listen.size(), 2u) << "UDP and TCP, unless told";
}

TEST(Configuration, AnEmptyFileIsAnEmptyChassis) {
  const Configuration read = parseConfiguration("", "/etc/msan/msand.toml");
  EXPECT_EQ(read.socket.value, "/run/msan/msand.socket");
  EXPECT_EQ(read.startup, "/var/lib/msan/startup.cfg");
  EXPECT_TRUE(read.slots.empty());
}

TEST(Configuration, ErrorsNameTheirLine) {
  // clang-format off
  const struct { const char* text; const char* complaint; } cases[] = {
      {"\nsockets = 'a'\n",                      ":2: unknown key \"sockets\": there are socket, group, startup, module, log, metrics, lines, flow, captures, capture-size, snmp and slots"},
      {"socket = 3",                              ":1: socket must be a text in quotes"},
      {"flow = ['a', 1]",                         ":1: flow must be a text in quotes"},
      {"startup = ''",                            ":1: startup must not be empty"},
      {"slots = 5",                               ":1: slots must be a table"},
      {"[slots]\n9 = { card = 'adsl32' }",        ":2: \"9\" is no slot for a service card: these are 1 to 8 and 11 to 18"},
      {"[slots]\n65537 = { card = 'adsl32' }",    ":2: \"65537\" is no slot for a service card: these are 1 to 8 and 11 to 18"},
      {"[slots]\n1x = { card = 'adsl32' }",       ":2: \"1x\" is no slot for a service card: these are 1 to 8 and 11 to 18"},
      {"[slots]\n1 = 'adsl32'",                   ":2: a slot must be a table such as { card = \"adsl32\", state = \"up\" }"},
      {"[slots]\n\n1 = { card = 'adsl31' }",      ":3: there is no card type \"adsl31\""},
      {"[slots]\n1 = { card = 1.5 }",             ":2: card must be a text in quotes"},
      {"[slots]\n1 = { state = 'up' }",           ":2: slot 1 names no card"},
      {"[slots]\n1 = { card = 'eth8', state = 'off' }", ":2: state must be \"up\", \"present\" or \"down\", not \"off\""},
      {"[slots]\n1 = { card = 'eth8', ports = 8 }", ":2: unknown key \"ports\" of a slot: there are card and state"},
      {"snmp = 5",                                ":1: snmp must be a table"},
      {"[snmp]\nport = 161",                      ":2: unknown key \"port\" of snmp: there are listen, name, location, contact, communities and users"},
      {"[snmp]\nlisten = '127.0.0.1:161'",        ":2: listen must be a list"},
      {"[snmp]\nlisten = ['localhost:161']",      ":2: \"localhost:161\" is no address such as 127.0.0.1:16100, udp:127.0.0.1:16100 or tcp:[::1]:16100"},
      {"[snmp]\nlisten = ['udp:127.0.0.1:0']",    ":2: \"udp:127.0.0.1:0\" is no address such as 127.0.0.1:16100, udp:127.0.0.1:16100 or tcp:[::1]:16100"},
      {"[snmp]\ncommunities = [{ access = 'read-write' }]", ":2: a community has no name"},
      {"[snmp]\ncommunities = [{ name = \"a\\nrwcommunity b\" }]", ":2: name holds a letter that is not ASCII, a quote or a backslash"},
      {"[snmp]\ncommunities = [{ name = 'a', access = 'all' }]", ":2: access must be \"read-only\" or \"read-write\""},
      {"[snmp]\ncommunities = [{ name = 'a', source = 'b c' }]", ":2: source must be an address or a network such as 10.0.0.0/8"},
      {"[snmp]\ncommunities = [{ name = 'a', source = '10.0.0.0/99' }]", ":2: source must be an address or a network such as 10.0.0.0/8"},
      {"[snmp]\ncommunities = [{ name = 'a', source = '10.0.0.1/31' }]", ":2: source must be an address or a network such as 10.0.0.0/8"},
      {"[snmp]\ncommunities = [{ name = 'a', source = '::8/125' }, { name = 'b', source = '::8/124' }]", ":2: source must be an address or a network such as 10.0.0.0/8"},
      {"[snmp]\ncommunities = [{ name = 'a' },\n{ name = 'b' },\n{ name = 'a', source = '10.0.0.0/255.0.0.0' }]", ":4: the name is there twice"},
      {"[snmp]\nusers = [{ name = 'a', auth-secret = '12345678', priv-secret = '12345678' },\n{ name = 'a', auth-secret = '12345678', priv-secret = '12345678' }]", ":3: the name is there twice"},
      {"[snmp]\nlisten = ['udp:127.0.0.1:161',\n'127.0.0.1:0161']", ":3: \"127.0.0.1:0161\" can't be listened at beside udp:127.0.0.1:161"},
      {"[snmp]\nlisten = ['tcp:127.0.0.1:161', 'udp:0.0.0.0:161', '[::]:161', '[::1]:162', '[0:0::1]:162']", ":2: \"[0:0::1]:162\" can't be listened at beside udp6:[::1]:162"},
      {"[snmp]\nlisten = ['tcp:127.0.0.1:161', '0.0.0.0:161']", ":2: \"0.0.0.0:161\" can't be listened at beside tcp:127.0.0.1:161"},
      {"[snmp]\nusers = [{ name = '012345678901234567890123456789012' }]", ":2: name must have at most 32 letters"},
      {"[snmp]\nusers = [{ name = 'a', auth-secret = '1234567' }]", ":2: auth-secret must have at least 8 letters"},
      {"[snmp]\nusers = [{ name = 'a', auth-secret = '12345678' }]", ":2: a user needs name, auth-secret and priv-secret"},
      {"[snmp]\nusers = [{ name = 'a', auth = 'MD5' }]", ":2: auth must be \"SHA\", \"SHA-256\" or \"SHA-512\""},
      {"[slots]\n1 = { card = 'eth8' }\n01 = { card = 'eth8' }", ":2: the slot is there twice"},
  };
  // clang-format on
  for (const auto& [text, expected] : cases) EXPECT_EQ(complaint(text), "/etc/msan/msand.toml" + std::string(expected));
}

TEST(Configuration, WhatIsNoTomlIsToldWithItsLine) {
  for (const char* text : {"socket = 'a'\nsocket = 'b'", "a = 1\n[slots\n", "a = 1\n\x01\xff = 2", "a = 1\nb ="})
    EXPECT_EQ(complaint(text).substr(0, 23), "/etc/msan/msand.toml:2:") << complaint(text);
}
