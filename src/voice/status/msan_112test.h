#pragma once
// The 112 test of POTS lines: an order that starts it at a list of ports, and its two results, which are read from the
// card. The central card keeps nothing of it.

#include "common/msan_snmp.h"
#include "platform/lists.h"

struct Test112 {
  u8 mode = 0;  // 1 inline, 0 outline
  u8 type = 0;  // 1 force, 0 unforce
};

int vcheck_test112(const Test112* record, SnmpErrInfo* err);
// An order to the card for each port, in the list's order. -1 at the first that fails: those ahead of it are under
// test.
int vbuild_test112_mscpacket(LIST* list);

void test112_regsnmp_cmdhandle();
void install_msan_112test_defun();
