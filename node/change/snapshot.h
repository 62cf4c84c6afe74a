#pragma once
// What another node has to be told to be where this one is.

#include <string>
#include <string_view>
#include <vector>

#include "cards/dsl_cards.h"
#include "node.h"

namespace msand {

struct Snapshot {
  // What the flow store keeps of a rule or policy, as it lies there.
  struct Flow {
    bool isRule = true;
    i16 id = 0;
    std::string name;
    std::vector<u8> bytes;
  };

  std::vector<std::string> chassis;  // directives of a scenario: card types
  std::vector<Flow> flows;
  std::vector<std::string> lines;  // behind DSL ports, as the words behind "chassis" tell them
  std::string configuration;       // as commands
  std::vector<std::string> cards;  // directives: the states of the cards
};

// The directive that makes it; a comment for a name that is not one word, which no directive can tell.
std::string flowDirective(const Snapshot::Flow& flow);

// Of the node, without a turn's gate held. Null: nothing of lines.
Snapshot snapshotOf(node::Node& node, const cards::DslCards* dsl);

// The lines of a configuration that are not empty, without their ends and blanks behind.
std::vector<std::string_view> linesOf(std::string_view configuration);
std::vector<std::string_view> linesOf(std::string&&) = delete;

}  // namespace msand
