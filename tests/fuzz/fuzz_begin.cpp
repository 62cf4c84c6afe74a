#include "fuzz_node.h"

// Ahead of all inputs, so that the fuzzer counts what they reach in the module, too.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzz::theNode();
  return 0;
}
