// What a DSL profile and a port that uses one cost, for 64 to 1024 of them, so that a cost that grows with their number
// shows; and the calls of the stores that they cannot do without.

#include <benchmark/benchmark.h>
#include <fmt/format.h>

#include <algorithm>

#include "bench_node.h"
#include "host/agent.h"
#include "platform/profile_store.h"
#include "platform/tables.h"

namespace {

constexpr u16 kWrite = 34661, kDelete = 34662, kAttach = 2837;
constexpr u32 kProfile = 154;  // bytes of an item without tones
constexpr u32 kPort = 26;
constexpr u32 kItem = 252;  // in the store

bool request(u16 id, std::vector<u8>& frame) {
  static std::vector<u8> reply(host::kReplyCapacity);
  u32 length = 0;
  host::agentHooks().write(id, 1, frame.data(), static_cast<i32>(frame.size()), reply.data(), &length, nullptr,
                           nullptr);
  return reply[3] == 1;
}

// A SET of profiles with the ids 1 to `count`, at the defaults.
std::vector<u8> profiles(u32 count) {
  std::vector<u8> frame(34 + count * kProfile);
  put(frame, 32, 2, count);
  for (u32 i = 0; i < count; ++i) {
    const std::size_t at = 34 + i * kProfile;
    const std::string name = fmt::format("profile-{}", i + 1);
    put(frame, at, 2, i + 1);
    std::ranges::copy(name, frame.begin() + static_cast<std::ptrdiff_t>(at) + 2);
    const u32 body = static_cast<u32>(at) + 22;
    const struct {
      u32 at, width, value;
    } fields[] = {{2, 2, 2},   {4, 2, 2},   {6, 2, 3},   {17, 1, 1},  {18, 4, 60}, {23, 1, 1},
                  {24, 4, 60}, {28, 2, 16}, {30, 2, 16}, {32, 2, 1},  {34, 2, 1},  {40, 2, 300},
                  {42, 2, 30}, {44, 2, 3},  {46, 4, 32}, {50, 2, 31}, {52, 2, 31}};
    for (const auto& field : fields) put(frame, body + field.at, field.width, field.value);
  }
  return frame;
}

bool deleteProfiles(u32 count) {
  std::vector<u8> frame(34 + count * 2);
  put(frame, 32, 2, count);
  for (u32 i = 0; i < count; ++i) put(frame, 34 + i * 2, 2, i + 1);
  return request(kDelete, frame);
}

// All ports take a profile, in one request.
std::vector<u8> attachments(u32 cards, u32 id) {
  std::vector<u8> frame(36 + cards * kPorts * kPort);
  put(frame, 32, 4, cards * kPorts);
  for (u32 i = 0; i < cards * kPorts; ++i) {
    const std::size_t at = 36 + i * kPort;
    put(frame, at, 2, kServiceSlots[i / kPorts]);
    put(frame, at + 2, 2, i % kPorts + 1);
    put(frame, at + 20, 2, id);
  }
  return frame;
}

// New profiles, in one request. They are deleted between the rounds.
void write(benchmark::State& state) {
  const auto count = static_cast<u32>(state.range(0));
  populate(0, "adsl64");
  std::vector<u8> frame = profiles(count);
  for (auto _ : state) {
    const bool written = request(kWrite, frame);
    state.PauseTiming();
    if (!written || !deleteProfiles(count)) state.SkipWithError("a request was refused");
    state.ResumeTiming();
  }
  perPart(state, "per profile", count);
}

// A node with two profiles, and all its ports on one of them.
void prepare(benchmark::State& state, u32 cards) {
  populate(cards, "adsl64");
  std::vector<u8> two = profiles(2);
  std::vector<u8> ports = attachments(cards, 1);
  if (!request(kWrite, two) || !request(kAttach, ports)) state.SkipWithError("a request was refused");
}

void cleanUp(benchmark::State& state) {
  populate(0, "adsl64");
  if (!deleteProfiles(2)) state.SkipWithError("profiles were left");
}

void attach(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  prepare(state, cards);
  std::vector<u8> frames[] = {attachments(cards, 1), attachments(cards, 2)};
  u32 turn = 0;
  for (auto _ : state)
    if (!request(kAttach, frames[turn++ % 2])) state.SkipWithError("a request was refused");
  perPort(state, cards * kPorts);
  cleanUp(state);
}

void flush(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  prepare(state, cards);
  host::LineOutcome outcome;
  Vty vty;
  for (auto _ : state) outcome = host::runLine(vty, CONFIG_NODE, "flush adslLine profile id 1");
  if (outcome.returned != 0) state.SkipWithError("flush failed");
  perPort(state, cards * kPorts);
  cleanUp(state);
}

void hotplug(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  prepare(state, cards);
  for (auto _ : state)
    for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  perPort(state, cards * kPorts);
  cleanUp(state);
}

// VDSL lines use a profile of each of eight kinds, those with tables as full as they may be.
constexpr const char* kVdslKinds[] = {"pvc",      "vdslLine",  "vdslser",  "vdslpbo",
                                      "vdslcpsd", "vdslextra", "vdslginp", "vdslvn"};

void run(benchmark::State& state, const std::string& line) {
  Vty vty;
  if (host::runLine(vty, CONFIG_NODE, line).returned != 0) state.SkipWithError(line.c_str());
}

void hotplugVdsl(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  populate(cards, "vdsl64");
  for (const char* kind : kVdslKinds) {
    run(state, fmt::format("add {} profile bench id 1", kind));
    run(state, fmt::format("set {} profile id 1", kind));
    for (u32 i = 0; i < cards; ++i)
      run(state, fmt::format("attach {} profile id 1 interface {}/1-{}", kind, kServiceSlots[i], kPorts));
  }
  for (u32 i = 1; i <= 40; ++i) {
    run(state, fmt::format("set vdslcpsd para dn index {} tone {} value -60", i, 2800 + i));
    if (i <= 32) run(state, fmt::format("set vdslvn para dn index {} tone {} level -60", i, 2800 + i));
    if (i <= 16) run(state, fmt::format("set vdslcpsd para up index {} tone {} value -60", i, 880 + i));
    if (i <= 16) run(state, fmt::format("set vdslvn para up index {} tone {} level -60", i, 880 + i));
  }
  for (auto _ : state)
    for (u32 i = 0; i < cards; ++i) benchNode().cardUp(kServiceSlots[i]);
  perPart(state, "per port and kind", cards * kPorts * static_cast<u32>(std::size(kVdslKinds)));
  populate(0, "vdsl64");
  for (const char* kind : kVdslKinds) run(state, fmt::format("delete {} profile id 1", kind));
}

// As many profiles as there are ids, and as many ports that use them.
void showrun(benchmark::State& state) {
  const auto cards = static_cast<u32>(state.range(0));
  const u32 count = std::min(cards * kPorts, 1023U);
  populate(cards, "adsl64");
  std::vector<u8> all = profiles(count), ports = attachments(cards, 1);
  if (!request(kWrite, all) || !request(kAttach, ports)) state.SkipWithError("a request was refused");
  for (auto _ : state) benchmark::DoNotOptimize(benchNode().runningConfiguration());
  perPort(state, cards * kPorts);
  populate(0, "adsl64");
  if (!deleteProfiles(count)) state.SkipWithError("profiles were left");
}

// The calls of the stores: a new profile in a kind of the benchmark's own, and the row of an attachment.
void storeProfile(benchmark::State& state) {
  static const i16 kind = (benchNode(), prfRegNewType(-1, 1024, 1, kItem));
  const std::vector<u8> item(kItem);
  std::vector<u8> out(kItem);
  for (auto _ : state) {
    u16 size = kItem;
    if (prfIsIdUsed(kind, 1) != 0 || prfIsNameExist(kind, "profile-1") != 0 || prfCreate(kind, "profile-1", 1) < 0 ||
        prfAddItem(kind, 1, 0, item.data(), kItem) < 0 || prfGetItem(out.data(), &size, kind, 1, 0) != 0 ||
        prfDel(kind, 1) != 0) {
      state.SkipWithError("the store refused");
    }
  }
}

void storeAttachment(benchmark::State& state) {
  prepare(state, 1);
  const u32 object = u32{kServiceSlots[0]} << 16 | 1;
  u16 id = 1;
  for (auto _ : state) {
    id ^= 3;
    const DbConnection connection = dbCommon_getConnectRes();
    mco_trans_h transaction = nullptr;
    mco_cursor_t cursor;
    AD_PRF_ATT_RELATION row;
    const bool good = mco_trans_start_(connection, DB_READ_WRITE, 0, &transaction, __FILE__, __LINE__, __func__) == 0 &&
                      AD_PRF_ATT_RELATION_reTree_index_cursor(transaction, &cursor) == 0 &&
                      AD_PRF_ATT_RELATION_reTree_search(transaction, &cursor, 3, object) == 0 &&
                      AD_PRF_ATT_RELATION_from_cursor(transaction, &cursor, &row) == 0 &&
                      AD_PRF_ATT_RELATION_prfId_put(&row, id) == 0 && mco_trans_commit(transaction) == 0;
    dbCommon_freeConnectRes(connection);
    if (!good) state.SkipWithError("the transaction failed");
  }
  cleanUp(state);
}

BENCHMARK(write)->Name("profiles written")->Arg(64)->Arg(256)->Arg(1023)->Unit(benchmark::kMicrosecond);
BENCHMARK(attach)->Name("profile attached")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(flush)->Name("profile flushed")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(hotplug)->Name("DSL cards return")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(hotplugVdsl)->Name("VDSL cards return")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(showrun)->Name("DSL running configuration")->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(storeProfile)->Name("calls of the profile store");
BENCHMARK(storeAttachment)->Name("row of an attachment");

}  // namespace
