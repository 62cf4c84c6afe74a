#pragma once
// The table in which the module's frames travel: a row per message, indexed by its id.
//
// What a frame does takes as long as the module takes; so it is done ahead of the library's own treatment of the
// request (module_road.h), and the table finds the outcome when the library asks for it. All of this belongs to the
// agent's thread.

#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "host/agent.h"
#include "library.h"

namespace msand {

// The table; its entry is .1, an instance is entry.COLUMN.ID. In an arc for experiments.
inline constexpr oid kFrameTable[] = {1, 3, 6, 1, 4, 1, 8072, 9999, 9999, 1};

enum Column : oid { kFrame = 1, kFrameMore, kReply, kQuery, kAnswer, kAnswerLast };

// What the module is asked for by a request of a manager.
struct ModuleRequest {
  Column column = kFrame;  // kFrame, kFrameMore, kAnswer
  u16 id = 0;
  std::vector<u8> bytes;
};

class FrameTable {
 public:
  FrameTable();
  ~FrameTable();
  FrameTable(const FrameTable&) = delete;
  FrameTable& operator=(const FrameTable&) = delete;

  // What the module has to do ahead of this request; none if it has a frame beside anything else, or no frame.
  // Takes the query of an answer.
  std::optional<ModuleRequest> take(const netsnmp_pdu& pdu);
  static bool concernsModule(const netsnmp_pdu& pdu);
  // A piece that did not fit into its datagram is there to be fetched again.
  bool holdsPiece(const netsnmp_pdu& pdu) const;

  // The message of a request that concerns the module.
  static u16 messageOf(const netsnmp_pdu& pdu);
  // The module has refused a frame.
  static bool isRefusal(const host::Answer& answer);

  // The module has done it: the library may treat the request, then `forget`. `noMemory`: there was none for a part of
  // it.
  void prepare(const ModuleRequest& request, host::Answer answer, bool noMemory);
  // It can't be done now.
  void prepareRefusal(const netsnmp_pdu& pdu);
  void forget();
  // The one who asked has gone: the piece is for the next one.
  void keepPiece(const ModuleRequest& request, host::Answer answer);

 private:
  struct Row {
    std::vector<u8> frame;  // the last one that was accepted, if it is small enough to be kept
    std::vector<u8> reply;
    std::vector<u8> query;
    std::optional<host::Answer> piece;
    u8 last = 0;
  };
  struct Prepared {
    Column column = kFrame;
    u16 id = 0;
    int error = SNMP_ERR_NOERROR;        // of a SET
    std::optional<host::Answer> answer;  // of a GET; none: no such message
  };
  struct Batch;

  static int handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                    netsnmp_request_info* requests);
  bool isKnown(u16 id) const;
  int reserve(const netsnmp_agent_request_info& info, const netsnmp_request_info& request) const;
  void store(const netsnmp_request_info& request);
  void get(Batch& batch, netsnmp_request_info* request);
  void getNext(Batch& batch, netsnmp_request_info* request);
  void give(Batch& batch, netsnmp_request_info* request, Column column, u16 id);
  void giveAnswer(Batch& batch, netsnmp_request_info* request, u16 id);

  std::vector<u16> ids_;  // announced, ascending
  std::unordered_map<u16, Row> rows_;
  std::size_t queried_ = 0;  // bytes of all queries
  std::optional<Prepared> prepared_;
  netsnmp_handler_registration* registration_ = nullptr;
};

}  // namespace msand
