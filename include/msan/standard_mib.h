#pragma once
// What an agent of standard MIBs calls in the module: lines, ports and profiles by slots, ports and numbers. No frame
// goes in or out, no text is told, and no lock is taken: requests come one at a time.
//
// 0, the number that is asked for, or a negative: -24 for a null argument, -1 where nothing else is told. What fails
// leaves the outs alone, unless they are said to be zeroed.

#include "platform/types.h"

#pragma pack(push, 1)
struct StdAdslLinePrf {
  u16 id;
  char name[20];  // full: without an end
  u16 lineType;
  u8 reserved[8];
  u32 minRateUp, minRateDown;                      // kbit/s
  u32 maxInterleaveDelayUp, maxInterleaveDelayDn;  // ms; of a write the low 16 bits count
  u16 targetMarginUp, targetMarginDown;            // tenths of a dB
  u16 maxMarginUp, maxMarginDown;                  // dB
  u16 minMarginUp, minMarginDown;
};

struct StdPvcPrf {
  u16 id;
  char name[20];
  struct {
    u16 vpi;
    u32 vci;
  } pvcs[8];
};

// Seconds in 15 minutes. What an alarm profile holds beside them has no place here.
struct StdAlarmPrf {
  u16 id;
  char name[20];
  u32 neLoss, neLofs, neEs, neLols;
  u32 feLoss, feLofs, feEs, feLprs;
};
#pragma pack(pop)
inline constexpr u32 kPolicyNames = 169;  // room for eight names of 20 characters, each with its colon, and the end
static_assert(sizeof(StdAdslLinePrf) == 60 && sizeof(StdPvcPrf) == 70 && sizeof(StdAlarmPrf) == 54);

#pragma GCC visibility push(default)  // the module hides everything else
extern "C" {

// --- ADSL line profiles. A write goes to the ports that use the profile; what the view does not hold is reset ---

int std_snmp_adsl_line_prf_add(const StdAdslLinePrf* view);  // id 65535: the lowest free one; one in use is overwritten
int std_snmp_adsl_line_prf_del(u16 id);
int std_snmp_adsl_line_prf_mod(const StdAdslLinePrf* view);
int std_snmp_get_first_adsl_line_prf(StdAdslLinePrf* view);         // the defaults, not what is stored
int std_snmp_get_next_adsl_line_prf(u16 id, StdAdslLinePrf* view);  // passes over gaps
int std_snmp_adsl_line_prf_get(u16 id, StdAdslLinePrf* view);
int std_snmp_attach_adsl_line_prf(u16 slot, u16 port, u16 id);
int std_snmp_get_attach_adsl_line_prfid(u16 slot, u16 port);  // the id; 0 for a port that has none
int std_snmp_get_attach_adsl_line_first_prfid(u16* slot, u16* port, u16* id);
int std_snmp_get_attach_adsl_line_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);

// --- PVC profiles. The same, but: ---

int std_snmp_pvc_prf_add(const StdPvcPrf* view);  // the lowest free id, whatever the view says
int std_snmp_pvc_prf_del(u16 id);
int std_snmp_pvc_line_prf_mod(const StdPvcPrf* view);
int std_snmp_pvc_prf_get(u16 id, StdPvcPrf* view);
int std_snmp_get_first_pvc_prf(StdPvcPrf* view);
int std_snmp_get_next_pvc_prf(u16 id, StdPvcPrf* view);  // the next id alone: a gap is the end
int std_snmp_attach_pvc_line_prf(u16 slot, u16 port, u16 id);
int std_snmp_get_attach_pvc_prfid(u16 slot, u16 port);
int std_snmp_get_attach_pvc_first_prfid(u16* slot, u16* port, u16* id);
int std_snmp_get_attach_pvc_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);

// --- Alarm profiles. A walk of attachments finds the ports that have a row, of configured data cards ---

int std_dsl_alarm_prf_add(const StdAlarmPrf* view);
int std_dsl_alarm_prf_del(u16 id);
int std_dsl_alarm_prf_mod(const StdAlarmPrf* view);
int std_get_first_dsl_alarm_prf(StdAlarmPrf* view);  // what is stored
int std_get_next_dsl_alarm_prf(u16 id, StdAlarmPrf* view);
int std_dsl_alarm_prf_get(u16 id, StdAlarmPrf* view);
int std_attach_dsl_alarm_prf_by_id(u16 slot, u16 port, u16 id);
int std_attach_dsl_alarm_prf_by_name(u16 slot, u16 port, const char* name);  // at most 20 characters
int std_get_attached_dsl_alarm_prf_id(u16 slot, u16 port);                   // the id, or -1
int std_dsl_alarm_prf_available_id();                                        // the lowest free one
int std_snmp_get_attach_alarm_first_prfid(u16* slot, u16* port, u16* id);
int std_snmp_get_attach_alarm_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);
int std_alarm_profile_msan_obj_validation(u16 slot, u16 port);  // a data card is configured and has the port

// --- Ports of data cards ---

// -2 at the end; -102 for a slot without a data card; -3 for a port that the card does not have.
int std_snmp_first_dsl_port_get(u16* slot, u16* port);
int std_snmp_next_dsl_port_get(u16* slot, u16* port);
int std_snmp_get_data_port_type(u16 cardType, u16 port, u32* type);
// kbit/s that the line profile asks for at least. Direction 0 is upstream, 1 downstream, -9 any other.
int std_snmp_data_port_rate_get(u16 slot, u16 port, u16 direction, u32* rate);
// The limit of the rate profile that the port is bound to, by the same directions.
int std_snmp_limit_speed_time_get(u16 slot, u16 port, u16 direction, u32* rate);
int adsl_min_rate_get(u16 slot, u16 port, int which, u32* rate);  // 1 upstream, 2 downstream
int msan_data_obj_validation(u16 slot, u16 port);                 // 0: a data card runs and has the port; else -1

// A byte that is stored as it is and told to no card; 1 is in service.
int std_snmp_data_port_enable_set(u16 slot, u16 port, u8 value);
int std_snmp_data_port_enable_get(u16 slot, u16 port, u8* value);

// Asked of the card, which may take as long as it wants.
int std_snmp_data_port_status_get(u16 slot, u16 port);                     // 0 or 1
int std_snmp_modem_vendor_code_get(u16 slot, u16 port, u8* code);          // 256 bytes, 4 of them filled
int std_snmp_modem_firmware_version_get(u16 slot, u16 port, u8* version);  // 256 bytes, 32 of them filled
int std_snmp_port_online_time_get(u16 slot, u16 port, u8* time);           // 7 bytes, as the card has them
int std_snmp_port_offline_time_get(u16 slot, u16 port, u8* time);
int std_snmp_get_dls_port_reach_standard_rate(u16 slot, u16 port, u8* rates);  // 104 bytes, as the card has them

// --- Ports of POTS cards ---

int std_snmp_pots_port_enable_set(u16 slot, u16 port, u8 value);  // stored, told to no card
int std_snmp_pots_port_enable_get(u16 slot, u16 port, u8* value);
// 0; -3 for a slot, -5 for a port that there is not, -18 without a configured card, -2 for null.
int check_common_voice_port(u16 slot, u16 port, u16* cardType);
int std_snmp_get_voice_port_type(u16 slot, u16 port, u16* type);
int std_snmp_voice_port_status_get(u16 slot, u16 port);  // asked of the voice side
int std_snmp_first_pots_port_get(u16* slot, u16* port);
int std_snmp_next_pots_port_get(u16* slot, u16* port);

// --- Rate-limit profiles ---

// The walk: the default, 0; then each next id.
int std_snmp_get_first_rate_prf();
int std_snmp_get_next_rate_prf(u16 id);
int std_snmp_rate_prf_id_assign();  // an id that is free

// Make a profile that limits nothing, give it another name, take away one that no port has. A new name that the store
// refuses gives 0, too.
int std_snmp_rate_prf_add(u16 id, const char* name);
int std_snmp_rate_prf_name_mod(u16 id, const char* name);
int std_snmp_rate_prf_delete_by_id(u16 id);

// The rate of a direction, 0 up, 1 down; 0 where it is not limited. A rate that is set limits the direction; one that
// is refused, as 0 is, gives 0, too.
int std_snmp_rate_prf_rate_get(u16 id, int direction);
int std_snmp_rate_prf_rate_set(u16 id, int direction, u32 rate);

// The name, until the next call; null for none.
const char* std_snmp_get_rate_prf_name_by_id(u16 id);

// The profile of a port, 0 for none. Bind it; by name, 0 says no more than that there is a profile of the name.
int std_snmp_rate_prf_attach_info_get(u16 slot, u16 port);
int std_snmp_rate_prf_attach_by_id(u16 slot, u16 port, u16 id);
int std_snmp_rate_prf_attach_by_name(u16 slot, u16 port, const char* name);

// The first port that is bound; the port behind another one, bound or not.
int std_snmp_get_attach_bw_first_prfid(u16* slot, u16* port, u16* id);
int std_snmp_get_attach_bw_next_prfid(u16 slot, u16 port, u16* nextSlot, u16* nextPort, u16* id);

// --- Flow policies and rules ---

// The names of what a port as a whole, or a PVC of it, has for a direction, each with ":" behind it. Both texts have
// room for kPolicyNames; the lengths are told without the end. A port is one of a line that carries packets, a PVC of
// one that carries cells.
int std_snmp_get_port_upstream_policy_attach(u16 slot, u16 port, char* policyNames, u32* policyLength, char* ruleNames,
                                             u32* ruleLength);
int std_snmp_get_port_downstream_policy_attach(u16 slot, u16 port, char* policyNames, u32* policyLength,
                                               char* ruleNames, u32* ruleLength);
int std_snmp_get_pvc_upstream_policy_attach(u16 slot, u16 port, u16 pvc, char* policyNames, u32* policyLength,
                                            char* ruleNames, u32* ruleLength);
int std_snmp_get_pvc_downstream_policy_attach(u16 slot, u16 port, u16 pvc, char* policyNames, u32* policyLength,
                                              char* ruleNames, u32* ruleLength);

// The walk over the ports of VDSL cards. -2 at the end; -102 for a slot without such a card; -3 for a port that the
// card does not have. The other two give -1 for each.
int std_snmp_first_policy_port_get(u16* slot, u16* port);
int std_snmp_next_policy_port_get(u16* slot, u16* port);
int std_snmp_policy_first_port_get(u16* slot, u16* port);
int std_snmp_policy_next_port_get(u16 slot, u16 port, u16* nextSlot, u16* nextPort);

// The walk over the PVCs of data ports: 0, 0, 65535 is its start, a port with 65535 the port's. A line that carries
// packets is passed over. -1 at the end.
int std_snmp_policy_first_next_pvc_get(u16 slot, u16 port, u16 pvc, u16* nextSlot, u16* nextPort, u16* nextPvc);
int std_snmp_policy_first_pvc_get(u16* slot, u16* port, u16* pvc);
int std_snmp_policy_next_pvc_get(u16 slot, u16 port, u16 pvc, u16* nextSlot, u16* nextPort, u16* nextPvc);

// --- Addresses that lines have learned ---

// The walk over data ports whose cards are there.
int stdmib_get_first_obj(u16* slot, u16* port);
int stdmib_get_next_obj(u16 slot, u16 port, u16* nextSlot, u16* nextPort);

// What the card tells of a port: 6 bytes of address and the VLAN in 2 bytes, for each. `length` goes in as the room and
// comes back as what was filled.
int stdmib_get_port_fdb(u16 slot, u16 port, u8* addresses, u32* length);

}  // extern "C"
#pragma GCC visibility pop
