#pragma once
// What is known of the parameters of all syntaxes: their help, and what can be offered for them.

#include <span>
#include <string>
#include <string_view>

#include "command_line_syntax.h"

namespace command_line {

// What a parameter names, of which some may exist.
enum class Names : u8 {
  nothing,    // that is there already
  ports,      // lists of ports
  slots,      // lists of slots
  slot,       // one
  port,       // of the slot that was typed ahead
  profile,    // of the kind that the command is about, by what was typed ahead: "id" or "name"
  id,         // of such a profile
  name,       // of such a profile
  rule,       // a flow rule, by name
  ruleId,     // by id
  policyId,   // a flow policy
  telephone,  // a telephone number
  cardType,
};

// The help line of a parameter, said once by its name. Where a name means different things, further lines say the words
// that stand ahead: the last of them is the nearest keyword, choices aside ("*": any word), the others stand anywhere
// ahead. The line with the most words counts.
struct ParameterRow {
  std::string_view place;  // "<name>", "rule <name>", "vdslser dn <value>"
  Names names = Names::nothing;
  std::string_view help;
};
std::span<const ParameterRow> parameterRows();

// The row of a parameter or range of a syntax; null: there is none.
const ParameterRow* parameterRow(const Syntax& syntax, std::size_t element, const Alternative& alternative);

// The help line of a parameter or range: its row's, or one made from its name or its bounds.
std::string parameterHelp(const Syntax& syntax, std::size_t element, const Alternative& alternative);

}  // namespace command_line
