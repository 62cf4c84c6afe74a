#pragma once
// What a platform calls in the module. Everything else stays inside.

#include "platform/types.h"

struct CommandElement;
struct Vty;
struct DbConnectionData;

#pragma GCC visibility push(default)  // the module hides everything else
extern "C" {

// Loads the module: registers it, creates its pool, writes the defaults, registers messages and commands. Called once.
// Returns 0, or the negative code of the step that failed.
int msan_Module_Init();

int msan_Init_Config();           // defaults into the database; 0
int msan_Init_Snmp();             // hooks and message handlers; 0
int msan_Init_Cmd();              // installs the commands; 0 or the last installer's result
int msan_Init_Showrun(Vty* vty);  // prints the running configuration; 0

int msan_slot_hotplug(u16 slot);  // a card has come up; the last step's result

// A slot has been given a card type, or has lost it. The first two do nothing; the others are the database side. 0.
int msan_card_auth_init(u16 slot);
int msan_card_unauth_init(u16 slot);
int msan_card_auth_init_db(u16 slot);
int msan_card_unauth_init_db(u16 slot);

int msan_init_after_cfgexecute();  // the startup configuration has been executed; 0

// Database attach and detach: 0 or the database's code, -1 for a null connection.
int msan_register_events(DbConnectionData* database);
int msan_unregister_events(DbConnectionData* database);

int msan_slave_flush();  // the control card has become a slave; 0

// A look inside for tests and support: what is stored of an attribute for a slot (port 0) or a port, into `length`
// bytes. 0 or the attribute store's code.
int msan_get_attribute(u16 slot, u16 port, u32 attribute, void* data, u32 length);

// "set adsl interface ...", the start and stop of a line test. The module leaves it to the platform to install it.
extern const CommandElement msan_port_test_command;

}  // extern "C"
#pragma GCC visibility pop
