#pragma once
// Tables of commands.

#include <span>
#include <string_view>

#include "platform/command_line.h"

struct Command {
  int node;
  CommandElement element;
};

// A row of a table of commands. A syntax whose brackets do not close does not compile.
consteval Command command(int node, const char* syntax, CommandHandler* handler, const char* help) {
  int depth = 0;
  for (char c : std::string_view(syntax)) {
    depth += c == '[' || c == '{' || c == '<';
    depth -= c == ']' || c == '}' || c == '>';
    if (depth < 0) throw "a bracket closes that was not opened";
  }
  if (depth != 0) throw "a bracket is left open";
  return {node, {syntax, handler, help}};
}

// Installs the rows in their order; the last one's result. The table must live as long as the module.
int installCommands(std::span<const Command> commands);
