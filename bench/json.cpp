// JSON of all that a node has: what every message's GET answers on a chassis of 16 cards of 64 ports, into JSON and
// back. The bytes are the messages'.

#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>
#include <shared_mutex>

#include "bench_node.h"
#include "host/agent.h"
#include "messages/named.h"

namespace {

using messages::Json, messages::Road;

struct Reply {
  const messages::Message* message;
  std::vector<u8> bytes;
};

// Those that the module has an answer to when it is asked for all.
std::vector<Reply> replies() {
  populate(std::size(kServiceSlots), "adsl64");
  run("attach adslLine profile id 0 interface " + allPorts(std::size(kServiceSlots)));
  std::vector<Reply> all;
  const std::shared_lock request(host::requestGate());
  for (const messages::Message& message : messages::book().messages) {
    if (message.find(Road::getReply) == nullptr) continue;
    Reply reply{&message, {}};
    for (bool last = false; !last;) {
      std::vector<u8> question = messages::questionOf(message, Json::object());
      const host::Answer answer = host::agentGet(message.ids.front(), &question);
      last = answer.last != 0 || !answer.reply || answer.reply->empty();
      if (answer.reply) reply.bytes.insert(reply.bytes.end(), answer.reply->begin(), answer.reply->end());
    }
    if (!reply.bytes.empty() && !isRefusal(messages::book(), message, Road::getReply, reply.bytes))
      all.push_back(std::move(reply));
  }
  return all;
}

std::string textOf(const Reply& one) {
  return messages::jsonText(
      messages::readReply(messages::book(), *one.message, Road::getReply, one.bytes, Json::object()));
}

template <class Work>
void overAll(benchmark::State& state, Work work) {
  const std::vector<Reply> all = replies();
  std::vector<std::string> texts;
  std::size_t bytes = 0, letters = 0;
  for (const Reply& one : all) {
    texts.push_back(textOf(one));
    bytes += one.bytes.size();
    letters += texts.back().size();
  }
  for (auto _ : state)
    for (std::size_t i = 0; i < all.size(); ++i) benchmark::DoNotOptimize(work(all[i], texts[i]));
  state.SetBytesProcessed(static_cast<i64>(state.iterations() * bytes));
  state.counters["messages"] = static_cast<double>(all.size());
  state.counters["bytes"] = static_cast<double>(bytes);
  state.counters["JSON"] = static_cast<double>(letters);
}

void intoJson(benchmark::State& state) {
  overAll(state, [](const Reply& one, const std::string&) { return textOf(one).size(); });
}
BENCHMARK(intoJson)->Name("all items into JSON")->Unit(benchmark::kMillisecond);

void outOfJson(benchmark::State& state) {
  overAll(state, [](const Reply& one, const std::string& text) {
    std::vector<std::string> unused;
    return messages::fromJson(*one.message->find(Road::getReply), Json::parse(text), unused).size();
  });
}
BENCHMARK(outOfJson)->Name("all items out of JSON")->Unit(benchmark::kMillisecond);

}  // namespace
