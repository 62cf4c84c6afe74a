#pragma once
// A semaphore that is held for a scope.

#include "platform/wrappers.h"

class SemaphoreHold {
 public:
  explicit SemaphoreHold(const SemaphoreId* semaphore) : semaphore_(semaphore) {  // null: none
    if (semaphore_ != nullptr) bep_semTakeEx(*semaphore_, -1);
  }
  ~SemaphoreHold() {
    if (semaphore_ != nullptr) bep_semGiveEx(*semaphore_);
  }
  SemaphoreHold(const SemaphoreHold&) = delete;
  SemaphoreHold& operator=(const SemaphoreHold&) = delete;

 private:
  const SemaphoreId* semaphore_;
};
