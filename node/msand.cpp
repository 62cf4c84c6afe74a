// The node as a daemon.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <string>

#include "configuration.h"
#include "daemon.h"
#include "reserve.h"
#include "shadow.h"
#include "standard_output.h"

namespace {

enum ExitCode { kDone = 0, kFailed = 1, kBadUse = 2 };

struct Options {
  std::string configuration = MSAN_CONFIGURATION;
  std::string socket;
  std::string startup;
  std::string module;
  std::string snmp;
  bool check = false;
  int shadow = -1;  // a socket
};

void declare(CLI::App& app, Options& options) {
  app.set_version_flag("--version", "msand " MSAN_VERSION);
  app.add_option("--config", options.configuration, "configuration file")->type_name("FILE")->capture_default_str();
  app.add_option("--socket", options.socket, "operator's socket, in place of the configured one")->type_name("PATH");
  app.add_option("--startup", options.startup, "startup configuration, in place of the configured one")
      ->type_name("FILE");
  app.add_option("--module", options.module, "libmsan.so, in place of the configured one")->type_name("FILE");
  app.add_option("--snmp", options.snmp,
                 "address of the SNMP agent such as udp:127.0.0.1:16100, in place of the\n"
                 "configured ones; \"none\": no agent")
      ->type_name("LISTEN");
  app.add_flag("--check", options.check, "check the configuration file and exit");
  app.add_option("--shadow", options.shadow)->group("");  // how msand starts its own shadow
  app.footer(
      "It stays in the foreground and stops on SIGTERM. Exit codes: 0 stopped, 1 could not run, 2 bad options or\n"
      "configuration.");
}

// ../lib/libmsan.so beside the program
std::string moduleBesideProgram() {
  const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
  return (program.parent_path().parent_path() / "lib" / "libmsan.so").string();
}

std::vector<std::string> listenOption(const std::string& word) {
  try {
    return msand::listenAddresses(word);
  } catch (const std::invalid_argument& error) {
    throw msand::ConfigurationError("--snmp: \"" + word + "\" " + error.what());
  }
}

msand::Configuration configurationOf(const Options& options) {
  msand::Configuration configuration = msand::readConfiguration(options.configuration);
  if (!options.socket.empty()) configuration.socket = {options.socket, "--socket: "};
  if (!options.startup.empty()) configuration.startup = options.startup;
  if (!options.module.empty()) configuration.module = {options.module, "--module: "};
  if (options.snmp == "none")
    configuration.snmp.listen.clear();
  else if (!options.snmp.empty())
    configuration.snmp.listen = listenOption(options.snmp);
  if (configuration.module.value.empty()) configuration.module.value = moduleBesideProgram();
  return configuration;
}

int runProgram(int argc, char** argv) {
  msand::keepReserve();
  Options options;
  CLI::App app("The node as a daemon: loads the module, holds the chassis, serves its operators.", "msand");
  declare(app, options);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kBadUse;
  }
  if (options.shadow >= 0) return msand::serveShadow(options.shadow, options.module);
  try {
    const msand::Configuration configuration = configurationOf(options);
    if (!options.check) {
      msand::runDaemon(configuration);
    } else {
      msand::checkDaemon(configuration);
      std::printf("%s: good\n", options.configuration.c_str());
    }
    return kDone;
  } catch (const msand::ConfigurationError& error) {
    std::fprintf(stderr, "msand: %s\n", error.what());
    return kBadUse;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "msand: %s\n", error.what());
    return kFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  return output::run("msand", kFailed, kFailed, [&] { return runProgram(argc, argv); });
}
