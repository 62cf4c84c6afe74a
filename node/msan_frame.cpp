// A manager's frames from the command line.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "frame/client.h"
#include "host/hex.h"
#include "scenario/arguments.h"
#include "standard_output.h"

namespace {

enum ExitCode { kDone = 0, kRefused = 1, kBadUse = 2, kNoAnswer = 3, kOutputLost = 3 };

struct Options {
  frame::Access access;
  std::string id;
  std::vector<std::string> words;
  CLI::App* set = nullptr;
  CLI::App* query = nullptr;
};

void declareRequest(CLI::App& command, Options& options, bool needsFrame) {
  command.add_option("ID", options.id, "number of the message, decimal or 0x")->required();
  auto* words = command.add_option("BYTES", options.words,
                                   "the frame: hex digits, bb*N, u8:N u16:N u32:N, \"text\":N, - for no bytes");
  if (needsFrame) words->required();
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
  options.set = app.add_subcommand("set", "hands the node a frame, prints its reply");
  declareRequest(*options.set, options, true);
  options.query = app.add_subcommand("query", "leaves a frame for the next get of the message");
  declareRequest(*options.query, options, true);
  declareRequest(*app.add_subcommand("get", "prints what the node answers, piece by piece"), options, false);
  app.require_subcommand(1);
  app.footer(
      "Exit codes: 0 done, 1 the node refused it, 2 bad options or bytes, 3 no answer, no access, or\n"
      "output that can't be written.");
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

int run(const Options& options) {
  const auto id = static_cast<u16>(scenario::parseNumber("message id", options.id, 0, 65535));
  const std::vector<u8> bytes = options.words.empty() ? std::vector<u8>() : bytesOf(options);
  frame::Client client(options.access);
  if (*options.set) {
    const frame::SetResult result = client.set(id, bytes);
    return show(result.reply) && result.accepted ? kDone : kRefused;
  }
  if (*options.query) {
    client.query(id, bytes);
    return kDone;
  }
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
  } catch (const std::exception& error) {
    std::fprintf(stderr, "msan-frame: %s\n", error.what());
    return kNoAnswer;
  }
}

}  // namespace

int main(int argc, char** argv) {
  output::keepStandardDescriptors();
  return output::exitCode(runProgram(argc, argv), "msan-frame", kOutputLost);
}
