#pragma once
// The node's command line.
//
// A syntax is a row of elements parted by blanks:
//   word          a keyword; typed without regard to case and by a unique beginning
//   [a|b|c]       a choice: one of the words, or of the parameters, is typed
//   <name>        a parameter: any one word
//   <7-32>        a number in a range
//   {...}*N       a group that may be left out, or come up to N times ({...} alone: once)
// A handler gets one argument for each choice and for each parameter that was typed, in typed order; a choice
// word comes whole and as the syntax spells it, keywords outside [ ] are not passed. More in docs/command-syntax.md.

#include "platform/types.h"

struct Vty;  // the terminal of a command
struct CommandElement;

// `argv` ends with a null. It and its texts belong to the platform and live until the handler returns, which may
// change the texts. Returns 0 or -1.
using CommandHandler = int(const CommandElement* element, Vty* vty, int argc, char** argv);

// A command. It must live as long as the module.
struct CommandElement {
  const char* syntax;
  CommandHandler* handler;
  const char* help;  // a few words, shown behind the command's words by ? and Tab
};

enum CommandNode { CONFIRM_NODE = 7, DEBUG_NODE = 10, CONFIG_NODE = 50 };

// Installs a command at a node. 0, or -1 for a syntax that can't be read or whose lines another command takes.
int install_element(int node, const CommandElement* element);

// Where things come from that exist and that operators name in commands, as the profiles of a kind: ? and Tab offer
// them for parameters behind the word `keyword` of a syntax. `list` calls offer_to_cli for each.
struct CommandOffers;
using CommandOfferList = void(const void* context, CommandOffers* to);
void install_offers(const char* keyword, CommandOfferList* list, const void* context);
// `name` need not end with a null; of length 0: the thing has none. `id` below 0: it has no number.
void offer_to_cli(CommandOffers* to, i32 id, const char* name, u32 length);

// Prints to the terminal of a command.
void vty_out(Vty* vty, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Prints to the terminal at once: a question.
void vty_direct_out(Vty* vty, const char* text);

// Saves the terminal's node, puts it into that of confirmation, and keeps the function for the operator's yes. Either
// answer brings the node back.
void vty_confirm(Vty* vty, int (*yes)(Vty* vty));

// Moves the terminal to a node.
void vty_set_node(Vty* vty, int node);

// Runs one line at the node of configuration as if it were typed; what it prints goes to the terminal of the command
// that runs. What its handler gave, -1 for a line that is no command.
int cli_run_one_defun_func(const char* text, u32 length);

// Records the function that installs a module's commands, which is called at once, and the one that prints its
// running configuration. Returns what `install` gave.
int cl_install_module_by_mod_id(i32 module, int (*install)(), int (*showrun)(Vty*));

// 1 while the startup configuration is executed, else 0.
int is_cliFastMode();
