#pragma once
// The text of a page of metrics, by families.

#include <fmt/format.h>

#include <limits>
#include <span>
#include <string>
#include <string_view>

#include "metrics.h"

namespace msand {

inline constexpr i32 kNoCode = std::numeric_limits<i32>::min();  // refused without one

class MetricsPage {
 public:
  // The samples behind it are the family's.
  void family(std::string_view name, std::string_view type, std::string_view help);
  // `labels` as they stand in the braces, empty: none. The name has `suffix` behind the family's.
  template <class Number>
  void sample(std::string_view labels, Number value, std::string_view suffix = "") {
    text_ += labels.empty() ? fmt::format("{}{} {}\n", name_, suffix, value)
                            : fmt::format("{}{}{{{}}} {}\n", name_, suffix, labels, value);
  }
  std::string take() { return std::move(text_); }

 private:
  std::string name_, text_;
};

void addNode(MetricsPage& page, double uptime, std::size_t terminals);
void addRequests(MetricsPage& page, std::span<const std::array<Metrics::Requests, 2>> requests);
void addTraffic(MetricsPage& page, const Metrics::TrafficTable& traffic);
void addLines(MetricsPage& page, const std::map<u32, Metrics::Line>& lines, Metrics::Clock::time_point now);

}  // namespace msand
