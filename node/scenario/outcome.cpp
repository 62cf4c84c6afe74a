#include "outcome.h"

#include <fmt/format.h>

#include "host/hex.h"
#include "text.h"

namespace scenario {

void Outcome::result(int code) { lines.push_back(fmt::format("= {}", code)); }

void Outcome::notAvailable(std::string_view why) {
  lines.push_back(fmt::format("= not available: {}", why));
  available = false;
}

void Outcome::ran(const Vty& vty, host::LineOutcome line) {
  terminal = vty.text;
  question = vty.question;
  if (line.result == host::LineResult::ran)
    result(line.returned);
  else
    lines.push_back(fmt::format("= {}", host::wordsOf(line.result)));
}

static std::string replyLine(const host::Answer& answer) {
  return answer.reply ? "reply " + host::hexText(*answer.reply) : "reply none";
}

void Outcome::setAnswered(const host::Answer& answer) {
  lines.push_back(replyLine(answer));
  result(answer.result);
}

void Outcome::getAnswered(const host::Answer& answer) {
  lines.push_back(replyLine(answer));
  lines.push_back(fmt::format("last {}", answer.last));
  result(answer.result);
}

std::vector<std::string> recordOf(std::vector<std::string> events, const Outcome& outcome) {
  for (const std::string& line : terminalLines(outcome.terminal)) events.push_back(marked("|", line));
  if (!outcome.question.empty()) events.push_back(marked("?", outcome.question));
  events.insert(events.end(), outcome.lines.begin(), outcome.lines.end());
  return events;
}

}  // namespace scenario
