#pragma once
// Two lists of up to ten telephone numbers for the whole node, one for POTS, one for IPT. They are twins: what they
// share goes by the name of the record.

#include "voice/common/voice_item.h"

inline constexpr u16 kNumbers = 10;  // of a list

struct PHNNumber {
  char phnNumber[20] = {};  // of gCriteriaPOTSIPT; without a terminator when it is full
  u16 phnType = 0;          // 0 to 7: A to H
};

// 1 and the number (20 bytes) for the first pair of equal ones, 0 for none.
int nIsPHNNumberDuplicate(const LIST* list, char* number);

CommandOfferList offerNumbers;  // for install_offers, of both lists

extern const VoiceItem potsNumber;
extern const VoiceItem iptNumber;
