#include "daemon.h"

#include <fmt/format.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/signalfd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "agent.h"
#include "answering.h"
#include "capture_file.h"
#include "cards/dsl_cards.h"
#include "descriptor.h"
#include "door.h"
#include "files.h"
#include "host/chassis.h"
#include "host/flow_store.h"
#include "host/observer.h"
#include "job_thread.h"
#include "line_words.h"
#include "listener.h"
#include "metrics.h"
#include "metrics_file.h"
#include "node.h"
#include "note.h"
#include "observing.h"
#include "operator.h"
#include "running_configuration.h"
#include "server.h"
#include "session_record.h"
#include "supervisor.h"
#include "trace.h"

namespace msand {

// The signals that end the node, as a descriptor that becomes readable. One that our caller has us ignore, as nohup and
// shells in the background do, is ignored.
static Descriptor stopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) sigaddset(&signals, signal);
  }
  sigprocmask(SIG_BLOCK, &signals, nullptr);
  Descriptor descriptor(signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
  if (!descriptor) throw std::system_error(errno, std::generic_category(), "no descriptor for signals");
  return descriptor;
}

static bool isReadable(const Descriptor& descriptor) {
  pollfd ready{descriptor.get(), POLLIN, 0};
  return poll(&ready, 1, 0) == 1;
}

// What is written to somebody who has gone, or to a file that may not grow, fails; it does not end the node.
static void ignoreFailedWrites() {
  for (const int signal : {SIGPIPE, SIGXFSZ}) std::signal(signal, SIG_IGN);
}

// Each terminal takes a descriptor.
static void allowManyTerminals() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

// The trace goes to the server's terminals, as long as it lives.
struct Tracing {
  Tracing(Trace& of, Server& server) : trace(of) { trace.setSink(&server); }
  ~Tracing() { trace.setSink(nullptr); }
  Trace& trace;
};

// As long as it lives, a change that waits may be taken back.
struct Later {
  explicit Later(Pending& of) : pending(of) {}
  ~Later() { pending.stop(); }
  Pending& pending;
};

static void authoriseCards(node::Node& node, const Configuration& configuration) {
  for (const SlotConfiguration& slot : configuration.slots)
    if (const int result = node.authorise(slot.slot, *slot.card); result != 0)
      complain(fmt::format("slot {}: card type {} gave {}", slot.slot, slot.card->name, result));
}

static void announceCards(node::Node& node, const Configuration& configuration) {
  for (const SlotConfiguration& slot : configuration.slots) {
    host::setCardState(slot.slot, slot.state);
    if (slot.state != host::CardState::up) continue;
    if (const int result = node.cardUp(slot.slot); result < 0)
      complain(fmt::format("slot {}: the card came up, its configuration gave {}", slot.slot, result));
  }
}

// What the startup configuration may cite has to be there ahead of it.
static void fillFlowStore(Operator& commands, const Configuration& configuration) {
  const auto stored = [] { return host::flowRules().size() + host::flowPolicies().size(); };
  for (const Told& words : configuration.flow) {
    const std::size_t before = stored();
    Terminal terminal;
    std::string text;
    const wire::Result result = commands.run(terminal, "flow " + words.value, text);
    std::string why;
    if (!result.good())
      why = text.empty() ? "no such words" : printable(text);
    else if (stored() == before)
      why = "makes no rule or policy of its own";
    if (!why.empty()) throw ConfigurationError(fmt::format("{}flow \"{}\": {}", words.at, printable(words.value), why));
  }
}

static void layLines(Operator& commands, const Configuration& configuration) {
  for (const Told& words : configuration.lines) {
    Terminal terminal;
    std::string text;
    if (tellOfLine(words.value) && commands.run(terminal, "chassis " + words.value, text).good() && text.empty())
      continue;
    const std::string why = text.empty() ? "tell of no line" : printable(text);
    throw ConfigurationError(fmt::format("{}lines \"{}\": {}", words.at, printable(words.value), why));
  }
}

static void setUpCaptures(const Configuration& configuration) {
  FileSettings settings = configuration.capture;
  if (settings.folder.empty())
    settings.folder = (std::filesystem::path(configuration.startup).parent_path() / "captures").string();
  sessionRecord().configure(settings);
  captureFile().configure(std::move(settings));
}

// An error in what the configuration has told is the configuration's.
template <class Error, class Action>
static auto blame(const Told& told, Action action) {
  try {
    return action();
  } catch (const Error& error) {
    throw ConfigurationError(told.at + error.what());
  }
}

static void checkSocket(const Configuration& configuration) {
  blame<FileError>(configuration.socket, [&] { checkSocketPath(configuration.socket.value); });
}

static void checkMetrics(const Configuration& configuration) {
  if (configuration.metrics.value.empty()) return;
  blame<FileError>(configuration.metrics, [&] { checkReplacing(configuration.metrics.value); });
}

static node::Node loadNode(const Configuration& configuration) {
  return blame<node::LoadError>(configuration.module, [&] { return node::Node(configuration.module.value); });
}

static void startAgent(std::optional<Agent>& agent, const Configuration& configuration, const node::Node& node) {
  if (configuration.snmp.listen.empty()) return;
  const auto folder = std::filesystem::path(configuration.startup).parent_path() / "snmp";
  agent.emplace(configuration.snmp, folder.string(), node.module());
  for (const std::string& address : configuration.snmp.listen) note("snmp: listens at " + address);
}

// While it serves.
static void tellOf(Server& server, const Supervisor& supervisor) {
  const auto serves = [&] { supervisor.status(fmt::format("serves {} terminals", server.terminals())); };
  server.setHeartbeat(supervisor.interval(), [&supervisor, serves] {
    supervisor.alive();
    serves();
  });
  serves();
}

void checkDaemon(const Configuration& configuration) {
  checkSocket(configuration);
  // The log is not opened: what is only looked at must not appear.
  if (configuration.logTo == host::LogTo::file)
    blame<FileError>(configuration.logFile, [&] { checkAppending(configuration.logFile.value); });
  checkMetrics(configuration);
  node::Node node = loadNode(configuration);
  Startup startup(configuration.startup);
  cards::DslCards dsl;
  Operator commands(node, startup, dsl);
  layLines(commands, configuration);
  fillFlowStore(commands, configuration);
}

void runDaemon(const Configuration& configuration) {
  const Descriptor stop = stopSignals();
  ignoreFailedWrites();
  allowManyTerminals();
  blame<std::system_error>(configuration.logFile,
                           [&] { host::openLog(configuration.logTo, configuration.logFile.value); });
  checkSocket(configuration);
  checkMetrics(configuration);
  Listener listener(configuration.socket.value);
  const Supervisor supervisor;
  supervisor.status("executes the startup configuration " + configuration.startup);

  Trace trace;
  const Observing observing(trace);
  const host::CaptureOutput capture;
  cards::DslCards dsl;
  const Answering answering(dsl);
  std::optional<Metrics> metrics;
  if (!configuration.metrics.value.empty()) metrics.emplace();
  node::Node node = loadNode(configuration);
  authoriseCards(node, configuration);
  const JobThread jobs;
  Startup startup(configuration.startup);
  Operator commands(node, startup, dsl);
  layLines(commands, configuration);
  fillFlowStore(commands, configuration);
  if (!startup.execute(node, [&] { return isReadable(stop); })) return;
  announceCards(node, configuration);

  std::optional<Agent> agent;
  startAgent(agent, configuration, node);
  setUpCaptures(configuration);
  // Behind what may fail: who sees the socket sees a node that stays.
  Door door;
  listener.open(configuration.operators.group.has_value());
  Server server(listener.descriptor(), door, commands, {}, configuration.operators);
  const Tracing tracing(trace, server);
  const Later later(startup.pending());
  commands.changes().setLater({.post = [&door](std::function<void()> what) { door.post(std::move(what)); },
                               .announce =
                                   [&server, &agent](std::string_view line) {
                                     server.announce(line);
                                     if (agent) agent->notify(line);
                                   }});
  std::optional<MetricsFile> metricsFile;
  if (metrics) {
    const auto page = [&] { return metrics->page(server.terminals()); };
    commands.setMetrics(page);
    blame<FileError>(configuration.metrics, [&] { metricsFile.emplace(configuration.metrics.value, page); });
  }
  note(fmt::format("ready, serves {}", configuration.socket.value));
  tellOf(server, supervisor);
  supervisor.ready();

  server.run(stop.get());
  supervisor.stopping();
  note("stops");
}

}  // namespace msand
