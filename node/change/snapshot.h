#pragma once
// What another node has to be told to be where this one is.

#include <string>
#include <string_view>
#include <vector>

#include "cards/dsl_cards.h"
#include "node.h"

namespace msand {

struct Snapshot {
  std::vector<std::string> chassis;  // directives of a scenario: card types, flow rules and policies
  std::vector<std::string> lines;    // behind DSL ports, as the words behind "chassis" tell them
  std::string configuration;         // as commands
  std::vector<std::string> cards;    // directives: the states of the cards
};

// Of the node, without a turn's gate held. Null: nothing of lines.
Snapshot snapshotOf(node::Node& node, const cards::DslCards* dsl);

// The lines of a configuration that are not empty, without their ends and blanks behind.
std::vector<std::string_view> linesOf(std::string_view configuration);
std::vector<std::string_view> linesOf(std::string&&) = delete;

}  // namespace msand
