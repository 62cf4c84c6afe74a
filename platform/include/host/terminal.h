#pragma once
// The command line from the operator's side.

#include <string>
#include <string_view>
#include <vector>

#include "platform/command_line.h"

// The terminal of a command: what it printed, as it printed it; a question that it left open, and what is done on yes.
struct Vty {
  std::string text;
  std::string question;
  int (*yes)(Vty* vty) = nullptr;
  int node = 0;  // where the last line ran, or moved the terminal to
};

namespace host {

enum class LineResult { ran, unknown, incomplete, ambiguous };
std::string_view wordsOf(LineResult result);  // "unknown command"; empty for a line that ran

struct LineOutcome {
  LineResult result = LineResult::ran;
  int returned = 0;  // of the handler
};

// Runs a line at a node. An empty line, and one that begins with '!', run nothing and give 0.
LineOutcome runLine(Vty& vty, int node, std::string_view line);

// Where a line that did not run is not understood, and what could stand there.
struct Misunderstanding {
  std::size_t at = 0;      // byte of the line; its size, or the place behind a last blank, if words are missing
  std::string typed = {};  // the word there
  std::vector<std::string> expected = {};
};
Misunderstanding misunderstanding(int node, std::string_view line);
// "fsk or dtmf": what is expected, the likeliest first; of many, some. Empty if nothing is.
std::string wordsOf(const Misunderstanding& told);

// Answers the question that a line left open. What was done gave, 0 for a no.
int answerQuestion(Vty& vty, bool yes);

// What may stand next at the end of the line: words for completion and help. The word that the line ends with counts as
// being typed; behind a blank a new one begins.
enum class Suggested : u8 {
  word,      // of a syntax: a keyword, or "<name>" for a parameter
  existing,  // something that is there and may stand for the parameter
  more,      // "<...>": there are more, the help says how many
  end,       // "<cr>": the line may end here
};
struct Suggestion {
  std::string word;
  std::string help;
  Suggested kind = Suggested::word;
};
std::vector<Suggestion> suggestions(int node, std::string_view line);

// The parameters and ranges of a syntax with their help lines. `known`: the line is the parameter's own, else it was
// made from the name.
struct ParameterHelp {
  std::string parameter;
  std::string help;
  bool known = false;
};
std::vector<ParameterHelp> parameterHelp(std::string_view syntax);
// Lines of the table of parameters that none of the syntaxes uses.
std::vector<std::string> unusedParameterHelp(const std::vector<std::string>& syntaxes);

// The commands as they were installed, in order.
struct InstalledCommand {
  int node = 0;
  std::string syntax;
  std::string help;
  CommandHandler* handler = nullptr;
};
std::vector<InstalledCommand> installedCommands();

// Puts a text behind the help of the command of this syntax, at each node that has it. False if none has.
bool addToHelp(std::string_view syntax, std::string_view text);

// Calls the showrun functions of the installed modules; the last one's result.
int runShowrun(Vty& vty);

void setFastMode(bool on);  // what is_cliFastMode gives

void forgetCommands();

}  // namespace host
