// VLAN profiles where a scenario would be long: the whole table, a table that could not be had, profile 0.

#include "data/vlan/vlan_profile.h"

#include "module_fixture.h"

namespace {

class VlanProfiles : public ModuleTest {
 protected:
  VlanProfiles() { gCurrentVlanPrfId = 0; }
  ~VlanProfiles() override { host::setFastMode(false); }
};

TEST_F(VlanProfiles, AreAThousandAndTwentyFourAndTheLowestFreeIdIsTaken) {
  for (int id = 1; id <= 1024; ++id) {
    const std::string name = "p" + std::to_string(id);
    ASSERT_EQ(typed(CONFIG_NODE, "create vlan profile " + name),
              "Create vlan profile " + name + "(id:" + std::to_string(id) + ") success.\r\n = 0");
  }
  EXPECT_EQ(typed(CONFIG_NODE, "create vlan profile more"), "Can't find empty space.\r\n = -1");
  EXPECT_EQ(typed(CONFIG_NODE, "set tls disable"), "Vlan Profile p1024(id:1024) set tls success.\r\n = 0");
  EXPECT_EQ(vlan_profile_is_valid(1024), 1);
  typed(CONFIG_NODE, "destroy vlan profile p1024");
  typed(CONFIG_NODE, "destroy vlan profile p700");
  EXPECT_EQ(typed(CONFIG_NODE, "create vlan profile more"), "Create vlan profile more(id:700) success.\r\n = 0");
  EXPECT_EQ(typed(CONFIG_NODE, "create vlan profile again"), "Create vlan profile again(id:1024) success.\r\n = 0");
}

TEST_F(VlanProfiles, AreNoneWithoutMemoryForThem) {
  VlanProfile* const table = std::exchange(gPortVlanPrf, nullptr);
  Recorder recorder;
  host::failNth(host::Fault::alloc, 1);
  init_port_vlan_cfg_module();
  EXPECT_EQ(recorder.lines.size(), 1U);
  EXPECT_EQ(typed(CONFIG_NODE, "create vlan profile one"), "Can't find empty space.\r\n = -1");
  EXPECT_EQ(typed(CONFIG_NODE, "destroy vlan profile one"), "vlan profile one is not exist.\r\n = -1");
  EXPECT_EQ(typed(CONFIG_NODE, "show vlan profile one"), "Profile one is not exist.\r\n = -1");
  host::setFastMode(true);
  EXPECT_EQ(typed(CONFIG_NODE, "set tls disable"), "Please enter a valid vlan profile first.\r\n = -1");
  init_port_vlan_profile(0);  // asked for by the running configuration
  gPortVlanPrf = table;
}

TEST_F(VlanProfiles, ZeroIsThereDuringRecoveryAlone) {
  const std::string_view tag = "add unicast tag cvlan tpid 33024 vid 1 cos 0 rule null";
  EXPECT_EQ(typed(CONFIG_NODE, tag), "Please enter a valid vlan profile first.\r\n = -1");
  host::setFastMode(true);
  EXPECT_EQ(typed(CONFIG_NODE, tag), "Vlan profile defVlanPrf(id:0) add service(id:1) success.\r\n = 0");
  // It takes back what a manager may have stored.
  EXPECT_EQ(typed(CONFIG_NODE, tag), "Vlan profile defVlanPrf(id:0) add service(id:2) success.\r\n = 0");
  u16 id = 9;
  EXPECT_EQ(find_vlan_prf_id_by_name("defVlanPrf", &id), 0);
  EXPECT_EQ(id, 0);
  host::setFastMode(false);
  EXPECT_EQ(find_vlan_prf_id_by_name("defVlanPrf", &id), -1);
  EXPECT_EQ(vlan_profile_is_valid(0), 0);
  EXPECT_EQ(vlan_profile_is_valid(1025), 0);
  // Emptied whether or not it can be edited.
  init_port_vlan_profile(0);
  EXPECT_EQ(gPortVlanPrf[0].item.serviceNum, 0);
  EXPECT_EQ(gPortVlanPrf[0].item.tlsTpid, 33024);
}

}  // namespace
