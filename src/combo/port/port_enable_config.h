#pragma once
// Whether a data port is in service. A byte of each port of a data card, 1 or 0, that the card is told when it changes
// and when the card comes back. Line tests run on a port that is out of service alone.

#include "common/msan_obj.h"
#include "common/semaphore_hold.h"
#include "common/wire.h"
#include "platform/lists.h"

inline constexpr u16 kPortEnableMessage = 2840;
extern SemaphoreId port_en_config_mux;  // held from the check of a change to its message, and while a manager reads

// The lists hold AdslPortPrfNode in the order of slot and port, with the byte in the place of the profile's id. A null
// list with the count 65535 is nothing to do.

// Checks all ports, stores the bytes, tells the cards. What was stored ahead of a failure stays, and nothing is sent.
// 0 or -1.
int set_data_port_enable(SnmpErrInfo* err, LIST* list, u32 count);
// A u32 count and an item for each port: its location and the byte. 0, or -1 when one can't be read.
int get_data_port_enable(SnmpErrInfo* err, WireOut body, u32* length, LIST* list, u32 count);
// Tells the cards what the list holds, with a message for each slot.
void set_data_port_enable_adapt(LIST* list, u32 count);
// The port's byte, -1 if it can't be read.
int is_data_port_enable(ObjIndex port);

void msan_init_data_port_enable_config();
void msan_reg_data_port_enable_snmp();
void msan_init_data_port_enable_cmd();
void msan_data_port_enable_showrun(Vty* vty);
void hotplug_data_port_enable(u16 slot);            // tells the card of all its DSL ports
void data_port_enable_after_cardauth_db(u16 slot);  // all ports begin out of service

// Attribute 280. On a card that is not the master nothing is written. 0; -24 for null, -9 for more than the byte, -900
// for a failure of the database, or no row.
int set_data_port_enable_dbapi(u32 objectId, const void* data, u32 offset, u32 length);
int get_data_port_enable_dbapi(u32 objectId, void* data, u32 offset, u32 length);
int del_data_port_enable_dbapi(u32 objectId);
