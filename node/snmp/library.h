#pragma once
// Net-SNMP. The library is called by one thread at a time: the one that makes the agent, until its thread begins and
// behind its end, and the agent's own.

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
#include <net-snmp/agent/net-snmp-agent-includes.h>
// clang-format on
