#pragma once
// Orders to a card about single ports: the start and stop of a line test, and a loopback. They run on a port that is
// out of service alone, and nothing of them is stored.

#include <span>

#include "common/msan_obj.h"

struct CommandElement;

// What is to be done at a port.
struct PortOrder {
  ObjIndex port;
  u16 type = 0;  // of a test: 0 SELT, 1 DELT; of a loopback: 3 to 5
  u8 on = 0;     // 1 start, 0 stop
};

// Check all ports, then send each port's order to its card. 0, or -1 with nothing sent.
int set_port_test(SnmpErrInfo* err, std::span<const PortOrder> orders);
int set_port_loopback(SnmpErrInfo* err, std::span<const PortOrder> orders);

void snmp_msg_register_port_test();
