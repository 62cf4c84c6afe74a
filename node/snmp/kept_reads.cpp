#include "kept_reads.h"

#include <algorithm>
#include <utility>

#include "session_record.h"

namespace msand {

static constexpr std::size_t kMostKept = 64;
static constexpr i64 kMostResponses = 100;  // the library's own limit for a GETBULK

KeptReads::KeptReads(Facts& facts, std::vector<StandardTable*> tables, Answer answer)
    : facts_(facts), tables_(std::move(tables)), answer_(std::move(answer)) {}

KeptReads::~KeptReads() {
  if (alarm_ != 0) snmp_alarm_unregister(alarm_);
}

// Goes from cell to cell as the library will. What is not known yet counts as a cell: if it turns out to be none, what
// stands behind it is looked for then.
void KeptReads::noteNext(const netsnmp_variable_list& variable, i64 repetitions) {
  Oid name(variable.name, variable.name + variable.name_length);
  for (; repetitions > 0; --repetitions) {
    const bool found =
        std::ranges::any_of(tables_, [&](StandardTable* table) { return table->noteNext(name, facts_); });
    if (!found) return;
  }
}

std::vector<Facts::Key> KeptReads::missingFor(const netsnmp_pdu& pdu) {
  const bool bulk = pdu.command == SNMP_MSG_GETBULK;
  i64 single = bulk ? pdu.non_repeaters : 0;
  i64 repeaters = -std::max(single, i64{0});
  for (const auto* one = pdu.variables; one != nullptr; one = one->next_variable) ++repeaters;
  const i64 repetitions = repeaters > 0 ? std::min<i64>(pdu.max_repetitions, kMostResponses / repeaters) : 0;
  const Turn turn;  // the tables ask the module what exists
  facts_.beginNoting();
  for (const auto* one = pdu.variables; one != nullptr; one = one->next_variable, --single) {
    if (pdu.command == SNMP_MSG_GET)
      for (StandardTable* table : tables_) table->note(*one, facts_);
    else
      noteNext(*one, bulk && single <= 0 ? repetitions : 1);
  }
  return facts_.endNoting();
}

bool KeptReads::keep(netsnmp_session* session, int id, netsnmp_pdu* pdu) {
  if (pdu->command != SNMP_MSG_GET && pdu->command != SNMP_MSG_GETNEXT && pdu->command != SNMP_MSG_GETBULK)
    return false;
  std::vector<Facts::Key> missing = missingFor(*pdu);
  if (missing.empty() || !isAllowed(pdu)) return false;
  for (Read& one : reads_)
    if (one.takeRepeated(session, pdu)) return true;
  // One more is not answered; its manager asks again.
  if (reads_.size() >= kMostKept) return true;
  Read& read = reads_.emplace_back();
  if (!read.keep(session, id, pdu)) {
    reads_.pop_back();
    return true;
  }
  facts_.ask(missing);
  read.until = Facts::Clock::now() + Facts::kPatience;
  read.missing = std::move(missing);
  watch();
  return true;
}

void KeptReads::work() {
  for (auto read = reads_.begin(); read != reads_.end();) {
    const bool late = Facts::Clock::now() >= read->until;
    auto& missing = read->missing;
    while (!missing.empty() && facts_.isSettled(missing.back())) missing.pop_back();
    if (missing.empty() && !late && read->session != nullptr) {
      missing = missingFor(*read->pdu);
      facts_.ask(missing);
    }
    if (!missing.empty() && !late) {
      ++read;
      continue;
    }
    if (read->session != nullptr) answer_(read->session, read->id, read->pdu);
    read = reads_.erase(read);
  }
  watch();
}

void KeptReads::leave(const netsnmp_session* session) {
  for (Read& one : reads_)
    if (one.session == session) one.session = nullptr;
}

void KeptReads::watch() {
  if (reads_.empty() == (alarm_ == 0)) return;
  if (alarm_ != 0) {
    snmp_alarm_unregister(std::exchange(alarm_, 0));
    return;
  }
  constexpr timeval kOften = {0, 250'000};
  alarm_ = snmp_alarm_register_hr(
      kOften, SA_REPEAT, [](unsigned, void*) {}, nullptr);
}

}  // namespace msand
