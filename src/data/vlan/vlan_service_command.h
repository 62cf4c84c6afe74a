#pragma once
// "add vlan service": one command that adds a service to ports, without a profile.

#include <string_view>

#include "data/vlan/vlan_profile.h"
#include "platform/types.h"

// What a word says of the three tags of a service: CVLAN[:TRANSLATION][/QINQ].
struct TagValues {
  struct Value {
    u16 base = 0;
    u16 step = 0;  // a vid grows by this from port to port; counted in 16 bits
  };
  Value cvlan, trans, qinq;
  bool hasQinq = false;  // something stands behind "/"
};

enum TagKind { kTpidOfTags = 3, kVidOfTags = 4, kCosOfTags = 5 };

// Reads a word, null where there is none. 0, or -1 for a text that is no such value. Ranges are the ports' to check.
int cli_parse_tag(const char* text, int kind, TagValues* out);

int cli_parse_vlan_service_type(const char* text, u8* type);  // 0 or -1
int cli_parse_vlan_mode(const char* text, u16* mode);         // 0 or -1
// The rule of a name, into the service: `which` 6 its own, 7 the outer tag's. No text: rule 0. 0 or -1.
int cli_parse_vlan_rule(const char* text, int which, VlanService* service);

void installAddVlanService();
