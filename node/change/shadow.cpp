#include "shadow.h"

#include <fmt/format.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace msand {

static constexpr std::chrono::seconds kPatience{20};  // for what takes a full chassis 0.2 s
static constexpr int kSocket = 3;                     // of the new process

static std::runtime_error failure(const char* what, int code) {
  return ChannelError(fmt::format("{}: {}", what, std::generic_category().message(code)));
}

// The signals that end msand are blocked in it; the new process is ended by the end of the socket, or killed.
static pid_t start(int socket, const std::string& module) {
  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
  sigset_t none;
  sigemptyset(&none);
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, socket, kSocket);
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setsigmask(&attributes, &none);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  std::string name = "msand", option = "--shadow", number = std::to_string(kSocket), word = "--module", path = module;
  char* arguments[] = {name.data(), option.data(), number.data(), word.data(), path.data(), nullptr};
  pid_t process = 0;
  const int code = posix_spawn(&process, "/proc/self/exe", &actions, &attributes, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  posix_spawnattr_destroy(&attributes);
  if (code != 0) throw failure("no shadow can be started", code);
  return process;
}

Shadow::Shadow(const Snapshot& snapshot, const std::string& module) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) throw failure("no shadow can be started", errno);
  socket_ = Descriptor(ends[0]);
  Descriptor other(ends[1]);
  process_.id = start(other.get(), module);
  other.reset();  // its end is seen by ours
  Value flows = Value::array();
  for (const Snapshot::Flow& flow : snapshot.flows)
    flows.push_back(Value::array({flow.isRule, flow.id, bytesValue(flow.name), Value::binary(flow.bytes)}));
  const Value answer = ask({{"do", "set up"},
                            {"flows", std::move(flows)},
                            {"chassis", snapshot.chassis},
                            {"lines", snapshot.lines},
                            {"configuration", bytesValue(snapshot.configuration)},
                            {"cards", snapshot.cards}});
  for (const Value& line : answer.at("failed")) failed_.push_back({bytesOf(line.at(0)), bytesOf(line.at(1))});
  for (const Value& one : answer.at("state")) {
    const auto& bytes = one.at(3).get_binary();
    state_.push_back(
        {static_cast<messages::Road>(one.at(0).get<int>()), one.at(1), one.at(2), {bytes.begin(), bytes.end()}});
  }
  voiceMode_ = answer.at("voice").get<std::array<u32, 2>>();
}

Shadow::Process::~Process() {
  if (id == 0) return;
  kill(id, SIGKILL);
  while (waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
  }
}

Value Shadow::ask(const Value& request) {
  try {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    sendValue(socket_.get(), request, deadline);
    auto answer = receiveValue(socket_.get(), deadline);
    if (!answer) throw ChannelError("the shadow has ended");
    if (answer->contains("error")) throw ChannelError("the shadow: " + answer->at("error").get<std::string>());
    return std::move(*answer);
  } catch (const Value::exception& error) {
    throw ChannelError(std::string("the shadow says what is not expected: ") + error.what());
  }
}

wire::Result Shadow::take(const Value& ran) {
  prompt_ = bytesOf(ran.at("prompt"));
  ended_ = ran.at("ended");
  return {.outcome = ran.at("outcome"),
          .returned = ran.at("returned"),
          .at = ran.at("at"),
          .expected = bytesOf(ran.at("expected"))};
}

wire::Result Shadow::run(std::string_view line, std::string& text) {
  if (ended_) return {};  // nothing behind it would be run
  const Value answer = ask({{"do", "line"}, {"line", bytesValue(line)}});
  text += bytesOf(answer.at("text"));
  const wire::Result result = take(answer);
  ++lines_;
  if (!result.good() && result.outcome != wire::kAsks) ++refused_;
  return result;
}

// So many in one request that the time to wake the other process does not count.
std::vector<Shadow::Refused> Shadow::runAll(const std::vector<Line>& lines) {
  constexpr std::size_t kAtOnce = 500;
  std::vector<Refused> all;
  for (std::size_t begin = 0; begin < lines.size() && !ended_; begin += kAtOnce) {
    const std::size_t end = std::min(begin + kAtOnce, lines.size());
    Value told = Value::array();
    for (std::size_t i = begin; i < end; ++i) told.push_back(bytesValue(lines[i].line));
    const Value answer = ask({{"do", "lines"}, {"lines", std::move(told)}, {"last", end == lines.size()}});
    for (const Value& one : answer.at("refused")) {
      const Line& line = lines[begin + one.at("number").get<std::size_t>()];
      all.push_back({line.number, std::string(line.line), take(one), bytesOf(one.at("text"))});
    }
    lines_ += answer.at("ran").get<u32>();
  }
  refused_ += static_cast<u32>(all.size());
  return all;
}

std::string Shadow::configuration() { return bytesOf(ask({{"do", "configuration"}}).at("text")); }

std::vector<Shadow::Sent> Shadow::sent() {
  std::vector<Sent> all;
  const Value answer = ask({{"do", "sent"}});
  for (const Value& one : answer.at("slots"))
    all.push_back({.slot = one.at(0), .messages = one.at(1), .bytes = one.at(2)});
  return all;
}

std::string Shadow::record() { return bytesOf(ask({{"do", "record"}}).at("text")); }

}  // namespace msand
