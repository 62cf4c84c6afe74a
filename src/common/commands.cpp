#include "common/commands.h"

int installCommands(std::span<const Command> commands) {
  int result = 0;
  for (const Command& row : commands) result = install_element(row.node, &row.element);
  return result;
}
