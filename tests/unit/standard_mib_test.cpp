// Edges of what an agent of standard MIBs asks, which a scenario would take two lines each for.

#include "msan/standard_mib.h"

#include <cstring>

#include "host/chassis.h"
#include "module_fixture.h"

namespace {

// Slot 3 ADSL and 5 VDSL with 16 ports, 6 POTS with 32, 7 Ethernet with 8, all running.
class StandardMib : public ModuleTest {
 protected:
  StandardMib() {
    for (const auto& [slot, type] :
         {std::pair<u16, const char*>{3, "adsl16"}, {5, "vdsl16"}, {6, "pots32"}, {7, "eth8"}}) {
      host::authorise(slot, *host::findCardType(type));
      host::setCardState(slot, host::CardState::up);
    }
  }
  ~StandardMib() override { host::clearChassis(); }

  static std::string text(std::initializer_list<int> results) {
    std::string text;
    for (const int result : results) text += std::to_string(result) + " ";
    return text;
  }
  // Where a walk goes on: what it gives, slot, port and a third value.
  template <class Walk, class... From>
  static std::string next(Walk walk, From... from) {
    u16 slot = 0, port = 0, third = 0;
    const int result = walk(static_cast<u16>(from)..., &slot, &port, &third);
    return result != 0 ? std::to_string(result)
                       : std::to_string(slot) + "/" + std::to_string(port) + " " + std::to_string(third);
  }
};

TEST_F(StandardMib, AlarmProfiles) {
  StdAlarmPrf view{}, other{};
  view.id = 20;
  std::memcpy(view.name, "abcdefghijklmnopqrst", 20);
  EXPECT_EQ(text({std_dsl_alarm_prf_mod(&view), std_dsl_alarm_prf_add(&view), std_dsl_alarm_prf_mod(&view),
                  std_get_next_dsl_alarm_prf(19, &other), std_get_next_dsl_alarm_prf(20, &other)}),
            "-1 0 0 0 -1 ");
  EXPECT_EQ(text({std_alarm_profile_msan_obj_validation(3, 0), std_alarm_profile_msan_obj_validation(3, 1),
                  std_alarm_profile_msan_obj_validation(3, 16), std_alarm_profile_msan_obj_validation(3, 17)}),
            "-1 0 0 -1 ");
  EXPECT_EQ(text({std_attach_dsl_alarm_prf_by_name(3, 16, "abcdefghijklmnopqrst"),
                  std_attach_dsl_alarm_prf_by_name(3, 16, "abcdefghijklmnopqrstu"),
                  std_attach_dsl_alarm_prf_by_name(3, 16, "z"), std_get_attached_dsl_alarm_prf_id(3, 16)}),
            "0 -1 -1 20 ");
  EXPECT_EQ(next(std_snmp_get_attach_alarm_next_prfid, 3, 15), "3/16 20");
  EXPECT_EQ(next(std_snmp_get_attach_alarm_next_prfid, 3, 16), "-1");
  for (int id = 1; id < 20; ++id) {
    EXPECT_EQ(std_dsl_alarm_prf_available_id(), id);
    other.id = 65535;
    other.name[0] = static_cast<char>('a' + id);
    EXPECT_EQ(std_dsl_alarm_prf_add(&other), 0);
  }
  EXPECT_EQ(std_dsl_alarm_prf_available_id(), -1);
}

TEST_F(StandardMib, PortsOfLines) {
  StdPvcPrf view{};
  view.id = 65535;
  view.name[0] = 'p';
  view.pvcs[0] = {1, 40};
  EXPECT_EQ(std_snmp_pvc_prf_add(&view), 0);
  view.id = 1;
  EXPECT_EQ(text({std_snmp_pvc_line_prf_mod(&view), std_snmp_get_next_pvc_prf(128, &view),
                  std_snmp_attach_pvc_line_prf(3, 17, 0), std_snmp_attach_pvc_line_prf(21, 1, 0)}),
            "0 -1 -1 -1 ");
  EXPECT_EQ(next(std_snmp_get_attach_pvc_first_prfid), "3/1 0");
  EXPECT_EQ(next(std_snmp_get_attach_adsl_line_next_prfid, 0, 9), "3/1 0") << "slot 0: from the start";
  EXPECT_EQ(next(std_snmp_get_attach_adsl_line_next_prfid, 8, 1), "-1");
  EXPECT_EQ(next(std_snmp_policy_next_pvc_get, 3, 1, 6), "3/1 7");
  EXPECT_EQ(next(std_snmp_policy_next_pvc_get, 3, 1, 7), "3/2 0");
  EXPECT_EQ(text({std_snmp_data_port_enable_set(8, 1, 1), std_snmp_data_port_status_get(3, 17)}), "-1 -1 ");
  u16 slot = 6, port = 31;
  EXPECT_EQ(std_snmp_next_pots_port_get(&slot, &port), 0);
  EXPECT_EQ(slot * 100 + port, 632);
}

TEST_F(StandardMib, RateProfiles) {
  EXPECT_EQ(next(std_snmp_get_attach_bw_first_prfid), "-1");
  EXPECT_EQ(text({std_snmp_rate_prf_add(1, "one"), std_snmp_rate_prf_rate_set(1, 1, 64),
                  std_snmp_rate_prf_rate_set(1, 1, 0), std_snmp_rate_prf_rate_get(1, 1)}),
            "0 0 0 64 ")
      << "a rate of 0 is refused";
  EXPECT_EQ(text({std_snmp_rate_prf_name_mod(0, "x"), std_snmp_rate_prf_delete_by_id(0),
                  std_snmp_rate_prf_delete_by_id(2), std_snmp_rate_prf_attach_by_name(3, 1, "x")}),
            "-1 -1 -1 -1 ");
}

}  // namespace
