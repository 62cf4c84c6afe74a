#include "metrics.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "messages/decode.h"
#include "messages/view.h"
#include "metrics_page.h"

namespace msand {

namespace {

constexpr u16 kLineStatus = 2825;
constexpr u8 kError = 0x41;
constexpr std::size_t kCodeAt = 10;  // of a packet that tells an error
constexpr i64 kShowtime = 4, kSavesPower = 5;

// The code by which a request was refused; 0: it was not.
i32 codeOf(const host::WatchedRequest& request) {
  const host::Bytes reply = request.reply;
  if (reply.size() >= 4 && reply[0] == 0 && reply[1] == 0 && reply[2] == 0 && reply[3] == kError)
    return reply.size() < kCodeAt + 2 ? kNoCode : static_cast<i16>(reply[kCodeAt] << 8 | reply[kCodeAt + 1]);
  return request.result == 0 ? kNoCode : 0;
}

Metrics::Line lineOf(const messages::View& told, Metrics::Clock::time_point now) {
  const i64 state = told.numberOr("State", 0);
  const auto number = [&](std::string_view name) { return static_cast<double>(told.numberOr(name, 0)); };
  return {.at = now,
          .up = state == kShowtime || state == kSavesPower,
          .rate = {number("netDataRateDs"), number("netDataRateUs")},
          .attainable = {number("attainableBitRateDs"), number("attainableBitRateUs")},
          .margin = {told.scaled("snrMarginDs").value_or(0), told.scaled("snrMarginUs").value_or(0)}};
}

}  // namespace

u64 Metrics::Requests::count() const { return std::accumulate(took.begin(), took.end(), u64{0}); }

Metrics::Metrics() : rows_(std::numeric_limits<u16>::max() + 1) {
  const auto& all = messages::book().messages;
  requests_.resize(all.size() + 1);
  for (std::size_t i = 0; i < all.size(); ++i)
    for (const u16 id : all[i].ids) rows_[id] = static_cast<u16>(i + 1);
  host::watch(this);
}

Metrics::~Metrics() { host::watch(nullptr); }

void Metrics::request(const host::WatchedRequest& request) {
  const double seconds = std::chrono::duration<double>(request.took).count();
  const auto bound = std::ranges::lower_bound(kBounds, seconds) - kBounds.begin();
  const i32 code = codeOf(request);
  const std::lock_guard lock(mutex_);
  Requests& counted = requests_[rows_[request.id]][request.isSet ? 0 : 1];
  ++counted.took[static_cast<std::size_t>(bound)];
  counted.seconds += seconds;
  if (code != 0) ++counted.refused[code];
}

void Metrics::message(const host::WatchedMessage& message) {
  if (message.slot > host::kSlots) return;
  {
    const std::lock_guard lock(mutex_);
    Traffic& to = traffic_[static_cast<std::size_t>(message.link)][message.slot][message.asks ? 1 : 0];
    ++to.messages;
    to.bytes += message.bytes;
    to.failures += message.result < 0 ? 1 : 0;
    to.answerBytes += message.answer.size();
  }
  if (message.id == kLineStatus && message.asks && message.result >= 0) noteLines(message);
}

// A card that answers a question about its lines tells this page, too; it is never asked for it.
void Metrics::noteLines(const host::WatchedMessage& message) {
  const messages::Message* const described = messages::book().find(kLineStatus);
  const messages::Layout* const layout = described == nullptr ? nullptr : described->find(messages::Road::gponAnswer);
  if (layout == nullptr) return;
  const messages::Decoded decoded = messages::decode(*described, *layout, message.answer);
  const auto now = Clock::now();
  const std::lock_guard lock(mutex_);
  for (const messages::View& told : messages::View(decoded).items("port")) {
    const i64 port = told.numberOr("port", 0);
    if (port < 1 || port > host::kPorts || told.numberOr("slot", 0) != message.slot) continue;
    lines_[host::objectId(message.slot, static_cast<u16>(port))] = lineOf(told, now);
  }
}

std::string Metrics::page(std::size_t terminals) const {
  MetricsPage page;
  const auto now = Clock::now();
  addNode(page, std::chrono::duration<double>(now - begin_).count(), terminals);
  // Nobody waits while the text is made.
  std::unique_lock lock(mutex_);
  const auto requests = requests_;
  const auto traffic = traffic_;
  const auto lines = lines_;
  lock.unlock();
  addRequests(page, requests);
  addTraffic(page, traffic);
  addLines(page, lines, now);
  return page.take();
}

}  // namespace msand
