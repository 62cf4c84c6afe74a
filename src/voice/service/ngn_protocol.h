#pragma once
// The protocol of the voice service: none, SIP or H.248. A change brings the platform's voice module into another mode.

#include "platform/command_line.h"
#include "platform/database.h"
#include "platform/types.h"

struct NgnProtocolType;

void ninit_ngn_protocol_type();
// At the module's load, on the master alone.
int nload_ngn_protocol_type();
// The database tells of a put of the type: the mode is changed by a job, not in the handler.
int ngn_protocol_update(mco_trans_h transaction, NgnProtocolType* row);
// The control card has become a slave: the same job.
void ngn_protocol_flush();
void nshowrun_ngn_protocol_type(Vty* vty);
void registerNgnProtocol();
void installNgnProtocol();
