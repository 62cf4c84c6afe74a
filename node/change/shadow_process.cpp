// The shadow's own side.

#include <fmt/format.h>
#include <sys/prctl.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <map>

#include "answering.h"
#include "host/flow_store.h"
#include "host/jobs.h"
#include "host/log.h"
#include "observing.h"
#include "operator.h"
#include "platform_words.h"
#include "running_configuration.h"
#include "scenario/directives.h"
#include "session_record.h"
#include "shadow.h"

namespace msand {

namespace {

// Counts what goes out, and keeps what goes out at the start.
class Counter : public host::Observer {
 public:
  void send(host::Link link, u16 slot, u16 id, host::Bytes payload) override {
    using messages::Road;
    constexpr Road kRoads[] = {Road::gpon, Road::gepon, Road::epon, Road::ngn};
    count(link, slot, payload);
    if (starts)
      state.push_back(Value::array({static_cast<int>(kRoads[static_cast<int>(link)]), slot, id,
                                    bytesValue({reinterpret_cast<const char*>(payload.data()), payload.size()})}));
  }
  void ask(host::Link link, u16 slot, u16, host::Bytes request) override { count(link, slot, request); }
  void voiceMode(u32, u32 mode, u32 flag) override {
    if (starts) voice = {mode, flag};
  }
  // A card that comes up is told all once more.
  void leaveVoice() {
    std::erase_if(state.get_ref<Value::array_t&>(), [](const Value& one) { return one.at(1) != 0; });
  }

  std::map<u16, std::pair<u32, u64>> slots;
  bool starts = true;
  Value state = Value::array();
  std::array<u32, 2> voice{};  // mode and flag

 private:
  void count(host::Link link, u16 slot, host::Bytes bytes) {
    auto& [messages, size] = slots[link == host::Link::ngn ? u16{0} : slot];
    ++messages;
    size += bytes.size();
  }
};

// What a line of the platform's does outside of the node, or tells of it, is not done in the dark.
bool reachesOut(std::string_view line) {
  constexpr std::string_view kWords[] = {"record", "trace", "check", "compare", "confirm", "rollback"};
  if (!isPlatformLine(line)) return false;
  line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
  const std::string_view word = line.substr(0, line.find_first_of(" \t"));
  return word.starts_with("wr") || line.find("metrics") != line.npos || line.find("history") != line.npos ||
         std::ranges::find(kWords, word) != std::end(kWords);
}

class ShadowNode {
 public:
  ShadowNode(int socket, const std::string& module)
      : socket_(socket), node_(module), startup_(""), commands_(node_, startup_, dsl_) {}

  void serve() {
    while (const auto request = receiveValue(socket_)) {
      try {
        sendValue(socket_, answer(*request));
      } catch (const ChannelError&) {
        throw;
      } catch (const std::exception& error) {
        sendValue(socket_, {{"error", error.what()}});
      }
    }
  }

 private:
  Value answer(const Value& request) {
    const std::string what = request.at("do");
    if (what == "set up") return setUp(request);
    if (what == "line") return run(bytesOf(request.at("line")));
    if (what == "lines") return runAll(request);
    if (what == "configuration") return {{"text", bytesValue(node_.runningConfiguration())}};
    if (what == "record") return {{"text", bytesValue(record_)}};
    if (what == "sent") return sent();
    throw std::invalid_argument("does not know " + what);
  }

  void play(const Value& directives) {
    for (const std::string directive : directives) {
      scenario::Outcome outcome;
      scenario::readDirective(directive)(stage_, outcome);
      host::runJobs();
    }
  }

  // From this very program: of the sizes that it has.
  static void setFlow(const Value& flow) {
    const i16 id = flow.at(1);
    const std::string name = bytesOf(flow.at(2));
    const auto& bytes = flow.at(3).get_binary();
    if (flow.at(0).get<bool>()) {
      FlowRule rule;
      std::memcpy(&rule, bytes.data(), std::min(bytes.size(), sizeof rule));
      host::setFlowRule(id, name, rule);
    } else {
      host::FlowPolicyPack pack{};
      std::memcpy(pack.data(), bytes.data(), std::min(bytes.size(), pack.size()));
      host::setFlowPolicy(id, name, pack);
    }
  }

  Value setUp(const Value& request) {
    play(request.at("chassis"));
    for (const Value& flow : request.at("flows")) setFlow(flow);
    counter_.state.clear();
    for (const std::string words : request.at("lines")) {
      std::string text;
      commands_.run(terminal_, "chassis " + words, text);
    }
    Value failed = Value::array();
    node_.executeStartup(bytesOf(request.at("configuration")), [&](const node::FailedLine& line) {
      failed.push_back(Value::array({bytesValue(line.command), bytesValue(failedText(line))}));
    });
    host::runJobs();
    counter_.leaveVoice();
    play(request.at("cards"));
    counter_.slots.clear();
    counter_.starts = false;
    sessionRecord().beginInto([this](std::string_view text) {
      record_ += text;
      return true;
    });
    return {{"failed", failed}, {"state", std::move(counter_.state)}, {"voice", counter_.voice}};
  }

  Value run(const std::string& line) {
    std::string text;
    wire::Result result;
    if (!reachesOut(line)) result = commands_.run(terminal_, line, text);
    return {{"outcome", result.outcome}, {"returned", result.returned},
            {"at", result.at},           {"expected", bytesValue(result.expected)},
            {"text", bytesValue(text)},  {"prompt", bytesValue(commands_.prompt(terminal_))},
            {"ended", terminal_.ended}};
  }

  // Lines behind one that ends the session are not run.
  Value runAll(const Value& request) {
    const Value& lines = request.at("lines");
    Value refused = Value::array();
    std::size_t ran = 0;
    while (ran < lines.size() && !terminal_.ended) {
      Value one = run(bytesOf(lines[ran++]));
      const u8 outcome = one.at("outcome");
      const bool asks = outcome == wire::kAsks && !(ran == lines.size() && request.at("last").get<bool>());
      if ((outcome == 0 && one.at("returned") == 0) || asks) continue;
      one["number"] = ran - 1;
      refused.push_back(std::move(one));
    }
    return {{"refused", refused}, {"ran", ran}};
  }

  Value sent() const {
    Value slots = Value::array();
    for (const auto& [slot, count] : counter_.slots) slots.push_back({slot, count.first, count.second});
    return {{"slots", slots}};
  }

  const int socket_;
  Counter counter_;
  const Observing observing_{counter_};
  const host::CaptureOutput capture_;
  cards::DslCards dsl_;
  const Answering answering_{dsl_};
  node::Node node_;
  Startup startup_;
  Operator commands_;
  scenario::Recorder unheard_;
  scenario::Stage stage_{node_, unheard_, {}, {}, 0, {}, {}};
  Terminal terminal_;
  std::string record_;
};

}  // namespace

int serveShadow(int socket, const std::string& module) try {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  host::openLog(host::LogTo::nowhere, "");
  ShadowNode(socket, module).serve();
  return 0;
} catch (const std::exception& error) {
  try {
    sendValue(socket, {{"error", error.what()}});
  } catch (const ChannelError&) {
  }
  return 1;
}

}  // namespace msand
