#pragma once
// What exists and may stand for a parameter.

#include <string>
#include <string_view>
#include <vector>

#include "command_line_parameters.h"
#include "platform/command_line.h"

// What a module's list has for the command line.
struct CommandOffers {
  struct Thing {
    i32 id = 0;
    std::string name;
  };
  std::vector<Thing> things;
};

namespace command_line {

// Where the things behind a keyword come from.
struct OfferSource {
  std::string keyword;
  CommandOfferList* list = nullptr;
  const void* context = nullptr;
};

// The parameter for which something is offered.
struct Asked {
  Names names = Names::nothing;
  std::string_view typed;                 // the beginning of its word
  std::string_view choice;                // the word of the choice ahead of it
  std::string_view slot;                  // that was typed ahead
  const OfferSource* profiles = nullptr;  // of the kind that the command is about
};

struct Offer {
  std::string word;
  std::string help;
};

// All that begins with what was typed, in order.
std::vector<Offer> offers(const Asked& asked, const std::vector<OfferSource>& sources);

}  // namespace command_line
