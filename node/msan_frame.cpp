// A manager's frames from the command line.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

#include "frame/client.h"
#include "frame/named.h"
#include "host/hex.h"
#include "messages/named.h"
#include "scenario/arguments.h"
#include "standard_output.h"

namespace {

enum ExitCode { kDone = 0, kRefused = 1, kBadUse = 2, kNoAnswer = 3, kOutputLost = 3 };

struct Options {
  frame::Access access;
  std::string id;
  std::vector<std::string> words;
  std::string from;
  bool fresh = false;
  bool json = false;
  bool hex = false;
  CLI::App* set = nullptr;
  CLI::App* query = nullptr;
  CLI::App* get = nullptr;
  CLI::App* describe = nullptr;
};

CLI::App& declareRequest(CLI::App& app, Options& options, const char* name, const char* help) {
  CLI::App& command = *app.add_subcommand(name, help);
  command.add_option("ID", options.id, "the message: its name, or its number, decimal or 0x")->required();
  return command;
}

void declareWords(CLI::App& command, Options& options, const char* help) {
  command.add_option("WORDS", options.words, help);
}

void declareRequests(CLI::App& app, Options& options) {
  constexpr char kBytes[] = "bytes: hex digits, bb*N, u8:N u16:N u32:N, \"text\":N, - for no bytes";
  constexpr char kWords[] = "NAME=VALUE, SLOT/PORT for an item of a list of ports; or bytes, as for query";
  options.set = &declareRequest(app, options, "set", "sets values; what is not told stays as the node has it");
  declareWords(*options.set, options, kWords);
  options.set->add_flag("--new", options.fresh, "what is not told has its default");
  options.set->add_option("--from", options.from, "a JSON file of values; -: the standard input")->type_name("FILE");
  options.get = &declareRequest(app, options, "get", "prints what the node answers");
  declareWords(*options.get, options, kWords);
  options.get->add_flag("--hex", options.hex, "as bytes, piece by piece");
  for (CLI::App* const command : {options.set, options.get}) command->add_flag("--json", options.json, "prints JSON");
  options.query = &declareRequest(app, options, "query", "leaves a frame for the next get of the message");
  options.query->add_option("BYTES", options.words, kBytes)->required();
  options.describe = app.add_subcommand("describe", "prints a message's fields and what they can be, or all messages");
  options.describe->add_option("ID", options.id, "the message");
}

void declare(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "msan-frame " MSAN_VERSION);
  frame::Access& access = options.access;
  app.add_option("--agent", access.agent, "the node's agent")->type_name("ADDRESS")->capture_default_str();
  app.add_option("--community", access.community, "community")->type_name("NAME")->capture_default_str();
  app.add_option("--user", access.user,
                 "user of version 3, in place of a community; the secrets stand in the\n"
                 "environment, MSAN_AUTH_SECRET and MSAN_PRIV_SECRET")
      ->type_name("NAME");
  app.add_option("--auth", access.authentication, "SHA, SHA-256 or SHA-512")->capture_default_str();
  app.add_option("--timeout", access.timeout, "wait for an answer so long")
      ->type_name("SECONDS")
      ->capture_default_str()
      ->check(CLI::Range(0.001, 3600.0));
  app.add_option("--piece", access.piece, "largest piece of a frame; else what the transport holds")
      ->type_name("BYTES")
      ->check(CLI::Range(1, 4000000));
  declareRequests(app, options);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 the node refused it, 2 bad options, values or bytes, 3 no answer, no access,\n"
      "or output that can't be written.");
}

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

// A secret that --user needs; what is wrong with it is told.
bool readSecret(const char* name, std::string& secret) {
  constexpr std::size_t kShortest = 8;
  secret = environment(name);
  if (secret.size() >= kShortest) return true;
  std::fprintf(stderr, "msan-frame: --user needs a secret of at least %zu letters in the environment: %s %s\n",
               kShortest, name, secret.empty() ? "is not set" : "is shorter");
  return false;
}

bool readSecrets(frame::Access& access) {
  if (access.user.empty()) return true;
  const bool authentication = readSecret("MSAN_AUTH_SECRET", access.authenticationSecret);
  return readSecret("MSAN_PRIV_SECRET", access.privacySecret) && authentication;
}

// A shell takes the quotes off "text":32, so bytes may come as one word or as many.
std::vector<u8> bytesOf(const Options& options) {
  std::string text;
  for (const std::string& word : options.words) text += (text.empty() ? "" : " ") + word;
  return scenario::parseBytes(text);
}

bool show(const std::vector<u8>& reply) {
  std::printf("reply %s\n", host::hexText(reply).c_str());
  const std::string words = frame::errorWords(reply);
  if (!words.empty()) std::printf("%s\n", words.c_str());
  return words.empty();
}

int setBytes(const Options& options, u16 id) {
  if (options.words.empty()) throw scenario::BadLine("neither values nor bytes");
  const std::vector<u8> bytes = bytesOf(options);
  frame::Client client(options.access);
  const frame::SetResult result = client.set(id, bytes);
  return show(result.reply) && result.accepted ? kDone : kRefused;
}

int getBytes(const Options& options, u16 id) {
  const std::vector<u8> bytes = options.words.empty() ? std::vector<u8>() : bytesOf(options);
  frame::Client client(options.access);
  if (!bytes.empty()) client.query(id, bytes);
  bool good = true;
  for (bool last = false; !last;) {
    const frame::Piece piece = client.next(id);
    if (!show(piece.bytes)) good = false;
    last = piece.last;
    std::printf("last %d\n", last ? 1 : 0);
  }
  return good ? kDone : kRefused;
}

std::string contentOf(const std::string& path) {
  if (path == "-") return {std::istreambuf_iterator<char>(std::cin), {}};
  std::ifstream file(path);
  if (!file) throw scenario::BadLine("can't read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

int runNamed(const Options& options, const messages::Message& message, u16 id) {
  const frame::Request request{
      &message, id, options.words, options.from.empty() ? "" : contentOf(options.from), options.fresh, options.json};
  frame::Client client(options.access);
  std::string text;
  const bool done = *options.set ? setNamed(client, request, text) : getNamed(client, request, text);
  std::fputs(text.c_str(), stdout);
  return done ? kDone : kRefused;
}

// Names and values, or nothing at all where a message is asked for.
bool isNamed(const Options& options) {
  if (options.hex || *options.query) return false;
  if (options.json || options.fresh || !options.from.empty()) return true;
  return std::ranges::all_of(options.words, messages::isValueWord) && (*options.get || !options.words.empty());
}

int describe(const std::string& name) {
  if (name.empty()) {
    for (const messages::Message& one : messages::book().messages)
      std::printf("%-28s %5d  %s\n", one.name.c_str(), one.ids.front(), one.note.c_str());
    return kDone;
  }
  u16 id = 0;
  const messages::Message* const message = messages::findNamed(messages::book(), name, id);
  if (message == nullptr) throw scenario::BadLine("there is no message " + name);
  std::fputs(messages::description(*message).c_str(), stdout);
  return kDone;
}

int run(const Options& options) {
  if (*options.describe) return describe(options.id);
  u16 id = 0;
  const messages::Message* const message = messages::findNamed(messages::book(), options.id, id);
  if (message == nullptr) id = static_cast<u16>(scenario::parseNumber("message id", options.id, 0, 65535));
  if (message != nullptr && isNamed(options)) return runNamed(options, *message, id);
  if (*options.set) return setBytes(options, id);
  if (*options.get) return getBytes(options, id);
  const std::vector<u8> bytes = bytesOf(options);
  frame::Client(options.access).query(id, bytes);
  return kDone;
}

int runProgram(int argc, char** argv) {
  Options options;
  CLI::App app("Sends a node the frames of its messages, over SNMP.", "msan-frame");
  declare(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUse;
  }
  if (!readSecrets(options.access)) return kBadUse;
  try {
    return run(options);
  } catch (const scenario::BadLine& error) {
    std::fprintf(stderr, "msan-frame: %s\n", error.what());
    return kBadUse;
  } catch (const messages::BadValue& error) {
    std::fprintf(stderr, "msan-frame: %s\n", error.what());
    return kBadUse;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "msan-frame: %s\n", error.what());
    return kNoAnswer;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return output::run("msan-frame", kOutputLost, kOutputLost, [&] { return runProgram(argc, argv); });
}
