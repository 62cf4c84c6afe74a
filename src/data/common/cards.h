#pragma once
// What card a slot is authorised for.

#include "platform/types.h"

bool isMsanCard(u16 slot);  // of any family
bool isDataCard(u16 slot);
bool isAdslCard(u16 slot);
bool isVdslCard(u16 slot);

// The ports of a data card; 0 for any other.
u16 dataPorts(u16 slot);
