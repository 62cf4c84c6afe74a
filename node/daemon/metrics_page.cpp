#include "metrics_page.h"

#include <malloc.h>

#include "host/database.h"
#include "host/pool.h"
#include "messages/layout.h"

namespace msand {

namespace {

constexpr std::chrono::minutes kLately{5};
constexpr double kBytesPerKilobit = 125;
constexpr const char* kDirections[] = {"down", "up"};
constexpr const char* kLinks[] = {"gpon", "gepon", "epon", "ngn"};

const char* word(host::CardState state) {
  if (state == host::CardState::up) return "up";
  return state == host::CardState::present ? "present" : "down";
}

void addCards(MetricsPage& page) {
  page.family("msan_cards", "gauge", "Slots with a card type, by the state of the card.");
  for (const auto state : {host::CardState::up, host::CardState::present, host::CardState::absent}) {
    int count = 0;
    for (u16 slot = 1; slot <= host::kSlots; ++slot)
      if (host::authorisedType(slot) != nullptr && host::cardState(slot) == state) ++count;
    page.sample(fmt::format("state=\"{}\"", word(state)), count);
  }
}

// What is done for each kind of requests that there were.
template <class Action>
void eachKind(std::span<const std::array<Metrics::Requests, 2>> requests, Action action) {
  const auto& described = messages::book().messages;
  for (std::size_t i = 0; i < requests.size(); ++i)
    for (const bool isSet : {true, false}) {
      const Metrics::Requests& one = requests[i][isSet ? 0 : 1];
      const std::string_view name = i == 0 ? "unknown" : std::string_view(described[i - 1].name);
      if (one.count() != 0) action(fmt::format("message=\"{}\",request=\"{}\"", name, isSet ? "set" : "get"), one);
    }
}

struct TrafficFamily {
  const char* name;
  const char* help;
  u64 Metrics::Traffic::*value;
};
constexpr TrafficFamily kTraffic[] = {
    {"msan_messages_total", "Messages to cards, and to the voice side as slot 0.", &Metrics::Traffic::messages},
    {"msan_message_bytes_total", "Bytes of these messages.", &Metrics::Traffic::bytes},
    {"msan_message_failures_total", "Of these messages, those that were not sent or not answered.",
     &Metrics::Traffic::failures},
    {"msan_answer_bytes_total", "Bytes of the answers to these messages.", &Metrics::Traffic::answerBytes},
};

struct LineFamily {
  const char* name;
  const char* help;
  std::array<double, 2> Metrics::Line::*value;
  double factor;
};
constexpr LineFamily kLine[] = {
    {"msan_line_rate_bytes_per_second", "Net rate of a line.", &Metrics::Line::rate, kBytesPerKilobit},
    {"msan_line_attainable_rate_bytes_per_second", "Rate that a line could have.", &Metrics::Line::attainable,
     kBytesPerKilobit},
    {"msan_line_margin_decibels", "Noise margin of a line.", &Metrics::Line::margin, 1},
};

}  // namespace

void MetricsPage::family(std::string_view name, std::string_view type, std::string_view help) {
  name_ = name;
  text_ += fmt::format("# HELP {} {}\n# TYPE {} {}\n", name, help, name, type);
}

void addNode(MetricsPage& page, double uptime, std::size_t terminals) {
  page.family("msan_build_info", "gauge", "The version of the node.");
  page.sample("version=\"" MSAN_VERSION "\"", 1);
  page.family("msan_uptime_seconds", "gauge", "How long the node has been counting.");
  page.sample("", uptime);
  page.family("msan_terminals", "gauge", "Operators' terminals that are connected.");
  page.sample("", terminals);
  addCards(page);
  page.family("msan_pool_used_bytes", "gauge", "Memory of the pools that the module has taken and not given back.");
  page.sample("", host::poolInUse());
  const struct mallinfo2 heap = mallinfo2();
  page.family("msan_heap_used_bytes", "gauge", "Memory of the whole process that is in use, but for the database.");
  page.sample("", heap.uordblks + heap.hblkhd);
  const host::DatabaseSize size = host::databaseSize();
  page.family("msan_database_used_bytes", "gauge", "Size of the database, with all overhead.");
  page.sample("", size.used);
  page.family("msan_database_limit_bytes", "gauge", "Size that the database may have.");
  page.sample("", size.limit);
  page.family("msan_database_entries", "gauge", "Entries of rows and indexes in the database.");
  page.sample("", size.entries);
}

void addRequests(MetricsPage& page, std::span<const std::array<Metrics::Requests, 2>> requests) {
  page.family("msan_requests_total", "counter", "Requests to the module; each piece of a long one counts.");
  eachKind(requests,
           [&](const std::string& labels, const Metrics::Requests& one) { page.sample(labels, one.count()); });
  page.family("msan_refusals_total", "counter", "Requests that the module refused, by code.");
  eachKind(requests, [&](const std::string& labels, const Metrics::Requests& one) {
    for (const auto& [code, count] : one.refused)
      page.sample(fmt::format("{},code=\"{}\"", labels, code == kNoCode ? "none" : std::to_string(code)), count);
  });
  page.family("msan_request_duration_seconds", "histogram", "How long the module took over a request.");
  eachKind(requests, [&](const std::string& labels, const Metrics::Requests& one) {
    u64 count = 0;
    for (std::size_t i = 0; i < Metrics::kBounds.size(); ++i)
      page.sample(fmt::format("{},le=\"{}\"", labels, Metrics::kBounds[i]), count += one.took[i], "_bucket");
    page.sample(labels + ",le=\"+Inf\"", one.count(), "_bucket");
    page.sample(labels, one.seconds, "_sum");
    page.sample(labels, one.count(), "_count");
  });
}

void addTraffic(MetricsPage& page, const Metrics::TrafficTable& traffic) {
  for (const TrafficFamily& family : kTraffic) {
    page.family(family.name, "counter", family.help);
    for (std::size_t link = 0; link < traffic.size(); ++link)
      for (std::size_t slot = 0; slot <= host::kSlots; ++slot)
        for (const bool asks : {false, true}) {
          const Metrics::Traffic& one = traffic[link][slot][asks ? 1 : 0];
          if (one.messages != 0 && (asks || family.value != &Metrics::Traffic::answerBytes))
            page.sample(fmt::format("slot=\"{}\",link=\"{}\",kind=\"{}\"", slot, kLinks[link], asks ? "asked" : "told"),
                        one.*family.value);
        }
  }
}

void addLines(MetricsPage& page, const std::map<u32, Metrics::Line>& lines, Metrics::Clock::time_point now) {
  // Of a card that is up, and that has told lately.
  const auto eachLine = [&](auto action) {
    for (const auto& [place, line] : lines) {
      const u16 slot = static_cast<u16>(place >> 16);
      if (now - line.at <= kLately && host::cardState(slot) == host::CardState::up)
        action(fmt::format("slot=\"{}\",port=\"{}\"", slot, place & 0xFFFF), line);
    }
  };
  int told = 0, up = 0;
  eachLine([&](const std::string&, const Metrics::Line& line) { ++told, up += line.up ? 1 : 0; });
  page.family("msan_lines_told", "gauge", "DSL lines that their cards were asked about in the last five minutes.");
  page.sample("", told);
  page.family("msan_lines_up", "gauge", "Of these lines, those that were up.");
  page.sample("", up);
  for (const LineFamily& family : kLine) {
    page.family(family.name, "gauge", family.help);
    eachLine([&](const std::string& labels, const Metrics::Line& line) {
      for (const std::size_t i : {0u, 1u})
        if (line.up)
          page.sample(fmt::format("{},direction=\"{}\"", labels, kDirections[i]),
                      (line.*family.value)[i] * family.factor);
    });
  }
}

}  // namespace msand
