#pragma once
// Reads of standard MIBs whose answers have to be learned first. They are kept meanwhile, outside the library, which
// goes on with others. All functions belong to the thread that leads.

#include <functional>
#include <list>

#include "facts.h"
#include "kept_request.h"
#include "standard_table.h"

namespace msand {

class KeptReads {
 public:
  using Answer = std::function<void(netsnmp_session* session, int id, netsnmp_pdu* pdu)>;
  // `tables` in the order of their names; `answer` answers with what is known then.
  KeptReads(Facts& facts, std::vector<StandardTable*> tables, Answer answer);
  ~KeptReads();
  KeptReads(const KeptReads&) = delete;
  KeptReads& operator=(const KeptReads&) = delete;

  // True: it is kept. False: everything that it asks for is known.
  bool keep(netsnmp_session* session, int id, netsnmp_pdu* pdu);
  // Outside the library: answers what can be answered.
  void work();
  void leave(const netsnmp_session* session);

 private:
  struct Read : KeptRequest {
    Facts::Clock::time_point until;  // its manager waits
    std::vector<Facts::Key> missing;
  };

  std::vector<Facts::Key> missingFor(const netsnmp_pdu& pdu);
  void noteNext(const netsnmp_variable_list& variable, i64 repetitions);
  void watch();

  Facts& facts_;
  const std::vector<StandardTable*> tables_;
  const Answer answer_;
  std::list<Read> reads_;
  u32 alarm_ = 0;  // looks at the time, while there are any
};

}  // namespace msand
