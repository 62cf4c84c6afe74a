#pragma once
// Commands that tell what they were called with.

#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "host/terminal.h"

// Prints "label(argument,argument)"; the label is the command's help.
inline int tellCall(const CommandElement* element, Vty* vty, int argc, char** argv) {
  std::string call = std::string(element->help) + "(";
  for (int i = 0; i < argc; ++i) call += std::string(i ? "," : "") + argv[i];
  vty_out(vty, "%s)", call.c_str());
  return argc;
}

class CommandLine : public testing::Test {
 protected:
  CommandLine() { host::forgetCommands(); }
  ~CommandLine() override { host::forgetCommands(); }

  int install(int node, const std::string& syntax, const std::string& label = "", CommandHandler* handler = tellCall) {
    const std::string& kept = texts_.emplace_back(syntax);
    const std::string& help = texts_.emplace_back(label);
    return install_element(node, &elements_.emplace_back(CommandElement{kept.c_str(), handler, help.c_str()}));
  }
  void installAll(const std::vector<std::pair<std::string, std::string>>& labelsAndSyntaxes) {
    for (const auto& [label, syntax] : labelsAndSyntaxes) ASSERT_EQ(0, install(CONFIG_NODE, syntax, label)) << syntax;
  }

  // The call that a line makes, or its failure in words.
  static std::string run(std::string_view line, int node = CONFIG_NODE) {
    Vty vty;
    switch (host::runLine(vty, node, line).result) {
      case host::LineResult::ran:
        return vty.text;
      case host::LineResult::unknown:
        return "unknown";
      case host::LineResult::incomplete:
        return "incomplete";
      case host::LineResult::ambiguous:
        return "ambiguous";
    }
    return "";
  }

  // "word: help" of each suggestion.
  static std::vector<std::string> suggest(std::string_view line) {
    std::vector<std::string> list;
    for (const host::Suggestion& suggestion : host::suggestions(CONFIG_NODE, line)) {
      EXPECT_EQ(suggestion.kind == host::Suggested::end, suggestion.word == "<cr>");
      list.push_back(suggestion.word + ": " + suggestion.help);
    }
    return list;
  }

 private:
  std::deque<std::string> texts_;
  std::deque<CommandElement> elements_;
};
