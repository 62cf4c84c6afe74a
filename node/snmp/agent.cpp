#include "agent.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include "adsl_line_state.h"
#include "adsl_tables.h"
#include "engine.h"
#include "kept_reads.h"
#include "library.h"
#include "line_facts.h"
#include "module_road.h"
#include "note.h"
#include "notifications.h"
#include "profile_table.h"
#include "streams.h"
#include "system_group.h"
#include "turns.h"
#include "wrong_keys.h"

namespace msand {

namespace {

constexpr const char* kApplication = "msan";
// A frame has 400,000 bytes at most; one that is a little longer is still answered by the module.
constexpr std::size_t kMostMessage = 1u << 20;
// A request of the module that takes longer holds nobody else up.
constexpr std::chrono::milliseconds kPatience{5};

// The library's errors, at most one a second: what a stranger sends must not fill the log.
int tellError(int, int, void* message, void*) {
  static std::time_t last = 0;
  const auto& line = *static_cast<const snmp_log_message*>(message);
  const std::time_t now = std::time(nullptr);
  if (line.priority > LOG_ERR || now == last) return 0;
  last = now;
  complain("snmp: " + printable(line.msg));
  return 0;
}

void prepareLibrary(const std::string& folder) {
  setenv("SNMP_PERSISTENT_DIR", folder.c_str(), 1);
  setenv("SNMPCONFPATH", folder.c_str(), 1);
  setenv("MIBS", "", 1);
  snmp_disable_log();
  snmp_enable_calllog();
  snmp_register_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, tellError, nullptr);
  for (const int option : {NETSNMP_DS_LIB_DONT_READ_CONFIGS, NETSNMP_DS_LIB_DONT_PERSIST_STATE,
                           NETSNMP_DS_LIB_DISABLE_PERSISTENT_LOAD, NETSNMP_DS_LIB_DISABLE_PERSISTENT_SAVE})
    netsnmp_ds_set_boolean(NETSNMP_DS_LIBRARY_ID, option, 1);
  netsnmp_ds_set_boolean(NETSNMP_DS_APPLICATION_ID, NETSNMP_DS_AGENT_ROLE, 0);
}

void configure(std::string line) {
  netsnmp_config(line.data());
  explicit_bzero(line.data(), line.size());
}

void allowCommunity(const Community& community) {
  const char* word = community.writes ? "rwcommunity" : "rocommunity";
  const bool six = community.source.find(':') != std::string::npos;
  const std::string source = community.source.empty() ? "default" : community.source;
  if (!six) configure(fmt::format("{} \"{}\" {}", word, community.name, source));
  if (six || community.source.empty()) configure(fmt::format("{}6 \"{}\" {}", word, community.name, source));
}

// Ahead of the users, whose keys are made for the name.
void useEngine(const Engine& engine) {
  if (set_exact_engineID(engine.id.data(), engine.id.size()) != SNMPERR_SUCCESS)
    throw std::runtime_error("snmp: the engine id can't be set");
  configure(fmt::format("engineBoots {}", engine.boots - 1));  // the library counts this start, too
  set_enginetime(engine.id.data(), static_cast<u32>(engine.id.size()), engine.boots, 0, TRUE);
}

void allowManagers(const SnmpSettings& settings) {
  for (const Community& community : settings.communities) allowCommunity(community);
  for (const User& user : settings.users) {
    configure(fmt::format("createUser \"{}\" {} \"{}\" AES \"{}\"", user.name, user.authentication,
                          user.authenticationSecret, user.privacySecret));
    configure(fmt::format("{} \"{}\" priv", user.writes ? "rwuser" : "rouser", user.name));
  }
  if (!settings.communities.empty() || !settings.users.empty()) return;
  note("snmp: no community and no user is configured: \"public\" may read and write, from 127.0.0.1");
  allowCommunity({"public", "127.0.0.1", true});
}

}  // namespace

// What the library counts of messages whose senders have proved nothing.
struct Refused {
  int statistic;
  const char* what;
};
constexpr Refused kRefused[] = {{STAT_SNMPINBADCOMMUNITYNAMES, "a community that may not ask from there"},
                                {STAT_USMSTATSUNKNOWNUSERNAMES, "an unknown user"},
                                {STAT_USMSTATSWRONGDIGESTS, "a wrong authentication key"},
                                {STAT_USMSTATSDECRYPTIONERRORS, "a wrong privacy key"}};

// The library counts, and does not tell whom: what it counts between two messages, the first of them has caused.
class Knocking {
 public:
  // False: not to be heard.
  bool hears(const void* address, int size) {
    settle();
    last_ = WrongKeys::sourceOf(address, static_cast<std::size_t>(std::max(size, 0)));
    return keys_.hears(last_, WrongKeys::Clock::now());
  }

  void settle() {
    for (std::size_t i = 0; i < std::size(kRefused); ++i) {
      const u32 counted = snmp_get_statistic(kRefused[i].statistic);
      if (counted == counted_[i]) continue;
      counted_[i] = counted;
      const auto deaf = keys_.note(last_, WrongKeys::Clock::now());
      const std::string then = deaf.count() == 0 ? "" : fmt::format("; heard again in {} s", deaf.count());
      warn(fmt::format("snmp: {}: {}{}", textOf(last_), kRefused[i].what, then));
    }
  }

 private:
  WrongKeys keys_;
  WrongKeys::Source last_{};
  std::array<u32, std::size(kRefused)> counted_{};
};

// What the node is to managers that know nothing of it.
struct StandardTables {
  StandardTables(const node::Module& module, std::function<void()> wake, KeptReads::Answer answer)
      : functions(module), facts(std::move(wake)), reads(facts, all(), std::move(answer)) {
    learnLines(facts, functions);
  }

  // In the order of their names.
  std::vector<StandardTable*> all() {
    return {&interfaces,
            &lines,
            &states.atucPhysical,
            &states.aturPhysical,
            &states.atucChannel,
            &states.aturChannel,
            &profiles,
            &alarmProfiles,
            &names};
  }

  StandardFunctions functions;
  Facts facts;
  InterfaceTable interfaces{functions, facts};
  InterfaceNames names;
  AdslLineTable lines{functions};
  AdslStateTables states{facts, functions};
  ProfileTable profiles{kLineProfiles, functions, facts};
  ProfileTable alarmProfiles{kAlarmProfiles, functions, facts};
  KeptReads reads;
};

struct Agent::Running {
  Running(SnmpSettings wanted, const std::string& folder, const node::Module& module);
  ~Running();

  void listen(const std::string& address);
  void serve(int thread);
  static int admit(netsnmp_session*, netsnmp_transport*, void* address, int size);
  static int receive(int operation, netsnmp_session* session, int id, netsnmp_pdu* pdu, void* agent);

  // The library, from its first call to its last.
  struct Library {
    explicit Library(const std::string& folder) {
      prepareLibrary(folder);
      init_agent(kApplication);
    }
    ~Library() {
      snmp_shutdown(kApplication);
      shutdown_agent();
      snmp_unregister_callback(SNMP_CALLBACK_LIBRARY, SNMP_CALLBACK_LOGGING, tellError, nullptr, 0);
    }
  };

  // The one agent: a session's own magic word means something else to the library's internals.
  static Running* theAgent;

  SnmpSettings settings;
  Streams streams;  // the library closes them
  Library library;
  FrameTable table;
  ModuleRoad road{table};
  std::optional<StandardTables> standard;  // of a module that has the functions for them
  Notifications notifications;
  Knocking knocking;
  Turns turns{kPatience};
  std::atomic<bool> stopped{false};
  std::array<std::thread, 2> threads;
};

Agent::Running* Agent::Running::theAgent = nullptr;

Agent::Running::Running(SnmpSettings wanted, const std::string& folder, const node::Module& module)
    : settings(std::move(wanted)), library(folder) {
  registerSystemGroups(settings);
  if (StandardFunctions(module).complete()) {
    standard.emplace(
        module, [this] { road.wake(); },
        [this](netsnmp_session* session, int id, netsnmp_pdu* pdu) { road.receive(session, id, pdu); });
    road.useFunctions(standard->functions);
  }
  init_snmp(kApplication);
  if (!settings.users.empty()) useEngine(startEngine(folder + "/engine"));
  allowManagers(settings);
  notifications.open(settings);
  theAgent = this;
  for (const std::string& address : settings.listen) listen(address);
  register_readfd(
      road.descriptor(), [](int, void* of) { static_cast<ModuleRoad*>(of)->awake(); }, &road);
  for (int i = 0; i < 2; ++i) threads[i] = std::thread(&Running::serve, this, i);
}

Agent::Running::~Running() {
  stopped = true;
  turns.stop();
  road.wake();
  for (std::thread& thread : threads)
    if (thread.joinable()) thread.join();
  unregister_readfd(road.descriptor());
  theAgent = nullptr;
}

void Agent::Running::listen(const std::string& address) {
  errno = 0;
  netsnmp_transport* transport = netsnmp_transport_open_server("snmp", address.c_str());
  if (transport == nullptr)
    throw std::runtime_error(
        fmt::format("snmp: {}: can't be listened at: {}", address, std::generic_category().message(errno)));
  const bool stream = (transport->flags & NETSNMP_TRANSPORT_FLAG_STREAM) != 0;
  if (stream) {
    transport->msgMaxSize = kMostMessage;
    streams.watch(*transport);
  }
  netsnmp_session session;
  snmp_sess_init(&session);
  session.version = SNMP_DEFAULT_VERSION;
  session.callback = receive;
  session.isAuthoritative = SNMP_SESS_AUTHORITATIVE;
  // The transport is the library's from here on, also when this fails.
  if (snmp_add(&session, transport, admit, netsnmp_agent_check_parse) == nullptr)
    throw std::runtime_error(fmt::format("snmp: {}: no session", address));
}

// Who may ask is the configuration's business alone: the library's own check would read the files of another access
// control for each message.
int Agent::Running::admit(netsnmp_session*, netsnmp_transport* transport, void* address, int size) {
  snmp_increment_statistic(STAT_SNMPINPKTS);
  if (theAgent == nullptr) return 1;
  return theAgent->streams.hears(transport) && theAgent->knocking.hears(address, size) ? 1 : 0;
}

int Agent::Running::receive(int operation, netsnmp_session* session, int id, netsnmp_pdu* pdu, void*) {
  if (theAgent != nullptr && operation == NETSNMP_CALLBACK_OP_DISCONNECT) {
    theAgent->road.leave(session);
    if (theAgent->standard) theAgent->standard->reads.leave(session);
  }
  if (theAgent == nullptr || operation != NETSNMP_CALLBACK_OP_RECEIVED_MESSAGE)
    return handle_snmp_packet(operation, session, id, pdu, nullptr);
  if (theAgent->standard && theAgent->standard->reads.keep(session, id, pdu)) return 1;
  return theAgent->road.receive(session, id, pdu);
}

// What the library reads in one turn the module does after it: while the module works, no function of the library is
// under way, so that another thread may go on with it.
void Agent::Running::serve(int thread) {
  while (turns.lead(thread)) {
    do {
      agent_check_and_process(road.hasWork() ? 0 : 1);
      knocking.settle();
      streams.giveBack();
      if (standard) standard->reads.work();
      notifications.send();
    } while (!stopped && road.work(turns, thread));
  }
}

Agent::Agent(const SnmpSettings& settings, const std::string& folder, const node::Module& module)
    : running_(std::make_unique<Running>(settings, folder, module)) {}

Agent::~Agent() = default;

void Agent::notify(std::string_view text) {
  running_->notifications.add(text);
  running_->road.wake();
}

}  // namespace msand
