#pragma once
// The operator's commands: the module's, and the platform's own words beside them.

#include <functional>
#include <string>
#include <string_view>

#include "cards/dsl_cards.h"
#include "changes.h"
#include "node.h"
#include "running_configuration.h"
#include "service.h"

namespace msand {

class Operator : public Service {
 public:
  // Installs the platform's words; the node's module is loaded. `startup` is what "write" replaces; `cards` have the
  // lines of which the words tell.
  Operator(node::Node& node, Startup& startup, cards::DslCards& cards);

  std::string prompt(const Terminal& terminal) const override;
  wire::Result run(Terminal& terminal, std::string_view line, std::string& text) override;
  std::string suggest(const Terminal& terminal, std::string_view line) override;

  node::Node& node() { return node_; }
  Startup& startup() { return startup_; }
  cards::DslCards& cards() { return cards_; }

  Changes& changes() { return changes_; }

  // What "show metrics" prints; without it the node counts nothing.
  void setMetrics(std::function<std::string()> page) { metrics_ = std::move(page); }
  const std::function<std::string()>& metrics() const { return metrics_; }

 private:
  wire::Result runModuleLine(Terminal& terminal, std::string_view line, std::string& text);
  wire::Result answer(Terminal& terminal, bool yes, std::string& text);
  wire::Result answerLine(Terminal& terminal, std::string_view line, std::string& text);
  wire::Result runPlatformLine(Terminal& terminal, std::string_view line, std::string& text);

  node::Node& node_;
  Startup& startup_;
  cards::DslCards& cards_;
  std::function<std::string()> metrics_;
  Changes changes_;
};

}  // namespace msand
