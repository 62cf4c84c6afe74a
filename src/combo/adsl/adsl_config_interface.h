#pragma once
// The ADSL line and PVC profiles at the module's entries.

#include "common/msan_snmp.h"

struct Vty;

void init_adsl_cfg();
void adsl_reg_snmp_inf();
void init_adsl_cmd();
void adsl_showrun_inf(Vty* vty);

SnmpSetHandler snmp_set_adsl_prf, snmp_del_adsl_prf, snmp_set_pvc_prf, snmp_del_pvc_prf, snmp_set_ad_pvc_prf_attach;
SnmpGetHandler snmp_get_adsl_prf, snmp_get_adsl_port_info, snmp_get_pvc_prf, snmp_get_pvc_prf_attach;
